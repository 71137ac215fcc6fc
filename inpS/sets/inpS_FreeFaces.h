#pragma once

#include "inpS/sets/inpS_SurfaceElements.h"

// The elements that have one face in common with nothing else, for one face of their type.
struct inpS_FaceSet {
  int face = 0; // from 1, S1 or E1 being 1
  eds_MemberSet elements;
};

// The free faces of a set of elements: the faces of solids (of plane elements: the edges) that no
// other element of the set has too. What lies outside the set does not count: a set cut out of a
// body is bounded by the cut as well. Element types differ as they like, corners alone count; an
// infinite element has only its finite face. Elements without free faces (sheets, lines, links, the
// infinite ones of one dimension less) are passed over.
//
// `runs` are those of the owner (inpS_SurfaceElements::RunsOf) whose ordinals the set has.
// Ascending by face, each face's elements ascending; faces without elements are left out.
cow_List<inpS_FaceSet> inpS_freeFaces(const cow_List<inpS_SurfaceElements::Run>& runs,
                                      const eds_MemberSet& elements);

// The same for the edges of shells, membranes and plane elements, whatever else they border on.
cow_List<inpS_FaceSet> inpS_freeEdges(const cow_List<inpS_SurfaceElements::Run>& runs,
                                      const eds_MemberSet& elements);
