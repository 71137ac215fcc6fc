#include "tests/host/ProgramRun.h"
#include <cstdio>
#if defined(__linux__)
#include <unistd.h>
#endif
#include <nlohmann/json.hpp>

// What people expect of a program that stands among others in a shell.

namespace {

using Shell = ProgramTest;
using nlohmann::json;

constexpr const char* brokenNode = "*NODE\n1, 0., 0., 0.\n2, x, 0., 0.\n";

// A failed model says so, whoever looks at it.
TEST_F(Shell, AFailedModelSaysSo) {
  const cow_String model = File("m.sim");
  ASSERT_EQ(ProgramRun({"convert", Deck("m.inp", brokenNode), "-o", model, "-q"}).exitCode, 1);
  const cow_String info = ProgramRun({"info", model}).out;
  const std::size_t second = info.find('\n') + 1;
  EXPECT_EQ(info.substr(second, info.find('\n', second) - second),
            "does not hold all of its deck: 1 error, 0 warnings; left out: mesh");
  EXPECT_NE(info.find("0 nodes, 0 elements (the mesh is left out because of its errors)"),
            cow_String::npos)
      << info;
  const json facts = json::parse(ProgramRun({"info", model, "--json"}).out);
  EXPECT_EQ(facts["errors"], 1);
  EXPECT_EQ(facts["warnings"], 0);
  EXPECT_EQ(facts["meshLeftOut"], true);
  EXPECT_EQ(facts["meta"]["left_out"], "mesh");
  const cow_List<cow_List<cow_String>> readers = {{"write", model, "-o", File("w.inp")},
                                                  {"export", model, File("e.vtu")},
                                                  {"plot", model, "-o", File("p.html")},
                                                  {"diff", model, model},
                                                  {"dump", model},
                                                  {"check", model}};
  for (const cow_List<cow_String>& words : readers) {
    const ProgramRun run(words);
    EXPECT_EQ(run.exitCode, words[0] == "diff" ? 1 : 0) << words[0] << run.err;
    EXPECT_TRUE(run.Says("m.sim: warning: this model was made from a deck with errors"))
        << words[0] << run.err;
    EXPECT_TRUE(run.Says("(1 error, 0 warnings; left out: mesh)")) << words[0] << run.err;
  }
  const ProgramRun check({"check", File("m.inp")});
  EXPECT_NE(check.out.find("(the mesh is left out because of its errors)"), cow_String::npos);

  // A lost parameter is told; a sound model says nothing of failures, and a restart adds up.
  const cow_String base = File("base.sim");
  ASSERT_EQ(ProgramRun({"convert",
                        Deck("b.inp", cow_String(oneBrick) +
                                          "*NODE, FOO=1\n9, 2.\n*AMPLITUDE, NAME=A\n0., x\n"),
                        "-o", base, "-q"})
                .exitCode,
            1);
  const cow_String more = Deck("more.inp", "*AMPLITUDE, NAME=B\n0., y\n");
  ASSERT_EQ(ProgramRun({"convert", more, "--restart", base, "-o", File("next.sim"), "-q"}).exitCode,
            1);
  EXPECT_EQ(json::parse(ProgramRun({"info", File("next.sim"), "--json"}).out)["errors"], 2);
}

// What messages say is left out is counted with the model, by kind; what is kept beside is not.
TEST_F(Shell, WhatIsLeftOutIsCounted) {
  const cow_String deck = Deck("m.inp", "*PART, NAME=P\n*NODE\n1, 0., 0., 0., 0., 0., 1., 9., 9.\n"
                                        "2, 1.\nx, 2.\n*ELEMENT, TYPE=T3D2\n1, 1, 2\n2, 1, 7\n"
                                        "*NSET, NSET=N\n1, NONE, 2\n*NSET, NSET=G, GENERATE\n"
                                        "1, 4, 2\n5, 6\n*END PART\n*ASSEMBLY, NAME=A\n"
                                        "*INSTANCE, NAME=I, PART=P\n1., 2., 3., 4.\n"
                                        "*END INSTANCE\n*INSTANCE, NAME=J, PART=Q\n"
                                        "*END INSTANCE\n*INSTANCE, NAME=K, PART=P\n1., y\n"
                                        "*END INSTANCE\n*NSET, NSET=L, INSTANCE=Z\n1\n2\n"
                                        "*ELSET, ELSET=L, INSTANCE=\n"
                                        "*NSET, NSET=L, ELSET=E, INSTANCE=Z\n"
                                        "*SURFACE, NAME=F\nI.1, S9\n"
                                        "*SURFACE, NAME=C, CROP=IN\nNOPE\n0., 0., 0., 1., 1., 1.\n"
                                        "*END ASSEMBLY\n"
                                        "*SURFACE, NAME=S, TYPE=CYLINDER\nSTART, 1., x\n");
  const cow_String model = File("m.sim");
  ASSERT_EQ(ProgramRun({"convert", deck, "-o", model, "--salvage", "-q"}).exitCode, 1);
  const json facts = json::parse(ProgramRun({"info", model, "--json"}).out);
  EXPECT_EQ(facts["leftOut"], "2 data lines; 1 element; 2 instances; 1 mesh fault; 3 set entries; "
                              "2 set members; 1 surface; 2 values");
  EXPECT_EQ(facts["meshLeftOut"], false);
}

// Ends and round places between them come out as a hand would write them.
TEST_F(Shell, GeneratedNodesAreRound) {
  const cow_String deck = Deck("m.inp", "*NODE\n1, 0., 0.1, 10.\n11, 3., 0.1, 0.\n"
                                        "21, 0., 0., 0.\n33, 0., 10., 3.\n*NGEN\n1, 11\n"
                                        "*NGEN, LINE=P\n21, 33, 3, 27\n");
  const cow_String parabola = "*NODE\n27, 0., 5., 0.\n";
  const cow_String whole = Deck("p.inp", parabola + readFile(utl_pathOf(deck)));
  ASSERT_EQ(ProgramRun({"convert", whole, "-o", File("m.sim"), "-q"}).exitCode, 0);
  const ProgramRun written({"write", File("m.sim"), "-o", "-"});
  for (const char* line : {"\n2, 0.3, 0.1, 9.\n", "\n7, 1.8, 0.1, 4.\n", "\n10, 2.7, 0.1, 1.\n",
                           "\n24, 0., 2.5, -0.375\n", "\n30, 0., 7.5, 1.125\n"})
    EXPECT_NE(written.out.find(line), cow_String::npos) << line << written.out;
}

TEST_F(Shell, DiffOfFaultyDecksIsNoSuccess) {
  const cow_String a = Deck("a.inp", brokenNode);
  const cow_String b = Deck("b.inp", "*NODE\n1, 5., 5., 0.\n7, y, 0., 0.\n");
  const ProgramRun run({"diff", a, b});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.out, "what could be converted is the same, but there are errors in the decks\n");
  // What stood on the mesh is read again, without it.
  const cow_String loaded =
      Deck("c.inp", cow_String(brokenNode) + "*STEP\n*STATIC\n*CLOAD\n1, 1, 2.\n"
                                             "*END STEP\n");
  ASSERT_EQ(ProgramRun({"convert", loaded, "-o", File("c.sim"), "-q"}).exitCode, 1);
  ASSERT_EQ(ProgramRun({"write", File("c.sim"), "-o", File("d.inp")}).exitCode, 0);
  const ProgramRun own({"diff", loaded, File("d.inp")});
  EXPECT_EQ(own.exitCode, 1);
  EXPECT_TRUE(own.out.ends_with(" in what could be converted; there are errors in the decks\n"))
      << own.out;
  const json both = json::parse(ProgramRun({"diff", a, b, "--json"}).out);
  EXPECT_EQ(both["same"], false);
  EXPECT_EQ(both["exit"], 1);
  for (const char* name : {"a", "b"}) // their models are no better
    ASSERT_EQ(ProgramRun({"convert", File(name + cow_String(".inp")), "-q", "-o",
                          File(name + cow_String(".sim"))})
                  .exitCode,
              1);
  const ProgramRun models({"diff", File("a.sim"), File("b.sim")});
  EXPECT_EQ(models.exitCode, 1);
  EXPECT_EQ(models.out, run.out);
}

