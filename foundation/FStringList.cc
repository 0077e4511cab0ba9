#include "foundation/FStringList.h"

#include <cctype>
#include <climits>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

namespace vorn {

namespace {

// Most strings a binary form may announce.
const std::int32_t kMaxBinaryStrings = 65536;

// Largest piece read at once while the bytes of one binary string come in;
// a length field that lies about the file costs no more memory than the
// bytes that really arrive.
const std::size_t kReadChunk = 1 << 16;

// A new heap string holding `n` bytes at `s`, cut at the first NUL among them.
FString* NewString(const char* s, std::size_t n) {
  const void* nul = std::memchr(s, '\0', n);
  if (nul != nullptr) n = static_cast<std::size_t>(static_cast<const char*>(nul) - s);
  FString* r = new FString();
  if (n > 0) {
    r->bufferSize = FString::GetStrBuf(r->text, static_cast<int>(n) + 1);
    std::memcpy(r->text, s, n);
    r->text[n] = '\0';
  }
  return r;
}

// Reads up to `want` bytes of one binary string; returns the buffer (NUL
// terminated) and sets `got` to the bytes that arrived.
char* ReadBytes(FILE* f, std::size_t want, std::size_t& got) {
  std::size_t cap = want < kReadChunk ? want : kReadChunk;
  char* buf = new char[cap + 1];
  got = 0;
  while (got < want) {
    if (got == cap) {
      std::size_t grown = cap * 2 < want ? cap * 2 : want;
      char* bigger = new char[grown + 1];
      std::memcpy(bigger, buf, got);
      delete[] buf;
      buf = bigger;
      cap = grown;
    }
    const std::size_t n = std::fread(buf + got, 1, cap - got, f);
    got += n;
    if (n == 0) break;
  }
  buf[got] = '\0';
  return buf;
}

}  // namespace

bool FStringList::LoadFromFile(const char* path, unsigned maxBytes) {
  Clear();
  if (path == nullptr) return false;
  FILE* f = std::fopen(path, "rb");
  if (f == nullptr) return false;
  long length = -1;
  if (std::fseek(f, 0, SEEK_END) == 0) length = std::ftell(f);
  if (length < 0 || std::fseek(f, 0, SEEK_SET) != 0) {
    std::fclose(f);
    return false;
  }
  std::size_t size = static_cast<std::size_t>(length);
  if (maxBytes != 0 && size > maxBytes) size = maxBytes;
  if (size == 0) {
    std::fclose(f);
    return true;
  }
  // Every line must fit an FString, whose size is an int.
  if (size >= static_cast<std::size_t>(INT_MAX)) {
    std::fclose(f);
    return false;
  }
  char* bytes = new (std::nothrow) char[size];
  if (bytes == nullptr || std::fread(bytes, 1, size, f) != size) {
    delete[] bytes;
    std::fclose(f);
    return false;
  }
  std::fclose(f);

  std::size_t start = 0;
  while (start < size) {
    const void* nl = std::memchr(bytes + start, '\n', size - start);
    const std::size_t end =
        nl ? static_cast<std::size_t>(static_cast<const char*>(nl) - bytes) : size;
    // A NUL ends the line's text; trailing control characters go, leading
    // ones stay.
    std::size_t n = end - start;
    const void* nul = std::memchr(bytes + start, '\0', n);
    if (nul != nullptr) {
      n = static_cast<std::size_t>(static_cast<const char*>(nul) - (bytes + start));
    }
    while (n > 0 && std::iscntrl(static_cast<unsigned char>(bytes[start + n - 1]))) --n;
    Add(NewString(bytes + start, n));
    start = end + 1;
  }
  delete[] bytes;
  return true;
}

bool FStringList::SaveToFile(const char* path) const {
  if (path == nullptr) return false;
  FILE* f = std::fopen(path, "wt");
  if (f == nullptr) return false;
  bool ok = true;
  for (int i = 0; i < count; ++i) {
    const char* t = data[i] ? data[i]->text : nullptr;
    const int written = t ? std::fprintf(f, "%s\n", t) : std::fprintf(f, "\n");
    if (written < 0) ok = false;
  }
  if (std::fclose(f) != 0) ok = false;
  return ok;
}

bool FStringList::LoadFromFile(FILE* f) {
  Clear();
  if (f == nullptr) return false;
  std::int32_t n = 0;
  if (std::fread(&n, sizeof n, 1, f) != 1) return false;
  if (n < 0 || n > kMaxBinaryStrings) return false;
  for (std::int32_t i = 0; i < n; ++i) {
    std::int32_t len = 0;
    if (std::fread(&len, sizeof len, 1, f) != 1) return false;
    if (len < 1 || len == INT32_MAX) {
      Add(new FString());
      continue;
    }
    std::size_t got = 0;
    char* buf = ReadBytes(f, static_cast<std::size_t>(len), got);
    // What arrived is kept even when the file ends early; the load as a
    // whole then fails.
    Add(NewString(buf, got));
    delete[] buf;
    if (got != static_cast<std::size_t>(len)) return false;
  }
  return true;
}

bool FStringList::SaveToFile(FILE* f) const {
  if (f == nullptr) return false;
  bool ok = true;
  const std::int32_t n = count;
  if (std::fwrite(&n, sizeof n, 1, f) != 1) ok = false;
  for (int i = 0; i < count; ++i) {
    const char* t = data[i] ? data[i]->text : nullptr;
    const std::int32_t len = t ? static_cast<std::int32_t>(std::strlen(t)) : 0;
    if (std::fwrite(&len, sizeof len, 1, f) != 1) ok = false;
    const std::size_t size = static_cast<std::size_t>(len);
    if (len > 0 && std::fwrite(t, 1, size, f) != size) ok = false;
  }
  return ok;
}

void FStringList::SplitStr(FString s, const char* sep) {
  Clear();
  // An empty separator never occurs (it would split forever).
  if (sep != nullptr && *sep != '\0' && s.text != nullptr) {
    const std::size_t sepLen = std::strlen(sep);
    const char* rest = s.text;
    const char* hit;
    while (*rest != '\0' && (hit = std::strstr(rest, sep)) != nullptr) {
      Add(NewString(rest, static_cast<std::size_t>(hit - rest)));
      rest = hit + sepLen;
    }
    Add(new FString(rest));
    return;
  }
  Add(new FString(std::move(s)));
}

void FStringList::SplitStr(FString s, FString sep, FString brackets) {
  // The opening test comes before the closing one: with equal bracket
  // characters every one opens, so nothing after the first is split. The
  // depth may go negative, which also stops splitting. Both are kept on
  // purpose; callers rely on the pieces as they come out.
  const char open = brackets.Length() >= 1 ? brackets.text[0] : '\0';
  const char close = brackets.Length() >= 2 ? brackets.text[1] : '\0';
  const std::size_t sepLen = static_cast<std::size_t>(sep.Length());
  const char* t = s.text ? s.text : "";
  const std::size_t len = std::strlen(t);
  int depth = 0;
  std::size_t pieceStart = 0;  // the current piece is t[pieceStart .. i)
  std::size_t i = 0;
  while (i < len) {
    if (depth == 0 && sepLen > 0 && std::strncmp(t + i, sep.text, sepLen) == 0) {
      Add(NewString(t + pieceStart, i - pieceStart));
      i += sepLen;
      pieceStart = i;
      continue;
    }
    const char c = t[i];
    if (c == open) {
      ++depth;
    } else if (c == close) {
      --depth;
    }
    ++i;
  }
  Add(NewString(t + pieceStart, len - pieceStart));
}

FString FStringList::Values(FString key) const {
  const FString prefix = key + "=";
  const std::size_t n = static_cast<std::size_t>(prefix.Length());
  for (int i = 0; i < count; ++i) {
    const char* t = data[i] ? data[i]->text : nullptr;
    if (t != nullptr && std::strncmp(t, prefix.text, n) == 0) return FString(t + n);
  }
  return FString();
}

FString FStringList::GetText() const {
  // One allocation for the whole text: joining by repeated appends would
  // copy it once per line.
  std::size_t total = 0;
  for (int i = 0; i < count; ++i) {
    if (i > 0) ++total;
    if (data[i]) total += static_cast<std::size_t>(data[i]->Length());
  }
  if (total == 0) return FString();
  FString r;
  r.bufferSize = FString::GetStrBuf(r.text, static_cast<int>(total) + 1);
  char* out = r.text;
  for (int i = 0; i < count; ++i) {
    if (i > 0) *out++ = '\n';
    if (data[i] && data[i]->text) {
      const std::size_t n = std::strlen(data[i]->text);
      std::memcpy(out, data[i]->text, n);
      out += n;
    }
  }
  *out = '\0';
  return r;
}

}  // namespace vorn
