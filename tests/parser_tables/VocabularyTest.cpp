#include "parser/inp_KeywordTable.h"
#include "parser/inp_NameIndex.h"
#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

constexpr int stepBlock = 29;

const inp_KeywordTable& table() {
  return inp_KeywordTable::Instance();
}

bool isVariant(const inp_KeywordRow& row) {
  return row.role == inp_KeywordRole::Variant;
}

// "CO-SIMULATION REGION" -> "CoSimulationRegion"
std::string camelCase(std::string_view name) {
  std::string camel;
  bool first = true;
  for (char c : name) {
    if (c == ' ' || c == '-')
      first = true;
    else {
      camel += first ? c : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
      first = false;
    }
  }
  return camel;
}

TEST(Vocabulary, IsLargeEnough) {
  EXPECT_GE(table().Rows().size(), 546u);
}

TEST(Vocabulary, NamesAndOperationsAreUniqueAndWellFormed) {
  // Their operations are spelt otherwise than their names.
  const std::map<std::string, std::string> odd = {{"NONLINEAR BH", "NonlinearBH"},
                                                  {"NONSTRUCTURAL MASS", "NonStructuralMass"}};
  std::set<std::string> names;
  std::set<std::string_view> suffixes;
  for (const inp_KeywordRow& row : table().Rows()) {
    const std::string name(row.name);
    EXPECT_TRUE(suffixes.insert(row.suffix).second) << row.suffix;
    EXPECT_EQ(name.find("  "), std::string::npos) << name;
    if (isVariant(row)) {
      EXPECT_TRUE(row.suffix.ends_with(camelCase(name))) << row.suffix;
      continue;
    }
    EXPECT_TRUE(names.insert(std::string(inp_FoldedName(name).Text())).second) << name;
    EXPECT_EQ(row.suffix, odd.count(name) ? odd.at(name) : camelCase(name));
    EXPECT_EQ(table().Find(name), row.kind) << name;
  }
}

TEST(Vocabulary, VariantsShareTheRowTheyStandFor) {
  for (const inp_KeywordRow& row : table().Rows()) {
    if (!isVariant(row)) continue;
    const inp_KeywordRow* plain = table().Row(table().Find(row.name));
    ASSERT_NE(plain, nullptr) << row.suffix;
    EXPECT_TRUE(std::ranges::equal(plain->parameters, row.parameters)) << row.suffix;
    EXPECT_EQ(plain->data, row.data);
    EXPECT_EQ(plain->block, row.block);
    EXPECT_EQ(row.levels & ~plain->levels, 0u) << row.suffix;
  }
}

TEST(Vocabulary, ParametersAreNormalisedAndUnique) {
  for (const inp_KeywordRow& row : table().Rows()) {
    EXPECT_EQ(std::ranges::adjacent_find(row.parameters), row.parameters.end()) << row.name;
    for (std::string_view name : row.parameters) {
      EXPECT_EQ(name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-"),
                std::string_view::npos)
          << row.name << ": " << name;
      const inp_ParameterMatch match = table().ResolveParameter(row.kind, name);
      EXPECT_EQ(match.kind, inp_ParameterMatch::Kind::Exact) << row.name << ": " << name;
    }
  }
}

// Of two rows for one parameter of one keyword the words of one would be nobody's.
TEST(Vocabulary, ValuesAreGivenOnce) {
  const struct {
    std::string_view parameter;
    std::vector<inp_KeywordEnm> keywords;
  } values[] = {
#define INP_VALUES(Parameter, Words, ...) {Parameter, {__VA_ARGS__}},
#include "parser/inp_values.def"
  };
  std::set<std::pair<inp_KeywordEnm, std::string_view>> given;
  for (const auto& row : values)
    for (const inp_KeywordEnm keyword : row.keywords) {
      const inp_KeywordRow& of = *table().Row(keyword);
      EXPECT_TRUE(given.emplace(keyword, row.parameter).second)
          << "inp_values.def has " << row.parameter << " of *" << of.name << " twice";
      EXPECT_TRUE(std::ranges::binary_search(of.parameters, row.parameter))
          << "inp_values.def: *" << of.name << " has no parameter " << row.parameter;
      std::set<std::string> words;
      for (const std::string_view word : table().WordsOf(keyword, row.parameter))
        EXPECT_TRUE(words.insert(inp_KeywordTable::BareWord(word)).second)
            << "inp_values.def: " << row.parameter << " of *" << of.name << ": " << word;
    }
}

// Only what stands in a step goes back with the steps; a sub-option goes back with a parent.
TEST(Vocabulary, BlocksFollowLevels) {
  for (const inp_KeywordRow& row : table().Rows()) {
    ASSERT_GE(row.block, 1) << row.name;
    ASSERT_LE(row.block, stepBlock) << row.name;
    if (row.levels == inp_LevelsSub) {
      EXPECT_TRUE(std::ranges::any_of(row.parents, [&](inp_KeywordEnm parent) {
        return table().Row(parent)->block == row.block;
      })) << row.name;
    } else if (row.kind != inp_KwStep) {
      EXPECT_EQ(row.block == stepBlock, row.levels == inp_LevelsStep) << row.name;
    }
  }
}

