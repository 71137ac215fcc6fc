#pragma once

#include "inpS/mesh/inpS_MadeElements.h"
#include "inpS/mesh/inpS_OldElements.h"

// Reads *ELGEN: each data line makes rows of elements from a master element, and layers of rows.
//
//   master, elements in the row, node increment, element increment in it,
//   rows, node increment, element increment from row to row,
//   layers, node increment, element increment from layer to layer
//
// Counts include the master and what came before; a count that is absent or zero is 1. Increments
// that are absent are 1; they may be negative, and that of nodes zero (elements that share them).
// The extra node of a beam, and the reference node of a rigid surface or a drag chain, is the
// master's, unless "allnodes" moves it on like the others.
class inpS_ElgenReader {
public:
  inpS_ElgenReader(const inp_Keyword& keyword, const inpS_MeshScope& scope,
                   const KvoObjLabeler& nodes, const KvoObjLabeler& elements,
                   inp_Visitor& messages);

  // One data line; false: it says nothing, or nothing can be made from it, which is reported.
  bool ReadLine(long long row);
  int Master() const { return m_master; } // its ordinal
  const inpS_MadeElements& Made() const { return m_made; }

private:
  static constexpr int kDirections = 3; // along the row, from row to row, from layer to layer
  struct Pattern {
    long long counts[kDirections] = {1, 1, 1};
    long long nodeSteps[kDirections] = {1, 1, 1};
    long long elementSteps[kDirections] = {1, 1, 1};
  };
  class Walk;
  struct Span {
    long long least = 0;
    long long most = 0;
  };

  bool ReadFields(long long row, Pattern& pattern);
  bool ReadField(long long row, int col, long long& value);
  bool FindMaster(long long row);
  bool FitsLabels(long long row, const Pattern& pattern, long long master);
  bool FitsNodes(long long row, const Pattern& pattern);
  static Span SpanOf(const Pattern& pattern, const long long (&steps)[kDirections]);
  bool Moves(int index) const { return m_allNodes || index < m_made.topology; }
  void Make(const Pattern& pattern, int master);
  void MakeScoped(const Pattern& pattern);
  bool Refuse(long long row, int col, cow_String text);

  const inp_Keyword& m_keyword;
  const KvoObjLabeler& m_elements;
  const int m_occurrence;
  inpS_OldElements m_old;
  inp_Visitor& m_messages;
  bool m_allNodes;

  int m_master = -1;
  cow_List<int> m_nodes; // of the master
  cow_List<inpS_ScopedNode> m_scoped;
  inpS_MadeElements m_made;
};
