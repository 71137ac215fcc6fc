#include "host/inps_MessageView.h"

#include "host/inps_VisibleBuffer.h"
#include "parser/inp_Utf8Text.h"
#include <algorithm>
#include <ostream>
#include <sstream>

namespace {

constexpr int widthWithoutTerminal = 160;
constexpr std::size_t longestText = 4000; // bytes of one line of a message
constexpr std::size_t mostItems = 10;     // of a list within it

struct Look {
  std::string_view name;
  std::string_view colour;
};

constexpr Look looks[] = {
    {"error", "\x1b[1;31m"}, {"warning", "\x1b[1;35m"}, {"note", "\x1b[1;36m"}};
constexpr std::string_view bold = "\x1b[1m";
constexpr std::string_view green = "\x1b[1;32m";
constexpr std::string_view plain = "\x1b[0m";

const Look& lookOf(inps_Severity severity) {
  return looks[static_cast<std::size_t>(severity)];
}

// A message is shown in one piece: standard error has no buffer, and memory may run out on the way.
class Piece {
public:
  Piece() {
    m_whole.exceptions(std::ios::badbit); // else a want of memory would cut it in silence
    m_out.exceptions(std::ios::badbit);
  }
  aio_ostream& Out() { return m_out; }
  void SendTo(aio_ostream& out) {
    m_out.flush();
    inps_writeOwn(out, m_whole.view()); // it came through a door already
  }

private:
  std::ostringstream m_whole;
  inps_VisibleBuffer m_door{m_whole};
  aio_ostream m_out{&m_door};
};

// The characters of a text, a byte that belongs to none counted as one, as the parser counts.
cow_List<std::string_view> charactersOf(std::string_view text) {
  cow_List<std::string_view> characters;
  const char* const end = text.data() + text.size();
  for (const char* p = text.data(); p != end;) {
    const std::size_t length = std::max<std::size_t>(1, inp_utf8CharLength(p, end));
    characters.emplace_back(p, length);
    p += length;
  }
  return characters;
}

// Lists of single words (labels, names) with their first items only: a message has all of them, and
// they may be millions.
cow_String foldLists(std::string_view text) {
  constexpr std::string_view comma = ", ";
  cow_String out;
  std::size_t begin = 0; // of what is not yet out
  for (std::size_t at = text.find(comma); at != text.npos; at = text.find(comma, at)) {
    std::size_t items = 1, end = at, folded = 0;
    while (text.substr(end).starts_with(comma)) {
      if (items == mostItems) folded = end;
      end = std::min(text.find_first_of(", \n", end + comma.size()), text.size());
      ++items;
    }
    if (folded > 0) {
      if (text[end - 1] == '.') --end; // the sentence's, behind its last item
      out += text.substr(begin, folded - begin);
      out += " … and " + std::to_string(items - mostItems) + " more";
      begin = end;
    }
    at = end;
  }
  return out += text.substr(begin);
}

// A line as it is shown, letter by letter: what is not printable takes several.
struct ShownLine {
  cow_List<cow_String> letters;
  cow_List<std::size_t> starts{0}; // of each character, and behind the last one

  explicit ShownLine(std::string_view text) {
    for (const std::string_view character : charactersOf(text)) {
      const bool isCharacter =
          inp_utf8CharLength(character.data(), character.data() + character.size()) > 0;
      if (isCharacter && inp_isPrintable(character))
        letters.emplace_back(character);
      else
        for (const char letter : inp_escaped(character)) letters.emplace_back(1, letter);
      starts.push_back(letters.size());
    }
  }
};

} // namespace

inps_MessageView::inps_MessageView(aio_ostream& out, bool colour, int width)
    : m_out(out), m_colour(colour), m_width(width > 0 ? width : widthWithoutTerminal) {}

std::string_view inps_MessageView::Name(inps_Severity severity) {
  return lookOf(severity).name;
}

