#include "parser/inp_KeywordTable.h"
#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace {

std::span<const inp_ElementInfo> elements() {
  return inp_KeywordTable::Instance().Elements();
}

const inp_ElementInfo& find(std::string_view name) {
  const inp_ElementInfo* info = inp_KeywordTable::Instance().FindElement(name);
  if (!info) throw std::runtime_error("no element type " + std::string(name));
  return *info;
}

// FNV-1a over the names in order, each followed by a line feed; the value was taken from the
// published list of names, not from the table.
TEST(ElementTable, HoldsAllNamesInOrder) {
  ASSERT_EQ(elements().size(), 729u);
  std::uint64_t hash = 14695981039346656037u;
  const auto mix = [&hash](char c) {
    hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211u;
  };
  for (const inp_ElementInfo& info : elements()) {
    std::ranges::for_each(info.name, mix);
    mix('\n');
  }
  EXPECT_EQ(hash, 0x4b68861cc19b3491u);
  EXPECT_EQ(elements().front().name, "AC1D2");
  EXPECT_EQ(elements().back().name, "MESH_ELSPEC_V_WEDG_6");
}

TEST(ElementTable, FindsEveryNameInAnyCase) {
  for (const inp_ElementInfo& info : elements()) EXPECT_EQ(&find(info.name), &info);
  EXPECT_EQ(find("c3d20r").name, "C3D20R");
  for (std::string_view name : {"", "C3D", "C3D8X", "CGPE5", "U1"})
    EXPECT_EQ(inp_KeywordTable::Instance().FindElement(name), nullptr) << name;
}

TEST(ElementTable, NodeCounts) {
  const struct {
    std::string_view name;
    int least, most;
  } cases[] = {
      {"AC1D2", 2, 2},     {"B31", 2, 3},
      {"B32", 3, 4},       {"C3D8", 8, 8},
      {"C3D20R", 20, 20},  {"C3D27", 21, 27},
      {"C3D15V", 15, 18},  {"CAXA41", 4, 8},
      {"CAXA84", 8, 40},   {"SAXA11", 2, 4},
      {"SAXA24", 3, 15},   {"CONN3D2", 1, 2},
      {"CONN3D3", 2, 3},   {"GK3D18", 16, 18},
      {"GK3D12M", 12, 15}, {"FRAME3D", 2, 3},
      {"PIPE31", 2, 3},    {"MASS", 1, 1},
      {"S4R", 4, 4},       {"T3D2", 2, 2},
      {"CAXA8RP3", 8, 32}, {"SAXA14", 2, 10},
      {"GKPE6", 6, 8},     {"GKPS6N", 6, 8},
      {"B33H", 2, 3},      {"B21", 2, 2},
      {"PIPE22H", 3, 3},   {"PIPE32H", 3, 4},
      {"C3D27RH", 21, 27}, {"C3D15VH", 15, 18},
      {"C3D10M", 10, 10},  {"C3D4", 4, 4},
      {"AC3D5", 5, 5},     {"C3D6", 6, 6},
      {"CPEG8R", 8, 8},    {"M3D9R", 9, 9},
      {"S9R5", 9, 9},      {"SC6R", 6, 6},
      {"STRI65", 6, 6},    {"STRI35", 3, 3},
      {"SAX2T", 3, 3},     {"R3D4", 4, 4},
      {"CCL24RH", 24, 24}, {"CIN3D18R", 18, 18},
      {"CINAX5R", 5, 5},   {"COH3D8", 8, 8},
      {"COH3D8P", 12, 12}, {"DC3D20E", 20, 20},
      {"SPRING1", 1, 1},   {"SPRINGA", 2, 2},
      {"ROTARYI", 1, 1},   {"MESH_ELSPEC_V_PYR_13", 13, 13},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(find(c.name).minNodes, c.least) << c.name;
    EXPECT_EQ(find(c.name).maxNodes, c.most) << c.name;
  }
}

