#include "tests/host/ProgramRun.h"
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

class Sections : public ProgramTest {
protected:
  cow_String Model(std::string_view deck) const {
    const ProgramRun run({"convert", Deck("d.inp", deck), "-o", File("d.sim"), "--force", "-q"});
    EXPECT_EQ(run.err, "");
    return File("d.sim");
  }
};

constexpr const char* shells =
    "*NODE, NSET=ALL\n1, 0., 0.\n2, 1., 0.\n3, 1., 1.\n4, 0., 1.\n"
    "*ELEMENT, TYPE=S4, ELSET=A\n1, 1, 2, 3, 4\n2, 1, 2, 3, 4\n"
    "*ELEMENT, TYPE=S4, ELSET=B\n3, 1, 2, 3, 4\n"
    "*MATERIAL, NAME=STEEL\n*DENSITY\n7.8,\n*MATERIAL, NAME=FOAM\n*DENSITY\n0.1,\n"
    "*ORIENTATION, NAME=ALONG\n1., 0., 0., 0., 1., 0.\n"
    "*DISTRIBUTION TABLE, NAME=T\nLENGTH\n"
    "*DISTRIBUTION, NAME=VARIES, LOCATION=ELEMENT, TABLE=T\n, 1.\n3, 2.\n"
    "*NODAL THICKNESS\nALL, 0.5\n";

TEST_F(Sections, ThicknessIsWhatTheElementsHave) {
  struct Case {
    const char* section;
    json thickness;
    const char* material;
  };
  const Case cases[] = {
      {"*SHELL SECTION, ELSET=A, MATERIAL=STEEL\n2.5, 3\n", 2.5, "STEEL"},
      {"*SHELL SECTION, ELSET=A, COMPOSITE\n0.25, 3, STEEL, 45.\n0.5, 3, FOAM\n0.25, 3, STEEL\n",
       1., "STEEL, FOAM"},
      {"*SHELL SECTION, ELSET=A, COMPOSITE, SYMMETRIC\n0.25, 3, STEEL\n0.5, 3, FOAM\n", 1.5,
       "STEEL, FOAM"},
      {"*SHELL SECTION, ELSET=A, COMPOSITE\n0.25, 3, STEEL\nVARIES, 3, FOAM\n", "distribution",
       "STEEL, FOAM"},
      {"*SHELL SECTION, ELSET=A, MATERIAL=STEEL, SHELL THICKNESS=VARIES\n9., 5\n", "distribution",
       "STEEL"},
      {"*SHELL SECTION, ELSET=A, MATERIAL=STEEL, NODAL THICKNESS\n9., 5\n", "nodal", "STEEL"},
      {"*SHELL GENERAL SECTION, ELSET=A, MATERIAL=FOAM\nVARIES,\n", "distribution", "FOAM"},
      {"*MEMBRANE SECTION, ELSET=A, MATERIAL=FOAM\n0.125,\n", 0.125, "FOAM"},
      {"*SURFACE SECTION, ELSET=A\n", nullptr, ""},
      // The thickness of an open profile is its wall's.
      {"*BEAM SECTION, ELSET=A, MATERIAL=STEEL, SECTION=ARBITRARY\n2, 0., 0., 1., 0., 0.1\n1., 1., "
       "0.1\n",
       nullptr, "STEEL"},
  };
  for (const Case& c : cases) {
    const ProgramRun run({"info", Model(cow_String(shells) + c.section), "--sections", "--json"});
    const json sections = json::parse(run.out)["sections"];
    ASSERT_EQ(sections.size(), 1) << c.section;
    EXPECT_EQ(sections[0]["thickness"], c.thickness) << c.section;
    EXPECT_EQ(sections[0]["material"], c.material) << c.section;
    EXPECT_EQ(sections[0]["elements"], 2) << c.section;
  }
}

