#pragma once

#include "base/utl_Buffer.h"
#include "inpS/mesh/inpS_ElementFields.h"
#include "inpS/mesh/inpS_ElementParameters.h"
#include <functional>

struct inp_ElementRows;
struct inp_OddRow;

// Reads the data lines of one *ELEMENT whose elements may differ or need completing: labels and
// node labels, in deck order. Elements with too many or too few nodes are reported in one message
// each for the keyword; fields that are no labels at their place.
class inpS_ElementTopologyReader {
public:
  inpS_ElementTopologyReader(const inpS_ElementParameters& type, inp_Visitor& messages);

  // scopedNodes: node fields may name an instance (elements of the assembly).
  void Read(const inp_Keyword& keyword, bool scopedNodes);

  // Leaves out the elements of which this is not true, and those with too many or too few nodes.
  // Returns how many that are.
  long long Keep(const std::function<bool(int label)>& isKept);

  // Takes out the elements at these places, ascending: what they are is handed over.
  inpS_ElementTopologyReader TakeOut(std::span<const std::size_t> places);

  long long Count() const { return static_cast<long long>(m_labels.Size()); }
  int Width() const { return m_width; }      // nodes per element; 0 where an element has fewer
  bool IsRagged() const { return m_ragged; } // some elements have fewer nodes than Width()
  // Each element's nodes continue with the columns behind its own: width grows to what is given.
  void Widen(utl_Buffer<int> nodes, int width);
  utl_Buffer<int>& Labels() { return m_labels; }
  utl_Buffer<int>& Nodes() { return m_nodes; }
  const cow_List<inpS_ScopedNode>& ScopedNodes() const { return m_scopedNodes; }

  // Elements may carry one node behind their topology: the orientation node of a beam, the
  // reference node of an axisymmetric rigid surface or a drag chain. True when some element here
  // does; the node then stands at index TopologyNodes().
  bool HasExtraNodes() const { return m_width > TopologyNodes(); }
  bool HasReferenceNodes() const;
  int TopologyNodes() const { return m_topology; }

private:
  void TakeRegular(inp_ElementRows& rows);
  void Rebuild(const inp_Keyword& keyword, const inp_ElementRows& rows, bool scopedNodes);
  // Keeps the elements at these places with so many of their nodes.
  void Select(const cow_List<std::size_t>& kept, int width);
  void MarkZeros(int* nodes, int count) const;
  void Add(int label, const int* nodes, int count);

  const inpS_ElementParameters& m_type;
  inp_Visitor& m_messages;
  int m_extra; // nodes that the type asks for besides its topology
  int m_width = 0;
  int m_topology = 0;
  bool m_ragged = false;
  utl_Buffer<int> m_labels;
  utl_Buffer<int> m_nodes;
  cow_List<inpS_ScopedNode> m_scopedNodes;
  inpS_FaultyElements m_faulty;
};
