#include "inpS/mesh/inpS_MeshScope.h"

inpS_MeshScopes::inpS_MeshScopes() { m_scopes.emplace_back(); }

inpS_MeshScope& inpS_MeshScopes::Add(inpS_MeshScope::Kind kind, const cow_String& name) {
  inpS_MeshScope& scope = m_scopes.emplace_back();
  scope.kind = kind;
  scope.name = name;
  (kind == inpS_MeshScope::Kind::Part ? m_parts : m_instances)[name] = &scope;
  return scope;
}

inpS_MeshScope* inpS_MeshScopes::FindPart(const cow_String& name) {
  const auto known = m_parts.find(name);
  return known == m_parts.end() ? nullptr : known->second;
}

inpS_MeshScope* inpS_MeshScopes::FindInstance(const cow_String& name) {
  const auto known = m_instances.find(name);
  return known == m_instances.end() ? nullptr : known->second;
}

void inpS_MeshScopes::AssignFlatOrdinals() {
  long long node = 0, element = 0;
  m_flat.clear();
  for (inpS_MeshScope& scope : m_scopes) {
    scope.nodeCount = scope.nodes.Count() + (scope.part ? scope.part->nodeCount : 0);
    scope.elementCount = scope.part ? scope.part->elementCount : 0;
    for (const inpS_ElementBlock& block : scope.elements.Blocks())
      scope.elementCount += block.Count();
    if (scope.kind == inpS_MeshScope::Kind::Part) continue;
    scope.nodeBase = node;
    scope.elementBase = element;
    node += scope.nodeCount;
    element += scope.elementCount;
    if (scope.elementCount > 0) m_flat.push_back(&scope);
  }
  m_flatNodes = node;
  m_flatElements = element;
}

const inpS_MeshScope& inpS_MeshScopes::ScopeOfFlatElement(long long element) const {
  const inpS_MeshScope* found = &m_scopes.front();
  std::size_t low = 0, high = m_flat.size();
  while (low < high) {
    const std::size_t middle = (low + high) / 2;
    if (m_flat[middle]->elementBase <= element) {
      found = m_flat[middle];
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return *found;
}
