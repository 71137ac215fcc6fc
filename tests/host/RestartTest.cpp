#include "tests/host/StepAsText.h"

namespace {

bool holds(std::string_view text, std::string_view what) {
  return text.find(what) != text.npos;
}

// What a restart makes of the nodes, elements and sets of its base.
class Restart : public ProgramTest {
protected:
  // The model as a deck, once the second deck has been converted into what the first one gave.
  cow_String Written(const cow_String& base, const cow_String& more, int exitCode = 0) const {
    const cow_List<cow_List<cow_String>> runs = {
        {"convert", Deck("base.inp", base), "-o", File("base.sim")},
        {"convert", Deck("more.inp", more), "--restart", File("base.sim"), "-o", File("more.sim")},
        {"check", File("more.sim")},
        {"write", File("more.sim"), "-o", File("more.out")}};
    for (const cow_List<cow_String>& words : runs) {
      const ProgramRun run(words);
      EXPECT_EQ(run.exitCode, words[1] == File("more.inp") ? exitCode : 0) << words[0] << run.err;
    }
    return readFile(m_folder / "more.out");
  }
};

constexpr const char* kBase = "*NODE, NSET=N\n1, 0., 0., 0.\n2, 1., 0., 0.\n3, 2., 0., 0.\n"
                              "*ELEMENT, TYPE=T3D2, ELSET=T\n1, 1, 2\n"
                              "*ELEMENT, TYPE=B31, ELSET=B\n5, 1, 2, 3\n6, 2, 3\n";

} // namespace

TEST_F(Restart, MakesNodesAndElementsOfThoseOfItsBase) {
  const cow_String deck = Written(kBase, "*NCOPY, OLD SET=N, CHANGE NUMBER=10, SHIFT, NEW SET=M\n"
                                         "0., 0., 4.\n"
                                         "*NGEN\n1, 11, 5\n"
                                         "*ELGEN, ELSET=G\n1, 2, 1, 1\n"
                                         "*ELCOPY, OLDSET=B, ELEMENT SHIFT=10, SHIFT NODES=10\n"
                                         "*NSET, NSET=OF, ELSET=G\n"
                                         "*NSET, NSET=N\n12\n"
                                         "*SURFACE, NAME=S\nB, END1\nG, END2\n");
  for (const char* lines :
       {"11, 0., 0., 4.\n12, 1., 0., 4.\n13, 2., 0., 4.\n6, 0., 0., 2.\n",
        "*NSET, NSET=N\n1, 2, 3, 12\n", "*NSET, NSET=M\n11, 12, 13\n", "*NSET, NSET=OF\n1, 2, 3\n",
        "*ELEMENT, TYPE=T3D2\n2, 2, 3\n", "*ELEMENT, TYPE=B31\n15, 11, 12, 13\n16, 12, 13\n",
        "*ELSET, ELSET=G\n1, 2\n"})
    EXPECT_NE(deck.find(lines), cow_String::npos) << lines << deck;
  // Read again it is one mesh, and the same one.
  ProgramRun({"convert", File("more.out"), "-o", File("again.sim")});
  const ProgramRun same({"diff", File("more.sim"), File("again.sim")});
  EXPECT_EQ(same.exitCode, 0) << same.out;
  cow_String moved = deck;
  moved.replace(moved.find("12, 1., 0., 4.") + 4, 2, "5.");
  const ProgramRun other({"diff", File("more.sim"), Deck("moved.inp", moved)});
  EXPECT_TRUE(other.exitCode == 1 && holds(other.out, "coordinates")) << other.out;
}

// The model is read by then; what is to be written remains.
TEST_F(Restart, KeepsWhatItIsToWrite) {
  const cow_String deck =
      Written("*NODE\n1, 0.\n", "*RESTART, READ, WRITE, STEP=2, FREQUENCY=7\n*RESTART, READ\n");
  EXPECT_NE(deck.find("*RESTART, WRITE, FREQUENCY=7\n"), cow_String::npos) << deck;
  EXPECT_EQ(deck.find("READ"), cow_String::npos) << deck;
}

