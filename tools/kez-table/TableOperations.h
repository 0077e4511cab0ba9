// The operations of kez-table on a loaded table, with the checks and the
// bookkeeping that the library leaves to its callers.
//
// Each operation first checks that the columns, rows and blocks it names
// exist (false with a message otherwise, the table unchanged). Row labels
// carry the times and the sequence marks ("*") into the saved file, so the
// operations that move rows or sequences keep them in step: --upsample
// interpolates the times as well as the values, scales the sequence starts
// and rewrites the labels; --delete-row repairs the sequence starts (a
// deleted first row hands the start, and a "*", to the row after it);
// --mark-sequence puts a "*" on the row's label.
#ifndef KEZ_TOOLS_KEZ_TABLE_TABLEOPERATIONS_H_
#define KEZ_TOOLS_KEZ_TABLE_TABLEOPERATIONS_H_

#include <string>

#include "TableCommandLine.h"
#include "table/VelqaTimeSeriesDataTable.h"

namespace kez_table_tool {

// Applies `op`; false with *error when it cannot.
bool Apply(const Operation& op, VelqaTimeSeriesDataTable* table,
           std::string* error);

// Column named `text`, or else the column whose 0-based index `text` is;
// -1 when there is neither.
int FindColumn(const VelqaTimeSeriesDataTable& table, const std::string& text);

// The shortest text of `time` that reads back as exactly `time`.
std::string TimeText(double time);

// Sets every row's label to its time, with "*" in front at the start of
// every sequence after the first row.
void Relabel(VelqaTimeSeriesDataTable* table);

// Number of rows whose label does not read back as the row's time.
int RowsWithoutTimeLabels(const VelqaTimeSeriesDataTable& table);

}  // namespace kez_table_tool

#endif  // KEZ_TOOLS_KEZ_TABLE_TABLEOPERATIONS_H_
