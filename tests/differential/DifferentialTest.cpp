// The fast decoders beside the plain one, bit for bit, on lines made by chance; and numbers printed
// and read back.
//
// INPS_RANDOM_DECKS=N runs N rounds instead of a few; INPS_RANDOM_SEED=S begins with another seed.

#include "base/utl_Number.h"
#include "tests/differential/PlainDecoder.h"
#include "tests/differential/RandomFields.h"
#include "tests/parser_bulk/BulkText.h"
#include <charconv>
#include <functional>
#include <gtest/gtest.h>

namespace {

using Rows = std::vector<std::vector<PlainField>>;

long long numberOf(const char* variable, long long otherwise) {
  const char* text = std::getenv(variable);
  return text && *text ? std::atoll(text) : otherwise;
}

void forSeeds(long long few, const std::function<void(RandomFields&)>& check) {
  const long long first = numberOf("INPS_RANDOM_SEED", 1);
  const long long count = numberOf("INPS_RANDOM_DECKS", few);
  for (long long seed = first; seed < first + count && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomFields random(static_cast<std::uint64_t>(seed));
    check(random);
  }
}

// Decks once in each way of cutting them: the rows as the plain decoder has them, and the data.
using Check = std::function<void(const Rows&, const inp_DataArray&)>;

void inEveryCut(const std::vector<std::string>& segments, const Check& check) {
  Rows rows;
  for (const std::string& segment : segments)
    for (const std::string& line : plainLines(segment)) rows.push_back(plainFields(line));
  for (const auto& setting : bulkSettings) {
    const BulkSetting set(setting.threads, setting.pieceSize, setting.instructions);
    check(rows, dataOf(segments));
    if (testing::Test::HasFailure()) return;
  }
}

std::uint64_t bitsOf(double value) {
  return std::bit_cast<std::uint64_t>(value);
}

std::vector<std::string> segmentsOf(RandomFields& random, int lines,
                                    const std::function<std::string()>& line) {
  std::vector<std::string> segments;
  for (long long n = random.Chance().From(1, 3); n > 0; --n) {
    std::string text;
    for (int i = 0; i < lines; ++i)
      text += random.Filler() + line() + random.Blanks() + random.LineEnd();
    if (random.Chance().OneIn(3)) text.resize(text.size() - 1);
    segments.push_back(text);
  }
  return segments;
}

std::string field(RandomFields& random, const std::string& text) {
  return random.Blanks() + text + random.Blanks();
}

std::string nodeLine(RandomFields& random) {
  std::string line = field(random, random.Label());
  long long fields = random.Chance().OneIn(9) ? random.Chance().Below(8) : 3;
  for (; fields > 0; --fields) line += "," + field(random, random.Real());
  return line;
}

std::string labelLine(RandomFields& random, long long most, bool goesOn) {
  std::string line = field(random, random.Label());
  for (long long n = random.Chance().Below(most); n > 0; --n)
    line += "," + field(random, random.Label());
  return line + (goesOn ? "," : "");
}

void expectSameFields(const Rows& rows, const inp_DataArray& data) {
  static constexpr inp_FieldType types[] = {inp_FieldType::None, inp_FieldType::Integer,
                                            inp_FieldType::Double, inp_FieldType::String};
  ASSERT_EQ(static_cast<long long>(rows.size()), data.Rows());
  for (std::size_t r = 0; r < rows.size(); ++r) {
    const auto row = static_cast<long long>(r);
    ASSERT_EQ(static_cast<std::size_t>(data.Cols(row)), rows[r].size()) << data.RowText(row);
    for (int col = 0; col < data.Cols(row); ++col) {
      const PlainField& plain = rows[r][static_cast<std::size_t>(col)];
      ASSERT_EQ(data.FieldText(row, col), plain.text);
      ASSERT_EQ(data.Type(row, col), types[plain.kind]) << plain.text;
      ASSERT_EQ(bitsOf(data.AsDouble(row, col)), bitsOf(plain.real)) << plain.text;
      if (plain.kind == PlainField::Integer) {
        ASSERT_EQ(data.AsInt64(row, col), plain.integer) << plain.text;
      }
    }
  }
}

void expectSameNodes(const Rows& rows, const inp_DataArray& data) {
  inp_NodeRows nodes;
  inp_decodeNodes(data, nodes);
  std::size_t slot = 0, odd = 0;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    const std::vector<PlainField>& fields = rows[row];
    if (fields.empty()) continue;
    ASSERT_LT(slot, nodes.labels.Size());
    bool plain = fields[0].IsLabel(), quoted = false;
    for (std::size_t k = 1; k < fields.size(); ++k)
      plain = plain && (fields[k].kind == PlainField::None ||
                        (k < 4 && fields[k].IsNumber() && !fields[k].IsTiny()));
    for (const PlainField& one : fields) quoted |= one.text.find('"') != std::string::npos;
    if (!plain || quoted) {
      ASSERT_LT(odd, nodes.odd.size()) << "row " << row;
      ASSERT_EQ(nodes.odd[odd].row, static_cast<long long>(row));
      ASSERT_EQ(nodes.odd[odd++].slot, static_cast<long long>(slot));
    }
    if (!quoted) {
      ASSERT_EQ(nodes.labels[slot], fields[0].IsLabel() ? fields[0].integer : 0);
      for (std::size_t k = 1; k < 4; ++k) {
        const bool given = k < fields.size() && fields[k].IsNumber();
        ASSERT_EQ(bitsOf(nodes.coords[3 * slot + k - 1]), bitsOf(given ? fields[k].real : 0))
            << "row " << row << " field " << k << " " << (given ? fields[k].text : "");
      }
    }
    ++slot;
  }
  EXPECT_EQ(nodes.labels.Size(), slot);
  EXPECT_EQ(nodes.odd.size(), odd);
}

