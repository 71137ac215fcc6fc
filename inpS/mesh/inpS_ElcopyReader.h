#pragma once

#include "inpS/mesh/inpS_MadeElements.h"
#include "inpS/mesh/inpS_OldElements.h"
#include <vector>

// Copies elements: their labels grow by one number, the labels of all their nodes by another. The
// nodes that orient beams and the reference nodes are shifted like the others, as copying a node
// set copies all of its nodes. A copy is of its old element's type and keeps how that was given.
// With reflect, each copy takes its nodes in the order of a mirror image (inpS_reflectedPlaces).
class inpS_ElcopyReader {
public:
  // oldElements: ordinals of the owner, ascending. typeNames: of the element types by their index.
  inpS_ElcopyReader(long long elementShift, std::vector<int> oldElements, long long nodeShift,
                    bool reflect, const inpS_MeshScope& scope, const KvoObjLabeler& nodes,
                    const KvoObjLabeler& elements, cow_List<cow_String> typeNames);

  // Looks at the old elements; false: a copy would get a label that is none, which is reported in
  // the keyword.
  bool Read(const inp_Keyword& keyword, inp_Visitor& messages);

  long long Count() const { return static_cast<long long>(m_old.size()); }
  void Labels(long long first, std::span<int> labels) const; // of copies from `first` on
  int NumberOfNodes(long long copy) const;
  // Copies of one type in a row make one piece of the mesh: the type's index for each of these.
  cow_List<int> ElementTypes() const;
  inpS_MadeElements Connectivity(std::size_t run) const;

private:
  struct Segment { // copies from `first` on have their old elements in this block
    inpS_OldElements::Place place;
    long long first;
  };
  struct Run {
    inpS_ElementConnectivity::Kind kind;
    long long first = 0;
    long long count = 0;
    bool ragged = false;
    cow_List<cow_List<int>> places; // by number of nodes: where a copy's nodes come from
  };

  bool FindRuns(const inp_Keyword& keyword, inp_Visitor& messages);
  void AddTo(const inpS_ElementBlock& block, long long copy);
  bool CheckLabels(const inp_Keyword& keyword, inp_Visitor& messages) const;
  bool CheckNodes(const inp_Keyword& keyword, inp_Visitor& messages) const;
  void ReportUnreflected(const inp_Keyword& keyword, inp_Visitor& messages) const;
  std::size_t SegmentOf(long long copy) const;
  const inpS_ElementBlock& BlockOf(long long copy) const {
    return m_segments[SegmentOf(copy)].place.Block();
  }
  void Fill(const Run& run, long long first, std::span<int> nodes) const;
  void AddScoped(const Run& run, inpS_MadeElements& made) const;

  long long m_elementShift;
  std::vector<int> m_old;
  long long m_nodeShift;
  bool m_reflect;
  inpS_OldElements m_elements;
  const KvoObjLabeler& m_labels;
  int m_occurrence;
  cow_List<cow_String> m_typeNames;
  cow_List<Segment> m_segments;
  cow_List<Run> m_runs;
};
