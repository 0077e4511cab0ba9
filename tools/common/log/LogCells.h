// The cells of a log's line: split at commas, trimmed of blanks and of
// surrounding double quotes, and read as numbers whole or not at all.
#ifndef KEZ_TOOLS_COMMON_LOG_LOGCELLS_H_
#define KEZ_TOOLS_COMMON_LOG_LOGCELLS_H_

#include <string>
#include <vector>

namespace kez_tools {

// " \"40\" " -> "40".
std::string TrimCell(const std::string& s);
// "1000, 40 ,0" -> {"1000", "40", "0"}.
std::vector<std::string> SplitCells(const std::string& line);
// True for a line of blanks only (spaces, tabs, a carriage return).
bool IsBlankLine(const std::string& line);
// ASCII letters in lower case.
std::string LowerCase(std::string s);

// Reads a whole cell as a finite decimal number. On failure returns false and
// puts the reason into *why: "is empty", "is not a number: 'x'", "is not a
// finite number: 'inf'".
bool ParseNumberCell(const std::string& cell, double* value, std::string* why);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_LOG_LOGCELLS_H_
