#include "parser/inp_Utf8ValidityVisitor.h"
#include "tests/parser/Parsed.h"
#include <gtest/gtest.h>

namespace {

struct Checked {
  explicit Checked(const cow_String& deck) : parsed(deck) { visitor.VisitList(parsed.keywords); }
  cow_String Text() const {
    cow_String out;
    for (const inp_Keyword& keyword : visitor.Keywords()) out += keyword.Text();
    return out;
  }
  Parsed parsed;
  inp_Utf8ValidityVisitor visitor;
};

const char* const readAsOther = "the file is not UTF-8; it is read as Windows-1252 (Latin-1)\n";

} // namespace

TEST(Utf8Validity, Cases) {
  const struct {
    const char* what;
    cow_String deck;
    cow_String errors, warnings;
    cow_String text; // empty: as the deck has it
  } cases[] = {
      {"ASCII", "*Node\n1, 2.\n", "", "", ""},
      {"UTF-8", "*Nset, nset=größe\n1\n*Elset, elset=\"漢字 😀\"\nüber\n", "", "", ""},
      {"Latin-1 in a keyword line",
       "*Nset, nset=gr\xF6\xDF"
       "e\n1\n",
       "", cow_String("1:15 ") + readAsOther, "*Nset, nset=größe\n1\n"},
      {"Windows-1252 in data, one warning for the file",
       "*Nset, nset=a\n1\n**\xE4\n\x80uro\n*Elset, elset=b\n\x93x\x94\n", "",
       cow_String("4:1 ") + readAsOther, "*Nset, nset=a\n1\n€uro\n*Elset, elset=b\n“x”\n"},
      {"comments never matter", "** \xFF\xFE\n*Node\n** \xE4\n1, 2.\n", "", "", "*Node\n1, 2.\n"},
      {"damage among good characters", "*Nset, nset=größe\n1\n\xC3, 2\nü, \xE4\xE4, \xFF\n",
       "3:1 bytes that are no UTF-8: line 3, column 1 (0xC3), line 4, column 4 (0xE4), line 4, "
       "column 5 (0xE4) and 1 more\n",
       "", ""},
      {"overlong and surrogate", "*Nset, nset=ü\n\xC0\xAF, \xED\xA0\x80\n",
       "2:1 bytes that are no UTF-8: line 2, column 1 (0xC0), line 2, column 2 (0xAF), line 2, "
       "column 5 (0xED) and 2 more\n",
       "", ""},
      {"a byte that is no sign of the other code", "*Nset, nset=a\n\x81, \xE4\n",
       "2:1 bytes that are no UTF-8: line 2, column 1 (0x81), line 2, column 4 (0xE4)\n", "", ""},
      {"control characters beside", "*Nset, nset=a\n\xE4\x01\n",
       "2:1 bytes that are no UTF-8: line 2, column 1 (0xE4)\n", "", ""},
      {"one message per keyword", "*Nset, nset=ü\n\xE4\n*Elset, elset=b\n\xE4\n",
       "2:1 bytes that are no UTF-8: line 2, column 1 (0xE4)\n"
       "4:1 bytes that are no UTF-8: line 4, column 1 (0xE4)\n",
       "", ""},
  };
  for (const auto& c : cases) {
    const Checked checked(c.deck);
    EXPECT_EQ(shown(checked.visitor.Errors()), c.errors) << c.what;
    EXPECT_EQ(shown(checked.visitor.Warnings()), c.warnings) << c.what;
    if (!c.text.empty()) {
      EXPECT_EQ(checked.Text(), c.text) << c.what;
    }
  }
}

TEST(Utf8Validity, ConvertedNamesAndPlaces) {
  const Checked checked("*Part, name=T\xFCr\n*Nset, nset=\xE4\n1, \xF6\xF6, 7\n*End Part\n");
  const inp_KeywordList& keywords = checked.visitor.Keywords();
  ASSERT_EQ(keywords.size(), 3u);
  EXPECT_EQ(keywords[1].Scope().name, "TüR");
  EXPECT_EQ(keywords[1].StringOf("nset", ""), "ä");
  EXPECT_EQ(keywords[1].Data().AsStringVerbatim(0, 1), "öö");
  EXPECT_EQ(keywords[1].Data().PlaceOf(0, 2).column, 8);
}
