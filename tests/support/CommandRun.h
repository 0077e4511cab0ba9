// For tests that run a built command-line tool: runs a shell command and
// returns its exit status with everything it printed (standard output and
// standard error together).
#ifndef KEZ_TESTS_SUPPORT_COMMAND_RUN_H_
#define KEZ_TESTS_SUPPORT_COMMAND_RUN_H_

#include <sys/wait.h>

#include <cstdio>
#include <string>

namespace kez_testing {

struct CommandRun {
  int exit_code = -1;  // -1 when the command did not exit normally
  std::string out;
};

inline CommandRun RunCommand(const std::string& command) {
  CommandRun run;
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  if (pipe == nullptr) return run;
  char buffer[4096];
  size_t n;
  while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) run.out.append(buffer, n);
  const int status = pclose(pipe);
  run.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return run;
}

}  // namespace kez_testing

#endif  // KEZ_TESTS_SUPPORT_COMMAND_RUN_H_
