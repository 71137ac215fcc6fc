#include "base/utl_Stream.h"
#include "inpS/keywords/inpS_QuotedName.h"
#include "inpS/writer/inpS_PrintPrimitives.h"
#include <gtest/gtest.h>
#include <numeric>

namespace {

template <class Print> cow_String printed(const Print& print) {
  cow_String text;
  utl_Stream out(&text);
  print(out);
  out.Flush();
  return text;
}

} // namespace

TEST(PrintPrimitives, Arrays) {
  const double values[] = {1, -0.5, 1e-12};
  EXPECT_EQ(printed([&](utl_Stream& out) { inpS_printArray(out, values, 3); }), "1., -0.5, 1e-12");
  EXPECT_EQ(printed([&](utl_Stream& out) { inpS_printArray(out, values, 1); }), "1.");
  EXPECT_EQ(printed([&](utl_Stream& out) { inpS_printArray(out, values, 0); }), "");
  EXPECT_EQ(printed([&](utl_Stream& out) { inpS_printVector(out, {2, 3}); }), "2., 3.");
}

TEST(PrintPrimitives, SetsAreSixteenToALine) {
  const auto lines = [](int n) {
    cow_List<int> labels(static_cast<std::size_t>(n));
    std::iota(labels.begin(), labels.end(), -1);
    return printed([&](utl_Stream& out) { inpS_printSet(out, n, labels.data()); });
  };
  const cow_String full = "-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14\n";
  EXPECT_EQ(lines(0), "");
  EXPECT_EQ(lines(1), "-1\n");
  EXPECT_EQ(lines(16), full);
  EXPECT_EQ(lines(17), full + "15\n");
}

TEST(PrintPrimitives, NamesAreQuotedWhereNeeded) {
  const struct {
    const char* name;
    const char* printed;
  } cases[] = {
      {"SET1", "SET1"},
      {"Set_1", "\"Set_1\""},
      {"Part.1", "\"Part.1\""},
      {"my set", "\"my set\""},
      {"PART-1", "PART-1"},
      {"plate", "\"plate\""},
      {"A,B", "\"A,B\""},
      {"5\" PIPE", "\"5\"\" PIPE\""},
      {"A#1+2/3", "A#1+2/3"},
      {"A=B", "\"A=B\""},
      {"", ""},
      {"\xc3\x84RGER", "\xc3\x84RGER"},
  };
  for (const auto& [name, expected] : cases) {
    cow_String text = name;
    EXPECT_EQ(QuotedName(text), expected);
    EXPECT_EQ(text, expected);
  }
  cow_String hostile = "A\n*NODE\x1b\xc2\x9b\x7f\xc2\xa3";
  EXPECT_EQ(QuotedName(hostile), "\"A *NODE\xc2\xa3\"");
  const auto value = [](const char* text) {
    return printed([&](utl_Stream& out) { inpS_printInpParamValueString(out, text); });
  };
  EXPECT_EQ(value(""), "");
  EXPECT_EQ(value("SET1"), "\"SET1\"");
}

// What a deck says without quotes is a label, a number or a name of something's own; within them it
// is one name.
TEST(PrintPrimitives, TextsMeanTheSameWhenReadAgain) {
  const struct {
    const char* deck;
    const char* stored;
    const char* written;
  } cases[] = {
      {"5", "5", "5"},
      {"\"5\"", "\"5\"", "\"5\""},
      {"Part-1.5", "PART-1.5", "PART-1.5"},
      {"\"Part-1.5\"", "Part-1.5", "\"Part-1.5\""},
      {"\"PART-1.5\"", "\"PART-1.5\"", "\"PART-1.5\""},
      {"part-1 . \"5\"", "PART-1.\"5\"", "PART-1.\"5\""},
      {"\"a.b\".5", "\"a.b\".5", "\"a.b\".5"},
      {"my_part.top", "MY_PART.TOP", "\"MY_PART\".TOP"},
      {"\"MY_PART\".TOP", "MY_PART.TOP", "\"MY_PART\".TOP"},
      {"\"2\".1", "\"2\".1", "\"2\".1"},
      {"\"top side\"", "top side", "\"top side\""},
      {"\"TOP\"", "TOP", "TOP"},
      {"1.5e3", "1.5E3", "1.5E3"},
      {"\"a,b\"", "a,b", "\"a,b\""},
      {"\"\"\"A\"\"\"", "\"\"\"A\"\"\"", "\"\"\"A\"\"\""},
      {"\"open.b", "\"OPEN.B", "\"\"\"OPEN.B\""},
      {"a..", "A..", "A.."},
      {"\"5\" \"5\"", "55", "55"},
      {"a\".\"\"\"", "A.\"", "\"A.\"\"\""},
      {"\"1e5\"", "1e5", "\"1e5\""},
      {"\" 5\"", " 5", "\" 5\""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(inpS_textOf(c.deck), c.stored) << c.deck;
    EXPECT_EQ(inpS_textInDeck(inpS_textOf(c.deck)), c.written) << c.deck;
    const cow_String again = inpS_textOf(c.written);
    EXPECT_EQ(inpS_textInDeck(again), c.written) << c.deck;
  }
  // A stranger's quotes that would end the value, or the line.
  EXPECT_EQ(inpS_textInDeck("\"A\", B=1"), "\"\"\"A\"\", B=1\"");
  EXPECT_EQ(inpS_textInDeck("\"A\n*STEP\""), "\"\"\"A *STEP\"\"\"");
}
