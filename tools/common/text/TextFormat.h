// Small text helpers that every tool's report uses: fixed decimals, padding
// to a column width, the last part of a path.
#ifndef KEZ_TOOLS_COMMON_TEXT_TEXTFORMAT_H_
#define KEZ_TOOLS_COMMON_TEXT_TEXTFORMAT_H_

#include <cstddef>
#include <string>

namespace kez_tools {

// `v` with `decimals` digits after the point ("%.*f"); "-" for NaN.
std::string Fixed(double v, int decimals);

// `s` filled with spaces to `width` characters (UTF-8 characters, not
// bytes), on the right, or on the left when `right` is true (right-aligned).
// Longer text is left as it is.
std::string Pad(const std::string& s, size_t width, bool right = false);

// "1 log", "3 logs": `n` and the word for its number.
std::string Count(size_t n, const char* one, const char* many);

// The part of `path` after its last '/'.
std::string BaseName(const std::string& path);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_TEXT_TEXTFORMAT_H_
