// kez-forecast-dump: feeds a battery log to libkez and prints its forecasts
// as hexadecimal floats, exactly as the library computed them.
//
// Usage: kez-forecast-dump [--lines | --status-lines] [--adaptive] [--every N]
//                          [--steps N] LOG.csv
//        kez-forecast-dump --records FILE
//
// The log is CSV with a header naming its columns: time_ms, level_percent and
// charging are required; aux1, aux2, aux3, countA, countB1 and countB2 are
// taken by name when present and are 0 otherwise. Each data row becomes one
// kez_addStatusValue call. With --lines every line that starts with a digit
// is handed to kez_addStatusValues as it stands (a status log line). With
// --status-lines each data row of the CSV log is rewritten as the host's
// status log line (time at column 0, level 2, charging 3, countB1 19,
// countB2 20, aux1..aux3 24..26, countA 29, the other columns empty, each
// value's text as the CSV holds it) and handed to kez_addStatusValues.
//
// After every N-th row (default 288, a day of 5-minute reports) and after the
// last one, all three forecast variants of `steps` steps (default 144) are
// printed, followed by the kez_forecast_find answers for "empty", "20 %",
// "80 %", "full" and "charging". With --adaptive every row also goes to an
// adaptive forecaster (kez_adaptive_report, or kez_adaptive_report_line),
// and its three variants and the weights of its methods at every step
// follow each instance forecast. Two builds of the library on different
// machines must print the same text byte for byte; the JVM tests compare
// the Java binding with it as well.
//
// With --records, FILE holds a made-up forecast instead of a log: one step
// per line, its level (a fraction) and its charging chance as decimal
// numbers. "records N" and the kez_forecast_find answers over those N steps
// are printed, so that the JVM tests can compare answers on levels placed
// exactly at a threshold or just beside it.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "kez/kez.h"

