#include "inpS/messages/inpS_MessageText.h"
#include "base/utl_Assert.h"
#include "parser/inp_Utf8Text.h"
#include <algorithm>
#include <charconv>

namespace {

const char* endOfChar(const char* at, const char* end) {
  return at + std::max<std::size_t>(1, inp_utf8CharLength(at, end));
}

// End of the line that starts at `line`: behind its line feed, where it has to be broken, or the
// text's end. Looks at `width` + 1 characters only.
const char* endOfLine(const char* line, const char* end, int width) {
  const char* behindBlank = nullptr;
  const char* atWidth = line;
  const char* at = line;
  for (int column = 0; column <= width; ++column) {
    if (at == end) return end;
    if (*at == '\n') return at + 1;
    if (*at == ' ' && column > 0) behindBlank = at + 1;
    if (column == width) atWidth = at;
    at = endOfChar(at, end);
  }
  return behindBlank ? behindBlank : atWidth;
}

// The number n of a placeholder "%n$s" at `at`, which moves behind it; 0 when there is none.
std::size_t readPlaceholder(const char*& at, const char* end) {
  std::size_t number = 0;
  const auto digits = std::from_chars(at + 1, end, number);
  if (digits.ec != std::errc() || end - digits.ptr < 2) return 0;
  if (digits.ptr[0] != '$' || digits.ptr[1] != 's') return 0;
  at = digits.ptr + 2;
  return number;
}

} // namespace

cow_String inpS_wrapText(std::string_view text, int width, std::string_view indentation) {
  utl_ASSERT(width > 0);
  cow_String result;
  result.reserve(text.size() + text.size() / 4);
  const char* const end = text.data() + text.size();
  for (const char* line = text.data(); line != end;) {
    const char* const next = endOfLine(line, end, width);
    result.append(line, next);
    const bool hasLineFeed = next[-1] == '\n';
    if (next != end && !hasLineFeed) result += '\n';
    if (next != end || hasLineFeed) result += indentation;
    line = next;
  }
  return result;
}

cow_String inpS_substitutePlaceholders(std::string_view text, const cow_List<inpS_MsgArg>& args) {
  cow_String result;
  result.reserve(text.size());
  const char* const end = text.data() + text.size();
  for (const char* at = text.data(); at != end;) {
    const char* behind = at;
    const std::size_t number = *at == '%' ? readPlaceholder(behind, end) : 0;
    if (number >= 1 && number <= args.size()) {
      result += args[number - 1].AsString();
      at = behind;
    } else {
      result += *at++;
    }
  }
  return result;
}

cow_String inpS_toUtf8(std::string_view text) {
  cow_String result;
  result.reserve(text.size());
  const char* const end = text.data() + text.size();
  for (const char* at = text.data(); at != end;) {
    const std::size_t length = inp_utf8CharLength(at, end);
    if (length == 0) {
      result += inp_escaped({at, 1});
      ++at;
    } else {
      result.append(at, length);
      at += length;
    }
  }
  return result;
}
