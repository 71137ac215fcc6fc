#include "inpS/keywords/inpS_KeywordParameterReader.h"
#include "tests/keywords/DeckKeyword.h"
#include <gtest/gtest.h>

using Reader = inpS_KeywordParameterReader;
using Words = cow_List<cow_String>;

TEST(ParameterReader, BoolValues) {
  struct Case {
    const char* deck;
    bool defaultTrue, defaultFalse;
  };
  const Case cases[] = {
      {"*STEP, NLGEOM=YES", true, true},      {"*STEP, nlgeom = on", true, true},
      {"*STEP, NLGEOM=NO", false, false},     {"*STEP, NLGEOM=OFF", false, false},
      {"*STEP, NLGEOM", true, false},         {"*STEP, NLGEOM=MAYBE", true, false},
      {"*STEP, NLGEOM=1", true, false},       {"*STEP", true, false},
      {"*STEP, NLGEOM=\"yes\"", true, false}, // quoted words keep their case, and it matters
  };
  for (const Case& c : cases) {
    const inp_Keyword keyword = deckKeyword(c.deck);
    EXPECT_EQ(Reader::GetParameterBoolValue(keyword, "nlgeom", true), c.defaultTrue) << c.deck;
    EXPECT_EQ(Reader::GetParameterBoolValue(keyword, "nlgeom", false), c.defaultFalse) << c.deck;
  }
}

TEST(ParameterReader, MutuallyExclusive) {
  const inp_Keyword none = deckKeyword("*NSET");
  const inp_Keyword one = deckKeyword("*NSET, GENERATE");
  const inp_Keyword two = deckKeyword("*NSET, GENERATE, UNSORTED");
  struct Case {
    const inp_Keyword& keyword;
    bool required;
    const char *of2, *of3, *of4;
  };
  const Case cases[] = {
      {none, false, "", "", ""},
      {none, true, "generate,unsorted", "generate,unsorted,elset", "generate,unsorted,elsetnset"},
      {one, false, "generate", "generate", "generate"},
      {one, true, "generate", "generate", "generate"},
      {two, false, "generate,unsorted", "generate,unsorted,elset", "generate,unsorted,elsetnset"},
  };
  for (const Case& c : cases) {
    const auto check = [&](auto... names) {
      return Reader::CheckMutuallyExclusiveParameters(c.keyword, names..., c.required);
    };
    EXPECT_EQ(check("generate", "unsorted"), c.of2);
    EXPECT_EQ(check("generate", "unsorted", "elset"), c.of3);
    EXPECT_EQ(check("generate", "unsorted", "elset", "nset"), c.of4);
  }
  EXPECT_EQ(gatheredMessages(), Words{}); // the caller reports
}

TEST(ParameterReader, ReportsWhatItFinds) {
  const inp_Keyword keyword = deckKeyword("*NSET, NSET=A, GENERATE, UNSORTED");
  EXPECT_EQ(Reader::KeywordParameterSwitch(keyword, "generate", "yes", "no"), "yes");
  EXPECT_EQ(Reader::KeywordParameterSwitch(keyword, "elset", "yes", "no"), "no");

  EXPECT_TRUE(Reader::CheckRequiredKeywordParameter(keyword, "nset"));
  EXPECT_FALSE(Reader::CheckRequiredKeywordParameter(keyword, "elset"));
  EXPECT_TRUE(Reader::CheckUnsupportedParameters(keyword, {"instance", "elset"}));
  EXPECT_FALSE(Reader::CheckUnsupportedParameters(keyword, {"unsorted", "elset", "generate"}));
  EXPECT_TRUE(Reader::CheckUnsupportedParameterValues(keyword, "nset", {"B", "a"}));
  EXPECT_TRUE(Reader::CheckUnsupportedParameterValues(keyword, "generate", {""})); // a flag
  EXPECT_TRUE(Reader::CheckUnsupportedParameterValues(keyword, "elset", {""}));
  EXPECT_FALSE(Reader::CheckUnsupportedParameterValues(keyword, "nset", {"B", "A"}));
  Reader::ReportMutuallyExclusiveParameters(keyword, "a,b", true);
  Reader::ReportMutuallyExclusiveParameters(keyword, "a,b", false);
  EXPECT_EQ(gatheredMessages(),
            (Words{"0|elset", "4|unsorted, generate", "5|nset|A", "2|a,b", "3|a,b"}));
}
