// The history as info prints it, and as it gives it to programs.

#include "tests/host/StepAsText.h"
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

class History : public ProgramTest {
protected:
  // Twenty-two steps, one of them without a procedure.
  void Convert() const {
    cow_String deck = "*NODE\n1, 0., 0., 0.\n"
                      "*STEP, NAME=\"Press\", NLGEOM, INC=250\n*STATIC, STABILIZE\n"
                      "0.1, 2., 1e-6, 0.5\n*BULK VISCOSITY\n0.06\n*END STEP\n"
                      "*STEP, PERTURBATION\n*FREQUENCY\n12, , 1000.\n*END STEP\n"
                      "*STEP\n*STATIC, DIRECT=NO STOP\n0.25, 1.\n*END STEP\n"
                      "*STEP, NAME=EMPTY\n*END STEP\n";
    for (int n = 0; n < 18; ++n) deck += "*STEP\n*HEAT TRANSFER, STEADY STATE\n*END STEP\n";
    ProgramRun({"convert", Deck("a.inp", deck), "-o", File("a.sim"), "--quiet"});
  }
  // The line that begins so, its words one blank apart.
  static cow_String Line(const cow_String& out, const cow_String& begin) {
    std::istringstream lines(out);
    for (cow_String line; std::getline(lines, line);) {
      std::istringstream words(line);
      cow_String plain;
      for (cow_String word; words >> word;) plain += (plain.empty() ? "" : " ") + word;
      if (plain.starts_with(begin)) return plain;
    }
    return {};
  }
};

} // namespace

TEST_F(History, IsATable) {
  Convert();
  const ProgramRun run({"info", File("a.sim")});
  EXPECT_EQ(Line(run.out, "1 Press"),
            "1 Press *STATIC nonlinear 2 automatic 0.1 (1e-06 to 0.5), at "
            "most 250 stabilized 2e-04, 1 keyword");
  EXPECT_EQ(Line(run.out, "2 "), "2 Step-2 *FREQUENCY perturbation - - 12 modes, up to 1000");
  EXPECT_EQ(Line(run.out, "3 "),
            "3 Step-3 *STATIC nonlinear (carried) 1 fixed 0.25, at most 100 no stop");
  EXPECT_EQ(Line(run.out, "4 "), "4 EMPTY no procedure nonlinear (carried) - - -");
  EXPECT_EQ(Line(run.out, "… and"), "… and 2 more; --json has them all");
}

TEST_F(History, IsWholeForPrograms) {
  Convert();
  const json steps = json::parse(ProgramRun({"info", File("a.sim"), "--json"}).out)["history"];
  ASSERT_EQ(steps.size(), 22u);
  EXPECT_EQ(steps[0]["procedure"], "*STATIC");
  EXPECT_EQ(steps[0]["nonlinear"], true);
  EXPECT_EQ(steps[0]["minimum"], 1e-6);
  EXPECT_EQ(steps[0]["stabilized"], true);
  EXPECT_EQ(steps[1]["registration"], "task");
  EXPECT_EQ(steps[1]["eigenvalues"], 12);
  EXPECT_EQ(steps[1]["lowest"], nullptr);
  EXPECT_EQ(steps[1]["highest"], 1000.);
  EXPECT_EQ(steps[1]["nature"], "perturbation");
  EXPECT_EQ(steps[1]["increments"], nullptr);
  EXPECT_EQ(steps[1]["begins"], nullptr);
  EXPECT_EQ(steps[2]["nature"], "nonlinear (carried)");
  EXPECT_EQ(steps[2]["begins"], 2.);
  EXPECT_EQ(steps[2]["ends"], 3.);
  EXPECT_EQ(steps[2]["incrementation"], "fixed");
  EXPECT_EQ(steps[3]["procedure"], nullptr);
  EXPECT_EQ(steps[21]["number"], 22);
  EXPECT_EQ(steps[0]["options"], json({"stabilized 2e-04", "1 keyword"}));
  EXPECT_EQ(steps[1]["options"], json({"12 modes", "up to 1000"}));
  EXPECT_EQ(steps[3]["options"], json::array());
}