TEST_F(Shell, DiffWithinATolerance) {
  const cow_String material = "*MATERIAL, NAME=M\n*ELASTIC\n210000., 0.3\n";
  cow_String near = oneBrick + material;
  near.replace(near.find("7, 1., 1., 1."), 13, "7, 1., 1.0001, 1.");
  near.replace(near.find("210000."), 7, "210001.");
  const cow_String a = Deck("a.inp", oneBrick + material);
  const cow_String b = Deck("b.inp", near);
  struct Case {
    const char* tolerance; // the coordinates differ by 1e-4 in 1, the modulus by 1 in 2.1e5
    int exitCode;
  };
  for (const Case& c : {Case{"2e-4", 1},
                        {"0,2e-4", 0},
                        {"1.5", 0},
                        {"2e-4,1e-9", 1},
                        {"2e-4,5e-6", 0},
                        {"0,1e-5", 1},
                        {"0", 1},
                        {"-1", 2},
                        {"1,x", 2},
                        {"1,2,3", 2},
                        {"inf", 2}}) {
    const ProgramRun run({"diff", a, b, "--tolerance", c.tolerance});
    EXPECT_EQ(run.exitCode, c.exitCode) << c.tolerance << run.out << run.err;
  }
  EXPECT_EQ(ProgramRun({"diff", a, b, "--tolerance=0,2e-4"}).out,
            "the models are the same within the tolerance\n");
}

