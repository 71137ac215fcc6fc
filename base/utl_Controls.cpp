#include "base/utl_Controls.h"

namespace {

// How many bytes the control character has that stands here; 0: none does.
std::size_t controlAt(std::string_view text, std::size_t at) {
  const auto byte = static_cast<unsigned char>(text[at]);
  if (byte < 0x20 || byte == 0x7f) return 1;
  if (byte != 0xc2 || at + 1 == text.size()) return 0;
  return (static_cast<unsigned char>(text[at + 1]) & 0xe0) == 0x80 ? 2 : 0;
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
