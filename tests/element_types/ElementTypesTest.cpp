#include "inpS/mesh/inpS_BasicElemTypeData.h"
#include "inpS/mesh/inpS_ElementParameters.h"
#include <gtest/gtest.h>
#include <string>

namespace {

TEST(BasicElemTypeData, KnowsSupportedAndObsoleteTypes) {
  const inpS_BasicElemTypeData types;
  EXPECT_TRUE(types.IsSupported("C3D8"));
  EXPECT_TRUE(types.IsSupported("c3d8"));
  EXPECT_FALSE(types.IsSupported("C3D9"));
  for (std::string_view name : {"CGPE5", "cgpe6ih", "CGPE10RH", "CGPE8"}) {
    EXPECT_TRUE(types.IsObsolete(name)) << name;
    EXPECT_FALSE(types.IsSupported(name)) << name;
  }
  EXPECT_FALSE(types.IsObsolete("CGPE"));
  EXPECT_FALSE(types.IsObsolete("CPE8"));
}

TEST(BasicElemTypeData, CountsNodes) {
  inpS_BasicElemTypeData types;
  EXPECT_EQ(types.MinNodesPerElement("C3D27"), 21);
  EXPECT_EQ(types.MaxNodesPerElement("c3d27"), 27);
  EXPECT_EQ(types.MinNodesPerElement("U7"), 0);
  EXPECT_EQ(types.MaxNodesPerElement("U7"), 100000);

  types.UpdateUserElemType("u7", 5);
  types.UpdateUserElemType("U7", 6); // the first definition stays
  EXPECT_EQ(types.MinNodesPerElement("U7"), 5);
  EXPECT_EQ(types.MaxNodesPerElement("U7"), 5);
  types.UpdateUserElemType("C3D8", 3); // no user type hides one of the table
  EXPECT_EQ(types.MaxNodesPerElement("C3D8"), 8);
}

TEST(ElementParameters, TakesNameCountsAndKeyword) {
  const inpS_BasicElemTypeData types;
  inpS_ElementParameters parameters(types, "gk3d18n", true, 1000);
  EXPECT_EQ(parameters.Name(), "GK3D18N");
  EXPECT_EQ(parameters.MinNodesPerElement(), 16);
  EXPECT_EQ(parameters.MaxNodesPerElement(), 18);
  EXPECT_EQ(parameters.FirstLineNodes(), 9);
  EXPECT_TRUE(parameters.HasSolidElementNumbering());
  EXPECT_EQ(parameters.Offset(), 1000);
  parameters.SetMinNodesPerElement(8);
  parameters.SetMaxNodesPerElement(9);
  EXPECT_EQ(parameters.MinNodesPerElement(), 8);
  EXPECT_EQ(parameters.MaxNodesPerElement(), 9);
  EXPECT_EQ(inpS_ElementParameters(types, "GK3D8").FirstLineNodes(), 0);
}

// The families a name tells, one letter each.
std::string familiesOf(std::string_view name) {
  const inpS_BasicElemTypeData types;
  const inpS_ElementParameters type(types, name);
  std::string families;
  if (type.IsCohesiveElement()) families += 'h';
  if (type.IsGasketElement()) families += 'g';
  if (type.IsSubstructure()) families += 'z';
  if (type.IsUserElement()) families += 'u';
  if (type.IsBeamElement()) families += 'b';
  if (type.IsOffsetElement()) families += 'o';
  if (type.IsConnectorElement()) families += 'c';
  if (type.IsVariableNodeElement()) families += 'v';
  if (type.VariableTemperatureDOF()) families += 't';
  if (type.IsAxisymmetricRigidSurfaceElement()) families += 'r';
  if (type.Is3DDragchainElement()) families += 'd';
  return families;
}

TEST(ElementParameters, ClassifiesByName) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"coh3d8", "h"},  {"COD3D6P", ""}, {"GKAX2", "g"},  {"Z101", "z"},    {"U12", "u"},
      {"VU3", "u"},     {"V3", ""},      {"B31OSH", "b"}, {"PIPE21", "b"},  {"FRAME2D", "b"},
      {"CAXA41", "o"},  {"SAXA24", "o"}, {"SAX1", ""},    {"CONN2D2", "c"}, {"C3D27RH", "v"},
      {"C3D15VH", "v"}, {"C3D15", ""},   {"s4rt", "t"},   {"S4R", ""},      {"SAX2T", "t"},
      {"DS8", "t"},     {"SC8RT", ""},   {"IRS21A", "r"}, {"IRS21", ""},    {"DRAG3D", "d"},
      {"DRAG2D", ""},   {"", ""},        {"AXA", ""},
  };
  for (const auto& [name, families] : cases) EXPECT_EQ(familiesOf(name), families) << name;
}

} // namespace
