#include "journal/Crc32.h"

namespace kez {
namespace {

struct Crc32Table {
  uint32_t entry[256];
  constexpr Crc32Table() : entry() {
    for (uint32_t i = 0; i < 256; ++i) {
      uint32_t c = i;
      for (int bit = 0; bit < 8; ++bit) {
        c = (c & 1u) != 0 ? 0xEDB88320u ^ (c >> 1) : c >> 1;
      }
      entry[i] = c;
    }
  }
};

constexpr Crc32Table kTable;

}  // namespace

uint32_t Crc32(const char* data, std::size_t size) {
  uint32_t c = 0xFFFFFFFFu;
  for (std::size_t i = 0; i < size; ++i) {
    c = kTable.entry[(c ^ static_cast<unsigned char>(data[i])) & 0xFFu] ^ (c >> 8);
  }
  return c ^ 0xFFFFFFFFu;
}

}  // namespace kez
