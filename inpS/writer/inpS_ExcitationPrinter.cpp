#include "inpS/writer/inpS_ExcitationPrinter.h"
#include "base/utl_Number.h"
#include "base/utl_Stream.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimCSet.h"
#include "database/eds_Array.h"
#include "database/eds_DamagedModel.h"
#include "database/schema/eds_FormKind.h"
#include "database/schema/eds_Schema.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/history/inpS_GivenConditions.h"
#include "inpS/history/inpS_LoadLabels.h"
#include "inpS/writer/inpS_AmplitudeSpan.h"
#include "inpS/writer/inpS_ConditionLines.h"
#include "inpS/writer/inpS_ExcitationDegrees.h"
#include "inpS/writer/inpS_PrintPrimitives.h"
#include "inpS/writer/inpS_SetNames.h"
#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>

namespace {

using Kind = inpS_ExcitationKind;

// Nodes, elements and surfaces of flows have forms of their own; labels of faces end in a number.
eds_RecordKind fluidForm(const KvoSimDataRecord& excitation, const KvoSimPosition& relay) {
  if (relay.IsNull()) return eds_FormKind::FluidBoundary;
  const KvoSimDataRecord record = relay.DataRecord();
  const KvoSimPosition region = record.GetReference(eds_Relay_Region);
  if (region.IsA(eds_RecordKind::Surface)) return eds_FormKind::FluidBoundarySurface;
  if (region.IsA(eds_RecordKind::NodeSet)) return eds_FormKind::FluidBoundaryNode;
  if (region.IsA(eds_RecordKind::ElementSet)) return eds_FormKind::FluidBoundaryElement;
  if (record.IsMemberNull(eds_Relay_Label) && record.IsMemberNull(eds_Relay_Members))
    return eds_FormKind::FluidBoundary;
  std::string_view label = excitation.GetString(eds_Excitation_Label);
  if (label.ends_with("NU")) label.remove_suffix(2);
  return !label.empty() && label.back() >= '0' && label.back() <= '9'
             ? eds_FormKind::FluidBoundaryElement
             : eds_FormKind::FluidBoundaryNode;
}

// Of an excitation that one of its relays, if there is any, tells the region of.
const Kind* kindOf(const KvoSimDataRecord& excitation, const KvoSimPosition& relay) {
  for (const Kind& kind : Kind::All()) {
    if (kind.number != excitation.GetSymb(eds_Excitation_Kind)) continue;
    if (kind.form == eds_FormKind::FluidBoundary) return Kind::Of(fluidForm(excitation, relay));
    const bool isRotation = kind.form == eds_FormKind::Motion &&
                            excitation.GetString(eds_Excitation_Field).ends_with("_R") &&
                            excitation.GetString(eds_Excitation_Components).empty();
    return isRotation ? Kind::Of(eds_FormKind::MotionRotation) : &kind;
  }
  return nullptr; // of a newer version
}

// A direction, an axis, heights or a coefficient: an excitation has no more than its magnitude.
bool needsMore(const Kind& kind, std::string_view label) {
  const auto isMore = [](std::string_view name) {
    return name == "coefficient" || name == "emissivity";
  };
  if (std::ranges::any_of(kind.info->columnItems, isMore, &eds_FormItem::name)) return true;
  const inp_KeywordEnm keyword = inpS_FormTable::Instance().Find(kind.form)->keyword;
  const auto isRequired = [&](const inpS_LoadLabel::Value& value) {
    return value.isRequired || isMore(value.name);
  };
  return !label.empty() &&
         std::ranges::any_of(
             inpS_findLoadLabel(keyword, label).rows, [&](const inpS_LoadLabel* row) {
               return row->values.size() > 1 && std::ranges::any_of(row->values, isRequired);
             });
}

// The degree of a motion of the base; 0: none, or several.
int baseDegree(const Kind& kind, const KvoSimDataRecord& excitation) {
  const uint64_t degrees = inpS_degreesOf(kind, excitation.ReturnString(eds_Excitation_Field),
                                          excitation.ReturnString(eds_Excitation_Components));
  return std::has_single_bit(degrees) && (degrees & inpS_Degrees::kTurned) != 0
             ? std::countr_zero(degrees) + 1
             : 0;
}

// Of most kinds no line acts on the whole model.
bool lacksTarget(const Kind& kind, const KvoSimPosition& relay) {
  if (relay.IsNull() || kind.key == Kind::Key::Words) return false;
  const KvoSimDataRecord record = relay.DataRecord();
  if (record.GetInt64(eds_Relay_Rows) > 1) return true; // they are those of a keyword
  return kind.info->columnItems.front().isRequired && record.IsMemberNull(eds_Relay_Region) &&
         record.IsMemberNull(eds_Relay_Label) && record.IsMemberNull(eds_Relay_Members);
}

// Of the keywords without lines two say something by being there.
bool isPrinted(const Kind* kind, const KvoSimDataRecord& excitation, const KvoSimPosition& relay) {
  if (!kind || kind->form == eds_FormKind::MotionRotation) return false; // about which axis?
  if (kind->form == eds_FormKind::InertiaRelief) return true;
  if (kind->form == eds_FormKind::BaseMotion) return baseDegree(*kind, excitation) > 0;
  if (kind->info->data != eds_FormData::Columns ||
      std::ranges::any_of(kind->info->parameters, &eds_FormItem::isRequired))
    return false;
  const std::string_view label = excitation.GetString(eds_Excitation_Label);
  const bool lacksLabel = (kind->key == Kind::Key::Label || kind->key == Kind::Key::Words) &&
                          kind->label >= 0 && label.empty();
  return !lacksLabel && !lacksTarget(*kind, relay) && !needsMore(*kind, label);
}

cow_String numberText(double value) {
  if (!std::isfinite(value)) return {}; // no value
  char text[utl_doubleTextRoom];
  return {text, utl_printDouble(text, value)};
}

cow_String objectText(const KvoSimPosition& object) {
  return object.IsNull() ? "-" : std::to_string(object.Object().Packed());
}

std::optional<double> magnitudeOf(const KvoSimDataRecord& relay, const KvoSimDataRecord& of) {
  if (!relay.IsMemberNull(eds_Relay_Magnitude)) return relay.GetDouble(eds_Relay_Magnitude);
  if (!of.IsMemberNull(eds_Excitation_Magnitude)) return of.GetDouble(eds_Excitation_Magnitude);
  return std::nullopt;
}

cow_String componentsOf(const KvoSimDataRecord& relay, const KvoSimDataRecord& of) {
  const cow_String own = relay.ReturnString(eds_Relay_Components);
  return own.empty() ? of.ReturnString(eds_Excitation_Components) : own;
}

// "2" of LOAD CASE=2; empty: none is given.
cow_String loadCaseText(const KvoSimDataRecord& excitation) {
  return excitation.IsMemberNull(eds_Excitation_LoadCaseNumber)
             ? cow_String()
             : std::to_string(excitation.GetInt64(eds_Excitation_LoadCaseNumber));
}

long long numberAtEnd(const cow_String& field) {
  const std::size_t at = field.find_last_not_of("0123456789") + 1;
  long long number = 0;
  std::from_chars(field.data() + at, field.data() + field.size(), number);
  return number;
}

// In the flat mesh: those that are left of the region, else all of its set in the set's order.
cow_List<int32_t> membersOf(const KvoSimDataRecord& relay) {
  if (!relay.IsMemberNull(eds_Relay_Members))
    return relay.GetSet(eds_Relay_Members).OrderedMembers();
  const KvoSimPosition region = relay.GetReference(eds_Relay_Region);
  const KvoSimPosition instance = relay.GetReference(eds_Relay_Instance);
  const bool isNodes = region.IsA(eds_RecordKind::NodeSet);
  if (!isNodes && !region.IsA(eds_RecordKind::ElementSet)) return {};
  const KvoSimDataRecord set = region.DataRecord();
  const KvoSimCSet membership =
      set.GetSet(isNodes ? eds_NodeSet_Membership : eds_ElementSet_Membership);
  if (membership.IsNull()) return {};
  cow_List<int32_t> members = membership.OrderedMembers();
  if (instance.IsNull() || !set.GetReference(isNodes ? eds_NodeSet_Owner : eds_ElementSet_Owner)
                                .IsA(eds_RecordKind::Part))
    return members;
  const int64_t first =
      instance.DataRecord().GetInt64(isNodes ? eds_Instance_FirstNode : eds_Instance_FirstElement);
  for (int32_t& member : members) member += static_cast<int32_t>(first);
  return members;
}

cow_List<double> numbersOf(const KvoSimPosition& stored) {
  eds_ArrayReader array(eds_ArrayID{stored.Store(), stored.ID()});
  cow_List<double> numbers;
  if (array.ValueType() != eds_ValueType::Double) return numbers;
  numbers.resize(static_cast<std::size_t>(array.Count() * array.Width()));
  array.ReadPiece(0, std::span<double>(numbers));
  return numbers;
}

} // namespace

