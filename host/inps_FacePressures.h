#pragma once

#include "host/inps_ExportCells.h"
#include "host/inps_VtuFile.h"

// Pressures on faces of elements, those of several loads added up. They push against the face.
class inps_FacePressures {
public:
  // One value for all of the elements (flat ordinals, ascending).
  void Add(eds_SurfaceFace face, const eds_MemberSet& elements, double value);
  void Add(eds_SurfaceFace face, int32_t element, double value);

  bool IsEmpty() const { return m_faces.empty(); }
  // The faces become cells, of which this makes an array Pressure; the grid refers to the cells.
  void Plan(inps_ExportCells& cells);
  void AddTo(inps_VtuGrid& grid) const;

private:
  using Faces = std::vector<std::pair<int32_t, double>>; // element and pressure
  cow_Map<eds_SurfaceFace, Faces> m_faces;
  std::vector<double> m_pressures; // by cell, once planned
};
