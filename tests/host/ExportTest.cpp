#include "base/utl_BlockSize.h"
#include "database/KvoObjDocument.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "host/inps_ExportShapes.h"
#include "tests/host/ProgramRun.h"
#include <algorithm>
#include <cstring>
#include <lz4.h>
#include <map>
#include <set>
#include <zlib.h>

namespace {

using Export = ProgramTest;

constexpr inp_ShapeKind shapes[] = {
#define INP_SHAPE(Name, ...) inp_ShapeKind::Name,
#include "parser/inp_shapes.def"
};

std::uint64_t wordOf(std::string_view data, std::size_t at) {
  std::uint64_t value = 0;
  std::memcpy(&value, data.substr(8 * at, 8).data(), 8);
  return value;
}

// The bytes of an array that begins at data. Plain: their number, then they. Else in blocks: their
// number, the size of each, the size of the last (0: as the others), their compressed sizes, the
// blocks.
cow_String unpacked(std::string_view data, const cow_String& how) {
  if (how == "none") return cow_String(data.substr(8, wordOf(data, 0)));
  const std::size_t blocks = wordOf(data, 0);
  std::size_t at = 8 * (3 + blocks);
  cow_String bytes;
  for (std::size_t block = 0; block < blocks; ++block) {
    const bool isShort = block + 1 == blocks && wordOf(data, 2) != 0;
    cow_String piece(wordOf(data, isShort ? 2 : 1), '\0');
    const std::string_view packed = data.substr(at, wordOf(data, 3 + block));
    if (how == "zlib") {
      uLongf size = piece.size();
      EXPECT_EQ(uncompress(reinterpret_cast<Bytef*>(piece.data()), &size,
                           reinterpret_cast<const Bytef*>(packed.data()), packed.size()),
                Z_OK);
      EXPECT_EQ(size, piece.size());
    } else {
      EXPECT_EQ(LZ4_decompress_safe(packed.data(), piece.data(), static_cast<int>(packed.size()),
                                    static_cast<int>(piece.size())),
                static_cast<int>(piece.size()));
    }
    bytes += piece;
    at += packed.size();
  }
  return bytes;
}

// All arrays of all files of an export, by file and declaration without its offset.
std::map<cow_String, cow_String> arraysOf(const std::filesystem::path& folder,
                                          const cow_String& how) {
  std::map<cow_String, cow_String> arrays;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.path().extension() != ".vtu") continue;
    const cow_String file = readFile(entry.path());
    const std::string_view data = std::string_view(file).substr(file.find("\n   _") + 5);
    cow_String section;
    std::istringstream lines(file.substr(0, file.find("<AppendedData")));
    for (cow_String line; std::getline(lines, line);) {
      const std::size_t offset = line.find(" offset=\"");
      if (offset == cow_String::npos)
        section = line;
      else
        arrays[utl_pathText(entry.path().filename()) + section + line.substr(0, offset)] =
            unpacked(data.substr(std::stoull(line.substr(offset + 9))), how);
    }
  }
  return arrays;
}

// What the files hold is read by VTK in tests/export; here is what goes wrong, and what the size of
// blocks must not change.

TEST_F(Export, IsTheSameInBlocksOfAnySizeAndCompression) {
  const auto examples = std::filesystem::path(INPS_TESTS_DIR).parent_path() / "examples";
  for (const char* name : {"assembly.inp", "plate.inp", "gearbox/gearbox.inp"}) {
    std::map<cow_String, cow_String> usual;
    const auto check = [&](std::size_t limit, const cow_String& how) {
      const TemporaryFolder folder;
      utl_limitBlockSize(limit);
      const ProgramRun run({"export", utl_pathText(examples / name), utl_pathText(folder / "m.vtu"),
                            "--sets", "--surfaces", "--quiet", "--compress", how});
      utl_limitBlockSize(0);
      ASSERT_EQ(run.exitCode, 0) << run.err;
      if (usual.empty()) usual = arraysOf(folder.Path(), how);
      EXPECT_GT(usual.size(), 20u) << name;
      EXPECT_EQ(arraysOf(folder.Path(), how) == usual, true) << name << how << limit;
    };
    for (const std::size_t limit : {0, 1, 5, 64}) check(limit, "lz4");
    for (const char* how : {"zlib", "none"})
      for (const std::size_t limit : {0, 5}) check(limit, how);
  }
}

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