TEST_F(Shell, ManyDecksAreCheckedAtOnceAndToldInOrder) {
  cow_List<cow_String> words = {"check"};
  for (int n = 0; n < 40; ++n) {
    const cow_String name = "d" + std::to_string(n) + ".inp";
    cow_String text = oneBrick;
    if (n == 7) text = brokenNode;
    if (n == 21) text += "*DESIGN PARAMETER\nA, B\n";
    words.push_back(n == 33 ? File("none.inp") : Deck(name, text));
  }
  const ProgramRun run(words);
  EXPECT_EQ(run.exitCode, 3);
  std::size_t at = 0;
  for (std::size_t n = 1; n < words.size(); ++n) {
    if (n == 34) continue;
    const std::size_t found = run.out.find(words[n] + ": " + (n == 8 ? "1 error, " : "0 errors, "));
    EXPECT_NE(found, cow_String::npos) << words[n];
    EXPECT_TRUE(n == 1 || found > at) << words[n];
    at = found;
  }
  EXPECT_TRUE(run.out.ends_with(
      "\n40 checked: 38 without errors, 1 with errors, 1 not checked to the end\n"))
      << run.out;
  EXPECT_TRUE(run.Says("none.inp\": No such file")) << run.err;
  EXPECT_TRUE(run.Says("d7.inp:3:4: error: ")) << run.err;
  words.erase(words.begin() + 34);
  EXPECT_EQ(ProgramRun(words).exitCode, 1);
  words.emplace_back("--json");
  const json all = json::parse(ProgramRun(words).out);
  ASSERT_EQ(all["decks"].size(), 39u);
  EXPECT_EQ(all["decks"][7]["errors"], 1);
  EXPECT_EQ(all["decks"][7]["exit"], 1);
  EXPECT_EQ(all["decks"][8]["errors"], 0);
  EXPECT_EQ(all["errors"], 1);
  EXPECT_EQ(all["exit"], 1);
  words.erase(words.begin() + 8);
  words.back() = "--strict";
  EXPECT_EQ(ProgramRun(words).exitCode, 4);
  words.back() = "--timings"; // one after the other
  const ProgramRun timed(words);
  EXPECT_EQ(timed.exitCode, 0);
  EXPECT_TRUE(timed.Says("inp2sim-mesh")) << timed.err;
}

// A loss is a loss whoever hears of it.
TEST_F(Shell, StrictCountsWhatIsNotShown) {
  const cow_String deck = Deck("d.inp", cow_String(oneBrick) + "*DESIGN PARAMETER\nA, B\n");
  const cow_List<cow_List<cow_String>> runs = {
      {"check", deck, "--strict", "-q"},
      {"check", deck, "--strict", "--json"},
      {"check", deck, "--strict", "--no-kept"},
      {"convert", deck, "-o", File("q.sim"), "--strict", "-q"},
      {"convert", deck, "-o", File("j.sim"), "--strict", "--json"}};
  for (const cow_List<cow_String>& words : runs)
    EXPECT_EQ(ProgramRun(words).exitCode, 4) << words.back();
  EXPECT_EQ(json::parse(ProgramRun({"check", deck, "--strict", "--json"}).out)["exit"], 4);
  const ProgramRun quiet({"check", deck, "--strict", "-q"});
  EXPECT_EQ(quiet.out + quiet.err, "");
}