// A name given is that of a step without one, whatever its case; modes of a step that does not say
// PERTURBATION are one; an arc takes no time.
TEST_F(History, TellsNamesNatureAndTimeApart) {
  ProgramRun({"convert",
              Deck("n.inp", "*NODE\n1, 0.\n*STEP, NAME=Step-2\n*FREQUENCY\n3\n*END STEP\n"
                            "*STEP\n*STATIC, RIKS\n0.1, 4.\n*END STEP\n"
                            "*STEP, NAME=\"Step-2\"\n*STATIC\n*END STEP\n"),
              "-o", File("n.sim"), "--quiet"});
  const json steps = json::parse(ProgramRun({"info", File("n.sim"), "--json"}).out)["history"];
  ASSERT_EQ(steps.size(), 3u);
  EXPECT_EQ(steps[0]["name"], "STEP-2-Old-Old");
  EXPECT_EQ(steps[1]["name"], "Step-2-Old");
  EXPECT_EQ(steps[2]["name"], "Step-2");
  EXPECT_EQ(steps[0]["perturbation"], true);
  EXPECT_EQ(steps[1]["ends"], 0.);
  EXPECT_EQ(steps[2]["ends"], 1.);
  EXPECT_EQ(Line(ProgramRun({"info", File("n.sim")}).out, "2 "),
            "2 Step-2-Old *STATIC, RIKS general arc 4 automatic 0.1, at most 100 -");
}

// One stands before all others, one between them.
TEST_F(History, ListsStepsThatAreKeptAsText) {
  ProgramRun({"convert",
              Deck("t.inp", "*NODE\n1, 0.\n*STEP, NAME=\"Lost one\"\n*STATIC\n*END STEP\n"
                            "*STEP\n*STATIC\n*END STEP\n"),
              "-o", File("t.sim"), "--quiet"});
  addStepAsText(m_folder / "t.sim", "*STEP\n", "*STATIC\n", 0);
  addStepAsText(m_folder / "t.sim", "*STEP, NAME=\"Lost one\"\n", "*STATIC\n", 1);
  const cow_String out = ProgramRun({"info", File("t.sim")}).out;
  EXPECT_EQ(Line(out, "1 Step-1"), "1 Step-1 kept as text - - - -") << out;
  EXPECT_EQ(Line(out, "2 "), "2 Lost one-Old *STATIC general 1 automatic, at most 100 -") << out;
  EXPECT_EQ(Line(out, "3 "), "3 Lost one kept as text - - - -") << out;
  EXPECT_EQ(Line(out, "4 Step-4"), "4 Step-4 *STATIC general 1 automatic, at most 100 -") << out;
  const json steps =
      json::parse(ProgramRun({"info", File("t.sim"), "--history", "--json"}).out)["history"];
  ASSERT_EQ(steps.size(), 4u);
  EXPECT_EQ(steps[2]["name"], "Lost one");
  EXPECT_EQ(steps[2]["keptAsText"], true);
  EXPECT_EQ(steps[3]["keptAsText"], false);
}

namespace {

// What acts, step by step, and the way it is told.
class ActingInSteps : public History {
protected:
  cow_String Model() const {
    const cow_String deck =
        cow_String(oneBrick) +
        "*NSET, NSET=BASE\n1, 2, 3, 4\n*SURFACE, NAME=\"top face\"\nSOLID, S2\n"
        "*AMPLITUDE, NAME=RAMP\n0., 0., 1., 1.\n*AMPLITUDE, NAME=ALL-TIME, TIME=TOTAL TIME\n"
        "0., 0., 1., 1.\n*BOUNDARY\nBASE, PINNED\n"
        "*STEP, NAME=Press\n*STATIC\n*CLOAD, AMPLITUDE=RAMP\n5, 3, -5.\nALL, 1, 2.\n"
        "*DSLOAD, AMPLITUDE=ALL-TIME\n\"top face\", P, 3.\n*DLOAD\n, GRAV, 9.81, 0., 0., -1.\n"
        "*END STEP\n*STEP, PERTURBATION\n*FREQUENCY\n3\n*END STEP\n"
        "*STEP, NAME=2\n*STATIC\n*CLOAD\n6, 1, -7.\n*TEMPERATURE\n" +
        Lines(300, "") + "*CFLUX\n" + Lines(12, "11, ") + "*END STEP\n";
    ProgramRun({"convert", Deck("s.inp", deck), "-o", File("s.sim"), "--quiet"});
    return File("s.sim");
  }
  static cow_String Lines(int count, const char* degree) {
    cow_String lines;
    for (int n = 0; n < count; ++n)
      lines += std::to_string(n % 8 + 1) + ", " + degree + std::to_string(n) + ".\n";
    return lines;
  }
};

} // namespace

