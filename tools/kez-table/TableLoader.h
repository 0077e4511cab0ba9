// Reads the input file of kez-table into a table, checking what the library
// leaves to its callers.
//
// Errors (false, with a message): a file that cannot be read, a file in the
// header form when the plain form was insisted on, a file from which no table
// can be built, and a header-form file whose column types do not stand
// together (its values would land in other columns). Warnings (loaded, with
// a message): plain-form options on a header-form file, and a data line that
// ended the reading early.
#ifndef KEZ_TOOLS_KEZ_TABLE_TABLELOADER_H_
#define KEZ_TOOLS_KEZ_TABLE_TABLELOADER_H_

#include <string>
#include <vector>

#include "TableCommandLine.h"
#include "table/VelqaTimeSeriesDataTable.h"

namespace kez_table_tool {

struct LoadResult {
  bool headerForm = false;
  std::vector<std::string> warnings;
};

bool LoadTable(const CommandLine& line, VelqaTimeSeriesDataTable* table,
               LoadResult* result, std::string* error);

}  // namespace kez_table_tool

#endif  // KEZ_TOOLS_KEZ_TABLE_TABLELOADER_H_
