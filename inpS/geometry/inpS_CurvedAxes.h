#pragma once

#include "inpS/geometry/inpS_ShapeFunctions.h"

// The axes of a cylindrical or spherical system in one place: unit vectors in global components.
// a: a point of the cylinder's axis, or the centre; axis: a unit vector. False: there are none, as
// on the axis or in the centre.

// Away from the axis, about it, along it.
bool inpS_cylindricalAxes(const inpS_Point& a, const inpS_Point& axis, const inpS_Point& place,
                          std::array<inpS_Point, 3>& axes);
// Away from the centre, along the circles of latitude, along the meridian.
bool inpS_sphericalAxes(const inpS_Point& a, const inpS_Point& axis, const inpS_Point& place,
                        std::array<inpS_Point, 3>& axes);
