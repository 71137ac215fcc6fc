#include "base/utl_Exception.h"
#include "database/KvoObjDocument.h"
#include "database/KvoObjMesh.h"
#include "database/KvoSimTransaction.h"
#include "database/eds_Array.h"
#include "database/engine/eds_Engine.h"
#include "tests/host/StepAsText.h"
#include <array>
#include <span>

// Models whose records hold what no writer of ours puts there: every command that reads them
// answers or refuses, and none of them is surprised.

namespace {

bool holds(std::string_view text, std::string_view what) {
  return text.find(what) != text.npos;
}

class HostileModel : public ProgramTest {
protected:
  void SetUp() override {
    const cow_String deck = Deck("good.inp", readFile(INPS_TESTS_DIR "/faults/model.inp"));
    ASSERT_EQ(ProgramRun({"convert", deck, "-o", File("good.sim"), "-q"}).exitCode, 0);
    addStepAsText(m_folder / "good.sim", "*STEP\n", "*FREQUENCY\n", 2);
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
          {"info", bad, "--history"},
          {"info", bad, "--history", "--json"},
          {"derive", bad, "-o", File("derived.sim"), "--force"},
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

// What the engine would run for a stranger is not even looked at.
TEST_F(HostileModel, ASchemaOfItsOwn) {
  const std::pair<const char*, const char*> cases[] = {
      {"CREATE INDEX evil ON node_block (abs(count))", "the index evil, which"},
      {"CREATE INDEX \"\x1b[2J\" ON link (owner) WHERE owner > 1", "the index, which"},
      {"CREATE TRIGGER evil AFTER INSERT ON meta BEGIN SELECT 1; END", "the trigger evil"},
      {"ALTER TABLE material ADD COLUMN evil INTEGER AS (id * 2)", "table material is not"},
      {"ALTER TABLE material ADD COLUMN evil INTEGER CHECK (id < 99)", "table material is not"},
      {"ALTER TABLE material ADD COLUMN evil INTEGER DEFAULT 5", "table material is not"},
      {"ALTER TABLE chunk ADD COLUMN \"evil\" INTEGER", "table chunk is not"},
      {"CREATE TABLE evil (a, b)", "table evil is not"},
      {"CREATE TABLE \"evil\" (id INTEGER PRIMARY KEY, \"a\" ANY) STRICT", "table evil is not"},
      {"ANALYZE", "table sqlite_stat1 is not"},
      {"ALTER TABLE material RENAME COLUMN rtol TO \"name2\"", nullptr},
      {"DROP TABLE link; CREATE TABLE \"link\" (id INTEGER PRIMARY KEY, \"owner\" TEXT) STRICT",
       "table link is not"},
      {"ALTER TABLE link RENAME TO \"l\"; CREATE VIEW link AS SELECT * FROM l", "the view link"},
      {"DROP TABLE model", "bears the mark of one, but has no table model"},
      // What a newer version may have added; views of anybody.
      {"CREATE TABLE \"newer\" (\n  id INTEGER PRIMARY KEY,\n  \"name\" TEXT\n) STRICT", nullptr},
      {"ALTER TABLE material ADD COLUMN \"newer\" BLOB", nullptr},
      {"CREATE VIEW v_evil AS WITH RECURSIVE r(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM r) "
       "SELECT n FROM r",
       nullptr},
  };
  for (const auto& [statement, words] : cases) {
    ASSERT_TRUE(Change({statement})) << statement;
    ReadByAll(statement);
    const ProgramRun run({"check", File("bad.sim")});
    EXPECT_EQ(run.exitCode, words ? 3 : 0) << statement << '\n' << run.err;
    EXPECT_TRUE(!words || (run.Says("bad.sim\" is not a model database: ") && run.Says(words)))
        << statement << '\n'
        << run.err;
  }
}

// Texts of a model become lines of a deck.
TEST_F(HostileModel, TextsThatWouldBeKeywords) {
  for (const char* statement : {
           "UPDATE material SET name = 'A' || char(10) || '*NODE' WHERE id = 1",
           "UPDATE part SET name = 'A' || char(13) WHERE id = 1",
           "UPDATE amplitude_tabular SET name = char(27) || '[2J'",
           "UPDATE node_set SET name = 'A' || char(127) WHERE name = 'HELD'",
           "UPDATE instance SET library = char(155) || '2J' WHERE id = 1",
           "UPDATE element_block SET source = 'A' || char(10) || '*NODE' WHERE id = 1",
           "UPDATE surface SET trim = char(10) || '*NODE' WHERE id = 1",
           "UPDATE annotation SET text = '** all' || char(10) || '*NODE'",
           "UPDATE link SET text_key = 'A' || char(10) || '*NODE' WHERE text_key = 'STEEL'",
           "UPDATE verbatim_keyword SET text = '9, 0., 0.' || char(10) || text WHERE id = 1",
           "UPDATE verbatim_keyword SET text = text || '*NODE' || char(10) || '9,' WHERE id = 1",
           "UPDATE verbatim_keyword SET text = text || '*NODE' || char(10) WHERE id = 1",
           "UPDATE verbatim_keyword SET text = rtrim(text, char(10)) WHERE id = 1",
           "UPDATE verbatim_keyword SET text = '** ' || text WHERE id = 1",
           "UPDATE verbatim_keyword SET keyword = 'NODE' WHERE id = 1",
           "UPDATE verbatim_keyword SET keyword = 'INCLUDE', text = '*INCLUDE, INPUT=x' || "
           "char(10)",
           "UPDATE verbatim_keyword SET keyword = 'IN-CLUDE', text = '*in clude' || char(10)",
           "UPDATE verbatim_keyword SET keyword = 'END PART', text = '*END PART' || char(10)",
           "UPDATE verbatim_keyword SET keyword = 'PARAMETER', text = '*Parameter' || char(10)",
           "UPDATE verbatim_keyword SET block = 3 WHERE keyword = 'STEP'",
           "UPDATE verbatim_keyword SET owner_kind = 2 WHERE keyword = 'END STEP'",
           "UPDATE verbatim_keyword SET text = text || '1,' || char(13) || '*NODE' || char(10)",
           "UPDATE annotation SET text = 'x' || char(13) || '*NODE'",
           "DELETE FROM verbatim_keyword WHERE keyword = 'END STEP'",
           "UPDATE verbatim_keyword SET position = -1 WHERE keyword = 'END STEP'",
           "UPDATE verbatim_keyword SET keyword = 'STEP', text = '*s t e p' || char(10) "
           "WHERE keyword = 'END STEP'",
       }) {
    ASSERT_TRUE(Change({statement})) << statement;
    ReadByAll(statement);
    for (const char* command : {"write", "check"}) {
      const ProgramRun run({command, File("bad.sim")});
      EXPECT_NE(run.exitCode, 0) << command << ' ' << statement;
      EXPECT_TRUE(run.Says("control character") || run.Says("keyword") ||
                  run.Says("carriage return") || run.Says(" a step "))
          << statement << run.err;
    }
  }
  ASSERT_TRUE(
      Change({"UPDATE annotation SET text = '** a comment *NODE' || char(10) || 'x *NODE'"}));
  EXPECT_EQ(ProgramRun({"check", File("bad.sim")}).exitCode, 0);
  // Nor does it give terminals orders, where a text of lines may hold them.
  ASSERT_TRUE(Change({"UPDATE annotation SET text = 'a' || char(27) || '[2J' || char(10)",
                      "UPDATE verbatim_keyword SET text = text || char(27) || '*X' || char(10) "
                      "WHERE id = 1"}));
  const ProgramRun written({"write", File("bad.sim")});
  EXPECT_TRUE(holds(written.out, "a[2J\n") && holds(written.out, "\n?*X\n") &&
              !holds(written.out, "\x1b"))
      << written.out;
  // What our own converter keeps of such a deck is none of these.
  const cow_String deck = Deck("r.inp", "*HEADING\nA\r*B\r\n*END_PART\n1,\r*NODE\r\r\n");
  ProgramRun({"convert", deck, "-o", File("r.sim")});
  EXPECT_EQ(ProgramRun({"check", File("r.sim")}).exitCode, 0);
}

// What a deck names there its converter has read; a model that names a file would have whoever
// reads the written deck open it.
TEST_F(HostileModel, FilesThatAWrittenDeckWouldOpen) {
  const cow_String deck = Deck("named.inp", "*NODE\n1, 0., 0., 0.\n*NSET, NSET=A, FOO=1\n1\n"
                                            "*TRANSFORM, NSET=A, TYPE=C\n0., 0., 0., 0., 0., 1.\n"
                                            "*MATERIAL, NAME=M, BAR=2\n*DEFORMATION\n1.\n");
  ASSERT_LE(ProgramRun({"convert", deck, "-o", File("named.sim"), "-q"}).exitCode, 2);
  m_good = readFile(m_folder / "named.sim");
  const auto kept = [](const char* text) {
    return cow_String("UPDATE verbatim_keyword SET keyword = 'INITIAL CONDITIONS', "
                      "text = '*INITIAL CONDITIONS") +
           text + "' || char(10)";
  };
  const auto part = [](int owner, const char* parameters, const char* lines = "") {
    return cow_String("UPDATE kept_part SET parameters = '") + parameters + "', lines = '" + lines +
           "' WHERE owner_kind = " + std::to_string(owner);
  };
  const std::pair<cow_String, bool> cases[] = {
      {kept(", TYPE=VELOCITY, INPUT=/etc/hostname"), true},
      {kept(", TYPE=VELOCITY, inp = \"/etc/hostname\""), true},
      {kept(", TYPE=VELOCITY,' || char(10) || '** x' || char(10) || 'INPUT=/etc/hostname"), true},
      {kept(", TYPE=VELOCITY, FILE=/etc/hostname"), false}, // a file of results
      {kept(", TYPE=VELOCITY' || char(10) || 'INPUT=/etc/hostname, 1, 2."), false}, // a data line
      {part(15, ", INPUT=/etc/hostname"), true},
      {part(15, ", FOO=1, FILE=/etc/hostname"), true},
      {part(15, ", FOO,", "INPUT=/etc/hostname"), true},
      {part(40, ", FILE=/etc/hostname"), false},
  };
  for (const auto& [statement, isTold] : cases) {
    ASSERT_TRUE(Change({statement})) << statement;
    for (const char* command : {"write", "check"}) {
      const ProgramRun run({command, File("bad.sim")});
      EXPECT_EQ(run.exitCode, 0) << statement << run.err;
      EXPECT_EQ(run.err.find("opens the file \"/etc/hostname\"") != run.err.npos, isTold)
          << command << ' ' << statement << run.err;
    }
  }
  // A word with a parameter behind it stays one word.
  ASSERT_TRUE(Change({"UPDATE transform SET type = 'C, INPUT=/etc/hostname'"}));
  const ProgramRun run({"write", File("bad.sim")});
  EXPECT_NE(run.out.find("TYPE=\"C, INPUT=/etc/hostname\""), run.out.npos) << run.out << run.err;
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

// Connectivity is looked at where it is printed, and by the check: in the first element of the
// second instance, whose part has 8 nodes.
TEST_F(HostileModel, AnElementOfNodesThatAreNotThere) {
  const std::pair<int, const char*> cases[] = {
      {2147483647, "refers to node 2147483647"},
      {8, "element 0 refers to node 8, not one of 0 to 7"},
      {-1, "element 0 lacks its node 1"},
      {-2, "refers to node -2"},
  };
  for (const auto& [node, words] : cases) {
    ASSERT_TRUE(Change({}));
    {
      KvoObjDocument document = KvoObjDocument::Open(m_folder / "bad.sim", KvoAccess::ReadWrite);
      KvoSimTransaction transaction(document.ContextID());
      std::array<int32_t, 8> nodes{0, 1, 2, 3, 4, 5, 6, 7};
      nodes[node == 8 ? 7 : 0] = node;
      const eds_ArrayID array = document.GetMesh().ElementBlocks().front().connectivity;
      eds_updateArray(array, 0, std::as_bytes(std::span(nodes)));
      transaction.Commit();
      document.Finish();
    }
    ReadByAll("a node that is not there");
    const ProgramRun check({"check", File("bad.sim")});
    EXPECT_EQ(check.exitCode, 1) << node;
    EXPECT_TRUE(check.Says(words)) << check.err;
    const ProgramRun write({"write", File("bad.sim"), "-o", File("out.inp"), "--force"});
    if (node <= 8) continue; // what the writer prints of these, the check has told
    EXPECT_EQ(write.exitCode, 3);
    EXPECT_TRUE(write.Says("bad.sim\" is damaged: an element refers to node")) << write.err;
  }
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
