#include "table/VelqaTimeSeriesDataTableColInfo.h"

#include <cmath>

VelqaTimeSeriesDataTableColInfo::VelqaTimeSeriesDataTableColInfo() {}

VelqaTimeSeriesDataTableColInfo::VelqaTimeSeriesDataTableColInfo(
    const VelqaTimeSeriesDataTableColInfo& other)
    : vorn::FListT<float>() {
  *this = other;
}

VelqaTimeSeriesDataTableColInfo& VelqaTimeSeriesDataTableColInfo::operator=(
    const VelqaTimeSeriesDataTableColInfo& other) {
  if (this == &other) return *this;
  Clear();
  for (int i = 0; i < other.count; ++i) Add(other.data[i]);
  name = other.name;
  colType = other.colType;
  valueType = other.valueType;
  stream = other.stream;
  indexInStream = other.indexInStream;
  max = other.max;
  min = other.min;
  mean = other.mean;
  stdev = other.stdev;
  return *this;
}

VelqaTimeSeriesDataTableColInfo::~VelqaTimeSeriesDataTableColInfo() {}

void VelqaTimeSeriesDataTableColInfo::UpdateStatistics() {
  const int n = count;
  if (n == 0) {
    max = 1.0f;
    min = 0.0f;
    mean = 0.5;
    stdev = 1.0;
    return;
  }
  if (valueType != 0) {
    max = 1.0f;
    min = 0.0f;
  } else {
    max = -1e37f;
    min = 1e37f;
  }
  // `mean` is not reset here on purpose (see the header).
  for (int i = 0; i < n; ++i) {
    const float v = data[i];
    if (v > max) max = v;
    if (v < min) min = v;
    mean += static_cast<double>(v);
  }
  mean = mean / n;
  stdev = 0.0;
  for (int i = 0; i < n; ++i) {
    const double dev = static_cast<double>(data[i]) - mean;
    stdev += dev * dev;
  }
  stdev = std::sqrt(stdev / n);

  if (valueType == 0) {
    const double width = static_cast<double>(max) - static_cast<double>(min);
    const double margin = width * 0.1;
    if (width != 0.0) {
      max = static_cast<float>(static_cast<double>(max) + margin);
      min = static_cast<float>(static_cast<double>(min) - margin);
    } else {
      max = static_cast<float>(static_cast<double>(max) + 1.0);
    }
  } else {
    max += 0.49999899f;
    min -= 0.49999899f;
  }
}
