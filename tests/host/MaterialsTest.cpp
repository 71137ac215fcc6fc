#include "tests/host/ProgramRun.h"
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

class Materials : public ProgramTest {
protected:
  cow_String Model(std::string_view deck) const {
    const ProgramRun run({"convert", Deck("d.inp", deck), "-o", File("d.sim"), "--force", "-q"});
    EXPECT_EQ(run.err, "");
    return File("d.sim");
  }
};

TEST_F(Materials, ListSaysWhatTheDeckSays) {
  struct Case {
    const char* deck;
    const char* list;
  };
  const Case cases[] = {
      {"*NODE\n1, 0.\n", "no materials\n"},
      {"*MATERIAL, NAME=EMPTY\n", "material \"EMPTY\"\n"},
      {"*MATERIAL, NAME=\"two words\"\n*ELASTIC, TYPE=LAMINA, MODULI=INSTANTANEOUS\n"
       "140., 9., 0.3, 5., 4., 3.\n",
       "material \"two words\"\n"
       "  *ELASTIC, TYPE=LAMINA, MODULI=INSTANTANEOUS: 1 row, E1 140, E2 9, nu12 0.3, G12 5, G13 "
       "4, "
       "G23 3\n"},
      {"*MATERIAL, NAME=A\n*ELASTIC, DEPENDENCIES=2\n200., 0.3, 20., 1., 7.\n150., 0.2, 300., 2., "
       "8.\n"
       "*NO TENSION\n*DENSITY\n1.5,\n",
       "material \"A\"\n"
       "  *ELASTIC: 2 rows, E 150 to 200, nu 0.2 to 0.3, temperature 20 to 300, 2 field variables\n"
       "    *NO TENSION\n"
       "  *DENSITY: 1 row, rho 1.5\n"},
      // The strain rate is not among the deck's values; the third column, never given, is none.
      {"*MATERIAL, NAME=A\n*PLASTIC\n300., 0.\n*PLASTIC, RATE=50.\n350., 0.\n400., 0.1\n"
       "*POTENTIAL\n1., 1.1, 1.2, 1., 1., 1.\n"
       "*DAMAGE INITIATION, CRITERION=DUCTILE\n0.5, 0.1\n0.2, 0.9\n"
       "*DAMAGE EVOLUTION, TYPE=ENERGY\n10.,\n",
       "material \"A\"\n"
       "  *PLASTIC: 3 rows, YieldStress 300 to 400, PlasticStrain 0 to 0.1, PlasticStrainRate 0 to "
       "50\n"
       "    *POTENTIAL: 1 row, R11 1, R22 1.1, R33 1.2, R12 1, R13 1, R23 1\n"
       "  *DAMAGE INITIATION, CRITERION=DUCTILE: 2 rows, PlasticStrain 0.2 to 0.5, Triaxiality 0.1 "
       "to 0.9\n"
       "    *DAMAGE EVOLUTION, TYPE=ENERGY: 1 row, Energy 10\n"},
      {"*MATERIAL, NAME=A\n*PLASTIC, HARDENING=COMBINED, DATA TYPE=PARAMETERS, NUMBER "
       "BACKSTRESSES=2\n300., 9000., 20., 800., 5.\n*HYPERELASTIC, N=2\n1., 2., 3., 4., 5., 6., "
       "7.\n",
       "material \"A\"\n"
       "  *PLASTIC, HARDENING=COMBINED, DATA TYPE=PARAMETERS, NUMBER BACKSTRESSES=2: 1 row, "
       "YieldStress 300, MMec_KinematicHardening_C1 9000, MMec_KinematicHardening_Gamma1 20, "
       "MMec_KinematicHardening_C2 800, MMec_KinematicHardening_Gamma2 5\n"
       "  *HYPERELASTIC, N=2: 1 row, C10 1, C01 2, C20 3, C11 4, C02 5, D1 6, D2 7\n"},
      {"*GASKET BEHAVIOR, NAME=G\n*GASKET THICKNESS BEHAVIOR, DIRECTION=UNLOADING\n"
       "0., 0.1, 0.1\n9., 0.2, 0.1\n",
       "gasket behavior \"G\"\n"
       "  *GASKET THICKNESS BEHAVIOR, DIRECTION=UNLOADING: 2 rows, Pressure 0 to 9, Closure 0.1 to "
       "0.2, PlasticClosure 0.1\n"},
  };
  for (const Case& c : cases) {
    const ProgramRun run({"info", Model(c.deck), "--materials"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, c.list) << c.deck;
  }
}

// A distribution's name stands in the place of numbers; with numbers beside it, the keyword is kept
// as text.
TEST_F(Materials, ListNamesWhatIsKeptAsText) {
  const cow_String distribution = "*DISTRIBUTION TABLE, NAME=T\nMODULUS, RATIO\n"
                                  "*DISTRIBUTION, NAME=MODULI, TABLE=T, LOCATION=ELEMENT\n"
                                  ", 2., 0.3\n";
  const cow_String linked = Model("*MATERIAL, NAME=A\n*ELASTIC\nMODULI\n" + distribution);
  EXPECT_EQ(ProgramRun({"info", linked, "--materials"}).out,
            "material \"A\"\n  *ELASTIC: values of distribution \"MODULI\"\n");
  const json named = json::parse(ProgramRun({"info", linked, "--materials", "--json"}).out);
  EXPECT_EQ(named["materials"][0]["behaviors"][0]["distribution"], "MODULI");
  const cow_String model =
      Model("*MATERIAL, NAME=A\n*DENSITY\n2.,\n*ELASTIC\nMODULI, 20.\n" + distribution);
  EXPECT_EQ(ProgramRun({"info", model, "--materials"}).out,
            "material \"A\"\n  *DENSITY: 1 row, rho 2\n  *ELASTIC (kept as text)\n");
  const json listed = json::parse(ProgramRun({"info", model, "--materials", "--json"}).out);
  EXPECT_EQ(listed["materials"][0]["keptAsText"], json({"ELASTIC"}));
  // One that stands under a behavior, too.
  const cow_String below =
      Model("*MATERIAL, NAME=A\n*PLASTIC\n1., 0.\n*RATE DEPENDENT, TYPE=NO SUCH\n1., 2.\n");
  EXPECT_NE(ProgramRun({"info", below, "--materials"}).out.find("\n    *RATE DEPENDENT (kept as "),
            cow_String::npos);
  EXPECT_EQ(
      json::parse(
          ProgramRun({"info", below, "--materials", "--json"}).out)["materials"][0]["keptAsText"],
      json({"RATE DEPENDENT"}));
}

TEST_F(Materials, JsonHoldsRangesAndRoles) {
  const cow_String model = Model("*MATERIAL, NAME=A\n*PLASTIC, SCALE STRESS=2.\n300., 0., 20.\n"
                                 "400., 0.1, 20.\n*AMPLITUDE, NAME=T\n0., 0., 1., 1.\n");
  const json object = json::parse(ProgramRun({"info", model, "--materials", "--json"}).out);
  ASSERT_EQ(object["materials"].size(), 1u);
  const json& plastic = object["materials"][0]["behaviors"][0];
  EXPECT_EQ(plastic["keyword"], "*PLASTIC");
  EXPECT_EQ(plastic["parameters"], "SCALE STRESS=2.");
  EXPECT_EQ(plastic["rows"], 2);
  EXPECT_EQ(
      plastic["columns"][0],
      json({{"name", "YieldStress"}, {"independent", false}, {"low", 300.0}, {"high", 400.0}}));
  EXPECT_EQ(plastic["columns"][1]["independent"], true);
  EXPECT_EQ(plastic["temperature"], json({{"low", 20.0}, {"high", 20.0}}));
  const json summary = json::parse(ProgramRun({"info", model, "--json"}).out)["summary"];
  EXPECT_EQ(summary["materials"], 1);
  EXPECT_EQ(summary["amplitudes"], 1);
  EXPECT_NE(ProgramRun({"info", model}).out.find("\n1 material, 1 amplitude\n"), cow_String::npos);
}

TEST_F(Materials, PlotIsNamedAsTheModelAndDrawsWhatIsNamed) {
  const cow_String model = Model("*MATERIAL, NAME=A\n*DENSITY\n1., 0.\n2., 9.\n"
                                 "*MATERIAL, NAME=B\n*AMPLITUDE, NAME=T\n0., 0., 1., 1.\n");
  const cow_String page = File("p.html");
  EXPECT_EQ(ProgramRun({"plot", model, "-o", page}).out,
            page + ": 2 materials, 1 amplitude, 2 charts\n");
  const ProgramRun again({"plot", model, "-o", page});
  EXPECT_EQ(again.exitCode, 3);
  EXPECT_TRUE(again.Says("--force replaces it")) << again.err;
  EXPECT_EQ(ProgramRun({"plot", model, "T", "-o", page, "--force"}).out,
            page + ": 0 materials, 1 amplitude, 1 chart\n");
  const cow_String before = readFile(m_folder / "p.html");
  const ProgramRun unknown({"plot", model, "T", "NONE", "-o", page, "--force"});
  EXPECT_EQ(unknown.exitCode, 2);
  EXPECT_TRUE(unknown.Says("no material, gasket behavior or amplitude \"NONE\"")) << unknown.err;
  EXPECT_EQ(readFile(m_folder / "p.html"), before);

  const std::filesystem::path folder = std::filesystem::current_path();
  std::filesystem::current_path(m_folder.Path());
  EXPECT_EQ(ProgramRun({"plot", model}).exitCode, 0);
  std::filesystem::current_path(folder);
  EXPECT_TRUE(Exists("d.html"));
}

// The next amplitude must not take in what stands under the one before.
TEST_F(Materials, RestartKeepsTextsUnderTheirAmplitude) {
  const cow_String base = Model("*NODE\n1, 0.\n");
  const cow_String texts = "*AMPLITUDE, NAME=A\n0., 1.\n*BASELINE CORRECTION\n0.5, 1.5\n"
                           "*AMPLITUDE, NAME=B\n0., 2.\n";
  const cow_String deck = Deck("next.inp", "*RESTART, READ\n" + texts);
  ProgramRun({"convert", deck, "--restart", base, "-o", File("next.sim")});
  EXPECT_NE(ProgramRun({"write", File("next.sim")}).out.find(texts), cow_String::npos);
}

} // namespace