TEST_F(Sections, TableAndNames) {
  const cow_String model =
      Model(cow_String(shells) + "*SHELL SECTION, ELSET=A, MATERIAL=STEEL, ORIENTATION=ALONG\n0.1\n"
                                 "*SHELL SECTION, ELSET=B, COMPOSITE\n0.1, , FOAM\n0.2, , FOAM\n");
  const cow_String head =
      "  kind                      name       set  material  orientation  elements  thickness\n";
  const cow_String a =
      "  SHELL SECTION             Section-A  A    STEEL     ALONG               2  0.1\n";
  const cow_String b =
      "  SHELL SECTION, COMPOSITE  Section-B  B    FOAM      -                   1  0.3, 2 plies\n";
  EXPECT_EQ(ProgramRun({"info", model, "--sections"}).out, head + a + b);
  EXPECT_NE(ProgramRun({"info", model}).out.find("sections:\n" + head + a + b), cow_String::npos);
  EXPECT_NE(ProgramRun({"info", model, "--sections", "section-b"}).out.find("0.3, "),
            cow_String::npos);
  const ProgramRun missing({"info", model, "--sections", "Section-C"});
  EXPECT_EQ(missing.exitCode, inps_ExitUsage);
  EXPECT_TRUE(missing.Says("no section \"Section-C\"")) << missing.err;
}

// What the one list tells, the other does: plies, what varies, whose set it is.
TEST_F(Sections, TableAndJsonTellTheSame) {
  struct Case {
    const char* section;
    const char* text;
    json told;
  };
  const Case cases[] = {
      {"*SHELL SECTION, ELSET=A, COMPOSITE, SYMMETRIC\n0.25, 3, STEEL\nVARIES, 3, FOAM\n",
       "0.5 and by distribution VARIES, 2 plies mirrored",
       {{"plies", 2},
        {"symmetric", true},
        {"thickness", "distribution"},
        {"constantThickness", 0.5},
        {"distributions", {"VARIES"}}}},
      {"*SHELL SECTION, ELSET=A, COMPOSITE, SHELL THICKNESS=VARIES\n0.25, 3, STEEL\n",
       "by distribution VARIES, 1 ply",
       {{"plies", 1}, {"constantThickness", nullptr}, {"distributions", {"VARIES"}}}},
      {"*SHELL SECTION, ELSET=A, MATERIAL=STEEL, NODAL THICKNESS\n9., 5\n",
       "nodal",
       {{"thickness", "nodal"}, {"distributions", json::array()}, {"plies", nullptr}}},
      {"*ELSET, ELSET=\"x;\xe2\x80\xae\"\n1\n*SHELL SECTION, ELSET=\"x;\xe2\x80\xae\", "
       "MATERIAL=STEEL\n1.,\n",
       "Section-x;\\u202e  x;\\u202e  STEEL     -                   1  1",
       {{"set", "x;\xe2\x80\xae"}}},
      {"*ELEMENT, TYPE=CONN3D2, ELSET=C\n9, 1, 2\n*CONNECTOR SECTION, ELSET=C\nBUSHING\nALONG,\n",
       "ALONG               1  -",
       {{"orientation", "ALONG"}, {"thickness", nullptr}}},
      // Two characters of two columns each, and one with an accent of its own.
      {"*ELSET, ELSET=\"\xe6\x97\xa5\xe6\x9c\xac\"\n1\n*SHELL SECTION, "
       "ELSET=\"\xe6\x97\xa5\xe6\x9c\xac\", MATERIAL=STEEL\n1.,\n*ELSET, ELSET=\"E\xcc\x81\"\n2\n"
       "*SHELL SECTION, ELSET=\"E\xcc\x81\", MATERIAL=STEEL\n2.,\n",
       "SHELL SECTION  Section-E\xcc\x81     E\xcc\x81     STEEL     -                   1  2",
       {{"set", "\xe6\x97\xa5\xe6\x9c\xac"}}},
  };
  for (const Case& c : cases) {
    const cow_String model = Model(cow_String(shells) + c.section);
    const cow_String out = ProgramRun({"info", model, "--sections"}).out;
    EXPECT_NE(out.find(cow_String("  ") + c.text + "\n"), cow_String::npos) << out;
    const json told = json::parse(ProgramRun({"info", model, "--sections", "--json"}).out);
    for (const auto& [name, value] : c.told.items())
      EXPECT_EQ(told["sections"][0][name], value) << c.section << name;
  }
}