// Whoever measures by marks finds the subjects of all steps as one.
TEST_F(ActingInSteps, AreTimedBySubject) {
  const ProgramRun run({"write", Model(), "-o", File("w.inp"), "--timings"});
  const cow_String told = run.out + run.err;
  for (const char* subject : {"Sim2InpStep-Task ", "Sim2InpStep-Excit "}) {
    const std::size_t at = told.find(subject);
    EXPECT_NE(at, told.npos) << subject << told;
    EXPECT_EQ(told.find(subject, at + 1), told.npos) << subject;
  }
  EXPECT_EQ(told.find("Sim2InpStep-OutReqs"), told.npos);
}

TEST_F(ActingInSteps, AreATable) {
  const cow_String all = ProgramRun({"info", Model(), "--history"}).out;
  EXPECT_EQ(Line(all, "2 Step-2"), "2 Step-2 *FREQUENCY perturbation - - 3 modes");
  EXPECT_NE(all.find("in step 3, 2:\n"), all.npos);
  const auto of = [&](const char* step) {
    return ProgramRun({"info", File("s.sim"), "--history", step}).out;
  };
  const cow_String first = of("press");
  EXPECT_EQ(Line(first, "BOUNDARY"), "BOUNDARY BASE PINNED - - - 0 carried -");
  EXPECT_EQ(Line(first, "CLOAD 5"), "CLOAD 5 CF_D C_3 -5 RAMP 1 given -");
  EXPECT_EQ(Line(first, "DSLOAD"), "DSLOAD top face P - 3 ALL-TIME 1 given -");
  EXPECT_EQ(Line(first, "DLOAD"), "DLOAD - GRAV - 9.81 - 1 given -");
  // A step whose name is a number is meant by it; loads stay out of a perturbation.
  const cow_String last = of("2");
  EXPECT_EQ(Line(last, "CLOAD ALL"), "CLOAD ALL (7 nodes left) CF_D C_1 2 ended RAMP 1 carried -");
  EXPECT_EQ(Line(last, "DSLOAD"), "DSLOAD top face P - 3 ALL-TIME 1 carried -");
  EXPECT_EQ(Line(last, "… and"), "… and 2 more of *CFLUX; --json has them all");
  const cow_String modes = of("STEP-2");
  EXPECT_EQ(Line(modes, "BOUNDARY"), "BOUNDARY BASE PINNED - - - 0 held -");
  EXPECT_EQ(modes.find("LOAD "), modes.npos);
  const ProgramRun missing({"info", File("s.sim"), "--history", "4"});
  EXPECT_EQ(missing.exitCode, inps_ExitUsage);
  EXPECT_TRUE(missing.Says("no step \"4\"")) << missing.err;
  EXPECT_EQ(ProgramRun({"info", File("s.sim"), "--history", "--sections"}).exitCode,
            inps_ExitUsage);
}

