#include "TextFormat.h"

#include <cmath>
#include <cstdio>

namespace kez_tools {

std::string Fixed(double v, int decimals) {
  if (std::isnan(v)) return "-";
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", decimals, v);
  return text;
}

std::string Pad(const std::string& s, size_t width, bool right) {
  size_t chars = 0;
  for (unsigned char c : s) chars += (c & 0xC0) != 0x80;
  if (chars >= width) return s;
  const std::string fill(width - chars, ' ');
  return right ? fill + s : s + fill;
}

std::string Count(size_t n, const char* one, const char* many) {
  return std::to_string(n) + " " + (n == 1 ? one : many);
}

std::string BaseName(const std::string& path) {
  const size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace kez_tools
