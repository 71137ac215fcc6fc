#include "tests/host/ProgramRun.h"
#include <nlohmann/json.hpp>
#include <random>

namespace {

using nlohmann::json;

class Quality : public ProgramTest {
protected:
  json Of(const cow_String& deck) const {
    const ProgramRun convert({"convert", Deck("m.inp", deck), "-o", File("m.sim"), "--force"});
    EXPECT_EQ(convert.exitCode, 0) << convert.err;
    return json::parse(ProgramRun({"info", File("m.sim"), "--json"}).out)["quality"];
  }
};

TEST_F(Quality, FreeNodesAreNamedByTheirLabels) {
  EXPECT_EQ(Of(oneBrick)["freeNodes"]["count"], 0);
  const json some =
      Of(cow_String(oneBrick) + "*NODE\n77, 5., 5., 5.\n9, 6., 6., 6.\n")["freeNodes"];
  EXPECT_EQ(some["count"], 2);
  EXPECT_EQ(some["first"], (json{"77", "9"}));
  EXPECT_NE(ProgramRun({"info", File("m.sim")}).out.find("2 nodes of no element: 77, 9\n"),
            cow_String::npos);
}

// Each with the nodes of one brick (5 to 8 above 1 to 4): how many have a negative volume, or none.
TEST_F(Quality, Volumes) {
  struct Case {
    const char* elements;
    int negative;
    int zero;
  };
  constexpr Case cases[] = {
      {"*ELEMENT, TYPE=C3D8\n2, 5, 6, 7, 8, 1, 2, 3, 4\n", 1, 0},
      {"*ELEMENT, TYPE=C3D8\n2, 1, 2, 3, 4, 1, 2, 3, 4\n", 0, 1},
      {"*ELEMENT, TYPE=C3D6\n2, 1, 2, 3, 5, 6, 7\n3, 1, 3, 2, 5, 7, 6\n", 1, 0},
      {"*ELEMENT, TYPE=C3D4\n2, 1, 2, 3, 5\n3, 1, 3, 2, 5\n4, 1, 2, 3, 4\n", 1, 1},
      {"*ELEMENT, TYPE=CPS4\n2, 1, 2, 3, 4\n3, 4, 3, 2, 1\n", 1, 0}, // lies in the x-y plane
      {"*ELEMENT, TYPE=S4\n2, 1, 2, 3, 4\n3, 4, 3, 2, 1\n4, 1, 2, 2, 1\n", 0, 1},
      {"*ELEMENT, TYPE=T3D2\n2, 1, 2\n3, 1, 1\n", 0, 1},
      {"*ELEMENT, TYPE=COH3D8\n2, 1, 2, 3, 4, 1, 2, 3, 4\n", 0, 0}, // may be without thickness
      {"*ELEMENT, TYPE=CONN3D2\n2, 1, 1\n", 0, 0},
  };
  for (const Case& c : cases) {
    const json quality = Of(cow_String(oneBrick) + c.elements);
    EXPECT_EQ(quality["negativeVolumes"]["count"], c.negative) << c.elements << quality;
    EXPECT_EQ(quality["zeroVolumes"]["count"], c.zero) << c.elements << quality;
  }
  Of(cow_String(oneBrick) + cases[0].elements);
  EXPECT_NE(ProgramRun({"info", File("m.sim")}).out.find("1 element with a negative volume: 2\n"),
            cow_String::npos);
}

TEST_F(Quality, NodesInOnePlace) {
  // The brick is 1 wide: 1e-10 of it is one place, 1e-9 is another.
  const json found =
      Of(cow_String(oneBrick) + "*NODE\n20, 1.00000000005, 1., 1.\n21, 1., 1., 0.99999999995\n"
                                "22, 1.000000001, 0., 0.\n23, 0., 0., 0.\n")["duplicateNodes"];
  EXPECT_EQ(found["count"], 3);
  EXPECT_EQ(found["first"], (json{"20 at 7", "21 at 7", "23 at 1"}));
}

TEST_F(Quality, ANodeFarAwayMovesNoOtherTogether) {
  const json found = Of(cow_String(oneBrick) + "*NODE\n20, 1., 1., 1.0000000001\n"
                                               "21, 1e30, 0., 0.\n22, 1e30, 0., 0.\n"
                                               "23, 1.000000001, 0., 0.\n")["duplicateNodes"];
  EXPECT_EQ(found["first"], (json{"20 at 7", "22 at 21"}));
}

TEST_F(Quality, NodesOfTwoInstancesInOnePlace) {
  const json found = Of("*PART, NAME=P\n*NODE\n1, 0., 0., 0.\n2, 1., 0., 0.\n"
                        "*ELEMENT, TYPE=T3D2\n1, 1, 2\n*END PART\n*ASSEMBLY, NAME=A\n"
                        "*INSTANCE, NAME=L, PART=P\n*END INSTANCE\n"
                        "*INSTANCE, NAME=R, PART=P\n1., 0., 0.\n*END INSTANCE\n"
                        "*END ASSEMBLY\n")["duplicateNodes"];
  EXPECT_EQ(found["count"], 1);
  EXPECT_EQ(found["first"], (json{"R.1 at L.2"}));
}

// Wherever two nodes lie, also astride the borders of the search's cells.
TEST_F(Quality, NoPairOfCloseNodesIsMissed) {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> place(0, 1);
  std::uniform_real_distribution<double> little(-0.9e-10, 0.9e-10);
  constexpr int pairs = 30000;
  cow_String deck = "*NODE\n100000, 0., 0., 0.\n100001, 1., 1., 1.\n";
  char line[256];
  for (int i = 1; i <= pairs; ++i) {
    const double x = place(random), y = place(random), z = place(random);
    std::snprintf(line, sizeof line, "%d, %.17g, %.17g, %.17g\n%d, %.17g, %.17g, %.17g\n", i, x, y,
                  z, i + pairs, x + little(random), y + little(random), z + little(random));
    deck += line;
  }
  EXPECT_EQ(Of(deck)["duplicateNodes"]["count"], pairs);
}

TEST_F(Quality, AllNodesInOnePlaceAndNoneAtAll) {
  cow_String deck = "*NODE\n";
  for (int i = 1; i <= 50000; ++i) deck += std::to_string(i) + ", 3., 4., 5.\n";
  EXPECT_EQ(Of(deck)["duplicateNodes"]["count"], 49999);
  EXPECT_EQ(Of("*HEADING\nx\n")["duplicateNodes"]["count"], 0);
}

} // namespace
