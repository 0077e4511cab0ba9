// CRC-32 (the common one: reflected polynomial 0xEDB88320, initial value and
// final xor 0xFFFFFFFF), "123456789" gives 0xCBF43926. Guards each journal
// line against damage that would still read as numbers.
#ifndef KEZ_JOURNAL_CRC32_H_
#define KEZ_JOURNAL_CRC32_H_

#include <cstddef>
#include <cstdint>

namespace kez {

uint32_t Crc32(const char* data, std::size_t size);

}  // namespace kez

#endif  // KEZ_JOURNAL_CRC32_H_