// What is kept as text stands behind what its base has, and before what it brings along itself.
TEST_F(Restart, KeepsTextsBeforeWhatFollowsThem) {
  const cow_String deck = Written("*NODE\n1, 0.\n*TIME POINTS, NAME=ONE\n1.\n",
                                  "*ASSEMBLY, NAME=A\n*END ASSEMBLY\n*TIME POINTS, NAME=ONE\n2.\n"
                                  "*TIME POINTS, NAME=THREE\n3.\n");
  const std::size_t text = deck.find("\n2.\n");
  EXPECT_TRUE(deck.find("\n1.\n") < text && text < deck.find("NAME=THREE")) << deck;
  const ProgramRun run({"convert", File("more.inp"), "--restart", File("base.sim"), "-o",
                        File("more.sim"), "--force"});
  EXPECT_TRUE(run.Says("has no assembly, and gets none")) << run.err;
}

// Its last steps have no procedure: what they say holds in the restart's first one.
TEST_F(Restart, TellsWhatItsBaseLeavesToItsFirstStep) {
  const cow_String base = Deck("base.inp", "*NODE\n1, 0.\n*STEP, PERTURBATION\n*STATIC\n*END STEP\n"
                                           "*STEP, NAME=A, EXTRAPOLATION=NO, INC=5\n*END STEP\n"
                                           "*STEP, NAME=B, NLGEOM=NO\n*END STEP\n");
  ASSERT_EQ(ProgramRun({"convert", base, "-o", File("base.sim")}).exitCode, 0);
  const cow_String more = Deck("more.inp", "*STEP, INC=9\n*STATIC, RIKS\n1., 1.\n*END STEP\n");
  const ProgramRun run({"convert", more, "--restart", File("base.sim"), "-o", File("m.sim")});
  EXPECT_TRUE(run.Says("holds in this one, too: NLGEOM, EXTRAPOLATION.")) << run.err;
  EXPECT_TRUE(run.Says("EXTRAPOLATION=NO is not permitted with this step type.")) << run.err;
}

// Steps are added behind all of its base, one of which is kept as text.
TEST_F(Restart, TellsAStepThatIsNotTheLastOfItsBase) {
  const cow_String base = Deck("base.inp", "*NODE\n1, 0.\n*STEP\n*STATIC\n*END STEP\n");
  ProgramRun({"convert", base, "-o", File("base.sim")});
  addStepAsText(m_folder / "base.sim", "*STEP\n", "*STATIC\n", 1);
  const std::pair<const char*, const char*> cases[] = {
      {"1", "has 2 steps; those behind step 1 stay"}, {"2", ""}, {"3", "has no step 3, but 2"}};
  for (const auto& [step, told] : cases) {
    const cow_String more = Deck("more.inp", cow_String("*RESTART, READ, STEP=") + step +
                                                 "\n*STEP\n*STATIC\n*END STEP\n");
    const ProgramRun run(
        {"convert", more, "--restart", File("base.sim"), "-o", File("m.sim"), "--force"});
    EXPECT_EQ(run.Says("The model that is restarted"), *told != 0) << step << run.err;
    EXPECT_TRUE(run.Says(told)) << step << run.err;
  }
}

// Its lines alone lie in the plane; what they turn about does not.
TEST_F(Restart, GoesOnInTheSpaceOfItsBase) {
  const cow_String deck = Written("*NODE\n1, 1., 0., 0.\n3, 0., 0., 1.\n9, 0., 0., 0.\n",
                                  "*NGEN, LINE=C\n1, 3, 1, 9\n");
  EXPECT_NE(deck.find("2, 0.70710678"), cow_String::npos) << deck;
  EXPECT_NE(deck.find(", 0., 0.70710678"), cow_String::npos) << deck;
}

TEST_F(Restart, LeavesThePlaneOfItsBase) {
  Written("*NODE, NSET=N\n1, 1., 0.\n", "*NCOPY, OLD SET=N, CHANGE NUMBER=1, SHIFT\n0., 0., 1.\n");
  const ProgramRun info({"info", File("more.sim")});
  EXPECT_NE(info.out.find("dimensions: 3"), cow_String::npos) << info.out;
}