// What a keyword says beside an amplitude: the one of a film's coefficient, which base moves, which
// load case it is of, and that what is there stays.
TEST_F(ActingInSteps, HaveCompanions) {
  const cow_String deck =
      cow_String(oneBrick) +
      "*AMPLITUDE, NAME=RAMP\n0., 0., 1., 1.\n*AMPLITUDE, NAME=ALL-TIME, TIME=TOTAL TIME\n"
      "0., 0., 1., 1.\n*STEP\n*STATIC\n*FILM, AMPLITUDE=ALL-TIME, FILM AMPLITUDE=RAMP\n"
      "SOLID, F1, 20., 5.\n*BOUNDARY, BASE NAME=B2\n1, 3\n*END STEP\n*STEP\n*STATIC\n"
      "*BASE MOTION, DOF=3, AMPLITUDE=RAMP, BASE NAME=B2\n*END STEP\n"
      "*STEP\n*BUCKLE\n5\n*CLOAD, LOAD CASE=2\n8, 1, 1.\n*END STEP\n"
      "*STEP\n*STATIC\n*BOUNDARY, FIXED\n5, 1\n*CLOAD, USER\n6, 1\n*END STEP\n";
  ProgramRun({"convert", Deck("c.inp", deck), "-o", File("c.sim"), "--quiet"});
  const auto of = [&](const char* step) {
    return ProgramRun({"info", File("c.sim"), "--history", step}).out;
  };
  EXPECT_EQ(Line(of("1"), "FILM"), "FILM SOLID F1 - 20 ALL-TIME; film RAMP 1 given -");
  EXPECT_EQ(Line(of("2"), "FILM"), "FILM SOLID F1 - 20 ALL-TIME; ended film RAMP 1 carried -");
  EXPECT_EQ(Line(of("2"), "BASE MOTION"), "BASE MOTION base B2 BASE_D C_3 - RAMP 2 given -");
  EXPECT_EQ(Line(of("3"), "CLOAD"), "CLOAD 8 CF_D C_1 1 - 3 given 2");
  EXPECT_EQ(Line(of("4"), "BOUNDARY 5"), "BOUNDARY 5 U_D C_1 fixed - 4 given -");
  EXPECT_EQ(Line(of("4"), "CLOAD"), "CLOAD 6 CF_D C_1 routine - 4 given -");
  const json steps =
      json::parse(ProgramRun({"info", File("c.sim"), "--history", "--json"}).out)["history"];
  const auto values = [&](std::size_t step, const char* keyword, const char* key) {
    json all = json::array();
    for (const json& one : steps[step]["acting"])
      if (one["keyword"] == keyword) all.push_back(one[key]);
    return all.dump();
  };
  EXPECT_EQ(values(2, "CLOAD", "loadCaseNumber"), "[2]");
  EXPECT_EQ(values(3, "CLOAD", "loadCaseNumber"), "[null]");
  EXPECT_EQ(values(3, "BOUNDARY", "fixed"), "[false,true]");
}

TEST_F(ActingInSteps, AreWholeForPrograms) {
  const ProgramRun run({"info", Model(), "--history", "--json"});
  const json told = json::parse(run.out);
  EXPECT_EQ(told["exit"], 0);
  const json& steps = told["history"];
  ASSERT_EQ(steps.size(), 3u);
  EXPECT_EQ(steps[0]["name"], "PRESS");
  const json& gravity = steps[0]["acting"].back();
  EXPECT_EQ(gravity["load"], "GRAV");
  EXPECT_EQ(gravity["wholeModel"], true);
  EXPECT_EQ(gravity["region"], nullptr);
  ASSERT_EQ(steps[1]["acting"].size(), 1u);
  EXPECT_EQ(steps[1]["acting"][0]["how"], "held");
  EXPECT_EQ(steps[1]["acting"][0]["restraint"], "PINNED");
  const json& left = steps[2]["acting"][2];
  EXPECT_EQ(left["region"], "ALL");
  EXPECT_EQ(left["members"], 7);
  EXPECT_EQ(left["amplitudeEnded"], true);
  long long rows = 0;
  for (const json& one : steps[2]["acting"])
    if (one["keyword"] == "TEMPERATURE") rows += one["rows"].get<long long>();
  EXPECT_EQ(rows, 8); // the last value of each node holds
}
