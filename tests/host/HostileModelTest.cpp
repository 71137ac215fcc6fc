#include "base/utl_Exception.h"
#include "database/KvoObjDocument.h"
#include "database/KvoObjMesh.h"
#include "database/KvoSimTransaction.h"
#include "database/eds_Array.h"
#include "database/engine/eds_Engine.h"
#include "tests/host/ProgramRun.h"
#include <array>
#include <span>

// Models whose records hold what no writer of ours puts there: every command that reads them
// answers or refuses, and none of them is surprised.

namespace {

class HostileModel : public ProgramTest {
protected:
  void SetUp() override {
    const char* deck = INPS_TESTS_DIR "/faults/model.inp";
    ASSERT_EQ(ProgramRun({"convert", deck, "-o", File("good.sim"), "-q"}).exitCode, 0);
    m_good = readFile(m_folder / "good.sim");
  }

  // As somebody does who knows the file: checksums and all.
  bool Change(const cow_List<cow_String>& statements) const {
    writeFile(m_folder / "bad.sim", m_good);
    try {
      eds_Engine engine;
      engine.Open(m_folder / "bad.sim", eds_OpenMode::Durable);
      engine.Execute("PRAGMA journal_mode = OFF");
      engine.Execute("PRAGMA synchronous = OFF");
      for (const cow_String& statement : statements) engine.Execute(statement.c_str());
    } catch (const utl_Exception&) {
      return false; // not even the engine takes it
    }
    return true;
  }

  void ReadByAll(const cow_String& what) const {
    const cow_String bad = File("bad.sim");
    for (const cow_List<cow_String>& words :
         {cow_List<cow_String>{"check", bad},
          {"info", bad, "--json"},
          {"dump", bad},
          {"write", bad, "-o", File("out.inp"), "--force"},
          {"diff", File("good.sim"), bad},
          {"info", bad, "--materials"},
          {"export", bad, File("out.vtu"), "--sets", "--surfaces", "--force", "-q"},
          {"plot", bad, "-o", File("out.html"), "--force"}}) {
      const ProgramRun run(words);
      const bool ended = run.exitCode == 0 || run.exitCode == 1 || run.exitCode == 3;
      EXPECT_TRUE(ended && !run.Says("internal error") && !run.Says("out of memory"))
          << words.front() << " ended with " << run.exitCode << " after " << what << '\n'
          << run.err;
    }
  }

  cow_String m_good;
};

TEST_F(HostileModel, IsRefusedInWords) {
  for (const char* statement : {
           "UPDATE instance SET first_node = 2147483647 WHERE id = 1",
           "UPDATE instance SET element_count = -1 WHERE id = 2",
           "UPDATE node_block SET first = -1 WHERE id = 3",
           "UPDATE node_block SET first = -9223372036854775808 WHERE id = 3",
           "UPDATE node_block SET count = 4611686018427387904 WHERE id = 1",
           "UPDATE node_block SET coordinates = NULL WHERE id = 1",
           "UPDATE node_block SET normal_ordinals = 2 WHERE id = 1",
           "UPDATE node_block SET generated = -1 WHERE id = 1",
           "UPDATE element_block SET spec = NULL WHERE id = 1",
           "UPDATE element_block SET node_base = 2147483648 WHERE id = 3",
           "DELETE FROM label_space WHERE count > 0",
           "UPDATE label_space SET kind = 1 - kind",
           "UPDATE link SET target_kind = 40 WHERE text_key = 'BRICK-1'",
           "UPDATE link SET target_kind = NULL, target = NULL WHERE text_key = 'TOP'",
           "UPDATE link SET owner_kind = 1 WHERE target_kind = 14",
           "UPDATE link SET owner_kind = 351, owner = 1, member = 62 WHERE target_kind = 351",
           "UPDATE link SET target_kind = 110, target = 1 WHERE target_kind = 351",
           "UPDATE property_table SET field_variables = 3 WHERE id = 3",
           "UPDATE property_table SET field_variables = -1 WHERE id = 3",
           "UPDATE surface_piece SET source = NULL, source_kind = NULL, members = 4, areas = 1",
           "UPDATE drawer SET over = 12 WHERE id = 1",
           "UPDATE collection SET space = 2147483647",
           "UPDATE link SET target = 1 WHERE text_key = 'BRICK-2'",
           "INSERT INTO link (id) VALUES (9000000)",
       }) {
    ASSERT_TRUE(Change({statement})) << statement;
    ReadByAll(statement);
    const ProgramRun run({"write", File("bad.sim"), "-o", File("out.inp"), "--force"});
    EXPECT_EQ(run.exitCode, 3) << statement;
    EXPECT_TRUE(run.Says("is damaged")) << statement << '\n' << run.err;
  }
}

TEST_F(HostileModel, SetsOfWhatIsNotThere) {
  for (const char* statement : {"UPDATE element_set SET membership = 1",
                                "UPDATE node_set SET membership = (SELECT max(id) FROM cset)",
                                "DELETE FROM link WHERE member = 53",
                                "UPDATE property_table SET columns = 1, rows = 9 WHERE id = 4"}) {
    ASSERT_TRUE(Change({statement})) << statement;
    ReadByAll(statement);
  }
}

// Connectivity is looked at where it is printed.
TEST_F(HostileModel, AnElementOfNodesThatAreNotThere) {
  ASSERT_TRUE(Change({}));
  {
    KvoObjDocument document = KvoObjDocument::Open(m_folder / "bad.sim", KvoAccess::ReadWrite);
    KvoSimTransaction transaction(document.ContextID());
    std::array<int32_t, 8> nodes;
    nodes.fill(2147483647);
    const eds_ArrayID array = document.GetMesh().ElementBlocks().front().connectivity;
    eds_updateArray(array, 0, std::as_bytes(std::span(nodes)));
    transaction.Commit();
    document.Finish();
  }
  ReadByAll("a node that is not there");
  const ProgramRun run({"write", File("bad.sim"), "-o", File("out.inp"), "--force"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_TRUE(run.Says("bad.sim\" is damaged: an element refers to node 2147483647")) << run.err;
}

// Nothing goes on from a base that is not sound.
TEST_F(HostileModel, IsNoBaseOfARestart) {
  const std::pair<const char*, const char*> cases[] = {
      {"UPDATE node_block SET first = -1 WHERE id = 3", "is damaged"},
      {"DELETE FROM link", "bad.sim\" has no mesh"},
  };
  for (const auto& [statement, words] : cases) {
    ASSERT_TRUE(Change({statement}));
    const cow_String base = readFile(m_folder / "bad.sim");
    const ProgramRun run({"convert", INPS_TESTS_DIR "/faults/more.inp", "--restart",
                          File("bad.sim"), "-o", File("next.sim")});
    EXPECT_EQ(run.exitCode, 3) << statement;
    EXPECT_TRUE(run.Says(words)) << run.err;
    EXPECT_FALSE(Exists("next.sim")) << statement;
    EXPECT_TRUE(readFile(m_folder / "bad.sim") == base) << statement;
  }
}

} // namespace
