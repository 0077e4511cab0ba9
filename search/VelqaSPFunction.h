// VelqaSPFunction: a chain of operators that turns one raw record into one
// number, with the weight it carries in the neighbour distance and a flag
// that makes the search compare it by mismatch instead of squared difference.
//
// Operator 0 reads the function's input vector, operator k reads operator
// k-1's output; the value is element 0 of the last operator's output. The
// chain must not be empty when Calc runs.
#ifndef KEZ_SEARCH_VELQASPFUNCTION_H_
#define KEZ_SEARCH_VELQASPFUNCTION_H_

#include "foundation/FList.h"
#include "kez/export.h"
#include "search/VelqaSPOperator.h"

namespace vorn {

class KEZ_EXPORT VelqaSPFunction {
 public:
  FListP<VelqaSPOperator*> operators;  // cells holding owned operators
  int fixedCount = 0;  // leading operators shared with another function
  double weight = 1.0;
  int discrete = 0;

  VelqaSPFunction();
  VelqaSPFunction(const VelqaSPFunction& other);  // empty, then Set(other)
  VelqaSPFunction& operator=(const VelqaSPFunction&) = delete;
  virtual ~VelqaSPFunction();

  void Set(const VelqaSPFunction& source);
  void AddOperator(VelqaSPOperator& op);  // appends a heap copy
  void Clear();
  double Calc(const double* in);
  void ResetValue();
  void FixPreprocessing(const FListP<VelqaSPFunction*>& others);

  // Genome. Random choices draw from rand() in a fixed order.
  //
  // Same operator count and every operator IsSame; weight, flag and
  // fixedCount are not compared.
  bool IsSame(const VelqaSPFunction& other) const;
  // Appends: weight, discrete, each operator's code, -1.
  void Encode(FListT<double>& out) const;
  // Reads what Encode wrote (see VelqaSPOperator::Decode).
  void Decode(const double*& p, int& remaining);
  // A random weight in [1, 10000], then, from a random pool member when the
  // pool is not empty (its weight, flag and fixedCount replace the drawn
  // weight), random operators until one with a single output wins a coin
  // toss.
  void GenerateRandomly(int inputCount, const FListP<VelqaSPFunction*>& pool);
  // Mutates one operator after the shared leading ones, or multiplies the
  // weight by a factor in [0.1, 10] (a result below 1 is multiplied by 1000).
  void Mutate(int mutateOperator, int inputCount);

  int OperatorCount() const { return operators.count; }
  VelqaSPOperator& Operator(int k) const { return **operators.data[k]; }
};

}  // namespace vorn

#endif  // KEZ_SEARCH_VELQASPFUNCTION_H_
