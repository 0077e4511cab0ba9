// Fuzz target: the binary form of one string (vorn::FString(FILE*)), read
// from the input through fmemopen. Whatever is read must survive its own
// binary form: saved with SaveToFile and read back, it is the same string.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "FuzzInput.h"
#include "foundation/FString.h"

namespace {

// Reads one string from `size` bytes at `data`.
vorn::FString ReadString(const void* data, size_t size) {
  // fmemopen wants at least one byte of buffer; an empty input is a buffer
  // of one byte of which nothing is readable.
  static char empty[1];
  FILE* f = size > 0 ? fmemopen(const_cast<void*>(data), size, "rb") : fmemopen(empty, 1, "r");
  if (f == nullptr) std::abort();
  if (size == 0) std::fgetc(f);
  vorn::FString s(f);
  std::fclose(f);
  return s;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const vorn::FString s = ReadString(data, size);
  KEZ_FUZZ_CHECK(s.Length() <= 65535);
  KEZ_FUZZ_CHECK((s.PChar() == nullptr) == (s.Length() == 0));

  char* saved = nullptr;
  size_t savedSize = 0;
  FILE* out = open_memstream(&saved, &savedSize);
  if (out == nullptr) std::abort();
  KEZ_FUZZ_CHECK(s.SaveToFile(out));
  std::fclose(out);
  const vorn::FString again = ReadString(saved, savedSize);
  std::free(saved);
  KEZ_FUZZ_CHECK(again == s);
  return 0;
}
