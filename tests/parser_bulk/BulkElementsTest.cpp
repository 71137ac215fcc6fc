#include "BulkText.h"
#include <gtest/gtest.h>

namespace {

using Elements = std::vector<std::vector<long long>>; // row, label, nodes
using Odd = std::vector<std::pair<long long, long long>>;

struct Read {
  Elements elements;
  Odd odd;
  int width = 0;
  bool ragged = false; // counts are kept
  bool mapped = false; // rows are kept
};

Read readAll(const inp_ElementRows& rows) {
  Read read;
  read.width = rows.width;
  read.ragged = !rows.counts.IsEmpty();
  read.mapped = !rows.rows.IsEmpty();
  const auto width = static_cast<std::size_t>(rows.width);
  EXPECT_EQ(rows.nodes.Size(), rows.labels.Size() * width);
  for (std::size_t i = 0; i < rows.labels.Size(); ++i) {
    const auto count = read.ragged ? static_cast<std::size_t>(rows.counts[i]) : width;
    std::vector<long long> one{read.mapped ? rows.rows[i] : static_cast<long long>(i),
                               rows.labels[i]};
    for (std::size_t k = 0; k < width; ++k) {
      if (k < count)
        one.push_back(rows.nodes[i * width + k]);
      else
        EXPECT_EQ(rows.nodes[i * width + k], 0) << "element " << i;
    }
    read.elements.push_back(one);
  }
  for (const inp_OddRow& odd : rows.odd) read.odd.push_back({odd.row, odd.slot});
  return read;
}

struct ElementCase {
  const char* what;
  inp_ElementForm form;
  std::vector<std::string> text;
  Elements elements;
  Odd odd;
  bool ragged, mapped;
};

const ElementCase elementCases[] = {
    {"plain",
     {4, 0, 0},
     {"1, 1,2,3,4\n2,5,6,7,8\n"},
     {{0, 1, 1, 2, 3, 4}, {1, 2, 5, 6, 7, 8}},
     {},
     false,
     false},
    {"comments, blank lines, CRLF",
     {2, 0, 0},
     {"** c\n1,1,2\r\n\r\n2,3,4\r\n  **\n3 ,5\t, 6"},
     {{0, 1, 1, 2}, {2, 2, 3, 4}, {3, 3, 5, 6}},
     {},
     false,
     true},
    {"two lines each",
     {4, 0, 0},
     {"1, 1,2,3,\n4\n2, 5,6,7,\n8\n"},
     {{0, 1, 1, 2, 3, 4}, {2, 2, 5, 6, 7, 8}},
     {},
     false,
     true},
    {"a comma behind a full element",
     {2, 0, 0},
     {"1, 1,2,\n2, 3,4,\n"},
     {{0, 1, 1, 2}, {1, 2, 3, 4}},
     {},
     false,
     false},
    {"a line that would pass the maximum begins anew",
     {4, 0, 0},
     {"1, 1,2,\n2, 3,4,5,6\n"},
     {{0, 1, 1, 2}, {1, 2, 3, 4, 5, 6}},
     {},
     true,
     false},
    {"comments and blanks within an element",
     {4, 0, 0},
     {"1, 1,2,3,\n** c\n\n4\n2, 5,6,7,8\n"},
     {{0, 1, 1, 2, 3, 4}, {3, 2, 5, 6, 7, 8}},
     {},
     false,
     true},
    {"every line ends in a comma",
     {4, 0, 0},
     {"1,1,2,3,\n4,\n2,5,6,7,\n8,\n3,9,10,11,\n12,"},
     {{0, 1, 1, 2, 3, 4}, {2, 2, 5, 6, 7, 8}, {4, 3, 9, 10, 11, 12}},
     {},
     false,
     true},
    {"an extra node now and then",
     {3, 0, 0},
     {"1,1,2\n2,3,4,5\n3,6\n4\n"},
     {{0, 1, 1, 2}, {1, 2, 3, 4, 5}, {2, 3, 6}, {3, 4}},
     {},
     true,
     false},
    {"extra fields are kept behind the nodes",
     {2, 1, 0},
     {"1,1,2,77\n"},
     {{0, 1, 1, 2, 77}},
     {},
     false,
     false},
    {"fewer nodes on the first line than given",
     {4, 0, 2},
     {"1,1,2,\n3,4\n2,1,2,3,4\n"},
     {{0, 1, 1, 2, 3, 4}, {2, 2, 1, 2, 3, 4}},
     {{2, 1}},
     false,
     true},
    {"too many nodes",
     {2, 0, 0},
     {"1,1,2\n2,3,4,5\n3,6,7\n"},
     {{0, 1, 1, 2}, {1, 2, 3, 4}, {2, 3, 6, 7}},
     {{1, 1}},
     false,
     false},
    {"what is no label",
     {2, 0, 0},
     {"1,1,2\nx,3,4\n3,,6\n4,7.,8\n5,9,2147483648\n,1,2\n"},
     {{0, 1, 1, 2}, {1, 0, 3, 4}, {2, 3, 0, 6}, {3, 4, 0, 8}, {4, 5, 9, 0}, {5, 0, 1, 2}},
     {{1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}},
     false,
     false},
    {"over the end of a text",
     {4, 0, 0},
     {"1,1,2,\n", "3,4\n2,5,6,", "\n7,8"},
     {{0, 1, 1, 2, 3, 4}, {2, 2, 5, 6, 7, 8}},
     {},
     false,
     true},
    {"negative labels and references",
     {2, 0, 0},
     {"-1, 0, -7\n"},
     {{0, -1, 0, -7}},
     {},
     false,
     false},
    {"no lines", {2, 0, 0}, {"** nothing\n"}, {}, {}, false, false},
};

// The rule of continued lines, applied to inp_DataArray's fields one after the other.
Read readSlowly(const inp_DataArray& data, const inp_ElementForm& form) {
  Read read;
  const long long limit = form.maxNodes + form.extraFields;
  bool open = false, odd = false;
  long long fields = 0;
  const auto close = [&] {
    if (fields > limit) {
      odd = true;
      read.elements.back().resize(static_cast<std::size_t>(2 + limit));
    }
    if (odd)
      read.odd.push_back(
          {read.elements.back()[0], static_cast<long long>(read.elements.size()) - 1});
    open = odd = false;
  };
  for (long long row = 0; row < data.Rows(); ++row) {
    int cols = data.Cols(row);
    if (cols == 0) continue;
    const bool goesOn = data.HasRowContinuation(row);
    cols -= goesOn;
    const auto label = [&](int col) {
      const long long value = data.AsInt64(row, col);
      const bool good =
          data.Type(row, col) == inp_FieldType::Integer && std::abs(value) <= 999999999;
      odd = odd || !good;
      return good ? value : 0;
    };
    const bool continued = open && fields + cols <= limit;
    if (open && !continued) close();
    if (!continued) {
      read.elements.push_back({row, label(0)});
      fields = 0;
    }
    for (int col = continued ? 0 : 1; col < cols; ++col, ++fields)
      read.elements.back().push_back(label(col));
    open = goesOn;
    if (!open) close();
  }
  if (open) close();
  return read;
}

std::string randomElements(RandomLines& random, const inp_ElementForm& form, int count) {
  std::string text;
  const int style = random.Below(4); // how often lines break, end in a comma or hold odd fields
  for (int i = 0; i < count; ++i) {
    text += random.Filler() + random.Blanks() + random.Label();
    const int nodes =
        style == 0 || random.OneIn(5) ? random.Below(form.maxNodes + 2) : form.maxNodes;
    for (int k = 0; k < nodes; ++k) {
      text += random.Blanks() + ",";
      if (style > 1 && random.OneIn(6))
        text += random.Blanks() + random.LineEnd() + random.Filler();
      const std::string label = random.Label();
      text += random.Blanks() + (label.find('"') == std::string::npos ? label : "A");
    }
    text += (style == 3 || random.OneIn(9) ? "," : "") + random.Blanks() + random.LineEnd();
  }
  if (random.OneIn(2)) text.pop_back();
  return text;
}

// All elements alike, as programs write them, and now and then a wrong byte.
std::string plainElements(RandomLines& random, const inp_ElementForm& form, int count) {
  const int digits = 1 + random.Below(10), width = random.OneIn(3) ? 10 : 0;
  const std::string lineEnd = random.OneIn(3) ? "\r\n" : "\n";
  std::string text;
  for (int i = 0; i < count; ++i) {
    text += std::to_string(i + 1);
    for (int k = 0; k < form.maxNodes; ++k) {
      std::string field = random.PlainInt(digits);
      if (width > 0) field.insert(0, static_cast<std::size_t>(width), ' ');
      text += (k == 15 ? "," + lineEnd : ",") + field;
    }
    text += lineEnd;
  }
  if (random.OneIn(2)) random.Spoil(text);
  return text;
}

} // namespace

