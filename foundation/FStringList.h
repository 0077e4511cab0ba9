// FStringList: a list of owned strings with text-file, splitting, key=value
// lookup and joining operations, and a length-prefixed binary form.
//
// Text files are read as bytes and split at '\n'; trailing control
// characters ('\r', '\t', ...) of every line are dropped. The binary form is a
// 4-byte count of strings, then per string a 4-byte length without NUL and the
// bytes (it differs on purpose from FString's own form, whose count includes
// the NUL).
#ifndef KEZ_FOUNDATION_FSTRINGLIST_H_
#define KEZ_FOUNDATION_FSTRINGLIST_H_

#include <cstdio>

#include "foundation/FList.h"
#include "foundation/FString.h"
#include "kez/export.h"

namespace vorn {

class KEZ_EXPORT FStringList : public FListP<FString> {
 public:
  FStringList() {}
  ~FStringList() override {}

  // Replaces the contents by the lines of a text file, reading at most
  // `maxBytes` bytes (0 = all). False when the file cannot be opened or read.
  bool LoadFromFile(const char* path, unsigned maxBytes);
  // Writes each string as a line. False when a write fails.
  bool SaveToFile(const char* path) const;
  // Binary form.
  bool LoadFromFile(FILE* f);
  bool SaveToFile(FILE* f) const;

  // Replaces the contents by the pieces of `s` between separators; always at
  // least one piece.
  void SplitStr(FString s, const char* sep);
  // Appends the pieces of `s` between separators that stand outside the
  // bracket pair brackets[0] .. brackets[1].
  void SplitStr(FString s, FString sep, FString brackets);

  // The rest of the first line that starts with "key=", or "".
  FString Values(FString key) const;
  // All strings joined with "\n" between them.
  FString GetText() const;
};

}  // namespace vorn

#endif  // KEZ_FOUNDATION_FSTRINGLIST_H_
