#include "tests/parser/Parsed.h"
#include <gtest/gtest.h>

TEST(KeywordLine, FoldsNamesAndValues) {
  const struct {
    const char* deck;
    const char* shown;
  } cases[] = {
      {"*node, nset=nall", "NODE nset=NALL"},
      {"  * Node , NSet = n all ", "NODE nset=NALL"},
      {"\t*NODE\n", "NODE"},
      {"*Solid  Section,elset=a,material=b", "SOLID SECTION elset=A material=B"},
      {"*SOLIDSECTION, ELSET=A, MATERIAL=B", "SOLID SECTION elset=A material=B"},
      {"*NSET, NSET=\"My set, 1\", GENERATE", "NSET nset=My set, 1 generate"},
      {"*NSET, NSET=a, GENERATE\r\n1,2,1\r\n", "NSET nset=A generate"},
      {"*NSET, NSET=A, gen era te", "NSET nset=A generate"},
      {"*Nset, nset=A,\n generate", "NSET nset=A generate"},
      {"*Nset, nset=A,\n** between\n\t** and between\ngenerate,\ninternal", //
       "NSET nset=A generate internal"},
      {"*NSET, NSET=A,\n*ELSET, ELSET=B", "NSET nset=A; ELSET elset=B"},
      {"*NSET, NSET=A,", "NSET nset=A"},
      {"*NSET, NSET=A,\n\n1, 2", "NSET nset=A"},
      {"\xEF\xBB\xBF*NODE", "NODE"},
      {"\n \n** comment\n*NODE", "NODE"},
      {"*NSET, NSET=A, NSET=a", "NSET nset=A"},
  };
  for (const auto& [deck, expected] : cases) {
    const Parsed parsed(deck);
    EXPECT_EQ(shown(parsed.keywords), expected) << deck;
    EXPECT_EQ(shown(parsed.errors) + shown(parsed.warnings), "") << deck;
  }
}

TEST(KeywordLine, TypesItsValues) {
  const Parsed parsed("*Element, type=C3D8R, elset=7, offset=1.5D+1, file=\n"
                      "*Elset, elset=\"12\", generate, internal=99999999999");
  const inp_Keyword& element = parsed.keywords.at(0);
  EXPECT_TRUE(element.Find("type")->IsString());
  EXPECT_EQ(element.Find("elset")->GetKind(), inp_Item::Kind::Integer);
  EXPECT_EQ(element.Find("elset")->AsInt(), 7);
  EXPECT_EQ(element.Find("elset")->AsString(), "7");
  EXPECT_EQ(element.Find("offset")->AsDouble(), 15);
  EXPECT_EQ(element.Find("file")->GetKind(), inp_Item::Kind::None);
  const inp_Keyword& elset = parsed.keywords.at(1);
  EXPECT_TRUE(elset.Find("elset")->IsString());
  EXPECT_EQ(elset.Find("elset")->Verbatim(), "\"12\"");
  EXPECT_TRUE(elset.Find("generate")->IsFlag());
  EXPECT_EQ(elset.Find("internal")->AsDouble(), 99999999999.0);
  EXPECT_EQ(elset.Find("internal")->AsInt(), 2147483647);
}

TEST(KeywordLine, ResolvesAbbreviations) {
  EXPECT_EQ(shown(Parsed("*Nset, ns=A, gen, uns").keywords), "NSET nset=A generate unsorted");
  const Parsed doubtful("*NODE, n=A\n*Instance, na=I, part=P\n*End Instance\n*NSET, NSET=A, i=2");
  EXPECT_EQ(shown(doubtful.keywords),
            "NODE nset=A; INSTANCE name=I part=P; END INSTANCE; NSET nset=A i=2");
  ASSERT_EQ(shown(doubtful.warnings), "4:16 ambiguous parameter \"i\" of *NSET\n");
  EXPECT_EQ(doubtful.warnings[0].notes.at(0).text, "it may stand for instance, internal");
}