// A type has the nodes of its shape; the solids with optional face nodes have at most those.
TEST(ElementTable, CountsFitShapes) {
  for (const inp_ElementInfo& info : elements()) {
    EXPECT_LE(1, info.minNodes) << info.name;
    EXPECT_LE(info.minNodes, info.maxNodes) << info.name;
    if (info.shape == inp_ShapeKind::None) continue;
    const inp_Shape& shape = inp_shape(info.shape);
    EXPECT_EQ(info.dimension, shape.dimension) << info.name;
    if (info.Is(inp_ElemConnector)) continue; // the first node may be left out: it is the ground
    if (info.minNodes <= shape.nodes && info.maxNodes == shape.nodes) continue;
    EXPECT_EQ(info.minNodes, shape.nodes) << info.name;
  }
}

// What a name says of itself: nD families need n dimensions, AX means axisymmetric.
TEST(ElementTable, NamesTellSpaceAndFamily) {
  for (const inp_ElementInfo& info : elements()) {
    const auto has = [&info](std::string_view part) {
      return info.name.find(part) != std::string_view::npos;
    };
    if (has("3D") || info.dimension == 3) {
      EXPECT_EQ(info.space, 3) << info.name;
    }
    if (has("AX") || (has("2D") && !has("1D"))) {
      EXPECT_EQ(info.space, 2) << info.name;
    }
    if (has("AX")) {
      EXPECT_TRUE(info.Is(inp_ElemAxisymmetric)) << info.name;
    }
    EXPECT_EQ(info.Is(inp_ElemThreeD), info.space == 3) << info.name;
    EXPECT_EQ(info.Is(inp_ElemGasket), info.name.starts_with("GK")) << info.name;
    EXPECT_EQ(info.Is(inp_ElemConnector), info.name.starts_with("CONN")) << info.name;
    EXPECT_EQ(info.Is(inp_ElemMeshOnly), has("MESH_") || has("SURF")) << info.name;
  }
}

TEST(ElementTable, SectionDimensions) {
  using enum inp_SectionDimension;
  const std::pair<std::string_view, inp_SectionDimension> cases[] = {
      {"T3D2", Truss},    {"DC1D2", Truss},   {"CPE4", Solid2D},   {"CAX8R", Solid2D},
      {"CGAX4", Solid2D}, {"CPEG4", Solid2D}, {"CAXA41", Solid2D}, {"CINPE4", Solid2D},
      {"C3D10", Solid3D}, {"CCL12", Solid3D}, {"AC3D8", Solid3D},  {"CIN3D8", Solid3D},
      {"S4R", Unknown},   {"B31", Unknown},   {"M3D4", Unknown},   {"COH3D8", Unknown},
      {"GK3D8", Unknown}, {"SC8R", Unknown},  {"MASS", Unknown},   {"EC3D8R", Unknown},
  };
  for (const auto& [name, section] : cases) EXPECT_EQ(find(name).section, section) << name;
}

TEST(ElementTable, Freedoms) {
  EXPECT_TRUE(find("C3D8T").Is(inp_ElemThermal) && find("C3D8T").Is(inp_ElemDisplacement));
  EXPECT_TRUE(find("DC3D8").Is(inp_ElemThermal) && !find("DC3D8").Is(inp_ElemDisplacement));
  EXPECT_TRUE(find("C3D8E").Is(inp_ElemElectromagnetic) && !find("C3D8E").Is(inp_ElemThermal));
  EXPECT_TRUE(find("Q3D8").Is(inp_ElemElectromagnetic) && find("Q3D8").Is(inp_ElemThermal));
  EXPECT_TRUE(find("AC2D4").Is(inp_ElemAcoustic) && !find("AC2D4").Is(inp_ElemDisplacement));
  EXPECT_FALSE(find("CPE4P").Is(inp_ElemThermal));
}

} // namespace