inpS_ExcitationPrinter::inpS_ExcitationPrinter(const KvoObjDocument& document,
                                               const inpS_DeckLabels& labels,
                                               const inpS_KeptParts& parts)
    : m_document(document), m_labels(labels), m_parts(parts),
      m_repeated(m_document, labels, parts) {
  cow_Map<int64_t, KvoSimPosition> alone;
  for (const KvoSimPosition& one : document.Context().GetRecords(eds_RecordKind::Excitation))
    if (one.DataRecord().GetReference(eds_Excitation_Given).IsNull()) alone.emplace(one.ID(), one);
  if (alone.empty()) return;
  for (const KvoSimPosition& relay : document.Context().GetRecords(eds_RecordKind::Relay)) {
    const auto of = alone.find(relay.DataRecord().GetReference(eds_Relay_Excitation).ID());
    if (of == alone.end()) continue;
    const Kind* kind = kindOf(of->second.DataRecord(), relay);
    if (isPrinted(kind, of->second.DataRecord(), relay))
      m_conditions.push_back(Read(relay, of->second, *kind));
  }
  cow_Map<std::pair<int, long long>, std::size_t> families;
  for (const Condition& condition : m_conditions) {
    if (!condition.loadCase.IsNull()) continue;
    const auto [known, isNew] =
        families.try_emplace({condition.kind->number, condition.variable}, m_families.size());
    if (isNew) m_families.emplace_back();
    m_families[known->second].push_back(&condition);
  }
  int previous = 0;
  for (const KvoSimPosition& one : document.Context().GetRecords(eds_RecordKind::HistoryStep)) {
    const KvoSimDataRecord record = one.DataRecord();
    const Step step{record.GetInt(eds_HistoryStep_Number), inpS_isPerturbation(record), previous,
                    record.GetReference(eds_HistoryStep_Procedure)};
    m_steps[record.GetReference(eds_HistoryStep_Step).Object().Packed()] = step;
    if (!step.isPerturbation) previous = step.number;
  }
}

