#include "search/VelqaSPFunction.h"

namespace vorn {

VelqaSPFunction::VelqaSPFunction() {}

VelqaSPFunction::VelqaSPFunction(const VelqaSPFunction& other) {
  // A copy that runs out of memory half way gives back what it had taken:
  // the destructor does not run for a constructor that throws.
  try {
    Set(other);
  } catch (...) {
    Clear();
    throw;
  }
}

VelqaSPFunction::~VelqaSPFunction() { Clear(); }

void VelqaSPFunction::Set(const VelqaSPFunction& source) {
  if (&source == this) return;
  Clear();
  weight = source.weight;
  discrete = source.discrete;
  fixedCount = source.fixedCount;
  for (int k = 0; k < source.operators.count; ++k) AddOperator(source.Operator(k));
}

void VelqaSPFunction::AddOperator(VelqaSPOperator& op) {
  // The copy and its cell belong to this call until the list holds them, so
  // that running out of memory on the way leaks neither.
  VelqaSPOperator* copy = new VelqaSPOperator(op);
  VelqaSPOperator** cell = nullptr;
  try {
    cell = new VelqaSPOperator*(copy);
    operators.Add(cell);
  } catch (...) {
    delete cell;
    delete copy;
    throw;
  }
}

void VelqaSPFunction::Clear() {
  fixedCount = 0;
  weight = 1.0;
  discrete = 0;
  for (int k = 0; k < operators.count; ++k) {
    VelqaSPOperator*& cell = *operators.data[k];
    delete cell;
    cell = nullptr;
  }
  operators.Clear();  // deletes the cells and releases the block
}

double VelqaSPFunction::Calc(const double* in) {
  VelqaSPOperator** const* cells = operators.data;
  const int count = operators.count;
  VelqaSPOperator* op = *cells[0];
  op->Calc(in);
  for (int k = 1; k < count; ++k) {
    VelqaSPOperator* next = *cells[k];
    next->Calc(op->output);
    op = next;
  }
  return op->output[0];
}

void VelqaSPFunction::ResetValue() {
  for (int k = 0; k < operators.count; ++k) Operator(k).history.Clear();
}

void VelqaSPFunction::FixPreprocessing(const FListP<VelqaSPFunction*>& others) {
  fixedCount = 0;
  for (int g = 0; g < others.count; ++g) {
    const VelqaSPFunction& other = **others.data[g];
    for (int k = 0; k < operators.count && k < other.operators.count; ++k) {
      if (!other.Operator(k).IsSame(Operator(k))) break;
      if (k >= fixedCount) fixedCount = k + 1;
    }
  }
}

bool VelqaSPFunction::IsSame(const VelqaSPFunction& other) const {
  if (operators.count != other.operators.count) return false;
  for (int k = 0; k < operators.count; ++k) {
    if (!Operator(k).IsSame(other.Operator(k))) return false;
  }
  return true;
}

}  // namespace vorn
