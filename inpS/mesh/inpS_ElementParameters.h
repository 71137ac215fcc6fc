#pragma once

#include "base/cow_Value.h"
#include "parser/inp_BulkDecode.h"
#include <string_view>

class inpS_BasicElemTypeData;

// One element type as one *ELEMENT uses it: its node counts, what the keyword adds, and the
// families its name tells.
class inpS_ElementParameters {
public:
  // The name in any case; the offset of the nodes to be generated, 0 without one.
  inpS_ElementParameters(const inpS_BasicElemTypeData& types, std::string_view name,
                         bool solidElementNumbering = false, int offset = 0);

  const cow_String& Name() const { return m_name; } // upper case

  int MinNodesPerElement() const { return m_minNodes; }
  int MaxNodesPerElement() const { return m_maxNodes; }
  void SetMinNodesPerElement(int nodes) { m_minNodes = nodes; }
  void SetMaxNodesPerElement(int nodes) { m_maxNodes = nodes; }

  bool HasSolidElementNumbering() const { return m_solidElementNumbering; }
  int Offset() const { return m_offset; }

  // Of so many nodes, those that are an element's topology: beams may take one more, which orients
  // the first section axis, and some carry a reference node.
  int TopologyNodes(int width) const;

  // The most nodes an element's first line may hold before it goes on; 0: no such limit.
  int FirstLineNodes() const;
  // How its data lines are to be read.
  inp_ElementForm Form() const;

  bool IsCohesiveElement() const;
  bool IsGasketElement() const;
  bool IsSubstructure() const;
  bool IsUserElement() const;
  bool IsBeamElement() const;
  bool IsOffsetElement() const; // axisymmetric solid or shell with Fourier modes
  int NodesOfPlane() const { return IsOffsetElement() ? m_minNodes : 0; } // 0: has no planes
  bool IsConnectorElement() const;
  bool IsVariableNodeElement() const;
  bool VariableTemperatureDOF() const; // temperatures through the thickness of a shell
  bool IsAxisymmetricRigidSurfaceElement() const;
  bool Is3DDragchainElement() const;
  bool CarriesReferenceNode() const; // one node more than its topology, at the end

private:
  cow_String m_name;
  int m_minNodes;
  int m_maxNodes;
  bool m_solidElementNumbering;
  int m_offset;
};
