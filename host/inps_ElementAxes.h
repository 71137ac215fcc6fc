#pragma once

#include "host/inps_FlatMesh.h"
#include "host/inps_LocalAxes.h"
#include <unordered_map>

// Three unit vectors in global components.
using inps_Axes = std::array<std::array<float, 3>, 3>;

// The local axes of elements, from the orientations of their sections: the axes of the orientation
// itself, in the element's middle where they turn about an axis or a point. They are not laid into
// the surface of a shell, and angles of plies are not in them.
class inps_ElementAxes {
public:
  inps_ElementAxes(const inps_FlatMesh& mesh, const KvoObjDocument& document);
  ~inps_ElementAxes();

  // The elements of an assignment, one run after the other.
  void Add(const KvoSimPosition& assignment, int64_t first, int64_t count);
  bool HasAny() const { return !m_axes.empty(); }
  // Of a flat ordinal; zeros where it has none.
  inps_Axes Of(int64_t element) const;
  // Orientations whose axes only the program that computes knows: user's own, by nodes of elements.
  const cow_List<cow_String>& Unknown() const { return m_unknown; }

private:
  struct System;
  const System* SystemOf(const KvoSimPosition& assignment);
  void Give(int64_t element, const inps_Axes& axes);
  inps_Vector MiddleOf(int64_t element);

  const inps_FlatMesh& m_mesh;
  std::unordered_map<unsigned long long, cow_List<System>> m_systems; // by orientation
  std::vector<int32_t> m_place;                                       // by element, -1: none
  std::vector<inps_Axes> m_axes;                                      // each that some element has
  std::vector<double> m_coordinates;                                  // read when first needed
  cow_List<cow_String> m_unknown;
};
