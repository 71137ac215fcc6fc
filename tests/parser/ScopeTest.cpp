#include "tests/parser/Parsed.h"
#include <gtest/gtest.h>

namespace {

// The scope each keyword stands in: M, P(name), A(name), I(name:part) or S(ordinal:name).
cow_String scopes(const inp_KeywordList& keywords) {
  cow_String out;
  for (const inp_Keyword& keyword : keywords) {
    const inp_Scope& scope = keyword.Scope();
    out += "MPIAS"[static_cast<int>(scope.kind)];
    if (scope.ordinal) out += std::to_string(scope.ordinal);
    out += scope.name;
    if (!scope.partName.empty()) out += ":" + scope.partName;
    out += ' ';
  }
  return out;
}

// "PLASTIC<MATERIAL": keyword and the one it is attached to.
cow_String parents(const inp_KeywordList& keywords) {
  cow_String out;
  for (const inp_Keyword& parent : keywords)
    for (const inp_Keyword& option : parent.Suboptions())
      out += option.Name() + "<" + parent.Name() + " ";
  return out;
}

} // namespace

TEST(Scope, FollowsPartsInstancesAndSteps) {
  const Parsed parsed("*Heading\n*Part, name=p1\n*Node\n*End Part\n"
                      "*Assembly, name=a\n*Nset\n*Instance, name=\"i 1\", part=p1\n1.\n*Node\n"
                      "*End Instance\n*Elset\n*End Assembly\n*Material, name=m\n"
                      "*Step, name=s\n*Static\n*End Step\n*Step\n*Static\n*End Step\n*Node\n");
  EXPECT_EQ(shown(parsed.errors), "");
  EXPECT_EQ(scopes(parsed.keywords), "M M PP1 M M AA AA Ii 1:P1 AA AA M M M S1S M M S2 M M ");
}

TEST(Scope, ReportsWhatIsNotClosed) {
  const struct {
    const char* deck;
    const char* errors;
    const char* scopes;
  } cases[] = {
      {"*Part, name=p\n*Node\n*Assembly\n*End Assembly",
       "1:1 *END PART is missing for \"P\"; the part ends where *ASSEMBLY begins\n", "M PP M M M "},
      {"*Part, name=p\n*Part, name=q\n*End Part",
       "1:1 *END PART is missing for \"P\"; the part ends where the next one begins\n", "M M M M "},
      {"*Part, name=p\n*Node", "1:1 *END PART is missing for \"P\"; the part ends with the deck\n",
       "M PP M "},
      {"*Node\n*End Part\n1.\n*Node",
       "2:1 no part is open that *END PART could end; it is left out, and its data lines with it\n",
       "M M "},
      {"*Assembly\n*Instance, name=i\n*End Assembly\n*Step\n*End Step",
       "2:1 *END INSTANCE is missing for \"I\"; the instance ends where *END ASSEMBLY stands\n",
       "M A A M M M "},
      {"*Step\n*Static\n*Step\n*Static\n*End Step", "", "M S1 M M S2 M "}, // with the next
      {"*Step\n*Static", "", "M S1 M "},                                   // ends with the deck
      {"*Part, name=p\n*End Instance\n*Node\n*End Part",
       "2:1 no instance is open that *END INSTANCE could end; it is left out\n", "M PP M "},
      {"*Part, name=p\n*Step\n*Static\n*End Step\n*End Part",
       "1:1 *END PART is missing for \"P\"; the part ends where *STEP begins\n"
       "5:1 no part is open that *END PART could end; it is left out\n",
       "M M M S1 M "},
      {"*Assembly\n*Part, name=p\n*Node\n*End Part\n*Nset\n*End Assembly",
       "2:1 a part cannot stand within the assembly; it is read as if it stood before it\n",
       "M M PP M A M "},
  };
  for (const auto& [deck, errors, expected] : cases) {
    const Parsed parsed(deck);
    EXPECT_EQ(shown(parsed.errors), errors) << deck;
    EXPECT_EQ(scopes(parsed.keywords), expected) << deck;
  }
  const Parsed unclosed("*Part, name=p\n*Node\n*Assembly\n*End Assembly");
  EXPECT_EQ(unclosed.errors.at(0).notes.at(0).text, "it must stand before this *ASSEMBLY");
  EXPECT_EQ(unclosed.errors.at(0).notes.at(0).place.line, 3);
}

TEST(Suboptions, AttachToTheNearestThatAdmitsThem) {
  const struct {
    const char* deck;
    const char* parents;
  } cases[] = {
      {"*Material, name=m\n*Elastic\n*Plastic\n*Rate dependent\n*Density",
       "ELASTIC<MATERIAL PLASTIC<MATERIAL DENSITY<MATERIAL RATE DEPENDENT<PLASTIC "},
      {"*Elastic\n*Rate dependent", ""},
      // Control characters are left out of a keyword's name, too.
      {"*Mat\x18"
       "erial, name=m\n*Elastic",
       "ELASTIC<MATERIAL "},
      // A material stays open, for what may stand right under it and what it then has.
      {"*Material, name=m\n*Node\n*Elastic", "ELASTIC<MATERIAL "},
      {"*Material, name=m\n*Plastic\n*Node\n*Rate dependent",
       "PLASTIC<MATERIAL RATE DEPENDENT<PLASTIC "},
      {"*Material, name=m\n*Plastic\n*Node\n*Anneal temperature",
       "PLASTIC<MATERIAL ANNEAL TEMPERATURE<PLASTIC "},
      {"*Material, name=m\n*Node\n*Plastic\n*Rate dependent",
       "PLASTIC<MATERIAL RATE DEPENDENT<PLASTIC "},
      {"*Material, name=m\n*Material\n*Elastic", "ELASTIC<MATERIAL "},
      {"*Material, name=m\n*Step\n*Elastic\n*End step", ""},
      // What leaves a step for the model tears nothing in it apart.
      {"*Step\n*Material, name=m\n*Amplitude, name=a\n*Baseline correction\n*Elastic\n*End step",
       "ELASTIC<MATERIAL BASELINE CORRECTION<AMPLITUDE "},
      {"*Material, name=m\n*Elastik\n*Plastic", "PLASTIC<MATERIAL "},
      {"*Material, name=m\n*Elastic\n*Material, name=n\n*Elastic",
       "ELASTIC<MATERIAL ELASTIC<MATERIAL "},
      {"*Part, name=p\n*Material, name=m\n*End part\n*Elastic", "ELASTIC<MATERIAL "},
  };
  for (const auto& [deck, expected] : cases)
    EXPECT_EQ(parents(Parsed(deck).keywords), expected) << deck;
}

TEST(Suboptions, AreTheKeywordsOfTheList) {
  const Parsed parsed("*Material, name=m\n*Plastic\n1., 0.\n*Rate dependent\n");
  EXPECT_TRUE(parsed.keywords[0].hasSuboption(inp_KwPlastic));
  EXPECT_FALSE(parsed.keywords[0].hasSuboption(inp_KwRateDependent));
  EXPECT_EQ(parsed.keywords[2].ParentKind(), inp_KwPlastic);
  EXPECT_FALSE(parsed.keywords[0].IsSuboption());
  const inp_Keyword& attached = parsed.keywords[0].Suboptions().at(0);
  EXPECT_EQ(attached.Body(), parsed.keywords[1].Body());
  EXPECT_EQ(attached.Data().Rows(), 1);
}
