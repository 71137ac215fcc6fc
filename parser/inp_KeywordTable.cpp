#include "parser/inp_KeywordTable.h"

#include "parser/inp_NameIndex.h"
#include "parser/inp_NearestName.h"
#include "parser/inp_TextLines.h"
#include "parser/inp_Vocabulary.h"
#include <algorithm>

namespace {

// Where the list of parameters is open, a short spelling may be a parameter the list lacks.
constexpr std::size_t leastAbbreviationOfOpenList = 3;

bool counts(char c) {
  return !inp_isBlank(c) && c != '_';
}

char upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// Whether a value is the word or its beginning; every keyword of a deck comes past here.
enum class Fit { None, Begin, Whole };
Fit fitOf(std::string_view word, std::string_view value) {
  const auto skip = [](std::string_view& text) {
    while (!text.empty() && !counts(text.front())) text.remove_prefix(1);
  };
  bool any = false;
  for (;;) {
    skip(word);
    skip(value);
    if (value.empty()) return !any ? Fit::None : word.empty() ? Fit::Whole : Fit::Begin;
    if (word.empty() || upper(word.front()) != upper(value.front())) return Fit::None;
    any = true;
    word.remove_prefix(1);
    value.remove_prefix(1);
  }
}

} // namespace

inp_KeywordTable::inp_KeywordTable() : m_vocabulary(inp_Vocabulary::Instance()) {}

const inp_KeywordTable& inp_KeywordTable::Instance() {
  static thread_local const inp_KeywordTable table;
  return table;
}

inp_KeywordEnm inp_KeywordTable::Find(std::string_view name) const {
  const int found = m_vocabulary.KeywordIndex().Find(inp_FoldedName(name).Text());
  return found < 0 ? inp_UnknownKeyword : static_cast<inp_KeywordEnm>(found);
}

std::span<const inp_KeywordRow> inp_KeywordTable::Rows() const {
  return m_vocabulary.Rows();
}

const inp_KeywordRow* inp_KeywordTable::Row(inp_KeywordEnm kind) const {
  if (kind <= inp_NullKeyword || kind >= inp_KeywordEnd) return nullptr;
  return &Rows()[static_cast<std::size_t>(kind - 1)];
}

bool inp_KeywordTable::IsSuboptionOf(inp_KeywordEnm child, inp_KeywordEnm parent) const {
  const inp_KeywordRow* row = Row(child);
  return row && std::binary_search(row->parents.begin(), row->parents.end(), parent);
}

bool inp_KeywordTable::MayStandAt(inp_KeywordEnm kind, inp_Levels level) const {
  const inp_KeywordRow* row = Row(kind);
  return row && (row->levels & level) != 0;
}

inp_KeywordEnm inp_KeywordTable::CloserOf(inp_KeywordEnm opener) const {
  const inp_KeywordRow* row = Row(opener);
  return row ? m_vocabulary.CloserOf(*row) : inp_NullKeyword;
}

inp_ParameterMatch inp_KeywordTable::ResolveParameter(inp_KeywordEnm kind,
                                                      std::string_view text) const {
  using Kind = inp_ParameterMatch::Kind;
  inp_ParameterMatch match;
  const inp_KeywordRow* row = Row(kind);
  const inp_FoldedName lower(text, inp_FoldedName::Case::Lower);
  const std::string_view name = lower.Text();
  if (!row || name.empty()) return match;

  // Sorted, all that begin with the name stand together, the name itself first.
  const auto names = row->parameters;
  const auto first = std::lower_bound(names.begin(), names.end(), name);
  const auto last = std::find_if(
      first, names.end(), [name](std::string_view known) { return !known.starts_with(name); });
  if (first == last) return match;
  if (*first == name) return {Kind::Exact, *first, {}};
  if (row->openParameters && name.size() < leastAbbreviationOfOpenList) return match;
  if (last - first == 1) return {Kind::Abbreviated, *first, {}};
  return {Kind::Ambiguous, {}, {first, last}};
}

std::span<const std::string_view> inp_KeywordTable::WordsOf(inp_KeywordEnm kind,
                                                            std::string_view parameter) const {
  return m_vocabulary.WordsOf(kind, parameter);
}

cow_String inp_KeywordTable::BareWord(std::string_view text) {
  cow_String bare;
  for (const char c : text)
    if (counts(c)) bare += upper(c);
  return bare;
}

inp_WordMatch inp_KeywordTable::ResolveWord(inp_KeywordEnm kind, std::string_view parameter,
                                            std::string_view value) const {
  using Kind = inp_WordMatch::Kind;
  const auto words = WordsOf(kind, parameter);
  if (words.empty()) return {};
  inp_WordMatch match{Kind::Unknown};
  for (const std::string_view word : words) {
    if (word == "...") return {}; // any other is as good
    const Fit fit = fitOf(word, value);
    if (fit == Fit::Whole) return {Kind::Known, word};
    if (fit == Fit::Begin) match.candidates.push_back(word);
  }
  if (match.candidates.size() == 1) return {Kind::Known, match.candidates.front()};
  // A yes may be spelt ON, a no OFF, and the reverse.
  constexpr std::pair<std::string_view, std::string_view> synonyms[] = {
      {"ON", "YES"}, {"OFF", "NO"}, {"YES", "ON"}, {"NO", "OFF"}};
  for (const auto& [spelt, meant] : synonyms)
    if (fitOf(spelt, value) == Fit::Whole && std::ranges::find(words, meant) != words.end())
      return {Kind::Known, meant};
  if (match.candidates.empty())
    match.candidates.assign(words.begin(), words.end());
  else
    match.kind = Kind::Ambiguous;
  return match;
}

std::string_view inp_KeywordTable::NearestKeyword(std::string_view name) const {
  inp_NearestName nearest(name);
  for (const inp_KeywordRow& row : Rows()) nearest.Offer(row.name);
  return nearest.Best();
}

std::string_view inp_KeywordTable::NearestParameter(inp_KeywordEnm kind,
                                                    std::string_view name) const {
  inp_NearestName nearest(name);
  if (const inp_KeywordRow* row = Row(kind))
    for (std::string_view parameter : row->parameters) nearest.Offer(parameter);
  return nearest.Best();
}

std::string_view inp_KeywordTable::NearestElement(std::string_view name) const {
  inp_NearestName nearest(name);
  for (const inp_ElementInfo& info : Elements()) nearest.Offer(info.name);
  return nearest.Best();
}

const inp_ElementInfo* inp_KeywordTable::FindElement(std::string_view type) const {
  const int found = m_vocabulary.ElementIndex().Find(inp_FoldedName(type).Text());
  return found < 0 ? nullptr : &Elements()[static_cast<std::size_t>(found)];
}

std::span<const inp_ElementInfo> inp_KeywordTable::Elements() const {
  return inp_elementTable();
}
