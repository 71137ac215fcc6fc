#include "base/utl_Assert.h"
#include "tests/parser/Parsed.h"
#include <gtest/gtest.h>

namespace {

inp_DataArray dataOf(const cow_String& lines) {
  return Parsed("*Foo\n" + lines).keywords.at(0).Data();
}

// One letter per field: kinds of a row.
cow_String kinds(const inp_DataArray& data, long long row) {
  cow_String out;
  for (int col = 0; col < data.Cols(row); ++col)
    out += "NIDS"[static_cast<int>(data.Type(row, col))];
  return out;
}

} // namespace

TEST(DataArray, SplitsLinesIntoTypedFields) {
  const struct {
    const char* line;
    const char* kinds;
    const char* last; // last field, folded
  } cases[] = {
      {"1, 2,", "IIN", ""},
      {"1", "I", "1"},
      {"", "", ""},
      {" \t ", "", ""},
      {",", "NN", ""},
      {" , ,x", "NNS", "X"},
      {"1.,.5,1e3,1D-3,+4,-5.0e+2", "DDDDID", "-5.0E+2"},
      {"\t7\t,\t set a\t", "IS", "SETA"},
      {"\"set, a\", 2", "SI", "2"},
      {"1, Part-1.\"Set, a\"", "IS", "PART-1.Set, a"},
      {"5\" pipe, x", "SS", "X"},
      {"\"open, 1, 2", "SII", "2"},
      {"\"a\", \"b, 1", "SSI", "1"},
      {"1 2, 3x, 1.2.3, --4", "SSSS", "--4"},
      {"99999999999, 1e400", "IS", "1E400"},
      {"S1, , yes,", "SNSN", ""},
      {"1, 2\r", "II", "2"},
  };
  for (const auto& [line, expected, last] : cases) {
    const inp_DataArray data = dataOf(cow_String(line) + "\nend");
    ASSERT_EQ(data.Rows(), 2) << line;
    EXPECT_EQ(kinds(data, 0), expected) << line;
    if (data.Cols(0) > 0) {
      EXPECT_EQ(data.AsString(0, data.Cols(0) - 1), last) << line;
    }
  }
}

TEST(DataArray, ConvertsFields) {
  const inp_DataArray data = dataOf("7, 2.9, -3d0, abc, , 99999999999, 1e99");
  EXPECT_EQ(data.AsInt(0, 0), 7);
  EXPECT_EQ(data.AsDouble(0, 0), 7.0);
  EXPECT_EQ(data.AsInt(0, 1), 2);
  EXPECT_EQ(data.AsDouble(0, 2), -3.0);
  EXPECT_EQ(data.AsInt(0, 3), 0);
  EXPECT_EQ(data.AsDouble(0, 3), 0.0);
  EXPECT_EQ(data.AsStringVerbatim(0, 3), "abc");
  EXPECT_TRUE(data.IsNone(0, 4));
  EXPECT_FALSE(data.HasValue(0, 4));
  EXPECT_EQ(data.AsDouble(0, 4), 0.0);
  EXPECT_EQ(data.AsInt(0, 5), 2147483647);
  EXPECT_EQ(data.AsInt64(0, 5), 99999999999);
  EXPECT_EQ(data.AsInt(0, 6), 2147483647);
}

TEST(DataArray, RowsLeaveOutCommentsAndCountBlanks) {
  const inp_DataArray data = dataOf("1,\n** c\n  **c\n\n2 \r\n**end\n3");
  ASSERT_EQ(data.Rows(), 4);
  EXPECT_EQ(data.RowText(0), "1,");
  EXPECT_EQ(data.RowText(1), "");
  EXPECT_EQ(data.RowText(2), "2 ");
  EXPECT_EQ(data.RowText(3), "3");
  EXPECT_EQ(data.PlaceOfRow(3).line, 8);
  EXPECT_TRUE(data.HasRowContinuation(0));
  EXPECT_FALSE(data.HasRowContinuation(1));
  EXPECT_FALSE(data.HasRowContinuation(2));
  EXPECT_EQ(Parsed("*Foo\n** only\n").keywords.at(0).Data().Rows(), 0);
}

// Every order of access gives the same fields: forward, backward, far jumps.
TEST(DataArray, AnyOrderOfAccess) {
  cow_String lines;
  for (int i = 0; i < 1000; ++i) {
    if (i % 7 == 0) lines += "** comment\n";
    lines += std::to_string(i) + ", " + std::to_string(i * i) + "\n";
  }
  const inp_DataArray data = dataOf(lines);
  ASSERT_EQ(data.Rows(), 1000);
  const auto check = [&](int row) {
    EXPECT_EQ(data.AsInt(row, 1), row * row);
    EXPECT_EQ(data.AsInt(row, 0), row);
    EXPECT_EQ(data.PlaceOfRow(row).line, 1 + row + 1 + row / 7 + 1) << row;
  };
  for (int row = 999; row >= 0; row -= 13) check(row);
  for (int row = 0; row < 1000; ++row) check(row);
  for (int i = 0; i < 300; ++i) check(i * 617 % 1000);
}

TEST(DataArray, ReadingPastTheEndIsAnAssertion) {
  const inp_DataArray data = dataOf("1, 2\n\n");
  EXPECT_THROW((void)data.Cols(2), utl_Assertion);
  EXPECT_THROW((void)data.Cols(-1), utl_Assertion);
  EXPECT_THROW((void)data.AsInt(0, 2), utl_Assertion);
  EXPECT_THROW((void)data.AsInt(0, -1), utl_Assertion);
  EXPECT_THROW((void)data.AsInt(1, 0), utl_Assertion);
  EXPECT_THROW((void)inp_DataArray().RowText(0), utl_Assertion);
}

TEST(DataArray, CopiesShareTheirText) {
  const inp_DataArray data = dataOf("1");
  const inp_DataArray copy = data;
  EXPECT_TRUE(copy.SharesTextWith(data));
  EXPECT_EQ(copy.Identity(), data.Identity());
  EXPECT_FALSE(data.SharesTextWith(dataOf("1")));
  EXPECT_FALSE(inp_DataArray().SharesTextWith(inp_DataArray()));
}

TEST(DataArray, SegmentsKnowWhetherTheyAreAscii) {
  const Parsed parsed("*Foo\n1\n*Bar\n\xC3\xA4\n*Foo\n2\n*Foo\n" + cow_String(300, ' ') + "\xFF");
  for (const int i : {0, 2}) EXPECT_TRUE(parsed.keywords.at(i).Data().Segments().at(0).ascii) << i;
  for (const int i : {1, 3}) EXPECT_FALSE(parsed.keywords.at(i).Data().Segments().at(0).ascii) << i;
}
