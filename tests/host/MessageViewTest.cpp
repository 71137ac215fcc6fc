#include "host/inps_MessageView.h"
#include <gtest/gtest.h>
#include <sstream>

namespace {

wip_Message messageAt(const char* line, int column, int width) {
  wip_Message message("bad number");
  message.keyword = "NODE";
  message.place = {"deck.inp", 12, column, width, line, {}};
  return message;
}

cow_String shown(const wip_Message& message, int width = 0, bool colour = false) {
  std::ostringstream out;
  inps_MessageView(out, colour, width).Show(inps_Severity::Error, message);
  return out.str();
}

TEST(MessageView, CaretsStandUnderTheFault) {
  struct Case {
    const char* line;
    int column;
    int width;
    const char* carets;
  };
  const Case cases[] = {
      {"1, 2.x, 3", 4, 3, "   ^~~"},
      {"1, 2", 1, 0, "^"},
      {"1,\t2.x", 4, 3, "  \t^~~"},
      {"\xc3\xa4, x", 4, 1, "   ^"},
      {"1, 2", 5, 1, "    ^"}, // behind the end: something is
                               // missing
      {"1, 2", 4, 99, "   ^"}, // no wider than the line
  };
  for (const Case& c : cases)
    EXPECT_EQ(shown(messageAt(c.line, c.column, c.width)),
              "deck.inp:12:" + std::to_string(c.column) + ": error: bad number [*NODE]\n" + c.line +
                  "\n" + c.carets + "\n");
}

TEST(MessageView, WhatIsUnknownIsLeftOut) {
  wip_Message message("cannot read");
  EXPECT_EQ(shown(message), "inps: error: cannot read\n");
  message.place.file = "deck.inp";
  EXPECT_EQ(shown(message), "deck.inp: error: cannot read\n");
  message.place.line = 3;
  message.keyword = "NODE";
  message.place.sourceLine = "*NODE, NSET=A";
  EXPECT_EQ(shown(message), "deck.inp:3: error: cannot read\n*NODE, NSET=A\n");
  EXPECT_EQ(shown(messageAt("1, 2 … cut", 400, 1)), "deck.inp:12:400: error: bad number [*NODE]\n");
}

TEST(MessageView, NotesAndIncludingLinesFollow) {
  wip_Message message = messageAt("1, 2", 1, 1);
  message.notes.push_back({"first defined here", {"a.inp", 3, 2, 1, " 1", {}}});
  message.place.includedFrom = {"b.inp:7", "main.inp:2"};
  EXPECT_EQ(shown(message), "deck.inp:12:1: error: bad number [*NODE]\n1, 2\n^\n"
                            "a.inp:3:2: note: first defined here\n 1\n ^\n"
                            "  included from b.inp:7\n  included from main.inp:2\n");
}

TEST(MessageView, LongLinesShowTheStretchAroundTheFault) {
  const cow_String line = cow_String(500, 'a') + "X" + cow_String(500, 'b');
  const cow_String text = shown(messageAt(line.c_str(), 501, 1), 60);
  std::istringstream lines(text);
  cow_String head, source, caret;
  std::getline(lines, head);
  std::getline(lines, source);
  std::getline(lines, caret);
  EXPECT_TRUE(source.starts_with("…"));
  EXPECT_LE(source.size(), 62u);                       // 60 columns, the … has three bytes
  EXPECT_EQ(source[caret.find('^') + 2], 'X') << text; // two more bytes than columns
}

TEST(MessageView, DecksDoNotSteerTheTerminal) {
  wip_Message message("name \"\x1b[2Jx\x07\"\nsecond line");
  const cow_String text = shown(message, 80, true);
  EXPECT_EQ(text.find("\x1b[2J"), cow_String::npos);
  EXPECT_EQ(text.find('\x07'), cow_String::npos);
  EXPECT_NE(text.find("\nsecond line\n"), cow_String::npos);
  EXPECT_NE(text.find("name \"\\x1b[2Jx\\x07\"\n"), cow_String::npos) << text;
  // The caret stands below what is written out.
  const cow_String caret = shown(messageAt("a\xff\x1b\xe2\x80\xae, x\x07y", 7, 2), 80);
  EXPECT_NE(caret.find("\na\\xff\\x1b\\u202e, x\\x07y\n                 ^~~~~\n"), cow_String::npos)
      << caret;
}

TEST(MessageView, FoldsLists) {
  const auto text = [](const char* whole) {
    const cow_String out = shown(wip_Message(whole));
    return out.substr(out.find("error: ") + 7);
  };
  EXPECT_EQ(text("few: 1, 2, 3, 4, 5, 6, 7, 8, 9, 10"), "few: 1, 2, 3, 4, 5, 6, 7, 8, 9, 10\n");
  EXPECT_EQ(text("of 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12 is one; a, b"),
            "of 1, 2, 3, 4, 5, 6, 7, 8, 9, 10 … and 2 more is one; a, b\n");
}

} // namespace
