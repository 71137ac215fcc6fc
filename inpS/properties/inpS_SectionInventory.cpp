#include "inpS/properties/inpS_SectionInventory.h"
#include "base/utl_Assert.h"
#include "database/KvoObjModel.h"
#include "inpS/forms/inpS_Blocks.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/properties/inpS_SectionData.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Utils.h"
#include <algorithm>
#include <map>
#include <numeric>

namespace {

// Whether the keyword gives its ELSET a section: those that stand in the block of sections do. Mass
// that is no structure, pre-tension and layers that let waves out lie beside it.
bool isSection(const inp_Keyword& keyword) {
  if (!inpS_FormTable::Instance().Knows(keyword.Kind())) return false;
  if (keyword.Kind() == inp_KwPerfectlyMatchedLayer) return false;
  const inpS_Block& block = inpS_block(inp_KeywordTable::Instance().Row(keyword.Kind())->block);
  if (block.member != eds_Member::Sections) return false;
  if (keyword.IsInstanceCopy() || keyword.IsSuboption()) return false;
  return keyword.Scope().kind != inp_Scope::Kind::Step && keyword.HasParameter("elset");
}

// The elements that some section has had so far, a bit for each.
class Marks {
public:
  // Whether any of the members was marked before.
  bool Add(const eds_MemberSet& members, long long offset) {
    bool met = false;
    for (long long n = 0; n < members.Size(); ++n) {
      const auto at = static_cast<std::size_t>(members[n] + offset);
      if (at >= m_marks.size()) m_marks.resize(std::max(at + 1, 2 * m_marks.size()));
      met = met || m_marks[at];
      m_marks[at] = true;
    }
    return met;
  }

private:
  std::vector<bool> m_marks;
};

} // namespace

void inpS_SectionInventory::Visit(const inp_Keyword& keyword) {
  inpS_SetVisitor::Visit(keyword);
  if (!isSection(keyword)) return;
  const inp_Item& elset = *keyword.Find("elset");
  const Found found = FindField(Kind::Elements, elset.Verbatim());
  const KvoSimPosition holder = Holder();
  m_sections.push_back({keyword, elset.AsString(), found.set,
                        holder.IsA(eds_RecordKind::Part) ? holder : Model(), found.offset});
}

cow_String inpS_SectionInventory::GetSectionName(const cow_String& part, const cow_String& elset) {
  return "Section-" + (part.empty() ? cow_String() : part + "-") + elset;
}

cow_String inpS_SectionInventory::GetSectionName(const KvoSimPosition& owner,
                                                 const KvoSimPosition& set,
                                                 const KvoSimPosition& instance) {
  const auto textOf = [](const KvoSimPosition& record, int field) {
    return record.DataRecord().ReturnString(field);
  };
  // Within an instance the set is that one's, as if the assembly named it.
  const bool isWithin = instance.IsNull() && owner.IsA(eds_RecordKind::Instance);
  const KvoSimPosition& by = isWithin ? owner : instance;
  return GetSectionName(
      owner.IsA(eds_RecordKind::Part) ? textOf(owner, eds_Part_Name) : cow_String(),
      (by.IsNull() ? cow_String() : textOf(by, eds_Instance_Name) + ".") + set.Name());
}

const inpS_SectionInventory::Section& inpS_SectionInventory::At(int sectionIndex) const {
  if (sectionIndex < 0 || sectionIndex >= NumberSections())
    utl_assertionFailed("\"Invalid sectionIndex. If a new visitor is added to SectionVisitor make "
                        "sure that the SectionInventory is also updated appropriately.\" == 0");
  return m_sections[static_cast<std::size_t>(sectionIndex)];
}

KvoSimPosition inpS_SectionInventory::GetOriginalElementSet(int sectionIndex) const {
  return At(sectionIndex).set;
}

eds_MemberSet inpS_SectionInventory::GetCorrectedElset(int sectionIndex) const {
  return inpS_SectionData::MembersOf(At(sectionIndex).set).AscendingSet();
}

void inpS_SectionInventory::TellDoubled(const inpS_Ledger& ledger, inp_Visitor& messages) const {
  struct Space {
    Marks marks;
    cow_List<Placed> sections;
  };
  constexpr int mostTold = 20;
  int told = 0;
  std::map<unsigned long long, Space> spaces;
  const auto model = Model().Object().Packed();
  // Those of a part are in each of its instances, before what the assembly says of them.
  const auto placeParts = [&](Space& flat) {
    for (const KvoSimPosition& one : Inventory().GetDocument().GetModel().Occurences()) {
      const KvoSimDataRecord instance = one.DataRecord();
      const auto part = spaces.find(instance.GetReference(eds_Instance_Part).Object().Packed());
      if (part == spaces.end()) continue;
      for (const Placed& placed : part->second.sections) {
        const long long offset = placed.offset + instance.GetInt64(eds_Instance_FirstElement);
        flat.marks.Add(inpS_SectionData::MembersOf(m_sections[placed.section].set), offset);
        flat.sections.push_back({placed.section, offset});
      }
    }
  };
  // The order in which sections hold, wherever they stand: of parts, instances, assembly, model.
  cow_List<std::size_t> order(m_sections.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(order, {}, [&](std::size_t n) {
    const inp_Scope::Kind kind = m_sections[n].keyword.Scope().kind;
    return kind == inp_Scope::Kind::Model ? 2 : kind == inp_Scope::Kind::Assembly ? 1 : 0;
  });
  const auto tellWithin = [&](bool isFlat) {
    for (const std::size_t n : order) {
      const Section& section = m_sections[n];
      const auto key = section.space.Object().Packed();
      if (section.set.IsNull() || (key == model) != isFlat || !ledger.RecordOf(section.keyword))
        continue;
      const auto [known, isNew] = spaces.try_emplace(key);
      Space& space = known->second;
      if (isNew && isFlat) placeParts(space);
      const eds_MemberSet members = inpS_SectionData::MembersOf(section.set);
      if (space.marks.Add(members, section.offset) && ++told <= mostTold)
        Tell(n, space.sections, messages);
      space.sections.push_back({n, section.offset});
    }
  };
  tellWithin(false);
  tellWithin(true);
  if (told > mostTold)
    messages.AddWarning({std::to_string(told - mostTold) +
                         " more sections name elements that have one already; the later one of "
                         "each element holds."});
}

void inpS_SectionInventory::Tell(std::size_t later, const cow_List<Placed>& before,
                                 inp_Visitor& messages) const {
  const Section& section = m_sections[later];
  const eds_MemberSet members =
      Moved(inpS_SectionData::MembersOf(section.set), section.offset).AscendingSet();
  for (const Placed& placed : before) {
    const Section& other = m_sections[placed.section];
    const eds_MemberSet both = members.Intersection(
        Moved(inpS_SectionData::MembersOf(other.set), placed.offset).AscendingSet());
    if (both.IsEmpty()) continue;
    wip_Message message = inp_Utils::MessageAtParameter(
        section.keyword, "elset",
        std::to_string(both.Size()) + (both.Size() == 1 ? " element" : " elements") + " of \"" +
            section.elset + "\" " + (both.Size() == 1 ? "has" : "have") +
            " a section already; this later one holds for " + (both.Size() == 1 ? "it." : "them."));
    message.notes.push_back({"the first section is here", other.keyword.Place()});
    messages.AddWarning(std::move(message));
    return;
  }
}
