#pragma once

#include "database/KvoObjDocument.h"
#include "database/KvoObjMesh.h"
#include "database/eds_MemberSet.h"
#include "parser/inp_ElementInfo.h"
#include "parser/inp_KeywordTable.h"

// The mesh of one owner (a part, or the model for the flat mesh) as sections see it: which types
// the elements of a set have, and which region each section covers.
class inpS_SectionData {
public:
  inpS_SectionData(const KvoObjDocument& document, const KvoSimPosition& owner);

  const KvoObjMesh& Mesh() const { return m_mesh; }
  const KvoSimPosition& Owner() const { return m_owner; }
  KvoSimCollection NodeCollection() const { return m_mesh.CollectionOf(m_owner, true); }
  KvoSimCollection ElementCollection() const { return m_mesh.CollectionOf(m_owner, false); }

  // The types of the elements, each once, in the order of the mesh. Members are the owner's
  // ordinals.
  cow_List<KvoSimPosition> FindElementSpecs(const eds_MemberSet& members) const;
  // Their nodes, ascending; ordinals of the owner as well.
  eds_MemberSet NodesOf(const eds_MemberSet& members) const;
  // The solid sections that serve these types, as bits 1 << inp_SectionDimension; 0: no type.
  static unsigned SectionDimensions(const cow_List<KvoSimPosition>& specs);
  static constexpr unsigned kAxisymmetric = 1u << 8; // that of plane ones in the r-z plane
  // The names of those types that the section is not for, by their family.
  static cow_List<cow_String> NotServedBy(inp_KeywordEnm section,
                                          const cow_List<KvoSimPosition>& specs);
  // "plane stress (CPS4)", "plane strain (CPE4)": which of them there are, each once.
  static cow_List<cow_String> PlaneFamilies(const cow_List<KvoSimPosition>& specs);

  // The elements of the section assignments by name, as flat ordinals of the mesh.
  static cow_Map<cow_String, eds_MemberSet> SectionRegions(const KvoObjDocument& document);
  static eds_MemberSet SectionRegion(const KvoObjDocument& document, const cow_String& name);
  // Who may hold sections: the model, its parts, its instances, its assembly.
  static cow_List<KvoSimPosition> SectionOwners(const KvoObjDocument& document);
  // Of an element set as it is stored: ordinals of its owner. Empty for a null one.
  static eds_MemberSet MembersOf(const KvoSimPosition& elementSet);

private:
  struct Block {
    long long first; // ordinal of the owner
    long long count;
    KvoSimPosition spec;
    int width;
    long long nodeBase;
    eds_ArrayID connectivity;
  };
  KvoObjMesh m_mesh;
  KvoSimPosition m_owner;
  cow_List<Block> m_blocks; // by first
};