void expectSameStream(const Rows&, const inp_DataArray& data) {
  inp_NodeRows whole, pieces;
  inp_decodeNodes(data, whole);
  inp_streamNodes(
      data, [](const inp_NodePiece&) {},
      [&](const inp_NodePiece& piece) {
        for (const inp_OddRow& odd : piece.odd)
          pieces.odd.push_back({odd.row, pieces.Count() + odd.slot});
        pieces.labels.Append(std::span<const int>(piece.labels));
        pieces.coords.Append(std::span<const double>(piece.coords));
      });
  ASSERT_EQ(pieces.labels.Size(), whole.labels.Size());
  ASSERT_EQ(pieces.odd.size(), whole.odd.size());
  for (std::size_t i = 0; i < whole.labels.Size(); ++i)
    ASSERT_EQ(pieces.labels[i], whole.labels[i]);
  for (std::size_t i = 0; i < whole.coords.Size(); ++i)
    ASSERT_EQ(bitsOf(pieces.coords[i]), bitsOf(whole.coords[i]));
  for (std::size_t i = 0; i < whole.odd.size(); ++i) {
    ASSERT_EQ(pieces.odd[i].row, whole.odd[i].row);
    ASSERT_EQ(pieces.odd[i].slot, whole.odd[i].slot);
  }
}

void expectSameLabels(const Rows& rows, const inp_DataArray& data) {
  std::vector<int> wanted;
  long long badRow = -1;
  int badCol = -1;
  for (std::size_t row = 0; row < rows.size() && badRow < 0; ++row)
    for (std::size_t col = 0; col < rows[row].size() && badRow < 0; ++col) {
      const PlainField& one = rows[row][col];
      if (one.kind == PlainField::None) continue;
      const bool fits =
          one.kind == PlainField::Integer && one.integer >= INT32_MIN && one.integer <= INT32_MAX;
      if (fits) {
        wanted.push_back(static_cast<int>(one.integer));
      } else {
        badRow = static_cast<long long>(row);
        badCol = static_cast<int>(col);
      }
    }
  utl_Buffer<int> labels;
  long long row = -1;
  int col = -1;
  ASSERT_EQ(inp_decodeLabels(data, labels, row, col), badRow < 0);
  if (badRow >= 0) {
    ASSERT_EQ(row, badRow);
    ASSERT_EQ(col, badCol);
  }
  ASSERT_EQ(std::vector<int>(labels.begin(), labels.end()), wanted);
}

void expectSameRows(const Rows& rows, const inp_DataArray& data, std::size_t width) {
  std::vector<std::uint64_t> wanted;
  bool all = true;
  for (const std::vector<PlainField>& fields : rows) {
    all = all && fields.size() == width;
    for (const PlainField& one : fields) {
      all = all && one.IsNumber() && !one.IsTiny();
      wanted.push_back(bitsOf(one.real));
    }
  }
  utl_Buffer<double> values;
  ASSERT_EQ(inp_decodeRows(data, static_cast<int>(width), values), all);
  if (!all) return;
  ASSERT_EQ(values.Size(), wanted.size());
  for (std::size_t i = 0; i < wanted.size(); ++i) ASSERT_EQ(bitsOf(values[i]), wanted[i]);
}

