#pragma once

#include "base/utl_Buffer.h"
#include "database/KvoObjMesh.h"
#include "database/KvoSimPosition.h"
#include "inpS/mesh/inpS_ElementConnectivity.h"
#include <functional>

// What the database held of one owner before a restart. Nothing is read before it is asked for.
class inpS_BaseMesh {
public:
  // The visitor's index of an element type, which it is made known to.
  struct Type {
    int spec;
    int topology;       // nodes of an element as wide as the block that are its topology
    bool referenceNode; // one behind them is a reference node
    bool isGasket;      // completed by two nodes that were not given
    int plane;          // nodes of one plane; 0: it has none
  };
  using TypeOf = std::function<Type(const cow_String& name, int width)>;

  inpS_BaseMesh(KvoObjMesh mesh, const KvoSimPosition& owner, long long nodes);

  // Nodes by their ordinal within the owner.
  const double* Point(long long ordinal);
  const double* Normal(long long ordinal); // null: the node has none

  // The elements as they are stored; as labels they can be made others from.
  void LoadElements(const TypeOf& typeOf);
  void LoadLabels(const KvoObjLabeler& nodes, int occurrence);
  const inpS_ElementConnectivity& Elements() const { return m_elements; }

private:
  void LoadNodes();

  KvoObjMesh m_mesh;
  KvoSimPosition m_owner;
  long long m_nodeCount;
  utl_Buffer<double> m_points; // by ordinal
  utl_Buffer<int> m_normalAt;  // by ordinal, -1 without
  utl_Buffer<double> m_normals;
  inpS_ElementConnectivity m_elements;
  std::vector<bool> m_isGasket; // of each block
};
