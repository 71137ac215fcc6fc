#pragma once

#include "base/utl_Buffer.h"
#include "database/eds_Array.h"
#include "inpS/mesh/inpS_ElementTopologyReader.h"
#include "parser/inp_Keyword.h"
#include <optional>
#include <set>

class KvoObjLabeler;
class KvoSimPosition;
class inp_Visitor;
struct inpS_MadeElements;

// Entries of a block that no node was known for when they were read, by entry, with their labels.
struct inpS_OpenEntry {
  long long entry;
  int label;
  int element = 0; // label of the element; 0: its ordinal tells it
};

// A run of elements of one type and width, stored as ordinals of the owner's nodes (-1: no node).
// Its connectivity goes into its stored array as it is read; where elements need completing first
// it is held as labels until the deck has been read.
struct inpS_ElementBlock {
  struct From {
    inp_Keyword keyword;
    long long firstElement; // within the block
    long long firstOrdinal; // the one its first new label has got
    inp_ElementForm form;   // of its data lines
  };
  int spec = 0; // index into the visitor's element types
  int width = 0;
  int topology = 0;           // nodes that are the element's own; one more is an extra node
  bool referenceNode = false; // the extra node is a reference node, not a beam's direction
  long long first = 0;        // ordinal of the first element within the owner
  cow_String source;          // parameters of the keyword that the writer gives back
  int offset = 0;             // between the node labels of planes, where some are implied
  int plane = 0;              // nodes of one plane; 0: the type has none
  bool ragged = false;        // some elements have fewer nodes than width
  bool held = false;          // in `nodes`, as labels
  bool completed = false;     // has the nodes that its elements bring along
  long long count = 0;
  utl_Buffer<int> nodes;
  eds_ArrayID array;
  cow_List<inpS_OpenEntry> open;
  cow_List<From> from;
  cow_List<inpS_ScopedNode> scoped; // element counted within the block

  // What the block holds of an element, while it is held.
  std::span<const int> NodesOf(long long element) const;
  std::span<const inpS_ScopedNode> ScopedOf(long long element) const;
  // Whether its nodes are those that the first plane and the offset imply.
  bool ImpliesPlanes(long long element) const;
};

// The elements of one owner in deck order, as blocks of equal type and width.
class inpS_ElementConnectivity {
public:
  // What the next elements are, for the block they go to.
  struct Kind {
    int spec;
    int width;
    cow_String source;
    bool held;
    inp_ElementForm form; // of its data lines
    int offset = 0;
    int plane = 0;
  };
  // Whether the last block takes such elements.
  bool Continues(const Kind& kind) const;
  // The last block when it takes such elements, else a new one that begins at ordinal `first`.
  inpS_ElementBlock& BlockFor(const Kind& kind, long long first, const inp_Keyword& keyword,
                              const KvoSimPosition& owner);
  // Elements of a streamed block: ordinals where known, and the entries that are open.
  void AppendStreamed(std::span<const int> ordinals, std::span<const inpS_OpenEntry> open);
  // Elements of a held block: takes over what the reader read.
  static void AppendHeld(inpS_ElementBlock& block, inpS_ElementTopologyReader& reader, bool ragged);

  // Elements of a held block that are made from others.
  static void AppendMade(inpS_ElementBlock& block, const inpS_MadeElements& made);

  // A streamed block becomes a held one: its elements are to change.
  void Hold(inpS_ElementBlock& block, const KvoObjLabeler& nodes, int occurrence);

  cow_List<inpS_ElementBlock>& Blocks() { return m_blocks; }
  const cow_List<inpS_ElementBlock>& Blocks() const { return m_blocks; }
  const inpS_ElementBlock* BlockOf(long long element) const; // null when none holds it

  // Pairs of element and node, ordinals of both: the nodes that give beams their directions, and
  // the reference nodes of axisymmetric rigid surfaces and drag chains.
  utl_Buffer<int> BeamExtraNodes() const { return ExtraNodes(false); }
  utl_Buffer<int> ReferenceNodes() const { return ExtraNodes(true); }

  // Where the element of this ordinal got its label.
  const inpS_ElementBlock::From* DefinitionOf(long long ordinal) const;

  // Looks up what is still labels and stores what is still held. Labels that no node has are
  // reported, one message per keyword with the labels listed, at the first one's place.
  void Resolve(const KvoObjLabeler& nodes, int occurrence, const KvoObjLabeler& elements,
               int elementOccurrence, inp_Visitor& messages);
  // Elements, by ordinal, that refer to a node which does not exist. Of a mesh without repeated
  // labels.
  void NoteFaulty(long long element) { m_faulty.push_back(element); }
  const cow_List<long long>& Faulty() const { return m_faulty; }
  // Stores the held blocks, once nodes named by their instance are in their place.
  void StoreHeld(const KvoSimPosition& owner);
  void Discard(); // the mesh failed: takes back what was stored

private:
  utl_Buffer<int> ExtraNodes(bool reference) const;
  void CloseLast();
  void ResolveHeld(inpS_ElementBlock& block, const KvoObjLabeler& nodes, int occurrence);
  void ResolveOpen(inpS_ElementBlock& block, const KvoObjLabeler& nodes, int occurrence);
  // What the elements of one keyword refer to and nobody has.
  struct Unresolved {
    const inpS_ElementBlock::From* from = nullptr;
    std::set<int> unknown; // labels of nodes
    std::set<int> faulty;  // elements with labels that no node can have
    int firstUnknown = 0;
    int firstFaulty = 0;
    void Report(inp_Visitor& messages); // and is empty then
  };
  void GatherOpen(const inpS_ElementBlock& block, const KvoObjLabeler& elements,
                  int elementOccurrence, Unresolved& unresolved, inp_Visitor& messages);

  cow_List<inpS_ElementBlock> m_blocks;
  cow_List<long long> m_faulty;
  std::optional<eds_ArrayWriter> m_writer; // of the last block
  mutable std::size_t m_lastFound = 0;
};
