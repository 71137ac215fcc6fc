#include "host/inps_VisibleBuffer.h"

#include "parser/inp_Utf8Text.h"
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <ostream>

namespace {

// Bytes at the begin that are plain: ASCII from the blank to the tilde, tabs and line ends. Whole
// dumps come through here, so eight at a time.
std::size_t plainLength(std::string_view text) {
  constexpr std::uint64_t ones = 0x0101010101010101;
  constexpr std::uint64_t highs = ones << 7;
  std::size_t at = 0;
  const auto isPlain = [](char c) { return (c >= ' ' && c <= '~') || c == '\n' || c == '\t'; };
  while (at < text.size()) {
    std::uint64_t word = 0;
    while (at + sizeof word <= text.size()) {
      std::memcpy(&word, text.data() + at, sizeof word);
      const std::uint64_t low = word & ~highs; // its high bits take what the sums carry
      const std::uint64_t printable = (low + ones * (0x80 - 0x20)) & ~(low + ones) & ~word;
      if ((printable & highs) != highs) break;
      at += sizeof word;
    }
    const std::size_t end = std::min(at + sizeof word, text.size());
    while (at < end && isPlain(text[at])) ++at;
    if (at < end) break;
  }
  return at;
}

// Whether the bytes may be the begin of a character of which more is to come.
bool isBegun(std::string_view bytes) {
  const auto first = static_cast<unsigned char>(bytes.front());
  const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC2 ? 2 : 1;
  return bytes.size() < length && first < 0xF5 &&
         std::ranges::all_of(bytes.substr(1), [](char c) { return (c & 0xC0) == 0x80; });
}

} // namespace

inps_VisibleBuffer::inps_VisibleBuffer(aio_ostream& target) : m_target(target) {}

inps_VisibleBuffer::~inps_VisibleBuffer() {
  try {
    Show({}, true);
  } catch (const std::exception&) { // nobody is left to be told
  }
}

bool inps_VisibleBuffer::Send(std::string_view bytes) {
  if (bytes.empty()) return m_target.good();
  if (m_writer)
    m_writer(m_target, bytes);
  else
    m_target.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return m_target.good();
}

void inps_VisibleBuffer::WriteOwn(std::string_view bytes) {
  Show({}, true);
  Send(bytes);
}

// Takes no memory, for what is printed may be that there is none.
bool inps_VisibleBuffer::Show(std::string_view text, bool isEnd) {
  while (!m_begun.empty() && (isEnd || !text.empty())) {
    if (!text.empty()) {
      m_begun += text.front();
      if (isBegun(m_begun)) {
        text.remove_prefix(1);
        continue;
      }
      if (inp_utf8CharLength(m_begun.data(), m_begun.data() + m_begun.size()) == m_begun.size())
        text.remove_prefix(1);
      else
        m_begun.pop_back(); // begins something of its own
    }
    ShowCharacters(m_begun);
    m_begun.clear();
  }
  while (!text.empty()) {
    const std::size_t plain = plainLength(text);
    if (plain > 0 && !Send(text.substr(0, plain))) return false;
    text.remove_prefix(plain);
    const std::size_t length = inp_utf8CharLength(text.data(), text.data() + text.size());
    if (!text.empty() && length == 0 && !isEnd && isBegun(text)) {
      m_begun = text;
      break;
    }
    const std::size_t taken = std::min(text.size(), std::max<std::size_t>(1, length));
    ShowCharacters(text.substr(0, taken));
    text.remove_prefix(taken);
  }
  return m_target.good();
}

// One character, or bytes that belong to none.
void inps_VisibleBuffer::ShowCharacters(std::string_view bytes) {
  const std::size_t length = inp_utf8CharLength(bytes.data(), bytes.data() + bytes.size());
  if (length == bytes.size() && (length == 0 || inp_isPrintable(bytes))) {
    Send(bytes);
  } else if (length == bytes.size()) {
    Send(inp_escaped(bytes));
  } else {
    for (std::size_t i = 0; i < bytes.size(); ++i) Send(inp_escaped(bytes.substr(i, 1)));
  }
}

inps_VisibleBuffer::int_type inps_VisibleBuffer::overflow(int_type c) {
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  const char byte = traits_type::to_char_type(c);
  return Show({&byte, 1}, false) ? c : traits_type::eof();
}

std::streamsize inps_VisibleBuffer::xsputn(const char* data, std::streamsize size) {
  return Show({data, static_cast<std::size_t>(size)}, false) ? size : 0;
}

int inps_VisibleBuffer::sync() {
  if (!Show({}, true)) return -1;
  m_target.flush();
  return m_target.good() ? 0 : -1;
}

cow_String inps_oneLine(std::string_view text) {
  return inp_printable(text, text.size());
}

void inps_writeOwn(aio_ostream& out, std::string_view bytes) {
  if (auto* door = dynamic_cast<inps_VisibleBuffer*>(out.rdbuf()))
    door->WriteOwn(bytes);
  else
    out << bytes;
}
