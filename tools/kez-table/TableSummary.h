// The summary that kez-table prints: source and form, preamble, rows, time
// span, sequences, and per column its type, value type, stream, data range,
// mean and standard deviation (population), all computed from the values as
// they are now.
#ifndef KEZ_TOOLS_KEZ_TABLE_TABLESUMMARY_H_
#define KEZ_TOOLS_KEZ_TABLE_TABLESUMMARY_H_

#include <cstdio>
#include <string>

#include "table/VelqaTimeSeriesDataTable.h"

namespace kez_table_tool {

void PrintSummary(const VelqaTimeSeriesDataTable& table,
                  const std::string& source, bool headerForm, FILE* out);

}  // namespace kez_table_tool

#endif  // KEZ_TOOLS_KEZ_TABLE_TABLESUMMARY_H_
