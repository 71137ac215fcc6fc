#include "inpS/properties/inpS_SectionAssignments.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimTransaction.h"
#include "database/schema/eds_Form.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/properties/inpS_SectionData.h"
#include "inpS/properties/inpS_SectionInventory.h"
#include <algorithm>

namespace {

// The fields of a section that an assignment repeats, by kind.
struct Fields {
  int elset = -1;
  int instance = -1; // by which the deck names the set
  int material = -1;
  int orientation = -1;
};

Fields fieldsOf(eds_RecordKind kind) {
  const eds_RecordInfo* info = eds_formRecord(kind);
  Fields fields;
  if (!info) return fields;
  const auto find = [&](std::string_view column) {
    const auto field = std::ranges::find(info->fields, column, &eds_FieldInfo::column);
    const bool isReference = field != info->fields.end() && (field->type == eds_FieldType::Ref ||
                                                             field->type == eds_FieldType::AnyRef);
    return isReference ? static_cast<int>(field - info->fields.begin()) : -1;
  };
  fields.elset = find("elset");
  fields.instance = find("elset_instance");
  fields.material = find("material");
  fields.orientation = find("orientation");
  return fields;
}

KvoSimPosition referenceIn(const KvoSimPosition& record, int field) {
  return field < 0 ? KvoSimPosition() : record.DataRecord().GetReference(field);
}

// Runs of elements that follow one another.
template <class Run> bool forRuns(const eds_MemberSet& members, long long most, const Run& run) {
  if (members.IsStrided() && members.Stride() == 1) {
    run(members.First(), members.Size());
    return true;
  }
  const eds_MemberSet sorted = members.AscendingSet();
  long long runs = sorted.IsEmpty() ? 0 : 1;
  for (long long n = 1; n < sorted.Size(); ++n) runs += sorted[n] != sorted[n - 1] + 1;
  if (runs > most) return false;
  for (long long n = 0; n < sorted.Size();) {
    long long end = n + 1;
    while (end < sorted.Size() && sorted[end] == sorted[end - 1] + 1) ++end;
    run(sorted[n], end - n);
    n = end;
  }
  return true;
}

class Deriver {
public:
  explicit Deriver(const KvoObjDocument& document)
      : m_document(document), m_context(document.Context()) {}

  void Run() {
    for (const eds_RecordKind kind :
         {eds_RecordKind::ElementRange, eds_RecordKind::SectionAssignment})
      for (KvoSimPosition& old : m_context.GetRecords(kind)) old.Remove();
    for (const KvoSimPosition& owner : inpS_SectionData::SectionOwners(m_document)) Assign(owner);
  }

private:
  void Assign(const KvoSimPosition& owner) {
    for (const KvoSimPosition& section : owner.GetVector(eds_Member::Sections)) {
      // It lies beside the section that its elements have.
      if (section.IsA(eds_FormKind::PerfectlyMatchedLayer)) continue;
      const Fields& fields = FieldsOf(section.Object().RecordKind());
      const KvoSimPosition set = referenceIn(section, fields.elset);
      if (set.IsNull()) continue;
      const KvoSimPosition named = referenceIn(section, fields.instance);
      const cow_String name = inpS_SectionInventory::GetSectionName(owner, set, named);
      if (!owner.IsA(eds_RecordKind::Part)) {
        // Within an instance the part's sets are that one's.
        const bool isWithin = named.IsNull() && owner.IsA(eds_RecordKind::Instance);
        Add(section, fields, set, isWithin ? owner : named, name);
        continue;
      }
      for (const KvoSimPosition& instance : m_document.GetModel().Occurences())
        if (instance.DataRecord().GetReference(eds_Instance_Part) == owner)
          Add(section, fields, set, instance, name);
    }
  }

  const Fields& FieldsOf(eds_RecordKind kind) {
    const auto [known, isNew] = m_fields.try_emplace(kind);
    if (isNew) known->second = fieldsOf(kind);
    return known->second;
  }

  // A set of a part has the part's ordinals, whoever names it.
  void Add(const KvoSimPosition& section, const Fields& fields, const KvoSimPosition& set,
           const KvoSimPosition& instance, const cow_String& name) {
    constexpr long long mostRuns = 100'000;
    const KvoSimDataRecord setRecord = set.DataRecord();
    const eds_MemberSet members = inpS_SectionData::MembersOf(set);
    if (members.IsEmpty()) return;
    const bool ofPart = setRecord.GetReference(eds_ElementSet_Owner).IsA(eds_RecordKind::Part) &&
                        !instance.IsNull();
    const long long offset = ofPart ? instance.DataRecord().GetInt64(eds_Instance_FirstElement) : 0;
    const KvoSimPosition made = section.CreateDataRecord(eds_RecordKind::SectionAssignment);
    KvoSimDataRecord record = made.DataRecord();
    record.SetString(eds_SectionAssignment_Name, name);
    record.SetReference(eds_SectionAssignment_Section, section);
    record.SetReference(eds_SectionAssignment_ElementSet, set);
    if (!instance.IsNull()) record.SetReference(eds_SectionAssignment_Instance, instance);
    record.SetReference(eds_SectionAssignment_Elements,
                        setRecord.GetReference(eds_ElementSet_Membership));
    if (offset != 0) record.SetInt(eds_SectionAssignment_Offset, offset);
    record.SetInt(eds_SectionAssignment_Count, members.Size());
    if (const KvoSimPosition material = MaterialOf(section, fields); !material.IsNull())
      record.SetReference(eds_SectionAssignment_Material, material);
    if (const KvoSimPosition axes = referenceIn(section, fields.orientation); !axes.IsNull())
      record.SetReference(eds_SectionAssignment_Orientation, axes);
    const bool hasRanges = forRuns(members, mostRuns, [&](long long first, long long count) {
      KvoSimDataRecord range = made.CreateDataRecord(eds_RecordKind::ElementRange).DataRecord();
      range.SetReference(eds_ElementRange_Assignment, made);
      range.SetInt(eds_ElementRange_First, first + offset);
      range.SetInt(eds_ElementRange_Count, count);
    });
    if (!hasRanges) record.SetBool(eds_SectionAssignment_Scattered, true);
  }

  KvoSimPosition MaterialOf(const KvoSimPosition& section, const Fields& fields) {
    if (const KvoSimPosition own = referenceIn(section, fields.material); !own.IsNull()) return own;
    const auto lines = section.GetVector(eds_Member::Lines);
    if (lines.empty()) return {};
    return referenceIn(lines.front(), FieldsOf(lines.front().Object().RecordKind()).material);
  }

  const KvoObjDocument& m_document;
  KvoSimContext m_context;
  cow_Map<eds_RecordKind, Fields> m_fields;
};

} // namespace

void inpS_deriveSectionAssignments(const KvoObjDocument& document) {
  KvoSimTransaction transaction(document.ContextID());
  Deriver(document).Run();
  transaction.Commit();
}
