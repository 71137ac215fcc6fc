#include "inpS/properties/inpS_SectionData.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimCSet.h"
#include "database/KvoSimCollection.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/sets/inpS_SetVisitor.h"
#include <algorithm>
#include <unordered_map>

inpS_SectionData::inpS_SectionData(const KvoObjDocument& document, const KvoSimPosition& owner)
    : m_mesh(document.GetMesh()), m_owner(owner) {
  if (m_mesh.IsNull()) return;
  const bool ofPart = owner.IsA(eds_RecordKind::Part);
  for (const KvoMeshElementBlock& block : m_mesh.ElementBlocks(ofPart ? owner : KvoSimPosition())) {
    const long long first = ofPart ? block.first : block.flatFirst;
    if (first >= 0) m_blocks.push_back({first, block.count, block.spec});
  }
  std::ranges::sort(m_blocks, {}, &Block::first);
}

// A small set asks for its members' blocks, a big one is held against all blocks.
cow_List<KvoSimPosition> inpS_SectionData::FindElementSpecs(const eds_MemberSet& members) const {
  cow_List<KvoSimPosition> specs;
  cow_List<char> isMet(m_blocks.size(), 0);
  const eds_MemberSet sorted = members.AscendingSet();
  std::size_t at = 0; // both ascend: whatever is longer is skipped through
  for (long long n = 0; n < sorted.Size() && at < m_blocks.size();) {
    const long long member = sorted[n];
    const auto behind =
        std::upper_bound(m_blocks.begin() + static_cast<std::ptrdiff_t>(at), m_blocks.end(), member,
                         [](long long value, const Block& block) { return value < block.first; });
    if (behind == m_blocks.begin()) {
      ++n;
      continue;
    }
    at = static_cast<std::size_t>(behind - m_blocks.begin()) - 1;
    const long long end = m_blocks[at].first + m_blocks[at].count;
    if (member < end) isMet[at] = 1;
    // To the first member behind the block.
    long long low = n + 1;
    long long high = sorted.Size();
    while (low < high) {
      const long long middle = (low + high) / 2;
      if (sorted[middle] < end)
        low = middle + 1;
      else
        high = middle;
    }
    n = low;
  }
  for (std::size_t block = 0; block < m_blocks.size(); ++block)
    if (isMet[block] != 0 && std::ranges::find(specs, m_blocks[block].spec) == specs.end())
      specs.push_back(m_blocks[block].spec);
  return specs;
}

unsigned inpS_SectionData::SectionDimensions(const cow_List<KvoSimPosition>& specs) {
  static const auto byName = [] {
    std::unordered_map<std::string_view, inp_SectionDimension> all;
    for (const inp_ElementInfo& info : inp_elementTable()) all.emplace(info.name, info.section);
    return all;
  }();
  unsigned dimensions = 0;
  for (const KvoSimPosition& spec : specs) {
    const cow_String name = spec.DataRecord().ReturnString(eds_ElementSpec_Name);
    const auto known = byName.find(name);
    const auto dimension = known == byName.end() ? inp_SectionDimension::Unknown : known->second;
    dimensions |= 1u << static_cast<unsigned>(dimension);
  }
  return dimensions;
}

cow_List<KvoSimPosition> inpS_SectionData::SectionOwners(const KvoObjDocument& document) {
  const KvoObjModel model = document.GetModel();
  cow_List<KvoSimPosition> owners;
  for (const KvoSimPosition& part : model.Parts()) owners.push_back(part);
  for (const KvoSimPosition& instance : model.Occurences()) owners.push_back(instance);
  if (!model.GetAssembly().IsNull()) owners.push_back(model.GetAssembly());
  owners.push_back(model.Position());
  return owners;
}

eds_MemberSet inpS_SectionData::MembersOf(const KvoSimPosition& elementSet) {
  if (elementSet.IsNull()) return {};
  const KvoSimCSet stored = elementSet.DataRecord().GetSet(eds_ElementSet_Membership);
  return stored.IsNull() ? eds_MemberSet() : stored.Set();
}

cow_Map<cow_String, eds_MemberSet>
inpS_SectionData::SectionRegions(const KvoObjDocument& document) {
  cow_Map<cow_String, eds_MemberSet> regions;
  for (const KvoSimPosition& assignment :
       document.Context().GetRecords(eds_RecordKind::SectionAssignment)) {
    const KvoSimDataRecord record = assignment.DataRecord();
    const eds_MemberSet members =
        inpS_SetVisitor::Moved(MembersOf(record.GetReference(eds_SectionAssignment_ElementSet)),
                               record.GetInt64(eds_SectionAssignment_Offset));
    eds_MemberSet& region = regions[record.ReturnString(eds_SectionAssignment_Name)];
    region = region.IsEmpty() ? members : region.Union(members);
  }
  return regions;
}

eds_MemberSet inpS_SectionData::SectionRegion(const KvoObjDocument& document,
                                              const cow_String& name) {
  const auto regions = SectionRegions(document);
  const auto found = regions.find(name);
  return found == regions.end() ? eds_MemberSet() : found->second;
}
