#include "tests/host/ProgramRun.h"
#include <nlohmann/json.hpp>

namespace {

using Commands = ProgramTest;
using nlohmann::json;

const cow_String threeFaults = cow_String(oneBrick) +
                               "*NSET, NSET=A\n1, x y, 2\n"
                               "*NOSUCHWORD\n"
                               "*ELEMENT, TYPE=C3D8\n2, 1, 2, 3, 99, 5, 6, 7, 8\n";

// What stands in a wrong place is told once, and the writer adds no heading.
TEST_F(Commands, NothingTwiceAndNothingInvented) {
  const cow_String deck = "*MATERIAL, NAME=M\n*DENSITY\n1.\n*STEP\n*STATIC\n*END STEP\n";
  const ProgramRun run({"convert", Deck("d.inp", deck + "*STATIC\n"), "-o", File("d.sim")});
  EXPECT_TRUE(run.Says("*STATIC may stand in a step only") && run.Says("0 errors, 1 warning\n"))
      << run.err;
  ProgramRun({"convert", Deck("e.inp", deck), "-o", File("e.sim")});
  EXPECT_EQ(ProgramRun({"write", File("e.sim")}).out, "** Written by inps\n" + deck);
}

TEST_F(Commands, ConvertInfoWriteAndBack) {
  const cow_String deck = Deck("brick.inp", oneBrick);
  const ProgramRun convert({"convert", deck, "-o", File("a.sim")});
  EXPECT_EQ(convert.exitCode, 0) << convert.err;
  EXPECT_NE(convert.out.find("8 nodes, 1 element (C3D8 1), 1 node set, 1 element set; "
                             "0 errors, 0 warnings; "),
            cow_String::npos)
      << convert.out;
  EXPECT_EQ(ProgramRun({"write", File("a.sim"), "-o", File("b.inp")}).exitCode, 0);
  EXPECT_EQ(ProgramRun({"write", File("a.sim")}).out, readFile(m_folder / "b.inp"));
  for (const cow_String& other : {deck, File("b.inp")}) {
    const ProgramRun diff({"diff", File("a.sim"), other});
    EXPECT_EQ(diff.exitCode, 0);
    EXPECT_EQ(diff.out, "the models are the same\n");
    const ProgramRun asJson({"diff", File("a.sim"), other, "--json"});
    EXPECT_NE(asJson.out.find("\"same\": true"), cow_String::npos) << asJson.out;
  }
  EXPECT_EQ(ProgramRun({"dump", File("a.sim")}).out, ProgramRun({"dump", deck}).out);
  EXPECT_NE(ProgramRun({"info", File("a.sim")}).out.find("8 nodes, 1 element"), cow_String::npos);
  EXPECT_TRUE(ProgramRun({"check", File("a.sim")}).out.ends_with("\nthe model is sound\n"));
}

TEST_F(Commands, OutputIsNamedAsTheDeckAndReplacedByForceOnly) {
  const cow_String deck = Deck("brick.inp", oneBrick);
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(m_folder.Path());
  const ProgramRun first({"convert", deck, "--quiet"});
  const ProgramRun second({"convert", deck, "--quiet"});
  writeFile(m_folder / "brick.inp", "*NODE\n1, 0.\n");
  const ProgramRun third({"convert", deck, "--force"});
  std::filesystem::current_path(before);
  EXPECT_EQ(first.exitCode, 0);
  EXPECT_EQ(first.out + first.err, "");
  EXPECT_EQ(second.exitCode, 3);
  EXPECT_EQ(third.exitCode, 0);
  EXPECT_NE(ProgramRun({"info", File("brick.sim")}).out.find("1 node,"), cow_String::npos);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_folder.Path()), {}), 2);
}