inpS_ExcitationPrinter::Condition inpS_ExcitationPrinter::Read(const KvoSimPosition& relay,
                                                               const KvoSimPosition& excitation,
                                                               const Kind& kind) const {
  const KvoSimDataRecord record = relay.DataRecord();
  const KvoSimDataRecord of = excitation.DataRecord();
  Condition condition{excitation,
                      relay,
                      &kind,
                      0,
                      of.GetReference(eds_Excitation_LoadCase),
                      record.GetInt64(eds_Relay_FirstStep),
                      record.IsMemberNull(eds_Relay_LastStep)
                          ? std::numeric_limits<long long>::max()
                          : record.GetInt64(eds_Relay_LastStep),
                      {},
                      {}};
  const cow_String field = of.ReturnString(eds_Excitation_Field);
  if (kind.variable >= 0) condition.variable = std::max(1LL, numberAtEnd(field));
  condition.place =
      field + '\n' + componentsOf(record, of) + '\n' + of.ReturnString(eds_Excitation_Label) +
      '\n' +
      std::to_string(
          of.IsMemberNull(eds_Excitation_Restraint) ? -1 : of.GetSymb(eds_Excitation_Restraint)) +
      (of.GetBool(eds_Excitation_Imaginary) ? "i" : "r") + loadCaseText(of) + ' ' +
      objectText(record.GetReference(eds_Relay_Region)) + ' ' +
      objectText(record.GetReference(eds_Relay_Instance)) + ' ' +
      (record.IsMemberNull(eds_Relay_Label) ? "-"
                                            : std::to_string(record.GetInt64(eds_Relay_Label)));
  // Members that are left are compared by nobody: such a relay has a place of its own.
  if (!record.IsMemberNull(eds_Relay_Members)) condition.place += " " + std::to_string(relay.ID());
  condition.self = condition.place + ' ' + std::to_string(excitation.ID());
  if (const auto magnitude = magnitudeOf(record, of))
    condition.self += ' ' + numberText(*magnitude);
  return condition;
}

