#include "inpS/mesh/inpS_KnownNodes.h"
#include "database/KvoObjLabeler.h"
#include "inpS/mesh/inpS_BaseMesh.h"
#include "inpS/sets/inpS_SetServices.h"
#include "parser/inp_Visitor.h"

inpS_KnownNodes::inpS_KnownNodes(inpS_MeshScope& scope, inpS_MeshScopes& scopes,
                                 const KvoObjLabeler& nodes, const KvoObjLabeler& elements)
    : m_scope(scope), m_scopes(scopes), m_nodes(nodes), m_elements(elements) {}

int inpS_KnownNodes::OrdinalOf(int label) const {
  return m_nodes.ConvertInstanceLabel(m_scope.nodeOccurrence, label);
}

int inpS_KnownNodes::LabelOf(long long ordinal) const {
  return m_nodes.GetInstanceLabel(m_scope.nodeOccurrence, ordinal);
}

inpS_NodeList& inpS_KnownNodes::ListOf(long long ordinal) {
  return ordinal < m_scope.nodes.Base() ? m_scope.part->nodes : m_scope.nodes;
}

bool inpS_KnownNodes::IsStored(long long ordinal) const {
  return m_scope.isStored && ordinal < m_scope.storedNodes;
}

const double* inpS_KnownNodes::Point(long long ordinal) {
  if (IsStored(ordinal)) return m_scope.base->Point(ordinal);
  return ListOf(ordinal).Point(ordinal);
}

const double* inpS_KnownNodes::Normal(long long ordinal) {
  return IsStored(ordinal) ? m_scope.base->Normal(ordinal) : ListOf(ordinal).Normal(ordinal);
}

bool inpS_KnownNodes::FindSet(const cow_String& name, Set& set) {
  const inpS_MeshScope* owner = &m_scope;
  const inpS_SetDefinition* definition = owner->sets.Find(inpS_SetKind::Nodes, name);
  // A set of an instance that holds nothing yet may have been opened by the very keyword that asks;
  // it hides that of the part only once it has members.
  const bool isBlank = !definition || definition->entries.empty();
  const inpS_SetDefinition* const ofPart =
      isBlank && m_scope.part ? m_scope.part->sets.Find(inpS_SetKind::Nodes, name) : nullptr;
  if (ofPart) {
    owner = m_scope.part;
    definition = ofPart;
  }
  if (!definition) return false;
  inp_Visitor silent; // what is missing now may come later; the end of the deck tells
  inpS_SetResolver resolver(m_nodes, m_elements, m_scopes, silent);
  resolver.SetUnderway();
  set.ordinals = resolver.Members(*owner, *definition);
  set.unsorted = definition->unsorted;
  set.leftOut = resolver.HasLeftOut();
  if (!set.unsorted)
    set.ordinals = inpS_SetServices::SortNodeSet(m_nodes, m_scope.nodeOccurrence, set.ordinals);
  return true;
}
