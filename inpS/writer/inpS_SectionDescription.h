#pragma once

#include "database/KvoObjDocument.h"
#include "database/KvoSimPosition.h"
#include "inpS/inpS_Export.h"

// A section as a reader of decks knows it: what gives the elements of a set their properties.
struct inpS_SectionDescription {
  // How thick the elements are, where their section and not their nodes alone say so: shells,
  // membranes, plane solids, cohesive and gasket elements. Not solid layups, whose plies have
  // thicknesses relative to each other.
  enum class Thickness : unsigned char {
    None,
    Constant,
    Distribution, // the field "thickness" of the section, or of its plies, has the values
    Nodal         // likewise, by node
  };
  KvoSimPosition section;
  cow_String name;        // "Section-PANEL-SKIN"
  cow_String variant;     // "SHELL SECTION, COMPOSITE"
  cow_String set;         // of an instance: "PANEL-1.SKIN"
  cow_String material;    // or gasket behaviour; a layup's: those of its plies, each once
  cow_String orientation; // a connector's: of both its ends
  int plies = 0;          // as given, so half of them where the layup is symmetric
  long long elements = 0; // in the flat mesh: a part's count once for each instance
  Thickness kind = Thickness::None;
  // Of a layup: the sum of its plies, twice where it is symmetric, without those that vary.
  double thickness = 0;
  cow_List<cow_String> distributions; // of the thickness, each once
  bool isSymmetric = false;
};

// Those of the model, its parts, instances and assembly, in this order.
INPS_EXPORT cow_List<inpS_SectionDescription> inpS_describeSections(const KvoObjDocument& document);
