#include "database/eds_CheckLinks.h"
#include "database/engine/eds_Store.h"
#include <unordered_map>

namespace {

using Kind = eds_RecordKind;
using Tell = std::function<void(const cow_String&)>;

constexpr int kindsEnd(Kind kind) {
  return static_cast<int>(kind) + 1;
}

// The kinds that a member leads to, from one to before another.
struct Targets {
  eds_Member member;
  Kind first;
  int end;
};

constexpr Targets only(eds_Member member, Kind kind) {
  return {member, kind, kindsEnd(kind)};
}

// Properties of materials are the kinds between the first elasticity and the amplitudes. A member
// that is not here leads anywhere.
constexpr int propertiesEnd = static_cast<int>(Kind::AmplitudeTabular);
constexpr Kind formsBegin = static_cast<Kind>(eds_firstFormKind);
constexpr int formsEnd = 0xffff;
constexpr Targets targetsOf[] = {
    only(eds_Member::Mesh, Kind::Mesh),
    only(eds_Member::Occurrences, Kind::Instance),
    only(eds_Member::Parts, Kind::Part),
    only(eds_Member::Assembly, Kind::Assembly),
    {eds_Member::Fields, Kind::Field, kindsEnd(Kind::MeshedField)},
    {eds_Member::NodalThicknessField, Kind::Field, kindsEnd(Kind::MeshedField)},
    only(eds_Member::Regions, Kind::Region),
    only(eds_Member::RegionCollection, Kind::Collection),
    only(eds_Member::CouplingConstraintCollection, Kind::Collection),
    only(eds_Member::Collections, Kind::Collection),
    only(eds_Member::Materials, Kind::Material),
    {eds_Member::Amplitudes, Kind::AmplitudeTabular, eds_firstOwnKind},
    only(eds_Member::MeshDefaults, Kind::MeshDefaults),
    only(eds_Member::Annotation, Kind::Annotation),
    only(eds_Member::GasketBehaviors, Kind::GasketBehavior),
    only(eds_Member::PhysicalConstants, Kind::PhysicalConstants),
    only(eds_Member::NodeCollection, Kind::Collection),
    only(eds_Member::ElementCollection, Kind::Collection),
    only(eds_Member::Connectivity, Kind::DSet),
    only(eds_Member::Coordinates, Kind::Distribution),
    only(eds_Member::NodeNormals, Kind::Distribution),
    only(eds_Member::ElementNormals, Kind::Distribution),
    only(eds_Member::Nodes, Kind::NodeSet),
    only(eds_Member::Elements, Kind::ElementSet),
    only(eds_Member::UserNodes, Kind::NodeSet),
    only(eds_Member::UserElements, Kind::ElementSet),
    only(eds_Member::ElementSpecAssignment, Kind::Distribution),
    only(eds_Member::BeamOrientationExtraNodes, Kind::Distribution),
    only(eds_Member::SurfaceNodalAreas, Kind::Distribution),
    only(eds_Member::IrsDragchainRefNodes, Kind::Distribution),
    only(eds_Member::NodeSets, Kind::NodeSet),
    only(eds_Member::ElementSets, Kind::ElementSet),
    only(eds_Member::InternalNodeSets, Kind::NodeSet),
    only(eds_Member::InternalElementSets, Kind::ElementSet),
    only(eds_Member::Surfaces, Kind::Surface),
    only(eds_Member::InternalSurfaces, Kind::Surface),
    only(eds_Member::Distributions, Kind::Distribution),
    only(eds_Member::Data, Kind::Distribution),
    only(eds_Member::GridCollection, Kind::Collection),
    only(eds_Member::PropertyTable, Kind::PropertyTable),
    {eds_Member::Properties, Kind::ElasticIsotropic, propertiesEnd},
    only(eds_Member::Plies, Kind::ShellPly),
    only(eds_Member::Drawers, Kind::Drawer),
    only(eds_Member::NodeBlocks, Kind::NodeBlock),
    only(eds_Member::ElementBlocks, Kind::ElementBlock),
    only(eds_Member::Columns, Kind::PropertyColumn),
    only(eds_Member::SurfacePieces, Kind::SurfacePiece),
    only(eds_Member::SurfaceFaces, Kind::SurfaceFaces),
    {eds_Member::Suboptions, Kind::ElasticIsotropic, propertiesEnd},
    {eds_Member::Transforms, formsBegin, formsEnd},
    {eds_Member::Sections, formsBegin, formsEnd},
    {eds_Member::Constraints, formsBegin, formsEnd},
    {eds_Member::Lines, formsBegin, formsEnd},
};

const Targets* findTargets(eds_Member member) {
  for (const Targets& targets : targetsOf)
    if (targets.member == member) return &targets;
  return nullptr;
}

// Records that name their owner beside the link by which it holds them.
int ownerField(Kind kind) {
  switch (kind) {
  case Kind::NodeBlock:
    return eds_NodeBlock_Owner;
  case Kind::ElementBlock:
    return eds_ElementBlock_Owner;
  case Kind::NodeSet:
    return eds_NodeSet_Owner;
  case Kind::ElementSet:
    return eds_ElementSet_Owner;
  case Kind::Surface:
    return eds_Surface_Owner;
  default:
    return -1;
  }
}

// Members whose targets have no other holder: who walks over them meets each but once.
bool isHeldOnce(eds_Member member) {
  switch (member) {
  case eds_Member::Occurrences:
  case eds_Member::Parts:
  case eds_Member::Materials:
  case eds_Member::Amplitudes:
  case eds_Member::NodeSets:
  case eds_Member::ElementSets:
  case eds_Member::Surfaces:
  case eds_Member::NodeBlocks:
  case eds_Member::ElementBlocks:
  case eds_Member::PropertyTable:
  case eds_Member::Columns:
  case eds_Member::SurfacePieces:
  case eds_Member::SurfaceFaces:
  case eds_Member::Properties:
  case eds_Member::Suboptions:
  case eds_Member::Transforms:
  case eds_Member::Sections:
  case eds_Member::Constraints:
  case eds_Member::Lines:
    return true;
  default:
    return false;
  }
}

class LinkChecker {
public:
  LinkChecker(eds_Store& store, const Tell& tell)
      : m_store(store), m_links(store.Rows(Kind::Link)), m_tell(tell) {}

