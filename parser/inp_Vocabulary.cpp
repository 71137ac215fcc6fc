#include "parser/inp_Vocabulary.h"

#include <algorithm>
#include <iterator>

namespace {

struct Row {
  inp_KeywordEnm kind;
  std::string_view name;
  std::string_view suffix;
  inp_Levels levels;
  inp_KeywordRole role;
  inp_DataKind data;
  int block;
  std::string_view parameters;
};

constexpr Row table[] = {
#define INP_KEYWORD(Suffix, Name, Levels, Role, Data, Block, Parameters)                           \
  {inp_Kw##Suffix,     Name,  #Suffix,   inp_Levels##Levels, inp_KeywordRole::Role,                \
   inp_DataKind::Data, Block, Parameters},
#include "parser/inp_keywords.def"
};

constexpr std::pair<inp_KeywordEnm, inp_KeywordEnm> suboptions[] = {
#define INP_SUBOPTION(Parent, Child) {inp_Kw##Parent, inp_Kw##Child},
#include "parser/inp_keywords.def"
};

struct ValueRow {
  std::string_view parameter;
  std::string_view words;
  std::initializer_list<inp_KeywordEnm> keywords;
};

#define INP_VALUES(Parameter, Words, ...) {Parameter, Words, {__VA_ARGS__}},
const ValueRow valueRows[] = {
#include "parser/inp_values.def"
};

// The names of a list separated by blanks, each once it is cut off the list's front.
std::string_view cutWord(std::string_view& list) {
  list.remove_prefix(std::min(list.find_first_not_of(' '), list.size()));
  const std::string_view word = list.substr(0, list.find(' '));
  list.remove_prefix(word.size());
  return word;
}

// How many names the lists have at most.
constexpr std::size_t mostParameters = [] {
  std::size_t most = 0;
  for (const Row& row : table) {
    most += row.parameters.empty() ? 0 : 1;
    for (const char c : row.parameters) most += c == ' ' ? 1 : 0;
  }
  return most;
}();

} // namespace

const inp_Vocabulary& inp_Vocabulary::Instance() {
  static const inp_Vocabulary vocabulary;
  return vocabulary;
}

inp_Vocabulary::inp_Vocabulary()
    : m_keywordIndex(std::size(table)), m_elementIndex(inp_elementTable().size()) {
  m_rows.reserve(std::size(table));
  for (const Row& row : table)
    m_rows.push_back({row.kind,
                      row.name,
                      row.suffix,
                      row.levels,
                      row.role,
                      row.data,
                      row.block,
                      {},
                      false,
                      {},
                      {}});
  CutParameters();
  LinkSuboptions();
  IndexNames();
  CutWords();
}

void inp_Vocabulary::CutParameters() {
  m_parameters.reserve(mostParameters); // the rows' views must not move
  for (std::size_t i = 0; i < std::size(table); ++i) {
    const auto first = m_parameters.end();
    std::string_view list = table[i].parameters;
    for (std::string_view word = cutWord(list); !word.empty(); word = cutWord(list)) {
      if (word == "*")
        m_rows[i].openParameters = true;
      else
        m_parameters.push_back(word);
    }
    if (!std::is_sorted(first, m_parameters.end())) std::sort(first, m_parameters.end());
    m_rows[i].parameters = {first, m_parameters.end()};
  }
}

void inp_Vocabulary::LinkSuboptions() {
  std::vector<Relation> relations(std::begin(suboptions), std::end(suboptions));
  Group(relations, m_children, m_rows, &inp_KeywordRow::children);
  for (Relation& relation : relations) std::swap(relation.first, relation.second);
  Group(relations, m_parents, m_rows, &inp_KeywordRow::parents);
}

void inp_Vocabulary::Group(std::vector<Relation>& relations, std::vector<inp_KeywordEnm>& seconds,
                           std::vector<inp_KeywordRow>& rows,
                           std::span<const inp_KeywordEnm> inp_KeywordRow::*list) {
  std::sort(relations.begin(), relations.end());
  seconds.reserve(relations.size());
  for (auto first = relations.begin(); first != relations.end();) {
    const inp_KeywordEnm kind = first->first;
    const auto start = seconds.end();
    for (; first != relations.end() && first->first == kind; ++first)
      seconds.push_back(first->second);
    rows[static_cast<std::size_t>(kind - 1)].*list = {start, seconds.end()};
  }
}

void inp_Vocabulary::IndexNames() {
  m_foldedNames.reserve(m_rows.size());
  for (const inp_KeywordRow& row : m_rows) {
    if (row.role == inp_KeywordRole::Variant) continue;
    m_foldedNames.emplace_back(inp_FoldedName(row.name).Text());
    m_keywordIndex.Add(m_foldedNames.back(), row.kind);
  }
  int place = 0;
  for (const inp_ElementInfo& info : inp_elementTable()) m_elementIndex.Add(info.name, place++);
}

void inp_Vocabulary::CutWords() {
  constexpr std::string_view between = ", ";
  std::size_t words = 0;
  for (const ValueRow& row : valueRows)
    words += static_cast<std::size_t>(std::ranges::count(row.words, ',')) + 1;
  m_words.reserve(words); // the spans must not move
  for (const ValueRow& row : valueRows) {
    const auto first = m_words.end();
    for (std::string_view rest = row.words; !rest.empty();) {
      const std::string_view word = rest.substr(0, rest.find(between));
      m_words.push_back(word);
      rest.remove_prefix(std::min(word.size() + between.size(), rest.size()));
    }
    for (const inp_KeywordEnm keyword : row.keywords)
      m_values.push_back({keyword, row.parameter, {first, m_words.end()}});
  }
  std::ranges::sort(m_values, {},
                    [](const Values& row) { return std::pair(row.keyword, row.parameter); });
}

std::span<const std::string_view> inp_Vocabulary::WordsOf(inp_KeywordEnm keyword,
                                                          std::string_view parameter) const {
  const std::pair wanted(keyword, parameter);
  const auto key = [](const Values& row) { return std::pair(row.keyword, row.parameter); };
  const auto found = std::ranges::lower_bound(m_values, wanted, {}, key);
  if (found == m_values.end() || key(*found) != wanted) return {};
  return found->words;
}

inp_KeywordEnm inp_Vocabulary::CloserOf(const inp_KeywordRow& opener) const {
  if (opener.role != inp_KeywordRole::Open) return inp_NullKeyword;
  const auto closer = std::find_if(m_rows.begin(), m_rows.end(), [&](const inp_KeywordRow& row) {
    return row.role == inp_KeywordRole::Close && row.suffix.substr(3) == opener.suffix; // EndXxx
  });
  return closer == m_rows.end() ? inp_NullKeyword : closer->kind;
}
