#include "host/inps_ExportShapes.h"

#include "base/cow_Value.h"
#include <algorithm>
#include <sstream>

namespace {

constexpr std::size_t shapeCount = 1 // that without topology
#define INP_SHAPE(...) +1
#include "parser/inp_shapes.def"
    ;

constexpr uint8_t quadraticLinearQuad = 30;

using Recipes = cow_List<inps_CellRecipe>;
using RecipesByShape = std::array<Recipes, shapeCount>;

inps_CellRecipe readRecipe(uint8_t type, const char* nodes) {
  inps_CellRecipe recipe;
  recipe.type = type;
  std::istringstream text(nodes);
  for (int node = 0; text >> node;)
    recipe.nodes[static_cast<std::size_t>(recipe.size++)] = static_cast<uint8_t>(node - 1);
  return recipe;
}

RecipesByShape readTable() {
  RecipesByShape table;
#define INPS_VTK_CELL(Shape, Type, Nodes)                                                          \
  table[static_cast<std::size_t>(inp_ShapeKind::Shape)].push_back(readRecipe(Type, Nodes));
#include "host/inps_vtkCells.def"
  return table;
}

// The VTK type of a face or edge with so many nodes; 0 when there is none.
uint8_t faceType(int corners, std::size_t nodes) {
  struct Row {
    int corners;
    std::size_t nodes;
    uint8_t type;
  };
  constexpr Row rows[] = {{2, 2, 3}, {2, 3, 21}, {3, 3, 5},  {3, 6, 22},
                          {4, 4, 9}, {4, 8, 23}, {4, 9, 28}, {4, 6, quadraticLinearQuad}};
  for (const Row& row : rows)
    if (row.corners == corners && row.nodes == nodes) return row.type;
  return 0;
}

inps_CellRecipe recipeOf(uint8_t type, std::span<const unsigned char> localNodes) {
  inps_CellRecipe recipe;
  recipe.type = type;
  recipe.size = static_cast<int>(localNodes.size());
  for (std::size_t i = 0; i < localNodes.size(); ++i)
    recipe.nodes[i] = static_cast<uint8_t>(localNodes[i] - 1);
  return recipe;
}

// Faces turn into their volume. Backwards from the first corner: corners 1 4 3 2 have the midside
// nodes of the edges 4, 3, 2, 1.
void turnOutwards(inps_CellRecipe& recipe, int corners) {
  const auto first = recipe.nodes.begin();
  std::reverse(first + 1, first + corners);
  if (recipe.size >= 2 * corners) std::reverse(first + corners, first + 2 * corners);
}

// The cell type with two midside nodes, on its first and third edge, which stay there.
void turnQuadraticLinear(inps_CellRecipe& recipe) {
  std::swap(recipe.nodes[0], recipe.nodes[1]);
  std::swap(recipe.nodes[2], recipe.nodes[3]);
}

// Two midside nodes on opposite edges: which edges tells the shape. VTK wants them on the first and
// the third.
bool beginsWithMidside(const inp_Shape& shape, std::span<const unsigned char> face) {
  for (const inp_ShapeList& edge : shape.edges) {
    const bool joins = std::count(edge.nodes.begin(), edge.nodes.end(), face[0]) +
                           std::count(edge.nodes.begin(), edge.nodes.end(), face[1]) ==
                       2;
    if (joins) return edge.nodes.size() == 3;
  }
  return false;
}

Recipes makeFaceRecipes(const inp_Shape& shape, const inp_ShapeList& face) {
  Recipes recipes;
  const bool isVolume = shape.dimension == 3;
  const uint8_t whole = faceType(face.corners, face.nodes.size());
  if (whole != 0) {
    inps_CellRecipe recipe = recipeOf(whole, face.nodes);
    if (whole == quadraticLinearQuad) {
      const auto n = face.nodes;
      const unsigned char from2[] = {n[1], n[2], n[3], n[0], n[4], n[5]};
      const unsigned char from1[] = {n[0], n[1], n[2], n[3], n[4], n[5]};
      const std::span<const unsigned char> ordered =
          beginsWithMidside(shape, face.nodes) ? std::span(from1) : std::span(from2);
      recipe = recipeOf(whole, ordered);
      turnQuadraticLinear(recipe);
    } else if (isVolume) {
      turnOutwards(recipe, face.corners);
    }
    recipes.push_back(recipe);
  }
  const auto corners = face.nodes.first(static_cast<std::size_t>(face.corners));
  if (face.nodes.size() > corners.size() && faceType(face.corners, corners.size()) != 0) {
    inps_CellRecipe recipe = recipeOf(faceType(face.corners, corners.size()), corners);
    if (isVolume) turnOutwards(recipe, face.corners);
    recipes.push_back(recipe);
  }
  return recipes;
}

// A whole line or surface as a face.
Recipes makeSide(const inp_Shape& shape, bool negative) {
  Recipes recipes;
  if (shape.dimension != 1 && shape.dimension != 2) return recipes;
  for (inps_CellRecipe recipe : inps_cellRecipes(shape.kind)) {
    if (negative && recipe.type == quadraticLinearQuad)
      turnQuadraticLinear(recipe);
    else if (negative && shape.dimension == 1)
      std::swap(recipe.nodes[0], recipe.nodes[1]);
    else if (negative)
      turnOutwards(recipe, shape.corners);
    recipes.push_back(recipe);
  }
  return recipes;
}

Recipes makeEnd(const inp_Shape& shape, bool second) {
  if (shape.dimension != 1) return {};
  const auto node = static_cast<unsigned char>(second ? shape.nodes : 1);
  return {recipeOf(inps_VtkVertex, std::span(&node, 1))};
}

// Numbered faces of a volume are its S faces; those of a plane shape its edges, be they called S or
// E.
Recipes makeFace(const inp_Shape& shape, eds_SurfaceFace face) {
  using Face = eds_SurfaceFace;
  if (face == Face::Whole || face == Face::SPos) return makeSide(shape, false);
  if (face == Face::SNeg) return makeSide(shape, true);
  if (face == Face::End1 || face == Face::End2) return makeEnd(shape, face == Face::End2);
  const bool isS = face >= Face::S1 && face <= Face::S8;
  const bool isE = face >= Face::E1 && face <= Face::E4 && shape.dimension == 2;
  if (!isS && !isE) return {};
  const auto number =
      static_cast<std::size_t>(face) - static_cast<std::size_t>(isS ? Face::S1 : Face::E1);
  return number < shape.faces.size() ? makeFaceRecipes(shape, shape.faces[number]) : Recipes();
}

using RecipesByFace = std::array<Recipes, eds_surfaceFaceCount>;

std::array<RecipesByFace, shapeCount> makeAllFaces() {
  std::array<RecipesByFace, shapeCount> all;
  for (std::size_t kind = 0; kind < shapeCount; ++kind)
    for (std::size_t face = 0; face < all[kind].size(); ++face)
      all[kind][face] =
          makeFace(inp_shape(static_cast<inp_ShapeKind>(kind)), static_cast<eds_SurfaceFace>(face));
  return all;
}

} // namespace