KvoSimPosition inpS_ExcitationPrinter::PlaceIn(const KvoSimPosition& step) const {
  const auto known = m_steps.find(step.Object().Packed());
  return known == m_steps.end() ? KvoSimPosition() : known->second.procedure;
}

// ---- what changes from step to step

// A perturbation step has conditions of the state it starts from, but none of its loads.
bool inpS_ExcitationPrinter::ActsIn(const Condition& condition, const Step& step) {
  if (condition.firstStep > step.number || condition.lastStep < step.number) return false;
  return !step.isPerturbation || condition.firstStep == step.number ||
         condition.kind->lasting == Kind::Lasting::Held;
}

inpS_ExcitationPrinter::Change inpS_ExcitationPrinter::ChangeOf(const Some& family,
                                                                const Step& step) const {
  const Step before{step.previous, false, 0, {}};
  Change change;
  for (const Condition* condition : family) {
    // Outside of steps there are boundary conditions alone: others of that time begin in a step.
    const bool mayBeThere = step.previous > 0 || condition->kind->form == eds_FormKind::Boundary;
    const bool wasThere = mayBeThere && ActsIn(*condition, before);
    const bool isThere = ActsIn(*condition, step);
    const bool isOfBase =
        step.isPerturbation && condition->kind->lasting != Kind::Lasting::Held; // loads of the base
    if (isThere && wasThere) change.stays.push_back(condition);
    if (isThere && !wasThere) change.begins.push_back(condition);
    if (!isThere && wasThere && !isOfBase) change.ends.push_back(condition);
  }
  if (change.ends.empty() || change.begins.empty()) return change;
  // One that goes on under another relay, and one in whose place another begins.
  cow_Map<cow_String, const Condition*> ended, places;
  for (const Condition* condition : change.ends) {
    ended[condition->self] = condition;
    places[condition->place] = condition;
  }
  for (const Condition*& condition : change.begins) {
    if (const auto place = places.find(condition->place); place != places.end())
      std::erase_if(change.ends,
                    [&](const Condition* one) { return one->place == condition->place; });
    if (!ended.contains(condition->self)) continue;
    change.stays.push_back(condition);
    condition = nullptr;
  }
  std::erase(change.begins, nullptr);
  return change;
}

// Whether a keyword of the step itself does.
bool inpS_ExcitationPrinter::IsTakenBack(const Kind& kind, long long variable,
                                         const KvoSimPosition& step) {
  return std::ranges::any_of(step.FollowMap(eds_Member::StepKeywords),
                             [&](const KvoSimPosition& one) {
                               const Kind* given = Kind::Of(one.Object().RecordKind());
                               if (!given || given->number != kind.number) return false;
                               const KvoSimDataRecord record = one.DataRecord();
                               if (given->variable >= 0 && given->VariableOf(record) != variable)
                                 return false;
                               return (given->op >= 0 && record.GetString(given->op) == "NEW") ||
                                      (given->remove >= 0 && record.GetBool(given->remove));
                             });
}

// ---- printing

void inpS_ExcitationPrinter::PrintBeforeSteps(utl_Stream& out) const {
  Some some;
  for (const Condition& condition : m_conditions)
    if (condition.firstStep < 1 && condition.kind->form == eds_FormKind::Boundary)
      some.push_back(&condition);
  PrintSome(out, some, 0, false);
}

