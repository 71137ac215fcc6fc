#include "base/wip_WIPBase.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include "tests/parser/Parsed.h"
#include <gtest/gtest.h>

TEST(DeckText, PlacesCountCharactersAndLines) {
  cow_String deck;
  for (int i = 0; i < 50000; ++i) deck += "row " + std::to_string(i) + "\n";
  deck += "\xC3\xA4\xC3\xB6, x";
  const inp_DeckTextPtr text = inp_DeckText::FromString(deck, "deck.inp");
  const wip_Place last = text->PlaceOf(text->End() - 1);
  EXPECT_EQ(last.line, 50001);
  EXPECT_EQ(last.column, 5); // two letters of two bytes each
  EXPECT_EQ(last.sourceLine, "\xC3\xA4\xC3\xB6, x");
  EXPECT_EQ(text->PlaceOf(text->Begin()).line, 1);
  EXPECT_EQ(text->PlaceOfLine(40000).sourceLine, "row 39999");
  EXPECT_EQ(text->PlaceOfLine(1).sourceLine, "row 0");
  EXPECT_EQ(text->PlaceOfLine(99999).sourceLine, "");
  EXPECT_EQ(text->PlaceOf(text->End()).column, 6);
}

// A place in rewritten text shows the line as the user wrote it.
TEST(DeckText, RewrittenTextPointsToItsOrigin) {
  const inp_DeckTextPtr origin = inp_DeckText::FromString("*NODE\n1, <x>, 7\n2, 0\n", "deck.inp");
  const inp_DeckTextPtr text = inp_DeckText::Rewritten("1, 12.25, 7\n2, 0\n", origin, 2);
  const struct { int offset, column; } cases[] = {{0, 1}, {3, 4}, {5, 4}, {10, 9}};
  for (const auto& [offset, column] : cases) {
    const wip_Place place = text->PlaceOf(text->Begin() + offset);
    EXPECT_EQ(place.line, 2);
    EXPECT_EQ(place.column, column) << offset;
    EXPECT_EQ(place.sourceLine, "1, <x>, 7");
  }
  EXPECT_EQ(text->PlaceOf(text->Begin() + 12).line, 3);
  const inp_DeckTextPtr two =
      inp_DeckText::Rewritten("10, x, 10\n", //
                              inp_DeckText::FromString("<a>, x, <a>\n", "deck.inp"), 1);
  EXPECT_EQ(two->PlaceOf(two->Begin() + 4).column, 6);
  EXPECT_EQ(two->PlaceOf(two->Begin() + 7).column, 9);
  const inp_DeckTextPtr twice = inp_DeckText::Rewritten("3, 0\n", text, 3);
  EXPECT_EQ(twice->PlaceOf(twice->Begin()).sourceLine, "2, 0");
}

TEST(Utils, FoldsAndSplitsNames) {
  const struct {
    const char* text;
    const char* folded;
  } folds[] = {{"a b\tc", "ABC"},
               {"\"a b\"", "a b"},
               {"p-1.\"s, t\"", "P-1.s, t"},
               {"5\" x", "5\"X"},
               {"", ""},
               {"\"\"", ""},
               {"\xC3\xA4z", "\xC3\xA4Z"},
               {"\"a \"\"b\"\" c\"", "a \"b\" c"},
               {"\"\"\"x\"\"\".y", "\"x\".Y"},
               {"\"a\"\"", "a\""}};
  for (const auto& [text, folded] : folds) EXPECT_EQ(inp_Utils::Fold(text), folded);

  const struct {
    const char* name;
    cow_List<cow_String> parts;
    bool isName, isId;
  } splits[] = {{"SET", {"SET"}, false, false},
                {"I.SET", {"I", "SET"}, true, false},
                {"I.12", {"I", "12"}, false, true},
                {"A.I.SET", {"A", "I", "SET"}, true, false},
                {"I.\"a.b\"", {"I", "a.b"}, true, false},
                {".SET", {"", "SET"}, false, false},
                {"\"i\"\".1\".S", {"i\".1", "S"}, true, false},
                {"I.", {"I", ""}, false, false}};
  for (const auto& [name, parts, isName, isId] : splits) {
    EXPECT_EQ(inp_Utils::SplitScopedSet(name), parts) << name;
    EXPECT_EQ(inp_Utils::IsScopedSetName(parts), isName) << name;
    EXPECT_EQ(inp_Utils::IsScopedSetId(parts), isId) << name;
  }
  EXPECT_EQ(inp_Utils::CreateFlattenedName("I", "S"), "I_S");
  EXPECT_EQ(inp_Utils::CreateFlattenedName("", "S"), "S");
  EXPECT_EQ(inp_Utils::RemoveQuotes(" \"a b\" "), "a b");
  EXPECT_EQ(inp_Utils::Format("%s-%d", "x", 7), "x-7");
}

