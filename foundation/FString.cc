#include "foundation/FString.h"

#include <cstdint>
#include <cstring>
#include <utility>

namespace vorn {

namespace {

// Scratch size for number formatting.
const int kScratch = 256;

// Longest binary form a reader accepts (count includes the NUL).
const int kMaxBinaryCount = 65535;

inline const char* OrEmpty(const char* s) { return s ? s : ""; }

// A string holding the first `n` bytes at `s` (n >= 1, no NUL among them).
FString FromBytes(const char* s, int n) {
  FString r;
  r.bufferSize = FString::GetStrBuf(r.text, n + 1);
  std::memcpy(r.text, s, static_cast<std::size_t>(n));
  r.text[n] = '\0';
  return r;
}

}  // namespace

// ---- helpers on bare text ---------------------------------------------------

int FString::FreeStr(char*& text) {
  delete[] text;
  text = nullptr;
  return 0;
}

int FString::GetStrBuf(char*& text, int n) {
  FreeStr(text);
  const int size = n < 16 ? 16 : n;
  text = new char[static_cast<std::size_t>(size)]();
  return size;
}

int FString::LetStr(char*& text, int size, const char* s) {
  if (s == text) return size;
  if (s == nullptr || *s == '\0') return FreeStr(text);
  const std::size_t len = std::strlen(s);
  if (text != nullptr && len < static_cast<std::size_t>(size)) {
    // The new text may be a tail of the old one (SplitStrBy assigns the rest
    // of a string to itself), so move rather than copy, then zero the rest
    // of the buffer as strncpy would.
    std::memmove(text, s, len);
    std::memset(text + len, 0, static_cast<std::size_t>(size) - len);
    return size;
  }
  const std::size_t want = len + 1 < 16 ? 16 : len + 1;
  char* grown = new char[want];
  std::memcpy(grown, s, len + 1);
  delete[] text;  // after the copy: `s` may live in the old buffer
  text = grown;
  return static_cast<int>(want);
}

int FString::AddStr(char*& text, int size, const char* s) {
  if (text == nullptr) return LetStr(text, size, s);
  if (s == nullptr) return size;
  const std::size_t have = std::strlen(text);
  const std::size_t add = std::strlen(s);
  const std::size_t total = have + add;
  if (total >= static_cast<std::size_t>(size)) {
    const std::size_t want = total + 1 < 16 ? 16 : total + 1;
    char* grown = new char[want];
    std::snprintf(grown, want, "%s%s", text, s);
    delete[] text;
    text = grown;
    return static_cast<int>(want);
  }
  // `s` may be this very text (s += s); memmove copes with the overlap.
  std::memmove(text + have, s, add + 1);
  return size;
}

int FString::IntStr(char*& text, int size, int v) {
  char buf[kScratch];
  std::snprintf(buf, sizeof buf, "%d", v);
  return LetStr(text, size, buf);
}

int FString::UnsignedIntStr(char*& text, int size, unsigned v) {
  char buf[kScratch];
  std::snprintf(buf, sizeof buf, "%u", v);
  return LetStr(text, size, buf);
}

int FString::HexStr(char*& text, int size, int v, int width) {
  // Two steps: the width goes into the format ("%08x" for 8), then the value.
  char format[kScratch];
  std::snprintf(format, sizeof format, "%%0%dx", width);
  char buf[kScratch];
  std::snprintf(buf, sizeof buf, format, static_cast<unsigned>(v));
  return LetStr(text, size, buf);
}

int FString::FloatStr(char*& text, int size, float v) {
  char buf[kScratch];
  std::snprintf(buf, sizeof buf, "%.10g", static_cast<double>(v));
  return LetStr(text, size, buf);
}

int FString::DoubleStr(char*& text, int size, double v) {
  char buf[kScratch];
  std::snprintf(buf, sizeof buf, "%.16g", v);
  return LetStr(text, size, buf);
}

int FString::CmpStr(const char* a, const char* b) {
  a = OrEmpty(a);
  b = OrEmpty(b);
  const std::size_t la = std::strlen(a);
  const std::size_t lb = std::strlen(b);
  return std::strncmp(a, b, (la < lb ? la : lb) + 1);
}

// ---- construction and assignment --------------------------------------------

FString::FString() {}

FString::FString(const char* s) { bufferSize = LetStr(text, 0, s); }

FString::FString(const FString& other) { bufferSize = LetStr(text, 0, other.text); }

FString::FString(FString&& other) noexcept : text(other.text), bufferSize(other.bufferSize) {
  other.text = nullptr;
  other.bufferSize = 0;
}

FString::FString(bool b) { bufferSize = IntStr(text, 0, b & 1); }

FString::FString(int v) { bufferSize = IntStr(text, 0, v); }

FString::FString(unsigned v) { bufferSize = UnsignedIntStr(text, 0, v); }

FString::FString(int v, int width) { bufferSize = HexStr(text, 0, v, width); }

FString::FString(float v) { bufferSize = FloatStr(text, 0, v); }

FString::FString(double v) { bufferSize = DoubleStr(text, 0, v); }

FString::FString(FILE* f) {
  if (f == nullptr) return;
  std::int32_t n = 0;
  if (std::fread(&n, sizeof n, 1, f) != 1) return;
  if (n < 1 || n > kMaxBinaryCount) return;
  // One spare byte keeps the text terminated even when the stored bytes
  // carry no NUL; the text ends at the first NUL either way.
  char* buf = new char[static_cast<std::size_t>(n) + 1];
  if (std::fread(buf, 1, static_cast<std::size_t>(n), f) == static_cast<std::size_t>(n)) {
    buf[n] = '\0';
    bufferSize = LetStr(text, 0, buf);
  }
  delete[] buf;
}

FString::~FString() { FreeStr(text); }

FString& FString::operator=(const FString& other) {
  bufferSize = LetStr(text, bufferSize, other.text);
  return *this;
}

FString& FString::operator=(FString&& other) noexcept {
  if (this != &other) {
    FreeStr(text);
    text = other.text;
    bufferSize = other.bufferSize;
    other.text = nullptr;
    other.bufferSize = 0;
  }
  return *this;
}

FString& FString::operator=(const char* s) {
  bufferSize = LetStr(text, bufferSize, s);
  return *this;
}

// ---- queries ----------------------------------------------------------------

int FString::Length() const { return text ? static_cast<int>(std::strlen(text)) : 0; }

FString FString::operator+(const FString& other) const { return *this + other.text; }

FString FString::operator+(const char* s) const {
  FString r(*this);
  r += s;
  return r;
}

FString& FString::operator+=(const FString& other) { return *this += other.text; }

FString& FString::operator+=(const char* s) {
  bufferSize = AddStr(text, bufferSize, s);
  return *this;
}

bool FString::operator==(const FString& other) const { return CmpStr(text, other.text) == 0; }
bool FString::operator==(const char* s) const { return CmpStr(text, s) == 0; }
bool FString::operator!=(const FString& other) const { return CmpStr(text, other.text) != 0; }
bool FString::operator!=(const char* s) const { return CmpStr(text, s) != 0; }
bool FString::operator>(const FString& other) const { return CmpStr(text, other.text) > 0; }
bool FString::operator>(const char* s) const { return CmpStr(text, s) > 0; }
bool FString::operator<(const FString& other) const { return CmpStr(text, other.text) < 0; }
bool FString::operator<(const char* s) const { return CmpStr(text, s) < 0; }

int FString::Pos(const FString& needle) const { return Pos(needle.text); }

int FString::Pos(const char* needle) const {
  if (text == nullptr || needle == nullptr || *needle == '\0') return 0;
  const char* hit = std::strstr(text, needle);
  return hit ? static_cast<int>(hit - text) + 1 : 0;
}

FString FString::SubString(int start, int count) const {
  // 64-bit arithmetic: start and count may be anywhere in the int range.
  long long first = start;
  long long n = count;
  if (first < 1) {
    n -= 1 - first;
    first = 1;
  }
  const long long s0 = first - 1;
  const long long len = Length();
  if (n < 1 || len <= s0) return FString();
  if (n > len - s0) n = len - s0;
  return FromBytes(text + s0, static_cast<int>(n));
}

FString FString::SplitBy(const char* sep) { return SplitStrBy(*this, sep); }

FString FString::SplitBy(FString sep) { return SplitStrBy(*this, sep.text); }

FString FString::SplitStrBy(FString& s, const char* sep) {
  // An empty separator never occurs: splitting by it takes the whole string,
  // so loops that split until the string is empty always end.
  const char* hit = nullptr;
  if (sep != nullptr && *sep != '\0' && s.text != nullptr) hit = std::strstr(s.text, sep);
  if (hit == nullptr) {
    FString all(std::move(s));  // leaves s empty
    return all;
  }
  const int p = static_cast<int>(hit - s.text);
  FString head = p > 0 ? FromBytes(s.text, p) : FString();
  s.bufferSize = LetStr(s.text, s.bufferSize, hit + std::strlen(sep));
  return head;
}

FString FString::ReplaceStr(const char* from, const char* to) const {
  // The result is what repeated splitting gives: r += SplitStrBy(w, from),
  // then `to` only while something of w is left. So a separator at the very
  // end is dropped without a replacement ('a,b,' becomes 'a;b'), and an empty
  // `from` leaves the string as it is. Both are kept on purpose. The walk
  // below produces the same text in one pass per stage instead of moving the
  // rest of the string after every piece: the first pass measures, the
  // second copies.
  if (text == nullptr || from == nullptr || *from == '\0') return *this;
  const std::size_t fromLen = std::strlen(from);
  const std::size_t toLen = to ? std::strlen(to) : 0;
  FString r;
  char* out = nullptr;
  for (int pass = 0; pass < 2; ++pass) {
    std::size_t n = 0;
    const char* rest = text;
    for (;;) {
      const char* hit = std::strstr(rest, from);
      const std::size_t piece = hit ? static_cast<std::size_t>(hit - rest) : std::strlen(rest);
      if (out) std::memcpy(out + n, rest, piece);
      n += piece;
      if (hit == nullptr) break;
      rest = hit + fromLen;
      if (*rest == '\0') break;
      if (out && toLen > 0) std::memcpy(out + n, to, toLen);
      n += toLen;
    }
    if (n == 0) break;  // the empty string
    if (pass == 0) {
      // Zero-filled, so the text ends right after the last byte copied.
      r.bufferSize = GetStrBuf(r.text, static_cast<int>(n) + 1);
      out = r.text;
    }
  }
  return r;
}

FString FString::ReplaceStr(FString from, FString to) const {
  return ReplaceStr(from.text, to.text);
}

// ---- number parsing ---------------------------------------------------------

int FString::AsInt() const { return StrInt(text); }

unsigned FString::AsUnsignedInt() const { return StrUnsignedInt(text); }

double FString::AsFloat() const { return StrFloat(text); }

int FString::StrInt(const char* s) {
  if (s == nullptr || *s == '\0') return 0;
  // Any 'x' anywhere makes the text hexadecimal ('0x1f' and '1fx' alike).
  if (std::strchr(s, 'x') != nullptr) {
    unsigned v = 0;
    return std::sscanf(s, "%x", &v) == 1 ? static_cast<int>(v) : 0;
  }
  int v = 0;
  return std::sscanf(s, "%d", &v) == 1 ? v : 0;
}

unsigned FString::StrUnsignedInt(const char* s) {
  if (s == nullptr || *s == '\0') return 0;
  unsigned v = 0;
  const char* format = std::strchr(s, 'x') != nullptr ? "%x" : "%u";
  return std::sscanf(s, format, &v) == 1 ? v : 0;
}

double FString::StrFloat(const char* s) {
  if (s == nullptr || *s == '\0') return 0.0;
  double v = 0.0;
  return std::sscanf(s, "%lf", &v) == 1 ? v : 0.0;
}

FString FString::FExtractFileName(const char* path) {
  // Only the backslash separates; a forward slash is an ordinary character.
  if (path == nullptr) return FString();
  const char* last = std::strrchr(path, '\\');
  return FString(last ? last + 1 : path);
}

// ---- binary form ------------------------------------------------------------

bool FString::SaveToFile(FILE* f) const {
  if (f == nullptr) return false;
  const std::int32_t n = text ? static_cast<std::int32_t>(std::strlen(text)) + 1 : 1;
  const char zero = '\0';
  const char* bytes = text ? text : &zero;
  const bool countOk = std::fwrite(&n, sizeof n, 1, f) == 1;
  const std::size_t size = static_cast<std::size_t>(n);
  const bool textOk = std::fwrite(bytes, 1, size, f) == size;
  return countOk && textOk;
}

}  // namespace vorn
