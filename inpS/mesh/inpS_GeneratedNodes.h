#pragma once

#include "inpS/mesh/inpS_MeshScope.h"

class inp_Keyword;
class inpS_ElementParameters;
class inpS_ElementTopologyReader;
class KvoObjLabeler;
class inp_Visitor;

// Nodes that elements bring along without the deck listing them.
class inpS_GeneratedNodes {
public:
  // Axisymmetric elements with Fourier modes may give the nodes of their first plane only. The
  // nodes of plane k are numbered from those by k times the keyword's "offset", 100000 where it is
  // absent, and lie at the same r and z. The offset is 0 when all elements have all planes.
  struct Planes {
    int offset = 0;
    cow_List<int> tooFar; // elements whose nodes would get labels that no node may have
  };
  static int OffsetOf(const inp_Keyword& keyword, inp_Visitor& messages);
  static Planes AddFourierPlanes(const inpS_ElementParameters& type,
                                 inpS_ElementTopologyReader& reader);

  // Elements that give their first plane only and name nodes of it by instance: nodes of further
  // planes cannot be told from their labels.
  static cow_List<int> AcrossInstances(const inpS_ElementParameters& type,
                                       inpS_ElementTopologyReader& reader);

  // Whether elements of a type may be completed by nodes with labels of their own.
  static bool IsCompleted(const cow_String& type);

  // Whether Complete will take labels above the largest of the deck.
  static bool TakesNewLabels(const inpS_MeshScope& scope, const cow_List<cow_String>& types);

  // When everything is read: adds the nodes that elements as they are by now imply and the deck
  // does not define, and the middle
  // nodes of 18-node gaskets given with 16, which take the labels above the largest of the deck and
  // lie in the middle of their face (the serendipity interpolation of its eight nodes).
  // The instances come before the assembly, whose gaskets may name their nodes.
  static void Complete(inpS_MeshScopes& scopes, inpS_MeshScope& scope,
                       const cow_List<cow_String>& types, KvoObjLabeler& labeler,
                       int& largestLabel);
};