TEST_F(Shell, AStrayIsToldOnceWithWhatStandsUnderIt) {
  const ProgramRun run(
      {"check", Deck("d.inp", cow_String(oneBrick) + "*STEP\n*STATIC\n*MATERIAL, NAME=LATE\n"
                                                     "*ELASTIC\n1., 0.\n*END STEP\n")});
  EXPECT_TRUE(run.Says("*MATERIAL may stand at the level of the model only")) << run.err;
  EXPECT_FALSE(run.Says("*ELASTIC is not converted")) << run.err;
}

TEST_F(Shell, NoKeptSilencesThatAlone) {
  const cow_String deck =
      Deck("d.inp", cow_String(oneBrick) +
                        "*DESIGN PARAMETER\nA, B\n*NOSUCHWORD\n*NODE, NSET=A, FOO=1\n9, 2.\n");
  const ProgramRun loud({"check", deck});
  EXPECT_TRUE(loud.Says("*DESIGN PARAMETER is not converted")) << loud.err;
  const ProgramRun run({"check", deck, "--no-kept"});
  EXPECT_EQ((run.out + run.err).find("DESIGN PARAMETER"), cow_String::npos) << run.err;
  EXPECT_NE(run.out.find("  *NOSUCHWORD"), cow_String::npos) << run.out;
  // What the model tells of itself does not depend on what was shown.
  cow_List<cow_String> told;
  for (const char* option : {"--timings", "--no-kept"}) {
    ProgramRun({"convert", deck, "-o", File("m.sim"), "--force", option});
    told.push_back(json::parse(ProgramRun({"info", File("m.sim"), "--json"}).out)["meta"].dump());
  }
  EXPECT_EQ(told[0], told[1]);
  EXPECT_TRUE(run.Says("unknown keyword *NOSUCHWORD")) << run.err;
}

TEST_F(Shell, DecksAndModelsInEachOthersPlaceAreToldTheWay) {
  const cow_String deck = Deck("it's a deck.inp", oneBrick);
  for (const cow_List<cow_String>& words :
       {cow_List<cow_String>{"info", deck},
        {"write", deck},
        {"plot", deck},
        {"convert", deck, "--restart", deck, "-o", File("x.sim")}}) {
    const ProgramRun run(words);
    EXPECT_EQ(run.exitCode, 3) << words[0];
    EXPECT_TRUE(run.Says("it is a deck and not a model; convert it first: inps convert '"))
        << run.err;
    EXPECT_TRUE(run.Says("/it'\\''s a deck.inp'\n")) << run.err;
  }
  const ProgramRun named({"info", Deck("d.sim", cow_String("\n  ** comment\n") + oneBrick)});
  EXPECT_TRUE(named.Says("d.sim -o d-model.sim\n")) << named.err;
  ASSERT_EQ(ProgramRun({"convert", deck, "-o", File("m.sim"), "-q"}).exitCode, 0);
  const ProgramRun back({"convert", File("m.sim"), "-o", File("n.sim")});
  EXPECT_EQ(back.exitCode, 3);
  EXPECT_TRUE(back.Says("it is a model and not a deck; write it as one first: inps write "))
      << back.err;
}

TEST_F(Shell, NamesKeepNoCase) {
  const cow_String deck =
      Deck("d.inp",
           cow_String(oneBrick) +
               "*MATERIAL, NAME=Steel\n*ELASTIC\n1., 0.3\n*MATERIAL, NAME=\"Steel\"\n*DENSITY\n1.\n"
               "*AMPLITUDE, NAME=Ramp\n0., 0., 1., 1.\n");
  const cow_String model = File("m.sim");
  ASSERT_EQ(ProgramRun({"convert", deck, "-o", model, "-q"}).exitCode, 0);
  const auto listed = [&](const char* name) {
    return ProgramRun({"info", model, "--materials", name}).out;
  };
  EXPECT_EQ(listed("Steel").find("material \"STEEL\""), cow_String::npos) << listed("Steel");
  EXPECT_NE(listed("Steel").find("material \"Steel\""), cow_String::npos);
  EXPECT_NE(listed("steel").find("material \"STEEL\""), cow_String::npos);
  EXPECT_EQ(ProgramRun({"plot", model, "ramp", "steel", "-o", File("p.html")}).exitCode, 0);
  const ProgramRun none({"info", model, "--materials", "steal"});
  EXPECT_EQ(none.exitCode, 2);
  EXPECT_TRUE(none.Says("no material or gasket behavior \"steal\"")) << none.err;
  EXPECT_EQ(ProgramRun({"info", model, "steel"}).exitCode, 2);
}

