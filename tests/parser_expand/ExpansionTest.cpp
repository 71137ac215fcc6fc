#include "parser/inp_KeywordExpansionVisitor.h"
#include "tests/parser/Parsed.h"
#include <algorithm>
#include <gtest/gtest.h>

namespace {

struct Expanded {
  explicit Expanded(const cow_String& deck, bool keepParts = false) : parsed(deck) {
    EXPECT_EQ(shown(parsed.errors), "");
    visitor.SetFlag(keepParts);
    visitor.VisitList(parsed.keywords);
  }
  cow_String Text() const { // without the nulls
    cow_String out;
    for (const inp_Keyword& keyword : visitor.Keywords()) out += keyword.Text();
    return out;
  }
  Parsed parsed;
  inp_KeywordExpansionVisitor visitor;
};

} // namespace

TEST(Expansion, PutsValuesInPlace) {
  const struct {
    const char* what;
    const char* deck;
    const char* text;
  } cases[] = {
      {"data lines and keyword lines",
       "*Parameter\nt = 2.5 # thick\n\nmat = 'Steel'\nn = 3\n*Shell Section, elset=E, "
       "material=<mat>\n<t>, < n >\n",
       "*Shell Section, elset=E, material=Steel\n2.5, 3\n"},
      {"calculated", "*Parameter\na=2\nb=a*1.5\n*Node\n1, <b>, <a>, -<a>\n",
       "*Node\n1, 3., 2, -2\n"},
      {"before the definition nothing is put in", "*Node\n1, <a>\n*Parameter\na=2\n*Node\n2, <a>\n",
       "*Node\n1, <a>\n*Node\n2, 2\n"},
      {"quotes protect, an open one does not",
       "*Parameter\na=2\n*Nset, nset=\"<a>\"\n\"<a>\", <a>\n*Nset, nset=B\n5\", <a>\n",
       "*Nset, nset=\"<a>\"\n\"<a>\", 2\n*Nset, nset=B\n5\", 2\n"},
      {"comments and headings stay", "*Parameter\na=2\n*Heading\nsize <a>\n*Node\n** <x>\n1, <a>\n",
       "*Heading\nsize <a>\n*Node\n1, 2\n"},
      {"what is no <name> stays", "*Parameter\na=2\n*Nset, nset=A\n<1>, <, a>, < >, <a\n",
       "*Nset, nset=A\n<1>, <, a>, < >, <a\n"},
      {"whatever the case, if it is clear",
       "*Parameter\nThick=2\nn=1\nN=5\n*Node\n<N>, <THICK>, <n>\n", "*Node\n5, 2, 1\n"},
      {"continued keyword lines",
       "*Parameter\nt='C3D8'\n*Element, elset=E,\n** c\n type=<t>\n1, 2\n",
       "*Element, elset=E, type=C3D8\n1, 2\n"},
      {"CRLF and no last line end", "*Parameter\r\na=2\r\n*Node\r\n1, <a>\r\n2, <a>",
       "*Node\n1, 2\n2, 2\n"},
  };
  for (const auto& c : cases) {
    const Expanded expanded(c.deck);
    EXPECT_EQ(expanded.Text(), c.text) << c.what;
    EXPECT_EQ(shown(expanded.visitor.Errors()), "") << c.what;
  }
}

TEST(Expansion, ReadsValuesAndKeepsPlaces) {
  const Expanded expanded(
      "*Parameter\nwidth = 12.5\n*Node\n** c\n1, <width>, x9\n*Shell Section, elset=e, "
      "offset=<width>\n1.\n");
  const inp_KeywordList& keywords = expanded.visitor.Keywords();
  ASSERT_EQ(keywords.size(), 3u);
  EXPECT_EQ(keywords[0].Kind(), inp_NullKeyword);
  EXPECT_EQ(keywords[1].Data().AsDouble(0, 1), 12.5);
  const wip_Place place = keywords[1].Data().PlaceOf(0, 2);
  EXPECT_EQ(place.line, 5);
  EXPECT_EQ(place.column, 13);
  EXPECT_EQ(place.sourceLine, "1, <width>, x9");
  EXPECT_EQ(keywords[2].Find("offset")->AsDouble(), 12.5);
  EXPECT_EQ(keywords[2].PlaceOfParameter("offset").line, 6);
}

