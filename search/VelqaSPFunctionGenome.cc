// The function's genome: random generation, mutation and the flat double
// encoding. Random choices draw from rand() in a fixed order.
#include <cmath>
#include <cstdlib>

#include "foundation/Random.h"
#include "search/GenomeCode.h"
#include "search/VelqaSPFunction.h"

namespace vorn {

void VelqaSPFunction::Encode(FListT<double>& out) const {
  out.Add(weight);
  out.Add(static_cast<double>(discrete));
  for (int k = 0; k < operators.count; ++k) Operator(k).Encode(out);
  out.Add(kGenomeEndMark);
}

void VelqaSPFunction::Decode(const double*& p, int& remaining) {
  Clear();
  weight = ReadGenomeValue(p, remaining);
  discrete = GenomeInt(ReadGenomeValue(p, remaining));
  VelqaSPOperator op;
  for (;;) {
    // An end mark where the next operator's first input would stand ends
    // the function.
    if (remaining <= 0 || IsGenomeEndMark(*p)) {
      ReadGenomeValue(p, remaining);
      break;
    }
    op.Decode(p, remaining);
    AddOperator(op);
  }
}

void VelqaSPFunction::GenerateRandomly(int inputCount, const FListP<VelqaSPFunction*>& pool) {
  Clear();
  weight = std::pow(10.0, 4.0 * rand_double());  // 1 .. 10000, even in logarithm
  unsigned n = static_cast<unsigned>(inputCount);
  if (pool.count > 0) {
    // Grow from a pool member. Its weight, flag and fixedCount replace the
    // weight just drawn; that draw still happens, so the rand() sequence
    // stays the same whether a pool is given or not.
    const int pick =
        static_cast<int>(static_cast<unsigned>(rand()) % static_cast<unsigned>(pool.count));
    Set(**pool.data[pick]);
    if (operators.count > 0) n = static_cast<unsigned>(Operator(operators.count - 1).outputDim);
  }
  VelqaSPOperator op;
  for (;;) {
    unsigned width = 0;
    op.GenerateRandomly(n, width);
    if (width == 0) break;  // no input to read from: nothing can be generated
    AddOperator(op);
    n = width;
    if (width == 1 && (rand() & 1) == 0) break;
  }
}

void VelqaSPFunction::Mutate(int mutateOperator, int inputCount) {
  (void)inputCount;  // the operator path reads its width from the chain
  const int total = operators.count;
  const int f = fixedCount;
  if (mutateOperator != 0 && total > f) {
    const int k =
        static_cast<int>(static_cast<unsigned>(rand()) % static_cast<unsigned>(total - f)) + f;
    if (k + 1 < total) {
      // Operator 0 and the shared leading operators are never touched.
      Operator(k + 1).Mutate(Operator(k).outputDim);
      return;
    }
  }
  weight = weight * std::pow(10.0, 2.0 * rand_double() - 1.0);  // x 0.1 .. 10
  // Weights stay at 1 or above: a step below 1 jumps up by 1000 on purpose.
  if (weight < 1.0) weight = weight * 1000.0;
}

}  // namespace vorn
