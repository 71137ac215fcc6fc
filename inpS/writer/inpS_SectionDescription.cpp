#include "inpS/writer/inpS_SectionDescription.h"
#include "base/utl_Stream.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/properties/inpS_SectionData.h"
#include "inpS/properties/inpS_SectionInventory.h"
#include "inpS/writer/inpS_PropertyWords.h"
#include <algorithm>
#include <unordered_map>

namespace {

using Description = inpS_SectionDescription;
using Kind = eds_RecordKind;
using Thickness = Description::Thickness;

int fieldNamed(const eds_RecordInfo& info, std::string_view column) {
  const auto found = std::ranges::find(info.fields, column, &eds_FieldInfo::column);
  return found == info.fields.end() ? -1 : static_cast<int>(found - info.fields.begin());
}

// The field that holds a value of this name as a reference; -1: none does.
int referenceNamed(const eds_RecordInfo& info, std::string_view column) {
  const int field = fieldNamed(info, column);
  if (field < 0) return -1;
  const eds_FieldType type = info.fields[static_cast<std::size_t>(field)].type;
  return type == eds_FieldType::Ref || type == eds_FieldType::AnyRef ? field : -1;
}

// What of a kind the description is made of.
struct Columns {
  Columns() = default;
  explicit Columns(Kind kind) {
    const eds_RecordInfo* info = eds_formRecord(kind);
    if (!info) return;
    elset = referenceNamed(*info, "elset");
    elsetInstance = referenceNamed(*info, "elset_instance");
    material = referenceNamed(*info, "material");
    orientation = referenceNamed(*info, "orientation");
    if (orientation < 0) { // a connector's, at either end
      orientation = referenceNamed(*info, "orientation_1");
      otherOrientation = referenceNamed(*info, "orientation_2");
    }
    behavior = referenceNamed(*info, "behavior");
    if (const eds_FormInfo* form = eds_formOf(kind); form->data == eds_FormData::Records)
      hasMaterials = fieldNamed(*eds_formRecord(form->record), "material") >= 0;
    if (fieldNamed(*info, "segments") >= 0) return; // a wall's, not the section's
    for (const char* column : {"thickness", "membrane", "initial_thickness"}) {
      const int field = fieldNamed(*info, column);
      if (field < 0 || info->fields[static_cast<std::size_t>(field)].type != eds_FieldType::Real)
        continue;
      thickness = field;
      distributions[0] = referenceNamed(*info, cow_String(column) + "_distribution");
    }
    distributions[1] = referenceNamed(*info, "shell_thickness");
    distributions[2] = referenceNamed(*info, "membrane_thickness");
    nodal = fieldNamed(*info, "nodal_thickness");
    symmetric = fieldNamed(*info, "symmetric");
  }

  int elset = -1;
  int elsetInstance = -1;
  int material = -1;
  int behavior = -1; // of a gasket
  int orientation = -1;
  int otherOrientation = -1;
  int thickness = -1;
  int distributions[3] = {-1, -1, -1}; // of thickness: any
  int nodal = -1;
  int symmetric = -1;
  bool hasMaterials = false; // its lines: plies, or what fills its elements
  cow_String variant;
};

KvoSimPosition referenceIn(const KvoSimDataRecord& record, int field) {
  return field < 0 ? KvoSimPosition() : record.GetReference(field);
}

bool isSet(const KvoSimDataRecord& record, int field) {
  return field >= 0 && record.GetBool(field);
}

cow_String nameOf(const KvoSimPosition& position) {
  return position.IsNull() ? cow_String() : position.Name();
}

class Describer {
public:
  Description Of(const KvoSimPosition& section, const KvoSimPosition& owner) {
    const Columns& columns = ColumnsOf(section.Object().RecordKind());
    const KvoSimDataRecord record = section.DataRecord();
    Description made;
    made.section = section;
    made.variant = columns.variant;
    const KvoSimPosition set = referenceIn(record, columns.elset);
    const KvoSimPosition named = referenceIn(record, columns.elsetInstance);
    const bool isWithin = named.IsNull() && owner.IsA(Kind::Instance);
    made.set = nameOf(set);
    if (const KvoSimPosition instance = isWithin ? owner : named; !instance.IsNull())
      made.set = nameOf(instance) + "." + made.set;
    made.name = inpS_SectionInventory::GetSectionName(owner, set, named);
    made.material = nameOf(referenceIn(record, columns.material));
    made.orientation = nameOf(referenceIn(record, columns.orientation));
    if (const cow_String other = nameOf(referenceIn(record, columns.otherOrientation));
        !other.empty())
      made.orientation += (made.orientation.empty() ? "-, " : ", ") + other;
    if (made.material.empty()) made.material = nameOf(referenceIn(record, columns.behavior));
    if (columns.hasMaterials) AddLines(made);
    AddThickness(made, columns, record);
    return made;
  }

