#pragma once

#include "database/KvoSimPosition.h"
#include "inpS/forms/inpS_FormTable.h"

// What an *ORIENTATION or a *TRANSFORM says, as the deck gives it: read from the keyword, to see
// whether it says something, or from the record that the keyword has become.
struct inpS_OrientationData {
  enum class System : unsigned char { Rectangular, Cylindrical, Spherical, ZRectangular, User };
  enum class Definition : unsigned char { Coordinates, Nodes, OffsetToNodes, Distribution };
  static constexpr int kPoints = 3; // A, B and the origin
  struct Node {
    bool isGiven = false;
    long long label = 0; // or, by offset, its place among the nodes of each element
    cow_String instance; // by which it is named; empty: none
  };

  System system = System::Rectangular;
  Definition definition = Definition::Coordinates;
  double points[kPoints][3] = {};
  Node nodes[kPoints];
  int axis = 1;     // of the additional rotation
  double angle = 0; // degrees

  // A rotation alone: no point of it matters.
  bool IsRectangular() const {
    return system == System::Rectangular || system == System::ZRectangular;
  }

  // What of the keyword can be no orientation; empty when all can.
  static cow_String Read(const inp_Keyword& keyword, const inpS_Form& form,
                         inpS_OrientationData& data);
  static inpS_OrientationData Of(const KvoSimPosition& record);
  // The distribution that gives an orientation's points A and B, or its angle, by element; null:
  // none.
  static KvoSimPosition PointsOf(const KvoSimPosition& record);
  static KvoSimPosition AnglesOf(const KvoSimPosition& record);
  // Why the distribution can give no angles, as "takes its angles from ..."; empty: it can, or
  // there is none.
  static cow_String FaultOfAngles(const KvoSimPosition& record);
  // Whether its axes are those of elements: by such a distribution, or by the elements' nodes.
  static bool IsByElement(const KvoSimPosition& record);
  static std::string_view NameOf(System system); // as decks have it
};
