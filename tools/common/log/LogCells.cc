#include "LogCells.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>

namespace kez_tools {

std::string TrimCell(const std::string& s) {
  size_t b = 0;
  size_t e = s.size();
  while (b < e && (s[b] == ' ' || s[b] == '\t' || s[b] == '\r')) ++b;
  while (e > b && (s[e - 1] == ' ' || s[e - 1] == '\t' || s[e - 1] == '\r')) --e;
  if (e - b >= 2 && s[b] == '"' && s[e - 1] == '"') {
    ++b;
    --e;
  }
  return s.substr(b, e - b);
}

std::vector<std::string> SplitCells(const std::string& line) {
  std::vector<std::string> cells;
  size_t start = 0;
  while (true) {
    size_t comma = line.find(',', start);
    if (comma == std::string::npos) {
      cells.push_back(TrimCell(line.substr(start)));
      return cells;
    }
    cells.push_back(TrimCell(line.substr(start, comma - start)));
    start = comma + 1;
  }
}

bool IsBlankLine(const std::string& line) {
  for (char c : line) {
    if (c != ' ' && c != '\t' && c != '\r') return false;
  }
  return true;
}

std::string LowerCase(std::string s) {
  for (char& c : s) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return s;
}

bool ParseNumberCell(const std::string& cell, double* value, std::string* why) {
  if (cell.empty()) {
    *why = "is empty";
    return false;
  }
  const char* begin = cell.c_str();
  char* end = nullptr;
  errno = 0;
  double v = std::strtod(begin, &end);
  if (end == begin || *end != '\0' ||
      // hexadecimal numbers are no log's business
      cell.find_first_of("xX") != std::string::npos) {
    *why = "is not a number: '" + cell + "'";
    return false;
  }
  if (!std::isfinite(v)) {
    *why = "is not a finite number: '" + cell + "'";
    return false;
  }
  *value = v;
  return true;
}

}  // namespace kez_tools
