#include "BulkText.h"
#include "parser/inp_LineScan.h"
#include <bit>
#include <cmath>
#include <gtest/gtest.h>

namespace {

struct NodeCase {
  const char* what;
  std::vector<std::string> text;
  std::vector<int> labels;
  std::vector<double> coords;
  std::vector<std::pair<long long, long long>> odd;
};

const NodeCase nodeCases[] = {
    {"plain", {"1, 0.5, -2., 3\n2, 1e1, .25, +4.\n"}, {1, 2}, {0.5, -2, 3, 10, 0.25, 4}, {}},
    {"short rows give zeros",
     {"7\n8,\n9, 1.\n10, 1., 2.\n"},
     {7, 8, 9, 10},
     {0, 0, 0, 0, 0, 0, 1, 0, 0, 1, 2, 0},
     {}},
    {"empty coordinates are zeros", {"1, , 2.5,\n2,,,4.\n"}, {1, 2}, {0, 2.5, 0, 0, 0, 4}, {}},
    {"comments and blank lines",
     {"** 9, 9.\n1,1.\n\n   \n  **x\n2,2.\n"},
     {1, 2},
     {1, 0, 0, 2, 0, 0},
     {}},
    {"CRLF, tabs, no last line end",
     {"1,\t1.\t,2. ,\t3.\r\n2,4.,5.,6."},
     {1, 2},
     {1, 2, 3, 4, 5, 6},
     {}},
    {"sixteen characters, and the largest exact mantissa",
     {"1,-12345678.123456,9007199254740991,9007199254740993\n"},
     {1},
     {-12345678.123456, 9007199254740991., 9007199254740992.},
     {}},
    {"a character more than goes through at once",
     {"1,0,0,12345678.12345678\n2,12345678.12345678,0,0\n"},
     {1, 2},
     {0, 0, 12345678.12345678, 12345678.12345678, 0, 0},
     {}},
    {"points at both ends, noughts of either sign",
     {"1,-.5,5.,-0\n2,-0.,-.0,0\n3,.,1.,1.\n"},
     {1, 2, 3},
     {-0.5, 5, 0, -0., -0., 0, 0, 1, 1},
     {{2, 2}}},
    {"blanks and signs where none belong",
     {"1, 1 2,-. 5,- 5\n1 2,1.,2.,3.\n3,.-5,5-,1. .\n"},
     {1, 0, 3},
     {0, 0, 0, 1, 2, 3, 0, 0, 0},
     {{0, 0}, {1, 1}, {2, 2}}},
    {"D exponents", {"1, 1d2, 1D-1, -2.5d+1\n"}, {1}, {100, 0.1, -25}, {}},
    {"labels of zero and below",
     {"0, 1.\n-5, 2.\n+6, 3.\n"},
     {0, -5, 6},
     {1, 0, 0, 2, 0, 0, 3, 0, 0},
     {}},
    {"largest labels",
     {"999999999,1.\n-999999999,2.\n1000000000,3.\n"},
     {999999999, -999999999, 0},
     {1, 0, 0, 2, 0, 0, 3, 0, 0},
     {{2, 2}}},
    {"a row of a comma", {",\n"}, {0}, {0, 0, 0}, {{0, 0}}},
    {"empty fields behind the coordinates", {"1,1.,2.,3.,,\n"}, {1}, {1, 2, 3}, {}},
    {"normals", {"1,1.,2.,3.\n2,1.,2.,3.,0.,0.,1.\n"}, {1, 2}, {1, 2, 3, 1, 2, 3}, {{1, 1}}},
    {"what is no number",
     {"\n1, x, 2.\n1., 5.\n3, \"a,b\"\n4, 1e999\n5, 1.\n"},
     {1, 0, 3, 4, 5},
     {0, 2, 0, 5, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0},
     {{1, 0}, {2, 1}, {3, 2}, {4, 3}}},
    {"several texts, the first without a line end",
     {"1,1.\n2,2.", "3,3.\n", "", "4,4."},
     {1, 2, 3, 4},
     {1, 0, 0, 2, 0, 0, 3, 0, 0, 4, 0, 0},
     {}},
    {"no lines", {""}, {}, {}, {}},
};

std::vector<std::pair<long long, long long>> pairsOf(const cow_List<inp_OddRow>& odd) {
  std::vector<std::pair<long long, long long>> pairs;
  for (const inp_OddRow& one : odd) pairs.push_back({one.row, one.slot});
  return pairs;
}

// What inp_DataArray says of the rows, field by field.
void expectAsArray(const inp_DataArray& data, const inp_NodeRows& rows) {
  std::size_t slot = 0, odd = 0;
  for (long long row = 0; row < data.Rows(); ++row) {
    const int cols = data.Cols(row);
    if (cols == 0) continue;
    ASSERT_LT(slot, rows.labels.Size());
    const long long label = data.AsInt64(row, 0);
    bool plain = data.Type(row, 0) == inp_FieldType::Integer && std::abs(label) <= 999999999;
    EXPECT_EQ(rows.labels[slot], plain ? label : 0) << data.RowText(row);
    for (int col = 1; col < 4; ++col) {
      const bool given = col < cols && data.HasValue(row, col);
      double value = given ? data.AsDouble(row, col) : 0;
      plain = plain && (!given || (data.IsNumber(row, col) && std::isfinite(value)));
      if (std::isinf(value)) value = 0;
      const std::string_view text = given ? data.FieldText(row, col) : "";
      const bool hasDigits =
          text.substr(0, text.find_first_of("eEdD")).find_first_of("123456789") != text.npos;
      plain = plain && (!hasDigits || !given || !data.IsNumber(row, col) || std::isnormal(value));
      EXPECT_EQ(std::bit_cast<std::uint64_t>(rows.coords[3 * slot + col - 1]),
                std::bit_cast<std::uint64_t>(value))
          << data.RowText(row);
    }
    for (int col = 4; col < cols; ++col) plain = plain && data.IsNone(row, col);
    if (!plain) {
      ASSERT_LT(odd, rows.odd.size()) << data.RowText(row);
      EXPECT_EQ(rows.odd[odd].row, row);
      EXPECT_EQ(rows.odd[odd].slot, static_cast<long long>(slot));
      ++odd;
    }
    ++slot;
  }
  EXPECT_EQ(rows.labels.Size(), slot);
  EXPECT_EQ(rows.coords.Size(), 3 * slot);
  EXPECT_EQ(rows.odd.size(), odd);
}

std::string randomNodes(RandomLines& random, int lines) {
  std::string text;
  for (int i = 0; i < lines; ++i) {
    text += random.Filler() + random.Blanks() + random.Label();
    const int fields = random.OneIn(6) ? random.Below(8) : 3;
    for (int k = 0; k < fields; ++k)
      text += random.Blanks() + "," + random.Blanks() + random.Real();
    text += (random.OneIn(9) ? "," : "") + random.Blanks() + random.LineEnd();
  }
  if (random.OneIn(2)) text.pop_back();
  return text;
}

// Fields of one or two widths, as programs write them, and now and then a wrong byte.
std::string plainNodes(RandomLines& random, int lines) {
  const int coordinates = random.OneIn(3) ? 2 : 3, digits = 1 + random.Below(10);
  const std::string lineEnd = random.OneIn(3) ? "\r\n" : "\n";
  std::string text;
  for (int i = 0; i < lines; ++i) {
    text += random.PlainInt(digits);
    for (int k = 0; k < coordinates; ++k) text += "," + random.PlainReal();
    text += lineEnd;
  }
  if (random.OneIn(2)) random.Spoil(text);
  return text;
}

} // namespace