TEST(Vocabulary, SuboptionsHangTogether) {
  for (const inp_KeywordRow& row : table().Rows()) {
    for (inp_KeywordEnm parent : row.parents) {
      EXPECT_TRUE(table().IsSuboptionOf(row.kind, parent)) << row.name;
      EXPECT_TRUE(std::ranges::count(table().Row(parent)->children, row.kind) == 1) << row.name;
      EXPECT_FALSE(table().IsSuboptionOf(parent, row.kind)) << row.name << ": both ways";
    }
    for (inp_KeywordEnm child : row.children)
      EXPECT_TRUE(table().IsSuboptionOf(child, row.kind)) << row.name;
  }
}

// Every sub-option hangs, by some chain of parents, from a keyword that stands of itself.
TEST(Vocabulary, EverySuboptionIsReachable) {
  std::set<inp_KeywordEnm> reached;
  std::vector<inp_KeywordEnm> open;
  for (const inp_KeywordRow& row : table().Rows())
    if (row.levels != inp_LevelsSub) open.push_back(row.kind);
  while (!open.empty()) {
    const inp_KeywordEnm kind = open.back();
    open.pop_back();
    if (!reached.insert(kind).second) continue;
    for (inp_KeywordEnm child : table().Row(kind)->children) open.push_back(child);
  }
  for (const inp_KeywordRow& row : table().Rows()) EXPECT_TRUE(reached.count(row.kind)) << row.name;
}

TEST(Vocabulary, EveryScopeCanBeClosed) {
  std::set<inp_KeywordEnm> closers;
  for (const inp_KeywordRow& row : table().Rows()) {
    const inp_KeywordEnm closer = table().CloserOf(row.kind);
    EXPECT_EQ(closer != inp_NullKeyword, row.role == inp_KeywordRole::Open) << row.name;
    if (closer == inp_NullKeyword) continue;
    EXPECT_EQ(table().Row(closer)->role, inp_KeywordRole::Close);
    closers.insert(closer);
  }
  for (const inp_KeywordRow& row : table().Rows())
    EXPECT_EQ(closers.count(row.kind) == 1, row.role == inp_KeywordRole::Close) << row.name;
  EXPECT_EQ(table().CloserOf(inp_KwInstance), inp_KwEndInstance);
  EXPECT_EQ(table().CloserOf(inp_KwStep), inp_KwEndStep);
}

TEST(Vocabulary, FindsAnySpelling) {
  const std::pair<std::string, inp_KeywordEnm> cases[] = {
      {"SOLID SECTION", inp_KwSolidSection},
      {"solidsection", inp_KwSolidSection},
      {"Solid \t Section ", inp_KwSolidSection},
      {"pre-tension section", inp_KwPreTensionSection},
      {"nset", inp_KwNset}, // never the assembly's
      {"NONSTRUCTURAL MASS", inp_KwNonStructuralMass},
      {"m1", inp_KwM1},
      {"", inp_UnknownKeyword},
      {"SOLID SECTIONS", inp_UnknownKeyword},
      {"SOLID", inp_UnknownKeyword}, // keywords are not abbreviated
      {std::string(64, 'A'), inp_UnknownKeyword},
      {std::string(100000, 'A'), inp_UnknownKeyword},
  };
  for (const auto& [text, kind] : cases) EXPECT_EQ(table().Find(text), kind) << text.substr(0, 80);
}

TEST(Vocabulary, KindsOutsideHaveNoRow) {
  for (inp_KeywordEnm kind : {inp_NullKeyword, inp_KeywordEnd, inp_UnknownKeyword}) {
    EXPECT_EQ(table().Row(kind), nullptr);
    EXPECT_FALSE(table().MayStandAt(kind, inp_LevelsModel));
    EXPECT_FALSE(table().IsSuboptionOf(kind, inp_KwMaterial));
  }
  EXPECT_EQ(table().Row(inp_KwHeading)->kind, inp_KwHeading);
  EXPECT_EQ(inp_UnknownKeyword, 10005);
}