void inpS_ExcitationPrinter::PrintStep(utl_Stream& out, const KvoSimPosition& step,
                                       const inpS_DeckScope& scope) {
  const auto known = m_steps.find(step.Object().Packed());
  if (known == m_steps.end()) return;
  for (const Some& family : m_families) PrintFamily(out, family, step, known->second, scope);
}

void inpS_ExcitationPrinter::PrintFamily(utl_Stream& out, const Some& family,
                                         const KvoSimPosition& step, const Step& at,
                                         const inpS_DeckScope& scope) {
  const Kind& kind = *family.front()->kind;
  const long long variable = family.front()->variable;
  const Change change = ChangeOf(family, at);
  const bool isTakenBack = IsTakenBack(kind, variable, step);
  const bool isNew = !change.ends.empty() && !isTakenBack;
  if (!isNew && !isTakenBack) return PrintSome(out, change.begins, at.number, false);
  bool hasPrinted = false;
  if (isNew && kind.op >= 0)
    hasPrinted = m_repeated.Print(out, kind, variable, at.number, at.isPerturbation, scope);
  Some all = change.stays;
  all.insert(all.end(), change.begins.begin(), change.begins.end());
  PrintSome(out, all, at.number, isNew);
  if (!isNew || hasPrinted || !all.empty()) return;
  inpS_ParameterTexts texts{{"OP", "NEW"}};
  if (kind.op < 0) texts = {{"REMOVE", ""}};
  if (kind.variable >= 0) texts["VARIABLE"] = std::to_string(variable);
  inpS_printKeywordWith(out, *inpS_FormTable::Instance().Find(kind.form), {}, m_parts, texts);
}

void inpS_ExcitationPrinter::PrintLoadCase(utl_Stream& out, const KvoSimPosition& step,
                                           const KvoSimPosition& loadCase) const {
  const auto known = m_steps.find(step.Object().Packed());
  if (known == m_steps.end()) return;
  Some some;
  for (const Condition& condition : m_conditions)
    if (condition.loadCase == loadCase && ActsIn(condition, known->second))
      some.push_back(&condition);
  PrintSome(out, some, known->second.number, false);
}

// Those under one keyword that have its parameters and stand together.
void inpS_ExcitationPrinter::PrintSome(utl_Stream& out, const Some& some, int step,
                                       bool isNew) const {
  for (std::size_t n = 0; n < some.size();) {
    const Kind& kind = *some[n]->kind;
    const inpS_ParameterTexts texts = ParametersOf(*some[n], step, isNew);
    cow_String lines;
    for (;
         n < some.size() && some[n]->kind == &kind && ParametersOf(*some[n], step, isNew) == texts;
         ++n)
      lines += LinesOf(*some[n]);
    inpS_printKeywordWith(out, *inpS_FormTable::Instance().Find(kind.form), {}, m_parts, texts);
    out << lines;
  }
}

inpS_ParameterTexts inpS_ExcitationPrinter::ParametersOf(const Condition& condition, int step,
                                                         bool isNew) const {
  const Kind& kind = *condition.kind;
  const KvoSimDataRecord record = condition.excitation.DataRecord();
  inpS_ParameterTexts texts;
  if (isNew && kind.op >= 0) texts["OP"] = "NEW";
  const KvoSimPosition amplitude = record.GetReference(eds_Excitation_Amplitude);
  const bool isOfStep = condition.firstStep == step || (condition.firstStep < 1 && step <= 1);
  if (!amplitude.IsNull() && (isOfStep || inpS_isOverTotalTime(amplitude)))
    texts["AMPLITUDE"] = inpS_quoted(amplitude.Name());
  const bool isConnector = kind.form == eds_FormKind::ConnectorMotion;
  if (isConnector || kind.form == eds_FormKind::Boundary || kind.form == eds_FormKind::Motion) {
    std::string_view field = record.GetString(eds_Excitation_Field);
    if (isConnector && field.starts_with('C')) field.remove_prefix(1);
    if (field.starts_with("V_")) texts["TYPE"] = "VELOCITY";
    if (field.starts_with("A_")) texts["TYPE"] = "ACCELERATION";
  }
  if (kind.form == eds_FormKind::Motion) texts["TRANSLATION"] = "";
  if (kind.form == eds_FormKind::BaseMotion)
    texts["DOF"] = std::to_string(baseDegree(kind, record));
  if (kind.loadCase >= 0 && !loadCaseText(record).empty())
    texts["LOAD CASE"] = loadCaseText(record);
  if (kind.variable >= 0) texts["VARIABLE"] = std::to_string(condition.variable);
  if (record.GetBool(eds_Excitation_Imaginary)) texts["IMAGINARY"] = "";
  if (record.GetBool(eds_Excitation_Fixed)) texts["FIXED"] = "";
  return texts;
}

