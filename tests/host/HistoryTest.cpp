// The history as info prints it, and as it gives it to programs.

#include "tests/host/ProgramRun.h"
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
  EXPECT_EQ(Line(run.out, "3 "), "3 Step-3 *STATIC general 1 fixed 0.25, at most 100 no stop");
  EXPECT_EQ(Line(run.out, "4 "), "4 EMPTY no procedure general - - -");
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
  EXPECT_EQ(steps[2]["incrementation"], "fixed");
  EXPECT_EQ(steps[3]["procedure"], nullptr);
  EXPECT_EQ(steps[21]["number"], 22);
}
