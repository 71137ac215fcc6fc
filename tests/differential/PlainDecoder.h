#pragma once

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

// Data lines decoded as their description reads, without a thought for speed: the standard
// library's own conversion of each field, one field and one line after the other.

inline bool isDigitChar(char c) {
  return c >= '0' && c <= '9';
}

struct PlainField {
  enum Kind { None, Integer, Double, Text } kind = None;
  std::string text; // without the blanks around it
  long long integer = 0;
  double real = 0;

  explicit PlainField(const std::string& written) {
    const std::size_t first = written.find_first_not_of(" \t\r");
    if (first == std::string::npos) return;
    text = written.substr(first, written.find_last_not_of(" \t\r") - first + 1);
    Classify();
    if (!std::isinf(real)) return;
    kind = Text; // too large to be a number
    real = 0;
  }
  bool IsLabel() const { return kind == Integer && std::llabs(integer) <= 999999999; }
  // Nearer to zero than a number can be held with all its digits.
  bool IsTiny() const {
    const std::string mantissa = text.substr(0, text.find_first_of("eEdD"));
    return IsNumber() && std::fabs(real) < 2.2250738585072014e-308 &&
           mantissa.find_first_of("123456789") != std::string::npos;
  }
  bool IsNumber() const { return kind == Integer || kind == Double; }

private:
  static std::size_t SkipDigits(const std::string& s, std::size_t at) {
    while (at < s.size() && isDigitChar(s[at])) ++at;
    return at;
  }

  void Classify() {
    kind = Text;
    std::string c; // the same number in the spelling of C
    for (const char letter : text) c += letter == 'd' || letter == 'D' ? 'e' : letter;
    const std::size_t sign = c[0] == '+' || c[0] == '-' ? 1 : 0;
    std::size_t at = SkipDigits(c, sign);
    std::size_t digits = at - sign;
    if (at == c.size() && digits > 0) return SetWhole(c);
    if (at < c.size() && c[at] == '.') {
      const std::size_t end = SkipDigits(c, at + 1);
      digits += end - at - 1;
      at = end;
    }
    if (digits == 0) return;
    if (at < c.size() && (c[at] == 'e' || c[at] == 'E')) {
      ++at;
      if (at < c.size() && (c[at] == '+' || c[at] == '-')) ++at;
      const std::size_t end = SkipDigits(c, at);
      if (end == at) return;
      at = end;
    }
    if (at != c.size()) return;
    kind = Double;
    real = std::strtod(c.c_str(), nullptr);
  }

  void SetWhole(const std::string& c) {
    errno = 0;
    integer = std::strtoll(c.c_str(), nullptr, 10);
    kind = errno == ERANGE ? Double : Integer; // beyond 64 bits
    if (kind == Double) integer = 0;
    real = kind == Double ? std::strtod(c.c_str(), nullptr) : static_cast<double>(integer);
  }
};

// Fields of a line; a pair of quotes protects the commas between them. None for a blank line.
inline std::vector<PlainField> plainFields(const std::string& line) {
  std::vector<PlainField> fields;
  if (line.find_first_not_of(" \t\r") == std::string::npos) return fields;
  std::string field;
  for (std::size_t at = 0; at < line.size(); ++at) {
    const std::size_t close = line[at] == '"' ? line.find('"', at + 1) : std::string::npos;
    if (close != std::string::npos) {
      field += line.substr(at, close - at + 1);
      at = close;
    } else if (line[at] == ',') {
      fields.emplace_back(field);
      field.clear();
    } else {
      field += line[at];
    }
  }
  fields.emplace_back(field);
  return fields;
}

// The lines that are no comments.
inline std::vector<std::string> plainLines(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    const std::string line = text.substr(at, end - at);
    const std::size_t first = line.find_first_not_of(" \t\r");
    if (first == std::string::npos || line.compare(first, 2, "**") != 0) lines.push_back(line);
    at = end + 1;
  }
  return lines;
}
