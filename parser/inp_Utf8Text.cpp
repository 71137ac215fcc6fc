#include "parser/inp_Utf8Text.h"
#include <algorithm>

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

// The number of one valid character, 0 for the empty text.
unsigned codeOf(std::string_view character) {
  if (character.empty()) return 0;
  static constexpr unsigned char leadBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
  unsigned code = byteAt(character.data()) & leadBits[character.size()];
  for (std::size_t i = 1; i < character.size(); ++i)
    code = (code << 6) | (byteAt(character.data() + i) & 0x3Fu);
  return code;
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

bool inp_isPrintable(std::string_view character) {
  const unsigned code = codeOf(character);
  if (code < 0x20) return character == "\t";
  if (code >= 0x7F && code < 0xA0) return false;
  const bool turns = code == 0x061C || code == 0x200E || code == 0x200F ||
                     (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
  return !turns;
}

cow_String inp_escaped(std::string_view character) {
  static constexpr char hex[] = "0123456789abcdef";
  const bool isByte = character.size() == 1;
  const unsigned code = isByte ? byteAt(character.data()) : codeOf(character);
  cow_String text = isByte ? "\\x" : "\\u";
  for (int shift = isByte ? 4 : code > 0xFFFF ? 20 : 12; shift >= 0; shift -= 4)
    text += hex[(code >> shift) & 15];
  return text;
}

cow_String inp_printable(std::string_view text, std::size_t maxBytes) {
  cow_String out;
  const char* const begin = text.data();
  const char* const end = begin + text.size();
  for (const char* p = begin; p != end;) {
    const std::size_t length = inp_utf8CharLength(p, end);
    const std::size_t taken = length ? length : 1;
    if (static_cast<std::size_t>(p - begin) + taken > maxBytes) return out + "…";
    if (length > 0 && inp_isPrintable({p, length}))
      out.append(p, length);
    else
      out += inp_escaped({p, taken});
    p += taken;
  }
  return out;
}

cow_String inp_shortened(std::string_view text, std::size_t maxBytes) {
  if (text.size() <= maxBytes) return cow_String(text);
  const char* p = text.data();
  const char* const end = p + text.size();
  for (const char* const limit = p + maxBytes; p < limit;) {
    const std::size_t taken = std::max<std::size_t>(1, inp_utf8CharLength(p, end));
    if (taken > static_cast<std::size_t>(limit - p)) break;
    p += taken;
  }
  return cow_String(text.data(), p) + "…";
}
