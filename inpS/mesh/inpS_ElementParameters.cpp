#include "inpS/mesh/inpS_ElementParameters.h"

#include "inpS/mesh/inpS_BasicElemTypeData.h"
#include "parser/inp_NameIndex.h"
#include <algorithm>
#include <iterator>

namespace {

// A gasket of 18 nodes with its midside nodes fills two lines of nine.
constexpr int gasketFirstLine = 9;

constexpr std::string_view shellsWithTemperatures[] = {
    "DS3", "DS4", "DS6", "DS8", "S3T", "S3RT", "S4T", "S4RT", "S8RT", "DSAX1", "DSAX2", "SAX2T",
};

} // namespace

inpS_ElementParameters::inpS_ElementParameters(const inpS_BasicElemTypeData& types,
                                               std::string_view name, bool solidElementNumbering,
                                               int offset)
    : m_name(inp_FoldedName(name).Text()), m_minNodes(types.MinNodesPerElement(m_name)),
      m_maxNodes(types.MaxNodesPerElement(m_name)), m_solidElementNumbering(solidElementNumbering),
      m_offset(offset) {}

int inpS_ElementParameters::FirstLineNodes() const {
  return m_name == "GK3D18" || m_name == "GK3D18N" ? gasketFirstLine : 0;
}

inp_ElementForm inpS_ElementParameters::Form() const {
  inp_ElementForm form;
  form.maxNodes = m_maxNodes;
  form.extraFields = CarriesReferenceNode() ? 1 : 0;
  form.firstLineNodes = FirstLineNodes();
  return form;
}

bool inpS_ElementParameters::IsCohesiveElement() const {
  return m_name.starts_with("COH");
}

bool inpS_ElementParameters::IsGasketElement() const {
  return m_name.starts_with("GK");
}

bool inpS_ElementParameters::IsSubstructure() const {
  return m_name.starts_with("Z");
}

bool inpS_ElementParameters::IsUserElement() const {
  return m_name.starts_with("U") || m_name.starts_with("VU");
}

bool inpS_ElementParameters::IsBeamElement() const {
  return m_name.starts_with("B") || m_name.starts_with("PIPE") || m_name.starts_with("FRAME");
}

bool inpS_ElementParameters::IsOffsetElement() const {
  return m_name.size() >= 4 && m_name.compare(1, 3, "AXA") == 0;
}

bool inpS_ElementParameters::IsConnectorElement() const {
  return m_name.starts_with("CONN");
}

bool inpS_ElementParameters::IsVariableNodeElement() const {
  return m_name.starts_with("C3D27") || m_name.starts_with("C3D15V");
}

bool inpS_ElementParameters::VariableTemperatureDOF() const {
  return std::find(std::begin(shellsWithTemperatures), std::end(shellsWithTemperatures), m_name) !=
         std::end(shellsWithTemperatures);
}

bool inpS_ElementParameters::IsAxisymmetricRigidSurfaceElement() const {
  return m_name == "IRS21A" || m_name == "IRS22A";
}

bool inpS_ElementParameters::Is3DDragchainElement() const {
  return m_name == "DRAG3D";
}

bool inpS_ElementParameters::CarriesReferenceNode() const {
  return IsAxisymmetricRigidSurfaceElement() || Is3DDragchainElement();
}

int inpS_ElementParameters::TopologyNodes(int width) const {
  const bool mayOrient = IsBeamElement() && m_maxNodes == m_minNodes + 1;
  return CarriesReferenceNode() || mayOrient ? m_minNodes : std::max(width, m_minNodes);
}