TEST(KeywordLine, FaultsAreReportedAndReadingGoesOn) {
  const struct {
    const char* line;
    const char* messages;
  } cases[] = {
      {"*", "1:1 a keyword line without a keyword\n"},
      {"* , nset=A", "1:1 a keyword line without a keyword\n"},
      {"*NSET, =A", "1:8 a value without the name of its parameter\n"},
      {"*NSET, NSET=\"A, GENERATE", "1:13 a quote that is not closed on its line\n"},
      {"*NSET, , NSET=A", "1:8 an empty parameter\n"},
      {"*NSET, NSET=A, GENERATE,\n NSET=B",
       "2:2 parameter \"NSET\" is given twice with different values; the first one holds\n"},
      {"*NODE, INPUT=a.inc, INPUT=b.inc",
       "1:21 parameter \"INPUT\" is given twice with different values\n"},
      {"*NSET, NSET=", "1:8 parameter \"NSET\" has no value behind its equal sign\n"},
      {"*NSET, NSET=A, GENERAT1", "1:16 unknown parameter \"GENERAT1\" of *NSET\n"},
      {"*NSETT, NSET=A\n1\n*NSETT", "1:1 unknown keyword *NSETT; kept as it is\n"},
      {"*NODE NSET=A", "1:1 a comma is missing between the keyword and its first parameter\n"},
      {"*NSET, NSET=A\rELSET",
       "1:14 a carriage return within a keyword line: does the file end its "
       "lines by carriage returns alone? They must end by line feeds\n"},
      {"*NSET, NSET=\"A\x1b[2J\"",
       "1:15 a control character within a keyword line; such are left out\n"},
      {"*NSET, NSET=\"A\tB\xc2\x9bJ\"",
       "1:17 a control character within a keyword line; such are left out\n"},
  };
  for (const auto& [line, messages] : cases) {
    const Parsed parsed(cow_String(line) + "\n1, 2\n*ELEMENT, TYPE=S4\n1, 1, 2, 3, 4\n");
    EXPECT_EQ(shown(parsed.errors) + shown(parsed.warnings), messages) << line;
    ASSERT_FALSE(parsed.keywords.empty()) << line;
    EXPECT_EQ(shown(parsed.keywords.back()), "ELEMENT type=S4") << line;
    EXPECT_EQ(parsed.keywords.back().Data().Rows(), 1) << line;
  }
}

TEST(KeywordLine, NamesHoldNoControlCharacters) {
  const Parsed parsed("*NSET, NSET=\"A\x1b[2J\tB\x7f\xc2\x9b\"\n");
  EXPECT_EQ(parsed.keywords.at(0).Find("nset")->AsString(), "A[2J B");
}

TEST(KeywordLine, TheFirstValueOfAParameterCounts) {
  EXPECT_EQ(shown(Parsed("*NSET, NSET=A, NSET=B\n1\n").keywords), "NSET nset=A");
  EXPECT_EQ(shown(Parsed("*NSET, NSET=A, NSET=A\n1\n").keywords), "NSET nset=A");
}

TEST(KeywordLine, SuggestsTheNearestName) {
  const Parsed parsed("*NODDE\n*NSET, NSTE=A\n");
  ASSERT_EQ(parsed.warnings.size(), 2u);
  EXPECT_EQ(parsed.warnings[0].notes.at(0).text, "did you mean *NODE?");
  EXPECT_EQ(parsed.warnings[1].notes.at(0).text, "did you mean \"nset\"?");
}

TEST(KeywordLine, TextReadsBackToItself) {
  const struct {
    const char* deck;
    const char* text;
  } cases[] = {
      {"  *Node , nset = a  \r\n 1, 2. \r\n** no\r\n\r\n2,3.",
       "*Node , nset = a\n 1, 2. \n\n2,3.\n"},
      {"*Nset, nset=A,\n** c\n   generate  ,\n internal\n1,9,1",
       "*Nset, nset=A, generate  , internal\n1,9,1\n"},
      {"*Nset, nset=A,\n", "*Nset, nset=A,\n"},
      {"*Foo  Bar, x=\"a,  b\"\nfree text, \"q", "*Foo  Bar, x=\"a,  b\"\nfree text, \"q\n"},
  };
  for (const auto& [deck, text] : cases) {
    const Parsed parsed(deck);
    ASSERT_EQ(parsed.keywords.size(), 1u) << deck;
    EXPECT_EQ(parsed.keywords[0].Text(), text);
    const Parsed again(parsed.keywords[0].Text());
    EXPECT_EQ(again.keywords.at(0).Text(), text);
  }
}

TEST(KeywordLine, MadeByName) {
  const inp_Keyword made("SOLID SECTION");
  EXPECT_EQ(made.Kind(), inp_KwSolidSection);
  EXPECT_EQ(made.Data().Rows(), 0);
  made.Body()->parameters.push_back({"elset", inp_Item("A")});
  made.Body()->parameters.push_back({"symmetric", inp_Item(true)});
  EXPECT_EQ(made.Text(), "*SOLID SECTION, elset=A, symmetric\n");
  EXPECT_EQ(inp_Keyword("NO SUCH").Kind(), inp_UnknownKeyword);
  EXPECT_EQ(inp_Keyword().Kind(), inp_NullKeyword);
  EXPECT_EQ(inp_Keyword().Text(), "");
}

TEST(KeywordLine, KeepsCommentsAboveItWhenAsked) {
  const Parsed parsed("** far\n\n** near\n **nearer\n*NODE\n** in the data\n1\n*ELEMENT", false,
                      true);
  EXPECT_EQ(parsed.keywords.at(0).Body()->comments, (cow_List<cow_String>{"** near", "**nearer"}));
  EXPECT_TRUE(parsed.keywords.at(1).Body()->comments.empty());
}
