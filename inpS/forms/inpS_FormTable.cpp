#include "inpS/forms/inpS_FormTable.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace {

cow_String lowerCase(cow_String text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

inpS_Form::Selector selectorOf(std::string_view text) {
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
  return selector;
}

bool isMet(const inpS_Form::Selector& selector, const inp_Keyword& keyword) {
  const inp_Item* item = keyword.Find(selector.key);
  if (!item) return selector.isDefault;
  if (selector.text.empty()) return true;
  const cow_String word = inpS_bareWord(item->AsString());
  return word == inpS_bareWord(selector.text) ||
         (!selector.alias.empty() && word == selector.alias);
}

inpS_ParameterBinding bindingOf(const eds_FormItem& item) {
  const eds_FormItem::Alternative& value = item.alternatives.front();
  inpS_ParameterBinding binding;
  binding.field = value.field;
  for (const char c : item.name) {
    if (c != '_') binding.key += c;
    binding.name += c == '_' ? ' ' : static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
  }
  constexpr inpS_Codec codecs[] = {inpS_Codec::Flag, inpS_Codec::Int,    inpS_Codec::Real,
                                   inpS_Codec::Name, inpS_Codec::Choice, inpS_Codec::Name};
  binding.codec = codecs[static_cast<int>(value.type)];
  binding.words.assign(value.words.begin(), value.words.end());
  return binding;
}

// Keywords by the suffix of their visitor's operation.
inp_KeywordEnm keywordOf(std::string_view suffix) {
  static const auto bySuffix = [] {
    std::unordered_map<std::string_view, inp_KeywordEnm> all;
    for (const inp_KeywordRow& row : inp_KeywordTable::Instance().Rows())
      all.emplace(row.suffix, row.kind);
    return all;
  }();
  const auto found = bySuffix.find(suffix);
  return found == bySuffix.end() ? inp_NullKeyword : found->second;
}

std::unique_ptr<const inpS_Form> formOf(eds_RecordKind kind) {
  const eds_FormInfo* info = eds_formOf(kind);
  if (!info) return nullptr;
  auto form = std::make_unique<inpS_Form>();
  form->info = info;
  form->keyword = keywordOf(info->keyword);
  for (std::string_view rest = info->selectors; !rest.empty();) {
    const std::size_t end = std::min(rest.find(", "), rest.size());
    form->selectors.push_back(selectorOf(rest.substr(0, end)));
    rest.remove_prefix(std::min(end + 2, rest.size()));
  }
  for (const eds_FormItem& item : info->parameters)
    form->parameters.push_back({bindingOf(item), &item});
  return form;
}

} // namespace

bool inpS_Form::Matches(const inp_Keyword& deckKeyword) const {
  return std::ranges::all_of(selectors,
                             [&](const Selector& one) { return isMet(one, deckKeyword); });
}

const inpS_FormTable& inpS_FormTable::Instance() {
  static const inpS_FormTable table;
  return table;
}

inpS_FormTable::inpS_FormTable() {
  for (const auto& [kind, suffix] : eds_formKeywords()) {
    const inp_KeywordEnm keyword = keywordOf(suffix);
    if (keyword == inp_NullKeyword) continue;
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

// Each thread has its own: conversions go side by side.
const inpS_Form* inpS_FormTable::Find(eds_RecordKind kind) const {
  static thread_local std::unordered_map<eds_RecordKind, std::unique_ptr<const inpS_Form>> forms;
  const auto [known, isNew] = forms.try_emplace(kind);
  if (isNew) known->second = formOf(kind);
  return known->second.get();
}

const inpS_Form* inpS_FormTable::Select(const inp_Keyword& keyword) const {
  for (const eds_RecordKind kind : KindsOf(keyword.Kind()))
    if (const inpS_Form* form = Find(kind); form->Matches(keyword)) return form;
  return nullptr;
}