// One of 21 sections is a layup; each has one element of its part, of which there are two.
TEST_F(Sections, ManyAreCountedByKind) {
  cow_String deck = "*PART, NAME=P\n*NODE\n1, 0., 0.\n2, 1., 0.\n3, 1., 1.\n4, 0., 1.\n";
  for (int n = 1; n <= 21; ++n) {
    const cow_String name = std::to_string(n);
    deck += "*ELEMENT, TYPE=S4, ELSET=E" + name + "\n" + name + ", 1, 2, 3, 4\n";
    deck += "*SHELL SECTION, ELSET=E" + name +
            (n == 7 ? ", COMPOSITE\n1., 3, M\n" : ", MATERIAL=M\n1., 5\n");
  }
  const cow_String model = Model(deck + "*END PART\n*ASSEMBLY, NAME=A\n*INSTANCE, NAME=I, PART=P\n"
                                        "*END INSTANCE\n*INSTANCE, NAME=J, PART=P\n1., 0., 0.\n"
                                        "*END INSTANCE\n*END ASSEMBLY\n*MATERIAL, NAME=M\n");
  const cow_String out = ProgramRun({"info", model}).out;
  EXPECT_NE(out.find("21 sections; --sections lists them:\n"
                     "  kind                      sections  elements\n"
                     "  SHELL SECTION                   20        40\n"
                     "  SHELL SECTION, COMPOSITE         1         2\n"),
            cow_String::npos)
      << out;
  const json told = json::parse(ProgramRun({"info", model, "--json"}).out);
  EXPECT_EQ(told["sectionKinds"]["SHELL SECTION"], (json{{"sections", 20}, {"elements", 40}}));
  EXPECT_EQ(told["sections"], nullptr);
  const json all = json::parse(ProgramRun({"info", model, "--sections", "--json"}).out);
  EXPECT_EQ(all["sections"].size(), 21);
  EXPECT_EQ(all["sections"][20]["name"], "Section-P-E21");
}

// Rigid elements, couplings and users' own need none; a set that is given twice counts once.
TEST_F(Sections, CheckCountsElementsWithoutAny) {
  const cow_String deck =
      cow_String(shells) +
      "*ELEMENT, TYPE=R3D4\n11, 1, 2, 3, 4\n*ELEMENT, TYPE=DCOUP3D\n12, 1\n"
      "*USER ELEMENT, TYPE=U1, NODES=2, COORDINATES=3\n1, 2\n*ELEMENT, TYPE=U1\n13, 1, 2\n"
      "*ELEMENT, TYPE=MASS\n14, 1\n15, 2\n*ELEMENT, TYPE=SPRINGA, ELSET=S\n16, 1, 2\n";
  // A mesh alone leaves them to others.
  const cow_String mesh = "*NODE\n1, 0.\n2, 1.\n*ELEMENT, TYPE=T3D2\n1, 1, 2\n";
  for (const auto& [more, isTold] :
       std::initializer_list<std::pair<const char*, bool>>{{"", false},
                                                           {"*MATERIAL, NAME=M\n", true},
                                                           {"*STEP\n*STATIC\n*END STEP\n", true},
                                                           {"*SOLID SECTION, ELSET=NO\n", true}}) {
    const ProgramRun run({"check", Deck("none.inp", mesh + more), "--no-kept"});
    EXPECT_EQ(run.out.find("; 1 element has no section (T3D2 1)") != cow_String::npos, isTold)
        << more << run.out;
  }
  const cow_String some =
      Deck("some.inp", deck + "*SPRING, ELSET=S\n\n1.\n"
                              "*SHELL SECTION, ELSET=A, MATERIAL=STEEL\n1., 5\n");
  const ProgramRun run({"check", some, "--no-kept"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_NE(run.out.find("; 3 elements have no section (S4 1, MASS 2)\n"), cow_String::npos)
      << run.out;
  const json told = json::parse(ProgramRun({"check", some, "--json"}).out);
  EXPECT_EQ(told["withoutSection"], (json{{"S4", 1}, {"MASS", 2}}));
}

// Nothing may name nodes by their place that are not stored.
TEST_F(Sections, ThicknessOfAMeshWithFaultsIsWrittenBack) {
  const cow_String thickness = "*NODAL THICKNESS\n1, 0.5\n";
  const cow_String deck =
      Deck("bad.inp", "*NODE\n1, 0.\n*ELEMENT, TYPE=T3D2\n1, 1, 77\n" + thickness);
  EXPECT_EQ(ProgramRun({"convert", deck, "-o", File("bad.sim")}).exitCode, 1);
  const ProgramRun written({"write", File("bad.sim")});
  EXPECT_EQ(written.exitCode, 0) << written.err;
  EXPECT_NE(written.out.find(thickness), cow_String::npos) << written.out;
}

} // namespace