// Two nodes are made in the middle of its faces, with labels above all that the base has.
TEST_F(Restart, CompletesAGasketOnNodesOfItsBase) {
  const char* const nodes = "*NODE\n1, 0., 0., 0.\n2, 2., 0., 0.\n3, 2., 2., 0.\n4, 0., 2., 0.\n"
                            "5, 0., 0., 1.\n6, 2., 0., 1.\n7, 2., 2., 1.\n8, 0., 2., 1.\n"
                            "9, 1., 0., 0.\n10, 2., 1., 0.\n11, 1., 2., 0.\n12, 0., 1., 0.\n"
                            "13, 1., 0., 1.\n14, 2., 1., 1.\n15, 1., 2., 1.\n16, 0., 1., 1.\n";
  const cow_String gasket = "1, 1, 2, 3, 4, 5, 6, 7, 8, 9,\n10, 11, 12, 13, 14, 15, 16\n";
  const cow_String deck = Written(nodes, "*ELEMENT, TYPE=GK3D18\n" + gasket);
  EXPECT_NE(deck.find("*ELEMENT, TYPE=GK3D18\n" + gasket), cow_String::npos) << deck;
  const ProgramRun dump({"dump", File("more.sim")});
  EXPECT_NE(dump.out.find("0: 1. 1. 0.\n"), cow_String::npos) << dump.out;
  EXPECT_NE(dump.out.find("1: 1. 1. 1.\n"), cow_String::npos) << dump.out;
}

// What the base has, or an earlier restart has brought, is not defined a second time.
TEST_F(Restart, LeavesOutMaterialsThatTheModelHas) {
  const cow_String steel = "*MATERIAL, NAME=STEEL\n*ELASTIC\n210., 0.3\n";
  const cow_String more =
      "*PHYSICAL CONSTANTS, ABSOLUTE ZERO=-1.\n"
      "*MATERIAL, NAME=Steel\n*PLASTIC\n9., 0.\n*RATE DEPENDENT\n9., 9.\n*STRANGER\n8.\n"
      "*MATERIAL, NAME=NEW\n*ELASTIC\n7., 0.\n"
      "*GASKET BEHAVIOR, NAME=G\n*GASKET CONTACT AREA\n9.\n*PLASTIC\n7., 0.\n"
      "*PHYSICAL CONSTANTS, ABSOLUTE ZERO=-1.\n*DENSITY\n7.\n"
      "*MATERIAL, NAME=NEW\n*DENSITY\n9.\n";
  Written("*PHYSICAL CONSTANTS, ABSOLUTE ZERO=-273.15\n" + steel +
              "*GASKET BEHAVIOR, NAME=G\n*GASKET CONTACT AREA\n1.\n",
          "*NODE\n1, 0., 0., 0.\n");
  const ProgramRun first(
      {"convert", Deck("a.inp", more), "--restart", File("more.sim"), "-o", File("a.sim")});
  for (const char* told :
       {"a.inp:1:1: error: The model that is restarted has physical constants",
        "a.inp:2:1: error: Material with name \"STEEL\" has already been defined",
        "a.inp:12:1: error: Gasket behavior with name \"G\" has already",
        "a.inp:17:1: error: The model that is restarted has physical constants",
        "a.inp:20:1: error: Material with name \"NEW\" has already"})
    EXPECT_TRUE(first.Says(told)) << told << first.err;
  const ProgramRun second({"convert", Deck("b.inp", "*MATERIAL, NAME=NEW\n*DENSITY\n9.\n"),
                           "--restart", File("a.sim"), "-o", File("b.sim")});
  EXPECT_TRUE(second.Says("b.inp:1:1: error: Material with name \"NEW\" has already"))
      << second.err;
  const cow_String deck = ProgramRun({"write", File("b.sim")}).out;
  EXPECT_NE(deck.find("*PHYSICAL CONSTANTS, ABSOLUTE ZERO=-273.15\n" + steel +
                      "*MATERIAL, NAME=NEW\n*ELASTIC\n7., 0.\n*PLASTIC\n7., 0.\n*DENSITY\n7.\n"
                      "*GASKET BEHAVIOR, NAME=G\n*GASKET CONTACT AREA\n1.\n"),
            cow_String::npos)
      << deck;
  EXPECT_NE(deck.find("*STRANGER\n8.\n"), cow_String::npos) << deck; // which its message promises
  EXPECT_EQ(deck.find("9."), cow_String::npos) << deck;
}

