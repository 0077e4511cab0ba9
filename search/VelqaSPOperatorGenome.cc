// The operator's genome: random generation, mutation, the flat double
// encoding and the configuration comparison. Every random choice draws from
// rand() in a fixed order, so a fixed srand() seed gives the same operators
// again with the same C library; rand()'s sequence itself differs between C
// libraries, so operators made on one platform are not those of another.
#include <cstdlib>

#include "foundation/Random.h"
#include "search/GenomeCode.h"
#include "search/VelqaSPOperator.h"

namespace vorn {

namespace {

// Which rows of the kind table a generator may choose from n available
// inputs when `req` outputs are requested (0 = any).
bool RowEligible(int row, unsigned n, unsigned req) {
  const VelqaSPOperatorKind& k = kOperatorKinds[row];
  if (k.outputDim == 0) return req == 0 || req <= n;
  if (k.arity == -1) return n >= 2 && req <= 1;
  return n == 2 && req <= 1;  // angle, peak_hold: exactly two inputs
}

// Appends distinct random indices below n until `inputs` holds m entries,
// then sorts them when there are two or more.
void DrawInputs(FListT<int>& inputs, int m, unsigned n) {
  while (inputs.count < m) {
    const int i = static_cast<int>(static_cast<unsigned>(rand()) % n);
    bool present = false;
    for (int k = 0; k < inputs.count; ++k) {
      if (inputs.data[k] == i) {
        present = true;
        break;
      }
    }
    if (!present) inputs.Add(i);
  }
  if (m >= 2) inputs.Sort();
}

template <class T>
bool SameList(const FListT<T>& a, const FListT<T>& b) {
  if (a.count != b.count) return false;
  for (int i = 0; i < a.count; ++i) {
    if (!(a.data[i] == b.data[i])) return false;
  }
  return true;
}

}  // namespace

void VelqaSPOperator::GenerateRandomly(unsigned inputCount, unsigned& requested) {
  Clear();
  const unsigned n = inputCount;
  int eligible[kOperatorKindCount];
  int eligibleCount = 0;
  for (int row = 0; row < kOperatorKindCount; ++row) {
    if (RowEligible(row, n, requested)) eligible[eligibleCount++] = row;
  }
  // Nothing to read from, or no kind can give the requested width: the
  // operator stays empty and reports no outputs.
  if (n == 0 || eligibleCount == 0) {
    requested = 0;
    return;
  }
  const unsigned pick = static_cast<unsigned>(rand()) % static_cast<unsigned>(eligibleCount);
  const VelqaSPOperatorKind& row = kOperatorKinds[eligible[pick]];
  kind = row.code;

  const bool reducing = row.outputDim == 1;
  int m;
  if (requested == 0 || reducing) {
    if (row.arity == -1) {
      m = n == 1 ? 1 : static_cast<int>(static_cast<unsigned>(rand()) % (n - 1) + 2);
    } else if (row.arity == 0) {
      m = static_cast<int>(static_cast<unsigned>(rand()) % n + 1);
    } else {
      m = static_cast<int>(n);
    }
  } else {
    m = static_cast<int>(requested);
  }
  DrawInputs(inputs, m, n);

  outputDim = reducing ? row.outputDim : m;
  if (row.code == 0x320) {
    for (int i = 0; i < row.realParams; ++i) doubleParams.Add(rand_double());
  }
  AllocBuf();
  requested = static_cast<unsigned>(outputDim);
}

void VelqaSPOperator::Mutate(int inputCount) {
  int actions[3];
  int actionCount = 0;
  actions[actionCount++] = 0;                                 // regenerate
  if (inputs.count < inputCount) actions[actionCount++] = 1;  // new inputs
  if (doubleParams.count >= 1) actions[actionCount++] = 2;    // new real parameter
  const int action = actions[static_cast<unsigned>(rand()) % static_cast<unsigned>(actionCount)];

  if (action == 2) {
    const int j = static_cast<int>(static_cast<unsigned>(rand()) %
                                   static_cast<unsigned>(doubleParams.count));
    doubleParams.data[j] = rand_double();
  } else if (action == 1) {
    const FListT<int> before(inputs);
    const int m = before.count;
    if (m == 0) return;  // nothing to redraw (never the case for generated operators)
    do {
      inputs.count = 0;
      inputs.sorted = 0;
      DrawInputs(inputs, m, static_cast<unsigned>(inputCount));
    } while (SameList(inputs, before));
  } else {
    // Keep the width, so that the next operator of the chain still finds
    // as many inputs as before.
    unsigned requested = static_cast<unsigned>(outputDim);
    GenerateRandomly(static_cast<unsigned>(inputCount), requested);
  }
}

void VelqaSPOperator::Encode(FListT<double>& out) const {
  for (int i = 0; i < inputs.count; ++i) out.Add(static_cast<double>(inputs.data[i]));
  out.Add(kGenomeEndMark);
  out.Add(static_cast<double>(outputDim));
  out.Add(static_cast<double>(kind));
  for (int i = 0; i < intParams.count; ++i) out.Add(static_cast<double>(intParams.data[i]));
  out.Add(kGenomeEndMark);
  for (int i = 0; i < doubleParams.count; ++i) out.Add(doubleParams.data[i]);
  out.Add(kGenomeEndMark);
}

void VelqaSPOperator::Decode(const double*& p, int& remaining) {
  Clear();
  for (;;) {
    const double v = ReadGenomeValue(p, remaining);
    if (IsGenomeEndMark(v)) break;
    inputs.Add(GenomeInt(v));
  }
  outputDim = GenomeInt(ReadGenomeValue(p, remaining));
  kind = GenomeInt(ReadGenomeValue(p, remaining));
  for (;;) {
    const double v = ReadGenomeValue(p, remaining);
    if (IsGenomeEndMark(v)) break;
    intParams.Add(GenomeInt(v));
  }
  for (;;) {
    const double v = ReadGenomeValue(p, remaining);
    if (IsGenomeEndMark(v)) break;
    doubleParams.Add(v);
  }
  AllocBuf();
}

bool VelqaSPOperator::IsSame(const VelqaSPOperator& other) const {
  return outputDim == other.outputDim && kind == other.kind && SameList(inputs, other.inputs) &&
         SameList(intParams, other.intParams) && SameList(doubleParams, other.doubleParams);
}

}  // namespace vorn
