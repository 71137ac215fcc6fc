#include "host/inps_ExportGrid.h"

#include "database/KvoSimCSet.h"
#include <algorithm>
#include <numeric>

namespace {

using Mesh = inps_FlatMesh;
using Selection = inps_NodeSelection;

// Calls take(first index, count) for stretches of ordinals without gaps.
template <class Take> void forStretches(std::span<const int32_t> ordinals, Take take) {
  for (std::size_t begin = 0; begin < ordinals.size();) {
    std::size_t end = begin + 1;
    while (end < ordinals.size() && ordinals[end] == ordinals[end - 1] + 1) ++end;
    take(begin, end - begin);
    begin = end;
  }
}

// Puts value(block) for every one of the ordinals, which ascend.
template <class Blocks, class Value>
void fillByBlock(const Blocks& blocks, std::span<const int32_t> ordinals, std::span<int32_t> out,
                 std::size_t block, Value value) {
  for (std::size_t i = 0; i < ordinals.size(); ++i) {
    while (ordinals[i] >= blocks[block].block.flatFirst + blocks[block].block.count) ++block;
    out[i] = value(blocks[block]);
  }
}

// ---- points

inps_VtuArray pointsArray(const Mesh& mesh, const Selection& nodes) {
  return inps_vtuArray<double>(
      "Points", "Float64", nodes.Count(),
      [&mesh, &nodes](int64_t first, std::span<double> out) {
        thread_local std::vector<int32_t> flat;
        flat.resize(out.size() / 3);
        nodes.Copy(first, flat);
        forStretches(flat, [&](std::size_t at, std::size_t count) {
          mesh.ReadCoordinates(flat[at], out.subspan(3 * at, 3 * count));
        });
      },
      3);
}

// fill(flat node ordinals, out)
template <class Fill> inps_VtuArray nodeArray(const Selection& nodes, const char* name, Fill fill) {
  return inps_vtuArray<int32_t>(name, "Int32", nodes.Count(),
                                [&nodes, fill](int64_t first, std::span<int32_t> out) {
                                  thread_local std::vector<int32_t> flat;
                                  flat.resize(out.size());
                                  nodes.Copy(first, flat);
                                  fill(std::span<const int32_t>(flat), out);
                                });
}

bool hasNormals(const Mesh& mesh) {
  return std::ranges::any_of(mesh.NodeBlocks(), [](const Mesh::Nodes& nodes) {
    return !nodes.block.normalOrdinals.IsNull();
  });
}

// Normals are few: those of a block that has any lie in memory.
struct BlockNormals {
  std::vector<int32_t> ordinals;
  std::vector<double> values;

