#include "journal/JournalLine.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include "journal/Crc32.h"

// Floating-point std::to_chars / std::from_chars are in libstdc++ since
// GCC 11 but missing from older libc++ (older Android NDKs): there the
// journal falls back on snprintf and strtod, which are exact with the
// precisions used, and read '.' as the decimal point in the "C" locale that
// Android's C library always uses.
// A build can choose the fallback with -DKEZ_JOURNAL_CHARCONV=0.
#ifndef KEZ_JOURNAL_CHARCONV
#if defined(__cpp_lib_to_chars) && __cpp_lib_to_chars >= 201611L
#define KEZ_JOURNAL_CHARCONV 1
#else
#define KEZ_JOURNAL_CHARCONV 0
#endif
#endif

namespace kez {

#define KEZ_JOURNAL_HEADER \
  "time_ms,level_percent,charging,aux1,aux2,aux3,countA,countB1,countB2,check"

const char kJournalPrologue[] = "# kez journal 1\n" KEZ_JOURNAL_HEADER "\n";
const std::size_t kJournalPrologueLength = sizeof kJournalPrologue - 1;
const char kJournalHeader[] = KEZ_JOURNAL_HEADER;

namespace {

constexpr int kFields = 10;
constexpr char kMarkerPrefix[] = "# kez journal ";
constexpr char kSnapshotPrefix[] = "# snapshot ";
constexpr std::size_t kSnapshotPrefixLength = sizeof kSnapshotPrefix - 1;

char* PutFloat(char* p, char* end, float v) {
#if KEZ_JOURNAL_CHARCONV
  return std::to_chars(p, end, v).ptr;
#else
  const int n = std::snprintf(p, static_cast<std::size_t>(end - p), "%.9g",
                              static_cast<double>(v));
  return p + n;
#endif
}

char* PutDouble(char* p, char* end, double v) {
#if KEZ_JOURNAL_CHARCONV
  return std::to_chars(p, end, v).ptr;
#else
  const int n = std::snprintf(p, static_cast<std::size_t>(end - p), "%.17g", v);
  return p + n;
#endif
}

#if !KEZ_JOURNAL_CHARCONV
// A field as a NUL-terminated copy for strtof/strtod; false when it cannot be
// a number written by FormatJournalLine.
bool CopyField(const char* b, const char* e, char* copy) {
  const std::size_t n = static_cast<std::size_t>(e - b);
  if (n == 0 || n >= 48) return false;
  if (!(*b == '-' || (*b >= '0' && *b <= '9') || *b == 'n' || *b == 'i')) {
    return false;
  }
  std::memcpy(copy, b, n);
  copy[n] = '\0';
  return std::strchr(copy, 'x') == nullptr && std::strchr(copy, 'X') == nullptr;
}
#endif

bool GetFloat(const char* b, const char* e, float* v) {
#if KEZ_JOURNAL_CHARCONV
  const std::from_chars_result r = std::from_chars(b, e, *v);
  return r.ec == std::errc() && r.ptr == e;
#else
  char copy[48];
  if (!CopyField(b, e, copy)) return false;
  char* end = nullptr;
  *v = std::strtof(copy, &end);
  return *end == '\0';
#endif
}

bool GetDouble(const char* b, const char* e, double* v) {
#if KEZ_JOURNAL_CHARCONV
  const std::from_chars_result r = std::from_chars(b, e, *v);
  return r.ec == std::errc() && r.ptr == e;
#else
  char copy[48];
  if (!CopyField(b, e, copy)) return false;
  char* end = nullptr;
  *v = std::strtod(copy, &end);
  return *end == '\0';
#endif
}

bool GetTime(const char* b, const char* e, uint64_t* v) {
  const std::from_chars_result r = std::from_chars(b, e, *v);
  return b != e && r.ec == std::errc() && r.ptr == e;
}

constexpr char kHex[] = "0123456789abcdef";

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

char* PutCheck(char* p, uint32_t check) {
  for (int shift = 28; shift >= 0; shift -= 4) *p++ = kHex[(check >> shift) & 0xFu];
  return p;
}

// Reads eight lowercase hex digits.
bool GetCheck(const char* p, uint32_t* check) {
  *check = 0;
  for (int i = 0; i < 8; ++i) {
    const int v = HexValue(p[i]);
    if (v < 0) return false;
    *check = (*check << 4) | static_cast<uint32_t>(v);
  }
  return true;
}

}  // namespace

std::size_t FormatJournalLine(const JournalRecord& r, char* out) {
  char* p = out;
  char* const end = out + kJournalLineMax;
  p = std::to_chars(p, end, r.timeMs).ptr;
  const float floats[5] = {r.levelPercent, r.charging, r.aux1, r.aux2, r.aux3};
  for (float v : floats) {
    *p++ = ',';
    p = PutFloat(p, end, v);
  }
  const double doubles[3] = {r.countA, r.countB1, r.countB2};
  for (double v : doubles) {
    *p++ = ',';
    p = PutDouble(p, end, v);
  }
  const uint32_t check = Crc32(out, static_cast<std::size_t>(p - out));
  *p++ = ',';
  p = PutCheck(p, check);
  *p++ = '\n';
  return static_cast<std::size_t>(p - out);
}

bool ParseJournalLine(const char* line, std::size_t length, JournalRecord* r) {
  if (length == 0 || length >= kJournalLineMax) return false;
  const char* start[kFields];
  const char* stop[kFields];
  int n = 0;
  const char* b = line;
  const char* const end = line + length;
  for (const char* p = line; p <= end; ++p) {
    if (p == end || *p == ',') {
      if (n == kFields) return false;
      start[n] = b;
      stop[n] = p;
      ++n;
      b = p + 1;
    }
  }
  if (n != kFields) return false;

  // The check first: eight lowercase hex digits over the text before it.
  uint32_t check = 0;
  if (stop[9] - start[9] != 8 || !GetCheck(start[9], &check)) return false;
  if (Crc32(line, static_cast<std::size_t>(stop[8] - line)) != check) return false;

  float* const floats[5] = {&r->levelPercent, &r->charging, &r->aux1, &r->aux2,
                            &r->aux3};
  double* const doubles[3] = {&r->countA, &r->countB1, &r->countB2};
  if (!GetTime(start[0], stop[0], &r->timeMs)) return false;
  for (int i = 0; i < 5; ++i) {
    if (!GetFloat(start[1 + i], stop[1 + i], floats[i])) return false;
  }
  for (int i = 0; i < 3; ++i) {
    if (!GetDouble(start[6 + i], stop[6 + i], doubles[i])) return false;
  }
  return true;
}

std::size_t FormatSnapshotLine(int part, int parts, const unsigned char* data,
                               std::size_t size, char* out) {
  char* p = out;
  char* const end = out + kJournalSnapshotLineMax;
  std::memcpy(p, kSnapshotPrefix, kSnapshotPrefixLength);
  p += kSnapshotPrefixLength;
  p = std::to_chars(p, end, part).ptr;
  *p++ = '/';
  p = std::to_chars(p, end, parts).ptr;
  *p++ = ' ';
  for (std::size_t i = 0; i < size; ++i) {
    *p++ = kHex[data[i] >> 4];
    *p++ = kHex[data[i] & 0xFu];
  }
  const uint32_t check = Crc32(out, static_cast<std::size_t>(p - out));
  *p++ = ',';
  p = PutCheck(p, check);
  *p++ = '\n';
  return static_cast<std::size_t>(p - out);
}

bool IsSnapshotLine(const char* line, std::size_t length) {
  return length >= kSnapshotPrefixLength &&
         std::memcmp(line, kSnapshotPrefix, kSnapshotPrefixLength) == 0;
}

bool ParseSnapshotLine(char* line, std::size_t length, int* part, int* parts,
                       std::size_t* size) {
  if (!IsSnapshotLine(line, length) || length < kSnapshotPrefixLength + 13) return false;
  const std::size_t hexEnd = length - 9;
  uint32_t check = 0;
  if (line[hexEnd] != ',' || !GetCheck(line + hexEnd + 1, &check) ||
      Crc32(line, hexEnd) != check) {
    return false;
  }
  const char* p = line + kSnapshotPrefixLength;
  const char* const e = line + hexEnd;
  std::from_chars_result r = std::from_chars(p, e, *part);
  if (r.ec != std::errc() || r.ptr == e || *r.ptr != '/') return false;
  r = std::from_chars(r.ptr + 1, e, *parts);
  if (r.ec != std::errc() || r.ptr == e || *r.ptr != ' ') return false;
  if (*parts < 1 || *parts > kJournalSnapshotParts || *part < 0 || *part >= *parts) {
    return false;
  }
  const char* hex = r.ptr + 1;
  const std::size_t digits = static_cast<std::size_t>(e - hex);
  if (digits % 2 != 0 || digits / 2 > kJournalSnapshotPart) return false;
  unsigned char* out = reinterpret_cast<unsigned char*>(line);
  for (std::size_t i = 0; i < digits / 2; ++i) {
    const int high = HexValue(hex[2 * i]);
    const int low = HexValue(hex[2 * i + 1]);
    if (high < 0 || low < 0) return false;
    out[i] = static_cast<unsigned char>(high * 16 + low);
  }
  *size = digits / 2;
  return true;
}

JournalMarker ParseJournalMarker(const char* line, std::size_t length) {
  const std::size_t prefix = sizeof kMarkerPrefix - 1;
  if (length <= prefix || std::memcmp(line, kMarkerPrefix, prefix) != 0) {
    return JournalMarker::kOther;
  }
  const char* b = line + prefix;
  const char* const e = line + length;
  const char* p = b;
  while (p < e && *p >= '0' && *p <= '9') ++p;
  if (p == b || p - b > 9 || (p < e && *p != ' ')) return JournalMarker::kOther;
  int version = 0;
  std::from_chars(b, p, version);
  if (version == kJournalVersion) return JournalMarker::kJournal;
  return version > kJournalVersion ? JournalMarker::kNewer : JournalMarker::kOther;
}

}  // namespace kez
