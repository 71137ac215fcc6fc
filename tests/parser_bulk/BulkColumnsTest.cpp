#include "parser/inp_BulkColumns.h"
#include "tests/parser_bulk/BulkText.h"
#include <gtest/gtest.h>

namespace {

using Type = inp_ColumnType;

// One row as text: fields as they were taken; "-" for blank ones; "!" in front of an odd row.
cow_List<cow_String> rowsOf(const inp_DataArray& data, const cow_List<Type>& types) {
  cow_List<cow_String> rows;
  std::map<std::size_t, cow_List<cow_String>> namesOf; // by slot, of its last piece
  const auto take = [&](const inp_ColumnPiece& piece) {
    cow_List<cow_String>& names = namesOf[piece.slot];
    EXPECT_TRUE(piece.known <= names.size() && piece.known <= piece.names.size());
    EXPECT_TRUE(
        std::ranges::equal(piece.names.first(piece.known), std::span(names).first(piece.known)));
    names.assign(piece.names.begin(), piece.names.end());
    cow_List<cow_String> taken(piece.count);
    for (std::size_t n = 0; n < piece.count; ++n)
      for (std::size_t c = 0; c < types.size(); ++c) {
        cow_String& text = taken[n];
        if (c > 0) text += ' ';
        if (types[c] == Type::Real) {
          const double value = piece.columns[c].reals[n];
          text += inp_isBlankReal(value) ? cow_String("-") : std::to_string(value);
        } else {
          const int value = piece.columns[c].ints[n];
          text += value == inp_blankInt ? cow_String("-")
                  : inp_isNameCode(value)
                      ? cow_String(piece.names[static_cast<std::size_t>(inp_namePlace(value))])
                      : std::to_string(value);
        }
      }
    for (const inp_OddRow& odd : piece.odd)
      taken[static_cast<std::size_t>(odd.slot)] = "!" + std::to_string(odd.row);
    rows.insert(rows.end(), taken.begin(), taken.end());
  };
  inp_streamColumns(
      data, types, [](const inp_ColumnPiece&) {}, take);
  return rows;
}

} // namespace

TEST(BulkColumns, lines_of_every_kind) {
  const std::string text = "12, 1, 2.5\n"
                           "LEFT, 2, -1e3\n"
                           "** a comment, 1, 2\n"
                           "LEFT,3\n"
                           "\n"
                           "  inst.Right , , 7,,\n"
                           "-5, 1, +.5\n"
                           "\"a, b\", 1, 2.\n"
                           "TOP, one, 2.\n"
                           "TOP, 1.5, 2.\n"
                           "TOP, 1, x\n"
                           "TOP, 1, 2, 3\n"
                           "TO\"P, 1, 2.\n"
                           "A-NAME-LONGER-THAN-SIXTEEN, 1, 2\n"
                           "A-NAME-LONGEST-OF-SIXTEEN, 1, 2\n"
                           "NINE-CHAR, 1, 2\n"
                           "MINE-CHAR, 1, 2\n"
                           "1000000000, 1, 1.\n"
                           "7up, 3, 4";
  const cow_List<cow_String> expected = {"12 1 2.500000",
                                         "LEFT 2 -1000.000000",
                                         "LEFT 3 -",
                                         "inst.Right - 7.000000",
                                         "-5 1 0.500000",
                                         "!6",
                                         "!7",
                                         "!8",
                                         "!9",
                                         "!10",
                                         "!11",
                                         "A-NAME-LONGER-THAN-SIXTEEN 1 2.000000",
                                         "A-NAME-LONGEST-OF-SIXTEEN 1 2.000000",
                                         "NINE-CHAR 1 2.000000",
                                         "MINE-CHAR 1 2.000000",
                                         "!16",
                                         "7up 3 4.000000"};
  for (const auto& setting : bulkSettings) {
    const BulkSetting now(setting.threads, setting.pieceSize, setting.instructions);
    EXPECT_EQ(rowsOf(dataOf({text}), {Type::Target, Type::Int, Type::Real}), expected)
        << setting.threads << " threads, pieces of " << setting.pieceSize;
  }
}

TEST(BulkColumns, words_may_look_like_numbers) {
  EXPECT_EQ(rowsOf(dataOf({"P1, 3\nGRAV\n12, 4\n,5\n"}), {Type::Word, Type::Target}),
            (cow_List<cow_String>{"P1 3", "GRAV -", "12 4", "- 5"}));
}

// Thousands of lines of one form, and among them some that only look so: a comment with as many
// commas, a line that is blank but for commas, a word where a number should be.
TEST(BulkColumns, lines_that_are_alike) {
  std::string text;
  cow_List<cow_String> expected;
  for (int line = 0; line < 4000; ++line) {
    const bool isName = line % 5 < 3;
    const std::string target = isName ? "SET-" + std::to_string(line % 700) : std::to_string(line);
    const std::string integer = std::to_string(line % 9);
    text += target + ", " + integer + ", " + std::to_string(line) + ".5, WORD" + integer + "\n";
    expected.push_back(target + " " + integer + " " + std::to_string(line) + ".500000 WORD" +
                       integer);
    if (line == 1500) text += "** 1, 2, 3., A\n";
    if (line == 1600) {
      text += ",,,\n7, no, 3., A\n";
      expected.insert(expected.end(), {"- - - -", "!1602"});
    }
  }
  const cow_List<Type> types = {Type::Target, Type::Int, Type::Real, Type::Word};
  for (const auto& setting : bulkSettings) {
    const BulkSetting now(setting.threads, setting.pieceSize, setting.instructions);
    EXPECT_EQ(rowsOf(dataOf({text}), types), expected);
  }
}

// Whatever the pieces and threads, rows are those of one piece; and more names than fit one text.
TEST(BulkColumns, pieces_change_nothing) {
  RandomLines random(7);
  std::string text;
  for (int line = 0; line < 3000; ++line) {
    text += random.OneIn(3) ? "SET-" + std::to_string(random.Below(900)) : random.Digits(6);
    text += "," + random.Blanks() + random.Digits(1) + "," + random.Blanks();
    text += random.OneIn(9) ? "\n" : random.Digits(3) + "." + random.Digits(4) + "\n";
  }
  const cow_List<Type> types = {Type::Target, Type::Int, Type::Real};
  const BulkSetting once(1, 0);
  const cow_List<cow_String> expected = rowsOf(dataOf({text}), types);
  ASSERT_EQ(expected.size(), 3000u);
  for (const auto& setting : bulkSettings) {
    const BulkSetting now(setting.threads, setting.pieceSize, setting.instructions);
    EXPECT_EQ(rowsOf(dataOf({text}), types), expected);
  }
}