  bool IsSection(const KvoSimPosition& record) {
    if (record.IsA(eds_FormKind::PerfectlyMatchedLayer)) return false; // lies beside one
    const int elset = ColumnsOf(record.Object().RecordKind()).elset;
    return elset >= 0 && !record.DataRecord().GetReference(elset).IsNull();
  }

private:
  const Columns& ColumnsOf(Kind kind) {
    const auto [known, isNew] = m_columns.try_emplace(kind);
    if (!isNew) return known->second;
    known->second = Columns(kind);
    const inpS_Form* form = inpS_FormTable::Instance().Find(kind);
    if (form && form->keyword != inp_NullKeyword) {
      utl_Stream out(&known->second.variant);
      inpS_printVariant(out, *form);
      out.Flush();
      known->second.variant.erase(0, 1); // the asterisk
    }
    return known->second;
  }

  static bool IsLayup(Kind kind) {
    return kind == eds_FormKind::ShellSectionComposite ||
           kind == eds_FormKind::ShellGeneralSectionComposite ||
           kind == eds_FormKind::SolidSectionComposite;
  }

  void AddLines(Description& made) {
    const bool isLayup = IsLayup(made.section.Object().RecordKind());
    cow_List<KvoSimPosition> materials;
    for (const KvoSimPosition& ply : made.section.GetVector(eds_Member::Lines)) {
      const Columns& columns = ColumnsOf(ply.Object().RecordKind());
      const KvoSimDataRecord record = ply.DataRecord();
      if (isLayup) ++made.plies;
      if (columns.thickness >= 0) made.thickness += record.GetDouble(columns.thickness);
      AddDistribution(made, referenceIn(record, columns.distributions[0]));
      if (!made.distributions.empty()) made.kind = Thickness::Distribution;
      const KvoSimPosition material = referenceIn(record, columns.material);
      if (material.IsNull() || std::ranges::find(materials, material) != materials.end()) continue;
      materials.push_back(material);
      made.material += (made.material.empty() ? "" : ", ") + material.Name();
    }
  }

  static void AddDistribution(Description& made, const KvoSimPosition& distribution) {
    const cow_String name = nameOf(distribution);
    if (!name.empty() && std::ranges::find(made.distributions, name) == made.distributions.end())
      made.distributions.push_back(name);
  }

  // Nodal thickness outweighs what else is said, and one of the whole shell its plies: theirs are
  // shares of it then.
  void AddThickness(Description& made, const Columns& columns, const KvoSimDataRecord& record) {
    const Kind kind = made.section.Object().RecordKind();
    made.isSymmetric = isSet(record, columns.symmetric);
    if (kind == eds_FormKind::SolidSectionComposite) {
      made.kind = Thickness::None;
      made.thickness = 0;
      made.distributions.clear();
      return;
    }
    if (made.isSymmetric) made.thickness *= 2;
    const bool isNodal = isSet(record, columns.nodal);
    const bool isOfWhole = std::ranges::any_of(
        columns.distributions, [&](int field) { return !referenceIn(record, field).IsNull(); });
    if (isNodal || isOfWhole) {
      made.kind = isNodal ? Thickness::Nodal : Thickness::Distribution;
      made.thickness = 0;
      made.distributions.clear();
      for (const int field : columns.distributions)
        if (!isNodal) AddDistribution(made, referenceIn(record, field));
    } else if (made.plies > 0) {
      if (made.kind == Thickness::None) made.kind = Thickness::Constant;
    } else if (columns.thickness >= 0 && !record.IsMemberNull(columns.thickness)) {
      made.kind = Thickness::Constant;
      made.thickness = record.GetDouble(columns.thickness);
    } else if (kind == eds_FormKind::SolidSectionPlane) { // what decks leave out is a unit
      made.kind = Thickness::Constant;
      made.thickness = 1;
    }
  }

  std::unordered_map<Kind, Columns> m_columns;
};

} // namespace

cow_List<inpS_SectionDescription> inpS_describeSections(const KvoObjDocument& document) {
  cow_List<Description> all;
  const KvoObjModel model = document.GetModel();
  if (model.Position().IsNull()) return all; // cut short at its very start
  std::unordered_map<unsigned long long, long long> elements;
  for (const KvoSimPosition& assignment : document.Context().GetRecords(Kind::SectionAssignment)) {
    const KvoSimDataRecord record = assignment.DataRecord();
    elements[record.GetReference(eds_SectionAssignment_Section).Object().Packed()] +=
        record.GetInt64(eds_SectionAssignment_Count);
  }
  Describer describer;
  const auto add = [&](const KvoSimPosition& owner) {
    for (const KvoSimPosition& section : owner.GetVector(eds_Member::Sections)) {
      if (!describer.IsSection(section)) continue; // controls, say, are about no elements
      all.push_back(describer.Of(section, owner));
      const auto counted = elements.find(section.Object().Packed());
      if (counted != elements.end()) all.back().elements = counted->second;
    }
  };
  for (const KvoSimPosition& owner : inpS_SectionData::SectionOwners(document)) add(owner);
  return all;
}
