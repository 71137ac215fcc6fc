#pragma once

#include "database/eds_MemberSet.h"
#include "inpS/framework/inpS_BaseReferences.h"
#include "inpS/mesh/inpS_MeshScope.h"
#include <optional>

class inp_Visitor;

// Sets that the base of a restart has, and that its deck names again. A set on which conditions,
// loads or axes of the base stand does not grow, and one that sections or constraints name grows
// by what the restart brings alone: steps that are there would change. A surface keeps the faces
// and nodes that its sets gave when it was read: a warning.
class inpS_BaseSets {
public:
  inpS_BaseSets(const KvoObjDocument& document, inp_Visitor& messages)
      : m_document(document), m_messages(messages) {}

  // What the set is to have, in the place of what its keywords give it.
  void Judge(const inpS_MeshScope& scope, const inpS_SetDefinition& set, eds_MemberSet& members);

private:
  bool MayGrow(const inpS_MeshScope& scope, const inpS_SetDefinition& set,
               const KvoSimPosition& stored, const eds_MemberSet& more);
  void TellSurface(const inpS_SetDefinition& set, const KvoSimPosition& stored);

  const KvoObjDocument& m_document;
  inp_Visitor& m_messages;
  std::optional<inpS_BaseReferences> m_base;
  std::optional<cow_Map<unsigned long long, cow_String>> m_surfaces; // by the set they name
};