TEST(Expansion, ReportsAtThePlace) {
  const struct {
    const char* deck;
    const char* errors;
  } cases[] = {
      {"*Parameter\na = 1\nb = 2 + c\n", "3:9 there is no parameter \"c\" before this line\n"},
      {"*Parameter\nfor i in range(3):\n  a = 1\n",
       "2:1 \"for i in range(3):\" is not evaluated; a line must read name = expression\n"},
      {"*Parameter, dependent, table=t\n(a), (b)\n",
       "1:13 parameters given by a table or as dependent ones are not evaluated; give them as name "
       "= expression\n"},
      {"*Parameter\na=1\n*Node\n1, <b>, <a>\n",
       "4:4 there is no parameter \"b\" before this line\n"},
      {"*Material, name=<m>\n", "1:17 there is no parameter \"m\" before this line\n"},
      {"*Parameter\na=1\nA=2\n*Node\n1, <a>, <A>\n2\n", ""},
      {"*Parameter\naB=1\nAb=2\n*Node\n1, <ab>\n",
       "5:4 there is no parameter \"ab\" before this line\n"},
  };
  for (const auto& c : cases) {
    const Expanded expanded(c.deck);
    EXPECT_EQ(shown(expanded.visitor.Errors()), c.errors) << c.deck;
  }
}

// What the parser has found before anything is put in stays so: keywords, parameters and lines.
TEST(Expansion, ValuesMakeNoNewLinesOrNames) {
  const struct {
    const char* value; // of k
    const char* deck;
    const char *place, *word; // of the error
    const char* text;
  } cases[] = {
      {"'**'", "*NODE\n<k>1, 0\n2, 0\n", "4:1 ", "asterisk", "*NODE\n2, 0\n"},
      {"' *NSET'", "*NODE\n1, 0\n** c\n<k>", "6:1 ", "asterisk", "*NODE\n1, 0\n"},
      {"'*'", "*NODE\n<k>\n*NSET\n1, <k>", "4:1 ", "asterisk", "*NODE\n*NSET\n1, *\n"},
      {"''", "*NODE\n<k>", "", "", "*NODE\n"},
      {"''", "*NODE\n<k>\n1\n<k>", "", "", "*NODE\n\n1\n"},
      {"'NODE'", "*<k>, NSET=A\n1, 0\n*NSET\n1", "3:1 ", "name", "*NSET\n1\n"},
      {"'*'", "*NODE\n1, 0\n*<k>NODE\n2\n", "5:1 ", "name", "*NODE\n1, 0\n"},
      {"'A=1'", "*FOO, <k>\n<k>\n", "3:7 ", "name", "*FOO, <k>\nA=1\n"},
      {"'**'", "*FOO, A,\n<k>B\n1", "4:1 ", "name", "*FOO, A, <k>B\n1\n"},
      {"'1, B'", "*FOO, A=<k>, C\n", "3:7 ", "other parameters", "*FOO, A=1, B, C\n"},
      {"'\"1, B\"'", "*FOO, A=<k>, C\n", "", "", "*FOO, A=\"1, B\", C\n"},
      {"','", "*FOO, A=1<k>\n1\n", "", "", "*FOO, A=1\n1\n"},
      {"'<j>'", "*FOO, A=<k>\n<k>\n", "3:7 ", "only once", "*FOO, A=<j>\n<j>\n"},
  };
  for (const auto& c : cases) {
    const Expanded expanded(cow_String("*Parameter\nk=") + c.value + "\n" + c.deck);
    EXPECT_EQ(expanded.Text(), c.text) << c.deck;
    const cow_String errors = shown(expanded.visitor.Errors());
    EXPECT_TRUE(errors.starts_with(c.place)) << c.deck << errors;
    EXPECT_NE(errors.find(c.word), cow_String::npos) << c.deck << errors;
    EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), *c.word ? 1 : 0) << c.deck << errors;
  }
}

