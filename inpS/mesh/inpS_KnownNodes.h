#pragma once

#include "database/eds_MemberSet.h"
#include "inpS/mesh/inpS_SetResolver.h"

// What a generator may look at: the nodes and node sets of one owner as far as the deck has defined
// them where the generator stands; in an instance also its part's, in a restart also those that the
// database holds. Ordinals are the owner's.
class inpS_KnownNodes {
public:
  inpS_KnownNodes(inpS_MeshScope& scope, inpS_MeshScopes& scopes, const KvoObjLabeler& nodes,
                  const KvoObjLabeler& elements);

  int OrdinalOf(int label) const; // -1: there is none
  int LabelOf(long long ordinal) const;
  // Three values each; valid until nodes are merged.
  const double* Point(long long ordinal);
  const double* Normal(long long ordinal); // null: the node has none

  // The members of a set in its order: as they were read when it is unsorted, else by label.
  struct Set {
    eds_MemberSet ordinals;
    bool unsorted = false;
    bool leftOut = false; // it, or a set within it, names what cannot be told yet
  };
  bool FindSet(const cow_String& name, Set& set);

private:
  bool IsStored(long long ordinal) const;
  inpS_NodeList& ListOf(long long ordinal);

  inpS_MeshScope& m_scope;
  inpS_MeshScopes& m_scopes;
  const KvoObjLabeler& m_nodes;
  const KvoObjLabeler& m_elements;
};