  void Run() {
    for (int64_t id = 1; id <= m_links.LastID(); ++id)
      if (m_links.Has(id)) Check(id);
    for (const auto& [held, holder] : m_holderOf) CheckDepth(held);
  }

private:
  void Fault(int64_t id, const cow_String& what) {
    m_tell("link " + std::to_string(id) + ": " + what);
  }

  void Check(int64_t id) {
    const int64_t member = m_links.Int(id, eds_Link_Member);
    const eds_MemberInfo* info =
        member > 0 && member < 0xffff ? eds_schemaMember(static_cast<eds_Member>(member)) : nullptr;
    if (info == nullptr) return Fault(id, "unknown member " + std::to_string(member));
    const eds_ObjectID owner = m_links.Reference(id, eds_Link_Owner);
    const eds_ObjectID target = m_links.Reference(id, eds_Link_Target);
    if (owner.IsNull()) return Fault(id, "no owner");
    if (target.IsNull()) return Fault(id, "leads nowhere");
    const Targets* targets = findTargets(info->member);
    if (targets != nullptr &&
        (target.kind < static_cast<int>(targets->first) || target.kind >= targets->end))
      return Fault(id, "a record of kind " + std::to_string(target.kind) + " among " +
                           cow_String(info->name));
    if (!IsOfOwner(target, owner)) Fault(id, "its target names another owner");
    if (isHeldOnce(info->member) && !m_holderOf.emplace(target.Packed(), owner.Packed()).second)
      Fault(id, "its target is held twice");
  }

  // A set of the whole mesh names none.
  bool IsOfOwner(eds_ObjectID target, eds_ObjectID owner) {
    const int field = ownerField(target.RecordKind());
    if (field < 0 || !m_store.Exists(target)) return true;
    const eds_ObjectID named = m_store.RowsOf(target).Reference(target.id, field);
    return named.IsNull() ? owner.RecordKind() == Kind::Mesh : named == owner;
  }

  // Each has one holder, so this goes up, or around.
  void CheckDepth(uint64_t held) {
    constexpr int deepest = 32; // decks nest properties three deep
    int depth = 0;
    for (auto at = m_holderOf.find(held); at != m_holderOf.end();
         at = m_holderOf.find(at->second)) {
      if (++depth < deepest) continue;
      const eds_ObjectID object = eds_ObjectID::Unpacked(held);
      m_tell("record " + std::to_string(object.id) + " of kind " + std::to_string(object.kind) +
             ": is held too deep");
      return;
    }
  }

  eds_Store& m_store;
  const eds_RowTable& m_links;
  const Tell& m_tell;
  std::unordered_map<uint64_t, uint64_t> m_holderOf;
};

} // namespace

void eds_checkLinks(eds_Store& store, const Tell& tell) {
  LinkChecker(store, tell).Run();
}