// An element goes on with the next line behind a comma while its nodes fit.
void expectSameElements(const Rows& rows, const inp_DataArray& data, int most) {
  inp_ElementRows elements;
  inp_decodeElements(data, {most, 0, 0}, elements);
  std::size_t element = 0, odd = 0, row = 0;
  const auto limit = static_cast<std::size_t>(most);
  while (row < rows.size()) {
    if (rows[row].empty() && ++row) continue;
    std::vector<PlainField> fields;
    bool goesOn = true;
    while (goesOn && row < rows.size()) {
      std::vector<PlainField> line = rows[row];
      if (!line.empty()) {
        const bool comma = line.size() > 1 && line.back().kind == PlainField::None;
        if (comma) line.pop_back();
        if (!fields.empty() && fields.size() - 1 + line.size() > limit) break;
        fields.insert(fields.end(), line.begin(), line.end());
        goesOn = comma;
      }
      ++row;
    }
    ASSERT_LT(element, elements.labels.Size());
    bool plain = fields.size() - 1 <= limit;
    for (const PlainField& one : fields) plain = plain && one.IsLabel();
    if (!plain) {
      ASSERT_LT(odd, elements.odd.size());
      ASSERT_EQ(elements.odd[odd++].slot, static_cast<long long>(element));
    }
    ASSERT_EQ(elements.labels[element], fields[0].IsLabel() ? fields[0].integer : 0);
    const std::size_t kept = std::min(fields.size() - 1, limit);
    const auto width = static_cast<std::size_t>(elements.width);
    ASSERT_EQ(elements.counts.IsEmpty() ? width
                                        : static_cast<std::size_t>(elements.counts[element]),
              kept);
    for (std::size_t k = 0; k < kept; ++k)
      ASSERT_EQ(elements.nodes[element * width + k],
                fields[k + 1].IsLabel() ? fields[k + 1].integer : 0);
    ++element;
  }
  EXPECT_EQ(elements.labels.Size(), element);
  EXPECT_EQ(elements.odd.size(), odd);
}

} // namespace

TEST(Differential, NodesAndFields) {
  forSeeds(60, [](RandomFields& random) {
    const auto segments = segmentsOf(random, 40, [&] { return nodeLine(random); });
    inEveryCut(segments, expectSameFields);
    inEveryCut(segments, expectSameNodes);
    inEveryCut(segments, expectSameStream);
  });
}

TEST(Differential, Elements) {
  forSeeds(60, [](RandomFields& random) {
    const auto most = static_cast<int>(random.Chance().From(1, 30));
    const long long breaks = random.Chance().From(1, 5); // every n-th line goes on
    const auto line = [&] { return labelLine(random, 10, random.Chance().OneIn(breaks)); };
    inEveryCut(segmentsOf(random, 60, line), [&](const Rows& rows, const inp_DataArray& data) {
      for (const auto& fields : rows)
        for (const PlainField& one : fields)
          if (one.text.find('"') != std::string::npos) return; // read by the general road
      expectSameElements(rows, data, most);
    });
  });
}

TEST(Differential, Labels) {
  forSeeds(60, [](RandomFields& random) {
    const auto line = [&] { return labelLine(random, 16, random.Chance().OneIn(5)); };
    const int lines = random.Chance().OneIn(2) ? 2 : 60;
    inEveryCut(segmentsOf(random, lines, line), expectSameLabels);
  });
}

TEST(Differential, RowsOfNumbers) {
  forSeeds(150, [](RandomFields& random) {
    const long long width = random.Chance().From(1, 8);
    const auto line = [&] {
      std::string text = random.Real();
      for (long long k = 1; k < width; ++k) text += "," + field(random, random.Real());
      return text;
    };
    const int lines = random.Chance().OneIn(2) ? 1 : 10;
    inEveryCut(segmentsOf(random, lines, line), [&](const Rows& rows, const inp_DataArray& data) {
      expectSameRows(rows, data, static_cast<std::size_t>(width));
    });
  });
}

TEST(Differential, PrintedNumbersComeBackAndAreShortest) {
  forSeeds(20, [](RandomFields& random) {
    for (int n = 0; n < 3000; ++n) {
      const std::uint64_t bits = random.Bits() >> random.Chance().Below(64);
      const auto integer = static_cast<long long>(bits);
      const double real = random.Chance().OneIn(2) ? random.AnyBits() : std::bit_cast<double>(bits);
      if (!std::isfinite(real)) continue;
      char text[utl_doubleTextRoom], room[64];
      const std::string printed(text, utl_printDouble(text, real));
      const PlainField back(printed);
      ASSERT_EQ(back.kind, PlainField::Double) << printed;
      ASSERT_EQ(bitsOf(back.real), bitsOf(real)) << printed;
      std::string shortest(room, std::to_chars(room, room + sizeof room, real).ptr);
      const bool whole = shortest.find_first_of(".e") == std::string::npos;
      ASSERT_LE(printed.size(), shortest.size() + whole) << printed << " for " << shortest;
      ASSERT_EQ(std::string(text, utl_printInt(text, integer)), std::to_string(integer));
    }
  });
}
