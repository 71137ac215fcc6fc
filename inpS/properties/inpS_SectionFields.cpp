#include "inpS/properties/inpS_SectionFields.h"
#include "database/KvoObjField.h"
#include "database/KvoObjMesh.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimTransaction.h"
#include "database/schema/eds_Form.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/properties/inpS_Distribution.h"
#include "inpS/properties/inpS_DistributionValues.h"
#include "inpS/properties/inpS_SectionData.h"
#include "inpS/sets/inpS_SetVisitor.h"
#include <algorithm>
#include <optional>
#include <unordered_map>

namespace {

using Kind = eds_RecordKind;

// The fields of a kind that may name a distribution, or say that nodes have the thickness.
struct Columns {
  Columns() = default;
  explicit Columns(Kind kind) {
    const eds_RecordInfo* info = eds_formRecord(kind);
    if (!info) return;
    for (std::size_t n = 0; n < info->fields.size(); ++n) {
      const eds_FieldInfo& field = info->fields[n];
      const int number = static_cast<int>(n);
      const bool isReference =
          field.type == eds_FieldType::Ref || field.type == eds_FieldType::AnyRef;
      const auto isOneOf = [&](std::initializer_list<std::string_view> names) {
        return isReference && std::ranges::find(names, field.column) != names.end();
      };
      if (isOneOf({"thickness_distribution", "membrane_distribution", "shell_thickness",
                   "membrane_thickness"}))
        thickness.push_back(number);
      if (isOneOf({"orientation_angle", "angle_distribution"})) angle.push_back(number);
      if (field.column == "nodal_thickness") nodal = number;
    }
    const eds_FormInfo* form = eds_formOf(kind);
    hasPlies = form->data == eds_FormData::Records && form->record == eds_FormKind::SectionPly;
  }
  bool IsEmpty() const { return thickness.empty() && angle.empty() && nodal < 0 && !hasPlies; }

  cow_List<int> thickness;
  cow_List<int> angle;
  int nodal = -1;
  bool hasPlies = false;
};

void removeDerived(const KvoSimPosition& field) {
  for (const KvoSimPosition& data : field.GetVector(eds_Member::Data)) {
    if (!(data.Parent() == field)) continue; // the distribution's own
    for (const KvoSimPosition& drawer : data.GetVector(eds_Member::Drawers)) {
      drawer.DataRecord().GetReference(eds_Drawer_Array).Remove();
      const KvoSimPosition members = drawer.DataRecord().GetReference(eds_Drawer_Over);
      if (const auto list = members.DataRecord().GetReference(eds_CSet_Array); !list.IsNull())
        list.Remove();
      members.Remove(); // made for it alone
      drawer.Remove();
    }
    data.Remove();
  }
  field.Remove();
}

class Deriver {
public:
  explicit Deriver(const KvoObjDocument& document)
      : m_document(document), m_context(document.Context()), m_model(document.GetModel()) {}

  void Run() {
    for (const KvoSimPosition& old : m_context.GetRecords(Kind::Field))
      if (!old.DataRecord().GetReference(eds_Field_Owner).IsNull()) removeDerived(old);
    for (const KvoSimPosition& owner : inpS_SectionData::SectionOwners(m_document)) RunOver(owner);
  }

private:
  void RunOver(const KvoSimPosition& owner) {
    for (const KvoSimPosition& section : owner.GetVector(eds_Member::Sections)) {
      const Columns& columns = ColumnsOf(section.Object().RecordKind());
      if (columns.IsEmpty()) continue;
      Bind(section, section, columns);
      if (!columns.hasPlies) continue;
      const Columns& ofPly = ColumnsOf(eds_FormKind::SectionPly);
      for (const KvoSimPosition& ply : section.GetVector(eds_Member::Lines))
        Bind(ply, section, ofPly);
    }
  }

  const Columns& ColumnsOf(Kind kind) {
    const auto [known, isNew] = m_columns.try_emplace(kind);
    if (isNew) known->second = Columns(kind);
    return known->second;
  }

  // to: the section, or a ply of it.
  void Bind(const KvoSimPosition& to, const KvoSimPosition& section, const Columns& columns) {
    const KvoSimDataRecord record = to.DataRecord();
    const auto bindAll = [&](const char* name, const cow_List<int>& fields) {
      for (const int field : fields)
        if (const KvoSimPosition named = record.GetReference(field); !named.IsNull())
          BindDistribution(to, section, name, named);
    };
    // Nodal thickness outweighs what else is said.
    if (columns.nodal >= 0 && record.GetBool(columns.nodal))
      BindNodal(to);
    else
      bindAll("thickness", columns.thickness);
    bindAll("orientationAngle", columns.angle);
  }

  void BindNodal(const KvoSimPosition& section) {
    const KvoObjField nodal = m_model.GetNodalThicknessField();
    if (nodal.IsNull()) return; // no keyword gives one
    KvoObjField field = CreateScalarField("thickness", KvoGridType::Node);
    for (const KvoSimDistribution& data : nodal.GetData()) field.AddData(data);
    CreateFieldBinding(section, field);
  }

