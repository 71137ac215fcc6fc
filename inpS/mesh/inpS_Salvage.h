#pragma once

#include "inpS/mesh/inpS_MadeElements.h"
#include <set>
#include <span>
#include <utility>

class inpS_ElementTopologyReader;
class inpS_MeshScopes;
class KvoObjLabeler;
struct inpS_MeshScope;

// What is sound of a mesh with faults: the deck is read once more, and each element that has a
// fault is passed over. Elements whose nodes do not exist are known only when all is read, and go
// the next time; the walk is repeated until no more are found.
class inpS_Salvage {
public:
  void Begin(); // a walk
  // Whether the walk has found elements that the next one is to pass over.
  bool IsToBeRepeated() const { return m_grown; }
  long long LeftOut() const { return m_passedOver; } // elements, in the last walk

  // Of elements of one owner.
  void Note(const inpS_MeshScope& scope, std::span<const int> labels); // have a fault
  // Those of all owners that refer to nodes which do not exist.
  void NoteFaulty(const inpS_MeshScopes& scopes, const KvoObjLabeler& elements);
  // Takes what is not sound out of what one keyword lists.
  void LeaveOutFaulty(const inpS_MeshScope& scope, const KvoObjLabeler& elements,
                      inpS_ElementTopologyReader& reader);
  bool IsSound(const inpS_MeshScope& scope, int label, const KvoObjLabeler& elements) const;
  inpS_MadeElements SoundOf(const inpS_MadeElements& made, const inpS_MeshScope& scope,
                            const KvoObjLabeler& elements);

private:
  void Note(int occurrence, int label);

  std::set<std::pair<int, int>> m_faulty; // occurrence, label
  bool m_grown = false;
  long long m_passedOver = 0;
};
