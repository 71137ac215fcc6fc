#include "host/inps_ExportShapes.h"
#include "tests/host/ProgramRun.h"
#include <algorithm>
#include <set>

namespace {

using Export = ProgramTest;

constexpr inp_ShapeKind shapes[] = {
#define INP_SHAPE(Name, ...) inp_ShapeKind::Name,
#include "parser/inp_shapes.def"
};

// What the files hold is read by VTK in tests/export; here is what goes wrong.

TEST_F(Export, EveryShapeHasACellOfItsOwnNodes) {
  for (const inp_ShapeKind kind : shapes) {
    const inp_Shape& shape = inp_shape(kind);
    const auto recipes = inps_cellRecipes(kind);
    ASSERT_FALSE(recipes.empty()) << shape.name;
    // The last one does with the corners, so that absent midside nodes leave a cell.
    EXPECT_EQ(recipes.back().size, shape.corners) << shape.name;
    for (const inps_CellRecipe& recipe : recipes) {
      const std::set<int> nodes(recipe.Nodes().begin(), recipe.Nodes().end());
      EXPECT_EQ(static_cast<int>(nodes.size()), recipe.size) << shape.name;
      EXPECT_LT(*nodes.rbegin(), shape.nodes) << shape.name;
    }
    for (std::size_t face = 0; face < std::min<std::size_t>(shape.faces.size(), 6); ++face)
      EXPECT_FALSE(
          inps_faceRecipes(kind, static_cast<eds_SurfaceFace>(static_cast<int>(face) + 1)).empty())
          << shape.name << " face " << face + 1;
  }
}

TEST_F(Export, ReplacesByForceOnlyAndOnlyWhatIsFinished) {
  const cow_String deck = Deck("m.inp", oneBrick);
  ASSERT_EQ(ProgramRun({"convert", deck, "-o", File("m.sim")}).exitCode, 0);
  writeFile(m_folder / "m.vtu", "mine");
  const ProgramRun refused({"export", File("m.sim"), File("m.vtu")});
  EXPECT_EQ(refused.exitCode, 3);
  EXPECT_TRUE(refused.Says("it exists; --force replaces it")) << refused.err;
  EXPECT_EQ(ProgramRun({"export", File("none.sim"), File("m.vtu"), "--force"}).exitCode, 3);
  EXPECT_EQ(readFile(m_folder / "m.vtu"), "mine");
  EXPECT_EQ(ProgramRun({"export", File("m.sim"), File("m.vtu"), "--force"}).exitCode, 0);
  EXPECT_TRUE(readFile(m_folder / "m.vtu").starts_with("<?xml"));
  // From the deck itself, the same file.
  EXPECT_EQ(ProgramRun({"export", deck, File("d.vtu"), "--quiet"}).out, "");
  EXPECT_EQ(readFile(m_folder / "m.vtu"), readFile(m_folder / "d.vtu"));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_folder.Path()), {}), 4);
}

TEST_F(Export, WrongWordsAndPlaces) {
  const cow_String deck = Deck("m.inp", oneBrick);
  EXPECT_EQ(ProgramRun({"export", deck, File("m.stl")}).exitCode, 2);
  EXPECT_EQ(ProgramRun({"export", deck}).exitCode, 2);
  EXPECT_EQ(ProgramRun({"export", deck, File("none/m.vtu")}).exitCode, 3);
  std::filesystem::create_directory(m_folder / "f.vtu");
  const ProgramRun folder({"export", deck, File("f.vtu"), "--force"});
  EXPECT_EQ(folder.exitCode, 3);
  EXPECT_TRUE(folder.Says("it is a folder")) << folder.err;
  const ProgramRun faulty(
      {"export", Deck("bad.inp", cow_String(oneBrick) + "*NODE\n9, zero\n"), File("bad.vtu")});
  EXPECT_EQ(faulty.exitCode, 1);
  EXPECT_TRUE(Exists("bad.vtu")) << faulty.err;
}

TEST_F(Export, PartsWithoutInstancesHaveNoPlace) {
  const ProgramRun run(
      {"export", Deck("p.inp", "*PART, NAME=P\n*NODE\n1, 0., 0.\n*END PART\n"), File("p.vtu")});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_TRUE(run.Says("no instances")) << run.err;
}

} // namespace
