// kez-table: prepares time-series tables. Loads a table (header form, or a
// plain CSV such as a recorded battery log), applies operations in the order
// given, prints a summary and saves the result in the header form. Run it
// without arguments or with --help for the options.
#include <cstdio>
#include <string>

#include "TableCommandLine.h"
#include "TableLoader.h"
#include "TableOperations.h"
#include "TableSummary.h"
#include "table/VelqaTimeSeriesDataTable.h"

namespace {

int Fail(const std::string& message, int status) {
  std::fprintf(stderr, "kez-table: %s\n", message.c_str());
  return status;
}

int Run(int argc, char** argv) {
  using namespace kez_table_tool;
  if (argc < 2) {
    std::fputs(UsageText(), stdout);
    return 2;
  }
  CommandLine line;
  std::string error;
  if (!Parse(argc, argv, &line, &error)) return Fail(error, 2);
  if (line.help) {
    std::fputs(UsageText(), stdout);
    return 0;
  }

  VelqaTimeSeriesDataTable table;
  LoadResult loaded;
  if (!LoadTable(line, &table, &loaded, &error)) return Fail(error, 1);
  for (const std::string& w : loaded.warnings) {
    std::fprintf(stderr, "kez-table: warning: %s\n", w.c_str());
  }

  for (const Operation& op : line.operations) {
    if (!Apply(op, &table, &error)) return Fail(error, 1);
  }

  if (!line.quiet) PrintSummary(table, line.input, loaded.headerForm, stdout);

  if (!line.output.empty()) {
    const int lost = RowsWithoutTimeLabels(table);
    if (lost > 0) {
      std::fprintf(stderr,
                   "kez-table: warning: %d of %d rows will read back from %s "
                   "with another time, because their labels do not hold "
                   "their times (load with --keep-labels, or add --relabel)\n",
                   lost, table.dataNames.count, line.output.c_str());
    }
    table.fileName = "";
    table.SaveToFile(line.output.c_str());
    const char* written = table.fileName.text;
    if (written == nullptr || line.output != written) {
      return Fail("cannot write " + line.output, 1);
    }
    if (!line.quiet) {
      std::printf("saved      %s (%d rows, %d columns)\n", line.output.c_str(),
                  table.dataNames.count, table.cols.count);
    }
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) { return Run(argc, argv); }
