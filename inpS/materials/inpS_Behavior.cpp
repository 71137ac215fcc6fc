#include "inpS/materials/inpS_Behavior.h"
#include "base/utl_Assert.h"
#include "database/KvoSimDataRecord.h"
#include "database/eds_ModelReader.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>

namespace {

struct Row {
  eds_RecordKind kind;
  inp_KeywordEnm keyword;
  std::string_view selectors;
  inpS_DataForm form;
  inpS_Repeat repeat;
  std::string_view columns;
};

#define INPS_BEHAVIOR(Kind, Keyword, Selectors, Form, Repeat, Columns)                             \
  {eds_RecordKind::Kind, inp_Kw##Keyword,     Selectors,                                           \
   inpS_DataForm::Form,  inpS_Repeat::Repeat, Columns},
constexpr Row rows[] = {
#include "inpS/materials/inpS_behaviors.def"
};

struct Assertion {
  inp_KeywordEnm keyword;
  std::string_view text;
};

#define INPS_UNKNOWN_VALUE(Keyword, Text) {inp_Kw##Keyword, Text},
constexpr Assertion valueAssertions[] = {
#include "inpS/materials/inpS_behaviors.def"
};

#define INPS_UNKNOWN_SUBOPTION(Keyword, Text) {inp_Kw##Keyword, Text},
constexpr Assertion suboptionAssertions[] = {
#include "inpS/materials/inpS_behaviors.def"
};

#define INPS_WRONG_OWNER(Keyword, Text) {inp_Kw##Keyword, Text},
constexpr Assertion ownerAssertions[] = {
#include "inpS/materials/inpS_behaviors.def"
};

std::string_view textOf(std::span<const Assertion> assertions, inp_KeywordEnm keyword) {
  const auto found = std::ranges::find(assertions, keyword, &Assertion::keyword);
  return found == assertions.end() ? std::string_view() : found->text;
}

cow_String lowerCase(cow_String text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

inpS_Behavior::Selector selectorOf(inp_KeywordEnm keyword, std::string_view text) {
  inpS_Behavior::Selector selector;
  if (text.ends_with('*')) {
    selector.isDefault = true;
    text.remove_suffix(1);
  }
  const std::size_t equals = text.find('=');
  selector.name = text.substr(0, equals);
  selector.key = lowerCase(inpS_bareWord(selector.name));
  if (equals != text.npos) selector.text = text.substr(equals + 1);
  selector.word = inpS_bareWord(selector.text);
  const auto words = inp_KeywordTable::Instance().WordsOf(keyword, selector.key);
  utl_ASSERT(selector.word.empty() || std::ranges::find(words, selector.text) != words.end());
  return selector;
}

// "TYPE=LAMINA", "TYPE=ISOTROPIC*" (also when TYPE is absent), "USER", "IN HYPERFOAM" (only as a
// sub-option of that keyword), "IN CREEP:LAW=TIME" (of that keyword in that variant).
void readSelector(std::string_view text, inpS_Behavior& behavior) {
  if (!text.starts_with("IN "))
    return behavior.selectors.push_back(selectorOf(behavior.keyword, text));
  text.remove_prefix(3);
  const std::size_t colon = text.find(':');
  behavior.parent = inp_KeywordTable::Instance().Find(text.substr(0, colon));
  utl_ASSERT(behavior.parent != inp_UnknownKeyword);
  if (colon != text.npos)
    behavior.parentSelectors.push_back(selectorOf(behavior.parent, text.substr(colon + 1)));
}

inpS_Behavior behaviorOf(const Row& row) {
  inpS_Behavior behavior;
  behavior.kind = row.kind;
  behavior.keyword = row.keyword;
  behavior.form = row.form;
  behavior.repeat = row.repeat;
  behavior.columns = inpS_BehaviorColumns(row.columns);
  for (std::string_view rest = row.selectors; !rest.empty();) {
    const std::size_t end = std::min(rest.find(", "), rest.size());
    readSelector(rest.substr(0, end), behavior);
    rest.remove_prefix(std::min(end + 2, rest.size()));
  }
  behavior.parameters = inpS_bindParameters(row.keyword, row.kind);
  for (inpS_Behavior::Selector& selector : behavior.selectors)
    selector.isField = selector.word.empty() && behavior.Binds(selector.key);
  const eds_RecordInfo* info = eds_ModelReader::Info(row.kind);
  for (std::size_t n = 0; n < info->fields.size(); ++n) {
    if (info->fields[n].column == "lines")
      behavior.linesField = static_cast<int>(n);
    else if (info->fields[n].column == "other_parameters")
      behavior.othersField = static_cast<int>(n);
  }
  return behavior;
}

bool meets(const inpS_Behavior::Selector& selector, const inp_Keyword& keyword) {
  const inp_Item* item = keyword.Find(selector.key);
  if (!item) return selector.isDefault;
  if (selector.word.empty()) return true;
  return inpS_bareWord(item->AsString()) == selector.word;
}

} // namespace

bool inpS_Behavior::Matches(const inp_Keyword& deckKeyword, const inp_Keyword* owner) const {
  const auto met = [](const cow_List<Selector>& list, const inp_Keyword& keyword) {
    return std::ranges::all_of(list, [&](const Selector& one) { return meets(one, keyword); });
  };
  if (parent != inp_NullKeyword && deckKeyword.ParentKind() != parent) return false;
  if (!parentSelectors.empty() && !(owner && met(parentSelectors, *owner))) return false;
  return met(selectors, deckKeyword);
}

bool inpS_Behavior::Binds(const cow_String& parameter) const {
  return std::ranges::find(parameters, parameter, &inpS_ParameterBinding::key) != parameters.end();
}

inpS_BehaviorColumns::Count inpS_Behavior::CountIn(const inp_Keyword& keyword) {
  return [&keyword](const cow_String& parameter, long long absent) {
    const inp_Item* item = keyword.Find(parameter);
    return item ? static_cast<long long>(item->AsInt()) : absent;
  };
}

inpS_BehaviorColumns::Count inpS_Behavior::CountIn(const KvoSimDataRecord& record) const {
  return [this, &record](const cow_String& parameter, long long absent) {
    const auto binding = std::ranges::find(parameters, parameter, &inpS_ParameterBinding::key);
    if (binding == parameters.end()) return absent; // a group of fixed length
    return record.IsMemberNull(binding->field) ? absent : record.GetInt64(binding->field);
  };
}

const inpS_BehaviorTable& inpS_BehaviorTable::Instance() {
  static const inpS_BehaviorTable table;
  return table;
}

inpS_BehaviorTable::inpS_BehaviorTable() {
  for (const Row& row : rows) {
    const auto keyword = static_cast<std::size_t>(row.keyword);
    if (keyword >= m_byKeyword.size()) m_byKeyword.resize(keyword + 1);
    if (m_byKeyword[keyword].empty()) m_keywords.push_back(row.keyword);
    const int number = static_cast<int>(m_rows.size());
    m_byKeyword[keyword].push_back(number);
    const bool isNew = m_byKind.emplace(row.kind, number).second;
    utl_ASSERT(isNew);
    m_rows.push_back(behaviorOf(row));
  }
}

std::span<const int> inpS_BehaviorTable::RowsOf(inp_KeywordEnm keyword) const {
  const auto index = static_cast<std::size_t>(keyword);
  return index < m_byKeyword.size() ? std::span<const int>(m_byKeyword[index])
                                    : std::span<const int>();
}

bool inpS_BehaviorTable::Knows(inp_KeywordEnm keyword) const {
  return !RowsOf(keyword).empty();
}

const inpS_Behavior* inpS_BehaviorTable::Find(eds_RecordKind kind) const {
  const auto found = m_byKind.find(kind);
  return found == m_byKind.end() ? nullptr : &m_rows[static_cast<std::size_t>(found->second)];
}

const inpS_Behavior* inpS_BehaviorTable::Select(const inp_Keyword& keyword,
                                                const inp_Keyword* parent) const {
  for (const int row : RowsOf(keyword.Kind())) {
    const inpS_Behavior& behavior = m_rows[static_cast<std::size_t>(row)];
    if (behavior.Matches(keyword, parent)) return &behavior;
  }
  return nullptr;
}

cow_String inpS_BehaviorTable::UnknownChoice(const inp_Keyword& keyword) const {
  for (const int row : RowsOf(keyword.Kind())) {
    for (const inpS_Behavior::Selector& selector :
         m_rows[static_cast<std::size_t>(row)].selectors) {
      if (!keyword.HasParameter(selector.key) || selector.word.empty()) continue;
      const bool known = std::ranges::any_of(RowsOf(keyword.Kind()), [&](int other) {
        const auto& selectors = m_rows[static_cast<std::size_t>(other)].selectors;
        return std::ranges::any_of(selectors, [&](const inpS_Behavior::Selector& one) {
          return one.key == selector.key && meets(one, keyword);
        });
      });
      if (!known) return selector.name;
    }
  }
  return {};
}

std::string_view inpS_BehaviorTable::AssertionOf(inp_KeywordEnm keyword) {
  return textOf(valueAssertions, keyword);
}

std::string_view inpS_BehaviorTable::OwnerAssertionOf(inp_KeywordEnm keyword) {
  return textOf(ownerAssertions, keyword);
}

std::string_view inpS_BehaviorTable::SuboptionAssertionOf(inp_KeywordEnm keyword) {
  return textOf(suboptionAssertions, keyword);
}
