#include "base/utl_Number.h"

#include <charconv>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

// A copy that ends where its memory ends, so that a sanitizer sees a read past the field.
struct Tight {
  explicit Tight(std::string_view text) : size(text.size()), bytes(new char[text.size()]) {
    text.copy(bytes.get(), text.size());
  }
  const char* begin() const { return bytes.get(); }
  const char* end() const { return bytes.get() + size; }
  std::size_t size;
  std::unique_ptr<char[]> bytes;
};

std::uint64_t bitsOf(double value) {
  return std::bit_cast<std::uint64_t>(value);
}

// Characters of the field that were read, and the value; nothing when no number starts there.
template <class T> using Read = std::optional<std::pair<std::ptrdiff_t, T>>;

Read<double> readDouble(std::string_view text) {
  const Tight field(text);
  double value = 0;
  const char* stop = utl_readDouble(field.begin(), field.end(), value);
  return stop ? Read<double>({stop - field.begin(), value}) : std::nullopt;
}

Read<std::int64_t> readInt(std::string_view text) {
  const Tight field(text);
  std::int64_t value = 0;
  const char* stop = utl_readInt(field.begin(), field.end(), value);
  return stop ? Read<std::int64_t>({stop - field.begin(), value}) : std::nullopt;
}

} // namespace

TEST(NumberRead, IntegersAndWhereTheyEnd) {
  const struct {
    const char* text;
    Read<std::int64_t> expected;
  } cases[] = {
      {"0", {{1, 0}}},
      {" \t42,", {{4, 42}}},
      {"+7", {{2, 7}}},
      {"-12x", {{3, -12}}},
      {"3.5", {{1, 3}}},
      {"000000000000000000000000000009", {{30, 9}}},
      {"999999999999999999", {{18, 999999999999999999}}},
      {"9223372036854775807", {{19, INT64_MAX}}},
      {"-9223372036854775808", {{20, INT64_MIN}}},
      {"9223372036854775808", {}},
      {"-9223372036854775809", {}},
      {"18446744073709551617", {}},
      {"99999999999999999999999", {}},
      {"", {}},
      {"  ", {}},
      {"-", {}},
      {"+-1", {}},
      {"- 1", {}},
      {".5", {}},
      {"x", {}},
  };
  for (const auto& c : cases) EXPECT_EQ(readInt(c.text), c.expected) << c.text;
}

TEST(NumberRead, RealsAndWhereTheyEnd) {
  const double inf = HUGE_VAL;
  const struct {
    const char* text;
    Read<double> expected;
  } cases[] = {
      {"1", {{1, 1.0}}},
      {" \t1.,", {{4, 1.0}}},
      {".5", {{2, 0.5}}},
      {"-.5", {{3, -0.5}}},
      {"+1.25", {{5, 1.25}}},
      {"1E5", {{3, 1e5}}},
      {"1.e5", {{4, 1e5}}},
      {"1D+5", {{4, 1e5}}},
      {"1d5", {{3, 1e5}}},
      {"-2.5D-1", {{7, -0.25}}},
      {"1.1d-40", {{7, 1.1e-40}}},
      {"0.1", {{3, 0.1}}},
      {"1e23", {{4, 1e23}}},
      {"9007199254740993", {{16, 9007199254740992.0}}},    // 2^53 + 1: a tie, to even
      {"9007199254740993e1", {{18, 90071992547409936.0}}}, // the next multiples of 16: 920, 936
      {"9007199254740993.0000000000000000000000000000001", {{48, 9007199254740994.0}}},
      {"0.12345678,0.5", {{10, 0.12345678}}},
      {"0.5/:99999999", {{3, 0.5}}}, // the neighbours of the digits
      {"0.125\xb0\xb1 000", {{5, 0.125}}},
      {"0.30000000000000004", {{19, 0.30000000000000004}}},
      {"4.9e-324", {{8, 4.9e-324}}},
      {"2.4703282292062327e-324", {{23, 0.0}}}, // below half the least subnormal
      {"2.4703282292062328e-324", {{23, 4.9e-324}}},
      {"2.2250738585072011D-308", {{23, 0x0.fffffffffffffp-1022}}},
      {"1.7976931348623157e308", {{22, 0x1.fffffffffffffp1023}}},
      {"1.7976931348623159e308", {{22, inf}}},
      {"-1e999", {{6, -inf}}},
      {"1d999999999999999999999", {{23, inf}}},
      {"1e-99999999999999999999", {{23, 0.0}}},
      {"0e999", {{5, 0.0}}},
      {"-0", {{2, -0.0}}},
      {"1+5", {{1, 1.0}}}, // an exponent needs its letter
      {"1e", {{1, 1.0}}},
      {"1e+", {{1, 1.0}}},
      {"2.D-,", {{2, 2.0}}},
      {"1 2", {{1, 1.0}}},
      {"1.2.3", {{3, 1.2}}},
      {"0x10", {{1, 0.0}}},
      {"", {}},
      {"   ", {}},
      {".", {}},
      {"-.", {}},
      {"+", {}},
      {"e5", {}},
      {".e5", {}},
      {"--1", {}},
      {"inf", {}},
      {"nan", {}},
      {"-infinity", {}},
  };
  for (const auto& c : cases) {
    const auto got = readDouble(c.text);
    ASSERT_EQ(got.has_value(), c.expected.has_value()) << c.text;
    if (!got) continue;
    EXPECT_EQ(got->first, c.expected->first) << c.text;
    EXPECT_EQ(bitsOf(got->second), bitsOf(c.expected->second)) << c.text;
  }
}

