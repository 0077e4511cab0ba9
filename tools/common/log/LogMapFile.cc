#include "LogMapFile.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <set>

namespace kez_tools {
namespace {

std::string Trim(const std::string& s) {
  size_t b = 0;
  size_t e = s.size();
  while (b < e && (s[b] == ' ' || s[b] == '\t' || s[b] == '\r')) ++b;
  while (e > b && (s[e - 1] == ' ' || s[e - 1] == '\t' || s[e - 1] == '\r')) --e;
  return s.substr(b, e - b);
}

}  // namespace

bool ReadLogMap(std::istream& in, const std::string& source,
                LogReadOptions* options, std::string* error) {
  std::string line;
  std::set<std::string> seen;
  int number = 0;
  while (std::getline(in, line)) {
    ++number;
    const std::string where = source + ":" + std::to_string(number) + ": ";
    std::string text = Trim(line);
    if (text.empty() || text[0] == '#') continue;
    size_t equals = text.find('=');
    if (equals == std::string::npos) {
      *error = where + "not a 'key = value' line: '" + text + "'";
      return false;
    }
    std::string key = Trim(text.substr(0, equals));
    std::string value = Trim(text.substr(equals + 1));
    if (!seen.insert(key).second) {
      *error = where + "'" + key + "' is set twice";
      return false;
    }
    std::string why;
    if (!ApplyLogSetting(key, value, options, &why)) {
      *error = where + why;
      return false;
    }
  }
  if (in.bad()) {
    *error = source + ": read error";
    return false;
  }
  return true;
}

bool LoadLogMapFile(const std::string& path, LogReadOptions* options,
                    std::string* error) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    *error = path + ": cannot open: " + std::strerror(errno);
    return false;
  }
  return ReadLogMap(file, path, options, error);
}

}  // namespace kez_tools
