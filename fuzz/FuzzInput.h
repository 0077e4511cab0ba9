// Helpers shared by the fuzz targets: the input as a temporary file (for
// readers that take a path) and a check that stops the fuzzer when a
// documented property does not hold.
//
// TempFile writes the bytes to a file of its own under $TMPDIR (or /tmp),
// named after the process so that parallel fuzzers do not meet, and removes
// it when it goes out of scope.
#ifndef KEZ_FUZZ_FUZZINPUT_H_
#define KEZ_FUZZ_FUZZINPUT_H_

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace kez_fuzz {

// A broken property is a finding like a crash: report it and abort.
#define KEZ_FUZZ_CHECK(cond)                                                  \
  do {                                                                        \
    if (!(cond)) {                                                            \
      std::fprintf(stderr, "%s:%d: property failed: %s\n", __FILE__, __LINE__, \
                   #cond);                                                    \
      std::abort();                                                           \
    }                                                                         \
  } while (0)

class TempFile {
 public:
  TempFile(const char* tag, const uint8_t* data, size_t size) {
    const char* dir = std::getenv("TMPDIR");
    path_ = std::string(dir != nullptr && *dir != '\0' ? dir : "/tmp") + "/kez-fuzz-" + tag +
            "-" + std::to_string(static_cast<long>(getpid()));
    FILE* f = std::fopen(path_.c_str(), "wb");
    if (f == nullptr) return;
    ok_ = size == 0 || std::fwrite(data, 1, size, f) == size;
    ok_ = std::fclose(f) == 0 && ok_;
  }
  ~TempFile() { std::remove(path_.c_str()); }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;

  bool ok() const { return ok_; }
  const char* path() const { return path_.c_str(); }

 private:
  std::string path_;
  bool ok_ = false;
};

}  // namespace kez_fuzz

#endif  // KEZ_FUZZ_FUZZINPUT_H_
