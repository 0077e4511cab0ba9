// Model evolution members of VelqaSPBase (offline tuning): the feature list's
// genome, the spread of a feature, reordering by spread, and one random,
// duplicate-free change of the feature set.
#include <cmath>
#include <cstdlib>

#include "search/VelqaSPBase.h"

namespace vorn {

namespace {

enum Change { kAdd, kReplace, kModify, kRemove };

int RandBelow(int n) {
  return static_cast<int>(static_cast<unsigned>(rand()) % static_cast<unsigned>(n));
}

VelqaSPFunction*& FunctionCell(FListP<VelqaSPFunction*>& list, int i) { return *list.data[i]; }

bool HasDuplicateChains(const FListP<VelqaSPFunction*>& list) {
  for (int i = 0; i < list.count; ++i) {
    for (int j = i + 1; j < list.count; ++j) {
      if ((**list.data[i]).IsSame(**list.data[j])) return true;
    }
  }
  return false;
}

}  // namespace

void VelqaSPBase::EncodeFeature(FListT<double>& code) const {
  for (int i = 0; i < featureFunctions.count; ++i) (**featureFunctions.data[i]).Encode(code);
}

void VelqaSPBase::DecodeFeature(const double* code, int length) {
  ClearBuf();
  for (int i = 0; i < featureFunctions.count; ++i) {
    delete FunctionCell(featureFunctions, i);
    FunctionCell(featureFunctions, i) = nullptr;
  }
  featureFunctions.Clear();
  const double* p = code;
  int remaining = length;
  // Stops once the code is used up; a code that ends inside a function
  // yields that function truncated (reads never pass the given length).
  VelqaSPFunction function;
  while (remaining > 0) {
    function.Decode(p, remaining);
    featureFunctions.Add(new VelqaSPFunction*(new VelqaSPFunction(function)));
  }
  AllocBuf();
}

double VelqaSPBase::GetFeatureStDev(int feature) {
  const int N = static_cast<int>(storedCount);
  const int64_t F = featureFunctions.count;
  double sum = 0.0;
  for (int a = 0; a < N; ++a) sum += featureBuffer[SlotOfAge(a) * F + feature];
  const double mean = sum / static_cast<double>(N);
  double squares = 0.0;
  for (int a = 0; a < N; ++a) {
    const double d = featureBuffer[SlotOfAge(a) * F + feature] - mean;
    squares += d * d;
  }
  return std::sqrt(squares / static_cast<double>(N));  // population spread; NaN when empty
}

void VelqaSPBase::OptimizeFeatureOrder() {
  const int F = featureFunctions.count;
  FListT<double> spread;
  for (int i = 0; i < F; ++i) spread.Add(GetFeatureStDev(i));
  // Insertion sort, descending and stable; a NaN spread never moves.
  for (int j = 1; j < F; ++j) {
    for (int k = j; k > 0 && spread[k] > spread[k - 1]; --k) {
      const double s = spread[k];
      spread[k] = spread[k - 1];
      spread[k - 1] = s;
      VelqaSPFunction* f = FunctionCell(featureFunctions, k);
      FunctionCell(featureFunctions, k) = FunctionCell(featureFunctions, k - 1);
      FunctionCell(featureFunctions, k - 1) = f;
    }
  }
  ClearBuf();  // the stored values belong to the old order
  AllocBuf();
}

void VelqaSPBase::Mutate(int level, const FListP<VelqaSPFunction*>& pool) {
  for (int i = 0; i < featureFunctions.count; ++i) {
    FunctionCell(featureFunctions, i)->FixPreprocessing(pool);
  }
  const VelqaSPBase backup(*this);

  const int F = featureFunctions.count;
  Change changes[4];
  int changeCount = 0;
  if (level != 0) {
    changes[changeCount++] = kAdd;
    // Replace and modify need a function to work on.
    if (F >= 1) {
      changes[changeCount++] = kReplace;
      changes[changeCount++] = kModify;
    }
    if (F >= 2) changes[changeCount++] = kRemove;
  } else if (F >= 1) {
    changes[changeCount++] = kModify;
  }
  if (changeCount == 0) return;

  const int n = static_cast<int>(rawSize);
  for (;;) {
    switch (changes[RandBelow(changeCount)]) {
      case kAdd: {
        VelqaSPFunction f;
        f.GenerateRandomly(n, pool);
        AddFeatureFunction(f);
        break;
      }
      case kModify: {
        ClearBuf();
        const int i = RandBelow(featureFunctions.count);
        FunctionCell(featureFunctions, i)->Mutate(level, n);
        AllocBuf();
        break;
      }
      case kReplace: {
        ClearBuf();
        const int i = RandBelow(featureFunctions.count);
        delete FunctionCell(featureFunctions, i);
        FunctionCell(featureFunctions, i) = nullptr;
        VelqaSPFunction f;
        f.GenerateRandomly(n, pool);
        FunctionCell(featureFunctions, i) = new VelqaSPFunction(f);
        AllocBuf();
        break;
      }
      case kRemove: {
        ClearBuf();
        const int i = RandBelow(featureFunctions.count);
        delete FunctionCell(featureFunctions, i);
        FunctionCell(featureFunctions, i) = nullptr;
        featureFunctions.Delete(i);
        AllocBuf();
        break;
      }
    }
    if (featureFunctions.count < 2 || !HasDuplicateChains(featureFunctions)) return;
    // The change made two chains identical: undo it and draw another.
    Clear();
    Set(backup);
  }
}

}  // namespace vorn