std::span<const inps_CellRecipe> inps_cellRecipes(inp_ShapeKind shape) {
  static const RecipesByShape table = readTable();
  return table[static_cast<std::size_t>(shape)];
}

std::span<const inps_CellRecipe> inps_faceRecipes(inp_ShapeKind shape, eds_SurfaceFace face) {
  static const auto table = makeAllFaces();
  return table[static_cast<std::size_t>(shape)][static_cast<std::size_t>(face)];
}

inps_CellRecipe inps_pointsRecipe(int nodesPresent) {
  constexpr uint8_t types[] = {inps_VtkEmpty, inps_VtkVertex, inps_VtkLine};
  inps_CellRecipe recipe;
  recipe.type = nodesPresent < 3 ? types[nodesPresent] : uint8_t{inps_VtkPolyVertex};
  recipe.size = nodesPresent;
  recipe.anyPresent = true;
  return recipe;
}

const char* inps_vtkTypeName(uint8_t type) {
  struct Row {
    uint8_t type;
    const char* name;
  };
  constexpr Row rows[] = {{0, "nothing"},
                          {1, "points"},
                          {2, "points"},
                          {3, "lines"},
                          {5, "triangles"},
                          {9, "quadrilaterals"},
                          {10, "tetrahedra"},
                          {12, "hexahedra"},
                          {13, "wedges"},
                          {14, "pyramids"},
                          {23, "quadratic quadrilaterals"},
                          {25, "quadratic hexahedra"},
                          {26, "quadratic wedges"}};
  for (const Row& row : rows)
    if (row.type == type) return row.name;
  return "other cells";
}
