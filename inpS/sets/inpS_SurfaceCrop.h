#pragma once

#include "inpS/sets/inpS_SurfaceElements.h"
#include "inpS/sets/inpS_SurfaceFaceSets.h"

// The part of a surface that lies in a box. A face is in it when all its nodes are, and out of it
// otherwise: in and out together are the whole surface. The box's own boundary is in it.
//
// The box: two opposite corners, along the axes of the coordinates in which the surface's owner
// lies, or along axes turned by two more points: one on the box's first axis, one in the plane of
// its first two; both axes begin at the origin.
class inpS_SurfaceCrop {
public:
  inpS_SurfaceCrop(const KvoObjMesh& mesh, const KvoSimPosition& owner,
                   const cow_List<double>& box);

  inpS_FaceSets Faces(const inpS_FaceSets& faces, const cow_List<inpS_SurfaceElements::Run>& runs,
                      bool inside) const;
  eds_MemberSet Nodes(const eds_MemberSet& nodes, bool inside) const;

private:
  void SetBox(const cow_List<double>& box);
  bool IsInside(const double* point) const;
  bool HasNode(long long node) const {
    return node >= 0 && node < static_cast<long long>(m_inside.size()) &&
           m_inside[static_cast<std::size_t>(node)];
  }

  double m_axes[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  double m_low[3] = {};
  double m_high[3] = {};
  std::vector<bool> m_inside; // by node as the owner counts them
};
