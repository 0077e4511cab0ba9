// Text escaping and number formatting for the tools' machine-readable and
// drawn output: JSON strings, SVG (XML) text, and SVG coordinates.
#ifndef KEZ_TOOLS_COMMON_TEXT_MARKUPTEXT_H_
#define KEZ_TOOLS_COMMON_TEXT_MARKUPTEXT_H_

#include <string>

namespace kez_tools {

// `s` as a quoted JSON string ("\"" and "\\" escaped, control characters
// as \u00XX).
std::string JsonString(const std::string& s);
// `s` with &, <, > and " escaped for XML text and attributes.
std::string XmlEscape(const std::string& s);
// A coordinate with one decimal ("%.1f").
std::string SvgNumber(double v);

}  // namespace kez_tools

#endif  // KEZ_TOOLS_COMMON_TEXT_MARKUPTEXT_H_
