#pragma once

#include "database/KvoObjLabeler.h"
#include "database/KvoObjMesh.h"
#include "parser/inp_Shape.h"
#include <memory>

// The flat mesh of a model for reading: node and element blocks one behind the other, instances
// placed. Nodes and elements are told by their flat ordinals, from 0. Every operation may be called
// from any thread.
class inps_FlatMesh {
public:
  // What the model says of a run of nodes or elements of one owner.
  struct Owner {
    int labels = -1;   // its label space
    int instance = -1; // in InstanceNames, -1: of the model or the assembly itself
    int part = -1;     // in PartNames
  };
  struct Nodes : Owner {
    KvoMeshNodeBlock block;
  };
  struct Elements : Owner {
    KvoMeshElementBlock block;
    int type = 0; // in TypeNames
    inp_ShapeKind shape = inp_ShapeKind::None;
    int physicalNodes = 0; // of the block's width: those that make the shape
  };

  // Throws eds_DamagedFileException for blocks that do not follow one another.
  explicit inps_FlatMesh(const KvoObjDocument& document);
  ~inps_FlatMesh();

  int64_t NodeCount() const { return m_nodeCount; }
  int64_t ElementCount() const { return m_elementCount; }
  const cow_List<Nodes>& NodeBlocks() const { return m_nodes; }
  const cow_List<Elements>& ElementBlocks() const { return m_elements; }
  std::size_t NodeBlockOf(int64_t flat) const;
  std::size_t ElementBlockOf(int64_t flat) const;

  const cow_List<cow_String>& TypeNames() const { return m_typeNames; }
  const cow_List<cow_String>& InstanceNames() const { return m_instanceNames; }
  const cow_List<cow_String>& PartNames() const { return m_partNames; }
  // The owners of flat sets: model, assembly, instances.
  cow_List<KvoSimPosition> SetOwners() const;
  const KvoObjMesh& Mesh() const { return m_mesh; }

  // From a flat ordinal on, as many as the span takes (3 coordinates for each node).
  void ReadCoordinates(int64_t first, std::span<double> out) const;
  void CopyNodeLabels(int64_t first, std::span<int32_t> out) const;
  void CopyElementLabels(int64_t first, std::span<int32_t> out) const;
  // From an element of a block on: flat node ordinals, the block's width for each; -1: no node.
  void ReadConnectivity(std::size_t block, int64_t first, std::span<int32_t> out) const;
  // An array that some block refers to, from an item on; of int32_t or double.
  template <class T>
  void ReadArray(const eds_ArrayID& array, int64_t first, std::span<T> out) const;

  // "12", "PLATE-1.12"
  cow_String NodeName(int64_t flat) const;
  cow_String ElementName(int64_t flat) const;

private:
  struct Readers;
  void AddNodeBlocks();
  void AddElementBlocks();
  Owner OwnerOf(const KvoSimPosition& owner, const KvoObjLabeler& labels);
  cow_String NameOf(const Owner& owner, int32_t label) const;

  std::filesystem::path m_file;
  KvoObjMesh m_mesh;
  KvoObjLabeler m_nodeLabels;
  KvoObjLabeler m_elementLabels;
  cow_List<Nodes> m_nodes;
  cow_List<Elements> m_elements;
  int64_t m_nodeCount = 0;
  int64_t m_elementCount = 0;
  cow_List<cow_String> m_typeNames;
  cow_List<cow_String> m_instanceNames;
  cow_List<cow_String> m_partNames;
  cow_List<KvoSimPosition> m_setOwners;
  cow_Map<int64_t, Owner> m_instances; // by the instance's record
  std::unique_ptr<Readers> m_readers;
};