// They are one set, to which each keyword adds.
TEST_F(Restart, TakesPhysicalConstantsInPieces) {
  const cow_String pieces =
      "*PHYSICAL CONSTANTS, ABSOLUTE ZERO=-1.\n*PHYSICAL CONSTANTS, UNIVERSAL GAS=8.\n";
  EXPECT_TRUE(Written("*NODE\n1, 0.\n", pieces).ends_with(pieces));
}

// Of two sections of an element the later one holds.
TEST_F(Restart, GoesOnBehindWhatItsBaseHas) {
  const auto sections = [](const char* size, const char* temperature) {
    return cow_String("*BEAM SECTION, ELSET=B, MATERIAL=M, SECTION=RECT\n") + size +
           "\n0., 0., 1.\n*INITIAL CONDITIONS, TYPE=TEMPERATURE\nN, " + temperature + "\n";
  };
  const cow_String deck = Written(kBase + cow_String("*MATERIAL, NAME=M\n*ELASTIC\n1., 0.\n") +
                                      sections("1., 1.", "10."),
                                  sections("2., 2.", "20.") + sections("3., 3.", "30."));
  std::size_t at = 0;
  for (const char* line : {"1., 1.", "2., 2.", "3., 3.", "N, 10.", "N, 20.", "N, 30."})
    EXPECT_NE(at = deck.find(line, at), cow_String::npos) << line << deck;
}

// Behind other keywords, too: else they would be the last material's.
TEST_F(Restart, LeavesOutSuboptionsOfMaterialsThatTheModelHas) {
  const cow_String steel = "*MATERIAL, NAME=STEEL\n*ELASTIC\n210., 0.3\n";
  const cow_String deck =
      Written(steel,
              "*MATERIAL, NAME=STEEL\n*PLASTIC\n9., 0.\n*NODE\n1, 0., 0., 0.\n"
              "*POTENTIAL\n9., 9., 9., 9., 9., 9.\n*NODE\n2, 0., 0., 0.\n*DENSITY\n9.\n",
              1);
  EXPECT_TRUE(deck.ends_with("2, 0., 0., 0.\n" + steel)) << deck;
}