TEST(BulkElements, Cases) {
  for (const ElementCase& c : elementCases)
    for (const auto& setting : bulkSettings) {
      SCOPED_TRACE(std::string(c.what) + ", piece " + std::to_string(setting.pieceSize));
      const BulkSetting set(setting.threads, setting.pieceSize, setting.instructions);
      inp_ElementRows rows;
      inp_decodeElements(dataOf(c.text), c.form, rows);
      const Read read = readAll(rows);
      EXPECT_EQ(read.elements, c.elements);
      EXPECT_EQ(read.odd, c.odd);
      EXPECT_EQ(read.ragged, c.ragged);
      EXPECT_EQ(read.mapped, c.mapped);
    }
}

TEST(BulkElements, EverySpellingIsWhatTheArraySays) {
  const inp_ElementForm forms[] = {{8, 0, 0}, {20, 0, 0}, {3, 1, 0}, {1, 0, 0}, {27, 0, 0}};
  for (unsigned seed = 1; seed <= 90; ++seed) {
    RandomLines random(seed);
    const inp_ElementForm& form = forms[seed % 5];
    std::vector<std::string> segments;
    for (int n = 1 + random.Below(3); n > 0; --n)
      segments.push_back(random.OneIn(2) ? plainElements(random, form, 200)
                                         : randomElements(random, form, 60));
    const inp_DataArray data = dataOf(segments);
    const Read expected = readSlowly(data, form);
    for (const auto& setting : bulkSettings) {
      SCOPED_TRACE("seed " + std::to_string(seed) + ", piece " + std::to_string(setting.pieceSize));
      const BulkSetting set(setting.threads, setting.pieceSize, setting.instructions);
      inp_ElementRows rows;
      inp_decodeElements(data, form, rows);
      const Read read = readAll(rows);
      EXPECT_EQ(read.elements, expected.elements);
      EXPECT_EQ(read.odd, expected.odd);
      if (HasFailure()) return;
    }
  }
}