// Texts may quote anything a deck holds, so nothing in them may steer a terminal.
void inps_MessageView::ShowText(aio_ostream& out, std::string_view text) const {
  while (!text.empty() && text.back() == '\n') text.remove_suffix(1);
  for (std::size_t at = 0; at != std::string_view::npos;) {
    const std::size_t lineEnd = text.find('\n', at);
    const std::size_t length = lineEnd == std::string_view::npos ? lineEnd : lineEnd - at;
    if (at > 0) out << '\n';
    out << inp_printable(text.substr(at, length), longestText);
    at = lineEnd == std::string_view::npos ? lineEnd : lineEnd + 1;
  }
}

void inps_MessageView::ShowHead(aio_ostream& out, inps_Severity severity, const wip_Place& place,
                                std::string_view text) const {
  const Look& look = lookOf(severity);
  if (m_colour) inps_writeOwn(out, bold);
  const bool note = severity == inps_Severity::Note; // one without a place belongs to its message
  if (place.file.empty())
    out << (note ? " " : "inps:");
  else
    out << inp_printable(place.file, longestText);
  if (!place.file.empty() && place.line > 0) {
    out << ':' << place.line;
    if (place.column > 0) out << ':' << place.column;
  }
  out << (place.file.empty() ? " " : ": ");
  if (m_colour) inps_writeOwn(out, look.colour);
  out << look.name << ": ";
  if (m_colour) inps_writeOwn(out, plain);
  ShowText(out, foldLists(text));
}

// The stretch of the line around the column that fits, and the caret under the column.
void inps_MessageView::ShowSource(aio_ostream& out, const wip_Place& place) const {
  if (place.sourceLine.empty()) return;
  const ShownLine shown(place.sourceLine);
  const cow_List<cow_String>& line = shown.letters;
  const auto room = static_cast<std::size_t>(std::max(20, m_width - 1));
  const auto character = static_cast<std::size_t>(std::max(1, place.column)) - 1;
  if (character >= shown.starts.size()) return; // the line itself was cut before the place
  const std::size_t column = shown.starts[character];
  std::size_t first = 0;
  if (line.size() > room && column > room * 2 / 3) first = column - room * 2 / 3 + 1;
  const std::size_t last = std::min(line.size(), first + room - (first > 0 ? 1 : 0));

  if (first > 0) out << "…";
  for (std::size_t i = first; i < last; ++i) out << line[i];
  out << '\n';
  if (place.column <= 0) return;
  if (first > 0) out << ' ';
  for (std::size_t i = first; i < column; ++i) out << (line[i] == "\t" ? '\t' : ' ');
  const std::size_t behind = character + static_cast<std::size_t>(std::max(1, place.width));
  const std::size_t asked =
      (behind < shown.starts.size() ? shown.starts[behind] : line.size() + 1) - column;
  const std::size_t width =
      std::min(asked, std::max<std::size_t>(1, last - std::min(last, column)));
  if (m_colour) inps_writeOwn(out, green);
  out << '^' << cow_String(width - 1, '~');
  if (m_colour) inps_writeOwn(out, plain);
  out << '\n';
}

void inps_MessageView::Show(inps_Severity severity, const wip_Message& message) const {
  Piece whole;
  ShowParts(whole.Out(), severity, message);
  whole.SendTo(m_out);
}

void inps_MessageView::ShowParts(aio_ostream& out, inps_Severity severity,
                                 const wip_Message& message) const {
  const wip_Place& place = message.place;
  ShowHead(out, severity, place, message.text);
  // On a data line nobody sees whose data it is.
  const bool ownLine = place.sourceLine.find('*') != cow_String::npos;
  const bool named = message.text.find('*' + message.keyword) != cow_String::npos;
  if (!message.keyword.empty() && !ownLine && !named) out << " [*" << message.keyword << ']';
  out << '\n';
  ShowSource(out, place);
  for (const wip_Note& note : message.notes) {
    ShowHead(out, inps_Severity::Note, note.place, note.text);
    out << '\n';
    ShowSource(out, note.place);
  }
  for (const cow_String& from : place.includedFrom)
    out << "  included from " << inp_printable(from, longestText) << '\n';
}

void inps_MessageView::ShowLine(inps_Severity severity, std::string_view text) const {
  Piece whole;
  ShowHead(whole.Out(), severity, {}, text);
  whole.Out() << '\n';
  whole.SendTo(m_out);
}