cow_String inpS_ExcitationPrinter::LinesOf(const Condition& condition) const {
  const Kind& kind = *condition.kind;
  if (kind.info->data != eds_FormData::Columns) return {};
  const KvoSimDataRecord relay = condition.relay.DataRecord();
  const KvoSimDataRecord of = condition.excitation.DataRecord();
  cow_List<cow_String> fields(kind.info->columnItems.size());
  const auto put = [&](int column, const cow_String& text) {
    if (column >= 0) fields[static_cast<std::size_t>(column)] = text;
  };
  cow_String label = of.ReturnString(eds_Excitation_Label);
  if (kind.key == Kind::Key::Words) { // its first word stands in the place of a target
    const std::size_t blank = std::min(label.find(' '), label.size());
    put(kind.target, inpS_quoted(label.substr(0, blank)));
    label.erase(0, blank + (blank < label.size() ? 1 : 0));
  }
  put(kind.label, label.empty() ? label : inpS_quoted(label));
  const auto magnitude = magnitudeOf(relay, of);
  cow_List<double> values; // of each member
  if (magnitude)
    put(kind.value, numberText(*magnitude));
  else if (const KvoSimPosition all = of.GetReference(eds_Excitation_Magnitudes); !all.IsNull())
    values = numbersOf(all);
  cow_List<std::pair<cow_String, cow_String>> degrees; // first and last
  const bool isRestraint = !of.IsMemberNull(eds_Excitation_Restraint);
  if (isRestraint) put(kind.value, {});
  if (isRestraint && componentsOf(relay, of).empty()) { // else some of its degrees are left
    degrees.emplace_back(inpS_restraintName(of.GetSymb(eds_Excitation_Restraint)), "");
  } else {
    const uint64_t bits =
        inpS_degreesOf(kind, of.ReturnString(eds_Excitation_Field), componentsOf(relay, of));
    for (const auto& [first, last] : inpS_ConditionLines::Runs(bits))
      for (int one = first; one <= (kind.last < 0 ? last : first); ++one)
        degrees.emplace_back(std::to_string(one), std::to_string(last));
  }
  if (degrees.empty()) degrees.emplace_back();
  cow_String lines;
  const cow_List<cow_String> targets = TargetsOf(condition, !values.empty());
  for (std::size_t n = 0; n < targets.size(); ++n) {
    if (kind.key != Kind::Key::Words) put(kind.target, targets[n]);
    if (n < values.size()) put(kind.value, numberText(values[n]));
    for (const auto& [first, last] : degrees) {
      put(kind.first, first);
      put(kind.last, last);
      inpS_ConditionLines::Add(lines, fields);
    }
  }
  return lines;
}

