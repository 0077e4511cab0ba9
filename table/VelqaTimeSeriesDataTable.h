// VelqaTimeSeriesDataTable: an offline, in-memory table of time-stamped rows
// and typed float columns, with its text file format and its column
// transformations (smoothing, differential, up-sampling).
//
// Columns are grouped into blocks by column type (block t holds the columns
// of type t, cols[first .. first + count - 1] of colBlocks[t]); the numerical
// columns of block 0 ("Observation") are further grouped into streams. Rows
// are grouped into sequences: runs of consecutive rows that start at the
// ascending row indexes of `sequenceStarts`; the transformations never look
// across a sequence boundary.
//
// Contract:
// - Every column holds one value per row; `dataNames` (one label per row)
//   gives the row count; `times` and `rowSequence` have one entry per row.
// - `streams`, `discreteCols`, the two factor lists and each column's
//   `indexInStream` are derived from block 0 by UpdateStreamInfo(), which
//   runs after every column insertion and deletion.
// - `rowSequence` and the column statistics are valid only after
//   UpdateStatistics() (or SetDummyData() or a successful LoadFromFile()) and
//   go stale with any later edit.
// - Nothing is validated: column, row and type indexes are the caller's
//   responsibility. Nothing is reported either: no messages, no exceptions.
// - Not copyable. Single-threaded.
#ifndef KEZ_TABLE_VELQATIMESERIESDATATABLE_H_
#define KEZ_TABLE_VELQATIMESERIESDATATABLE_H_

#include "foundation/FList.h"
#include "foundation/FString.h"
#include "foundation/FStringList.h"
#include "kez/export.h"
#include "table/VelqaTimeSeriesDataTableColBlockInfo.h"
#include "table/VelqaTimeSeriesDataTableColInfo.h"

class KEZ_EXPORT VelqaTimeSeriesDataTable {
 public:
  // Path of the file last written by SaveToFile(); empty after Clear().
  vorn::FString fileName;
  // Number of columns, kept beside the column list: +1 per InsertCol(), -1
  // per deleted column.
  int colCount = 0;
  // A distinguished column, -1 = none; column insertion and deletion keep it
  // on the same column.
  int markedCol = -1;
  // One block per column type; Clear() makes 8, all empty.
  vorn::FListP<VelqaTimeSeriesDataTableColBlockInfo> colBlocks;
  // The columns, ordered block by block.
  vorn::FListP<VelqaTimeSeriesDataTableColInfo> cols;
  // One label per row; its count is the row count.
  vorn::FStringList dataNames;
  // One time stamp per row.
  vorn::FListT<double> times;
  // Per row, the 0-based sequence it belongs to (-1 before the first start).
  vorn::FListT<int> rowSequence;
  // Ascending row indexes at which a sequence begins.
  vorn::FListT<int> sequenceStarts;
  // Indexes of the discrete columns of block 0.
  vorn::FListT<int> discreteCols;
  // Per stream number, the indexes of its numerical block-0 columns.
  vorn::FListP<vorn::FListT<int>> streams;
  // One factor per entry of `discreteCols` (1.0 when created).
  vorn::FListT<double> discreteColFactors;
  // One factor per stream (1.0 when created).
  vorn::FListT<double> streamFactors;
  // Lines found before the column-name line of a plain text file.
  vorn::FStringList headerLines;

  VelqaTimeSeriesDataTable();
  VelqaTimeSeriesDataTable(const VelqaTimeSeriesDataTable&) = delete;
  VelqaTimeSeriesDataTable& operator=(const VelqaTimeSeriesDataTable&) = delete;
  virtual ~VelqaTimeSeriesDataTable();

  // ---- Data model and columns -------------------------------------------

  // Empties everything (no rows, no columns, markedCol -1, fileName empty)
  // and leaves 8 empty blocks.
  void Clear();
  // Sets every row's label to the empty string.
  void ClearDataName();
  // Inserts a column at the end of block `colType` (or, for an empty block,
  // after all existing columns), filled with 0.0 for every existing row, and
  // returns its index. When the block already has columns, each of blocks 0
  // to 4 whose `first` is at or after the insertion point gets `first` set
  // to the inserted block's `first` + 1. That is not a plain shift by one;
  // this file format version lays blocks out that way on purpose, and files
  // keep their column order as long as each type's columns stand together.
  int InsertCol(int colType, vorn::FString name, int stream, int indexInStream,
                int valueType);
  // Destroys column `col`. Its block loses one column; each of blocks 0 to 4
  // whose `first` lies after `col` moves down by one.
  void DeleteCol(int col);
  // Deletes every column of block `colType`, last to first.
  void DeleteColBlock(int colType);
  // Index of the first column named exactly `name`, or -1.
  int SearchCol(vorn::FString name) const;
  // Grows the table (0.0 values, empty labels, time 0, sequence 0) until it
  // has more than `row` rows. Never shrinks; `sequenceStarts` is untouched.
  void IncreaseRow(int row);
  // IncreaseRow(row), then stores the value / time / label.
  void SetValue(int col, int row, float value);
  void SetTime(int row, double time);
  void SetDataName(int row, vorn::FString name);
  // Clear(), then observation columns "X" (stream 0) and "Y" (stream 1),
  // with statistics and streams; no rows.
  void SetDummyData();
  // Rebuilds `streams`, `discreteCols`, the factor lists (kept entries keep
  // their factors; new ones are 1.0) and `indexInStream` from block 0.
  // Stream numbers are expected to be dense and first used in increasing
  // order: each new stream number opens exactly one new stream, and a number
  // that skips ahead lands in that newest stream. A numerical column with a
  // negative stream belongs to no stream (indexInStream -1).
  void UpdateStreamInfo();
  // Rebuilds `rowSequence` from `sequenceStarts` (one entry per row), then
  // every column's statistics. The k-th "Expectation Output" column then
  // takes the display range of the table's k-th column, so that outputs and
  // the observations they predict share one scale.
  void UpdateStatistics();
  // Name of column type 0..4; the index is not checked.
  vorn::FString GetColTypeName(int colType) const;

