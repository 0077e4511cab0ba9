// VelqaSPOperator: one step of signal processing inside a feature function.
//
// An operator reads the elements `inputs` of an input vector, computes one of
// the kinds of the kind table (or 0x200, a plain selection), possibly from
// the state it kept in `history` at its previous call, and leaves its results
// in its own `output` array. Element-wise kinds write one output per input;
// reducing kinds (mean, stdev, norm, angle, peak_hold) write output[0] only.
// Stateful kinds work in units of one call, that is one memory step.
//
// State: differential, factor and angle_diff output zeros at their first
// call after a reset (an empty `history`), lo_pass_filter starts at its
// input, peak_hold holds from 0. The history is released by ClearBuf,
// SetOutputDim and a function's ResetValue; the first Calc after that grows
// it again (one block), later calls allocate nothing.
//
// Nothing is validated: `inputs` must index inside the input vector and
// `output` must have room for what the kind writes.
#ifndef KEZ_SEARCH_VELQASPOPERATOR_H_
#define KEZ_SEARCH_VELQASPOPERATOR_H_

#include "foundation/FList.h"
#include "kez/export.h"

namespace vorn {

// One row of the operator kind table.
struct VelqaSPOperatorKind {
  int code;
  const char* name;
  int arity;       // 0: 1..all inputs; -1: at least 2; 2: exactly the two available
  int outputDim;   // 0: one output per input; 1: a single output
  int intParams;
  int realParams;
};

// The fourteen kinds, by row (the genome chooses rows, operators store codes).
KEZ_EXPORT extern const VelqaSPOperatorKind kOperatorKinds[14];
constexpr int kOperatorKindCount = 14;
// The selection kind: copies each selected input. Never generated.
constexpr int kSelectKind = 0x200;

class KEZ_EXPORT VelqaSPOperator {
 public:
  FListT<int> inputs;          // indices into the input vector, in use order
  int outputDim = 0;           // number of doubles in `output`
  int kind = 0;                // operation code
  FListT<int> intParams;       // no kind uses any; carried along
  FListT<double> doubleParams; // lo_pass_filter uses element 0
  double* output = nullptr;    // owned, `outputDim` doubles
  FListT<double> history;      // state of the stateful kinds; empty after a reset

  VelqaSPOperator();
  // Copies the configuration; `output` is fresh (contents not copied) and
  // `history` starts empty.
  VelqaSPOperator(const VelqaSPOperator& other);
  VelqaSPOperator& operator=(const VelqaSPOperator&) = delete;
  virtual ~VelqaSPOperator();

  void AllocBuf();             // allocates `output` (does not release first)
  void ClearBuf();             // releases `output` and the history block
  void Clear();                // ClearBuf and forget the configuration
  void SetOutputDim(int n);
  void Calc(const double* in);

  // Genome. Random choices draw from rand() in a fixed order.
  //
  // GenerateRandomly replaces this operator by a random one reading from
  // `inputCount` inputs; `outputDim` is the requested width on entry (0 for
  // any) and the actual one on return. With no input, or no kind able to
  // give the requested width, the operator stays empty and reports 0.
  void GenerateRandomly(unsigned inputCount, unsigned& outputDim);
  // Regenerates, redraws the inputs or redraws a real parameter, keeping the
  // output width.
  void Mutate(int inputCount);
  // Appends: inputs, -1, outputDim, kind, intParams, -1, doubleParams, -1.
  void Encode(FListT<double>& out) const;
  // Reads what Encode wrote, advancing `p` and counting `remaining` down per
  // value. Reads stop at `remaining` 0 (they yield end marks from there on).
  void Decode(const double*& p, int& remaining);
  // Same inputs, width, kind and parameters; history and output not compared.
  bool IsSame(const VelqaSPOperator& other) const;

  // Display name of a kind code ("abs", ...), "select" for 0x200, "?" else.
  static const char* KindName(int code);
};

}  // namespace vorn

#endif  // KEZ_SEARCH_VELQASPOPERATOR_H_