// Beside MESH.vtu goes only what an export made.
TEST_F(Export, ReplacesNobodysOwnFiles) {
  const cow_String deck = Deck("m.inp", oneBrick);
  const cow_List<cow_String> words = {"export", deck, File("m.vtu"), "--sets", "--force", "-q"};
  ASSERT_EQ(ProgramRun(words).exitCode, 0);
  ASSERT_TRUE(Exists("m/elements-1-SOLID.vtu"));
  EXPECT_EQ(ProgramRun(words).exitCode, 0); // over its own
  const auto refused = [&](std::string_view reason) {
    const ProgramRun run(words);
    EXPECT_EQ(run.exitCode, 3) << reason;
    EXPECT_TRUE(run.Says(reason)) << run.err;
    EXPECT_TRUE(Exists("m/elements-1-SOLID.vtu")) << reason;
  };
  const cow_List<const char*> names = {"result.vtu",        "elements-SOLID.vtu", "nodes-2.vtu",
                                       "elements-2-A.vtu2", "nodes-1-a b.vtu",    "edges-1-A.vtu"};
  for (const cow_String name : names) {
    writeFile(m_folder / "m" / name, "mine");
    refused("it holds more than the blocks of an export: " + name);
    EXPECT_EQ(readFile(m_folder / "m" / name), "mine");
    std::filesystem::remove(m_folder / "m" / name);
  }
  const cow_String list = readFile(m_folder / "m.vtm");
  writeFile(m_folder / "m.vtm", "<VTKFile type=\"vtkMultiBlockDataSet\"/>");
  refused("m.vtm\": it is not the list of an export");
  writeFile(m_folder / "m.vtm", list);
#ifndef _WIN32
  writeFile(m_folder / "mine.vtu", "mine");
  std::filesystem::create_symlink("../mine.vtu", m_folder / "m/nodes-9-A.vtu");
  refused("it holds more than the blocks of an export: nodes-9-A.vtu");
  std::filesystem::remove(m_folder / "m/nodes-9-A.vtu");
  std::filesystem::rename(m_folder / "m", m_folder / "other");
  std::filesystem::create_directory_symlink("other", m_folder / "m");
  refused("m\": it is a link");
  std::filesystem::remove(m_folder / "m");
  std::filesystem::rename(m_folder / "other", m_folder / "m");
  std::filesystem::rename(m_folder / "m.vtm", m_folder / "real.vtm");
  std::filesystem::create_symlink("real.vtm", m_folder / "m.vtm");
  refused("m.vtm\": it is a link");
  EXPECT_EQ(readFile(m_folder / "real.vtm"), list);
  std::filesystem::remove(m_folder / "m.vtm");
#endif
  EXPECT_EQ(ProgramRun(words).exitCode, 0);
}

// A deck's include that lies where the blocks go.
TEST_F(Export, KeepsTheFolderThatIsRead) {
  std::filesystem::create_directory(m_folder / "m");
  Deck("m/nodes-1-MESH.vtu", oneBrick);
  const cow_String deck = Deck("m.inp", "*INCLUDE, INPUT=m/nodes-1-MESH.vtu\n");
  const ProgramRun run({"export", deck, File("m.vtu"), "--sets", "--force"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_TRUE(run.Says("which is read, lies in it")) << run.err;
  EXPECT_EQ(readFile(m_folder / "m/nodes-1-MESH.vtu"), oneBrick);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_folder.Path()), {}), 2);
}

TEST_F(Export, WrongWordsAndPlaces) {
  const cow_String deck = Deck("m.inp", oneBrick);
  EXPECT_EQ(ProgramRun({"export", deck, File("m.stl")}).exitCode, 2);
  EXPECT_EQ(ProgramRun({"export", deck}).exitCode, 2);
  const ProgramRun how({"export", deck, File("m.vtu"), "--compress", "LZMA"});
  EXPECT_EQ(how.exitCode, 2);
  EXPECT_TRUE(how.Says("is lz4, zlib or none, not \"LZMA\"")) << how.err;
  for (const char* step : {"0", "1x", "-1", "99999999999"}) {
    const ProgramRun run({"export", deck, File("m.vtu"), cow_String("--step=") + step});
    EXPECT_EQ(run.exitCode, 2) << step;
    EXPECT_TRUE(run.Says("needs the number of a step, from 1 on")) << run.err;
  }
  EXPECT_EQ(ProgramRun({"export", deck, "-", "--step", "1"}).exitCode, 2);
  const ProgramRun noStep({"export", deck, File("m.vtu"), "--step", "1"});
  EXPECT_EQ(noStep.exitCode, 2);
  EXPECT_TRUE(noStep.Says("there is no step 1: the model has no steps")) << noStep.err;
  const cow_String two = cow_String(oneBrick) + "*STEP\n*STATIC\n*END STEP\n";
  const ProgramRun third({"export", Deck("s.inp", two + two.substr(two.find("*STEP"))),
                          File("m.vtu"), "--step", "3", "--json"});
  EXPECT_EQ(third.exitCode, 2);
  EXPECT_NE(third.out.find("the model has 2 steps"), cow_String::npos) << third.out;
  EXPECT_FALSE(Exists("m.vtu") || Exists("m.vtm") || Exists("m"));
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

// Conditions that another program made are told, where they are in force.
TEST_F(Export, TellsOfExcitationsThatNoKeywordGives) {
  const cow_String step = "*STEP\n*STATIC\n*END STEP\n";
  ASSERT_EQ(
      ProgramRun({"convert", Deck("m.inp", oneBrick + step + step + step), "-o", File("m.sim")})
          .exitCode,
      0);
  {
    KvoObjDocument document = KvoObjDocument::Open(m_folder / "m.sim", KvoAccess::ReadWrite);
    const KvoSimPosition model = document.GetModel().Position();
    const KvoSimPosition excitation = model.CreateDataRecord(eds_RecordKind::Excitation);
    excitation.DataRecord().SetString(eds_Excitation_Name, "Excitation_0");
    KvoSimDataRecord relay = model.CreateDataRecord(eds_RecordKind::Relay).DataRecord();
    relay.SetReference(eds_Relay_Excitation, excitation);
    relay.SetInt(eds_Relay_FirstStep, 2);
    relay.SetInt(eds_Relay_LastStep, 2);
    document.Finish();
  }
  for (const char* number : {"1", "2", "3"}) {
    const ProgramRun run({"export", File("m.sim"), File("m.vtu"), "--step", number, "--force"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.Says("excitation Excitation_0, which no keyword gives, acts in step 2"),
              number[0] == '2')
        << run.err;
  }
}

TEST_F(Export, PartsWithoutInstancesHaveNoPlace) {
  const ProgramRun run(
      {"export", Deck("p.inp", "*PART, NAME=P\n*NODE\n1, 0., 0.\n*END PART\n"), File("p.vtu")});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_TRUE(run.Says("no instances")) << run.err;
}

} // namespace
