// One journal line: the text a report becomes, that it reads back to the
// same bits, that damage in any byte is caught, and the first line.
#include "journal/JournalLine.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "journal/Crc32.h"
#include "journal/JournalTestUtil.h"

namespace kez {
namespace {

using journal_test::SameBits;

std::string Line(const JournalRecord& r) {
  char buffer[kJournalLineMax];
  return std::string(buffer, FormatJournalLine(r, buffer));
}

bool Parse(const std::string& line, JournalRecord* r) {
  std::string text = line;
  if (!text.empty() && text.back() == '\n') text.pop_back();
  return ParseJournalLine(text.data(), text.size(), r);
}

TEST(Crc32, KnownCheckValue) {
  EXPECT_EQ(Crc32("123456789", 9), 0xCBF43926u);
  EXPECT_EQ(Crc32("", 0), 0u);
}

// The first lines of the bundled log, as a journal writes them; the checks
// were computed with another CRC-32 implementation (Python's zlib.crc32).
TEST(JournalLine, WritesTheLogFormatWithACheck) {
  JournalRecord r;
  r.timeMs = 1709510445000ull;
  r.levelPercent = 74;
  r.aux1 = 24.9f;
  r.aux2 = 4.019f;
  const std::string first = Line(r);
  r.timeMs = 1709510776000ull;
  r.aux1 = 25.1f;
  r.aux2 = 4.018f;
  const std::string second = Line(r);
#if defined(__cpp_lib_to_chars) && __cpp_lib_to_chars >= 201611L
  EXPECT_EQ(first, "1709510445000,74,0,24.9,4.019,0,0,0,0,58f2c4ee\n");
  EXPECT_EQ(second, "1709510776000,74,0,25.1,4.018,0,0,0,0,e4d19e3a\n");
#endif
  JournalRecord back;
  ASSERT_TRUE(Parse(first, &back));
  EXPECT_EQ(back.timeMs, 1709510445000ull);
  EXPECT_EQ(back.aux1, 24.9f);
  EXPECT_EQ(back.aux2, 4.019f);
}

TEST(JournalLine, PrologueIsMarkerAndTheToolsHeader) {
  EXPECT_EQ(std::string(kJournalPrologue, kJournalPrologueLength),
            "# kez journal 1\n"
            "time_ms,level_percent,charging,aux1,aux2,aux3,countA,countB1,"
            "countB2,check\n");
}

TEST(JournalLine, EveryValueReadsBackToItsBits) {
  const float floats[] = {0.0f, -0.0f, 1.0f / 3.0f, 100.0f, 99.99999f,
                          std::numeric_limits<float>::denorm_min(),
                          std::numeric_limits<float>::min(),
                          -std::numeric_limits<float>::max(),
                          std::numeric_limits<float>::infinity(),
                          -std::numeric_limits<float>::infinity()};
  const double doubles[] = {0.0, -0.0, 0.1, 1e300, -2.2250738585072014e-308,
                            std::numeric_limits<double>::denorm_min(),
                            std::numeric_limits<double>::max(),
                            std::numeric_limits<double>::infinity()};
  for (float f : floats) {
    for (double d : doubles) {
      JournalRecord r;
      r.timeMs = std::numeric_limits<uint64_t>::max();
      r.levelPercent = r.charging = r.aux1 = r.aux2 = r.aux3 = f;
      r.countA = r.countB1 = r.countB2 = d;
      const std::string line = Line(r);
      ASSERT_LT(line.size(), kJournalLineMax);
      JournalRecord back;
      ASSERT_TRUE(Parse(line, &back)) << line;
      EXPECT_TRUE(SameBits(r, back)) << line;
    }
  }
  // Random bit patterns (NaN aside).
  std::mt19937_64 random(16);
  for (int i = 0; i < 20000; ++i) {
    JournalRecord r;
    r.timeMs = random();
    float* fs[5] = {&r.levelPercent, &r.charging, &r.aux1, &r.aux2, &r.aux3};
    double* ds[3] = {&r.countA, &r.countB1, &r.countB2};
    for (float* f : fs) {
      do {
        const uint32_t bits = static_cast<uint32_t>(random());
        std::memcpy(f, &bits, sizeof bits);
      } while (std::isnan(*f));
    }
    for (double* d : ds) {
      do {
        const uint64_t bits = random();
        std::memcpy(d, &bits, sizeof bits);
      } while (std::isnan(*d));
    }
    JournalRecord back;
    ASSERT_TRUE(Parse(Line(r), &back)) << Line(r);
    ASSERT_TRUE(SameBits(r, back)) << Line(r);
  }
}

TEST(JournalLine, NanReadsBackAsNan) {
  JournalRecord r;
  r.levelPercent = std::numeric_limits<float>::quiet_NaN();
  r.countB1 = -std::numeric_limits<double>::quiet_NaN();
  JournalRecord back;
  ASSERT_TRUE(Parse(Line(r), &back));
  EXPECT_TRUE(std::isnan(back.levelPercent));
  EXPECT_TRUE(std::isnan(back.countB1));
  EXPECT_TRUE(std::signbit(back.countB1));
}

// CRC-32 catches every change confined to one byte, so a line damaged
// anywhere is refused, whatever the byte became.
TEST(JournalLine, ADamagedByteIsRefused) {
  const std::string line = Line(journal_test::Report(1234));
  std::string text = line.substr(0, line.size() - 1);
  JournalRecord back;
  ASSERT_TRUE(Parse(text, &back));
  for (std::size_t at = 0; at < text.size(); ++at) {
    for (int value = 0; value < 256; ++value) {
      if (static_cast<char>(value) == text[at]) continue;
      std::string bad = text;
      bad[at] = static_cast<char>(value);
      ASSERT_FALSE(ParseJournalLine(bad.data(), bad.size(), &back))
          << "byte " << at << " -> " << value;
    }
  }
}

TEST(JournalLine, RefusesWhatIsNotAReport) {
  JournalRecord r;
  const char* bad[] = {
      "",
      "1709510445000,74,0,24.9,4.019,0,0,0,0",              // no check
      "1709510445000,74,0,24.9,4.019,0,0,0,0,58f2c4ef",     // wrong check
      "1709510445000,74,0,24.9,4.019,0,0,0,0,58F2C4EE",     // not lowercase
      "1709510445000,74,0,24.9,4.019,0,0,0,0,0,58f2c4ee",   // eleven fields
      "time_ms,level_percent,charging,aux1,aux2,aux3,countA,countB1,countB2,check",
  };
  for (const char* line : bad) {
    EXPECT_FALSE(ParseJournalLine(line, std::strlen(line), &r)) << line;
  }
}

TEST(JournalLine, SnapshotLine) {
  const unsigned char data[] = {0x00, 0x7f, 0x80, 0xff, '\n', ','};
  std::vector<char> out(kJournalSnapshotLineMax);
  std::string line(out.data(), FormatSnapshotLine(2, 3, data, sizeof data, out.data()));
  // Part, parts, hex bytes, then the CRC-32 of the text before the comma
  // (Python's zlib.crc32(b"# snapshot 2/3 007f80ff0a2c")).
  EXPECT_EQ(line, "# snapshot 2/3 007f80ff0a2c,f55f05df\n");
  std::string text = line.substr(0, line.size() - 1);
  int part = -1;
  int parts = -1;
  std::size_t size = 0;
  ASSERT_TRUE(ParseSnapshotLine(&text[0], text.size(), &part, &parts, &size));
  EXPECT_EQ(part, 2);
  EXPECT_EQ(parts, 3);
  ASSERT_EQ(size, sizeof data);
  EXPECT_EQ(std::memcmp(text.data(), data, size), 0);
  const std::string clean = line.substr(0, line.size() - 1);
  for (std::size_t at = 0; at < clean.size(); ++at) {
    std::string bad = clean;
    bad[at] = static_cast<char>(bad[at] ^ 0x04);
    EXPECT_FALSE(ParseSnapshotLine(&bad[0], bad.size(), &part, &parts, &size)) << at;
  }
  // The largest part fits its line.
  std::vector<unsigned char> big(kJournalSnapshotPart, 0xab);
  EXPECT_LE(FormatSnapshotLine(kJournalSnapshotParts - 1, kJournalSnapshotParts, big.data(),
                               big.size(), out.data()),
            kJournalSnapshotLineMax);
}

TEST(JournalLine, Marker) {
  auto marker = [](const char* line) {
    return ParseJournalMarker(line, std::strlen(line));
  };
  EXPECT_EQ(marker("# kez journal 1"), JournalMarker::kJournal);
  EXPECT_EQ(marker("# kez journal 1 written by a phone"), JournalMarker::kJournal);
  EXPECT_EQ(marker("# kez journal 2"), JournalMarker::kNewer);
  EXPECT_EQ(marker("# kez journal 12 more"), JournalMarker::kNewer);
  EXPECT_EQ(marker("# kez journal 0"), JournalMarker::kOther);
  EXPECT_EQ(marker("# kez journal"), JournalMarker::kOther);
  EXPECT_EQ(marker("# kez journal x"), JournalMarker::kOther);
  EXPECT_EQ(marker("# kez journal 1x"), JournalMarker::kOther);
  EXPECT_EQ(marker("time_ms,level_percent,charging"), JournalMarker::kOther);
}

}  // namespace
}  // namespace kez
