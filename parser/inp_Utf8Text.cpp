#include "parser/inp_Utf8Text.h"

namespace {

unsigned byteAt(const char* p) {
  return static_cast<unsigned char>(*p);
}

// Length by the first byte and the range its second byte must lie in: what excludes overlong forms,
// surrogates and everything past U+10FFFF.
struct Lead {
  std::size_t length;
  unsigned low, high;
};

Lead leadOf(unsigned first) {
  if (first < 0xC2) return {0, 0, 0};
  if (first < 0xE0) return {2, 0x80, 0xBF};
  if (first < 0xF0) return {3, first == 0xE0 ? 0xA0u : 0x80u, first == 0xED ? 0x9Fu : 0xBFu};
  if (first < 0xF5) return {4, first == 0xF0 ? 0x90u : 0x80u, first == 0xF4 ? 0x8Fu : 0xBFu};
  return {0, 0, 0};
}

} // namespace

std::size_t inp_utf8CharLength(const char* p, const char* end) {
  if (p == end) return 0;
  if (byteAt(p) < 0x80) return 1;
  const Lead lead = leadOf(byteAt(p));
  if (lead.length == 0 || static_cast<std::size_t>(end - p) < lead.length) return 0;
  if (byteAt(p + 1) < lead.low || byteAt(p + 1) > lead.high) return 0;
  for (std::size_t i = 2; i < lead.length; ++i)
    if ((byteAt(p + i) & 0xC0) != 0x80) return 0;
  return lead.length;
}

std::size_t inp_countChars(std::string_view text) {
  std::size_t count = 0;
  const char* const end = text.data() + text.size();
  for (const char* p = text.data(); p != end; ++count) {
    const std::size_t length = inp_utf8CharLength(p, end);
    p += length ? length : 1;
  }
  return count;
}

cow_String inp_printable(std::string_view text, std::size_t maxBytes) {
  static constexpr std::string_view replacement = "\xEF\xBF\xBD"; // U+FFFD
  cow_String out;
  const char* const begin = text.data();
  const char* const end = begin + text.size();
  for (const char* p = begin; p != end;) {
    const std::size_t length = inp_utf8CharLength(p, end);
    if (static_cast<std::size_t>(p - begin) + (length ? length : 1) > maxBytes) return out + "…";
    const bool control = (byteAt(p) < 0x20 && *p != '\t') || byteAt(p) == 0x7F;
    if (length == 0 || control) {
      out += replacement;
      ++p;
      continue;
    }
    out.append(p, length);
    p += length;
  }
  return out;
}
