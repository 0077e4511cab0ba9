// For tests and benchmarks of the journal: the bundled example log
// (examples/routine-35d.csv, the tools' CSV columns in order) as the
// reports a host would make, one record per line.
#ifndef KEZ_JOURNAL_TESTING_BUNDLEDLOG_H_
#define KEZ_JOURNAL_TESTING_BUNDLEDLOG_H_

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "journal/JournalRecord.h"

namespace journal_testing {

inline std::vector<kez::JournalRecord> ReadBundledLog(const std::string& sourceDir) {
  std::vector<kez::JournalRecord> records;
  std::ifstream in(sourceDir + "/examples/routine-35d.csv");
  std::string line;
  std::getline(in, line);  // header
  while (std::getline(in, line)) {
    std::stringstream cells(line);
    std::string c[9];
    for (std::string& cell : c) std::getline(cells, cell, ',');
    kez::JournalRecord r;
    r.timeMs = std::strtoull(c[0].c_str(), nullptr, 10);
    r.levelPercent = std::strtof(c[1].c_str(), nullptr);
    r.charging = std::strtof(c[2].c_str(), nullptr);
    r.aux1 = std::strtof(c[3].c_str(), nullptr);
    r.aux2 = std::strtof(c[4].c_str(), nullptr);
    r.aux3 = std::strtof(c[5].c_str(), nullptr);
    r.countA = std::strtod(c[6].c_str(), nullptr);
    r.countB1 = std::strtod(c[7].c_str(), nullptr);
    r.countB2 = std::strtod(c[8].c_str(), nullptr);
    records.push_back(r);
  }
  return records;
}

}  // namespace journal_testing

#endif  // KEZ_JOURNAL_TESTING_BUNDLEDLOG_H_
