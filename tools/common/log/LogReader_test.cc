// Reading logs: columns by name, the host's status lines, the recorded data
// sets, and every kind of bad input with its message. Also the writer's
// output read back.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "LogReader.h"
#include "LogWriter.h"

namespace kez_tools {
namespace {

bool Read(const std::string& text, Log* log, std::string* error,
          LogFormat format = LogFormat::kCsv) {
  std::istringstream in(text);
  return ReadLog(in, "t.csv", format, log, error);
}

// Reads text that must be rejected and returns the message.
std::string Reject(const std::string& text,
                   LogFormat format = LogFormat::kCsv) {
  Log log;
  std::string error;
  EXPECT_FALSE(Read(text, &log, &error, format)) << text;
  return error;
}

// A status line with the given values at the columns the host uses.
std::string StatusLine(const std::string& time, const std::string& level,
                       const std::string& charging, int columns = 32) {
  std::string line = time + ",x," + level + "," + charging;
  for (int c = 4; c < columns; ++c) {
    std::string v = "0";
    if (c == 19) v = "3";
    if (c == 20) v = "4";
    if (c == 24) v = "31.5";
    if (c == 25) v = "3.9";
    if (c == 26) v = "2";
    if (c == 29) v = "12";
    if (c == 31) v = "tag";
    line += "," + v;
  }
  return line + "\n";
}

TEST(LogReader, ColumnsAreFoundByNameInAnyOrder) {
  Log log;
  std::string error;
  ASSERT_TRUE(Read("countB2,charging,aux3,time_ms,extra,level_percent,aux1,"
                   "countA,aux2,countB1\n"
                   "9,1,3,1000,zzz,55,21.5,7,2.5,8\n",
                   &log, &error))
      << error;
  ASSERT_EQ(log.samples.size(), 1u);
  const LogSample& s = log.samples[0];
  EXPECT_EQ(s.time_ms, 1000);
  EXPECT_EQ(s.level_percent, 55);
  EXPECT_EQ(s.charging, 1);
  EXPECT_EQ(s.aux1, 21.5);
  EXPECT_EQ(s.aux2, 2.5);
  EXPECT_EQ(s.aux3, 3);
  EXPECT_EQ(s.count_a, 7);
  EXPECT_EQ(s.count_b1, 8);
  EXPECT_EQ(s.count_b2, 9);
  EXPECT_EQ(s.line_number, 2);
  EXPECT_TRUE(s.line.empty());
}

TEST(LogReader, OptionalColumnsAbsentOrEmptyReadAsZero) {
  Log log;
  std::string error;
  ASSERT_TRUE(Read("time_ms,level_percent,charging,aux1\r\n"
                   "# a comment\n"
                   "\n"
                   " 1000 , \"40\" ,0,\r\n"
                   "2000,39,0,22\n",
                   &log, &error))
      << error;
  ASSERT_EQ(log.samples.size(), 2u);
  EXPECT_EQ(log.samples[0].level_percent, 40);
  EXPECT_EQ(log.samples[0].aux1, 0);
  EXPECT_EQ(log.samples[0].count_a, 0);
  EXPECT_EQ(log.samples[1].aux1, 22);
  EXPECT_EQ(log.samples[1].line_number, 5);
}

TEST(LogReader, RecordedDataSetsReadAsTheyAre) {
  for (const char* name :
       {"android-aware-2021-02.csv", "iphone-powerlog-2025-12.csv"}) {
    std::string path = std::string(KEZ_SOURCE_DIR) + "/../shared/data/" + name;
    Log log;
    std::string error;
    if (!ReadLogFile(path, LogFormat::kCsv, &log, &error) &&
        error.find("cannot open") != std::string::npos) {
      GTEST_SKIP() << "recorded data not present: " << path;
    }
    ASSERT_TRUE(error.empty()) << error;
    EXPECT_GT(log.samples.size(), 3000u) << name;
    EXPECT_EQ(log.samples[0].aux1, 0) << "unknown columns are not mapped";
  }
}

TEST(LogReader, StatusLinesReadTheHostsColumns) {
  Log log;
  std::string error;
  std::string text = StatusLine("1600000000000", "50", "1") +
                     StatusLine("1600000300000", "51", "1", 30);
  ASSERT_TRUE(Read(text, &log, &error, LogFormat::kStatusLines)) << error;
  ASSERT_EQ(log.samples.size(), 2u);
  const LogSample& s = log.samples[0];
  EXPECT_EQ(s.time_ms, 1600000000000);
  EXPECT_EQ(s.level_percent, 50);
  EXPECT_EQ(s.charging, 1);
  EXPECT_EQ(s.count_b1, 3);
  EXPECT_EQ(s.count_b2, 4);
  EXPECT_EQ(s.aux1, 31.5);
  EXPECT_EQ(s.aux2, 3.9);
  EXPECT_EQ(s.aux3, 2);
  EXPECT_EQ(s.count_a, 12);
  EXPECT_EQ(s.line + "\n", StatusLine("1600000000000", "50", "1"));
}

TEST(LogReader, RejectsBadInputWithLineAndReason) {
  const std::string h = "time_ms,level_percent,charging\n";
  struct Case {
    std::string text;
    std::string message;
  } cases[] = {
      {"", "t.csv: the log is empty"},
      {"\n\n", "t.csv: the log is empty (no header)"},
      {h, "t.csv: the log holds no sample"},
      {"when,level,charging\n1,2,0\n",
       "t.csv:1: the header has no column 'time_ms' nor any other time "
       "column"},
      {"1000,50,0\n", "use --status-lines"},
      {"time_ms,level_percent,charging,time_ms\n", "names column 'time_ms' twice"},
      {h + "1000,50\n", "t.csv:2: 2 cells, but the header has 3"},
      {h + "1000,50,0,7\n", "t.csv:2: 4 cells, but the header has 3"},
      {h + "1000,fifty,0\n",
       "t.csv:2: column 'level_percent' is not a number: 'fifty'"},
      {h + "1000,,0\n", "t.csv:2: column 'level_percent' is empty"},
      {h + "1000,nan,0\n", "t.csv:2: column 'level_percent' is not a finite"},
      {h + "inf,50,0\n", "column 'time_ms' is not a finite number: 'inf'"},
      {h + "0x10,50,0\n", "column 'time_ms' is not a number"},
      {h + "1000.5,50,0\n", "t.csv:2: time 1000.5 is not a whole number"},
      {h + "-5,50,0\n", "time -5 is not a whole number of milliseconds >= 0"},
      {h + "1000,101,0\n", "t.csv:2: level 101 % is outside 0..100"},
      {h + "1000,50,2\n", "t.csv:2: charging 2 is outside 0..1"},
      {h + "2000,50,0\n1999,50,0\n",
       "t.csv:3: time goes backwards: 1999 is 1 ms before line 2"},
  };
  for (const Case& c : cases) {
    std::string error = Reject(c.text);
    EXPECT_NE(error.find(c.message), std::string::npos)
        << "input: " << c.text << "\nmessage: " << error;
  }
}

TEST(LogReader, RejectsBadStatusLines) {
  EXPECT_NE(Reject("time_ms,level_percent,charging\n1,2,0\n",
                   LogFormat::kStatusLines)
                .find("t.csv:1: 3 columns, but a status line has at least 30"),
            std::string::npos);
  EXPECT_NE(Reject(StatusLine("1000", "x", "0"), LogFormat::kStatusLines)
                .find("t.csv:1: column 2 (level) is not a number: 'x'"),
            std::string::npos);
  EXPECT_NE(Reject(StatusLine("2000", "5", "0") + StatusLine("1000", "5", "0"),
                   LogFormat::kStatusLines)
                .find("t.csv:2: time goes backwards"),
            std::string::npos);
}

TEST(LogReader, EqualTimesAreAccepted) {
  Log log;
  std::string error;
  EXPECT_TRUE(Read("time_ms,level_percent,charging\n5,1,0\n5,2,0\n", &log,
                   &error));
  EXPECT_EQ(log.samples.size(), 2u);
}

TEST(LogReader, FilesThatCannotBeRead) {
  Log log;
  std::string error;
  EXPECT_FALSE(ReadLogFile("/nonexistent/x.csv", LogFormat::kCsv, &log, &error));
  EXPECT_EQ(error.rfind("/nonexistent/x.csv: cannot open: ", 0), 0u) << error;
  EXPECT_FALSE(ReadLogFile("/", LogFormat::kCsv, &log, &error));
  EXPECT_EQ(error, "/: cannot read: it is a directory");
}

TEST(LogWriter, WrittenLogsReadBackToTheSameSamples) {
  Log log;
  for (int i = 0; i < 3; ++i) {
    LogSample s;
    s.time_ms = 1709510400000 + i * 300000;
    s.level_percent = 80 - i;
    s.charging = i == 1;
    s.aux1 = 27.3;
    s.aux2 = 4.112;
    s.aux3 = i;
    s.count_a = 2;
    s.count_b1 = 0.1;  // not short in binary: needs all digits
    s.count_b2 = 1e-7;
    log.samples.push_back(s);
  }
  for (LogFormat format : {LogFormat::kCsv, LogFormat::kStatusLines}) {
    std::ostringstream out;
    if (format == LogFormat::kCsv) {
      WriteCsv(out, log);
      EXPECT_EQ(out.str().substr(0, out.str().find('\n')),
                "time_ms,level_percent,charging,aux1,aux2,aux3,countA,"
                "countB1,countB2");
    } else {
      WriteStatusLines(out, log, DisplayZone::FixedOffset(120));
    }
    Log back;
    std::string error;
    std::istringstream in(out.str());
    ASSERT_TRUE(ReadLog(in, "w", format, &back, &error)) << error;
    ASSERT_EQ(back.samples.size(), 3u);
    for (int i = 0; i < 3; ++i) {
      const LogSample& a = log.samples[i];
      const LogSample& b = back.samples[i];
      EXPECT_EQ(a.time_ms, b.time_ms);
      EXPECT_EQ(a.level_percent, b.level_percent);
      EXPECT_EQ(a.charging, b.charging);
      EXPECT_EQ(a.aux1, b.aux1);
      EXPECT_EQ(a.aux2, b.aux2);
      EXPECT_EQ(a.aux3, b.aux3);
      EXPECT_EQ(a.count_a, b.count_a);
      EXPECT_EQ(a.count_b1, b.count_b1);
      EXPECT_EQ(a.count_b2, b.count_b2);
    }
  }
  EXPECT_EQ(FormatNumber(27.3), "27.3");
  EXPECT_EQ(FormatNumber(-0.0), "0");
}

}  // namespace
}  // namespace kez_tools
