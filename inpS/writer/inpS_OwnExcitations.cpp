#include "inpS/writer/inpS_OwnExcitations.h"
#include "database/KvoObjDocument.h"
#include "database/schema/eds_FormKind.h"
#include "database/schema/eds_Schema.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/history/inpS_LoadLabels.h"
#include "inpS/writer/inpS_ExcitationDegrees.h"
#include <algorithm>
#include <bit>

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

bool isByRoutine(const KvoSimDataRecord& excitation) {
  return excitation.GetBool(eds_Excitation_User) ||
         excitation.GetString(eds_Excitation_Label).ends_with("NU");
}

// A direction, an axis, heights or a coefficient: an excitation has no more than its magnitude.
// Coefficients are among what a routine has.
bool needsMore(const Kind& kind, const KvoSimDataRecord& excitation) {
  const bool needsCoefficient = !isByRoutine(excitation);
  const auto isMore = [&](std::string_view name) {
    return needsCoefficient && (name == "coefficient" || name == "emissivity");
  };
  const auto& columns = kind.info->columnItems;
  if (std::ranges::any_of(columns, isMore, &eds_FormItem::name)) return true;
  if (std::ranges::count(columns, "source", &eds_FormItem::name) > 0) return true; // of a wave
  const inp_KeywordEnm keyword = inpS_FormTable::Instance().Find(kind.form)->keyword;
  const auto isRequired = [&](const inpS_LoadLabel::Value& value) {
    return value.isRequired || isMore(value.name);
  };
  const std::string_view label = excitation.GetString(eds_Excitation_Label);
  return !label.empty() &&
         std::ranges::any_of(
             inpS_findLoadLabel(keyword, label).rows, [&](const inpS_LoadLabel* row) {
               const bool hasMagnitude = !label.ends_with("NU") && !row->values.empty();
               return std::any_of(row->values.begin() + hasMagnitude, row->values.end(),
                                  isRequired);
             });
}

// What the excitation has and the keyword has no parameter for, or the reverse.
bool lacksParameter(const Kind& kind, const KvoSimDataRecord& excitation) {
  const auto needs = [&](bool isGiven, int parameter) { return isGiven && parameter < 0; };
  const bool isOfSubmodel = excitation.GetBool(eds_Excitation_Submodel);
  const bool hasProperty = !excitation.GetReference(eds_Excitation_Property).IsNull();
  const auto isLacking = [&](const eds_FormItem& parameter) {
    return parameter.isRequired && !(hasProperty && parameter.name == "property");
  };
  return needs(excitation.GetBool(eds_Excitation_User), kind.user) ||
         needs(isOfSubmodel, kind.submodel) ||
         needs(isOfSubmodel && excitation.GetBool(eds_Excitation_TimeScale), kind.timeScale) ||
         needs(!excitation.GetString(eds_Excitation_Base).empty(), kind.baseName) ||
         needs(!excitation.IsMemberNull(eds_Excitation_Scale), kind.scale) ||
         needs(hasProperty, kind.property) || std::ranges::any_of(kind.info->parameters, isLacking);
}

bool hasNoTarget(const KvoSimDataRecord& relay) {
  return relay.IsMemberNull(eds_Relay_Region) && relay.IsMemberNull(eds_Relay_Label) &&
         relay.IsMemberNull(eds_Relay_Members);
}

// Of most kinds no line acts on the whole model.
bool lacksTarget(const Kind& kind, const KvoSimDataRecord& excitation,
                 const KvoSimPosition& relay) {
  if (relay.IsNull() || kind.key == Kind::Key::Words) return false;
  const KvoSimDataRecord record = relay.DataRecord();
  if (record.GetInt64(eds_Relay_Rows) > 1) return true; // they are those of a keyword
  return kind.info->columnItems.front().isRequired && hasNoTarget(record) &&
         !inpS_OwnExcitations::ActsWithoutLines(kind, excitation, relay);
}

} // namespace

namespace inpS_OwnExcitations {

const Kind* KindOf(const KvoSimDataRecord& excitation, const KvoSimPosition& relay) {
  for (const Kind& kind : Kind::All()) {
    if (kind.number != excitation.GetSymb(eds_Excitation_Kind)) continue;
    if (kind.form == eds_FormKind::FluidBoundary) return Kind::Of(fluidForm(excitation, relay));
    const bool isRotation = kind.form == eds_FormKind::Motion &&
                            excitation.GetString(eds_Excitation_Field).ends_with("_R") &&
                            excitation.GetString(eds_Excitation_Components).empty();
    return isRotation ? Kind::Of(eds_FormKind::MotionRotation) : &kind;
  }
  return nullptr;
}

int BaseDegree(const Kind& kind, const KvoSimDataRecord& excitation) {
  const uint64_t degrees = inpS_degreesOf(kind, excitation.ReturnString(eds_Excitation_Field),
                                          excitation.ReturnString(eds_Excitation_Components));
  return std::has_single_bit(degrees) && (degrees & inpS_Degrees::kTurned) != 0
             ? std::countr_zero(degrees) + 1
             : 0;
}

bool ActsWithoutLines(const Kind& kind, const KvoSimDataRecord& excitation,
                      const KvoSimPosition& relay) {
  return (kind.key == Kind::Key::One || kind.key == Kind::Key::Variable) && kind.IsOfNodes() &&
         excitation.GetBool(eds_Excitation_User) && !relay.IsNull() &&
         hasNoTarget(relay.DataRecord());
}

// Of the keywords without lines two say something by being there.
bool IsPrinted(const Kind* kind, const KvoSimDataRecord& excitation, const KvoSimPosition& relay) {
  if (!kind || kind->form == eds_FormKind::MotionRotation) return false; // about which axis?
  if (lacksParameter(*kind, excitation)) return false;
  if (kind->form == eds_FormKind::InertiaRelief) return true;
  if (kind->form == eds_FormKind::BaseMotion) return BaseDegree(*kind, excitation) > 0;
  if (kind->info->data != eds_FormData::Columns) return false;
  const bool lacksLabel = (kind->key == Kind::Key::Label || kind->key == Kind::Key::Words) &&
                          kind->label >= 0 && !excitation.GetBool(eds_Excitation_Submodel) &&
                          excitation.GetString(eds_Excitation_Label).empty();
  return !lacksLabel && !lacksTarget(*kind, excitation, relay) && !needsMore(*kind, excitation);
}

} // namespace inpS_OwnExcitations

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
          return inpS_OwnExcitations::IsPrinted(inpS_OwnExcitations::KindOf(record, relay), record,
                                                relay);
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
