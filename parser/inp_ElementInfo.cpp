#include "parser/inp_ElementInfo.h"

namespace {

// The table's short names of the flags.
constexpr unsigned None = inp_ElemNone;
constexpr unsigned Beam = inp_ElemBeam;
constexpr unsigned Shell = inp_ElemShell;
constexpr unsigned Membrane = inp_ElemMembrane;
constexpr unsigned Truss = inp_ElemTruss;
constexpr unsigned Solid = inp_ElemSolid;
constexpr unsigned Axisym = inp_ElemAxisymmetric;
constexpr unsigned Gasket = inp_ElemGasket;
constexpr unsigned Cohesive = inp_ElemCohesive;
constexpr unsigned Connector = inp_ElemConnector;
constexpr unsigned Acoustic = inp_ElemAcoustic;
constexpr unsigned Infinite = inp_ElemInfinite;
constexpr unsigned Fluid = inp_ElemFluid;
constexpr unsigned Rigid = inp_ElemRigid;
constexpr unsigned Spring = inp_ElemSpring;
constexpr unsigned Mass = inp_ElemMass;
constexpr unsigned Contact = inp_ElemContact;
constexpr unsigned MeshOnly = inp_ElemMeshOnly;
constexpr unsigned Electric = inp_ElemElectromagnetic;
constexpr unsigned Thermal = inp_ElemThermal;
constexpr unsigned Disp = inp_ElemDisplacement;
constexpr unsigned Coupling = inp_ElemCoupling;
constexpr unsigned Explicit3D = inp_ElemThreeDExplicit;

constexpr int dimensionOf(inp_ShapeKind kind) {
  constexpr int dimensions[] = {
      0,
#define INP_SHAPE(Name, Dimension, ...) Dimension,
#include "parser/inp_shapes.def"
  };
  return dimensions[static_cast<int>(kind)];
}

constexpr unsigned spaceFlag(int space) {
  return space == 3 ? inp_ElemThreeD : inp_ElemNone;
}

constexpr inp_ElementInfo elements[] = {
#define INP_ELEMENT(Name, Least, Most, Shape, Space, Section, Flags)                               \
  {#Name,                                                                                          \
   Least,                                                                                          \
   Most,                                                                                           \
   inp_ShapeKind::Shape,                                                                           \
   Space,                                                                                          \
   dimensionOf(inp_ShapeKind::Shape),                                                              \
   inp_SectionDimension::Section,                                                                  \
   (Flags) | spaceFlag(Space)},
#include "parser/inp_elements.def"
};

} // namespace

std::span<const inp_ElementInfo> inp_elementTable() {
  return elements;
}
