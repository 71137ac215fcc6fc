#include "base/utl_Number.h"

#include <charconv>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

namespace {

std::string printed(double value) {
  char room[utl_doubleTextRoom];
  return {room, utl_printDouble(room, value)};
}

std::string printedInt(std::int64_t value) {
  char room[utl_intTextRoom];
  return {room, utl_printInt(room, value)};
}

// The significant digits of a number's text: no sign, point, exponent nor outer zeros.
std::string digitsOf(std::string_view text) {
  std::string digits;
  for (char c : text.substr(0, text.find('e')))
    if (c >= '0' && c <= '9' && !(digits.empty() && c == '0')) digits += c;
  digits.erase(digits.find_last_not_of('0') + 1);
  return digits;
}

::testing::AssertionResult isShortestRealText(double value) {
  const std::string text = printed(value);
  char room[64];
  const std::string reference(room, std::to_chars(room, room + sizeof room, value).ptr);
  double back = 0;
  if (utl_readDouble(text.data(), text.data() + text.size(), back) != text.data() + text.size() ||
      std::bit_cast<std::uint64_t>(back) != std::bit_cast<std::uint64_t>(value))
    return ::testing::AssertionFailure() << text << " does not read back to " << reference;
  if (digitsOf(text) != digitsOf(reference) || text.size() > reference.size() + 1)
    return ::testing::AssertionFailure() << text << " where the shortest is " << reference;
  if (text.find_first_of(".e") == std::string::npos)
    return ::testing::AssertionFailure() << text << " reads as an integer";
  return ::testing::AssertionSuccess();
}

} // namespace

TEST(NumberPrint, RealsAsDecksHaveThem) {
  const struct {
    double value;
    const char* text;
  } cases[] = {
      {0.0, "0."},
      {-0.0, "-0."},
      {1.0, "1."},
      {-20.0, "-20."},
      {0.25, "0.25"},
      {-0.001, "-0.001"},
      {0.0001, "1e-4"},
      {0.00012, "0.00012"},
      {0.1 + 0.2, "0.30000000000000004"},
      {10000.0, "10000."},
      {100000.0, "1e5"},
      {210000.0, "210000."},
      {1200000.0, "1200000."},
      {-2.1e11, "-2.1e11"},
      {7.85e-9, "7.85e-9"},
      {9999999.99999999, "9999999.99999999"},
      {12345678.5, "12345678.5"},
      {-0.123456789012345, "-0.123456789012345"},
      {12.0000000001, "12.0000000001"},
      {0.0012345678901234, "0.0012345678901234"},
      {9007199254740993.0, "9007199254740992."},
      {1.0 / 3.0, "0.3333333333333333"},
      {1e100, "1e100"},
      {4.9e-324, "5e-324"},
      {-std::numeric_limits<double>::max(), "-1.7976931348623157e308"},
      {HUGE_VAL, "inf"},
      {-HUGE_VAL, "-inf"},
  };
  for (const auto& c : cases) EXPECT_EQ(printed(c.value), c.text);
}

TEST(NumberPrint, ShortestAndBackForDoublesOfManyKinds) {
  std::mt19937_64 random(7);
  const auto below = [&](std::int64_t n) {
    return static_cast<double>(static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(n)));
  };
  for (int i = 0; i < 200000; ++i) {
    const double decimals = utl_powersOf10[random() % 18];
    const double sign = (random() & 1) != 0 ? -1 : 1;
    const double value = sign * below(std::int64_t{1} << (random() % 54)) / decimals;
    const double candidates[] = {
        value,                           // short decimals of every length
        std::nextafter(value, 0.0),      // and their neighbours
        std::nextafter(value, HUGE_VAL), //
        below(1000000000) * 0.001,       // coordinates that carry a rounding error
        std::ldexp(below(1 << 20), -static_cast<int>(random() % 60)), // binary fractions
        below(100) * utl_powersOf10[random() % 20],                   // round numbers
        std::bit_cast<double>(random()),                              // any
    };
    for (double candidate : candidates)
      ASSERT_TRUE(!std::isfinite(candidate) || isShortestRealText(candidate));
  }
}

TEST(NumberPrint, IntegersOfEveryLength) {
  std::mt19937_64 random(11);
  std::int64_t edge = 1;
  for (int digits = 1; digits <= 18; ++digits, edge *= 10)
    for (std::int64_t value : {edge - 1, edge, edge + 1, 1 - edge, -edge})
      ASSERT_EQ(printedInt(value), std::to_string(value));
  for (std::int64_t value : {INT64_MAX, INT64_MIN})
    ASSERT_EQ(printedInt(value), std::to_string(value));
  for (int i = 0; i < 200000; ++i) {
    const auto value = static_cast<std::int64_t>(random()) >> (random() % 64);
    ASSERT_EQ(printedInt(value), std::to_string(value));
  }
  char room[utl_intTextRoom];
  EXPECT_EQ(std::string(room, utl_printUnsigned(room, UINT64_MAX)), "18446744073709551615");
}

// The step meets every upper and every lower half.
TEST(NumberPrint, EightDigitsAtOnce) {
  char expected[9];
  for (std::uint32_t n = 0; n < 100000000; n += 37) {
    std::snprintf(expected, sizeof expected, "%08u", n);
    const std::uint64_t text = utl_eightDigits(n) | utl_eightZeros;
    ASSERT_EQ(std::memcmp(&text, expected, 8), 0) << n;
  }
}
