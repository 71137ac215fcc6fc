#include "inpS/forms/inpS_FormTable.h"
#include "base/utl_Assert.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/keywords/inpS_Flag.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "inpS/keywords/inpS_RecordParameters.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>
#include <memory>
#include <mutex>

namespace {

cow_String lowerCase(cow_String text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

inpS_Form::Selector selectorOf(inp_KeywordEnm keyword, std::string_view text) {
  inpS_Form::Selector selector;
  if (text.ends_with('*')) {
    selector.isDefault = true;
    text.remove_suffix(1);
  }
  const std::size_t equals = text.find('=');
  selector.name = text.substr(0, equals);
  selector.key = lowerCase(inpS_bareWord(selector.name));
  if (equals != text.npos) selector.text = text.substr(equals + 1);
  if (const std::size_t bar = selector.text.find('|'); bar != cow_String::npos) {
    selector.alias = inpS_bareWord(std::string_view(selector.text).substr(bar + 1));
    selector.text.erase(bar);
  }
  selector.word = inpS_bareWord(selector.text);
  const auto words = inp_KeywordTable::Instance().WordsOf(keyword, selector.key);
  utl_ASSERT(selector.word.empty() || words.empty() ||
             std::ranges::find(words, selector.text) != words.end());
  return selector;
}

void readSelector(std::string_view text, inpS_Form& form) {
  if (!text.starts_with("IN ")) return form.selectors.push_back(selectorOf(form.keyword, text));
  text.remove_prefix(3);
  const std::size_t colon = text.find(':');
  form.parent = inp_KeywordTable::Instance().Find(text.substr(0, colon));
  utl_ASSERT(form.parent != inp_UnknownKeyword);
  if (colon != text.npos)
    form.parentSelectors.push_back(selectorOf(form.parent, text.substr(colon + 1)));
}

// A word that none of the language's is may stand for the one that holds without any.
enum class OddWord : bool { ChoosesNone, IsAsAbsent };

bool isMet(const inpS_Form::Selector& selector, const inp_Keyword& keyword,
           OddWord odd = OddWord::ChoosesNone) {
  const inp_Item* item = keyword.Find(selector.key);
  // USER=NO is as good as none. USER=5 does name USER: what follows is about it.
  if (!item || (selector.IsFlag() && !inpS_flagValue(*item).value_or(true)))
    return selector.isDefault;
  if (selector.word.empty()) return true;
  const cow_String word = inpS_bareWord(item->AsString());
  if (word == selector.word || (!selector.alias.empty() && word == selector.alias)) return true;
  if (odd == OddWord::ChoosesNone || !selector.isDefault) return false;
  const auto unknown = inpS_unknownWords(keyword);
  return std::ranges::find(unknown, selector.key) != unknown.end();
}

inpS_ParameterBinding bindingOf(inp_KeywordEnm keyword, eds_RecordKind kind,
                                const eds_FormItem& item) {
  const eds_FormItem::Alternative& value = item.alternatives.front();
  const eds_FieldInfo& field = eds_formRecord(kind)->fields[static_cast<std::size_t>(value.field)];
  inpS_ParameterBinding binding = inpS_bindParameter(keyword, field, value.field);
  if (value.type == eds_FormType::Reference || item.alternatives.size() > 1) {
    binding.codec = inpS_Codec::Item;
  } else if (value.type == eds_FormType::Choice) {
    binding.codec = inpS_Codec::Choice;
    binding.words.assign(value.words.begin(), value.words.end());
  }
  return binding;
}

// Of forms and of what has a name: the keyword, from the rows themselves.
constexpr inp_KeywordEnm inp_KwNone = inp_NullKeyword;
constexpr inp_KeywordEnm formKeywords[] = {
#define EDS_FORM(Form, Keyword, ...) inp_Kw##Keyword,
#include "database/schema/forms.def"
};
constexpr bool isPast[] = {
#define EDS_FORM(Form, Keyword, Selectors, Parameters, Data, Repeat)                               \
  eds_FormRepeat::Repeat == eds_FormRepeat::Past,
#include "database/schema/forms.def"
};
constexpr inp_KeywordEnm referableKeywords[] = {
#define EDS_REFERABLE(Word, Keyword, ...) inp_Kw##Keyword,
#include "database/schema/referables.def"
};

inp_KeywordEnm definerOf(const eds_Referable& referable) {
  return referableKeywords[&referable - eds_referables().data()];
}

inpS_Form formOf(eds_RecordKind kind, inp_KeywordEnm keyword) {
  inpS_Form form;
  form.info = eds_formOf(kind);
  form.kind = kind;
  form.keyword = keyword;
  form.columns = inpS_TableColumns(form.info->columns);
  for (std::string_view rest = form.info->selectors; !rest.empty();) {
    const std::size_t end = std::min(rest.find(", "), rest.size());
    readSelector(rest.substr(0, end), form);
    rest.remove_prefix(std::min(end + 2, rest.size()));
  }
  for (const eds_FormItem& item : form.info->parameters) {
    if (!item.isParameter) continue;
    form.parameters.push_back(bindingOf(form.keyword, kind, item));
    form.items.push_back(&item);
  }
  for (inpS_Form::Selector& selector : form.selectors)
    selector.isField = selector.word.empty() && form.Binds(selector.key);
  return form;
}

struct Entry {
  std::once_flag once;
  std::unique_ptr<const inpS_Form> form;
};

} // namespace

bool inpS_Form::Selector::IsPrinted(std::string_view kept) const {
  return !isDefault && !isField && !(word.empty() && inpS_holdsParameter(kept, name));
}

void inpS_Form::LeaveOddChoices(const inp_Keyword& deckKeyword, inp_Visitor& messages) const {
  for (const Selector& selector : selectors)
    if (selector.IsFlag()) inpS_readFlag(deckKeyword, selector.key, messages, inpS_OddFlag::Kept);
}

// A choice of another form that is declined is said by this form.
void inpS_Form::LeaveForeign(const inp_Keyword& deckKeyword, bool hasRows) const {
  for (const inp_Parameter& parameter : deckKeyword.Parameters()) {
    if (parameter.name == "input" || Binds(parameter.name) || IsChosenBy(parameter.name)) continue;
    if (hasRows && parameter.name == "dependencies") continue;
    const bool isDeclined = inpS_flagValue(parameter.value) == std::optional(false) &&
                            inpS_FormTable::Instance().IsChoice(keyword, parameter.name);
    if (!isDeclined) parameter.referred = false;
  }
}

bool inpS_Form::Matches(const inp_Keyword& deckKeyword, const inp_Keyword* owner) const {
  const auto met = [](const cow_List<Selector>& list, const inp_Keyword& of) {
    return std::ranges::all_of(list, [&](const Selector& one) { return isMet(one, of); });
  };
  if (parent != inp_NullKeyword && deckKeyword.ParentKind() != parent) return false;
  if (!parentSelectors.empty() && !(owner && met(parentSelectors, *owner))) return false;
  return met(selectors, deckKeyword);
}

bool inpS_Form::IsChosenBy(const cow_String& parameter) const {
  return std::ranges::find(selectors, parameter, &Selector::key) != selectors.end();
}

bool inpS_Form::Binds(const cow_String& parameter) const {
  return std::ranges::find(parameters, parameter, &inpS_ParameterBinding::key) != parameters.end();
}

inpS_TableColumns::Count inpS_Form::CountIn(const inp_Keyword& keyword) {
  return [&keyword](const cow_String& parameter, long long absent) {
    const inp_Item* item = keyword.Find(parameter);
    return item ? static_cast<long long>(item->AsInt()) : absent;
  };
}

inpS_TableColumns::Count inpS_Form::CountIn(const KvoSimDataRecord& record) const {
  return [this, &record](const cow_String& parameter, long long absent) {
    const auto binding = std::ranges::find(parameters, parameter, &inpS_ParameterBinding::key);
    if (binding == parameters.end()) return absent; // a group of fixed length
    return record.IsMemberNull(binding->field) ? absent : record.GetInt64(binding->field);
  };
}

const inpS_FormTable& inpS_FormTable::Instance() {
  static const inpS_FormTable table;
  return table;
}

inpS_FormTable::inpS_FormTable() {
  short place = 0;
  utl_ASSERT(eds_formKeywords().size() == std::size(formKeywords));
  for (const eds_FormKeyword& form : eds_formKeywords()) {
    const eds_RecordKind kind = form.kind;
    const auto number = static_cast<std::size_t>(kind);
    if (number >= m_places.size()) m_places.resize(number + 1, -1);
    const inp_KeywordEnm keyword = formKeywords[place];
    const bool isChosen = !isPast[place];
    m_places[number] = place++;
    if (keyword == inp_NullKeyword || !isChosen) continue;
    const auto index = static_cast<std::size_t>(keyword);
    if (index >= m_byKeyword.size()) m_byKeyword.resize(index + 1);
    if (m_byKeyword[index].empty()) m_keywords.push_back(keyword);
    m_byKeyword[index].push_back(kind);
  }
}

std::span<const eds_RecordKind> inpS_FormTable::KindsOf(inp_KeywordEnm keyword) const {
  const auto index = static_cast<std::size_t>(keyword);
  return index < m_byKeyword.size() ? std::span<const eds_RecordKind>(m_byKeyword[index])
                                    : std::span<const eds_RecordKind>();
}

const inpS_Form* inpS_FormTable::Find(eds_RecordKind kind) const {
  static std::vector<Entry> forms(eds_formKeywords().size());
  const auto number = static_cast<std::size_t>(kind);
  if (number >= m_places.size() || m_places[number] < 0) return nullptr;
  const auto place = static_cast<std::size_t>(m_places[number]);
  Entry& entry = forms[place];
  std::call_once(entry.once, [&] {
    entry.form = std::make_unique<const inpS_Form>(formOf(kind, formKeywords[place]));
  });
  return entry.form.get();
}

const inpS_Form* inpS_FormTable::Select(const inp_Keyword& keyword,
                                        const inp_Keyword* parent) const {
  for (const eds_RecordKind kind : KindsOf(keyword.Kind()))
    if (const inpS_Form* form = Find(kind); form->Matches(keyword, parent)) return form;
  return SelectForLack(keyword);
}

// Decided here: a procedure whose variant is told by a word that none of the language's is becomes
// the one that it is without the word, for its step and all that acts in it hang on it.
const inpS_Form* inpS_FormTable::SelectForLack(const inp_Keyword& keyword) const {
  const inp_KeywordRow* row = inp_KeywordTable::Instance().Row(keyword.Kind());
  if (!row || row->role != inp_KeywordRole::Procedure) return nullptr;
  for (const eds_RecordKind kind : KindsOf(keyword.Kind())) {
    const inpS_Form* form = Find(kind);
    if (std::ranges::all_of(form->selectors, [&](const inpS_Form::Selector& one) {
          return isMet(one, keyword, OddWord::IsAsAbsent);
        }))
      return form;
  }
  return nullptr;
}

inp_KeywordEnm inpS_FormTable::DefinerOf(const eds_Referable& referable) const {
  return definerOf(referable);
}

bool inpS_FormTable::IsChoice(inp_KeywordEnm keyword, const cow_String& parameter) const {
  return std::ranges::any_of(
      KindsOf(keyword), [&](eds_RecordKind kind) { return Find(kind)->IsChosenBy(parameter); });
}

const eds_Referable* inpS_FormTable::Named(inp_KeywordEnm keyword) const {
  if (keyword == inp_NullKeyword) return nullptr;
  const auto found = std::ranges::find(eds_referables(), keyword, definerOf);
  return found == eds_referables().end() ? nullptr : &*found;
}

cow_String inpS_FormTable::UnknownChoice(const inp_Keyword& keyword) const {
  const auto kinds = KindsOf(keyword.Kind());
  for (const eds_RecordKind kind : kinds) {
    for (const inpS_Form::Selector& selector : Find(kind)->selectors) {
      if (!keyword.HasParameter(selector.key) || selector.word.empty()) continue;
      const bool known = std::ranges::any_of(kinds, [&](eds_RecordKind other) {
        const auto& selectors = Find(other)->selectors;
        return std::ranges::any_of(selectors, [&](const inpS_Form::Selector& one) {
          return one.key == selector.key && isMet(one, keyword);
        });
      });
      if (!known) return selector.name;
    }
  }
  return {};
}