TEST(Utils, ListsItems) {
  EXPECT_EQ(inp_Utils::MessageWithItems("Too few nodes ", cow_List<int>{3, 5}),
            "Too few nodes 3, 5");
  EXPECT_EQ(inp_Utils::MessageWithItems("sets:", cow_List<cow_String>{"A"}), "sets: A");
  EXPECT_EQ(inp_Utils::MessageWithItems("none", cow_List<int>{}), "none");
  EXPECT_EQ(inp_Utils::MessageWithItems("x", cow_List<int>(1234, 8)), "x 8");
  EXPECT_EQ(inp_Utils::MessageWithItems("x", {9, 8, 9, 7, 6, 5, 4, 3, 2, 1, 0, 9, 11, 8}),
            "x 9, 8, 7, 6, 5, 4, 3, 2, 1, 0, 11");
}

TEST(Utils, PlacesMessages) {
  const Parsed parsed("*NODE, NSET=\"a b\",\n system = C\n1, 0.\n2, zwei");
  const inp_Keyword& node = parsed.keywords.at(0);
  const auto at = [](const wip_Message& message) {
    EXPECT_EQ(message.keyword, "NODE");
    EXPECT_EQ(message.place.file, "deck.inp");
    return shown(cow_List<wip_Message>{message});
  };
  EXPECT_EQ(at(inp_Utils::MessageInKeyword(node, "x")), "1:1 x\n");
  EXPECT_EQ(at(inp_Utils::MessageAtParameter(node, "system", "x")), "2:2 x\n");
  EXPECT_EQ(at(inp_Utils::MessageAtParameter(node, "none", "x")), "1:1 x\n");
  EXPECT_EQ(at(inp_Utils::MessageAtRow(node, 1, "x")), "4:1 x\n");
  EXPECT_EQ(at(inp_Utils::MessageAtField(node, 1, 1, "x")), "4:4 x\n");
  EXPECT_EQ(at(inp_Utils::MessageAtField(node, 1, 9, "x")), "4:1 x\n");
  EXPECT_EQ(at(inp_Utils::MessageAtRow(node, 7, "x")), "1:1 x\n");
}

namespace {

struct Log : wip_WIPBase {
  void Error(const wip_Message&, int) override {}
  void ErrorList(const cow_List<wip_Message>& messages, int level) override {
    text += "E" + std::to_string(level) + " " + shown(messages);
  }
  void Warning(const wip_Message&) override {}
  void WarningList(const cow_List<wip_Message>& messages) override {
    text += "W " + shown(messages);
  }
  cow_String text;
};

struct Names : inp_Visitor {
  void VisitNode(const inp_Keyword& keyword) override {
    seen += "n" + std::to_string(keyword.Line());
    AddWarning(inp_Utils::MessageInKeyword(keyword, "w"));
  }
  void VisitEndStep(const inp_Keyword&) override { seen += "e"; }
  cow_String seen;
};

} // namespace

TEST(Visitor, DispatchesAndReports) {
  Log log;
  const wip_ReporterScope scope(log);
  Parsed parsed("*NODE\n*STEP\n*UNHEARD OF\n*STATIC\n*END STEP\n*NODE\n*NODE\n");
  parsed.keywords.back().MakeNull();
  Names visitor;
  visitor.VisitListAndReport(parsed.keywords);
  EXPECT_EQ(visitor.seen, "n1en6");
  EXPECT_FALSE(visitor.IsError());
  visitor.AddDiagnostics({{3, "bad"}});
  EXPECT_TRUE(visitor.IsError());
  visitor.Report();
  visitor.Report(); // nothing twice
  EXPECT_EQ(log.text, "W 1:1 w\n6:1 w\nE1 3:0 bad\n");
}
