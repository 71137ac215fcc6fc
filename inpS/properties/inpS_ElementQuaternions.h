#pragma once

#include "inpS/properties/inpS_ElementNodes.h"
#include "inpS/properties/inpS_OrientationAxes.h"
#include "inpS/properties/inpS_OrientationData.h"
#include "inpS/properties/inpS_OrientationPlaces.h"

// The axes that one orientation gives to elements in one place, each with points or an angle of its
// own. Those of a cylindrical or spherical system hold in the middle of the element (the mean of
// its nodes); the system itself keeps what they follow from.
class inpS_ElementQuaternions {
public:
  // points: what Locate makes of the orientation's own; of no meaning where elements have theirs.
  inpS_ElementQuaternions(const inpS_OrientationData& data,
                          const inpS_OrientationPlaces::Place& place, const double points[3][3],
                          inpS_ElementNodes& nodes);

  // element: a flat ordinal; own: the element's points A and B, as the distribution has them (null:
  // none). What is wrong; null: nothing.
  const char* Make(int64_t element, const double* own, double angle, double quat[4]);

private:
  const char* ReadNodes(int64_t element, double points[2][3]);
  const char* MakeCurved(int64_t element, const double points[2][3], inpS_OrientationAxes& axes);
  void Turn(double v[3]) const; // as the place is, and cleaned

  const inpS_OrientationData& m_data;
  const inpS_OrientationPlaces::Place& m_place;
  double m_points[2][3];
  inpS_ElementNodes& m_nodes;
};