TEST(BulkNodes, Cases) {
  for (const NodeCase& c : nodeCases)
    for (const auto& setting : bulkSettings) {
      SCOPED_TRACE(std::string(c.what) + ", piece " + std::to_string(setting.pieceSize));
      const BulkSetting set(setting.threads, setting.pieceSize, setting.instructions);
      inp_NodeRows rows;
      inp_decodeNodes(dataOf(c.text), rows);
      EXPECT_EQ(std::vector<int>(rows.labels.begin(), rows.labels.end()), c.labels);
      EXPECT_EQ(std::vector<double>(rows.coords.begin(), rows.coords.end()), c.coords);
      EXPECT_EQ(pairsOf(rows.odd), c.odd);
    }
}

TEST(BulkNodes, EverySpellingIsWhatTheArraySays) {
  for (unsigned seed = 1; seed <= 80; ++seed) {
    RandomLines random(seed);
    std::vector<std::string> segments;
    for (int n = 1 + random.Below(3); n > 0; --n)
      segments.push_back(seed % 2 ? plainNodes(random, 300) : randomNodes(random, 100));
    const inp_DataArray data = dataOf(segments);
    for (const auto& setting : bulkSettings) {
      SCOPED_TRACE("seed " + std::to_string(seed) + ", piece " + std::to_string(setting.pieceSize));
      const BulkSetting set(setting.threads, setting.pieceSize, setting.instructions);
      inp_NodeRows rows;
      inp_decodeNodes(data, rows);
      expectAsArray(data, rows);
      if (HasFailure()) return;
    }
  }
}

