#pragma once

#include "database/eds_MemberSet.h"
#include "host/inps_NodeAxes.h"
#include "host/inps_NodeSelection.h"
#include "host/inps_VtuFile.h"

// What acts on nodes in one step, as arrays of nodes: forces, moments and fluxes, added up; values
// that are prescribed; and FixedDofs, which has bit n for each degree of freedom n + 1 that is held
// or moved, along the node's own axes. Vectors are turned into global components.
class inps_NodalConditions {
public:
  // What a condition prescribes: its keyword, the TYPE of a boundary condition, the number of a
  // field variable.
  struct Kind {
    std::string_view keyword;
    std::string_view type;
    int64_t variable = 1;
    int64_t place = 1; // of several values of one temperature or field
  };

  inps_NodalConditions(const inps_FlatMesh& mesh, const KvoObjDocument& document)
      : m_mesh(mesh), m_axes(mesh, document) {}

  // Degrees of freedom (bit n for degree n + 1; 1 where the kind has none) of nodes, all with one
  // value. Nodes that the mesh does not have are passed over. False: some degree has no array, and
  // nothing is added.
  bool Add(const Kind& kind, uint64_t degrees, const eds_MemberSet& nodes, double value);
  // Degrees of freedom that are zero, or keep what they have; type: of what is held.
  void Hold(uint64_t degrees, const eds_MemberSet& nodes, std::string_view type = {});
  void Finish(); // after the last of them, before anything below

  bool IsEmpty() const { return m_channels.empty() && m_masks.empty(); }
  void MarkNodes(inps_NodeSelection& selection) const; // those on which anything acts
  // The grid refers to this and to the nodes.
  void AddTo(inps_VtuGrid& grid, const inps_NodeSelection& nodes) const;

private:
  // One array: values of the nodes that have any.
  struct Channel {
    bool isVector = false;
    std::vector<int32_t> places; // by node, -1: none
    std::vector<double> values;
  };
  double& ValueOf(Channel& channel, int32_t node, std::size_t component) const;
  template <class Take> void ForNodes(const eds_MemberSet& nodes, Take take) const;

  const inps_FlatMesh& m_mesh;
  inps_NodeAxes m_axes;
  cow_Map<cow_String, Channel> m_channels; // by name
  // Degrees that are held or moved, by node: "FixedDofs" has all of them, "VelocityDofs" and
  // "AccelerationDofs" those of which that is prescribed and not the displacement.
  cow_Map<cow_String, std::vector<int32_t>> m_masks;
};
