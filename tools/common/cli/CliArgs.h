// Small helpers for the tools' command lines: "--name=value" is split into
// "--name" "value", and numbers are read whole and range-checked, so that
// "--days 3x" is an error and not 3.
#ifndef KEZ_TOOLS_COMMON_CLI_CLIARGS_H_
#define KEZ_TOOLS_COMMON_CLI_CLIARGS_H_

#include <cstdint>
#include <string>
#include <vector>

namespace kez_tools {

class CliArgs {
 public:
  CliArgs(int argc, char** argv);
  explicit CliArgs(std::vector<std::string> args);

  bool Done() const { return next_ >= args_.size(); }
  // The next argument; advances.
  std::string Take() { return args_[next_++]; }
  // The value of option `name` just taken; false with *error when missing.
  bool Value(const std::string& name, std::string* value, std::string* error);
  // Reads the value of `name` as a whole number / a number in [lo, hi].
  bool Int(const std::string& name, int64_t lo, int64_t hi, int64_t* value,
           std::string* error);
  bool Number(const std::string& name, double lo, double hi, double* value,
              std::string* error);

 private:
  std::vector<std::string> args_;
  size_t next_ = 0;
};

// True when `text` is a whole number (or a number) within [lo, hi].
bool ParseInt(const std::string& text, int64_t lo, int64_t hi, int64_t* value);
bool ParseNumber(const std::string& text, double lo, double hi, double* value);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_CLI_CLIARGS_H_
