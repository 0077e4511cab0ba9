// Loading arbitrary bytes as a table: random, truncated and mutated files
// load or fail cleanly, and whatever loads is a consistent table that the
// other operations can work on. Run under the sanitizers as well.
#include <cstdio>
#include <random>
#include <string>

#include "gtest/gtest.h"
#include "table/VelqaTimeSeriesDataTable.h"
#include "table/TableTestUtil.h"

namespace {

using table_test::TempPath;
using table_test::WriteText;

const char kHeaderFile[] =
    "Name,a,b,s,e\n"
    "Col type,Observation,Observation,Observation,Expectation Output\n"
    "Value type,Numerical,Numerical,Discrete,Numerical\n"
    "Stream,0,1,0,\n"
    "0.5,1.25,3,0,1\n*0.75,1.5,2.5,1,2\n1,1.5,2.5,1,2\n*2,-4,1e10,2,nan\n";

const char kPlainFile[] =
    "# preamble\ntime_ms,level_percent,charging\n1612130332550,45,0\n"
    "1612131358597,45,0\n1612131532529,44,1\n1612132132480,44,1\n";

// Pieces that steer random files towards the interesting branches.
const char* const kWords[] = {
    "Name", "Col type", "Value type", "Stream", "Observation", "State Index",
    "Expectation Output", "Unknown", "Numerical", "Discrete", "*", "-1", "0",
    "2", "99999", "1e39", "nan", "0x1f", ",", ",,", "\n", "\r\n", "\t"};
const int kWordCount = sizeof kWords / sizeof kWords[0];

class TableFuzz : public ::testing::Test {
 protected:
  void TearDown() override {
    std::remove(TempPath("fuzz.csv").c_str());
    std::remove(TempPath("fuzz_out.csv").c_str());
  }

  // Loads `bytes` with several option sets and works on what loaded.
  void Exercise(const std::string& bytes) {
    const std::string path = TempPath("fuzz.csv");
    const std::string out = TempPath("fuzz_out.csv");
    WriteText(path, bytes);
    for (int hint : {0, 1, 3, -1}) {
      VelqaTimeSeriesDataTable t;
      const unsigned maxBytes = rng_() % 3 == 0 ? rng_() % 200 : 0;
      const int step = static_cast<int>(rng_() % 4) - 1;
      if (!t.LoadFromFile(path.c_str(), rng_() % 2, hint, maxBytes, step)) continue;
      const int rows = t.dataNames.count;
      ASSERT_EQ(t.cols.count, t.colCount);
      ASSERT_EQ(rows, t.times.count);
      ASSERT_EQ(rows, t.rowSequence.count);
      for (int c = 0; c < t.cols.count; ++c) ASSERT_EQ(rows, t.cols[c]->count);
      for (int b = 0; b < 8; ++b) {
        const VelqaTimeSeriesDataTableColBlockInfo& block = *t.colBlocks[b];
        ASSERT_LE(block.count > 0 ? block.first + block.count : 0, t.cols.count);
      }
      ASSERT_EQ(t.streams.count, t.streamFactors.count);
      t.SaveToFile(out.c_str());
      VelqaTimeSeriesDataTable back;
      ASSERT_TRUE(back.LoadFromFile(out.c_str(), 0, 0, 0, 1));
      t.Smoothing(static_cast<int>(rng_() % 5), static_cast<int>(rng_() % 2));
      if (t.cols.count > 0) t.Differential(static_cast<int>(rng_() % t.cols.count));
      if (rows > 0) t.Delete(0);
      if (rows < 50) t.UpSampling(2);
    }
  }

  std::string Mutate(std::string text) {
    for (int e = 1 + static_cast<int>(rng_() % 4); e > 0; --e) {
      const size_t at = rng_() % (text.size() + 1);
      const int kind = static_cast<int>(rng_() % 3);
      if (kind == 0) {
        text.insert(at, kWords[rng_() % kWordCount]);
      } else if (at < text.size()) {
        if (kind == 1) text.erase(at, 1 + rng_() % 8);
        if (kind == 2) text[at] = static_cast<char>(rng_() % 256);
      }
    }
    return text;
  }

  std::mt19937 rng_{12345};
};

TEST_F(TableFuzz, RandomBytesAndWords) {
  for (int i = 0; i < 200; ++i) {
    std::string bytes(rng_() % 300, '\0');
    for (char& b : bytes) b = static_cast<char>(rng_() % 256);
    Exercise(bytes);
    std::string words;
    for (int k = static_cast<int>(rng_() % 80); k > 0; --k) {
      words += kWords[rng_() % kWordCount];
    }
    Exercise(words);
  }
}

TEST_F(TableFuzz, TruncatedAndMutatedFiles) {
  for (const std::string file : {kHeaderFile, kPlainFile}) {
    for (size_t n = 0; n <= file.size(); ++n) Exercise(file.substr(0, n));
    for (int i = 0; i < 150; ++i) Exercise(Mutate(file));
  }
}

TEST_F(TableFuzz, ColumnTypesOutOfOrderAndOddStreams) {
  // Types that come back after another type regroup the columns while the
  // values stay by file position; streams that skip ahead or go negative.
  Exercise(
      "Name,a,s,b,e,s2,c\n"
      "Col type,Observation,State Index,Observation,Expectation Output,"
      "State Index,Observation\n"
      "Value type,Numerical,Discrete,Numerical,Numerical,Discrete,Discrete\n"
      "Stream,5,0,-3,2147483647,1,0x7fffffff\n"
      "0,1,2,3,4,5,6\n*1,1,2,3,4,5,6\n2,7,7,7,7,7,7\n");
}

}  // namespace