TEST(Vocabulary, TellsSuboptions) {
  const struct {
    inp_KeywordEnm child, parent;
    bool is;
  } cases[] = {
      {inp_KwElastic, inp_KwMaterial, true},
      {inp_KwNoTension, inp_KwElastic, true},
      {inp_KwRateDependent, inp_KwPlastic, true},
      {inp_KwPotential, inp_KwCreep, true},
      {inp_KwCreep, inp_KwGasketBehavior, true},
      {inp_KwFriction, inp_KwSurfaceInteraction, true},
      {inp_KwFriction, inp_KwChangeFriction, true},
      {inp_KwSpring, inp_KwIts, true},
      {inp_KwRebarLayer, inp_KwMembraneSection, true},
      {inp_KwDamageStabilization, inp_KwDamageEvolution, true},
      {inp_KwContactInclusions, inp_KwContact, true},
      {inp_KwMaterial, inp_KwElastic, false},
      {inp_KwRateDependent, inp_KwMaterial, false},
      {inp_KwBoundary, inp_KwStep, false}, // what stands in a step is no sub-option
      {inp_KwNodeOutput, inp_KwOutput, false},
  };
  for (const auto& c : cases)
    EXPECT_EQ(table().IsSuboptionOf(c.child, c.parent), c.is)
        << table().Row(c.child)->name << " under " << table().Row(c.parent)->name;
}

TEST(Vocabulary, TellsLevels) {
  EXPECT_TRUE(table().MayStandAt(inp_KwNode, inp_LevelsPart));
  EXPECT_TRUE(table().MayStandAt(inp_KwNset, inp_LevelsAssembly));
  EXPECT_FALSE(table().MayStandAt(inp_KwNode, inp_LevelsStep));
  EXPECT_TRUE(table().MayStandAt(inp_KwBoundary, inp_LevelsStep));
  EXPECT_TRUE(table().MayStandAt(inp_KwBoundary, inp_LevelsModel));
  EXPECT_FALSE(table().MayStandAt(inp_KwStatic, inp_LevelsModel));
  EXPECT_FALSE(table().MayStandAt(inp_KwElastic, inp_LevelsModel));
  for (const char* name : {"PRESTRESS HOLD", "BLOCKAGE", "COMPOSITE MODAL DAMPING"})
    EXPECT_TRUE(table().MayStandAt(table().Find(name), inp_LevelsStep)) << name;
}

TEST(Vocabulary, ResolvesParameters) {
  using Kind = inp_ParameterMatch::Kind;
  const struct {
    inp_KeywordEnm keyword;
    std::string_view text;
    Kind kind;
    std::string_view name;
  } cases[] = {
      {inp_KwFrequency, "DAMPING PROJECTION", Kind::Exact, "dampingprojection"},
      {inp_KwElset, "elset", Kind::Exact, "elset"},
      {inp_KwElset, "GEN", Kind::Abbreviated, "generate"},
      {inp_KwNset, "Gener ATE", Kind::Exact, "generate"},
      {inp_KwElset, "in", Kind::Ambiguous, ""}, // instance, internal
      {inp_KwElset, "inst", Kind::Abbreviated, "instance"},
      {inp_KwElset, "generates", Kind::Unknown, ""},
      {inp_KwElset, "", Kind::Unknown, ""},
      {inp_KwEndPart, "name", Kind::Unknown, ""},
      {inp_KwRestart, "inc", Kind::Exact, "inc"}, // though "increment" begins so
      {inp_KwSolidSection, "mat", Kind::Abbreviated, "material"},
      {inp_KwDiscreteSection, "ma", Kind::Unknown, ""}, // too short for a list that is open
      {inp_KwOutput, "mode list", Kind::Exact, "modelist"},
      {inp_KwField, "number", Kind::Exact, "number"}, // though "numberfields" begins so
      {inp_KwCoSimulationControls, "Scheme Modifier", Kind::Exact, "schememodifier"},
      {inp_UnknownKeyword, "name", Kind::Unknown, ""},
  };
  for (const auto& c : cases) {
    const inp_ParameterMatch match = table().ResolveParameter(c.keyword, c.text);
    EXPECT_EQ(match.kind, c.kind) << c.text;
    EXPECT_EQ(match.name, c.name) << c.text;
  }
  const auto match = table().ResolveParameter(inp_KwElset, "in");
  ASSERT_EQ(match.candidates.size(), 2u);
  EXPECT_EQ(match.candidates[0], "instance");
  EXPECT_EQ(match.candidates[1], "internal");
}

TEST(Vocabulary, OffersTheNearestName) {
  const std::pair<std::string, std::string_view> keywords[] = {
      {"SOLD SECTION", "SOLID SECTION"}, {"materail", "MATERIAL"}, {"nodes", "NODE"},
      {"shellsecton", "SHELL SECTION"},  {"XYZZY PLUGH", ""},      {"", ""},
      {std::string(100000, 'N'), ""},
  };
  for (const auto& [text, name] : keywords)
    EXPECT_EQ(table().NearestKeyword(text), name) << text.substr(0, 80);
  EXPECT_EQ(table().NearestParameter(inp_KwElset, "generte"), "generate");
  EXPECT_EQ(table().NearestParameter(inp_UnknownKeyword, "generte"), "");
  EXPECT_EQ(table().NearestElement("sprnga"), "SPRINGA");
}

} // namespace
