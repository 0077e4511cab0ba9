// The command line of kez-table: reading options, the operations in the order
// given, and the output options.
//
// Parse() checks the syntax only (known options, option values present,
// numbers whole and in range, one input file); whether a named column or row
// exists is checked when the operation runs on the loaded table.
#ifndef KEZ_TOOLS_KEZ_TABLE_TABLECOMMANDLINE_H_
#define KEZ_TOOLS_KEZ_TABLE_TABLECOMMANDLINE_H_

#include <string>
#include <vector>

namespace kez_table_tool {

// One operation on the loaded table, with its arguments as typed.
struct Operation {
  enum Kind { kSmooth, kDiff, kUpsample, kDeleteRow, kDeleteCol,
              kMarkSequence, kRelabel };
  Kind kind;
  std::vector<std::string> args;
  std::string text;  // the operation as written, for messages
};

struct CommandLine {
  bool help = false;
  std::string input;
  // Reading options; `plainOption` names the first plain-form option given.
  bool plain = false;
  bool keepLabels = false;
  int columns = 0;
  unsigned maxBytes = 0;
  int lineStep = 1;
  std::string plainOption;
  std::vector<Operation> operations;
  std::string output;
  bool quiet = false;
};

// Parses argv[1..argc-1]. False with *error on a syntax error.
bool Parse(int argc, char** argv, CommandLine* line, std::string* error);

// Column type (block) number 0..4 of a type name (any letter case) or of
// its number; -1 when `text` is neither.
int BlockNumber(const std::string& text);

// The text printed by --help.
const char* UsageText();

}  // namespace kez_table_tool

#endif  // KEZ_TOOLS_KEZ_TABLE_TABLECOMMANDLINE_H_