// Blocks without an owner, another heading, a place within a step: nothing goes in silence.
TEST_F(Restart, TellsWhatItsBaseDoesNotTake) {
  const cow_String base = "*HEADING\nfirst\n*PART, NAME=P\n*NODE\n1, 0., 0., 0.\n*END PART\n"
                          "*PART, NAME=P2\n*END PART\n*ASSEMBLY, NAME=A\n"
                          "*INSTANCE, NAME=I, PART=P\n1., 0., 2.\n*END INSTANCE\n*END ASSEMBLY\n"
                          "*STEP\n*STATIC\n*END STEP\n";
  ASSERT_EQ(ProgramRun({"convert", Deck("base.inp", base), "-o", File("base.sim")}).exitCode, 0);
  const auto inInstance = [](const cow_String& parameters) {
    return "*ASSEMBLY, NAME=A\n*INSTANCE" + parameters +
           "\n*NSET, NSET=Q\n1\n*END INSTANCE\n*END ASSEMBLY\n";
  };
  struct Case {
    cow_String deck;
    const char* says;
    const char* leftOut; // null: nothing
  };
  const Case cases[] = {
      {"*PART\n*NODE\n4, 5., 5., 5.\n*END PART\n", ":1:1: error: Part name is not defined.",
       "1 part"},
      {inInstance(", PART=P"), ":2:1: error: Instance name is not defined.", "1 instance"},
      {inInstance(", INSTANCE=I"), ":2:1: error: Instance name is not defined.", "1 instance"},
      {inInstance(", NAME=I, PART=NOPE"), ":2:20: error: Part \"NOPE\" is not defined", nullptr},
      {inInstance(", NAME=I, PART=P2"), "error: The instance of this name in the model", nullptr},
      {inInstance(", NAME=J, PART=P"), "error: The model that is restarted has no \"J\"",
       "1 instance"},
      {inInstance(", NAME=I, PART=P"), "0 errors, 0 warnings", nullptr},
      {inInstance(", NAME=I, PART=P\n1, , 2"), "0 errors, 0 warnings", nullptr},
      {inInstance(", NAME=I, PART=P\n1., 3."), ":3:1: warning: The instance stays where it is",
       "1 placement"},
      {inInstance(", NAME=I, PART=P\n1., 0., 2.\n0., 0., 0., 0., 0., 1., 90."),
       ":3:1: warning: The instance stays where it is", "1 placement"},
      {"*ASSEMBLY, NAME=B\n*END ASSEMBLY\n", ":1:12: warning: The assembly of the model that is",
       "1 assembly name"},
      {"*PART, NAME=Q\n*TRANSFORM, NSET=X\n1., 0., 0., 0., 1., 0.\n*MPC\nPIN, 1, 2\n*END PART\n",
       "error: The model that is restarted has no \"Q\", and a restart cannot add one; it is left "
       "out with "
       "all that stands in it.",
       "1 part"},
      {"*HEADING\nsecond\n", ":1:1: warning: The model keeps the heading of its base", "1 heading"},
      {"*INITIAL CONDITIONS, TYPE=TEMPERATURE\nQ, 1.\n*STEP\n*STATIC\n*END STEP\n",
       ":1:1: error: The model that is restarted has steps", "1 condition before the first step"},
      {"*RESTART, READ, INC=5\n", "warning: A restart goes on behind the last step of its model",
       "1 place of a restart"}};
  for (const Case& one : cases) {
    const ProgramRun run({"convert", Deck("m.inp", one.deck), "--restart", File("base.sim"), "-o",
                          File("m.sim"), "--force"});
    const cow_String says = run.err + run.out;
    EXPECT_TRUE(holds(says, one.says)) << one.deck << says;
    EXPECT_EQ(run.exitCode, holds(one.says, "error: ") ? 1 : 0) << one.deck;
    const cow_String info = ProgramRun({"info", File("m.sim")}).out;
    EXPECT_FALSE(holds(says, "kept as text")) << says;
    EXPECT_FALSE(holds(ProgramRun({"write", File("m.sim")}).out, "TRANSFORM")) << one.deck;
    EXPECT_EQ(holds(info, "left out: "), one.leftOut != nullptr) << one.deck << info;
    EXPECT_TRUE(!one.leftOut || holds(info, one.leftOut)) << one.deck << info;
  }
}

// The mesh that a restart brings says nothing of the one that its base lacks.
TEST_F(Restart, TellsThatItsBaseIsNotWhole) {
  ProgramRun({"convert", Deck("base.inp", "*NODE\n1, x, 0.\n"), "-o", File("base.sim")});
  const ProgramRun run({"convert", Deck("more.inp", "*NODE\n7, 0., 0.\n"), "--restart",
                        File("base.sim"), "-o", File("m.sim")});
  EXPECT_TRUE(run.Says("base.sim: warning: this model was made from a deck with errors"))
      << run.err;
  EXPECT_TRUE(holds(run.out, "1 node, 0 elements (the mesh of its base is left out because of its "
                             "errors), 0 node sets"))
      << run.out;
}

// A set that a restart adds changes no order that counts: in its part nodes stand before elements.
TEST_F(Restart, IsTheModelThatItsDeckGives) {
  Written("*PART, NAME=P\n*NODE\n1, 0., 0.\n2, 1., 0.\n*ELEMENT, TYPE=T2D2, ELSET=E\n1, 1, 2\n"
          "*END PART\n*ASSEMBLY, NAME=A\n*INSTANCE, NAME=I, PART=P\n*END INSTANCE\n"
          "*END ASSEMBLY\n",
          "*PART, NAME=P\n*NSET, NSET=N\n2\n*END PART\n");
  ProgramRun({"convert", File("more.out"), "-o", File("again.sim")});
  const ProgramRun diff({"diff", File("more.sim"), File("again.sim")});
  EXPECT_EQ(diff.exitCode, 0) << diff.out;
}