TEST(BulkElements, AppendsWiderOnes) {
  inp_ElementRows rows;
  inp_decodeElements(dataOf({"1,1,2\n2,3,4\n"}), {2, 0, 0}, rows);
  inp_decodeElements(dataOf({"3,5,6,7\n"}), {3, 0, 0}, rows);
  inp_decodeElements(dataOf({"4,8\n"}), {3, 0, 0}, rows);
  const Read read = readAll(rows);
  EXPECT_EQ(read.elements, (Elements{{0, 1, 1, 2}, {1, 2, 3, 4}, {0, 3, 5, 6, 7}, {0, 4, 8}}));
}

// One huge element must not be multiplied by the many small ones around it.
TEST(BulkElements, HugeElementIsOddAndReadByTheGeneralRoad) {
  std::string text = "1,1,2\n2";
  for (int i = 0; i < 100000; ++i) text += i % 16 == 15 ? ",\n 5" : ", 5";
  const inp_DataArray data = dataOf({text + "\n3,3,4\n"});
  const inp_ElementForm form{100000, 0, 0};
  inp_ElementRows rows;
  inp_decodeElements(data, form, rows);
  EXPECT_EQ(rows.width, 2);
  ASSERT_EQ(rows.odd.size(), 1u);
  EXPECT_EQ(rows.counts[1], 0);
  long long next = 0;
  const auto fields = inp_elementFields(data, form, rows.odd[0].row, next);
  EXPECT_EQ(fields.size(), 100001u);
  EXPECT_EQ(next, rows.rows[2]);
}