  BlockNormals(const Mesh& mesh, const KvoMeshNodeBlock& block) {
    if (block.normalOrdinals.IsNull()) return;
    ordinals.resize(static_cast<std::size_t>(eds_ArrayReader(block.normalOrdinals).Count()));
    values.resize(3 * ordinals.size());
    mesh.ReadArray(block.normalOrdinals, 0, std::span<int32_t>(ordinals));
    mesh.ReadArray(block.normals, 0, std::span<double>(values));
  }
};

// Zero where a node has none.
inps_VtuArray normalsArray(const Mesh& mesh, const Selection& nodes) {
  auto normals = std::make_shared<cow_List<BlockNormals>>();
  for (const Mesh::Nodes& of : mesh.NodeBlocks()) normals->emplace_back(mesh, of.block);
  return inps_vtuArray<double>(
      "Normal", "Float64", nodes.Count(),
      [&mesh, &nodes, normals](int64_t first, std::span<double> out) {
        std::vector<int32_t> flat(out.size() / 3);
        nodes.Copy(first, flat);
        std::ranges::fill(out, 0.0);
        std::size_t block = mesh.NodeBlockOf(flat.front());
        for (std::size_t i = 0; i < flat.size(); ++i) {
          const auto& blocks = mesh.NodeBlocks();
          while (flat[i] >= blocks[block].block.flatFirst + blocks[block].block.count) ++block;
          const BlockNormals& of = (*normals)[block];
          const auto local = static_cast<int32_t>(flat[i] - blocks[block].block.flatFirst);
          const auto found = std::ranges::lower_bound(of.ordinals, local);
          if (found == of.ordinals.end() || *found != local) continue;
          std::copy_n(of.values.begin() + 3 * (found - of.ordinals.begin()), 3,
                      out.begin() + 3 * static_cast<std::ptrdiff_t>(i));
        }
      },
      3);
}

void addPointData(inps_VtuGrid& grid, const Mesh& mesh, const Selection& nodes) {
  grid.points = pointsArray(mesh, nodes);
  grid.pointData.push_back(
      nodeArray(nodes, "NodeLabel", [&mesh](std::span<const int32_t> flat, std::span<int32_t> out) {
        forStretches(flat, [&](std::size_t at, std::size_t count) {
          mesh.CopyNodeLabels(flat[at], out.subspan(at, count));
        });
      }));
  if (!mesh.InstanceNames().empty())
    grid.pointData.push_back(nodeArray(
        nodes, "Instance", [&mesh](std::span<const int32_t> flat, std::span<int32_t> out) {
          fillByBlock(mesh.NodeBlocks(), flat, out, mesh.NodeBlockOf(flat.front()),
                      [](const Mesh::Nodes& of) { return of.instance; });
        }));
  if (hasNormals(mesh)) grid.pointData.push_back(normalsArray(mesh, nodes));
}

// ---- cells

// What every cell says of its element: one row an array. What sections say is inps_ExportSections'.
struct CellFact {
  const char* array; // index of a name, -1: none
  const char* names; // of the field data
  int Mesh::Elements::*index;
  const cow_List<cow_String>& (Mesh::*nameList)() const;
};
constexpr CellFact cellFacts[] = {
    {"ElementType", "ElementTypeNames", &Mesh::Elements::type, &Mesh::TypeNames},
    {"Instance", "InstanceNames", &Mesh::Elements::instance, &Mesh::InstanceNames},
    {"Part", "PartNames", &Mesh::Elements::part, &Mesh::PartNames},
};

// fill(flat element ordinals, out)
template <class Fill>
inps_VtuArray cellArray(const inps_ExportCells& cells, const char* name, Fill fill) {
  return inps_vtuArray<int32_t>(name, "Int32", cells.CellCount(),
                                [&cells, fill](int64_t first, std::span<int32_t> out) {
                                  thread_local std::vector<int32_t> flat;
                                  flat.resize(out.size());
                                  cells.FillElements(first, flat);
                                  fill(std::span<const int32_t>(flat), out);
                                });
}

// Cells come block by block; within several runs of a surface the blocks may come again.
void fillFact(const Mesh& mesh, const CellFact& fact, std::span<const int32_t> flat,
              std::span<int32_t> out) {
  const Mesh::Elements* of = nullptr;
  for (std::size_t i = 0; i < flat.size(); ++i) {
    if (!of || flat[i] < of->block.flatFirst || flat[i] >= of->block.flatFirst + of->block.count)
      of = &mesh.ElementBlocks()[mesh.ElementBlockOf(flat[i])];
    out[i] = of->*fact.index;
  }
}

void addCellData(inps_VtuGrid& grid, const Mesh& mesh, const inps_ExportCells& cells) {
  grid.cellData.push_back(cellArray(cells, "ElementLabel",
                                    [&mesh](std::span<const int32_t> flat, std::span<int32_t> out) {
                                      forStretches(flat, [&](std::size_t at, std::size_t count) {
                                        mesh.CopyElementLabels(flat[at], out.subspan(at, count));
                                      });
                                    }));
  for (const CellFact& fact : cellFacts) {
    const cow_List<cow_String>& names = (mesh.*fact.nameList)();
    if (names.empty()) continue;
    grid.cellData.push_back(cellArray(
        cells, fact.array, [&mesh, &fact](std::span<const int32_t> flat, std::span<int32_t> out) {
          fillFact(mesh, fact, flat, out);
        }));
    grid.fieldData.push_back(inps_vtuTexts(fact.names, names));
  }
}

} // namespace

inps_VtuGrid inps_cellGrid(const Mesh& mesh, const inps_ExportCells& cells,
                           const Selection& nodes) {
  inps_VtuGrid grid;
  addPointData(grid, mesh, nodes);
  addCellData(grid, mesh, cells);
  grid.connectivity =
      inps_vtuArray<int32_t>("connectivity", "Int32", cells.PointRefCount(),
                             [&cells, &nodes](int64_t first, std::span<int32_t> out) {
                               cells.FillConnectivity(nodes, first, out);
                             });
  grid.offsets = inps_vtuArray<int64_t>(
      "offsets", "Int64", cells.CellCount(),
      [&cells](int64_t first, std::span<int64_t> out) { cells.FillOffsets(first, out); });
  grid.types = inps_vtuArray<uint8_t>(
      "types", "UInt8", cells.CellCount(),
      [&cells](int64_t first, std::span<uint8_t> out) { cells.FillTypes(first, out); });
  return grid;
}

inps_VtuGrid inps_nodeGrid(const Mesh& mesh, const Selection& nodes) {
  inps_VtuGrid grid;
  addPointData(grid, mesh, nodes);
  if (!mesh.InstanceNames().empty())
    grid.fieldData.push_back(inps_vtuTexts("InstanceNames", mesh.InstanceNames()));
  grid.connectivity = inps_vtuArray<int32_t>(
      "connectivity", "Int32", nodes.Count(), [](int64_t first, std::span<int32_t> out) {
        std::iota(out.begin(), out.end(), static_cast<int32_t>(first));
      });
  grid.offsets = inps_vtuArray<int64_t>(
      "offsets", "Int64", nodes.Count(),
      [](int64_t first, std::span<int64_t> out) { std::iota(out.begin(), out.end(), first + 1); });
  grid.types =
      inps_vtuArray<uint8_t>("types", "UInt8", nodes.Count(), [](int64_t, std::span<uint8_t> out) {
        std::ranges::fill(out, uint8_t{inps_VtkVertex});
      });
  return grid;
}

