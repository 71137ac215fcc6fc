#include "inpS/forms/inpS_FormValue.h"
#include "base/utl_Assert.h"
#include "base/utl_Controls.h"
#include "base/utl_Number.h"
#include "base/utl_Stream.h"
#include "database/KvoObjModel.h"
#include "inpS/keywords/inpS_Flag.h"
#include "inpS/keywords/inpS_ParameterBinding.h"
#include "inpS/keywords/inpS_QuotedName.h"
#include "parser/inp_Utils.h"
#include <algorithm>
#include <cmath>

namespace {

using Alternative = eds_FormItem::Alternative;
using Kind = inpS_SetVisitor::Kind;

// By which the deck names the elements that the record, or what it is a line of, is about.
KvoSimPosition instanceOf(const KvoSimDataRecord& record) {
  KvoSimPosition position = record.Pos();
  for (int level = 0; level < 2 && !position.IsNull(); ++level, position = position.Parent()) {
    const eds_RecordInfo* info = eds_formRecord(position.Object().RecordKind());
    if (!info) return {};
    const auto field = std::ranges::find(info->fields, "elset_instance", &eds_FieldInfo::column);
    if (field != info->fields.end())
      return position.DataRecord().GetReference(static_cast<int>(field - info->fields.begin()));
  }
  return {};
}

// What is wrong with the value for this type; empty when it has been taken.
cow_String takeReference(const Alternative& one, const inpS_FormValue& value,
                         const inpS_FormNames& names, KvoSimDataRecord& record) {
  const inpS_SetVisitor::Found found = names.Find(*one.referable, value.text);
  if (found.set.IsNull()) return names.TextOfMissing(*one.referable, inp_Utils::Fold(value.text));
  if (one.instanceField < 0 && !found.instance.IsNull() && !(instanceOf(record) == found.instance))
    return "\"" + value.text + "\" belongs to an instance, by which the elements are not named.";
  record.SetReference(one.field, found.set);
  if (one.instanceField >= 0 && !found.instance.IsNull())
    record.SetReference(one.instanceField, found.instance);
  return {};
}

cow_String takeLabel(const Alternative& one, const inpS_FormValue& value,
                     const inpS_FormNames& names, KvoSimDataRecord& record) {
  const inpS_FormNames::Label label = names.FindLabel(one.type, value.text);
  if (!label.isKnown) return names.TextOfMissing(one.type, inp_Utils::Fold(value.text));
  record.SetInt(one.field, label.number);
  if (!label.instance.IsNull()) record.SetReference(one.instanceField, label.instance);
  return {};
}

cow_String takeWord(const Alternative& one, const inpS_FormValue& value, KvoSimDataRecord& record) {
  const cow_String bare = inpS_bareWord(inp_Utils::Fold(value.text));
  cow_String list;
  const cow_String* begins = nullptr; // the only word that begins so
  int fitting = 0;
  for (const cow_String& word : one.words) {
    const cow_String known = inpS_bareWord(word);
    if (known == bare) {
      record.SetString(one.field, word);
      return {};
    }
    if (!bare.empty() && known.starts_with(bare)) begins = ++fitting == 1 ? &word : nullptr;
    list += (list.empty() ? "" : ", ") + word;
  }
  if (begins) {
    record.SetString(one.field, *begins);
    return {};
  }
  return "\"" + value.text + "\" is none of " + list + ".";
}

// It is found by it, quotes or none.
bool isNameItself(const eds_FormItem& item) {
  return item.name == "name";
}

cow_String takeAs(const eds_FormItem& item, const Alternative& one, const inpS_FormValue& value,
                  const inpS_FormNames& names, KvoSimDataRecord& record) {
  const bool isNumber = value.type == inp_FieldType::Integer || value.type == inp_FieldType::Double;
  switch (one.type) {
  case eds_FormType::Flag: {
    const cow_String word = inp_Utils::Fold(value.text);
    const std::optional<bool> yes = word.empty() ? true : inpS_yesOrNo(word);
    if (!yes) return "\"" + value.text + "\" is none of YES, NO, ON, OFF.";
    record.SetBool(one.field, *yes);
    return {};
  }
  case eds_FormType::Int: {
    constexpr double most = 1e15; // beyond, doubles have no fractions
    const bool isWhole = value.type == inp_FieldType::Double &&
                         value.real == std::trunc(value.real) && std::abs(value.real) <= most;
    if (value.type != inp_FieldType::Integer && !isWhole)
      return "\"" + value.text + "\" is no integer.";
    record.SetInt(one.field, isWhole ? static_cast<long long>(value.real) : value.integer);
    return {};
  }
  case eds_FormType::Real:
    if (!isNumber) return "\"" + value.text + "\" is no number.";
    record.SetDouble(one.field, value.real);
    return {};
  case eds_FormType::Choice:
    return takeWord(one, value, record);
  case eds_FormType::Reference:
    return takeReference(one, value, names, record);
  case eds_FormType::Node:
  case eds_FormType::Element:
    return takeLabel(one, value, names, record);
  case eds_FormType::Text:
    break;
  case eds_FormType::Symbol: // of parameters alone
  case eds_FormType::Any:
    utl_assertionFailed("a value of a line has a type of decks");
  }
  if (utl_findControl(value.text) != std::string_view::npos)
    return "The text holds a control character."; // the store keeps none of them
  record.SetString(one.field,
                   isNameItself(item) ? inp_Utils::Fold(value.text) : inpS_textOf(value.text));
  return {};
}

void printInstance(utl_Stream& out, const Alternative& one, const KvoSimDataRecord& record) {
  if (one.instanceField < 0 || record.IsMemberNull(one.instanceField)) return;
  const KvoSimPosition instance = record.GetReference(one.instanceField);
  out << inpS_quoted(instance.DataRecord().ReturnString(eds_Instance_Name)) << '.';
}

// A name of a part or an instance that elements of an instance refer to from the assembly has that
// instance before it.
void printReference(utl_Stream& out, const Alternative& one, const KvoSimDataRecord& record) {
  const KvoSimPosition named = record.GetReference(one.field);
  printInstance(out, one, record);
  if (one.referable->place == eds_Referable::Place::Near)
    if (const KvoSimPosition instance = instanceOf(record); !instance.IsNull())
      if (const KvoSimPosition owner = named.Parent();
          owner == instance || owner.IsA(eds_RecordKind::Part))
        out << inpS_quoted(instance.DataRecord().ReturnString(eds_Instance_Name)) << '.';
  out << inpS_quoted(named.Name());
}

} // namespace

