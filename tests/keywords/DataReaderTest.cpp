#include "base/utl_Assert.h"
#include "inpS/keywords/inpS_KeywordDataReader.h"
#include "inpS/keywords/inpS_KeywordReader.h"
#include "tests/keywords/DeckKeyword.h"
#include <cmath>
#include <gtest/gtest.h>

using Words = cow_List<cow_String>;
using Doubles = cow_List<double>;

TEST(DataReader, Items) {
  const inp_Keyword keyword = deckKeyword("*AMPLITUDE, NAME=A\n7, 2.5, top, , -1.5D2, 1e400,\n");
  const inpS_KeywordDataReader line(keyword);
  struct Case {
    int item;
    bool number, isInt, isString;
    int asInt, intOr9;
    double asDouble, doubleOr9;
    const char* text;
  };
  const Case cases[] = {
      {-1, false, false, false, 0, 9, 0, 9, ""},
      {0, true, true, false, 7, 7, 7, 7, ""},
      {1, true, false, false, 0, 2, 2.5, 2.5, ""},
      {2, false, false, true, 0, 9, 0, 9, "TOP"},
      {3, false, false, false, 0, 9, 0, 9, ""},
      {4, true, true, false, -150, -150, -150, -150, ""}, // without a fraction it is an integer
      {5, false, false, true, 0, 9, 0, 9, "1E400"},
      {6, false, false, false, 0, 9, 0, 9, ""}, // behind the last comma
      {7, false, false, false, 0, 9, 0, 9, ""},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(line.IsItemNumber(c.item), c.number) << c.item;
    EXPECT_EQ(line.HasItemAsInt(c.item), c.isInt) << c.item;
    EXPECT_EQ(line.HasItemAsString(c.item), c.isString) << c.item;
    EXPECT_EQ(line.GetItemAsInt(c.item), c.asInt) << c.item;
    EXPECT_EQ(line.GetItemAsIntWithDefault(c.item, 9), c.intOr9) << c.item;
    EXPECT_EQ(line.GetItemAsDouble(c.item), c.asDouble) << c.item;
    EXPECT_EQ(line.GetItemAsDoubleWithDefault(c.item, 9), c.doubleOr9) << c.item;
    EXPECT_EQ(line.GetItemAsString(c.item), c.text) << c.item;
  }
  EXPECT_TRUE(line.CheckDataLength(7));
  EXPECT_FALSE(line.CheckDataLength(8));
  double x, y, z;
  line.GetItemsAsDoubleWithDefault(1, -1, x, y, z);
  EXPECT_EQ((Doubles{x, y, z}), (Doubles{2.5, -1, -1}));
}

TEST(DataReader, WalksLines) {
  const inp_Keyword keyword = deckKeyword("*NODE\n1\n** no line\n2\n\n4\n");
  inpS_KeywordDataReader line(keyword);
  cow_List<int> seen;
  for (line.First(); !line.IsDone(); line.Next()) seen.push_back(line.GetItemAsInt(0));
  EXPECT_EQ(seen, (cow_List<int>{1, 2, 0, 4}));
  line.Next(); // past the end
  EXPECT_FALSE(line.CheckDataLength(0));
  EXPECT_FALSE(line.IsItemNumber(0));
  line.First();
  EXPECT_EQ(line.GetItemAsInt(0), 1);
  EXPECT_TRUE(inpS_KeywordDataReader(deckKeyword("*NODE\n")).IsDone());
}

