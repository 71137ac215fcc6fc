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
    if (first >= 0)
      m_blocks.push_back({first, block.count, block.spec, block.width, ofPart ? 0 : block.nodeBase,
                          block.connectivity});
  }
  std::ranges::sort(m_blocks, {}, &Block::first);
}

// A small set asks for its members' blocks, a big one is held against all blocks.
cow_List<KvoSimPosition> inpS_SectionData::FindElementSpecs(const eds_MemberSet& members) const {
  cow_List<KvoSimPosition> specs;
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
    if (member < end && std::ranges::find(specs, m_blocks[at].spec) == specs.end())
      specs.push_back(m_blocks[at].spec);
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
  return specs;
}

// By runs of elements that follow each other within a block; each piece sheds its doubles.
eds_MemberSet inpS_SectionData::NodesOf(const eds_MemberSet& members) const {
  constexpr long long most = 8192;
  const eds_MemberSet sorted = members.AscendingSet();
  cow_List<int32_t> nodes, piece;
  long long n = 0;
  for (const Block& block : m_blocks) {
    while (n < sorted.Size() && sorted[n] < block.first) ++n;
    if (n == sorted.Size() || block.width == 0 || sorted[n] >= block.first + block.count) continue;
    eds_ArrayReader reader(block.connectivity);
    while (n < sorted.Size() && sorted[n] < block.first + block.count) {
      const long long begin = n++;
      while (n < sorted.Size() && n - begin < most && sorted[n] == sorted[n - 1] + 1 &&
             sorted[n] < block.first + block.count)
        ++n;
      piece.resize(static_cast<std::size_t>((n - begin) * block.width));
      reader.ReadPiece(sorted[begin] - block.first, std::span(piece));
      std::ranges::sort(piece);
      piece.erase(std::unique(piece.begin(), piece.end()), piece.end());
      for (const int32_t node : piece)
        if (node >= 0) nodes.push_back(static_cast<int32_t>(node + block.nodeBase));
    }
  }
  return eds_MemberSet::Ascending(std::move(nodes));
}

namespace {

// Null: the table has no such type.
const inp_ElementInfo* infoOf(const KvoSimPosition& spec) {
  static const auto byName = [] {
    std::unordered_map<std::string_view, const inp_ElementInfo*> all;
    for (const inp_ElementInfo& info : inp_elementTable()) all.emplace(info.name, &info);
    return all;
  }();
  const auto known = byName.find(spec.DataRecord().ReturnString(eds_ElementSpec_Name));
  return known == byName.end() ? nullptr : known->second;
}

} // namespace

unsigned inpS_SectionData::SectionDimensions(const cow_List<KvoSimPosition>& specs) {
  unsigned dimensions = 0;
  for (const KvoSimPosition& spec : specs) {
    const inp_ElementInfo* info = infoOf(spec);
    const auto section = info ? info->section : inp_SectionDimension::Unknown;
    const bool isRound = section == inp_SectionDimension::Solid2D && info->Is(inp_ElemAxisymmetric);
    dimensions |= isRound ? kAxisymmetric : 1u << static_cast<unsigned>(section);
  }
  return dimensions;
}

cow_List<cow_String> inpS_SectionData::NotServedBy(inp_KeywordEnm section,
                                                   const cow_List<KvoSimPosition>& specs) {
  constexpr unsigned kNoSolids = inp_ElemShell | inp_ElemMembrane | inp_ElemBeam | inp_ElemGasket |
                                 inp_ElemConnector | inp_ElemSpring | inp_ElemMass |
                                 inp_ElemCohesive | inp_ElemContact;
  constexpr std::pair<inp_KeywordEnm, unsigned> families[] = {
      {inp_KwSolidSection, inp_ElemNone}, // all but those
      {inp_KwShellSection, inp_ElemShell},
      {inp_KwShellGeneralSection, inp_ElemShell},
      {inp_KwMembraneSection, inp_ElemMembrane},
      {inp_KwSurfaceSection, inp_ElemMembrane},
      {inp_KwBeamSection, inp_ElemBeam},
      {inp_KwBeamGeneralSection, inp_ElemBeam},
      {inp_KwFrameSection, inp_ElemBeam},
      {inp_KwCohesiveSection, inp_ElemCohesive},
      {inp_KwGasketSection, inp_ElemGasket},
      {inp_KwConnectorSection, inp_ElemConnector},
      {inp_KwMass, inp_ElemMass},
      {inp_KwRotaryInertia, inp_ElemMass},
      {inp_KwHeatcap, inp_ElemMass},
      {inp_KwSpring, inp_ElemSpring},
      {inp_KwDashpot, inp_ElemSpring}};
  cow_List<cow_String> others;
  for (const auto& [keyword, family] : families) {
    if (keyword != section) continue;
    for (const KvoSimPosition& spec : specs) {
      const inp_ElementInfo* info = infoOf(spec);
      if (!info || info->Is(inp_ElemMeshOnly) || info->Is(inp_ElemRigid)) continue;
      const bool isServed = section == inp_KwSolidSection ? (info->flags & kNoSolids) == 0
                                                          : (info->flags & family) != 0;
      if (!isServed) others.push_back(cow_String(info->name));
    }
  }
  return others;
}

cow_List<cow_String> inpS_SectionData::PlaneFamilies(const cow_List<KvoSimPosition>& specs) {
  constexpr std::pair<std::string_view, std::string_view> families[] = {
      {"CPS", "plane stress"}, {"CPEG", "generalized plane strain"}, {"CPE", "plane strain"}};
  cow_List<cow_String> found;
  cow_List<std::string_view> met;
  for (const KvoSimPosition& spec : specs) {
    const cow_String name = spec.DataRecord().ReturnString(eds_ElementSpec_Name);
    for (const auto& [prefix, family] : families) {
      if (!name.starts_with(prefix)) continue;
      if (std::ranges::find(met, family) == met.end()) {
        met.push_back(family);
        found.push_back(cow_String(family) + " (" + name + ")");
      }
      break;
    }
  }
  return found;
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
