#include "inpS/properties/inpS_SectionFields.h"
#include "database/KvoObjField.h"
#include "database/KvoObjMesh.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimTransaction.h"
#include "database/schema/eds_Form.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/properties/inpS_DistributedItem.h"
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
    const eds_FormInfo* form = eds_formOf(kind);
    if (!form) return;
    const auto add = [&](const cow_List<eds_FormItem>& items) {
      for (const eds_FormItem& item : items) {
        inpS_DistributedItem made = inpS_DistributedItem::Of(item);
        if (made.field >= 0 && !made.boundAs.empty()) distributed.push_back(std::move(made));
        if (item.name == "nodal_thickness") nodal = item.alternatives.front().field;
      }
    };
    add(form->parameters);
    for (const cow_List<eds_FormItem>& line : form->lines) add(line);
    hasPlies = form->data == eds_FormData::Records && form->record == eds_FormKind::SectionPly;
  }
  bool IsEmpty() const { return distributed.empty() && nodal < 0 && !hasPlies; }

  cow_List<inpS_DistributedItem> distributed;
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
    // Nodal thickness outweighs what else is said.
    const bool isNodal = columns.nodal >= 0 && record.GetBool(columns.nodal);
    if (isNodal) BindNodal(to);
    for (const inpS_DistributedItem& item : columns.distributed) {
      const KvoSimPosition named = record.GetReference(item.field);
      if (!named.IsNull() && !(isNodal && item.boundAs == "thickness"))
        BindDistribution(to, section, item, named);
    }
  }

  void BindNodal(const KvoSimPosition& section) {
    const KvoObjField nodal = m_model.GetNodalThicknessField();
    if (nodal.IsNull()) return; // no keyword gives one
    KvoObjField field = CreateScalarField("thickness", KvoGridType::Node);
    for (const KvoSimDistribution& data : nodal.GetData()) field.AddData(data);
    CreateFieldBinding(section, field);
  }

  // One whose table has no column for the item has been told.
  void BindDistribution(const KvoSimPosition& to, const KvoSimPosition& section,
                        const inpS_DistributedItem& item, const KvoSimPosition& distribution) {
    const bool byNode = distribution.IsA(eds_FormKind::DistributionByNode);
    if (!byNode && !distribution.IsA(eds_FormKind::DistributionByElement)) return; // of no mesh
    inpS_DistributionValues values(distribution);
    const int component = item.ComponentIn(values.Table());
    if (component < 0) return;
    const inpS_Distribution stored = inpS_Distribution::Of(distribution);
    const bool isResolved = !values.Defaults().empty() || values.Width() != 1;
    if (values.Width() == 0 || (!isResolved && stored.Over().IsNull())) return; // nothing has any
    KvoObjField field =
        CreateScalarField(item.boundAs, byNode ? KvoGridType::Node : KvoGridType::Element);
    m_component = static_cast<std::size_t>(component);
    field.AddData(isResolved ? Resolve(values, distribution.Parent(), section) : stored.Get());
    CreateFieldBinding(to, field);
  }

  KvoObjField CreateScalarField(std::string_view name, KvoGridType grid) {
    KvoObjField field;
    field.Register(m_context, cow_String(name), cow_String(name));
    field.SetGridType(grid);
    return field;
  }

  static void CreateFieldBinding(const KvoSimPosition& to, const KvoObjField& field) {
    field.Position().DataRecord().SetReference(eds_Field_Owner, to);
    to.Associate(eds_Member::Fields, field.Position());
  }

  // The component of each row, or of the default line, for all that the section has.
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

  void ResolveFor(inpS_DistributionValues& values, KvoSimCollection all,
                  const eds_MemberSet& members, KvoSimDistribution made) const {
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
      for (std::size_t n = 0; n < piece.size(); ++n) rows[n] = rows[n * width + m_component];
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
  std::size_t m_component = 0; // of the rows at hand
  std::unordered_map<Kind, Columns> m_columns;
  std::optional<std::unordered_map<unsigned long long, cow_List<KvoSimPosition>>> m_assignments;
};

} // namespace

void inpS_deriveSectionFields(const KvoObjDocument& document) {
  KvoSimTransaction transaction(document.ContextID());
  Deriver(document).Run();
  transaction.Commit();
}
