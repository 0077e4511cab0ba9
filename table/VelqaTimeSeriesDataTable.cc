#include "table/VelqaTimeSeriesDataTable.h"

using vorn::FListT;
using vorn::FString;

VelqaTimeSeriesDataTable::VelqaTimeSeriesDataTable() { Clear(); }

VelqaTimeSeriesDataTable::~VelqaTimeSeriesDataTable() {}

void VelqaTimeSeriesDataTable::Clear() {
  fileName = "";
  colCount = 0;
  markedCol = -1;
  colBlocks.Clear();
  cols.Clear();
  dataNames.Clear();
  times.Clear();
  rowSequence.Clear();
  sequenceStarts.Clear();
  discreteCols.Clear();
  streams.Clear();
  discreteColFactors.Clear();
  streamFactors.Clear();
  headerLines.Clear();
  for (int i = 0; i < 8; ++i) {
    colBlocks.Add(new VelqaTimeSeriesDataTableColBlockInfo());
  }
}

void VelqaTimeSeriesDataTable::ClearDataName() {
  for (int r = 0; r < dataNames.count; ++r) *dataNames[r] = "";
}

int VelqaTimeSeriesDataTable::InsertCol(int colType, FString name, int stream,
                                        int indexInStream, int valueType) {
  VelqaTimeSeriesDataTableColBlockInfo* block = colBlocks[colType];
  int pos;
  if (block->count != 0) {
    pos = block->first + block->count;
    ++block->count;
    // Later blocks take the inserted block's first + 1, not their own first
    // + 1: this is how this format version lays out its blocks.
    for (int t = 0; t < 5; ++t) {
      if (colBlocks[t]->first >= pos) colBlocks[t]->first = block->first + 1;
    }
  } else {
    pos = cols.count;
    block->first = pos;
    block->count = 1;
  }
  if (markedCol >= pos) ++markedCol;

  VelqaTimeSeriesDataTableColInfo* col =
      cols.Insert(pos, VelqaTimeSeriesDataTableColInfo());
  col->name = name;
  col->colType = colType;
  col->valueType = valueType;
  col->stream = stream;
  col->indexInStream = indexInStream;
  for (int r = 0; r < dataNames.count; ++r) col->Add(0.0f);

  ++colCount;
  UpdateStreamInfo();
  return pos;
}

void VelqaTimeSeriesDataTable::DeleteCol(int col) {
  const int colType = cols[col]->colType;
  cols.Delete(col);
  --colBlocks[colType]->count;
  for (int t = 0; t < 5; ++t) {
    if (colBlocks[t]->first > col) --colBlocks[t]->first;
  }
  if (markedCol == col) {
    markedCol = -1;
  } else if (markedCol > col) {
    --markedCol;
  }
  --colCount;
  UpdateStreamInfo();
}

void VelqaTimeSeriesDataTable::DeleteColBlock(int colType) {
  const int first = colBlocks[colType]->first;
  const int count = colBlocks[colType]->count;
  for (int c = first + count - 1; c >= first; --c) DeleteCol(c);
}

int VelqaTimeSeriesDataTable::SearchCol(FString name) const {
  for (int c = 0; c < cols.count; ++c) {
    if (cols[c]->name == name) return c;
  }
  return -1;
}

void VelqaTimeSeriesDataTable::IncreaseRow(int row) {
  while (dataNames.count <= row) {
    for (int c = 0; c < cols.count; ++c) cols[c]->Add(0.0f);
    dataNames.Add(new FString());
    times.Add(0.0);
    rowSequence.Add(0);
  }
}

void VelqaTimeSeriesDataTable::SetValue(int col, int row, float value) {
  IncreaseRow(row);
  (*cols[col])[row] = value;
}

void VelqaTimeSeriesDataTable::SetTime(int row, double time) {
  IncreaseRow(row);
  times[row] = time;
}

void VelqaTimeSeriesDataTable::SetDataName(int row, FString name) {
  IncreaseRow(row);
  *dataNames[row] = name;
}

void VelqaTimeSeriesDataTable::SetDummyData() {
  Clear();
  InsertCol(0, "X", 0, 0, 0);
  InsertCol(0, "Y", 1, 0, 0);
  UpdateStatistics();
  UpdateStreamInfo();
}

namespace {

// Resizes a factor list to `n` entries: surplus ones leave from the end,
// missing ones arrive as 1.0, the others keep their values.
void ResizeFactors(FListT<double>* factors, int n) {
  while (factors->count > n) factors->Delete(factors->count - 1);
  while (factors->count < n) factors->Add(1.0);
}

}  // namespace

void VelqaTimeSeriesDataTable::UpdateStreamInfo() {
  discreteCols.Clear();
  streams.Clear();
  const VelqaTimeSeriesDataTableColBlockInfo* block = colBlocks[0];
  for (int c = block->first; c < block->first + block->count; ++c) {
    VelqaTimeSeriesDataTableColInfo* col = cols[c];
    if (col->valueType != 0) {
      discreteCols.Add(c);
      col->indexInStream = 0;
      continue;
    }
    const int s = col->stream;
    if (s < 0) {
      col->indexInStream = -1;
      continue;
    }
    if (streams.count <= s) streams.Add(new FListT<int>());
    FListT<int>* members = streams[s < streams.count ? s : streams.count - 1];
    col->indexInStream = members->count;
    members->Add(c);
  }
  ResizeFactors(&discreteColFactors, discreteCols.count);
  ResizeFactors(&streamFactors, streams.count);
}

void VelqaTimeSeriesDataTable::UpdateStatistics() {
  const int rows = dataNames.count;
  while (rowSequence.count > rows) rowSequence.Delete(rowSequence.count - 1);
  while (rowSequence.count < rows) rowSequence.Add(0);
  int sequence = -1;
  int cursor = 0;
  for (int r = 0; r < rows; ++r) {
    if (cursor < sequenceStarts.count && r == sequenceStarts[cursor]) {
      ++sequence;
      ++cursor;
    }
    rowSequence[r] = sequence;
  }

  for (int c = 0; c < colCount; ++c) {
    VelqaTimeSeriesDataTableColInfo* col = cols[c];
    col->UpdateStatistics();
    if (col->colType == 2) {
      const VelqaTimeSeriesDataTableColInfo* scale =
          cols[c - colBlocks[2]->first];
      col->max = scale->max;
      col->min = scale->min;
    }
  }
}

FString VelqaTimeSeriesDataTable::GetColTypeName(int colType) const {
  // Built once, on first use; they live as long as the library.
  static const FString kNames[5] = {"Observation", "State Index",
                                    "Expectation Output", "Recognized Index",
                                    "Unknown"};
  return kNames[colType];
}

void VelqaTimeSeriesDataTable::SequenceBounds(int k, int* begin,
                                              int* end) const {
  const int rows = dataNames.count;
  int s = sequenceStarts[k];
  int e = k + 1 < sequenceStarts.count ? sequenceStarts[k + 1] : rows;
  if (s < 0) s = 0;
  if (e > rows) e = rows;
  *begin = s;
  *end = e;
}
