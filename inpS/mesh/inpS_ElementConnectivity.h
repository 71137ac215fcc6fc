#pragma once

#include "base/utl_Buffer.h"
#include "inpS/mesh/inpS_ElementTopologyReader.h"
#include "parser/inp_Keyword.h"

class KvoObjLabeler;
class inp_Visitor;

// A run of elements of one type and width. Nodes are labels while the deck is read and ordinals of
// the owner once they are resolved (-1: no node).
struct inpS_ElementBlock {
  struct From {
    inp_Keyword keyword;
    long long firstElement; // within the block
  };
  int spec = 0;         // index into the visitor's element types
  int width = 0;
  int topology = 0;     // nodes that are the element's own; one more is an extra node
  bool referenceNode = false; // the extra node is a reference node, not a beam's direction
  long long first = 0;  // ordinal of the first element within the owner
  utl_Buffer<int> nodes;
  cow_String source;    // parameters of the keyword that the writer gives back
  bool ragged = false;  // some elements have fewer nodes than width
  cow_List<From> from;
  cow_List<inpS_ScopedNode> scoped; // element counted within the block

  long long Count() const {
    return width == 0 ? 0 : static_cast<long long>(nodes.Size()) / width;
  }
};

// The elements of one owner in deck order, as blocks of equal type and width.
class inpS_ElementConnectivity {
public:
  // Takes over what the reader read; first: ordinal of its first element.
  void Append(inpS_ElementTopologyReader& reader, int spec, bool ragged, const cow_String& source,
              long long first, const inp_Keyword& keyword);

  cow_List<inpS_ElementBlock>& Blocks() { return m_blocks; }
  const cow_List<inpS_ElementBlock>& Blocks() const { return m_blocks; }
  // The block that holds an element; null when none does. Near the last answer at once.
  const inpS_ElementBlock* BlockOf(long long element) const;

  // Node labels to ordinals, all cores. Labels that no node has are reported, one message per keyword
  // with the labels listed.
  void Resolve(const KvoObjLabeler& nodes, int occurrence, const KvoObjLabeler& elements,
               int elementOccurrence, inp_Visitor& messages);

private:
  void ReportMissing(const inpS_ElementBlock& block,
                     const cow_List<std::pair<long long, int>>& missing,
                     const KvoObjLabeler& elements, int elementOccurrence, inp_Visitor& messages);

  cow_List<inpS_ElementBlock> m_blocks;
  mutable std::size_t m_lastFound = 0;
};
