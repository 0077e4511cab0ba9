// VelqaSPBase: the learner's memory and its neighbour search.
//
// A ring of the `memorySize` most recent steps; each slot holds the raw
// record that was fed in, the value of every feature function and of every
// prediction function computed on it. Search() finds the past moments whose
// recent window of feature values best matches the present window and
// returns them best first, as relative indices (0 = the newest step, -1 the
// one before it) with their weighted distances.
//
// A raw record whose first element is greater than 1e306 is a gap: it is
// stored (searches see it) but the functions keep reading the last valid
// record, and every function is reset after it.
//
// Configuration changes (functions, sizes, lagCount, lagStride, neighbourMax,
// lagDecay) are bracketed by ClearBuf() / AllocBuf() and empty the memory.
// A lagStride below 1 is not accepted: AllocBuf() sets it to 1 (and the
// searches read any stride below 1 as 1), so no lag walk can run for ever.
// Once configured, AddMemory, Search and kNNSearch allocate nothing
// themselves; the only allocation on that path is a stateful operator's
// history regrowing (one block) at its first step after a reset, that is at
// the first step after a gap or after ResetValue().
// One thread owns an object; even searches write its scratch members.
//
// Search computes each candidate's distance in one fixed order of terms and
// may stop a candidate as soon as its partial sum is beyond the bound; it
// scans several candidates at once where the processor has vector registers
// (DistanceScan). Neighbours, their order and their distances are the same
// to the last bit on every processor and every version of the scan.
//
// Searches return nothing when the memory is not configured, when
// searchOffset is negative, or (kNNSearch) when lagCount is below 1.
#ifndef KEZ_SEARCH_VELQASPBASE_H_
#define KEZ_SEARCH_VELQASPBASE_H_

#include <cstdint>

#include "foundation/FList.h"
#include "kez/export.h"
#include "search/VelqaSPFunction.h"

namespace vorn {

class KEZ_EXPORT VelqaSPBase {
 public:
  FListP<VelqaSPFunction*> featureFunctions;     // owned; F = count
  FListP<VelqaSPFunction*> predictionFunctions;  // owned; P = count
  uint32_t memorySize = 0;    // M: slots in the ring
  uint32_t rawSize = 0;       // R: doubles in one raw record
  uint32_t neighbourMax = 32; // K: most neighbours a search returns
  double* rawBuffer = nullptr;         // M x R, slot-major
  double* rawInput = nullptr;          // R: last valid raw record
  double* featureBuffer = nullptr;     // M x F
  double* predictionBuffer = nullptr;  // M x P
  uint32_t writePos = 0;      // slot the next AddMemory writes
  uint32_t storedCount = 0;   // slots holding data, 0..M
  int32_t lagCount = 8;       // L: steps of history a search compares
  int32_t lagStride = 1;      // S: step between compared lags (>= 1)
  double lagDecay = 1.0;      // weight factor per compared lag
  int32_t searchOffset = 0;   // O: age of the newest candidate
  double* distanceWeights = nullptr;  // L x F allocated, ceil(L/S) x F used
  double** lagRows = nullptr;         // M + L: feature row of each age
  int32_t* neighbourIndex = nullptr;  // K: result indices, best first
  double* neighbourDistance = nullptr;  // K: result distances, ascending

  VelqaSPBase();
  VelqaSPBase(const VelqaSPBase& source);
  VelqaSPBase& operator=(const VelqaSPBase& source);
  virtual ~VelqaSPBase();

  // Makes this a copy of `source`: configuration, functions (fresh, without
  // operator history), stored steps. Scratch is not copied. Of the weight
  // table only lagCount x (prediction function count) values are taken from
  // the source, on purpose; the rest is this object's own, as AllocBuf built
  // it from the copied functions.
  void Set(const VelqaSPBase& source);
  void Clear();     // back to the unconfigured default
  void AllocBuf();  // sizes every buffer and builds the weight table
  void ClearBuf();  // releases every buffer; the memory is empty
  void SetSize(int memorySize, int rawSize);
  // Append a heap copy of `function`; the memory is emptied.
  void AddFeatureFunction(VelqaSPFunction& function);
  void AddPredictionFunction(VelqaSPFunction& function);

  // Stores one step of rawSize values and computes its feature and
  // prediction values.
  void AddMemory(const double* raw);
  // The neighbourMax past moments whose last lagCount steps best match the
  // present ones and that were followed by futureSteps valid steps; best
  // first, ties newest first. `index` and `distance` hold neighbourMax
  // elements or are null.
  void Search(int futureSteps, int& count, int* index, double* distance);
  // Nearest stored rows to one feature vector, on the first weight row only.
  void kNNSearch(const double* query, int& count, int* index, double* distance);
  // Restarts the functions and forgets the stored steps (buffers stay).
  void ResetValue();

  // Rows at relative index i: 0 = newest, -1 the one before, 1 = the slot the
  // next AddMemory overwrites. Not range checked.
  double* GetRAWBuffer(int i);
  double* GetFeatureBuffer(int i);
  double* GetPredictionBuffer(int i);

  // Model evolution (offline). Each of these except EncodeFeature and
  // GetFeatureStDev empties the memory.
  //
  // The feature functions' genomes, in list order.
  void EncodeFeature(FListT<double>& code) const;
  // Replaces the feature functions by those decoded from `length` values;
  // stops when the values are used up.
  void DecodeFeature(const double* code, int length);
  // Population standard deviation of one feature over the stored steps
  // (NaN when nothing is stored).
  double GetFeatureStDev(int feature);
  // Sorts the features by decreasing spread (stable).
  void OptimizeFeatureOrder();
  // One random change of the feature set (add, replace, modify or remove;
  // modify only at level 0), redrawn until no two features have identical
  // chains. `pool` holds the chains that count as shared preprocessing.
  void Mutate(int level, const FListP<VelqaSPFunction*>& pool);

 private:
  int64_t SlotOfAge(int age) const;      // slot of the step `age` steps old
  int64_t SlotOfRelative(int i) const;   // slot of relative index i
  bool ValidAtAge(int age) const;        // raw[0] <= 1e306 at that age
  void FillLagRows();                    // lagRows[a] for every stored age
  bool SearchReady() const;              // buffers and offset usable
  // Fills lagRows for every stored age and candidateExamined for the first
  // `candidates` candidates (followed by futureSteps valid steps or not).
  void PrepareCandidates(int futureSteps, int candidates);
  void DeliverNeighbours(int size, int& count, int* index, double* distance) const;

  // Search scratch, M bytes: 1 for a candidate whose distance is computed.
  uint8_t* candidateExamined = nullptr;
  // Search scratch, laid out as distanceWeights: the kind of each weight
  // (ScanKindOf), taken afresh from the weights at every search.
  uint8_t* weightKinds = nullptr;
};

}  // namespace vorn

#endif  // KEZ_SEARCH_VELQASPBASE_H_