TEST(NumberRead, DigitStringsOfAnyLength) {
  const std::string zeros(2000, '0');
  EXPECT_EQ(readDouble("0." + zeros + "15D2001")->second, 1.5);
  EXPECT_EQ(readDouble("1" + zeros + "e-2000")->second, 1.0);
  EXPECT_EQ(readDouble(zeros + "2.5")->second, 2.5);
  // Half way between 1 and the next double, decided by a digit far behind.
  const std::string half = "1.00000000000000011102230246251565404236316680908203125";
  EXPECT_EQ(readDouble(half)->second, 1.0);
  EXPECT_EQ(readDouble(half + zeros + "1")->second, std::nextafter(1.0, 2.0));
  EXPECT_EQ(readDouble(half + zeros + "1d0")->second, std::nextafter(1.0, 2.0));
}

namespace {

class RandomField {
public:
  std::string Next() {
    std::string text = Pick({"", "", "-", "+", " ", "\t -"});
    const int whole = Below(4) == 0 ? 0 : Below(Below(8) == 0 ? 30 : 9);
    text += Digits(whole);
    if (whole == 0 || Below(3) > 0) {
      text += '.';
      text += Digits(whole == 0 ? 1 + Below(20) : Below(Below(8) == 0 ? 40 : 18));
    }
    if (Below(2) == 0) {
      text += Pick({"e", "E", "d", "D"}) + Pick({"", "+", "-"});
      text += std::to_string(Below(Below(3) == 0 ? 350 : 25));
    }
    return text;
  }

private:
  int Below(int n) { return static_cast<int>(m_random() % static_cast<unsigned>(n)); }
  std::string Pick(std::initializer_list<const char*> of) {
    return of.begin()[Below(static_cast<int>(of.size()))];
  }
  std::string Digits(int n) {
    std::string digits;
    for (int i = 0; i < n; ++i) digits += static_cast<char>('0' + Below(10));
    return digits;
  }
  std::mt19937_64 m_random{20240611};
};

} // namespace

TEST(NumberRead, SameBitsAsTheCLibraryForFieldsOfEverySpelling) {
  RandomField fields;
  for (int i = 0; i < 200000; ++i) {
    const std::string field = fields.Next();
    std::string forC = field;
    for (char& c : forC)
      if (c == 'd' || c == 'D') c = 'e';
    const double expected = std::strtod(forC.c_str(), nullptr);
    for (const std::string& line : {field, field + ", 12345678", field + "\n12345678"}) {
      const auto got = readDouble(line);
      ASSERT_TRUE(got) << line;
      ASSERT_EQ(got->first, static_cast<std::ptrdiff_t>(field.size())) << line;
      ASSERT_EQ(bitsOf(got->second), bitsOf(expected)) << line;
    }
  }
}

TEST(NumberRead, FieldsAreClassified) {
  using Kind = utl_FieldKind;
  const struct {
    const char* field;
    Kind kind;
    std::int64_t integer;
    double real;
    const char* text;
  } cases[] = {
      {"", Kind::None, 0, 0, ""},
      {" \t\r", Kind::None, 0, 0, ""},
      {" 12 ", Kind::Integer, 12, 12, "12"},
      {"-3\r", Kind::Integer, -3, -3, "-3"},
      {"12.", Kind::Double, 0, 12, "12."},
      {"\t1d2 ", Kind::Double, 0, 100, "1d2"},
      {"9223372036854775808", Kind::Double, 0, 9223372036854775808.0, "9223372036854775808"},
      {"1e999", Kind::String, 0, HUGE_VAL, "1e999"},
      {"1 2", Kind::String, 0, 0, "1 2"},
      {"12x", Kind::String, 0, 0, "12x"},
      {"1+5", Kind::String, 0, 0, "1+5"},
      {" PART-1.Set 2 ", Kind::String, 0, 0, "PART-1.Set 2"},
      {"inf", Kind::String, 0, 0, "inf"},
      {"-", Kind::String, 0, 0, "-"},
  };
  for (const auto& c : cases) {
    const utl_Field field = utl_classifyField(c.field);
    EXPECT_EQ(field.kind, c.kind) << c.field;
    EXPECT_EQ(field.integer, c.integer) << c.field;
    EXPECT_EQ(field.real, c.real) << c.field;
    EXPECT_EQ(field.text, c.text) << c.field;
  }
  EXPECT_TRUE(utl_classifyField("-1e999").IsOutOfRange());
  EXPECT_FALSE(utl_classifyField("1e308").IsOutOfRange());
}
