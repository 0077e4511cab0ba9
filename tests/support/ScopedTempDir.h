// For tests that write files: a fresh directory of their own, made with
// mkdtemp under $TMPDIR (or /tmp), removed with everything in it when the
// object goes out of scope. Two runs of the same test on one machine never
// meet, and nothing is left behind.
#ifndef KEZ_TESTS_SUPPORT_SCOPED_TEMP_DIR_H_
#define KEZ_TESTS_SUPPORT_SCOPED_TEMP_DIR_H_

#include <ftw.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

namespace kez_testing {

class ScopedTempDir {
 public:
  ScopedTempDir() {
    const char* base = std::getenv("TMPDIR");
    std::string pattern = std::string(base != nullptr && *base != '\0' ? base : "/tmp") +
                          "/kez-test-XXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    if (mkdtemp(buffer.data()) != nullptr) path_ = buffer.data();
  }
  ~ScopedTempDir() {
    if (!path_.empty()) nftw(path_.c_str(), Remove, 16, FTW_DEPTH | FTW_PHYS);
  }
  ScopedTempDir(const ScopedTempDir&) = delete;
  ScopedTempDir& operator=(const ScopedTempDir&) = delete;

  // Empty when the directory could not be made.
  const std::string& path() const { return path_; }
  // A path for `name` inside the directory.
  std::string File(const std::string& name) const { return path_ + "/" + name; }

 private:
  static int Remove(const char* path, const struct stat*, int, struct FTW*) {
    std::remove(path);
    return 0;
  }
  std::string path_;
};

}  // namespace kez_testing

#endif  // KEZ_TESTS_SUPPORT_SCOPED_TEMP_DIR_H_