inpS_FormValue inpS_FormValue::Of(const inp_Item& parameter) {
  inpS_FormValue value;
  if (parameter.IsFlag()) return value;
  value.text = parameter.Verbatim();
  value.type = parameter.GetKind() == inp_Item::Kind::Integer ? inp_FieldType::Integer
               : parameter.IsNumber()                         ? inp_FieldType::Double
                                                              : inp_FieldType::String;
  value.real = parameter.AsDouble();
  value.integer = parameter.AsInt();
  return value;
}

inpS_FormValue inpS_FormValue::Of(const inp_DataArray& data, long long row, int col) {
  inpS_FormValue value;
  if (col >= data.Cols(row)) return value;
  value.type = data.Type(row, col);
  value.text = data.AsStringVerbatim(row, col);
  value.real = data.AsDouble(row, col);
  value.integer = data.AsInt64(row, col);
  return value;
}

inpS_SetVisitor::Found inpS_FormNames::Find(const eds_Referable& referable,
                                            const cow_String& asWritten) const {
  if (m_last.empty()) m_last.resize(eds_referables().size());
  Last& last = m_last[static_cast<std::size_t>(&referable - eds_referables().data())];
  const KvoSimPosition from = m_place.Holder();
  if (last.found.set.IsNull() || last.name != asWritten || !(last.from == from))
    last = {asWritten, from, Search(referable, asWritten)};
  return last.found;
}

inpS_SetVisitor::Found inpS_FormNames::Search(const eds_Referable& referable,
                                              const cow_String& asWritten) const {
  if (referable.place == eds_Referable::Place::Near) return FindNear(referable, asWritten);
  if (referable.place == eds_Referable::Place::Model)
    return {m_place.Model().FollowStringKey(referable.member, inp_Utils::Fold(asWritten)), 0, {}};
  const Kind kind = referable.kind == eds_RecordKind::NodeSet      ? Kind::Nodes
                    : referable.kind == eds_RecordKind::ElementSet ? Kind::Elements
                                                                   : Kind::Surfaces;
  return m_place.FindField(kind, asWritten);
}

