// Fuzz target: the binary form of a string list
// (vorn::FStringList::LoadFromFile(FILE*)), read from the input through
// fmemopen. Whatever was read (also the part read before a failure) must
// survive its own binary form: saved and read back, it is the same list,
// and that load succeeds.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "FuzzInput.h"
#include "foundation/FStringList.h"

namespace {

// Loads a list from `size` bytes at `data`; returns LoadFromFile's result.
bool ReadList(const void* data, size_t size, vorn::FStringList& list) {
  static char empty[1];
  FILE* f = size > 0 ? fmemopen(const_cast<void*>(data), size, "rb") : fmemopen(empty, 1, "r");
  if (f == nullptr) std::abort();
  if (size == 0) std::fgetc(f);
  const bool ok = list.LoadFromFile(f);
  std::fclose(f);
  return ok;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  vorn::FStringList list;
  ReadList(data, size, list);
  KEZ_FUZZ_CHECK(list.count >= 0 && list.count <= 65536);

  char* saved = nullptr;
  size_t savedSize = 0;
  FILE* out = open_memstream(&saved, &savedSize);
  if (out == nullptr) std::abort();
  KEZ_FUZZ_CHECK(list.SaveToFile(out));
  std::fclose(out);
  vorn::FStringList again;
  KEZ_FUZZ_CHECK(ReadList(saved, savedSize, again));
  std::free(saved);
  KEZ_FUZZ_CHECK(again.count == list.count);
  for (int i = 0; i < list.count; ++i) KEZ_FUZZ_CHECK(*again[i] == *list[i]);
  return 0;
}