// Whoever reads JSON finds the same members whatever became of the run.
TEST_F(Shell, JsonHasTheSameMembersWhateverHappens) {
  const cow_String good = Deck("good.inp", oneBrick);
  const cow_String bad = Deck("bad.inp", brokenNode);
  const cow_String without = Deck("without.inp", "*INCLUDE, INPUT=nowhere.inp\n");
  ASSERT_EQ(ProgramRun({"convert", good, "-o", File("m.sim"), "-q"}).exitCode, 0);
  struct Case {
    cow_List<cow_String> words;
    int exitCode;
    int errors;
    const char* failure;
  };
  const Case cases[] = {
      {{"check", good}, 0, 0, ""},
      {{"check", bad}, 1, 1, ""},
      {{"check", without}, 1, 1, ""},
      {{"check", File("none.inp")}, 3, 0, "No such file"},
      {{"check", m_folder.Path().string()}, 3, 0, "it is a folder"},
      {{"check", File("m.sim")}, 0, 0, ""},
      {{"check", good, File("none.inp")}, 3, 0, ""},
      {{"convert", bad, "-o", File("b.sim")}, 1, 1, ""},
      {{"convert", good, "-o", File("m.sim")}, 3, 0, "it exists"},
      {{"diff", good, bad}, 1, 1, ""},
      {{"diff", File("none.sim"), bad}, 3, 0, "none.sim"},
      {{"export", File("none.sim"), File("m.vtu")}, 3, 0, "none.sim"},
      {{"info", good}, 3, -1, "convert it first"},
  };
  for (Case c : cases) {
    c.words.emplace_back("--json");
    const ProgramRun run(c.words);
    const json told = json::parse(run.out, nullptr, false);
    ASSERT_TRUE(told.is_object()) << c.words[1] << run.out;
    EXPECT_EQ(run.exitCode, c.exitCode) << run.out;
    EXPECT_EQ(told["exit"], c.exitCode) << run.out;
    EXPECT_EQ(told["command"], c.words[0]) << run.out;
    if (c.errors >= 0) {
      EXPECT_EQ(told["errors"], c.errors) << run.out;
      EXPECT_TRUE(told["messages"].is_array() && told["seconds"].is_number()) << run.out;
    }
    ASSERT_TRUE(told.contains("failure")) << run.out;
    if (*c.failure)
      EXPECT_NE(told["failure"].get<std::string>().find(c.failure), cow_String::npos) << run.out;
    else
      EXPECT_TRUE(told["failure"].is_null()) << run.out;
  }
}

#if defined(__linux__)
// The program's standard input comes from the file while this lives.
class InputFrom {
public:
  explicit InputFrom(const cow_String& file) : m_before(dup(0)) {
    std::fflush(stdin);
    EXPECT_NE(std::freopen(file.c_str(), "rb", stdin), nullptr);
  }
  ~InputFrom() {
    std::clearerr(stdin);
    dup2(m_before, 0);
    close(m_before);
  }

private:
  int m_before;
};

ProgramRun runOn(const cow_String& file, const cow_List<cow_String>& words) {
  const InputFrom input(file);
  return ProgramRun(words);
}

// What comes from standard input stands in the current folder, and its temporary file is nobody's
// concern.
TEST_F(Shell, StandardInputHasTheCurrentFolderAndNoOtherName) {
  const std::filesystem::path here = std::filesystem::current_path();
  std::filesystem::create_directory(m_folder / "sub");
  Deck("sub/nodes.inp", "*NODE\n1, 0., 0., 0.\n");
  Deck("sub/last.inp", "*INCLUDE, INPUT=nodes.inp\n");
  std::filesystem::current_path(m_folder.Path());
  const auto saidOf = [&](const char* text, const cow_List<cow_String>& words) {
    const ProgramRun run = runOn(Deck("in", text), words);
    return std::to_string(run.exitCode) + ' ' + run.out + run.err;
  };
  EXPECT_TRUE(saidOf("*INCLUDE, INPUT=sub/last.inp\n", {"check", "-"}).starts_with("0 1 node"));
  EXPECT_NE(saidOf("*INCLUDE, INPUT=stdin\n", {"check", "-"}).find("note: looked for in: .\n"),
            cow_String::npos);
  ASSERT_EQ(ProgramRun({"convert", "sub/nodes.inp", "-o", "m.sim", "-q"}).exitCode, 0);
  const cow_String model = readFile("m.sim");
  const cow_String cut = model.substr(0, 20000);
  cow_String changed = model;
  changed[9000] = static_cast<char>(changed[9000] ^ 1);
  for (const cow_String& text : {cow_String("*NODE\n1\n"), cut, changed, cow_String("?")})
    for (const cow_List<cow_String>& words :
         {cow_List<cow_String>{"info", "-"},
          {"info", "-", "--json"},
          {"write", "-"},
          {"check", "-", "--json"},
          {"dump", "-"},
          {"export", "-", "-"},
          {"convert", "-", "-o", "-"},
          {"convert", "sub/nodes.inp", "--restart", "-", "-o", "-"}}) {
      writeFile("in", text);
      const ProgramRun run = runOn("in", words);
      const cow_String said = run.err + (words.back() == "--json" ? run.out : cow_String());
      EXPECT_EQ(said.find("/inps."), cow_String::npos) << words[0] << said;
      if (run.exitCode == 3) {
        EXPECT_NE(said.find("<stdin>"), cow_String::npos) << words[0] << said;
      }
    }
  std::filesystem::current_path(here);
}