namespace {

std::vector<std::string> Split(const std::string& line) {
  std::vector<std::string> fields;
  std::string field;
  std::istringstream in(line);
  while (std::getline(in, field, ',')) fields.push_back(field);
  if (!line.empty() && line.back() == ',') fields.push_back("");
  return fields;
}

struct Query {
  int query;
  double threshold;
};

const Query kQueries[] = {
    {KEZ_QUERY_LEVEL_AT_OR_BELOW, 0.0},    {KEZ_QUERY_LEVEL_AT_OR_BELOW, 0.2},
    {KEZ_QUERY_LEVEL_AT_OR_ABOVE, 0.8},    {KEZ_QUERY_LEVEL_AT_OR_ABOVE, 1.0},
    {KEZ_QUERY_CHARGING_AT_OR_ABOVE, 0.5},
};

void PrintFinds(const stMobilePowerPredictionData* records, int steps) {
  for (const Query& q : kQueries) {
    std::printf("find %d %a %d\n", q.query, q.threshold,
                kez_forecast_find(records, steps, q.query, q.threshold));
  }
}

void PrintAdaptive(kez_adaptive* adaptive, int steps) {
  std::vector<stMobilePowerPredictionData> out(steps < 1 ? 1 : steps);
  const int methods = kez_adaptive_method_count();
  std::vector<double> weights(static_cast<size_t>(methods));
  for (int v = 0; v < 3; ++v) {
    for (auto& r : out) r = stMobilePowerPredictionData{0.0, 0.0, 0.0};
    const int result = kez_adaptive_predict(adaptive, v, steps, out.data());
    std::printf("adaptive variant %d result %d distance %a\n", v, result,
                out[0].distance);
    for (int k = 0; k < steps; ++k) {
      std::printf("adaptive step %d %a %a", k, out[k].level, out[k].charging);
      kez_adaptive_weights(adaptive, v, 0, k, weights.data(), methods);
      for (double w : weights) std::printf(" %a", w);
      std::printf("\n");
    }
  }
}

void PrintForecasts(kez_handle handle, long row, const std::string& time,
                    int steps) {
  std::printf("at row %ld time_ms %s\n", row, time.c_str());
  std::vector<stMobilePowerPredictionData> out(steps < 1 ? 1 : steps);
  int (*const variants[])(kez_handle, int, stMobilePowerPredictionData*) = {
      kez_predict, kez_predict_without_charging,
      kez_predict_at_charging_starting};
  for (int v = 0; v < 3; ++v) {
    for (auto& r : out) r = stMobilePowerPredictionData{0.0, 0.0, 0.0};
    const int result = variants[v](handle, steps, out.data());
    std::printf("variant %d result %d distance %a\n", v, result,
                out[0].distance);
    for (int k = 0; k < steps; ++k) {
      std::printf("step %d %a %a\n", k, out[k].level, out[k].charging);
    }
    PrintFinds(out.data(), steps);
  }
}

int PrintRecordFinds(const char* path) {
  std::ifstream in(path);
  if (!in) {
    std::fprintf(stderr, "kez-forecast-dump: cannot read %s\n", path);
    return 1;
  }
  std::vector<stMobilePowerPredictionData> records;
  std::string line;
  while (std::getline(in, line)) {
    const char* text = line.c_str();
    char* end = nullptr;
    const double level = std::strtod(text, &end);
    if (end == text) continue;  // a blank line
    const double charging = std::strtod(end, nullptr);
    records.push_back(stMobilePowerPredictionData{level, charging, 0.0});
  }
  std::printf("records %zu\n", records.size());
  PrintFinds(records.data(), static_cast<int>(records.size()));
  return 0;
}

// The host's status log line of one sample: 30 columns, the sample's values
// at their columns (texts[i] for names[i] of main's column list).
std::string StatusLineOf(const char* const texts[9]) {
  static const int kColumnOf[9] = {0, 2, 3, 24, 25, 26, 29, 19, 20};
  std::vector<std::string> columns(30);
  for (int i = 0; i < 9; ++i) columns[kColumnOf[i]] = texts[i];
  std::string line;
  for (int c = 0; c < 30; ++c) {
    if (c > 0) line += ',';
    line += columns[c];
  }
  return line;
}

int Usage() {
  std::fprintf(stderr,
               "usage: kez-forecast-dump [--lines | --status-lines] [--adaptive] "
               "[--every N] [--steps N] LOG.csv\n"
               "       kez-forecast-dump --records FILE\n");
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  bool lines = false, with_adaptive = false;
  bool status_lines = false;
  long every = 288;
  int steps = 144;
  const char* path = nullptr;
  if (argc == 3 && std::strcmp(argv[1], "--records") == 0) {
    return PrintRecordFinds(argv[2]);
  }
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--lines") == 0) {
      lines = true;
    } else if (std::strcmp(argv[i], "--adaptive") == 0) {
      with_adaptive = true;
    } else if (std::strcmp(argv[i], "--status-lines") == 0) {
      status_lines = true;
    } else if (std::strcmp(argv[i], "--every") == 0 && i + 1 < argc) {
      every = std::atol(argv[++i]);
    } else if (std::strcmp(argv[i], "--steps") == 0 && i + 1 < argc) {
      steps = std::atoi(argv[++i]);
    } else if (argv[i][0] != '-' && path == nullptr) {
      path = argv[i];
    } else {
      return Usage();
    }
  }
  if (path == nullptr || every < 1 || steps < 0 || (lines && status_lines)) {
    return Usage();
  }
  std::ifstream in(path);
  if (!in) {
    std::fprintf(stderr, "kez-forecast-dump: cannot read %s\n", path);
    return 1;
  }

  char version[16];
  kez_get_version(version, sizeof version);
  std::printf("version %s\n", version);
  kez_handle handle = kez_init();
  kez_adaptive* adaptive = with_adaptive ? kez_adaptive_init() : nullptr;
  std::map<std::string, int> column;
  const char* names[] = {"time_ms", "level_percent", "charging",
                         "aux1",    "aux2",          "aux3",
                         "countA",  "countB1",       "countB2"};
  std::string line;
  std::string time;
  long row = 0;
  bool printed_last = false;
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    const bool data = !line.empty() && line[0] >= '0' && line[0] <= '9';
    if (!data) {
      if (!lines && column.empty()) {
        const std::vector<std::string> header = Split(line);
        for (size_t i = 0; i < header.size(); ++i) column[header[i]] = int(i);
        for (int i = 0; i < 3; ++i) {
          if (!column.count(names[i])) {
            std::fprintf(stderr, "kez-forecast-dump: no column %s\n", names[i]);
            return 1;
          }
        }
      }
      continue;
    }
    const std::vector<std::string> f = Split(line);
    time = f.empty() ? std::string() : f[0];
    if (lines) {
      kez_addStatusValues(handle, line.c_str());
      if (adaptive != nullptr) kez_adaptive_report_line(adaptive, line.c_str());
    } else {
      if (column.empty()) {
        std::fprintf(stderr, "kez-forecast-dump: %s has no header\n", path);
        return 1;
      }
      auto text = [&](int name) -> const char* {
        auto it = column.find(names[name]);
        if (it == column.end() || size_t(it->second) >= f.size()) return "0";
        return f[it->second].c_str();
      };
      time = text(0);
      if (status_lines) {
        const char* const texts[9] = {text(0), text(1), text(2),
                                      text(3), text(4), text(5),
                                      text(6), text(7), text(8)};
        const std::string status = StatusLineOf(texts);
        kez_addStatusValues(handle, status.c_str());
        if (adaptive != nullptr) kez_adaptive_report_line(adaptive, status.c_str());
      } else {
        kez_addStatusValue(handle, std::strtoull(text(0), nullptr, 10),
                           std::strtof(text(1), nullptr),
                           std::strtof(text(2), nullptr),
                           std::strtof(text(3), nullptr),
                           std::strtof(text(4), nullptr),
                           std::strtof(text(5), nullptr),
                           std::strtod(text(6), nullptr),
                           std::strtod(text(7), nullptr),
                           std::strtod(text(8), nullptr));
        if (adaptive != nullptr) {
          kez_adaptive_report(adaptive, std::strtoull(text(0), nullptr, 10),
                              std::strtof(text(1), nullptr),
                              std::strtof(text(2), nullptr),
                              std::strtof(text(3), nullptr),
                              std::strtof(text(4), nullptr),
                              std::strtof(text(5), nullptr),
                              std::strtod(text(6), nullptr),
                              std::strtod(text(7), nullptr),
                              std::strtod(text(8), nullptr));
        }
      }
    }
    ++row;
    printed_last = row % every == 0;
    if (printed_last) {
      PrintForecasts(handle, row, time, steps);
      if (adaptive != nullptr) PrintAdaptive(adaptive, steps);
    }
  }
  if (!printed_last) {
    PrintForecasts(handle, row, time, steps);
    if (adaptive != nullptr) PrintAdaptive(adaptive, steps);
  }
  kez_adaptive_stop(adaptive);
  kez_stop(handle);
  return 0;
}