cow_List<cow_String> inpS_ExcitationPrinter::TargetsOf(const Condition& condition,
                                                       bool oneByOne) const {
  const KvoSimDataRecord relay = condition.relay.DataRecord();
  const KvoSimPosition region = relay.GetReference(eds_Relay_Region);
  const KvoSimPosition instance = relay.GetReference(eds_Relay_Instance);
  if (condition.kind->key == Kind::Key::Words) return {cow_String()};
  if (!region.IsNull() && !region.IsA(eds_RecordKind::Surface) &&
      !region.IsA(eds_RecordKind::NodeSet) && !region.IsA(eds_RecordKind::ElementSet))
    eds_tellDamaged(condition.relay, "its region is no set and no surface");
  if (!relay.IsMemberNull(eds_Relay_Label)) {
    const cow_String label = std::to_string(relay.GetInt64(eds_Relay_Label));
    if (instance.IsNull()) return {label};
    return {inpS_quoted(instance.DataRecord().ReturnString(eds_Instance_Name)) + "." + label};
  }
  if (!oneByOne && relay.IsMemberNull(eds_Relay_Members))
    return region.IsNull() ? cow_List<cow_String>{cow_String()} : NamesOf(region, instance);
  cow_List<cow_String> labels;
  const bool isNodes = inpS_ConditionLines::IsOfNodes(*condition.kind);
  for (const int32_t flat : membersOf(relay)) {
    labels.push_back(inpS_ConditionLines::Label(m_labels, isNodes, flat));
    if (labels.back().empty())
      eds_tellDamaged(condition.relay,
                      "it names member " + std::to_string(flat) + " of the mesh, which is nothing");
  }
  return labels;
}

// A set of a part that no instance is named with is that of each instance.
cow_List<cow_String> inpS_ExcitationPrinter::NamesOf(const KvoSimPosition& set,
                                                     const KvoSimPosition& instance) const {
  const bool isSurface = set.IsA(eds_RecordKind::Surface);
  const cow_String name = inpS_quoted(isSurface ? GetSurfaceName(set) : SetName(set));
  const auto scoped = [&](const KvoSimPosition& by) {
    return inpS_quoted(by.DataRecord().ReturnString(eds_Instance_Name)) + "." + name;
  };
  if (!instance.IsNull()) return {scoped(instance)};
  const KvoSimPosition owner =
      set.DataRecord().GetReference(isSurface                          ? eds_Surface_Owner
                                    : set.IsA(eds_RecordKind::NodeSet) ? eds_NodeSet_Owner
                                                                       : eds_ElementSet_Owner);
  if (owner.IsA(eds_RecordKind::Instance)) return {scoped(owner)};
  if (!owner.IsA(eds_RecordKind::Part)) return {name};
  cow_List<cow_String> names;
  for (const KvoSimPosition& one : m_document.GetModel().Occurences())
    if (one.DataRecord().GetReference(eds_Instance_Part) == owner) names.push_back(scoped(one));
  return names;
}

cow_List<cow_String> inpS_excitationsNotPrinted(const KvoObjDocument& document) {
  cow_List<cow_String> names;
  cow_Map<int64_t, cow_List<KvoSimPosition>> alone; // with their relays
  for (const KvoSimPosition& one : document.Context().GetRecords(eds_RecordKind::Excitation))
    if (one.DataRecord().GetReference(eds_Excitation_Given).IsNull())
      alone[one.ID()].push_back(one);
  if (alone.empty()) return names;
  for (const KvoSimPosition& relay : document.Context().GetRecords(eds_RecordKind::Relay))
    if (const auto of = alone.find(relay.DataRecord().GetReference(eds_Relay_Excitation).ID());
        of != alone.end())
      of->second.push_back(relay);
  for (auto& [id, relays] : alone) {
    const KvoSimPosition one = relays.front();
    const KvoSimDataRecord record = one.DataRecord();
    if (relays.size() == 1) relays.emplace_back(); // one that acts nowhere
    if (std::all_of(relays.begin() + 1, relays.end(), [&](const KvoSimPosition& relay) {
          return isPrinted(kindOf(record, relay), record, relay);
        }))
      continue;
    cow_String keyword;
    for (const eds_SymbolInfo& symbol : eds_schemaSymbols(eds_Vocabulary::ExcitationKind))
      if (symbol.number == record.GetSymb(eds_Excitation_Kind)) keyword = symbol.name;
    names.push_back(record.ReturnString(eds_Excitation_Name) + " (" +
                    (keyword.empty() ? "of a kind that is not known" : keyword) + ")");
  }
  return names;
}
