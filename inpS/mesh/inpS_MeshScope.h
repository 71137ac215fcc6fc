#pragma once

#include "database/KvoObjMesh.h"
#include "database/KvoSimPosition.h"
#include "database/eds_Array.h"
#include "inpS/framework/inpS_System.h"
#include "inpS/mesh/inpS_ElementConnectivity.h"
#include "inpS/mesh/inpS_NodeList.h"
#include "inpS/mesh/inpS_RedefinedElements.h"
#include "inpS/sets/inpS_SetDefinition.h"
#include "inpS/sets/inpS_TextElements.h"
#include "parser/inp_Keyword.h"
#include <deque>
#include <memory>

class inpS_BaseMesh;

// The mesh of one owner as the deck gives it: the flat model or the assembly (the root), a part, or
// what an instance holds of its own besides its part's.
struct inpS_MeshScope {
  enum class Kind : unsigned char { Root, Part, Instance };
  Kind kind = Kind::Root;
  cow_String name;
  KvoSimPosition owner;           // its record
  inpS_MeshScope* part = nullptr; // of an instance
  // Of an instance: it moves its part's nodes and those that the deck lists inside the instance.
  inpS_System placement;
  inp_Keyword keyword;         // of an instance that this deck defines
  long long unplacedNodes = 0; // whose place in the assembly would not be finite
  inpS_System system;          // *SYSTEM in force for the nodes that follow
  int nodeOccurrence = -1;     // in the node labeler
  int elementOccurrence = -1;
  inpS_NodeList nodes;
  inpS_ElementConnectivity elements;
  inpS_RedefinedElements redefined;
  inpS_SetTable sets;
  long long generatedFrom = -1; // ordinal from which nodes were generated, not given; -1: none
  // A restart meets owners that the database holds already, with so many nodes and elements.
  bool isStored = false;
  std::shared_ptr<inpS_BaseMesh> base;
  long long storedNodes = 0;
  long long storedElements = 0;
  long long nodeBase = 0; // flat ordinals of its first node and element
  long long elementBase = 0;
  long long nodeCount = 0; // with the part's
  long long elementCount = 0;
  eds_ArrayID normalOrdinals; // once they are stored: what instances share
  eds_ArrayID normals;
  cow_List<KvoMeshElementBlock> stored;

  // Elements defined again take their places: before somebody looks at them, and at the end.
  void SettleElements(const KvoObjLabeler& nodeLabels, const KvoObjLabeler& labels,
                      inp_Visitor& messages) {
    redefined.Settle(elements, nodeLabels, nodeOccurrence, labels, elementOccurrence, messages);
  }
};

// All owners of a deck's mesh: the root first, then parts and instances in deck order. In the flat
// mesh the root's nodes and elements come first, then those of each instance.
class inpS_MeshScopes {
public:
  inpS_MeshScopes();

  inpS_MeshScope& Root() { return m_scopes.front(); }
  inpS_MeshScope& Add(inpS_MeshScope::Kind kind, const cow_String& name);
  inpS_MeshScope* FindPart(const cow_String& name);
  inpS_MeshScope* FindInstance(const cow_String& name);
  std::deque<inpS_MeshScope>& All() { return m_scopes; }
  const std::deque<inpS_MeshScope>& All() const { return m_scopes; }
  inpS_TextElements& TextElements() { return m_textElements; } // by the scopes' elementOccurrence
  const inpS_TextElements& TextElements() const { return m_textElements; }

  // Once everything is read. What the database holds already stays where it is.
  void AssignFlatOrdinals(long long storedNodes, long long storedElements);
  const inpS_MeshScope& ScopeOfFlatElement(long long element) const;
  long long FlatNodes() const { return m_flatNodes; }
  long long FlatElements() const { return m_flatElements; }

private:
  std::deque<inpS_MeshScope> m_scopes;
  inpS_TextElements m_textElements;
  cow_List<const inpS_MeshScope*> m_flat; // with elements, by elementBase
  cow_Map<cow_String, inpS_MeshScope*> m_parts;
  cow_Map<cow_String, inpS_MeshScope*> m_instances;
  long long m_flatNodes = 0;
  long long m_flatElements = 0;
};