TEST(DataReader, Sequences) {
  const cow_String line17 = "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17\n";
  const inp_Keyword numbers = deckKeyword("*AMPLITUDE\n" + line17 + "1.5,,x,4,\n");
  const inpS_KeywordDataReader reader(numbers);
  EXPECT_EQ(reader.ReadDataAsSequenceOfDoubles(),
            (Doubles{1, 2, 3, 4, 5, 6, 7, 8, 1.5, 0, 0, 4, 0}));
  EXPECT_EQ(reader.ReadDataAsSequenceOfInts(),
            (cow_List<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 1, 0, 4}));
  const inp_Keyword words = deckKeyword("*NODE OUTPUT\nu, rf,\nU, \"Mixed Case\", , rf\n");
  const inpS_KeywordDataReader wordReader(words);
  EXPECT_EQ(wordReader.ReadDataAsSequenceOfStrings(),
            (Words{"U", "RF", "U", "Mixed Case", "", "RF"}));
  EXPECT_EQ(wordReader.ReadDataAsSequenceOfUniqueStrings(), (Words{"U", "RF", "Mixed Case", ""}));
}

TEST(DataReader, GeneratedSequences) {
  struct Case {
    const char* lines;
    Doubles values;
  };
  const Case cases[] = {
      {"0,1,.25", {0, .25, .5, .75, 1}},
      {"0,1,.25\n1,2,.5", {0, .25, .5, .75, 1, 1.5, 2}}, // 1 once
      {"0,1,.25\n3,4,1", {0, .25, .5, .75, 1, 3, 4}},
      {"0,.3,.1", {0, .1, .2, 3 * .1}}, // 3 x .1 is a little more than .3
      {"0,1,.3", {0, .3, .6, 3 * .3}},
      {"5", {5}},
      {"5,6", {5}},   // no increment
      {"5,4,1", {5}}, // never below the end
      {"5,1,-1", {5}},
      {"1,5,-1", {1}}, // away from the end
      {"", {0}},
      {"1,2,1\n2,3,1\n3,3,1", {1, 2, 3}},
  };
  for (const Case& c : cases) {
    const inp_Keyword keyword =
        deckKeyword(cow_String("*TIME POINTS, GENERATE\n") + c.lines + "\n");
    EXPECT_EQ(inpS_KeywordDataReader(keyword).GenerateSequenceFrom3NumberTable(), c.values)
        << c.lines;
  }
  EXPECT_EQ(gatheredMessages(), Words{});
}

TEST(DataReader, EndlessSequenceIsReported) {
  const inp_Keyword keyword = deckKeyword("*TIME POINTS, GENERATE\n0,1,1\n0, 1e9, 1e-9\n2,3,1\n");
  EXPECT_EQ(inpS_KeywordDataReader(keyword).GenerateSequenceFrom3NumberTable(),
            (Doubles{0, 1, 0, 2, 3}));
  EXPECT_EQ(gatheredMessages(),
            Words{"Going from %1$s to %2$s in steps of %3$s gives too many values; only the first "
                  "is used.|0|1e+09|1e-09"});
}

namespace {

// Items are lines that begin with a positive number; 9 takes the next line as well.
class PositiveReader : public inpS_KeywordReader {
public:
  using inpS_KeywordReader::inpS_KeywordReader;
  using inpS_KeywordReader::Row;
  bool ended = false;

private:
  bool ReadItem() override {
    const int label = Data().Cols(Row()) > 0 ? Data().AsInt(Row(), 0) : 0;
    if (label == 9) SetRow(Row() + 1);
    return label > 0;
  }
  void End() override { ended = true; }
};

} // namespace

TEST(KeywordReader, ReadsValidItems) {
  PositiveReader reader(deckKeyword("*NODE\n-1\n2\n\n9\n5\n3\n0\n,\n \n\n"));
  EXPECT_FALSE(reader.IsTheLastRow(9));
  reader.SkipTrailingBlankLines();
  EXPECT_TRUE(reader.IsTheLastRow(8)); // "," holds two fields
  cow_List<long long> behind;
  while (reader.ReadValidItem()) behind.push_back(reader.Row());
  EXPECT_EQ(behind, (cow_List<long long>{2, 5, 6}));
  EXPECT_TRUE(reader.ended);
  EXPECT_TRUE(reader.IsTheLastRow());
  inpS_KeywordReader plain(deckKeyword("*NODE\n1\n"));
  EXPECT_FALSE(plain.ReadValidItem());
}