  // ---- Text file format -------------------------------------------------
  //
  // Header form, as written:
  //   Name,<name>,<name>,...
  //   Col type,<type name>,...
  //   Value type,<Numerical|Discrete>,...
  //   Stream,<stream>,...          (empty cell for a negative stream)
  //   <label>,<value>,<value>,...  (one line per row, values "%.10g")
  // A row's time is carried by its label (the text after an optional "*"
  // read as a number); a label starting with "*" opens a new sequence, and
  // row 0 always opens one. Times and `headerLines` are not written.
  //
  // Plain form (read only): optional preamble lines, one line of column names
  // (first cell ignored), then data lines "<time>,<value>,...". Every value
  // column becomes a numerical observation column in stream 0.

  // Text of one cell of the grid: grid column 0 is the row header ("Name",
  // "Col type", "Value type", "Stream", then the labels), grid column k shows
  // table column k - 1; grid lines 0..3 are the header lines, line 4 + r is
  // row r. Empty for a negative grid line; other indexes are not checked.
  vorn::FString GetTableString(int gridCol, int gridLine) const;
  // Writes the header form. On success `fileName` becomes `path`; a file
  // that cannot be opened leaves everything as it was.
  void SaveToFile(vorn::FString path);
  // Clears the table and reads `path` in header form, or else in plain form.
  //   keepLabels   plain form: non-zero keeps each line's first cell as the
  //                row label (the time is read from it either way)
  //   colCountHint plain form: value cells per data line; 0 takes the count
  //                of the last non-empty line
  //   maxBytes     read at most this many bytes of the file (0 = all)
  //   lineStep     plain form: keep every lineStep-th data line (< 1 = 1)
  // A data line with too few values ends the reading; the rows before it
  // stay. True when a table was built (header form: always, even without
  // rows; plain form: when a column-name line was found). On true the
  // statistics and streams are rebuilt.
  bool LoadFromFile(vorn::FString path, int keepLabels, int colCountHint,
                    unsigned maxBytes, int lineStep);

  // ---- Row deletion -----------------------------------------------------

  // Removes row `row`: its value in every column, its label and its time.
  // Deliberately nothing else: `rowSequence` keeps its length,
  // `sequenceStarts` keeps its row indexes (a later start then points one
  // row late), statistics, blocks and streams stay. A caller that needs
  // sequences afterwards repairs `sequenceStarts` and runs
  // UpdateStatistics().
  void Delete(int row);

  // ---- Transformations --------------------------------------------------

  // Smooths the numerical columns of block `colType`, sequence by sequence.
  // Runs of rows in which no column of the block (discrete ones included)
  // changes become one point each (at the run's centre row, with the run's
  // value), and every row is recomputed from those points:
  //   mode 0: Gaussian kernel, each point as wide as its run and weighted
  //           1/length so that every run weighs the same in total;
  //   mode 1: natural cubic spline through the points;
  //   other:  nothing changes.
  // Discrete columns keep their values; statistics are not updated.
  void Smoothing(int colType, int mode);
  // Replaces column `col` by its first differences within each sequence
  // (the first row of a sequence becomes 0), then rebuilds the statistics.
  void Differential(int col);
  // Resamples every column to rows * factor rows by linear interpolation
  // between neighbouring rows (the last source row is held). Only values
  // move: the first rows keep their labels, times and sequence starts, the
  // added rows get empty labels and time 0, and statistics and streams are
  // not updated; callers that need them rebuild them. A product below 1
  // (no rows, factor 0 or less) or beyond the int range does nothing.
  void UpSampling(int factor);

 private:
  // Rows [begin, end) of sequence k, clipped to the rows that exist (after
  // row deletions a start may point past the end); empty when begin >= end.
  void SequenceBounds(int k, int* begin, int* end) const;
  void SmoothSequence(int colType, int mode, int begin, int end);
};

#endif  // KEZ_TABLE_VELQATIMESERIESDATATABLE_H_
