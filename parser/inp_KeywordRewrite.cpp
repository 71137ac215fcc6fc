#include "parser/inp_KeywordRewrite.h"
#include "parser/inp_KeywordReader.h"
#include "parser/inp_ScopeTracker.h"
#include "parser/inp_TextLines.h"
#include <algorithm>
#include <optional>
#include <utility>

namespace {

constexpr int widestMark = 4096;

// Whole lines of a text, the first one's number known.
struct Stretch {
  inp_DeckTextPtr deck;
  const char* begin;
  const char* end;
  long long firstLine;
};

Stretch stretchOf(const inp_DataSegment& segment) {
  return {segment.text, segment.begin, segment.end, segment.firstLine};
}

Stretch stretchOf(const inp_KeywordBody& body) {
  return {body.text, inp_lineBegin(body.begin, body.text->Begin()), body.end, body.line};
}

// Calls look(line, begin of the next one) for every line, comment lines too.
template <class Look> void eachPhysicalLine(const Stretch& stretch, Look&& look) {
  inp_KeywordLine line;
  line.deck = stretch.deck.get();
  line.number = stretch.firstLine;
  for (const char* p = stretch.begin; p != stretch.end; ++line.number) {
    const char* const feed = inp_lineFeed(p, stretch.end);
    const char* const next = feed == stretch.end ? feed : feed + 1;
    line.text = {p, static_cast<std::size_t>(feed - p)};
    look(line, next);
    p = next;
  }
}

bool isComment(const inp_KeywordLine& line) {
  return inp_lineKind(line.text.data(), line.text.data() + line.text.size()) ==
         inp_LineKind::Comment;
}

template <class Look> void eachLineOf(const Stretch& stretch, Look&& look) {
  eachPhysicalLine(stretch, [&](const inp_KeywordLine& line, const char*) {
    if (!isComment(line)) look(line);
  });
}

// Adds the messages that are not among the old ones of the same lines.
void addNew(cow_List<wip_Message>& list, cow_List<wip_Message>&& fresh,
            const cow_List<wip_Message>& old) {
  for (wip_Message& message : fresh) {
    const bool isOld = std::any_of(old.begin(), old.end(), [&](const wip_Message& other) {
      return other.place.line == message.place.line && other.text == message.text;
    });
    if (!isOld) list.push_back(std::move(message));
  }
}

// The new text, with as many lines as the old one; nothing when no line changes.
std::optional<cow_String> rewritten(const Stretch& stretch, const inp_LineRewrite& rewrite) {
  cow_String out;
  bool changed = false;
  const char* copied = stretch.begin; // what stands before it is in `out`
  eachPhysicalLine(stretch, [&](const inp_KeywordLine& line, const char*) {
    if (isComment(line)) return;
    cow_String fresh;
    if (!rewrite(line, fresh)) return;
    changed = true;
    out.append(copied, line.text.data());
    out += fresh;
    copied = line.text.data() + line.text.size();
  });
  if (!changed) return std::nullopt;
  out.append(copied, stretch.end);
  return out;
}

} // namespace

wip_Place inp_KeywordLine::PlaceOf(std::string_view at) const {
  const auto width = static_cast<int>(std::min<std::size_t>(at.size(), widestMark));
  return deck->PlaceInLine(text.data(), at.data(), width, number);
}

void inp_eachLine(const inp_DataSegment& segment, const inp_LineLook& look) {
  eachLineOf(stretchOf(segment), look);
}

void inp_eachKeywordLine(const inp_KeywordBody& body, const inp_LineLook& look) {
  if (body.text) eachLineOf(stretchOf(body), look);
}

bool inp_rewriteKeywordLine(inp_KeywordBody& body, const inp_LineRewrite& rewrite,
                            cow_List<wip_Message>& errors, cow_List<wip_Message>& warnings) {
  if (!body.text) return false;
  const Stretch old = stretchOf(body);
  std::optional<cow_String> text = rewritten(old, rewrite);
  if (!text) return false;
  const inp_DeckTextPtr deck = inp_DeckText::Rewritten(std::move(*text), old.deck, old.firstLine);
  cow_List<wip_Message> toldErrors, toldWarnings; // by the parser
  inp_KeywordReader(toldErrors, toldWarnings).Read(body.text, body.begin, body.line);
  cow_List<wip_Message> newErrors, newWarnings;
  const char* const asterisk = inp_skipBlanks(deck->Begin(), deck->End());
  const auto result = inp_KeywordReader(newErrors, newWarnings).Read(deck, asterisk, body.line);
  addNew(errors, std::move(newErrors), toldErrors);
  addNew(warnings, std::move(newWarnings), toldWarnings);
  inp_KeywordBody& fresh = *result.body;
  for (std::size_t i = 0; i < std::min(fresh.parameters.size(), body.parameters.size()); ++i)
    fresh.parameters[i].referred = body.parameters[i].referred;
  if (body.kind == inp_UnknownKeyword) body.name = std::move(fresh.name);
  body.parameters = std::move(fresh.parameters);
  body.text = std::move(fresh.text);
  body.begin = fresh.begin;
  body.end = fresh.end;
  return true;
}

bool inp_rewriteData(inp_KeywordBody& body,
                     const std::function<bool(const inp_DataSegment&)>& wanted,
                     const inp_LineRewrite& rewrite) {
  cow_List<inp_DataSegment> segments;
  bool changed = false;
  for (const inp_DataSegment& old : body.data.Segments()) {
    segments.push_back(old);
    if (!wanted(old)) continue;
    std::optional<cow_String> text = rewritten(stretchOf(old), rewrite);
    if (!text) continue;
    inp_DataSegment& segment = segments.back();
    segment.text = inp_DeckText::Rewritten(std::move(*text), old.text, old.firstLine);
    segment.begin = segment.text->Begin();
    segment.end = segment.text->End();
    segment.rows = 0; // an empty last line is none, and a line may have become a comment
    inp_eachLine(segment, [&](const inp_KeywordLine&) { ++segment.rows; });
    segment.ascii = std::all_of(segment.begin, segment.end,
                                [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    changed = true;
  }
  if (changed) body.data = inp_DataArray(std::move(segments), body.data.HasWholeLines());
  return changed;
}

void inp_renewScopeNames(const inp_KeywordList& keywords) {
  for (std::size_t i = 0; i + 1 < keywords.size(); ++i) {
    const inp_Scope::Kind kind = inp_ScopeTracker::KindOpenedBy(keywords[i].Kind());
    if (kind == inp_Scope::Kind::Model || keywords[i + 1].Scope().kind != kind) continue;
    // What stands in a scope begins right behind its opener. The parser made the scope and all
    // handles share it, those of sub-options too.
    const auto scope = std::const_pointer_cast<inp_Scope>(keywords[i + 1].ScopePtr());
    for (const inp_Parameter& parameter : keywords[i].Parameters()) {
      if (parameter.name == "name") scope->name = parameter.value.AsString();
      if (parameter.name == "part" && kind == inp_Scope::Kind::Instance)
        scope->partName = parameter.value.AsString();
    }
  }
}