// What has no nodes is there all the same: others have counted on it.
TEST_F(Restart, FillsNoEmptyPartOfItsBase) {
  const cow_String base = "*PART, NAME=P\n*END PART\n*ASSEMBLY, NAME=A\n"
                          "*INSTANCE, NAME=I, PART=P\n*END INSTANCE\n*END ASSEMBLY\n";
  Written(base, "*ASSEMBLY, NAME=A\n*NSET, NSET=K\n*END ASSEMBLY\n");
  ProgramRun({"convert", File("more.out"), "-o", File("again.sim")});
  const ProgramRun diff({"diff", File("more.sim"), File("again.sim")});
  EXPECT_EQ(diff.exitCode, 0) << diff.out;
  const cow_String node = "*NODE\n1, 0., 0.\n";
  for (const cow_String& more :
       {"*PART, NAME=P\n" + node + "*END PART\n", "*ASSEMBLY, NAME=A\n*INSTANCE, NAME=I, PART=P\n" +
                                                      node + "*END INSTANCE\n*END ASSEMBLY\n"}) {
    const ProgramRun run({"convert", Deck("n.inp", more), "--restart", File("base.sim"), "-o",
                          File("n.sim"), "--force"});
    EXPECT_TRUE(run.Says("error: A restart cannot add nodes or elements")) << run.err;
  }
}

// Even with the nodes that they have; what is new may be defined again.
TEST_F(Restart, DefinesNoElementOfItsBaseAgain) {
  const cow_String more = "*NODE\n4, 3., 0., 0.\n*ELEMENT, TYPE=T3D2\n1, 1, 2\n7, 3, 4\n7, 2, 4\n"
                          "*ELGEN\n7, 2, 1, -1\n"
                          "*ELCOPY, OLDSET=B, ELEMENT SHIFT=0, SHIFT NODES=1\n";
  Deck("base.inp", kBase);
  ProgramRun({"convert", File("base.inp"), "-o", File("base.sim")});
  const ProgramRun run({"convert", Deck("more.inp", more), "--restart", File("base.sim"), "-o",
                        File("more.sim"), "--salvage"});
  const cow_String refused =
      "error: These elements are not this deck section's own and cannot be defined again here: ";
  for (const cow_String& text : {"more.inp:4:1: " + refused + "1", "more.inp:7:1: " + refused + "6",
                                 "more.inp:9:1: " + refused + "5, 6",
                                 cow_String("more.inp:6:1: warning: Elements are defined again")})
    EXPECT_TRUE(run.Says(text)) << text << run.err;
  ProgramRun({"write", File("more.sim"), "-o", File("more.out")});
  const cow_String deck = readFile(m_folder / "more.out");
  EXPECT_NE(deck.find("*ELEMENT, TYPE=T3D2\n1, 1, 2\n*ELEMENT, TYPE=B31\n5, 1, 2, 3\n6, 2, 3\n"
                      "*ELEMENT, TYPE=T3D2\n7, 2, 4\n"),
            cow_String::npos)
      << deck;
}