// A line that is read again says nothing twice, and what its values bring about it says.
TEST(Expansion, KeywordLinesReadAgainTellWhatIsNew) {
  const Expanded expanded("*Parameter\nk=''\n*NSET, NSET=A, WRONG=1, UNSORTED=<k>\n1\n");
  EXPECT_EQ(shown(expanded.parsed.warnings), "3:16 unknown parameter \"WRONG\" of *NSET\n");
  cow_List<wip_Message> doubts;
  for (const inp_Keyword& keyword : expanded.visitor.Keywords()) inp_takeDoubts(keyword, doubts);
  EXPECT_EQ(shown(doubts), "3:25 parameter \"UNSORTED\" has no value behind its equal sign\n");
}

TEST(Expansion, WarnsOfASecondDefinition) {
  const Expanded expanded("*Parameter\na=1\na=a+1\n*Node\n<a>\n");
  EXPECT_EQ(expanded.Text(), "*Node\n2\n");
  ASSERT_EQ(expanded.visitor.Warnings().size(), 1u);
  EXPECT_EQ(expanded.visitor.Warnings()[0].place.line, 3);
  ASSERT_EQ(expanded.visitor.Warnings()[0].notes.size(), 1u);
  EXPECT_EQ(expanded.visitor.Warnings()[0].notes[0].place.line, 2);
}

// Part, instance and step names are known before parameters are.
TEST(Expansion, RewrittenKeywordsKeepTheirScopeNames) {
  const Expanded expanded("*Parameter\np='Plate'\n*Part, name=<p>\n*Node\n1\n*End Part\n"
                          "*Assembly, name=a\n*Instance, name=<p>-1, part=<p>\n*End Instance\n"
                          "*End Assembly\n");
  cow_String scopes;
  for (const inp_Keyword& keyword : expanded.visitor.Keywords())
    if (keyword.Kind() == inp_KwNode)
      scopes += keyword.Scope().name + ":" + keyword.Scope().partName + " ";
  EXPECT_EQ(scopes, "PLATE: PLATE-1:PLATE ");
}

TEST(Expansion, CopiesPartsIntoInstances) {
  const char* const deck =
      "*Part, name=P\n*Node\n1, 2.\n*Material, name=m\n*Elastic\n1., 0.\n"
      "*End Part\n*Assembly, name=a\n*Instance, name=i, part=P\n*Nset, nset=own\n"
      "1\n*End Instance\n*Instance, name=j, part=P\n*End Instance\n"
      "*Instance, name=k, part=Q\n*End Instance\n*End Assembly\n";
  const Expanded expanded(deck);
  const inp_KeywordList& keywords = expanded.visitor.Keywords();
  cow_String list;
  for (const inp_Keyword& keyword : keywords)
    list += keyword.Name() + (keyword.IsInstanceCopy() ? "@" : ":") + keyword.Scope().name + " ";
  EXPECT_EQ(list, "PART: NODE:P MATERIAL:P ELASTIC:P END PART: ASSEMBLY: INSTANCE:A NODE@I "
                  "MATERIAL@I ELASTIC@I NSET:I END INSTANCE:A INSTANCE:A NODE@J MATERIAL@J "
                  "ELASTIC@J END INSTANCE:A INSTANCE:A END INSTANCE:A END ASSEMBLY: ");
  EXPECT_TRUE(keywords[7].Data().SharesTextWith(keywords[1].Data()));
  EXPECT_EQ(keywords[7].ScopePtr(), keywords[10].ScopePtr()); // the instance's own, not another one
  EXPECT_TRUE(keywords[8].hasSuboption(inp_KwElastic));
  EXPECT_TRUE(expanded.visitor.IsFeatureEnhanced());
  EXPECT_EQ(Expanded(deck, true).visitor.Keywords().size(), expanded.parsed.keywords.size());
  EXPECT_FALSE(Expanded("*Node\n1\n").visitor.IsFeatureEnhanced());
}
