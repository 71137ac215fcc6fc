#pragma once

#include "inpS/mesh/inpS_MeshScope.h"
#include <set>

class KvoObjLabeler;

// Owners whose elements are looked at again while the deck is read, because *ELGEN or *ELCOPY makes
// others from them or nodes are generated from theirs: those keep their elements as labels until
// then.
class inpS_CopyScopes {
public:
  inpS_CopyScopes() = default;
  explicit inpS_CopyScopes(const inp_KeywordList& keywords);
  bool Holds(const inpS_MeshScope& scope) const;

private:
  bool m_root = false;
  std::set<cow_String> m_parts; // also those whose instances do so
  std::set<cow_String> m_instances;
};

// The elements that an owner has so far, an instance's part's among them.
class inpS_OldElements {
public:
  inpS_OldElements(const inpS_MeshScope& scope, const KvoObjLabeler& nodes)
      : m_scope(scope), m_nodes(nodes) {}

  // Blocks stay what they are, though not where, while elements are appended.
  struct Place {
    const inpS_ElementConnectivity* owner = nullptr; // null: nowhere
    std::size_t block = 0;
    const inpS_ElementBlock& Block() const { return owner->Blocks()[block]; }
  };
  Place Find(long long ordinal) const;

  // Node labels, zero where there is none; as many as the block is wide.
  static std::span<const int> NodesOf(const inpS_ElementBlock& block, long long ordinal);
  static std::span<const inpS_ScopedNode> ScopedOf(const inpS_ElementBlock& block,
                                                   long long ordinal);
  // How many nodes the deck gives the element.
  int CountOf(const inpS_ElementBlock& block, long long ordinal) const;

private:
  const inpS_MeshScope& m_scope;
  const KvoObjLabeler& m_nodes;
};