// What would act in steps that are there, or change what acts in them, is told and left out: the
// deck that is written is as it was.
TEST_F(Restart, DoesNotChangeThePast) {
  const cow_String step = "*STEP\n*STATIC\n*CLOAD, AMPLITUDE=A\nN, 1, 4.\n*END STEP\n";
  const cow_String base = kBase +
                          cow_String("*NODE\n9, 9., 9., 9.\n*NSET, NSET=FREE\n1\n"
                                     "*BEAM GENERAL SECTION, ELSET=B, SECTION=GENERAL\n1.\n"
                                     "*AMPLITUDE, NAME=A\n0., 0., 1., 1.\n"
                                     "*AMPLITUDE, NAME=W\n0., 0., 1., 1.\n"
                                     "*AMPLITUDE, NAME=FREE\n0., 0., 1., 1.\n"
                                     "*FILTER, NAME=F, AMPLITUDE=W\n") +
                          step;
  struct Case {
    const char* deck;
    const char* says; // empty: it is taken
  };
  const Case cases[] = {
      {"*AMPLITUDE, NAME=A\n0., 0., 2., 5.\n*BASELINE CORRECTION\n0.5, 1.5\n",
       ":1:1: error: Amplitude \"A\" of"},
      {"*STEP\n*STATIC\n*AMPLITUDE, NAME=a\n0., 7.\n*END STEP\n",
       ":3:1: error: Amplitude \"A\" of"},
      {"*AMPLITUDE, NAME=W\n0., 7.\n", ":1:1: error: Amplitude \"W\" of"}, // by a text
      {"*TRANSFORM, NSET=FREE\n0., 1., 0., -1., 0., 0.\n",
       ":1:1: error: The model that is restarted has steps, which"},
      {"*NODAL THICKNESS\nFREE, 2.\n", ":1:1: error: The model that is restarted has steps, which"},
      {"*NSET, NSET=N\n9\n", ":1:1: error: Set \"N\" would grow"},
      {"*NODE, NSET=N\n10, 0., 0., 7.\n", ":1:1: error: Set \"N\" would grow"},
      {"*ELSET, ELSET=B\n1\n", ":1:1: error: Set \"B\" would grow"},
      {"*AMPLITUDE, NAME=FREE\n0., 7.\n", ""},
      {"*NSET, NSET=N\n1, 3\n", ""},
      {"*NSET, NSET=FREE\n9\n", ""},
      {"*ELEMENT, TYPE=B31, ELSET=B\n7, 1, 3\n", ""}};
  ProgramRun({"convert", Deck("base.inp", base), "-o", File("base.sim")});
  const cow_String before = ProgramRun({"write", File("base.sim")}).out;
  for (const Case& one : cases) {
    const bool isTaken = *one.says == 0;
    const ProgramRun run({"convert", Deck("m.inp", one.deck), "--restart", File("base.sim"), "-o",
                          File("m.sim"), "--force"});
    EXPECT_EQ(run.exitCode, isTaken ? 0 : 1) << one.deck << run.err;
    EXPECT_TRUE(isTaken || run.Says(one.says)) << one.deck << run.err;
    EXPECT_EQ(ProgramRun({"check", File("m.sim")}).exitCode, 0) << one.deck;
    const cow_String deck = ProgramRun({"write", File("m.sim")}).out;
    const bool hasOwn = holds(one.deck, "*NODE,") || holds(one.deck, "*STEP") || isTaken;
    EXPECT_TRUE(holds(deck, step) && (hasOwn || deck == before)) << one.deck << deck;
  }
}

TEST_F(Restart, TellsOfSurfacesWhoseSetsGrow) {
  Written(kBase + cow_String("*SURFACE, NAME=S\nT, END1\n"), "*NSET, NSET=N\n1\n");
  const ProgramRun run({"convert", Deck("e.inp", "*ELEMENT, TYPE=T3D2, ELSET=T\n9, 2, 3\n"),
                        "--restart", File("base.sim"), "-o", File("e.sim")});
  EXPECT_TRUE(run.Says("e.inp:1:1: warning: Set \"T\" grows; surface \"S\"")) << run.err;
}

// An amplitude defined anew takes the texts of the former one with it.
TEST_F(Restart, ReplacesAnAmplitudeWhole) {
  const cow_String deck = Written("*AMPLITUDE, NAME=A, DEFINITION=PERIODIC\n1, 2., 0., 3.\n4., 5.\n"
                                  "*BASELINE CORRECTION\n0.5, 1.5\n*AMPLITUDE, NAME=B\n0., 1.\n",
                                  "*AMPLITUDE, NAME=A\n0., 7.\n");
  EXPECT_EQ(deck.find("BASELINE"), cow_String::npos) << deck;
  EXPECT_NE(deck.find("*AMPLITUDE, NAME=A\n0., 7.\n"), cow_String::npos) << deck;
}

