#include "inpS/mesh/inpS_OldElements.h"
#include "base/utl_Assert.h"
#include "database/KvoObjLabeler.h"
#include "inpS/mesh/inpS_BaseMesh.h"
#include <algorithm>

namespace {

// A set of the nodes of elements, which a generator of nodes may ask for.
bool isSetOfElements(const inp_Keyword& keyword) {
  if (keyword.Kind() != inp_KwNset && keyword.Kind() != inp_KwAssemblyNset) return false;
  const cow_List<inp_Parameter>& parameters = keyword.Parameters();
  return std::any_of(parameters.begin(), parameters.end(),
                     [](const inp_Parameter& parameter) { return parameter.name == "elset"; });
}

bool looksBack(inp_KeywordEnm kind, bool setsOfElements) {
  switch (kind) {
  case inp_KwElgen:
  case inp_KwElcopy:
    return true;
  case inp_KwNgen:
  case inp_KwNfill:
  case inp_KwNcopy:
  case inp_KwNmap:
    return setsOfElements;
  default:
    return false;
  }
}

} // namespace

inpS_CopyScopes::inpS_CopyScopes(const inp_KeywordList& keywords) {
  const bool setsOfElements = std::any_of(keywords.begin(), keywords.end(), isSetOfElements);
  for (const inp_Keyword& keyword : keywords) {
    if (!looksBack(keyword.Kind(), setsOfElements) || keyword.IsInstanceCopy()) continue;
    const inp_Scope& scope = keyword.Scope();
    switch (scope.kind) {
    case inp_Scope::Kind::Part:
      m_parts.insert(scope.name);
      break;
    case inp_Scope::Kind::Instance:
      m_instances.insert(scope.name);
      m_parts.insert(scope.partName);
      break;
    default:
      m_root = true;
    }
  }
}

bool inpS_CopyScopes::Holds(const inpS_MeshScope& scope) const {
  switch (scope.kind) {
  case inpS_MeshScope::Kind::Part:
    return m_parts.count(scope.name) > 0;
  case inpS_MeshScope::Kind::Instance:
    return m_instances.count(scope.name) > 0;
  default:
    return m_root;
  }
}

inpS_OldElements::Place inpS_OldElements::Find(long long ordinal) const {
  for (const inpS_MeshScope* scope : {&m_scope, static_cast<const inpS_MeshScope*>(m_scope.part)}) {
    if (!scope) continue;
    const inpS_ElementConnectivity* owner = &scope->elements;
    const inpS_ElementBlock* block = owner->BlockOf(ordinal);
    if (!block && scope->base) {
      owner = &scope->base->Elements();
      block = owner->BlockOf(ordinal);
    }
    if (!block) continue;
    utl_ASSERT(block->held);
    return {owner, static_cast<std::size_t>(block - owner->Blocks().data())};
  }
  return {};
}

std::span<const int> inpS_OldElements::NodesOf(const inpS_ElementBlock& block, long long ordinal) {
  return block.NodesOf(ordinal - block.first);
}

std::span<const inpS_ScopedNode> inpS_OldElements::ScopedOf(const inpS_ElementBlock& block,
                                                            long long ordinal) {
  return block.ScopedOf(ordinal - block.first);
}

int inpS_OldElements::CountOf(const inpS_ElementBlock& block, long long ordinal) const {
  int count = block.width;
  if (block.completed && block.offset == 0 && m_scope.part && m_scope.part->generatedFrom >= 0) {
    // The middle nodes that a part's gaskets were completed with are made for the copy anew.
    const std::span<const int> nodes = NodesOf(block, ordinal);
    while (count > 0 && m_nodes.ConvertInstanceLabel(m_scope.part->nodeOccurrence,
                                                     nodes[static_cast<std::size_t>(count) - 1]) >=
                            m_scope.part->generatedFrom)
      --count;
    return count;
  }
  if (!block.ragged && block.scoped.empty()) return count;
  const std::span<const int> nodes = NodesOf(block, ordinal);
  while (count > 0 && nodes[static_cast<std::size_t>(count) - 1] == 0) --count;
  for (const inpS_ScopedNode& node : ScopedOf(block, ordinal))
    count = std::max(count, node.index + 1);
  return count;
}
