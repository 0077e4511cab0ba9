// For tests that check a tool's JSON output by its values: a small, strict
// reader of JSON text (RFC 8259: objects, arrays, strings with escapes,
// numbers, true, false, null) into a tree of JsonValue. Parse() returns false
// for anything that is not exactly one JSON value, surrounded by white space
// at most, so a test also proves that the output is valid JSON. Numbers are
// read with strtod; \u escapes outside ASCII are kept as '?', which is
// enough for tests.
#ifndef KEZ_TESTS_SUPPORT_JSON_VALUE_H_
#define KEZ_TESTS_SUPPORT_JSON_VALUE_H_

#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace kez_testing {

class JsonValue {
 public:
  enum Kind { kNull, kBool, kNumber, kString, kArray, kObject };

  Kind kind = kNull;
  bool boolean = false;
  double number = 0.0;
  std::string text;
  std::vector<JsonValue> items;                // kArray
  std::map<std::string, JsonValue> members;    // kObject

  // False unless `json` is one JSON value.
  static bool Parse(const std::string& json, JsonValue* out) {
    Reader r{json.c_str(), json.c_str() + json.size()};
    r.Space();
    if (!r.Value(out, 0)) return false;
    r.Space();
    return r.p == r.end;
  }

  bool Has(const std::string& key) const {
    return kind == kObject && members.count(key) != 0;
  }
  // The member `key`, or a null value when there is none.
  const JsonValue& operator[](const std::string& key) const {
    static const JsonValue none;
    if (kind != kObject) return none;
    auto it = members.find(key);
    return it == members.end() ? none : it->second;
  }
  const JsonValue& operator[](std::size_t i) const {
    static const JsonValue none;
    return kind == kArray && i < items.size() ? items[i] : none;
  }
  std::size_t size() const { return kind == kArray ? items.size() : members.size(); }

 private:
  struct Reader {
    const char* p;
    const char* end;

    void Space() {
      while (p < end && (*p == ' ' || *p == '\t' || *p == '\n' || *p == '\r')) ++p;
    }
    bool Literal(const char* word) {
      const std::size_t n = std::strlen(word);
      if (static_cast<std::size_t>(end - p) < n || std::strncmp(p, word, n) != 0) return false;
      p += n;
      return true;
    }
    bool String(std::string* out) {
      if (p >= end || *p != '"') return false;
      ++p;
      while (p < end && *p != '"') {
        const unsigned char c = static_cast<unsigned char>(*p);
        if (c < 0x20) return false;
        if (c != '\\') {
          out->push_back(*p++);
          continue;
        }
        if (++p >= end) return false;
        switch (*p++) {
          case '"': out->push_back('"'); break;
          case '\\': out->push_back('\\'); break;
          case '/': out->push_back('/'); break;
          case 'b': out->push_back('\b'); break;
          case 'f': out->push_back('\f'); break;
          case 'n': out->push_back('\n'); break;
          case 'r': out->push_back('\r'); break;
          case 't': out->push_back('\t'); break;
          case 'u': {
            if (end - p < 4) return false;
            unsigned code = 0;
            for (int i = 0; i < 4; ++i, ++p) {
              const char h = *p;
              code <<= 4;
              if (h >= '0' && h <= '9') code |= h - '0';
              else if (h >= 'a' && h <= 'f') code |= h - 'a' + 10;
              else if (h >= 'A' && h <= 'F') code |= h - 'A' + 10;
              else return false;
            }
            out->push_back(code < 0x80 ? static_cast<char>(code) : '?');
            break;
          }
          default:
            return false;
        }
      }
      if (p >= end) return false;
      ++p;
      return true;
    }
    bool Number(double* out) {
      // The JSON grammar: -?(0|[1-9][0-9]*)(\.[0-9]+)?([eE][+-]?[0-9]+)?
      const char* start = p;
      if (p < end && *p == '-') ++p;
      if (p >= end) return false;
      if (*p == '0') {
        ++p;
      } else if (*p >= '1' && *p <= '9') {
        while (p < end && *p >= '0' && *p <= '9') ++p;
      } else {
        return false;
      }
      if (p < end && *p == '.') {
        ++p;
        if (p >= end || *p < '0' || *p > '9') return false;
        while (p < end && *p >= '0' && *p <= '9') ++p;
      }
      if (p < end && (*p == 'e' || *p == 'E')) {
        ++p;
        if (p < end && (*p == '+' || *p == '-')) ++p;
        if (p >= end || *p < '0' || *p > '9') return false;
        while (p < end && *p >= '0' && *p <= '9') ++p;
      }
      *out = std::strtod(std::string(start, p).c_str(), nullptr);
      return true;
    }
    bool Value(JsonValue* v, int depth) {
      if (depth > 200 || p >= end) return false;
      if (*p == '{') {
        ++p;
        v->kind = kObject;
        Space();
        if (p < end && *p == '}') return ++p, true;
        for (;;) {
          Space();
          std::string key;
          if (!String(&key)) return false;
          Space();
          if (p >= end || *p != ':') return false;
          ++p;
          Space();
          JsonValue member;
          if (!Value(&member, depth + 1)) return false;
          v->members[key] = std::move(member);
          Space();
          if (p < end && *p == ',') { ++p; continue; }
          if (p < end && *p == '}') return ++p, true;
          return false;
        }
      }
      if (*p == '[') {
        ++p;
        v->kind = kArray;
        Space();
        if (p < end && *p == ']') return ++p, true;
        for (;;) {
          Space();
          JsonValue item;
          if (!Value(&item, depth + 1)) return false;
          v->items.push_back(std::move(item));
          Space();
          if (p < end && *p == ',') { ++p; continue; }
          if (p < end && *p == ']') return ++p, true;
          return false;
        }
      }
      if (*p == '"') {
        v->kind = kString;
        return String(&v->text);
      }
      if (Literal("true")) { v->kind = kBool; v->boolean = true; return true; }
      if (Literal("false")) { v->kind = kBool; v->boolean = false; return true; }
      if (Literal("null")) { v->kind = kNull; return true; }
      v->kind = kNumber;
      return Number(&v->number);
    }
  };
};

}  // namespace kez_testing

#endif  // KEZ_TESTS_SUPPORT_JSON_VALUE_H_
