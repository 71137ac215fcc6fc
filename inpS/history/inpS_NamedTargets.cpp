#include "inpS/history/inpS_NamedTargets.h"
#include "base/utl_Number.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "parser/inp_Utils.h"
#include <algorithm>

namespace {

using Type = inpS_NamedTargets::Type;

// -1: it is no whole number.
long long numberOf(const cow_String& text) {
  std::int64_t number = 0;
  const char* const end = text.data() + text.size();
  const bool isNumber = utl_readInt(text.data(), end, number) == end;
  return isNumber && number == static_cast<int>(number) ? number : -1;
}

} // namespace

int inpS_faceOfFlow(std::string_view label) {
  if (label.ends_with("NU")) label.remove_suffix(2);
  const std::size_t begin = label.find_last_not_of("0123456789") + 1;
  const bool isFace =
      label.size() == begin + 1 && label[begin] >= '1' && label[begin] <= '6' && begin > 0;
  return isFace ? label[begin] - '0' : 0;
}

inpS_NamedTargets::Names::Names(const KvoObjDocument& document)
    : m_nodes(document, 0), m_elements(document, 1), m_model(document.GetModel().Position()),
      m_assembly(document.GetModel().GetAssembly()),
      m_instances(document.GetModel().RetrieveOccurences()) {
  m_nodes.Read();
  m_elements.Read();
}

// An instance has the names of its part beside its own.
inpS_NamedTargets::Names::Found inpS_NamedTargets::Names::Find(Type type,
                                                               const cow_String& name) const {
  using M = eds_Member;
  constexpr M members[3][2] = {{M::Surfaces, M::InternalSurfaces},
                               {M::ElementSets, M::InternalElementSets},
                               {M::NodeSets, M::InternalNodeSets}};
  const auto in = [&](const KvoSimPosition& owner, const cow_String& key) {
    KvoSimPosition found;
    for (const M member : members[static_cast<std::size_t>(type)])
      if (found.IsNull() && !owner.IsNull()) found = owner.FollowStringKey(member, key);
    return found;
  };
  const auto labelIn = [&](const KvoSimPosition& owner, const cow_String& digits) {
    const long long number = type == Type::Surface || owner.IsNull() ? -1 : numberOf(digits);
    if (number < 0) return -1LL;
    const KvoObjLabeler& labels = type == Type::Node ? m_nodes : m_elements;
    const int occurrence = labels.FindOccurrence(owner);
    if (occurrence < 0) return -1LL;
    const long long ordinal = labels.ConvertInstanceLabel(occurrence, static_cast<int>(number));
    return ordinal < 0 ? -1LL : ordinal + std::max<long long>(labels.FlatFirst(occurrence), 0);
  };
  for (const KvoSimPosition& owner : {m_assembly, m_model}) {
    if (const KvoSimPosition own = in(owner, name); !own.IsNull()) return {own, {}};
    if (const long long label = labelIn(owner, name); label >= 0) return {{}, {}, label};
  }
  const cow_List<cow_String> parts = inp_Utils::SplitScopedField(name);
  const auto known =
      parts.size() < 2 ? m_instances.end() : m_instances.find(parts[parts.size() - 2]);
  if (known == m_instances.end()) return {};
  const KvoSimPosition& instance = known->second;
  if (const long long label = labelIn(instance, parts.back()); label >= 0)
    return {{}, instance, label};
  KvoSimPosition found = in(instance, parts.back());
  if (found.IsNull())
    found = in(instance.DataRecord().GetReference(eds_Instance_Part), parts.back());
  return found.IsNull() ? Found{} : Found{found, instance};
}

inpS_NamedTargets::inpS_NamedTargets(const Names& names, const cow_List<cow_String>& words,
                                     const cow_List<cow_String>& labels)
    : m_names(names) {
  for (const cow_String& word : words) m_words.push_back(WordOf(word));
  for (const cow_String& label : labels) m_areOfFaces.push_back(inpS_faceOfFlow(label) > 0);
}

inpS_NamedTargets::Word inpS_NamedTargets::WordOf(const cow_String& name) const {
  Word word;
  for (const Type type : types) word[static_cast<std::size_t>(type)] = m_names.Find(type, name);
  return word;
}

// What is nowhere is as a surface that is not there.
inpS_NamedTargets::Target inpS_NamedTargets::Of(int code, int label) const {
  const auto place = static_cast<std::size_t>(-1LL - code);
  if (code < 0 && place >= m_words.size()) return {Type::Surface, code};
  const Word word = code < 0 ? m_words[place] : WordOf(std::to_string(code));
  const auto labelPlace = static_cast<std::size_t>(-1LL - label);
  const bool isOfFace =
      label < 0 && labelPlace < m_areOfFaces.size() && m_areOfFaces[labelPlace] != 0;
  for (const Type type : {Type::Surface, isOfFace ? Type::Element : Type::Node,
                          isOfFace ? Type::Node : Type::Element}) {
    const Names::Found& found = word[static_cast<std::size_t>(type)];
    if (found.label >= 0) return {type, static_cast<int>(found.label)};
    if (!found.set.IsNull()) return {type, code};
  }
  return {Type::Surface, code < 0 ? code : -1 - static_cast<int>(m_words.size())};
}
