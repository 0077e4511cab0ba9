#include "TableCommandLine.h"

#include <cerrno>
#include <climits>
#include <cstdlib>

namespace kez_table_tool {

namespace {

const char kUsage[] =
    "Usage: kez-table [reading options] FILE [operations] [-o OUT]\n"
    "\n"
    "Loads a time-series table, applies the operations in the order given,\n"
    "prints a summary (columns, rows, sequences) and saves the result in the\n"
    "header form.\n"
    "\n"
    "FILE is read in the header form when its first four lines are the\n"
    "Name, Col type, Value type and Stream lines; otherwise in the plain\n"
    "form: optional preamble lines, one line of column names, then data lines\n"
    "whose first cell is the time. A recorded battery log CSV (header line,\n"
    "then numbers) loads in the plain form.\n"
    "\n"
    "Reading options:\n"
    "  --plain            insist on the plain form\n"
    "  --keep-labels      plain form: keep each data line's first cell as the\n"
    "                     row label (the saved file carries times in labels)\n"
    "  --columns N        plain form: N value cells per data line (default: as\n"
    "                     many as the last line has)\n"
    "  --max-bytes N      read at most N bytes of FILE\n"
    "  --line-step N      plain form: keep every N-th data line\n"
    "\n"
    "Operations (COL is a column name, or a 0-based index when no column has\n"
    "that name; ROW is a 0-based row; BLOCK is a column type name such as\n"
    "Observation, or its number 0-4):\n"
    "  --smooth BLOCK kernel|spline\n"
    "                     smooth the numerical columns of a block, sequence by\n"
    "                     sequence, by a Gaussian kernel or a cubic spline\n"
    "  --diff COL         replace a column by its differences within each\n"
    "                     sequence (0 at every sequence start)\n"
    "  --upsample N       N rows for every row, values and times interpolated\n"
    "                     linearly; labels are rewritten from the times\n"
    "  --delete-row ROW   delete a row\n"
    "  --delete-col COL   delete a column\n"
    "  --mark-sequence ROW\n"
    "                     start a new sequence at a row (its label gets '*')\n"
    "  --relabel          set every row's label to its time ('*' marks the\n"
    "                     start of a sequence), so that the saved file keeps\n"
    "                     the times\n"
    "\n"
    "Output:\n"
    "  -o, --output OUT   save the result in the header form\n"
    "  -q, --quiet        do not print the summary\n"
    "  -h, --help         show this text\n"
    "\n"
    "Nothing is written when a step fails. Exit status: 0 done, 1 a file or an\n"
    "operation failed, 2 the command line is wrong.\n";

// Whole decimal number in [lo, hi].
bool ParseWhole(const std::string& text, long long lo, long long hi,
                long long* value) {
  if (text.empty()) return false;
  errno = 0;
  char* end = nullptr;
  const long long v = std::strtoll(text.c_str(), &end, 10);
  if (errno != 0 || *end != '\0' || v < lo || v > hi) return false;
  *value = v;
  return true;
}

// Checks the arguments of an operation whose form does not depend on the
// table: numbers, the smoothing method, the block.
bool CheckOperation(const Operation& op, std::string* error) {
  long long v = 0;
  switch (op.kind) {
    case Operation::kUpsample:
      if (!ParseWhole(op.args[0], 1, INT_MAX, &v)) {
        *error = op.text + ": the factor must be a whole number from 1";
        return false;
      }
      return true;
    case Operation::kDeleteRow:
    case Operation::kMarkSequence:
      if (!ParseWhole(op.args[0], 0, INT_MAX, &v)) {
        *error = op.text + ": a row is a whole number from 0";
        return false;
      }
      return true;
    case Operation::kSmooth:
      if (BlockNumber(op.args[0]) < 0) {
        *error = op.text + ": unknown block '" + op.args[0] +
                 "' (Observation, State Index, Expectation Output, "
                 "Recognized Index, Unknown, or 0-4)";
        return false;
      }
      if (op.args[1] != "kernel" && op.args[1] != "spline") {
        *error = op.text + ": the method is kernel or spline";
        return false;
      }
      return true;
    default:
      return true;
  }
}

}  // namespace

int BlockNumber(const std::string& text) {
  static const char* const kNames[] = {"observation", "state index",
                                       "expectation output",
                                       "recognized index", "unknown"};
  std::string lower;
  for (char c : text) {
    lower += static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  }
  for (int i = 0; i < 5; ++i) {
    if (lower == kNames[i] || lower == std::to_string(i)) return i;
  }
  return -1;
}

const char* UsageText() { return kUsage; }

bool Parse(int argc, char** argv, CommandLine* line, std::string* error) {
  std::vector<std::string> args(argv + 1, argv + argc);
  size_t next = 0;
  // The value of option `name`; false with an error when it is missing.
  auto take = [&](const std::string& name, std::string* value) {
    if (next >= args.size()) {
      *error = name + " needs a value";
      return false;
    }
    *value = args[next++];
    return true;
  };
  auto whole = [&](const std::string& name, long long lo, long long hi,
                   long long* value) {
    std::string text;
    if (!take(name, &text)) return false;
    if (!ParseWhole(text, lo, hi, value)) {
      *error = name + ": '" + text + "' is not a whole number from " +
               std::to_string(lo) + " to " + std::to_string(hi);
      return false;
    }
    return true;
  };
  auto operation = [&](Operation::Kind kind, const std::string& name,
                       int count) {
    Operation op;
    op.kind = kind;
    op.text = name;
    for (int i = 0; i < count; ++i) {
      std::string value;
      if (!take(name, &value)) {
        if (count > 1) *error = name + " needs " + std::to_string(count) + " values";
        return false;
      }
      op.args.push_back(value);
      op.text += " " + value;
    }
    if (!CheckOperation(op, error)) return false;
    line->operations.push_back(op);
    return true;
  };

  while (next < args.size()) {
    const std::string arg = args[next++];
    long long v = 0;
    if (arg == "-h" || arg == "--help") {
      line->help = true;
      return true;
    } else if (arg == "--plain") {
      line->plain = true;
    } else if (arg == "--keep-labels") {
      line->keepLabels = true;
      if (line->plainOption.empty()) line->plainOption = arg;
    } else if (arg == "--columns") {
      if (!whole(arg, 0, INT_MAX, &v)) return false;
      line->columns = static_cast<int>(v);
      if (line->plainOption.empty()) line->plainOption = arg;
    } else if (arg == "--max-bytes") {
      if (!whole(arg, 0, UINT_MAX, &v)) return false;
      line->maxBytes = static_cast<unsigned>(v);
    } else if (arg == "--line-step") {
      if (!whole(arg, 1, INT_MAX, &v)) return false;
      line->lineStep = static_cast<int>(v);
      if (line->plainOption.empty()) line->plainOption = arg;
    } else if (arg == "--smooth") {
      if (!operation(Operation::kSmooth, arg, 2)) return false;
    } else if (arg == "--diff") {
      if (!operation(Operation::kDiff, arg, 1)) return false;
    } else if (arg == "--upsample") {
      if (!operation(Operation::kUpsample, arg, 1)) return false;
    } else if (arg == "--delete-row") {
      if (!operation(Operation::kDeleteRow, arg, 1)) return false;
    } else if (arg == "--delete-col") {
      if (!operation(Operation::kDeleteCol, arg, 1)) return false;
    } else if (arg == "--mark-sequence") {
      if (!operation(Operation::kMarkSequence, arg, 1)) return false;
    } else if (arg == "--relabel") {
      if (!operation(Operation::kRelabel, arg, 0)) return false;
    } else if (arg == "-o" || arg == "--output") {
      if (!take(arg, &line->output)) return false;
      if (line->output.empty()) {
        *error = arg + " needs a file name";
        return false;
      }
    } else if (arg == "-q" || arg == "--quiet") {
      line->quiet = true;
    } else if (arg.size() > 1 && arg[0] == '-') {
      *error = "unknown option " + arg + " (see --help)";
      return false;
    } else if (line->input.empty()) {
      line->input = arg;
    } else {
      *error = "more than one input file: '" + line->input + "' and '" + arg +
               "'";
      return false;
    }
  }
  if (line->input.empty()) {
    *error = "no input file (see --help)";
    return false;
  }
  return true;
}

}  // namespace kez_table_tool
