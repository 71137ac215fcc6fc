#pragma once

#include "database/KvoObjElementSet.h"
#include "database/KvoObjNodeSet.h"
#include "database/eds_MemberSet.h"
#include "inpS/sets/inpS_SetDefinition.h"

class KvoObjLabeler;

// What the mesh's keywords and later phases do with sets.
class inpS_SetServices {
public:
  // A new set of an owner (a part, an instance, the assembly, the model). Internal ones have names
  // of their own.
  static KvoObjNodeSet AddNodeSet(const KvoSimPosition& owner, const cow_String& name);
  static KvoObjNodeSet AddInternalNodeSet(const KvoSimPosition& owner, const cow_String& name);
  static KvoObjElementSet AddElementSet(const KvoSimPosition& owner, const cow_String& name);
  static KvoObjElementSet AddInternalElementSet(const KvoSimPosition& owner,
                                                const cow_String& name);
  // The owner's set of that name, made where there is none: what refers to one goes on doing so.
  static KvoObjNodeSet InsertNodeSet(const KvoSimPosition& owner, const cow_String& name,
                                     bool internal);
  static KvoObjElementSet InsertElementSet(const KvoSimPosition& owner, const cow_String& name,
                                           bool internal);

  // A set under construction takes members as well: ordinals of its owner, as they are now.
  static void UnionNodeSets(inpS_SetDefinition& set, const eds_MemberSet& nodes);
  static void UnionElementSets(inpS_SetDefinition& set, const eds_MemberSet& elements);
  // Likewise those of a set of the database, whose ordinals are the owner's from `base` on.
  static void CopySet(const KvoSimPosition& stored, long long base, inpS_SetDefinition& set);

  // Members in the order of their labels. Sorted sets are kept by ordinal, which takes the least
  // room; where the members of two sets pair, it is the labels that decide. The ordinals are those
  // of one occurrence of the labeler; -1: of the flat mesh, where the occurrences stay apart.
  static eds_MemberSet SortNodeSet(const KvoObjLabeler& nodes, int occurrence,
                                   const eds_MemberSet& members);
  static eds_MemberSet SortElementSet(const KvoObjLabeler& elements, int occurrence,
                                      const eds_MemberSet& members);
};