TEST_F(Shell, ADashIsStandardInputOrOutput) {
  const cow_String deck = Deck("d.inp", cow_String(oneBrick) + "*INCLUDE, INPUT=\"" +
                                            Deck("more.inp", "*NSET, NSET=X\n1\n") +
                                            "\"\n*AMPLITUDE, NAME=A\n0., 1.\n");
  const cow_String model = File("m.sim");
  ASSERT_EQ(ProgramRun({"convert", deck, "-o", model, "-q"}).exitCode, 0);
  const ProgramRun piped = runOn(deck, {"convert", "-", "-o", "-"});
  EXPECT_EQ(piped.exitCode, 0) << piped.err;
  EXPECT_TRUE(piped.Says("<stdout>: 8 nodes")) << piped.err;
  Deck("piped.sim", piped.out);
  EXPECT_EQ(ProgramRun({"diff", model, File("piped.sim")}).exitCode, 0);
  EXPECT_NE(ProgramRun({"info", File("piped.sim")}).out.find("source_deck: <stdin>"),
            cow_String::npos);
  EXPECT_TRUE(runOn(Deck("bad.inp", brokenNode), {"check", "-"}).Says("<stdin>:3:4: error: "));
  EXPECT_EQ(runOn(model, {"diff", "-", deck}).exitCode, 0);
  EXPECT_EQ(runOn(model, {"dump", "-"}).out, ProgramRun({"dump", model}).out);
  EXPECT_EQ(runOn(model, {"write", "-", "-o", "-"}).out, ProgramRun({"write", model}).out);
  EXPECT_EQ(runOn(model, {"info", "-"}).out.substr(0, 8), "<stdin>:");
  EXPECT_EQ(runOn(model, {"check", deck, "-"}).exitCode, 0);
  const cow_String mesh = runOn(model, {"export", "-", "-"}).out;
  ASSERT_EQ(ProgramRun({"export", model, File("m.vtu"), "-q"}).exitCode, 0);
  EXPECT_TRUE(mesh == readFile(m_folder / "m.vtu"));
  EXPECT_TRUE(runOn(model, {"plot", "-", "-o", "-"}).out.starts_with("<!"));
  Deck("derived.sim", runOn(model, {"derive", "-", "-o", "-"}).out);
  EXPECT_EQ(ProgramRun({"diff", model, File("derived.sim")}).exitCode, 0);
  const cow_String more = Deck("next.inp", "*AMPLITUDE, NAME=B\n0., 1.\n");
  EXPECT_EQ(
      runOn(model, {"convert", more, "--restart", "-", "-o", File("next.sim"), "-q"}).exitCode, 0);
  for (const cow_List<cow_String>& words : {cow_List<cow_String>{"convert", "-"},
                                            {"diff", "-", "-"},
                                            {"plot", "-"},
                                            {"convert", "-", "--restart", "-", "-o", File("y.sim")},
                                            {"convert", deck, "-o", "-", "--json"},
                                            {"export", model, "-", "--sets"}}) {
    const ProgramRun run = runOn(model, words);
    EXPECT_EQ(run.exitCode, 2) << words[0] << run.err;
    EXPECT_EQ(run.out, "") << words[0];
  }
}
#endif

} // namespace