TEST_F(Commands, FaultsEndWithOneAndLeaveWhatCouldBeConverted) {
  const cow_String deck = Deck("bad.inp", threeFaults);
  const ProgramRun run({"convert", deck, "-o", File("bad.sim")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_TRUE(run.Says(deck + ":13:4: error: ")) << run.err;
  EXPECT_TRUE(run.Says("\n1, x y, 2\n   ^~~\n")) << run.err;
  EXPECT_TRUE(run.Says("bad.sim holds what could be converted")) << run.err;
  EXPECT_EQ(ProgramRun({"check", File("bad.sim")}).exitCode, 0);
  EXPECT_EQ(ProgramRun({"check", deck}).exitCode, 1);

  const ProgramRun unread({"convert", Deck("none.inp", ""), "-o", File("none.sim")});
  EXPECT_EQ(unread.exitCode, 1);
  EXPECT_TRUE(unread.Says("none.sim was not written")) << unread.err;
  EXPECT_FALSE(Exists("none.sim"));
}

TEST_F(Commands, ErrorsOfTheMeshLeaveItOutAndThatIsSaid) {
  const cow_String deck = Deck("mesh.inp", "*NODE\n1, 0., 0., 0.\n2, x, 0., 0.\n");
  const ProgramRun run({"convert", deck, "-o", File("m.sim")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_TRUE(run.Says("; the mesh is left out because of its errors; --salvage stores"))
      << run.err;
  EXPECT_NE(ProgramRun({"info", File("m.sim")}).out.find("\n0 nodes"), cow_String::npos);
  const ProgramRun json({"convert", deck, "-o", File("m.sim"), "--force", "--json"});
  EXPECT_NE(json.out.find("\"meshLeftOut\": true"), cow_String::npos);
  const ProgramRun saved({"convert", deck, "-o", File("m.sim"), "--force", "--salvage"});
  EXPECT_EQ(saved.exitCode, 1);
  EXPECT_FALSE(saved.Says("the mesh is left out")) << saved.err;
  EXPECT_NE(ProgramRun({"info", File("m.sim")}).out.find("\n1 node,"), cow_String::npos);
  const cow_String other = cow_String(oneBrick) + "*AMPLITUDE, NAME=A\n0., x\n";
  const ProgramRun kept({"convert", Deck("other.inp", other), "-o", File("o.sim")});
  EXPECT_EQ(kept.exitCode, 1);
  EXPECT_FALSE(kept.Says("the mesh is left out")) << kept.err;
}

// Beyond a limit faults are only counted; counted they are.
TEST_F(Commands, EveryFaultIsInTheTotal) {
  cow_String text = "*NODE\n";
  for (int line = 0; line < 100003; ++line) text += "abc,1\n";
  const ProgramRun run({"check", Deck("d.inp", text)});
  EXPECT_TRUE(run.Says("100003 errors")) << run.err;
  const ProgramRun json({"check", File("d.inp"), "--json"});
  EXPECT_NE(json.out.find("\"errors\": 100003,"), cow_String::npos);
}

TEST_F(Commands, StrictFailsOnWhatIsNotModelled) {
  const cow_String deck = Deck("d.inp", cow_String(oneBrick) + "*DESIGN PARAMETER\nA, B\n");
  const ProgramRun lax({"check", deck});
  EXPECT_EQ(lax.exitCode, 0);
  EXPECT_NE(lax.out.find("*DESIGN PARAMETER  1 time, at " + deck + ":12"), cow_String::npos)
      << lax.out;
  EXPECT_EQ(ProgramRun({"check", deck, "--strict"}).exitCode, 4);
  EXPECT_EQ(ProgramRun({"convert", deck, "--strict", "-o", File("d.sim")}).exitCode, 4);
  EXPECT_TRUE(Exists("d.sim"));
  // A parameter that no reader asks for is a loss too.
  EXPECT_EQ(ProgramRun({"check", Deck("g.inp", "*NODE, FOO=1\n1, 2.\n"), "--strict"}).exitCode, 4);
  EXPECT_EQ(ProgramRun({"check", Deck("e.inp", oneBrick), "--strict"}).exitCode, 0);
  EXPECT_EQ(ProgramRun({"check", Deck("f.inp", threeFaults), "--strict"}).exitCode, 1);
}

TEST_F(Commands, MessagesTellTheWayThroughIncludes) {
  std::filesystem::create_directories(m_folder / "sub");
  const cow_String main = Deck("main.inp", "*HEADING\nx\n*INCLUDE, INPUT=sub/one.inp\n");
  Deck("sub/one.inp", "** a line\n*INCLUDE, INPUT=two.inp\n");
  Deck("sub/two.inp", "*NODE\n1, 0., zero\n");
  const ProgramRun run({"check", main});
  EXPECT_EQ(run.exitCode, 1);
  const std::size_t head = run.err.find("two.inp:2:8: error: ");
  const std::size_t inner = run.err.find("one.inp:2\n");
  const std::size_t outer = run.err.find("main.inp:3\n");
  ASSERT_NE(outer, cow_String::npos) << run.err;
  EXPECT_LT(head, inner) << run.err;
  EXPECT_LT(inner, outer) << run.err;
}

TEST_F(Commands, AThousandFaultsAreAllReported) {
  cow_String deck = "*NODE\n";
  for (int i = 1; i <= 1000; ++i) deck += std::to_string(i) + ", 0., zero\n";
  const cow_String file = Deck("d.inp", deck);
  const ProgramRun shown({"check", file});
  EXPECT_EQ(shown.exitCode, 1);
  EXPECT_TRUE(shown.Says("d.inp:6:")) << shown.err;
  EXPECT_FALSE(shown.Says("d.inp:7:"));
  EXPECT_TRUE(shown.Says("… and 995 more like this")) << shown.err;
  EXPECT_TRUE(shown.Says("1000 errors, 0 warnings")) << shown.err;

  const json all = json::parse(ProgramRun({"check", file, "--json"}).out);
  ASSERT_EQ(all["messages"].size(), 1000u);
  EXPECT_EQ(all["messages"][999]["line"], 1001);
  EXPECT_EQ(all["exit"], 1);
}

TEST_F(Commands, ALongListEndsWithItsFullStop) {
  cow_String deck = "*NODE\n1, 0., 0., 0.\n*DISTRIBUTION TABLE, NAME=T\nLENGTH\n"
                    "*DISTRIBUTION, NAME=D, TABLE=T, LOCATION=NODE\n";
  for (int i = 11; i <= 22; ++i) deck += std::to_string(i) + ", 1.\n";
  const ProgramRun run({"check", Deck("d.inp", deck)});
  EXPECT_TRUE(run.Says("19, 20 … and 2 more. Their lines are kept")) << run.err;
}

TEST_F(Commands, JsonHoldsTheWholeRun) {
  const cow_String file = Deck("d.inp", cow_String(oneBrick) + "*NOSUCHWORD\n");
  const ProgramRun run({"convert", file, "-o", File("d.sim"), "--json", "--timings"});
  EXPECT_EQ(run.err, "");
  const json object = json::parse(run.out);
  EXPECT_EQ(object["command"], "convert");
  EXPECT_EQ(object["exit"], run.exitCode);
  EXPECT_EQ(object["errors"],
            json(std::count_if(object["messages"].begin(), object["messages"].end(),
                               [](const json& m) { return m["severity"] == "error"; })));
  EXPECT_EQ(object["summary"]["nodes"], 8);
  EXPECT_EQ(object["summary"]["elementTypes"]["C3D8"], 1);
  ASSERT_EQ(object["notModelled"].size(), 1u);
  EXPECT_EQ(object["notModelled"][0]["keyword"], "NOSUCHWORD");
  ASSERT_EQ(object["notModelled"].size(), 1u);
  EXPECT_EQ(object["notModelled"][0]["known"], false);
  ASSERT_GE(object["messages"].size(), 1u);
  const json& first = object["messages"][0];
  for (const char* field : {"severity", "text", "keyword", "file", "line", "column", "width",
                            "sourceLine", "includedFrom", "notes"})
    EXPECT_TRUE(first.contains(field)) << field;
  bool meshTimed = false;
  for (const json& span : object["timings"]["spans"]) meshTimed |= span["label"] == "inp2sim-mesh";
  EXPECT_TRUE(meshTimed);

  const json failed = json::parse(ProgramRun({"convert", File("no.inp"), "--json"}).out);
  EXPECT_EQ(failed["exit"], 3);
  EXPECT_TRUE(failed["failure"].get<cow_String>().ends_with("No such file or directory"));
  EXPECT_EQ(json::parse(ProgramRun({"info", File("d.sim"), "--json"}).out)["finished"], true);
  EXPECT_GE(json::parse(ProgramRun({"keywords", "--json"}).out)["keywords"].size(), 500u);
  const json loads = json::parse(ProgramRun({"keywords", "--loads", "--json"}).out)["loads"];
  const auto gravity = std::ranges::find(
      loads, "GRAV", [](const json& row) { return row["labels"].get<cow_String>(); });
  ASSERT_NE(gravity, loads.end());
  EXPECT_EQ((*gravity)["values"][1]["name"], "direction");
  EXPECT_TRUE((*gravity)["values"][1]["required"]);
}

TEST_F(Commands, JsonTakesAnyBytes) {
  const cow_String file = Deck("d.inp", "*NODE, NSET=\"\xff\xfe\x1b[0m\"\n1, \xc3\x28, \x80\n");
  EXPECT_NO_THROW(json::parse(ProgramRun({"check", file, "--json"}).out));
}

TEST_F(Commands, DiffNamesWhatDiffers) {
  struct Case {
    const char* from;
    const char* to;
    const char* says;
  };
  const Case cases[] = {
      {"7, 1., 1., 1.", "7, 1., 1.5, 1.", "item differs, first item 6: 1. 1. 1. | 1. 1.5 1."},
      {"NSET=ALL", "NSET=EVERY", "only in A: node_set"},
      {"ELSET=SOLID", "ELSET=SOLID\n", "same"},
      {"*NODE", "*HEADING\nanother\n*NODE", "annotation: \"\" | \"another"},
      {"1, 1, 2, 3, 4, 5", "1, 1, 2, 3, 4, 8", "connectivity, 1 item differs, first item 0"},
      {"TYPE=C3D8,", "TYPE=C3D8R,", "only in B: element_spec"},
      {"1, 1, 2, 3, 4, 5, 6, 7, 8", "9, 1, 2, 3, 4, 5, 6, 7, 8", "9"},
  };
  const cow_String one = "*MATERIAL, NAME=ONE\n*DENSITY\n1.\n";
  const cow_String two = "*MATERIAL, NAME=TWO\n*DENSITY\n2.\n";
  EXPECT_EQ(ProgramRun({"diff", Deck("12.inp", one + two), Deck("21.inp", two + one)}).exitCode, 0);
  const cow_String a = Deck("a.inp", oneBrick);
  for (const Case& c : cases) {
    cow_String changed = oneBrick;
    changed.replace(changed.find(c.from), std::string_view(c.from).size(), c.to);
    const ProgramRun run({"diff", a, Deck("b.inp", changed)});
    EXPECT_EQ(run.exitCode, std::string_view(c.says) == "same" ? 0 : 1) << c.to;
    EXPECT_NE(run.out.find(c.says), cow_String::npos) << c.to << '\n' << run.out;
  }
}

TEST_F(Commands, RestartLeavesItsBaseAlone) {
  const cow_String base = File("base.sim");
  ASSERT_EQ(ProgramRun({"convert", Deck("d.inp", oneBrick), "-o", base, "-q"}).exitCode, 0);
  const cow_String before = readFile(m_folder / "base.sim");
  const cow_String deck = Deck("r.inp", "*HEADING\nnext\n*RESTART, READ, STEP=1\n"
                                        "*AMPLITUDE, NAME=A\n0., 0., 1., 1.\n");
  EXPECT_EQ(ProgramRun({"convert", deck, "-o", File("next.sim"), "--restart", base}).exitCode, 0);
  EXPECT_EQ(readFile(m_folder / "base.sim"), before);
  EXPECT_NE(ProgramRun({"info", File("next.sim")}).out.find("8 nodes, 1 element"),
            cow_String::npos);

  EXPECT_EQ(ProgramRun({"convert", deck, "--restart", base, "--force"}).exitCode, 0);
  EXPECT_EQ(ProgramRun({"diff", base, File("next.sim")}).exitCode, 0);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_folder.Path()), {}), 4);
  EXPECT_TRUE(
      ProgramRun({"convert", deck, "-o", File("x.sim")}).Says("--restart names that model"));
}

TEST_F(Commands, ThreadsComeFromTheEnvironment) {
  const cow_String deck = Deck("d.inp", oneBrick);
  setenv("INPS_THREADS", "none", 1);
  const ProgramRun wrong({"check", deck});
  setenv("INPS_THREADS", "1", 1);
  const ProgramRun right({"check", deck});
  unsetenv("INPS_THREADS");
  EXPECT_EQ(wrong.exitCode, 2);
  EXPECT_TRUE(wrong.Says("INPS_THREADS is \"none\"")) << wrong.err;
  EXPECT_EQ(right.exitCode, 0);
}

TEST_F(Commands, KeywordsTellEachFateOnce) {
  const cow_String text = ProgramRun({"keywords"}).out;
  EXPECT_NE(text.find("\n*NODE "), cow_String::npos);
  const json list = json::parse(ProgramRun({"keywords", "--json"}).out)["keywords"];
  std::set<cow_String> names;
  cow_Map<cow_String, bool> fates;
  std::size_t modelled = 0;
  for (const json& row : list) {
    EXPECT_TRUE(names.insert(row["keyword"]).second) << row["keyword"];
    modelled += row["modelled"].get<bool>();
    fates[row["keyword"]] = row["modelled"];
  }
  for (const char* keyword : {"NODE", "ELASTIC", "SHELL SECTION", "STEP", "STATIC", "BOUNDARY"})
    EXPECT_TRUE(fates[keyword]) << keyword;
  EXPECT_FALSE(fates["CONTACT PAIR"]);
  EXPECT_TRUE(names.contains("ELEMENT"));
  EXPECT_NE(text.find(std::to_string(modelled) + " of " + std::to_string(list.size())),
            cow_String::npos);
  const cow_String table = ProgramRun({"keywords", "--markdown"}).out;
  EXPECT_EQ(std::count(table.begin(), table.end(), '`'), 2 * static_cast<long>(modelled) + 2);
}

} // namespace