// What goes through fast must do so, not only give the right values.
TEST(BulkNodes, PlainLinesAreTakenTogether) {
  if (utl_instructionSet() == utl_InstructionSet::Portable) GTEST_SKIP();
  for (const std::string end : {"\n", "\r\n"})
    for (const std::string z : {", 0.125", ""}) {
      std::string text;
      for (int i = 0; i < 50; ++i) text += std::to_string(i + 1) + ", -1.5, 2." + z + end;
      inp_LineScan scan;
      const inp_DataArray data = dataOf({text});
      const inp_DataSegment& segment = data.Segments()[0];
      std::size_t lines = 0, taken = 0;
      scan.Run({{segment.text.get(), segment.begin, segment.end}}, [&](const inp_Stretch& stretch) {
        std::vector<int> labels(stretch.count);
        std::vector<double> coords(3 * stretch.count + 1);
        inp_LinePlace at;
        lines += stretch.lines;
        taken += inp_takeNodeLines(stretch, at, labels.data(), coords.data());
        return true;
      });
      EXPECT_EQ(lines, 50u);
      EXPECT_EQ(taken, lines);
    }
}

TEST(BulkNodes, Appends) {
  inp_NodeRows rows;
  inp_decodeNodes(dataOf({"1,1.\n2,2.\n"}), rows);
  inp_decodeNodes(dataOf({"3,3.\nx,4.\n"}), rows);
  EXPECT_EQ(std::vector<int>(rows.labels.begin(), rows.labels.end()), (std::vector{1, 2, 3, 0}));
  EXPECT_EQ(rows.coords[9], 4.);
  EXPECT_EQ(pairsOf(rows.odd), (std::vector<std::pair<long long, long long>>{{1, 3}}));
}

// A line far longer than what is looked at together, among plain ones.
TEST(BulkNodes, VeryLongLine) {
  std::string text = "1,1.\n2";
  for (int i = 0; i < 100000; ++i) text += ", 1.";
  text += "\n3,3.\n";
  inp_NodeRows rows;
  inp_decodeNodes(dataOf({text}), rows);
  EXPECT_EQ(std::vector<int>(rows.labels.begin(), rows.labels.end()), (std::vector{1, 2, 3}));
  EXPECT_EQ(pairsOf(rows.odd), (std::vector<std::pair<long long, long long>>{{1, 1}}));
  EXPECT_EQ(rows.coords[6], 3.);
}

TEST(BulkLabels, Cases) {
  const struct {
    const char* text;
    std::vector<int> labels;
    long long badRow;
    int badCol;
  } cases[] = {
      {"1,2,3\n4, 5,\n\n** 6, 7\n 8\r\n-9, +10, 0", {1, 2, 3, 4, 5, 8, -9, 10, 0}, -1, -1},
      {",,1,\n,\n", {1}, -1, -1},
      {"1, 2\n** x\n3, 4, TOP, 5\n6\n", {1, 2, 3, 4}, 1, 2},
      {"1\n\"A,B\", 2\n", {1}, 1, 0},
      {"1, 2147483647, 2147483648\n", {1, 2147483647}, 0, 2},
      {"1, 2.\n", {1}, 0, 1},
      {"1, 2\n\n3\n4, 5, x", {1, 2, 3, 4, 5}, 3, 2},
      {"", {}, -1, -1},
  };
  for (const auto& c : cases)
    for (const auto& setting : bulkSettings) {
      SCOPED_TRACE(std::string(c.text) + " piece " + std::to_string(setting.pieceSize));
      const BulkSetting set(setting.threads, setting.pieceSize, setting.instructions);
      utl_Buffer<int> labels;
      long long row = -1;
      int col = -1;
      EXPECT_EQ(inp_decodeLabels(dataOf({c.text}), labels, row, col), c.badRow < 0);
      EXPECT_EQ(std::vector<int>(labels.begin(), labels.end()), c.labels);
      EXPECT_EQ(row, c.badRow);
      EXPECT_EQ(col, c.badCol);
    }
}