// An instance has its part's names beside its own; the model's all have, and from outside those of
// an instance go by instance.name.
inpS_SetVisitor::Found inpS_FormNames::FindNear(const eds_Referable& referable,
                                                const cow_String& asWritten) const {
  const auto in = [&](const KvoSimPosition& owner, const cow_String& name) {
    if (owner.IsNull()) return KvoSimPosition();
    const KvoSimPosition own = owner.FollowStringKey(referable.member, name);
    if (!own.IsNull() || !owner.IsA(eds_RecordKind::Instance)) return own;
    const KvoSimPosition part = owner.DataRecord().GetReference(eds_Instance_Part);
    return part.IsNull() ? part : part.FollowStringKey(referable.member, name);
  };
  const cow_String name = inp_Utils::Fold(asWritten);
  KvoSimPosition found = in(m_place.Holder(), name);
  if (found.IsNull()) found = in(m_place.Model(), name);
  if (!found.IsNull()) return {found, 0, {}};
  const cow_List<cow_String> parts = inp_Utils::SplitScopedField(asWritten);
  if (parts.size() < 2 || m_place.Owner().IsA(eds_RecordKind::Part)) return {};
  const KvoSimPosition instance =
      m_place.Model().FollowStringKey(eds_Member::Occurrences, parts[parts.size() - 2]);
  return {in(instance, parts.back()), 0, instance};
}

namespace {

// The inventory names those surfaces that are no records.
bool isKeptAsText(const inpS_Inventory* inventory, const cow_String& name) {
  const cow_List<cow_String> parts = inp_Utils::SplitScopedField(name);
  return inventory && !parts.empty() &&
         inventory->Names(inp_KwSurface, inp_Utils::Fold(parts.back()));
}

} // namespace

cow_String inpS_FormNames::TextOfMissing(const eds_Referable& referable,
                                         const cow_String& name) const {
  const auto own = m_texts.find(referable.word);
  const bool isOwn = own != m_texts.end() && own->second != referable.missing;
  if (referable.kind == eds_RecordKind::Surface && !isOwn && isKeptAsText(m_inventory, name))
    return "*SURFACE \"" + name + "\" is kept as text.";
  const std::string_view text = own == m_texts.end() ? referable.missing : own->second;
  return inp_Utils::Format(cow_String(text).c_str(), name.c_str());
}

cow_String inpS_FormNames::TextOfMissing(eds_FormType type, const cow_String& asWritten) const {
  const bool isNode = type == eds_FormType::Node;
  if (isNode && m_textOfNode) return m_textOfNode(asWritten);
  return (isNode ? "Node \"" : "Element \"") + asWritten + "\" does not exist.";
}

namespace {

Kind labelKind(eds_FormType type) {
  return type == eds_FormType::Node ? Kind::Nodes : Kind::Elements;
}
// Digits in quotes are a name and no label.
bool isInQuotes(std::string_view asWritten) {
  return asWritten.ends_with('"');
}
Kind labelKind(const eds_FormItem& item) {
  return labelKind(item.alternatives.front().type);
}

} // namespace

inpS_LabelSpaceView inpS_FormNames::Labels(const eds_FormItem& item) const {
  const inpS_SetVisitor::LabelSpace space = m_place.SpaceOf(labelKind(item));
  if (space.occurrence < 0) return {};
  return {&m_place.LabelerOf(labelKind(item)).Labels(space.occurrence), space.offset};
}

bool inpS_FormNames::FindLabel(const eds_FormItem& item, const cow_String& asWritten,
                               long long& ordinal) const {
  if (item.alternatives.front().type == eds_FormType::Reference) return false; // a name alone
  const cow_List<cow_String> parts = inp_Utils::SplitScopedField(asWritten);
  if (parts.size() < 2 || isInQuotes(asWritten)) return false;
  std::int64_t label = 0;
  const char* const end = parts.back().data() + parts.back().size();
  if (utl_readInt(parts.back().data(), end, label) != end) return false;
  ordinal = -1;
  if (label != static_cast<int>(label)) return true;
  const Kind kind = labelKind(item);
  const inpS_SetVisitor::LabelSpace space = m_place.SpaceOf(kind, parts[parts.size() - 2]);
  if (space.occurrence < 0) return true;
  const int found =
      m_place.LabelerOf(kind).ConvertInstanceLabel(space.occurrence, static_cast<int>(label));
  if (found >= 0) ordinal = found + space.offset;
  return true;
}

