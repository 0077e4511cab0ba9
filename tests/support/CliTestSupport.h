// For the tools' end-to-end tests: running a built tool, the test binary's
// own fresh directory for the files it writes, reading a file back, and a
// substring check. Each test binary gets one directory (made with mkdtemp,
// removed at exit), so two runs on one machine never meet.
#ifndef KEZ_TESTS_SUPPORT_CLI_TEST_SUPPORT_H_
#define KEZ_TESTS_SUPPORT_CLI_TEST_SUPPORT_H_

#include <fstream>
#include <sstream>
#include <string>

#include "support/CommandRun.h"
#include "support/ScopedTempDir.h"

namespace kez_testing {

// Runs `command` in a shell: exit status and everything it printed.
inline CommandRun Shell(const std::string& command) {
  return RunCommand(command);
}

// `name` in this test binary's own temporary directory.
inline std::string TempPath(const std::string& name) {
  static const ScopedTempDir dir;
  return dir.File(name);
}

inline std::string ReadFile(const std::string& path) {
  std::ifstream in(path);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

inline bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

}  // namespace kez_testing

#endif  // KEZ_TESTS_SUPPORT_CLI_TEST_SUPPORT_H_
