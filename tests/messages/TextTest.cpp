#include "inpS/messages/inpS_MessageText.h"
#include <gtest/gtest.h>

namespace {

const cow_String in11 = "\n           "; // a line end and the indentation

cow_String wrap80(const cow_String& text) {
  return inpS_wrapText(text, inpS_messageWidth, inpS_messageIndentation);
}

cow_String x(int count) {
  return cow_String(static_cast<std::size_t>(count), 'x');
}

cow_String repeated(const cow_String& piece, int count) {
  cow_String all;
  for (int i = 0; i < count; ++i) all += piece;
  return all;
}

struct WrapCase {
  const char* what;
  cow_String text;
  cow_String wrapped;
};

} // namespace

TEST(WrapText, BreaksAtEighty) {
  const cow_String ae = "\xC3\xA4"; // one character, two bytes
  const WrapCase cases[] = {
      {"empty", "", ""},
      {"one", "x", "x"},
      {"full line", x(80), x(80)},
      {"one too many", x(81), x(80) + in11 + "x"},
      {"200 without blanks", x(200), x(80) + in11 + x(80) + in11 + x(40)},
      {"blank in the middle", x(50) + " " + x(50), x(50) + " " + in11 + x(50)},
      {"last of several blanks", "a b " + x(70) + " " + x(20), "a b " + x(70) + " " + in11 + x(20)},
      {"blank as 80th", x(79) + " " + x(5), x(79) + " " + in11 + x(5)},
      {"blank as 81st", x(80) + " " + x(5), x(80) + " " + in11 + x(5)},
      {"blank as 82nd", x(81) + " x", x(80) + in11 + "x x"},
      {"only the first is blank", " " + x(85), " " + x(79) + in11 + x(6)},
      {"line end", "one\ntwo", "one" + in11 + "two"},
      {"line end behind 80", x(80) + "\n" + x(80), x(80) + in11 + x(80)},
      {"line end behind 81", x(81) + "\ny", x(80) + in11 + "x" + in11 + "y"},
      {"lines of their own", x(90) + "\n" + x(90),
       x(80) + in11 + x(10) + in11 + x(80) + in11 + x(10)},
      {"empty lines", "a\n\nb", "a" + in11 + in11 + "b"},
      {"80 characters of 160 bytes", repeated(ae, 80), repeated(ae, 80)},
      {"no cut in a character", x(79) + repeated(ae, 3), x(79) + ae + in11 + ae + ae},
      {"bytes of no character", repeated("\xFF", 81), repeated("\xFF", 80) + in11 + "\xFF"},
  };
  for (const WrapCase& c : cases) EXPECT_EQ(wrap80(c.text), c.wrapped) << c.what;
}

TEST(WrapText, TakesWidthAndIndentation) {
  EXPECT_EQ(inpS_wrapText("one two three", 8, "  "), "one two \n  three");
  EXPECT_EQ(inpS_wrapText("abc", 1, ""), "a\nb\nc");
}

TEST(SubstitutePlaceholders, ReplacesByPosition) {
  struct Case {
    const char* text;
    cow_List<inpS_MsgArg> args;
    const char* result;
  };
  const Case cases[] = {
      {"%1$s and %2$s", {"a", "b"}, "a and b"},
      {"%2$s before %1$s", {"a", "b"}, "b before a"},
      {"%1$s %1$s", {"a"}, "a a"},
      {"%1$s %2$s", {"%2$s", "b"}, "%2$s b"}, // what an argument brings in stays
      {"%1$s", {"%1$s"}, "%1$s"},
      {"%1$s %2$s %3$s", {"a"}, "a %2$s %3$s"},
      {"of type %s.", {"a"}, "of type %s."},
      {"larger: %1$", {"a"}, "larger: %1$"},
      {"%0$s %$s %-1$s %1$d %%1$s %", {"a"}, "%0$s %$s %-1$s %1$d %a %"},
      {"%99999999999999999999$s", {"a"}, "%99999999999999999999$s"},
      {"%10$s%1$s", {"1", "2", "3", "4", "5", "6", "7", "8", "9", "ten"}, "ten1"},
      {"[%1$s%2$s%3$s%4$s]", {-5, true, 0.1, ""}, "[-5true0.1]"},
      {"no placeholder", {"a"}, "no placeholder"},
      {"", {"a"}, ""},
  };
  for (const Case& c : cases) EXPECT_EQ(inpS_substitutePlaceholders(c.text, c.args), c.result);
}

TEST(ToUtf8, ReplacesWhatIsNone) {
  EXPECT_EQ(inpS_toUtf8("Tr\xC3\xA4ger"), "Tr\xC3\xA4ger");
  EXPECT_EQ(inpS_toUtf8("Tr\xE4ger"), "Tr\\xe4ger"); // a single-byte encoding
  EXPECT_EQ(inpS_toUtf8("\xC3"), "\\xc3");           // cut
  EXPECT_EQ(inpS_toUtf8("\xC0\x80"), "\\xc0\\x80");  // overlong
}
