#include "parser/inp_Structure.h"
#include "tests/base/TemporaryFolder.h"
#include "tests/parser/Parsed.h"
#include <algorithm>
#include <chrono>
#include <gtest/gtest.h>

namespace {

cow_String repeated(const cow_String& piece, std::size_t count) {
  cow_String out;
  out.reserve(piece.size() * count);
  for (std::size_t i = 0; i < count; ++i) out += piece;
  return out;
}

} // namespace

TEST(Hostile, HugeKeywordLines) {
  for (const char* piece : {"a", "a,", ",", "\"", "=", "a=b,", " ", "\"a\","}) {
    const std::size_t length = cow_String(piece).size();
    const cow_String line = "*NSET, NSET=A" + repeated(piece, 10'000'000 / length);
    const Parsed parsed(line + "\n1, 2\n*NODE\n1\n");
    ASSERT_EQ(parsed.errors.size(), 1u) << piece;
    EXPECT_NE(parsed.errors[0].text.find("a keyword line of 100000"), cow_String::npos);
    EXPECT_LT(parsed.errors[0].place.sourceLine.size(), 1000u);
    EXPECT_LT(parsed.keywords.at(0).Text().size(), 100'000u);
    ASSERT_EQ(parsed.keywords.size(), 2u) << piece;
    EXPECT_EQ(parsed.keywords[0].Name(), "NSET");
    EXPECT_EQ(parsed.keywords[0].Data().Rows(), 1);
    EXPECT_EQ(shown(parsed.keywords[1]), "NODE");
  }
}

TEST(Hostile, EndlessContinuation) {
  const Parsed parsed("*NSET,\n" + repeated("GENERATE,\n", 100'000) + "*NODE\n1\n");
  EXPECT_EQ(parsed.errors.size(), 1u);
  EXPECT_EQ(parsed.keywords.back().Name(), "NODE");
  cow_String many = "*FOO";
  for (int i = 0; i < 2000; ++i) many += ", p" + std::to_string(i);
  const Parsed parameters(many);
  EXPECT_EQ(parameters.errors.size(), 1u);
  EXPECT_EQ(parameters.keywords.at(0).Parameters().size(), 1000u);
}

TEST(Hostile, ManyFieldsOnALine) {
  constexpr int count = 100'000;
  const Parsed parsed("*NSET\n" + repeated("12, ", count - 1) + "12\n");
  const inp_DataArray& data = parsed.keywords.at(0).Data();
  ASSERT_EQ(data.Cols(0), count);
  const auto start = std::chrono::steady_clock::now();
  long long sum = 0;
  for (int col = 0; col < data.Cols(0); ++col) sum += data.AsInt(0, col);
  for (int col = count; col-- > 0;) sum += data.PlaceOf(0, col).column > col;
  EXPECT_EQ(sum, 13LL * count);
  // Linear is a fraction of a second; were each field to cost its distance, it would be a minute.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

// A data line beyond the limit is told and left out; what stands around it keeps its lines.
TEST(Hostile, HugeDataLines) {
  constexpr std::size_t limit = 8 * 1024 * 1024;
  const cow_String before = "*NSET, NSET=A\n1\n** c\n", behind = "\n2\n** d\n3\n*NODE\n1\n";
  const struct {
    cow_String line;
    const char* told;
  } cases[] = {
      {repeated("1,", limit / 2), ""},
      {repeated("1,", limit / 2) + '2', "4:1 a data line of 8388609 bytes"},
      {cow_String(5 * limit / 2, '"'), "4:1 a data line of 20971520 bytes"},
      {cow_String(3 * limit, ' '), "4:1 a data line of 25165824 bytes"},
      {cow_String(2 * limit, ' ') + "**" + cow_String(limit, ' '), nullptr},
      {"**" + repeated("*,", limit), nullptr},
      {cow_String(2 * limit, ' ') + "1*" + cow_String(limit, ' '), "4:1 a data line of 25165826"},
  };
  for (const auto& [line, told] : cases) {
    const Parsed parsed(before + line + behind);
    SCOPED_TRACE(line.size());
    ASSERT_EQ(parsed.keywords.size(), 2u);
    const bool isRead = told && !*told;
    EXPECT_EQ(parsed.errors.size(), told && *told ? 1u : 0u);
    if (!parsed.errors.empty()) {
      EXPECT_EQ(shown(parsed.errors).find(told), 0u) << shown(parsed.errors);
      EXPECT_NE(parsed.errors[0].text.find("8388608"), cow_String::npos);
    }
    const inp_DataArray& data = parsed.keywords[0].Data();
    ASSERT_EQ(data.Rows(), isRead ? 4 : 3);
    EXPECT_EQ(data.PlaceOfRow(data.Rows() - 1).line, 7);
    EXPECT_EQ(data.AsInt(data.Rows() - 1, 0), 3);
    EXPECT_EQ(data.AsInt(0, 0), 1);
  }
  const Parsed open(before + "1\n" + cow_String(2 * limit, '7'));
  EXPECT_EQ(shown(open.errors).find("5:1 a data line of 16777216 bytes"), 0u);
  EXPECT_EQ(open.keywords.at(0).Data().Rows(), 2);
  const Parsed alone(cow_String(2 * limit, '7'));
  EXPECT_EQ(shown(alone.errors).find("1:1 a data line of 16777216 bytes"), 0u);
  const Parsed two(before + cow_String(2 * limit, '7') + "\n" + cow_String(2 * limit, '8') +
                   behind);
  EXPECT_EQ(two.errors.size(), 2u);
  EXPECT_EQ(two.keywords.at(0).Data().Rows(), 3);
  EXPECT_EQ(two.keywords.at(0).Data().PlaceOfRow(1).line, 6);
}

// Blank lines by the megabyte are told and left out, to the last line before what they surround.
TEST(Hostile, EndlessBlankLines) {
  constexpr std::size_t many = 20 * 1024 * 1024;
  for (const cow_String& blank :
       {cow_String("\n"), cow_String(" \r\n"), cow_String(99, ' ') + '\n'}) {
    const std::size_t count = many / blank.size();
    const cow_String blanks = repeated(blank, count);
    const Parsed parsed("*NSET, NSET=A\n1\n" + blanks + "\t2\n" + blanks + "  ** c\n  *NODE\n1\n");
    EXPECT_TRUE(parsed.errors.empty());
    ASSERT_EQ(parsed.warnings.size(), 2u);
    EXPECT_NE(parsed.warnings[0].text.find(" blank lines one after another"), cow_String::npos);
    ASSERT_EQ(parsed.keywords.size(), 2u);
    EXPECT_EQ(parsed.keywords[1].Line(), static_cast<long long>(2 * count + 5));
    const inp_DataArray& data = parsed.keywords[0].Data();
    EXPECT_LT(data.Rows(), static_cast<long long>(count)); // what is left lies around the borders
    long long sum = 0, line = 0;
    for (long long row = 0; row < data.Rows(); ++row) {
      if (data.Cols(row) == 0) continue;
      sum += data.AsInt(row, 0);
      line = data.PlaceOfRow(row).line;
    }
    EXPECT_EQ(sum, 3);
    EXPECT_EQ(line, static_cast<long long>(count + 3));
  }
}

TEST(Hostile, EndlessFaults) {
  const Parsed parsed(repeated("*NODE, =2\n*,\n", 60'000));
  ASSERT_EQ(parsed.errors.size(), 100'001u);
  EXPECT_EQ(parsed.errors.back().text, "and 20000 more like these, which are only counted");
}

TEST(Hostile, FilesThatAreNoDecks) {
  const TemporaryFolder folder;
  EXPECT_EQ(Parsed(utl_pathText(folder.Path()), true).files.size(), 1u);
  EXPECT_EQ(Parsed(utl_pathText(folder / "none"), true).files.size(), 1u);
  const struct {
    cow_String text;
    const char* message;
  } cases[] = {
      {"", "0:0 the deck holds no keyword\n"},
      {"** only\n\n", "0:0 the deck holds no keyword\n"},
      {"\xEF\xBB\xBF", "0:0 the deck holds no keyword\n"},
      {cow_String("\0", 1), "1:1 this is not a deck: binary data at line 1\n"},
      {"*NODE\n1, " + cow_String("\0", 1), "2:4 this is not a deck: binary data at line 2\n"},
      {repeated("*NODE\n1, 2\n", 1000) + cow_String("\0*", 2) + repeated("1\n", 99),
       "2001:1 this is not a deck: binary data at line 2001\n"},
      {"\xFE\xFF*",
       "0:0 the file is UTF-16 text; decks are read as UTF-8 or plain text: save it so\n"},
      {"1, 2\n3\n*NODE",
       "1:1 a data line before the first keyword; it and those behind it up to the "
       "next keyword are not read\n"},
  };
  for (const auto& [text, message] : cases) {
    const Parsed parsed(text);
    EXPECT_EQ(shown(parsed.files) + shown(parsed.errors), message);
  }
}

TEST(Hostile, TheEndMarkOfOldSystemsIsNoLine) {
  const Parsed parsed("*NODE\r\n1, 2.\r\n\x1a");
  EXPECT_EQ(shown(parsed.files) + shown(parsed.errors), "");
  EXPECT_EQ(parsed.keywords.at(0).Data().Rows(), 1);
  EXPECT_EQ(Parsed("*NODE\n\x1a 1\n").keywords.at(0).Data().Rows(), 1); // elsewhere it is a letter
}

TEST(Hostile, MessagesAreFitToShow) {
  const Parsed parsed("*NODE\xFF\x1B[31m\n");
  EXPECT_EQ(parsed.warnings.at(0).text, "unknown keyword *NODE\\xff[31M; kept as it is");
  EXPECT_EQ(parsed.warnings.at(0).place.sourceLine, "*NODE\xFF\x1B[31m");
}

// The fast pass against the plain definition, with marks on every border of blocks and pieces.
TEST(Structure, AgreesWithItsDefinition) {
  const cow_String samples[] = {"*a\n", "**b\n",      "1, 2*3\n", " \t*c\n",
                                "\n",   "\xC3\xA4\n", "  ** \r\n"};
  std::uint32_t random = 12345;
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{63}, std::size_t{64},
                                 std::size_t{65}, std::size_t{5000}, std::size_t{17} << 20}) {
    cow_String text;
    while (text.size() < size) {
      random = random * 1664525 + 1013904223;
      text += samples[(random >> 24) % 7];
      if (size > 5000 || (random >> 16) % 4 == 0) text += cow_String((random >> 8) % 300, '7');
    }
    if (!text.empty()) text.resize(size);
    const inp_DeckTextPtr deck = inp_DeckText::FromString(text, "deck");
    const inp_Structure found = inp_findStructure(*deck);

    long long line = 0, comments = 0;
    std::size_t mark = 0;
    bool ascii = true;
    const auto checkAscii = [&] {
      EXPECT_EQ(mark == 0 ? found.ascii : found.marks.at(mark - 1).ascii, ascii);
      ascii = true;
    };
    for (std::size_t at = 0; at < text.size(); ++line) {
      const std::size_t end = std::min(text.find('\n', at), text.size());
      const std::size_t first = std::min(text.find_first_not_of(" \t\r", at), end);
      const bool star = first < end && text[first] == '*';
      if (star && text.compare(first, 2, "**") == 0)
        ++comments;
      else if (star) {
        checkAscii();
        ASSERT_LT(mark, found.marks.size());
        EXPECT_EQ(found.marks[mark].at - deck->Begin(), static_cast<std::ptrdiff_t>(first));
        EXPECT_EQ(found.marks[mark].line, line);
        EXPECT_EQ(found.marks[mark].commentsBefore, comments);
        ++mark;
      }
      for (std::size_t i = first; i < end; ++i) ascii = ascii && !(text[i] & 0x80);
      at = end + 1;
    }
    checkAscii();
    EXPECT_EQ(mark, found.marks.size());
    EXPECT_EQ(found.lines, line);
    EXPECT_EQ(found.comments, comments);
  }
}