  void BindDistribution(const KvoSimPosition& to, const KvoSimPosition& section, const char* name,
                        const KvoSimPosition& distribution) {
    const bool byNode = distribution.IsA(eds_FormKind::DistributionByNode);
    if (!byNode && !distribution.IsA(eds_FormKind::DistributionByElement)) return; // of no mesh
    inpS_DistributionValues values(distribution);
    const inpS_Distribution stored = inpS_Distribution::Of(distribution);
    const bool isResolved = !values.Defaults().empty() || values.Width() != 1;
    if (values.Width() == 0 || (!isResolved && stored.Over().IsNull())) return; // nothing has any
    KvoObjField field = CreateScalarField(name, byNode ? KvoGridType::Node : KvoGridType::Element);
    field.AddData(isResolved ? Resolve(values, distribution.Parent(), section) : stored.Get());
    CreateFieldBinding(to, field);
  }

  KvoObjField CreateScalarField(const char* name, KvoGridType grid) {
    KvoObjField field;
    field.Register(m_context, name, name);
    field.SetGridType(grid);
    return field;
  }

  static void CreateFieldBinding(const KvoSimPosition& to, const KvoObjField& field) {
    field.Position().DataRecord().SetReference(eds_Field_Owner, to);
    to.Associate(eds_Member::Fields, field.Position());
  }

  // The first number of each row, or of the default line, for all that the section has.
  KvoSimDistribution Resolve(inpS_DistributionValues& values, const KvoSimPosition& owner,
                             const KvoSimPosition& section) {
    const bool ofPart = owner.IsA(Kind::Part);
    const KvoSimCollection all =
        m_model.GetMesh().CollectionOf(ofPart ? owner : m_model.Position(), values.IsByNode());
    const KvoSimDistribution made = m_context.CreateDistribution(
        eds_DataType::FieldData, KvoSimGrid{all}, KvoSimRangeType(eds_ValueType::Double, 1));
    if (values.IsByNode()) {
      ResolveFor(values, all, eds_MemberSet::Strided(0, all.Space()), made);
      return made;
    }
    for (const KvoSimPosition& assignment : AssignmentsOf(section)) {
      const KvoSimDataRecord record = assignment.DataRecord();
      const eds_MemberSet members =
          inpS_SectionData::MembersOf(record.GetReference(eds_SectionAssignment_ElementSet));
      const KvoSimPosition instance = record.GetReference(eds_SectionAssignment_Instance);
      const bool isPlaced = ofPart && !instance.IsNull(); // the part's own ordinals are asked for
      const int64_t offset =
          record.GetInt64(eds_SectionAssignment_Offset) -
          (isPlaced ? instance.DataRecord().GetInt64(eds_Instance_FirstElement) : 0);
      ResolveFor(values, all, inpS_SetVisitor::Moved(members, offset), made);
      if (ofPart) break; // the same for every instance
    }
    return made;
  }

  static void ResolveFor(inpS_DistributionValues& values, KvoSimCollection all,
                         const eds_MemberSet& members, KvoSimDistribution made) {
    constexpr int64_t most = 8192;
    const auto width = static_cast<std::size_t>(values.Width());
    eds_ArrayWriter array(made.Position(), eds_ValueType::Double, 1);
    cow_List<int32_t> piece;
    cow_List<double> rows;
    for (int64_t begin = 0; begin < members.Size(); begin += most) {
      piece.resize(static_cast<std::size_t>(std::min(most, members.Size() - begin)));
      members.Copy(begin, piece);
      rows.resize(piece.size() * width);
      values.Read(eds_MemberSet::Ordered(piece), rows);
      for (std::size_t n = 0; n < piece.size(); ++n) rows[n] = rows[n * width];
      array.Append(std::span<const double>(rows).first(piece.size()));
    }
    made.AddDrawer(all.CreateCSet(members).ID(), array.Finish());
  }

  const cow_List<KvoSimPosition>& AssignmentsOf(const KvoSimPosition& section) {
    if (!m_assignments) {
      m_assignments.emplace();
      for (const KvoSimPosition& assignment : m_context.GetRecords(Kind::SectionAssignment))
        (*m_assignments)
            [assignment.DataRecord().GetReference(eds_SectionAssignment_Section).Object().Packed()]
                .push_back(assignment);
    }
    return (*m_assignments)[section.Object().Packed()];
  }

  const KvoObjDocument& m_document;
  KvoSimContext m_context;
  KvoObjModel m_model;
  std::unordered_map<Kind, Columns> m_columns;
  std::optional<std::unordered_map<unsigned long long, cow_List<KvoSimPosition>>> m_assignments;
};

} // namespace

void inpS_deriveSectionFields(const KvoObjDocument& document) {
  KvoSimTransaction transaction(document.ContextID());
  Deriver(document).Run();
  transaction.Commit();
}
