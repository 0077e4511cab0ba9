// kez-table: prepares time-series tables. Loads a table (header form, or a
// plain CSV such as a recorded battery log), applies operations in the order
// given, prints a summary and saves the result in the header form. Run it
// without arguments or with --help for the options.
//
// With --log or any of the other tools' log-reading options, FILE is read as
// they read battery logs (any column names, time units, level scales and
// charging codes) and the table is loaded from the log's samples, in the
// columns the tools write: time_ms, level_percent, charging, aux1, aux2,
// aux3, countA, countB1, countB2.
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "CommonOptions.h"
#include "LogWriter.h"
#include "TableCommandLine.h"
#include "TableLoader.h"
#include "TableOperations.h"
#include "TableSummary.h"
#include "table/VelqaTimeSeriesDataTable.h"

namespace {

const char kLogHelp[] =
    "\n"
    "Battery logs:\n"
    "  --log              read FILE as the other tools read battery logs, and\n"
    "                     load its samples in the columns time_ms,\n"
    "                     level_percent, charging, aux1 .. countB2; implied\n"
    "                     by any of the options below\n"
    KEZ_READ_OPTIONS_HELP;

// A folder of its own for the log's samples in the tools' CSV; removed with
// what is in it.
class TempLog {
 public:
  ~TempLog() {
    if (!path_.empty()) std::remove(path_.c_str());
    if (!dir_.empty()) rmdir(dir_.c_str());
  }
  // Writes `log` as CSV; false when it cannot.
  bool Write(const kez_tools::Log& log) {
    std::string base = std::string(P_tmpdir) + "/kez-table-XXXXXX";
    std::vector<char> name(base.begin(), base.end());
    name.push_back('\0');
    if (mkdtemp(name.data()) == nullptr) return false;
    dir_ = name.data();
    path_ = dir_ + "/log.csv";
    std::ofstream out(path_, std::ios::binary);
    kez_tools::WriteCsv(out, log);
    out.flush();
    return static_cast<bool>(out);
  }
  const std::string& path() const { return path_; }

 private:
  std::string dir_;
  std::string path_;
};

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
  // The log-reading options are the other tools'; the rest is kez-table's.
  std::vector<std::string> args(argv + 1, argv + argc);
  std::string error;
  kez_tools::LogReadSettings read_settings;
  if (!kez_tools::ExtractLogReadOptions(&args, &read_settings, &error)) {
    return Fail(error, 2);
  }
  bool as_log = !read_settings.map_path.empty() ||
                !read_settings.settings.empty();
  std::vector<char*> rest = {argv[0]};
  for (std::string& a : args) {
    if (a == "--log") {
      as_log = true;
    } else {
      rest.push_back(&a[0]);
    }
  }
  CommandLine line;
  if (!Parse(static_cast<int>(rest.size()), rest.data(), &line, &error)) {
    return Fail(error, 2);
  }
  if (line.help) {
    std::fputs(UsageText(), stdout);
    std::fputs(kLogHelp, stdout);
    return 0;
  }
  const std::string input = line.input;
  TempLog temp;
  if (as_log) {
    kez_tools::LogReadOptions read_options;
    kez_tools::Log log;
    const kez_tools::ToolMessages messages("kez-table");
    if (!kez_tools::ResolveLogReadOptions(read_settings,
                                          kez_tools::LogFormat::kCsv,
                                          &read_options, &error) ||
        !messages.ReadLog(input, read_options, &log, &error)) {
      return Fail(error, 1);
    }
    if (!temp.Write(log)) {
      return Fail("cannot write the log's samples to a temporary file", 1);
    }
    line.input = temp.path();
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

  if (!line.quiet) PrintSummary(table, input, loaded.headerForm, stdout);

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
