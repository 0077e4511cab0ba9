// For tests that check CSV output by its values: the rows of a CSV text
// (no quoting: the tools' CSV holds no commas inside fields), each split at
// commas; a newline at the end adds no empty row.
#ifndef KEZ_TESTS_SUPPORT_CSV_ROWS_H_
#define KEZ_TESTS_SUPPORT_CSV_ROWS_H_

#include <string>
#include <vector>

namespace kez_testing {

inline std::vector<std::vector<std::string>> CsvRows(const std::string& csv) {
  std::vector<std::vector<std::string>> rows;
  std::size_t start = 0;
  while (start < csv.size()) {
    std::size_t nl = csv.find('\n', start);
    if (nl == std::string::npos) nl = csv.size();
    std::string line = csv.substr(start, nl - start);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    std::vector<std::string> fields;
    std::size_t f = 0;
    for (;;) {
      const std::size_t comma = line.find(',', f);
      fields.push_back(line.substr(f, comma == std::string::npos ? std::string::npos : comma - f));
      if (comma == std::string::npos) break;
      f = comma + 1;
    }
    rows.push_back(std::move(fields));
    start = nl + 1;
  }
  return rows;
}

}  // namespace kez_testing

#endif  // KEZ_TESTS_SUPPORT_CSV_ROWS_H_
