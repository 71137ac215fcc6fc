#include "inpS/mesh/inpS_MeshScope.h"
#include <algorithm>

inpS_MeshScopes::inpS_MeshScopes() {
  m_scopes.emplace_back();
}

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

void inpS_MeshScopes::AssignFlatOrdinals(long long storedNodes, long long storedElements) {
  long long node = storedNodes, element = storedElements;
  m_flat.clear();
  for (inpS_MeshScope& scope : m_scopes) {
    long long newElements = 0;
    for (const inpS_ElementBlock& block : scope.elements.Blocks()) newElements += block.count;
    const bool copies = scope.part && !scope.isStored;
    const long long newNodes = scope.nodes.Count() + (copies ? scope.part->nodeCount : 0);
    if (copies) newElements += scope.part->elementCount;
    scope.nodeCount = scope.storedNodes + newNodes;
    scope.elementCount = scope.storedElements + newElements;
    if (scope.kind == inpS_MeshScope::Kind::Part) continue;
    if (!scope.isStored) {
      scope.nodeBase = node;
      scope.elementBase = element;
    }
    node += newNodes;
    element += newElements;
    if (scope.elementCount > 0) m_flat.push_back(&scope);
  }
  m_flatNodes = node;
  m_flatElements = element;
  std::sort(m_flat.begin(), m_flat.end(), [](const inpS_MeshScope* a, const inpS_MeshScope* b) {
    return a->elementBase < b->elementBase;
  });
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
