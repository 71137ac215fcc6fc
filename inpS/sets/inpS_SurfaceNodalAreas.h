#pragma once

#include "base/utl_Buffer.h"
#include "database/KvoObjSurface.h"
#include "inpS/framework/inpS_ArrayItems.h"
#include "inpS/geometry/inpS_ElementMeasure.h"
#include "inpS/sets/inpS_SurfaceElements.h"

class KvoObjDocument;

// The area of each element-based surface as its nodes share it, in the deck's unit of length
// squared (inpS_nodalAreas). Faces of solids and shells count with their area, a shell with both
// sides in the surface once; lines (edges, plane elements' faces, beams and trusses) with their
// length at unit depth, of axisymmetric elements with the whole ring, as loads on their nodes are
// those of the whole ring too; an end of a line element, whose section is not known here, with 1,
// as a node of a node-based surface that is given no area.
//
// Surfaces of instances, the assembly and the flat model are measured as placed. A part is a
// pattern; its surfaces are measured once, as it stands, since every instance of it is rigidly
// placed and has the same areas.
class inpS_SurfaceNodalAreas {
public:
  explicit inpS_SurfaceNodalAreas(const KvoObjMesh& mesh);

  struct Areas {
    std::vector<int32_t> nodes; // ascending, as the surface's owner counts them
    std::vector<double> areas;
  };
  Areas Measure(const KvoSimPosition& owner, const cow_List<KvoSurfaceFaces>& surface);

  // Measures every element-based surface that has no areas yet and writes them: the part's or the
  // mesh's distribution gets a drawer for each surface. Inside the caller's transaction. Returns
  // the surfaces that get none, since theirs are not finite.
  cow_List<KvoObjSurface> Save();

private:
  // Elements of one run with one face: `nodes` entries each, from `first` on.
  struct Group {
    const inpS_ShapeFunctions* functions = nullptr;
    inpS_Depth depth = inpS_Depth::Unit;
    std::size_t first = 0;
    std::size_t count = 0;
  };
  struct Face {
    const inpS_ShapeFunctions* functions = nullptr; // null: the type has no such face
    std::vector<int> columns;
  };
  static Face FaceOf(const inp_ElementInfo& info, eds_SurfaceFace face);
  void Gather(const KvoSurfaceFaces& faces, const cow_List<inpS_SurfaceElements::Run>& runs);
  void AddGroup(const inpS_SurfaceElements::Run& run, const Face& face, const inp_ElementInfo& info,
                const eds_MemberSet& elements, int64_t first, int64_t end);
  void NumberNodes(Areas& areas);
  void ReadCoordinates(const cow_List<KvoMeshNodeBlock>& blocks, std::span<const int32_t> nodes);
  void MeasureFaces(const Group& group);
  const cow_List<KvoMeshNodeBlock>& NodesOf(const KvoSimPosition& owner) const;
  KvoSimDistribution DistributionOf(const KvoSimPosition& owner);

  KvoObjMesh m_mesh;
  inpS_SurfaceElements m_elements;
  cow_List<KvoMeshNodeBlock> m_flat;
  cow_Map<unsigned long long, cow_List<KvoMeshNodeBlock>> m_ofParts;
  inpS_ArrayItems<int32_t> m_connectivity;
  inpS_ArrayItems<double> m_coordinates;
  // Of the surface at hand.
  cow_List<Group> m_groups;
  utl_Buffer<int32_t> m_entries; // the faces' nodes, -1: absent; then their places among all nodes
  utl_Buffer<double> m_shares;   // of the entries
  std::vector<inpS_Point> m_places;
};
