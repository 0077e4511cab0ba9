// Fuzz target: the time-series table file reader
// (VelqaTimeSeriesDataTable::LoadFromFile), header form and plain form.
//
// The first input byte picks the reader's options (keepLabels, colCountHint
// 0..3, lineStep 0..3, and a maxBytes of 0 or 64); the rest is the file.
// After a successful load the table must be consistent (one value per row in
// every column, one time and one sequence number per row, ascending sequence
// starts), and a table that is saved again must load again with the same
// rows and columns.
#include <cstddef>
#include <cstdint>

#include "FuzzInput.h"
#include "table/VelqaTimeSeriesDataTable.h"

namespace {

void CheckConsistent(const VelqaTimeSeriesDataTable& t) {
  const int rows = t.dataNames.count;
  KEZ_FUZZ_CHECK(t.times.count == rows);
  KEZ_FUZZ_CHECK(t.rowSequence.count == rows);
  KEZ_FUZZ_CHECK(t.colCount == t.cols.count);
  for (int c = 0; c < t.cols.count; ++c) KEZ_FUZZ_CHECK(t.cols[c]->count == rows);
  for (int i = 1; i < t.sequenceStarts.count; ++i) {
    KEZ_FUZZ_CHECK(t.sequenceStarts[i - 1] < t.sequenceStarts[i]);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const uint8_t options = data[0];
  const int keepLabels = options & 1;
  const int colCountHint = (options >> 1) & 3;
  const int lineStep = (options >> 3) & 3;
  const unsigned maxBytes = (options & 0x20) != 0 ? 64u : 0u;
  kez_fuzz::TempFile file("table", data + 1, size - 1);
  if (!file.ok()) return 0;

  VelqaTimeSeriesDataTable table;
  if (!table.LoadFromFile(vorn::FString(file.path()), keepLabels, colCountHint, maxBytes,
                          lineStep)) {
    return 0;
  }
  CheckConsistent(table);

  kez_fuzz::TempFile copy("table-copy", nullptr, 0);
  table.SaveToFile(vorn::FString(copy.path()));
  VelqaTimeSeriesDataTable again;
  const bool reloaded = again.LoadFromFile(vorn::FString(copy.path()), 1, 0, 0, 1);
  if (reloaded) CheckConsistent(again);
  if (table.cols.count > 0) {
    KEZ_FUZZ_CHECK(reloaded);
    KEZ_FUZZ_CHECK(again.cols.count == table.cols.count);
    KEZ_FUZZ_CHECK(again.dataNames.count == table.dataNames.count);
  }
  return 0;
}