inpS_FormNames::Label inpS_FormNames::FindLabel(eds_FormType type,
                                                const cow_String& asWritten) const {
  Label label;
  if (isInQuotes(asWritten)) return label;
  const cow_List<cow_String> parts = inp_Utils::SplitScopedField(asWritten);
  const cow_String& digits = parts.empty() ? asWritten : parts.back();
  std::int64_t number = 0;
  const char* const end = digits.data() + digits.size();
  if (utl_readInt(digits.data(), end, number) != end || number != static_cast<int>(number))
    return label;
  label.isNumber = true;
  const Kind kind = labelKind(type);
  const bool isScoped = parts.size() > 1;
  const inpS_SetVisitor::LabelSpace space =
      m_place.SpaceOf(kind, isScoped ? parts[parts.size() - 2] : cow_String());
  label.number = static_cast<int>(number);
  label.isKnown = space.occurrence >= 0 &&
                  (m_place.LabelerOf(kind).HasInstanceLabel(space.occurrence, label.number) ||
                   m_place.IsInText(kind, space, label.number));
  if (label.isKnown && isScoped)
    label.instance =
        m_place.LabelerOf(kind).Occurrences()[static_cast<std::size_t>(space.occurrence)];
  return label;
}

cow_String inpS_takeValue(const eds_FormItem& item, const inpS_FormValue& value,
                          const inpS_FormNames& names, KvoSimDataRecord record) {
  cow_String fault;
  bool isAboutName = false;
  for (const Alternative& one : item.alternatives) {
    const cow_String other = takeAs(item, one, value, names, record);
    if (other.empty()) return {};
    const eds_FormType first = item.alternatives.front().type;
    const bool isLabel = (first == eds_FormType::Node || first == eds_FormType::Element) &&
                         names.FindLabel(first, value.text).isNumber;
    const bool isName =
        one.type == eds_FormType::Reference && value.type == inp_FieldType::String && !isLabel;
    // A word is about a name rather than no number, and about what it mostly names.
    if (fault.empty() || (isName && !isAboutName)) fault = other;
    isAboutName = isAboutName || isName;
    // Of yes or no, or a word: all that fit.
    if (first == eds_FormType::Flag && one.type == eds_FormType::Choice)
      for (const cow_String& word : one.words) fault.insert(fault.size() - 1, ", " + word);
  }
  return fault;
}

cow_String inpS_faultOfName(const eds_FormItem& item, const inpS_FormValue& value,
                            const inpS_FormNames& names) {
  const eds_FormType first = item.alternatives.front().type;
  if (first == eds_FormType::Node || first == eds_FormType::Element)
    if (const inpS_FormNames::Label label = names.FindLabel(first, value.text); label.isNumber)
      return label.isKnown ? cow_String() : names.TextOfMissing(first, value.text);
  const Alternative& last = item.alternatives.back();
  const bool isThere = !names.Find(*last.referable, value.text).set.IsNull();
  return isThere ? cow_String() : names.TextOfMissing(*last.referable, inp_Utils::Fold(value.text));
}

bool inpS_mayName(const eds_FormItem& item) {
  return std::ranges::any_of(item.alternatives, [](const Alternative& one) {
    return one.type == eds_FormType::Node || one.type == eds_FormType::Element || one.referable;
  });
}

bool inpS_namesMesh(const eds_FormItem& item) {
  return std::ranges::any_of(item.alternatives, [](const Alternative& one) {
    return one.type == eds_FormType::Node || one.type == eds_FormType::Element ||
           (one.referable && one.referable->IsScoped());
  });
}

bool inpS_hasValue(const eds_FormItem& item, const KvoSimDataRecord& record) {
  return std::ranges::any_of(
      item.alternatives, [&](const Alternative& one) { return !record.IsMemberNull(one.field); });
}

void inpS_printValue(utl_Stream& out, const eds_FormItem& item, const KvoSimDataRecord& record) {
  for (const Alternative& one : item.alternatives) {
    if (record.IsMemberNull(one.field)) continue;
    switch (one.type) {
    case eds_FormType::Flag:
      out << (record.GetBool(one.field) ? "YES" : "NO");
      return;
    case eds_FormType::Int:
      out << record.GetInt64(one.field);
      return;
    case eds_FormType::Real:
      out << record.GetDouble(one.field);
      return;
    case eds_FormType::Choice:
      utl_printLines(out, record.GetString(one.field));
      return;
    case eds_FormType::Text:
      out << (isNameItself(item) ? inpS_quoted(record.ReturnString(one.field))
                                 : inpS_textInDeck(record.ReturnString(one.field)));
      return;
    case eds_FormType::Reference:
      printReference(out, one, record);
      return;
    case eds_FormType::Node:
    case eds_FormType::Element:
      printInstance(out, one, record);
      out << record.GetInt64(one.field);
      return;
    case eds_FormType::Symbol:
    case eds_FormType::Any:
      return;
    }
  }
}