TEST_F(Restart, SetsNameInstancesOfItsBase) {
  const cow_String deck =
      Written("*PART, NAME=P\n*NODE, NSET=N\n1, 0., 0., 0.\n2, 1., 0., 0.\n3, 2., 0., 0.\n"
              "*ELEMENT, TYPE=T3D2, ELSET=E\n1, 2, 3\n*END PART\n*ASSEMBLY, NAME=A\n"
              "*INSTANCE, NAME=I, PART=P\n*END INSTANCE\n"
              "*INSTANCE, NAME=J, PART=P\n5., 0., 0.\n*NODE\n7, 3., 0., 0.\n*END INSTANCE\n"
              "*NODE\n50, 9., 0., 0.\n*END ASSEMBLY\n",
              "*ASSEMBLY, NAME=A\n*NSET, NSET=X\nI.1, J.N, J.7, 50\n*NSET, NSET=Y, ELSET=J.E\n"
              "*ELSET, ELSET=Z, INSTANCE=I\nE\n*SURFACE, NAME=S\nZ, END1\n*END ASSEMBLY\n");
  for (const char* lines :
       {"*NSET, NSET=X\n50\n*NSET, NSET=X, INSTANCE=I\n1\n*NSET, NSET=X, INSTANCE=J\n1, 2, 3, 7\n",
        "*NSET, NSET=Y, INSTANCE=J\n2, 3\n", "*ELSET, ELSET=Z, INSTANCE=I\n1\n",
        "*INSTANCE, NAME=J, PART=P\n5., 0., 0.\n*NODE\n7, 3., 0., 0.\n*END INSTANCE\n"})
    EXPECT_NE(deck.find(lines), cow_String::npos) << lines << deck;
}

TEST_F(Restart, SetsOfStepsNameInstancesOfItsBase) {
  const cow_String deck =
      Written("*PART, NAME=P\n*NODE\n1, 0., 0., 0.\n2, 1., 0., 0.\n*END PART\n*ASSEMBLY, NAME=A\n"
              "*INSTANCE, NAME=I, PART=P\n*END INSTANCE\n*END ASSEMBLY\n",
              "*STEP\n*STATIC\n*NSET, NSET=S, INSTANCE=I\n2\n*CLOAD\nS, 1, 5.\n*END STEP\n");
  EXPECT_NE(deck.find("*NSET, NSET=S, INSTANCE=I\n2\n"), cow_String::npos) << deck;
}

// They cost themselves, neither what the base's sets hold nor what the deck adds to the mesh.
TEST_F(Restart, KeepsTheMeshWhereLinesOfSetsAreFaulty) {
  const cow_String deck = Written(
      kBase, "*NODE\n4, 3., 0., 0.\n*NSET, NSET=N\nNOBODY, 4\n*NSET, NSET=N, INSTANCE=I\n1\n", 1);
  for (const char* lines : {"4, 3., 0., 0.\n", "*NSET, NSET=N\n1, 2, 3, 4\n"})
    EXPECT_NE(deck.find(lines), cow_String::npos) << lines << deck;
}

// What fails adds nothing to a mesh, and takes no sound base's place.
TEST_F(Restart, ThatFailsLeavesItsBase) {
  ProgramRun({"convert", Deck("base.inp", kBase), "-o", File("base.sim")});
  const cow_String base = readFile(m_folder / "base.sim");
  const cow_String more = Deck("more.inp", "*ELEMENT, TYPE=T3D2\n9, 1, 77\n");
  const ProgramRun forced({"convert", more, "--restart", File("base.sim"), "--force"});
  EXPECT_EQ(forced.exitCode, 1);
  EXPECT_TRUE(forced.Says("base.sim is as it was; ")) << forced.err;
  EXPECT_TRUE(forced.out.empty()) << forced.out;
  EXPECT_TRUE(readFile(m_folder / "base.sim") == base);
  const auto isKept = [&](cow_List<cow_String> words) {
    words.insert(words.begin(), {"convert", more, "--restart", File("base.sim"), "--json"});
    return ProgramRun(words).out.find("\"baseKept\": true") != cow_String::npos;
  };
  EXPECT_TRUE(isKept({"--force"}));
  EXPECT_FALSE(isKept({"-o", File("j.sim")}));
  const ProgramRun run({"convert", more, "--restart", File("base.sim"), "-o", File("m.sim")});
  EXPECT_TRUE(run.Says("; what the restart adds to the mesh is left out because")) << run.err;
  const cow_String counts = "3 nodes, 3 elements (T3D2 1, B31 2) (what its restart adds to the "
                            "mesh is left out because of its errors)";
  for (const char* command : {"info", "check"}) {
    const ProgramRun look({command, File("m.sim")});
    EXPECT_NE(look.out.find(counts), cow_String::npos) << look.out;
  }
  const ProgramRun check({"check", File("m.sim"), File("base.sim")});
  EXPECT_TRUE(check.exitCode == 0 && check.out.ends_with("1 without errors, 1 with errors\n"))
      << check.out;
}
