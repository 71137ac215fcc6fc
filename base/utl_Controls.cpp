#include "base/utl_Controls.h"
#include "base/utl_Stream.h"

namespace {

// How many bytes the control character has that stands here; 0: none does.
std::size_t controlAt(std::string_view text, std::size_t at) {
  const auto byte = static_cast<unsigned char>(text[at]);
  if (byte < 0x20 || byte == 0x7f) return 1;
  if (byte != 0xc2 || at + 1 == text.size()) return 0;
  return (static_cast<unsigned char>(text[at + 1]) & 0xe0) == 0x80 ? 2 : 0;
}

// Whether an asterisk that comes next would begin a keyword line or a comment.
bool mayBegin(std::string_view out) {
  const std::size_t feed = out.rfind('\n');
  const std::string_view line = feed == out.npos ? out : out.substr(feed + 1);
  const std::size_t first = line.find_first_not_of(" \t");
  return first == line.npos || line.substr(first) == "*";
}

} // namespace

std::size_t utl_findControl(std::string_view text, std::size_t from) {
  for (std::size_t at = from; at < text.size(); ++at)
    if (controlAt(text, at) != 0) return at;
  return std::string_view::npos;
}

cow_String utl_withoutControls(std::string_view text) {
  cow_String out;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t bytes = controlAt(text, at);
    if (bytes == 0) out += text[at];
    if (bytes == 1 && std::string_view("\t\n\v\f\r").find(text[at]) != std::string_view::npos)
      out += ' ';
    at += bytes == 0 ? 1 : bytes;
  }
  return out;
}

std::size_t utl_findControlInLines(std::string_view lines, std::size_t from) {
  for (std::size_t at = from; at < lines.size(); ++at)
    if (lines[at] != '\n' && lines[at] != '\t' && controlAt(lines, at) != 0) return at;
  return std::string_view::npos;
}

void utl_dropControlsInLines(cow_String& lines) {
  std::size_t at = utl_findControlInLines(lines);
  if (at == std::string_view::npos) return;
  cow_String out;
  std::size_t from = 0;
  for (; at != std::string_view::npos; at = utl_findControlInLines(lines, from)) {
    const std::size_t end = at + controlAt(lines, at);
    out.append(lines, from, at - from);
    out += utl_withoutControls(std::string_view(lines).substr(at, end - at));
    from = end;
    std::size_t next = end; // what follows behind blanks and more of them
    while (next < lines.size() && lines[next] != '\n' &&
           (lines[next] == ' ' || controlAt(lines, next) != 0))
      ++next;
    if (next < lines.size() && lines[next] == '*' && mayBegin(out)) out += '?';
  }
  out.append(lines, from, cow_String::npos);
  lines = std::move(out);
}

void utl_maskControlsInLines(cow_String& lines) {
  std::size_t at = utl_findControlInLines(lines);
  if (at == std::string_view::npos) return;
  cow_String out;
  std::size_t from = 0;
  for (; at != std::string_view::npos; at = utl_findControlInLines(lines, from)) {
    out.append(lines, from, at - from);
    from = at + controlAt(lines, at);
    const cow_String blank = utl_withoutControls(std::string_view(lines).substr(at, from - at));
    out += blank.empty() ? "?" : blank;
  }
  out.append(lines, from, cow_String::npos);
  lines = std::move(out);
}

void utl_printLines(utl_Stream& out, std::string_view lines) {
  if (utl_findControlInLines(lines) == std::string_view::npos) {
    out << lines;
    return;
  }
  cow_String text(lines);
  utl_dropControlsInLines(text);
  out << text;
}
