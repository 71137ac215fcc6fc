#include "tests/parser/Parsed.h"
#include <gtest/gtest.h>

namespace {

class Random {
public:
  explicit Random(std::uint32_t seed) : m_state(seed) {}
  std::size_t Below(std::size_t limit) {
    m_state = m_state * 1664525 + 1013904223;
    return (m_state >> 8) % limit;
  }

private:
  std::uint32_t m_state;
};

cow_String randomDeck(Random& random) {
  static constexpr std::string_view pieces[] = {"*NODE",
                                                "*Nset, nset=A",
                                                "*ELEMENT, TYPE=S4",
                                                "*MATERIAL, NAME=\"m 1\"",
                                                "*PLASTIC",
                                                "*STEP",
                                                "*END STEP",
                                                "*PART, NAME=P",
                                                "*END PART",
                                                "*foo, bar",
                                                "**",
                                                "*",
                                                "\n",
                                                "\n",
                                                "\n",
                                                ",",
                                                ",\n",
                                                "=",
                                                "\"",
                                                "1, 2.5, ",
                                                "\r\n",
                                                " ",
                                                "\t",
                                                "\xC3\xA4",
                                                "\xFF",
                                                "1e5",
                                                "generate,\n",
                                                "\n** c\n",
                                                "\v",
                                                ", nset=b"};
  cow_String deck;
  for (std::size_t i = random.Below(40); i-- > 0;) deck += pieces[random.Below(std::size(pieces))];
  return deck;
}

cow_String textOf(const inp_KeywordList& keywords) {
  cow_String out;
  for (const inp_Keyword& keyword : keywords) out += keyword.Text();
  return out;
}

std::size_t walk(const inp_DataArray& data) {
  std::size_t chars = 0;
  for (long long row = data.Rows(); row-- > 0;)
    for (int col = 0; col < data.Cols(row); ++col) {
      chars += data.AsString(row, col).size();
      EXPECT_EQ(data.IsNone(row, col), data.Type(row, col) == inp_FieldType::None);
      EXPECT_GT(data.PlaceOf(row, col).line, 1);
    }
  return chars;
}

} // namespace

// Whatever the deck, its keywords' text read again gives the same keywords, data and text.
TEST(RandomDeck, TextIsStable) {
  Random random(2026);
  for (int i = 0; i < 2000; ++i) {
    const cow_String deck = randomDeck(random);
    const Parsed first(deck);
    const Parsed second(textOf(first.keywords));
    ASSERT_EQ(shown(second.keywords), shown(first.keywords)) << deck;
    ASSERT_EQ(textOf(second.keywords), textOf(first.keywords)) << deck;
    for (std::size_t k = 0; k < first.keywords.size(); ++k) {
      const inp_DataArray& data = first.keywords[k].Data();
      ASSERT_EQ(second.keywords[k].Data().Rows(), data.Rows()) << deck;
      ASSERT_EQ(walk(second.keywords[k].Data()), walk(data)) << deck;
    }
  }
}
