#include "parser/inp_ElementCut.h"
#include "parser/inp_TextLines.h"

namespace {

// Lines to look at for one that certainly begins an element. Elements end without a comma, or fill
// their lines so that the next one cannot belong to them; decks where neither holds for so long are
// counted through from the last cut on.
constexpr int linesToTry = 64;

struct Line {
  const char* end = nullptr; // the line feed or the range's end
  bool counts = false;       // data, not blank
  bool open = false;         // ends in a comma
  long long fields = 0;      // an empty one behind the last comma left out
};

Line lookAt(const char* begin, const char* rangeEnd) {
  Line line;
  line.end = inp_lineFeed(begin, rangeEnd);
  const std::string_view text = inp_trim(begin, line.end);
  line.counts = !text.empty() && inp_lineKind(begin, line.end) == inp_LineKind::Data;
  if (!line.counts) return line;
  line.open = text.back() == ',';
  line.fields = !line.open;
  for (const char c : text) line.fields += c == ',';
  line.fields -= inp_quotedCommas(text.data(), text.data() + text.size());
  return line;
}

const char* behind(const Line& line, const inp_TextRange& range) {
  return line.end == range.end ? range.end : line.end + 1;
}

// Whether the data line in front of `at` ends in a comma: openBefore when the range has none; true
// when that cannot be told within some lines.
bool mayBeOpenBefore(const inp_TextRange& range, const char* at, bool openBefore) {
  for (int tries = 0; tries < linesToTry; ++tries) {
    if (at == range.begin) return openBefore;
    const char* begin = at - 1;
    while (begin != range.begin && begin[-1] != '\n') --begin;
    const Line line = lookAt(begin, at);
    if (line.counts) return line.open;
    at = begin;
  }
  return true;
}

} // namespace

const char* inp_ElementCut::Cut(const inp_TextRange& range, const char* from,
                                const char* wanted) const {
  bool open = mayBeOpenBefore(range, wanted, from == nullptr);
  const char* p = wanted;
  for (int tries = 0; open && tries < linesToTry; ++tries) {
    if (p == range.end) return p;
    const Line line = lookAt(p, range.end);
    if (line.fields > m_mostFields) return p;
    if (line.counts) open = line.open;
    p = behind(line, range);
  }
  if (!open) return p;
  return from ? WalkTo(range, from, wanted) : range.end;
}

const char* inp_ElementCut::WalkTo(const inp_TextRange& range, const char* from,
                                   const char* wanted) const {
  bool open = false;
  long long fields = 0; // of the element so far, its label left out
  for (const char* p = from; p != range.end;) {
    const Line line = lookAt(p, range.end);
    if (line.counts) {
      const bool goesOn = open && fields + line.fields <= m_mostFields;
      if (!goesOn && p >= wanted) return p;
      fields = goesOn ? fields + line.fields : line.fields - 1;
      open = line.open;
    }
    p = behind(line, range);
  }
  return range.end;
}

bool inp_ElementCut::IsOpenBehind(const inp_TextRange& range, bool openBefore) const {
  return mayBeOpenBefore(range, range.end, openBefore);
}
