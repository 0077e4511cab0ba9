// The tools' checked reader of parameter files: what it accepts loads as the
// numbers written; what it refuses is named by line and leaves the record as
// it was. Among the refused: a line longer than the library's reader takes
// as one line (found with the fuzz target tool_parameter_file: the checks
// passed, and the library then read every later value one line off).
#include "ParameterFile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "support/ScopedTempDir.h"

namespace kez_tools {
namespace {

class ParameterFileTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_FALSE(dir.path().empty()); }
  std::string Write(const std::string& name, const std::string& text) {
    const std::string path = dir.File(name);
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }
  kez_testing::ScopedTempDir dir;
};

std::string Weights(int from) {
  std::string text;
  for (int k = 0; k < 11; ++k) text += std::to_string(from + k) + "\n";
  return text;
}

TEST_F(ParameterFileTest, AcceptedFileLoadsItsNumbersAndKeepsTheSettings) {
  const std::string path =
      Write("good.txt", " accuracy\r\n0.75\n\nweight \n" + Weights(1) + "more\n");
  vorn::MobilePowerPredictorParameter p;
  p.setting1 = 4;
  std::string error;
  ASSERT_TRUE(LoadParameterFile(path, &p, &error)) << error;
  EXPECT_EQ(p.accuracy, 0.75);
  for (int k = 0; k < 11; ++k) EXPECT_EQ(p.weight[k], k + 1.0) << k;
  EXPECT_EQ(p.setting1, 4);
}

TEST_F(ParameterFileTest, RefusedFilesNameTheLineAndChangeNothing) {
  struct Case {
    std::string text;
    std::string message;
  };
  const std::string longest(254, '0');
  const Case cases[] = {
      {"", ":1: expected the label \"accuracy\""},
      {"accuracy\nhigh\n", ":2: expected the accuracy, a number"},
      {"accuracy\n0.5\n\nweights\n", ":4: expected the label \"weight\""},
      {"accuracy\n0.5\n\nweight\n1\n2\n", ":7: the file ends before weight 2"},
      {"accuracy\n0.5\n\nweight\n1\ninf\n", ":6: weight 1 is not a number: 'inf'"},
      // 255 characters: the library would read "0.5000...0" and then the
      // rest of the line as line 3, so weight 0 would be "weight".
      {"accuracy\n0.5" + std::string(253, '0') + "\n\nweight\n" + Weights(1),
       ":2: longer than 254 characters"},
      {"accuracy\n0.5\n\nweight\n1\n2\n3\n4\n5\n6\n7\n8\n9\n7" + longest + "\n11\n",
       ":14: longer than 254 characters"},
  };
  for (const Case& c : cases) {
    const std::string path = Write("bad.txt", c.text);
    vorn::MobilePowerPredictorParameter p;
    p.weight[3] = -2.5;
    std::string error;
    EXPECT_FALSE(LoadParameterFile(path, &p, &error)) << c.message;
    EXPECT_EQ(error.rfind(path + c.message, 0), 0u) << error;
    EXPECT_EQ(p.weight[3], -2.5);
    EXPECT_EQ(p.weight[0], 277.591529);
  }
}

TEST_F(ParameterFileTest, LinesUpToTheLibrarysLimitAreAccepted) {
  // 254 characters and the newline fill the library's 255 characters.
  const std::string path =
      Write("long.txt", "accuracy\n0.5" + std::string(251, '0') + "\n\nweight\n" + Weights(2));
  vorn::MobilePowerPredictorParameter p;
  std::string error;
  ASSERT_TRUE(LoadParameterFile(path, &p, &error)) << error;
  EXPECT_EQ(p.accuracy, 0.5);
  EXPECT_EQ(p.weight[0], 2.0);
  EXPECT_EQ(p.weight[10], 12.0);
}

}  // namespace
}  // namespace kez_tools
