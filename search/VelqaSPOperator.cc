#include "search/VelqaSPOperator.h"

#include <cmath>

namespace vorn {

namespace {

const double kTwoPi = 6.283185307179586;
const double kPi = 3.141592653589793;
const double kMinusPi = -3.141592653589793;
const double kMinusTwoPi = -6.283185307179586;

}  // namespace

const VelqaSPOperatorKind kOperatorKinds[kOperatorKindCount] = {
    {0x100, "abs", 0, 0, 0, 0},
    {0x110, "sqr", 0, 0, 0, 0},
    {0x120, "sqrt", 0, 0, 0, 0},
    {0x130, "posi", 0, 0, 0, 0},
    {0x140, "nega", 0, 0, 0, 0},
    {0x210, "mean", -1, 1, 0, 0},
    {0x220, "stdev", -1, 1, 0, 0},
    {0x230, "norm", -1, 1, 0, 0},
    {0x300, "differential", 0, 0, 0, 0},
    {0x310, "factor", 0, 0, 0, 0},
    {0x320, "lo_pass_filter", 0, 0, 0, 1},
    {0x400, "angle", 2, 1, 0, 0},
    {0x410, "angle_diff", 0, 0, 0, 0},
    {0x500, "peak_hold", 2, 1, 0, 0},
};

VelqaSPOperator::VelqaSPOperator() {}

VelqaSPOperator::VelqaSPOperator(const VelqaSPOperator& other)
    : inputs(other.inputs),
      outputDim(other.outputDim),
      kind(other.kind),
      intParams(other.intParams),
      doubleParams(other.doubleParams) {
  AllocBuf();
}

VelqaSPOperator::~VelqaSPOperator() { Clear(); }

void VelqaSPOperator::AllocBuf() {
  // Zero-filled so that a kind which writes nothing (an unknown code) still
  // leaves defined values behind.
  output = outputDim > 0 ? new double[outputDim]() : nullptr;
}

void VelqaSPOperator::ClearBuf() {
  delete[] output;
  output = nullptr;
  history.Clear();
}

void VelqaSPOperator::Clear() {
  ClearBuf();
  inputs.Clear();
  intParams.Clear();
  doubleParams.Clear();
  outputDim = 0;
  kind = 0;
}

void VelqaSPOperator::SetOutputDim(int n) {
  ClearBuf();
  outputDim = n;
  AllocBuf();
}

const char* VelqaSPOperator::KindName(int code) {
  if (code == kSelectKind) return "select";
  for (const VelqaSPOperatorKind& k : kOperatorKinds) {
    if (k.code == code) return k.name;
  }
  return "?";
}

// Element-wise kinds with state share one shape: the first call after a reset
// (or after the input count changed) outputs zeros, every call stores its
// inputs for the next one.
static inline void StoreHistory(FListT<double>& h, const double* in, const FListT<int>& inputs) {
  const int n = inputs.count;
  for (int i = 0; i < n; ++i) {
    const double x = in[inputs.data[i]];
    if (i < h.count) {
      h.data[i] = x;
    } else {
      h.Add(x);
    }
  }
}

void VelqaSPOperator::Calc(const double* in) {
  const int n = inputs.count;
  const int* idx = inputs.data;
  double* out = output;
  switch (kind) {
    case 0x100:
      for (int i = 0; i < n; ++i) out[i] = std::fabs(in[idx[i]]);
      break;
    case 0x110:
      for (int i = 0; i < n; ++i) {
        const double x = in[idx[i]];
        out[i] = x * x;
      }
      break;
    case 0x120:
      for (int i = 0; i < n; ++i) {
        const double x = in[idx[i]];
        out[i] = x > 0.0 ? std::sqrt(x) : 0.0;
      }
      break;
    case 0x130:
      // -0.0 and NaN both come out as +0.0.
      for (int i = 0; i < n; ++i) {
        const double x = in[idx[i]];
        out[i] = x > 0.0 ? x : 0.0;
      }
      break;
    case 0x140:
      // Zeros keep their sign; NaN comes out as +0.0.
      for (int i = 0; i < n; ++i) {
        const double x = in[idx[i]];
        out[i] = x <= 0.0 ? x : 0.0;
      }
      break;
    case kSelectKind:
      for (int i = 0; i < n; ++i) out[i] = in[idx[i]];
      break;
    case 0x210: {
      double sum = 0.0;
      for (int i = 0; i < n; ++i) sum += in[idx[i]];
      out[0] = sum / static_cast<double>(n);
      break;
    }
    case 0x220: {
      // The root of the summed squared deviations, deliberately not divided
      // by the input count: it grows with the number of inputs.
      double sum = 0.0;
      for (int i = 0; i < n; ++i) sum += in[idx[i]];
      const double m = sum / static_cast<double>(n);
      double squares = 0.0;
      for (int i = 0; i < n; ++i) {
        const double d = in[idx[i]] - m;
        squares += d * d;
      }
      out[0] = std::sqrt(squares);
      break;
    }
    case 0x230: {
      double squares = 0.0;
      for (int i = 0; i < n; ++i) {
        const double x = in[idx[i]];
        squares += x * x;
      }
      out[0] = std::sqrt(squares);
      break;
    }
    case 0x300:
      if (history.count != n) {
        for (int i = 0; i < n; ++i) out[i] = 0.0;
      } else {
        for (int i = 0; i < n; ++i) out[i] = in[idx[i]] - history.data[i];
      }
      StoreHistory(history, in, inputs);
      break;
    case 0x310:
      if (history.count != n) {
        for (int i = 0; i < n; ++i) out[i] = 0.0;
      } else {
        for (int i = 0; i < n; ++i) {
          const double h = history.data[i];
          out[i] = h != 0.0 ? in[idx[i]] / h : 0.0;
        }
      }
      StoreHistory(history, in, inputs);
      break;
    case 0x410:
      if (history.count != n) {
        for (int i = 0; i < n; ++i) out[i] = 0.0;
      } else {
        // Angles of 2*pi or more (the mark of an undefined angle) and NaN
        // give no change.
        for (int i = 0; i < n; ++i) {
          const double x = in[idx[i]];
          const double h = history.data[i];
          if (x < kTwoPi && h < kTwoPi) {
            double d = std::fmod(x - h, kTwoPi);
            while (d < kMinusPi) d += kTwoPi;
            while (d >= kPi) d += kMinusTwoPi;
            out[i] = d;
          } else {
            out[i] = 0.0;
          }
        }
      }
      StoreHistory(history, in, inputs);
      break;
    case 0x320: {
      const double a = doubleParams.data[0];
      for (int i = 0; i < n; ++i) {
        const double x = in[idx[i]];
        if (i >= history.count) {
          history.Add(x);  // the filter starts at its first input
        } else {
          history.data[i] = x * a + (1 - a) * history.data[i];
        }
        out[i] = history.data[i];
      }
      break;
    }
    case 0x400: {
      const double x = in[idx[0]];
      const double y = in[idx[1]];
      out[0] = (x == 0.0 && y == 0.0) ? kTwoPi : std::atan2(y, x);
      break;
    }
    case 0x500: {
      if (history.count < 1) history.Add(0.0);
      // The held maximum restarts from 0 whenever the gate closes.
      if (in[idx[1]] > 0.0) {
        const double x = in[idx[0]];
        if (x > history.data[0]) history.data[0] = x;
      } else {
        history.data[0] = 0.0;
      }
      out[0] = history.data[0];
      break;
    }
    default:
      break;  // unknown codes leave output and history untouched
  }
}

}  // namespace vorn
