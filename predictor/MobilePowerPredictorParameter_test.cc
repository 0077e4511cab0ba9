#include "predictor/MobilePowerPredictorParameter.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <fstream>
#include <sstream>
#include <string>

#include "support/ScopedTempDir.h"

// SaveToFile and LoadFromFile return 0 both when the file cannot be opened
// and when it was written or read, so their results prove nothing: these
// tests look at the file written and at the record read instead.

namespace vorn {
namespace {

class MobilePowerPredictorParameterTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_FALSE(dir.path().empty()); }
  std::string TempPath(const std::string& name) const { return dir.File(name); }
  kez_testing::ScopedTempDir dir;
};

std::string ReadAll(const std::string& path) {
  std::ifstream in(path);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

void WriteAll(const std::string& path, const std::string& text) {
  std::ofstream out(path);
  out << text;
}

TEST_F(MobilePowerPredictorParameterTest, DefaultsAreTheBuiltInModel) {
  MobilePowerPredictorParameter p;
  EXPECT_EQ(p.accuracy, 0.0);
  EXPECT_EQ(p.setting1, 16);
  EXPECT_EQ(p.setting2, 16);
  EXPECT_EQ(p.setting3, 1);
  const double expected[11] = {277.591529, 1.681682, 3.169692, 1.007308,
                               2.153802,   0.315476, 1.0,      4.322219,
                               0.721791,   0.260737, 0.1};
  for (int k = 0; k < 11; ++k) EXPECT_EQ(p.weight[k], expected[k]) << k;
}

TEST_F(MobilePowerPredictorParameterTest, SaveWritesExactlyTheFifteenLines) {
  const std::string path = TempPath("default.txt");
  MobilePowerPredictorParameter p;
  p.SaveToFile(path.c_str());
  EXPECT_EQ(ReadAll(path),
            "accuracy\n0.0000000000\n\nweight\n277.591529\n1.681682\n"
            "3.169692\n1.007308\n2.153802\n0.315476\n1.000000\n4.322219\n"
            "0.721791\n0.260737\n0.100000\n");
}

TEST_F(MobilePowerPredictorParameterTest, RoundTripKeepsAccuracyAndWeights) {
  const std::string path = TempPath("roundtrip.txt");
  MobilePowerPredictorParameter saved;
  saved.accuracy = 0.8125;
  for (int k = 0; k < 11; ++k) saved.weight[k] = 0.5 + k;
  saved.SaveToFile(path.c_str());

  MobilePowerPredictorParameter loaded;
  loaded.LoadFromFile(path.c_str());
  EXPECT_EQ(loaded.accuracy, 0.8125);
  for (int k = 0; k < 11; ++k) EXPECT_EQ(loaded.weight[k], 0.5 + k) << k;
}

TEST_F(MobilePowerPredictorParameterTest, IntegerSettingsAreNeitherSavedNorLoaded) {
  // A file with settings edited in by hand, before and after the weights.
  const std::string path = TempPath("edited.txt");
  WriteAll(path,
           "accuracy\n0.5\n\nweight\n1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n"
           "setting1\n4\nsetting2\n8\nsetting3\n2\n");
  MobilePowerPredictorParameter p;
  p.setting1 = 3;
  p.setting2 = 5;
  p.setting3 = 7;
  p.LoadFromFile(path.c_str());
  EXPECT_EQ(p.accuracy, 0.5);
  for (int k = 0; k < 11; ++k) EXPECT_EQ(p.weight[k], k + 1.0) << k;
  EXPECT_EQ(p.setting1, 3);
  EXPECT_EQ(p.setting2, 5);
  EXPECT_EQ(p.setting3, 7);

  p.SaveToFile(path.c_str());
  const std::string saved = ReadAll(path);
  EXPECT_EQ(saved.find("setting"), std::string::npos);
  EXPECT_NE(saved.find("weight\n1.000000\n2.000000\n"), std::string::npos);
}

TEST_F(MobilePowerPredictorParameterTest, ShortFileRepeatsItsLastLine) {
  const std::string path = TempPath("short.txt");
  WriteAll(path, "accuracy\n0.25\n\nweight\n9.5\n2.75\n");
  MobilePowerPredictorParameter p;
  p.LoadFromFile(path.c_str());
  EXPECT_EQ(p.accuracy, 0.25);
  EXPECT_EQ(p.weight[0], 9.5);
  for (int k = 1; k < 11; ++k) EXPECT_EQ(p.weight[k], 2.75) << k;
}

TEST_F(MobilePowerPredictorParameterTest, LabelsAreNotCheckedAndTextReadsAsZero) {
  const std::string path = TempPath("labels.txt");
  WriteAll(path, "x\n1.5\ny\nz\n2\nnot a number\n3\n4\n5\n6\n7\n8\n9\n10\n11\n");
  MobilePowerPredictorParameter p;
  p.LoadFromFile(path.c_str());
  EXPECT_EQ(p.accuracy, 1.5);
  EXPECT_EQ(p.weight[0], 2.0);
  EXPECT_EQ(p.weight[1], 0.0);
  EXPECT_EQ(p.weight[10], 11.0);
}

TEST_F(MobilePowerPredictorParameterTest, UnopenableFilesChangeNothing) {
  MobilePowerPredictorParameter p;
  p.accuracy = 0.75;
  p.weight[3] = 42.0;
  p.LoadFromFile(TempPath("does-not-exist.txt").c_str());
  EXPECT_EQ(p.accuracy, 0.75);
  EXPECT_EQ(p.weight[3], 42.0);
  EXPECT_EQ(p.weight[0], 277.591529);
  const std::string nowhere = TempPath("no-such-dir") + "/y.txt";
  p.SaveToFile(nowhere.c_str());
  EXPECT_NE(access(nowhere.c_str(), F_OK), 0);
  EXPECT_EQ(p.accuracy, 0.75);
}

}  // namespace
}  // namespace vorn
