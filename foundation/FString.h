// FString: the library's owned, NUL-terminated byte string.
//
// The empty string is always a null `text` (assigning "" releases the
// buffer); a non-null `text` is never empty and its buffer holds at least 16
// bytes. Every operation reads a null `text` as "". Positions are 1-based and
// 0 means "not found". Numbers are formatted through a 256-byte scratch
// buffer and parsed with the C library's scanf conversions; parse failures
// give 0. An empty separator never occurs in a string: splitting by it takes
// the whole string. The binary form is a 4-byte native-endian count
// (strlen + 1) followed by that many bytes, NUL included; a reader accepts
// counts 1 to 65535 only.
//
// Buffers: assigning reuses the buffer when the new text fits (the rest of it
// is zeroed), otherwise allocates max(16, length + 1) bytes; appending
// reallocates to max(16, total + 1) bytes when the total does not fit.
#ifndef KEZ_FOUNDATION_FSTRING_H_
#define KEZ_FOUNDATION_FSTRING_H_

#include <cstdio>

#include "kez/export.h"

namespace vorn {

class KEZ_EXPORT FString {
 public:
  char* text = nullptr;  // owned; null for the empty string
  int bufferSize = 0;    // bytes allocated for `text`; 0 when null

  FString();
  FString(const char* s);
  FString(const FString& other);
  FString(FString&& other) noexcept;
  explicit FString(bool b);
  explicit FString(int v);
  explicit FString(unsigned v);
  FString(int v, int width);  // lower-case hex, zero-padded to `width`
  explicit FString(float v);  // "%.10g"
  explicit FString(double v);  // "%.16g"
  explicit FString(FILE* f);  // binary form; empty when absent or bad
  virtual ~FString();

  FString& operator=(const FString& other);
  FString& operator=(FString&& other) noexcept;
  FString& operator=(const char* s);

  int Length() const;
  char* PChar() const { return text; }

  FString operator+(const FString& other) const;
  FString operator+(const char* s) const;
  FString& operator+=(const FString& other);
  FString& operator+=(const char* s);

  bool operator==(const FString& other) const;
  bool operator==(const char* s) const;
  bool operator!=(const FString& other) const;
  bool operator!=(const char* s) const;
  bool operator>(const FString& other) const;
  bool operator>(const char* s) const;
  bool operator<(const FString& other) const;
  bool operator<(const char* s) const;

  int Pos(const FString& needle) const;
  int Pos(const char* needle) const;
  FString SubString(int start, int count) const;
  FString SplitBy(const char* sep);
  FString SplitBy(FString sep);
  FString ReplaceStr(const char* from, const char* to) const;
  FString ReplaceStr(FString from, FString to) const;

  int AsInt() const;
  unsigned AsUnsignedInt() const;
  double AsFloat() const;

  bool SaveToFile(FILE* f) const;

  // Helpers on a bare text pointer and its buffer size; each returns the new
  // buffer size. GetStrBuf releases the old buffer and allocates a zeroed one
  // of max(16, n) bytes; FreeStr releases it and returns 0.
  static int LetStr(char*& text, int size, const char* s);
  static int AddStr(char*& text, int size, const char* s);
  static int FreeStr(char*& text);
  static int GetStrBuf(char*& text, int n);
  static int IntStr(char*& text, int size, int v);
  static int UnsignedIntStr(char*& text, int size, unsigned v);
  static int HexStr(char*& text, int size, int v, int width);
  static int FloatStr(char*& text, int size, float v);
  static int DoubleStr(char*& text, int size, double v);
  static int CmpStr(const char* a, const char* b);

  static FString SplitStrBy(FString& s, const char* sep);
  static int StrInt(const char* s);
  static unsigned StrUnsignedInt(const char* s);
  static double StrFloat(const char* s);
  static FString FExtractFileName(const char* path);
};

}  // namespace vorn

#endif  // KEZ_FOUNDATION_FSTRING_H_