// ---- sets

namespace {

// Calls take(scope of the names, owner of sets, first flat ordinal of that owner's members) for the
// model, the assembly, and for every instance after its part.
template <class Take> void forOwners(const Mesh& mesh, eds_FieldID firstOfInstance, Take take) {
  for (const KvoSimPosition& owner : mesh.SetOwners()) {
    if (!owner.IsA(eds_RecordKind::Instance)) {
      take(cow_String(), owner, 0);
      continue;
    }
    const KvoSimDataRecord instance = owner.DataRecord();
    const KvoSimPosition part = instance.GetReference(eds_Instance_Part);
    const int64_t first = instance.GetInt64(firstOfInstance);
    const cow_String scope = owner.Name() + ".";
    if (!part.IsNull() && first >= 0) take(scope, part, static_cast<int32_t>(first));
    take(scope, owner, 0);
  }
}

template <class SetsOf>
cow_List<inps_NamedSet> namedSets(const Mesh& mesh, eds_FieldID firstOfInstance, SetsOf setsOf) {
  cow_List<inps_NamedSet> sets;
  cow_Map<cow_String, std::size_t> known;
  forOwners(mesh, firstOfInstance,
            [&](const cow_String& scope, const KvoSimPosition& owner, int32_t shift) {
              for (const KvoSimPosition& set : setsOf(owner)) {
                if (set.Name().empty()) continue;
                const auto [entry, isNew] = known.try_emplace(scope + set.Name(), sets.size());
                if (isNew) sets.push_back({entry->first, {}});
                sets[entry->second].sets.push_back({set, shift});
              }
            });
  return sets;
}

} // namespace

cow_List<inps_NamedSet> inps_nodeSetsOf(const Mesh& mesh) {
  return namedSets(mesh, eds_Instance_FirstNode,
                   [&](const KvoSimPosition& owner) { return mesh.Mesh().NodeSets(owner); });
}

cow_List<inps_NamedSet> inps_elementSetsOf(const Mesh& mesh) {
  return namedSets(mesh, eds_Instance_FirstElement,
                   [&](const KvoSimPosition& owner) { return mesh.Mesh().ElementSets(owner); });
}

cow_List<inps_NamedSurface> inps_surfacesOf(const Mesh& mesh) {
  cow_List<inps_NamedSurface> surfaces;
  for (const bool ofNodes : {false, true})
    forOwners(mesh, ofNodes ? eds_Instance_FirstNode : eds_Instance_FirstElement,
              [&](const cow_String& scope, const KvoSimPosition& owner, int32_t shift) {
                for (const KvoSimPosition& position : KvoObjSurface::OfOwner(owner)) {
                  const KvoObjSurface surface(position);
                  const bool isOfNodes = surface.Type() == eds_SurfaceType::Node;
                  if (!surface.IsInternal() && isOfNodes == ofNodes)
                    surfaces.push_back({scope + surface.Name(), {surface, shift}});
                }
              });
  return surfaces;
}

eds_MemberSet inps_membersOf(const inps_NamedSet& set) {
  eds_MemberSet all;
  for (const auto& [position, shift] : set.sets) {
    const bool ofNodes = position.IsA(eds_RecordKind::NodeSet);
    const KvoSimCSet members =
        ofNodes ? KvoObjNodeSet(position).Membership() : KvoObjElementSet(position).Membership();
    if (members.IsNull()) continue;
    const eds_MemberSet placed = inps_shifted(members.Set().AscendingSet(), shift);
    all = all.IsEmpty() ? placed : all.Union(placed);
  }
  return all;
}

eds_MemberSet inps_flatMembers(const KvoSimPosition& set, const KvoSimPosition& instance) {
  if (set.IsNull()) return {};
  const bool ofNodes = set.IsA(eds_RecordKind::NodeSet);
  const auto placed = [&](const auto& named) {
    const KvoSimCSet members = named.Membership();
    if (members.IsNull()) return eds_MemberSet();
    const bool isOfPart = !instance.IsNull() && named.Owner().IsA(eds_RecordKind::Part);
    const auto first = ofNodes ? eds_Instance_FirstNode : eds_Instance_FirstElement;
    return inps_shifted(members.Set().AscendingSet(),
                        isOfPart ? instance.DataRecord().GetInt64(first) : 0);
  };
  return ofNodes ? placed(KvoObjNodeSet(set)) : placed(KvoObjElementSet(set));
}

inps_VtuArray inps_setArray(const inps_NamedSet& set, int64_t items) {
  auto members = std::make_shared<eds_MemberSet>(inps_membersOf(set));
  return inps_vtuArray<uint8_t>(
      "Set " + set.name, "UInt8", items, [members](int64_t first, std::span<uint8_t> out) {
        std::ranges::fill(out, uint8_t{0});
        const int64_t end = first + static_cast<int64_t>(out.size());
        for (int64_t i = inps_countBelow(*members, first); i < members->Size(); ++i) {
          if ((*members)[i] >= end) break;
          out[static_cast<std::size_t>((*members)[i] - first)] = 1;
        }
      });
}
