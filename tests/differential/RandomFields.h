#pragma once

#include "tests/random/Random.h"
#include <bit>
#include <cstdio>
#include <limits>
#include <string>

// Fields of every spelling, the same ones for the same seed.
class RandomFields {
public:
  explicit RandomFields(std::uint64_t seed) : m_random(seed) {}

  Random& Chance() { return m_random; }

  std::string Real() {
    if (m_random.OneIn(50)) return Odd();
    switch (m_random.Below(7)) {
    case 0:
      return Digits(m_random.OneIn(9) ? 30 : 9);
    case 1:
      return Respelled(Sign() + Digits(4) + "." + (m_random.OneIn(4) ? "" : Digits(9)));
    case 2:
      return Respelled(Printed("%.*e", m_random.Below(25), AnyBits()));
    case 3: // below the normal numbers
      return Respelled(Printed("%.*e", m_random.Below(20),
                               std::bit_cast<double>(Bits() >> m_random.From(12, 63))));
    case 4:
      return Respelled(Halfway());
    case 5: // many digits, then a power that takes them back
      return Respelled(Sign() + Digits(m_random.OneIn(6) ? 700 : 25) + "." + Digits(25) + "e" +
                       Sign() + std::to_string(m_random.Below(340)));
    default:
      return Respelled(Sign() + Printed("%.*f", m_random.Below(18), m_random.Real(0, 1e4)));
    }
  }

  std::string Label() {
    static const char* const edges[] = {"999999999",
                                        "1000000000",
                                        "-999999999",
                                        "2147483647",
                                        "2147483648",
                                        "-2147483648",
                                        "-2147483649",
                                        "4294967297",
                                        "9223372036854775807",
                                        "9223372036854775808",
                                        "00000000000000000000012",
                                        "+0",
                                        "-0",
                                        "1.",
                                        "1e3"};
    if (m_random.OneIn(60)) return edges[m_random.Below(std::size(edges))];
    if (m_random.OneIn(200)) return Odd();
    return (m_random.OneIn(12) ? Sign() : "") + Digits(m_random.OneIn(9) ? 9 : 7);
  }

  std::string Blanks() {
    static const char* const blanks[] = {"", "", "", "", " ", " ", "  ", "\t", " \t   \t\t  "};
    return blanks[m_random.Below(std::size(blanks))];
  }
  std::string LineEnd() { return m_random.OneIn(4) ? "\r\n" : "\n"; }
  std::string Filler() {
    if (m_random.OneIn(25)) return "  ** 1, 2, \"" + LineEnd();
    return m_random.OneIn(25) ? Blanks() + LineEnd() : "";
  }

  std::uint64_t Bits() {
    return static_cast<std::uint64_t>(m_random.Below(1LL << 32)) << 32 |
           static_cast<std::uint64_t>(m_random.Below(1LL << 32));
  }
  double AnyBits() {
    for (;;) {
      const auto value = std::bit_cast<double>(Bits());
      if (value - value == 0) return value;
    }
  }

private:
  std::string Digits(long long most) {
    std::string digits;
    for (long long n = m_random.From(1, most); n > 0; --n)
      digits += static_cast<char>('0' + m_random.Below(10));
    return digits;
  }
  std::string Sign() { return m_random.OneIn(3) ? "-" : m_random.OneIn(4) ? "+" : ""; }

  template <class Number>
  static std::string Printed(const char* format, long long precision, Number value) {
    std::string text(2000, '\0');
    text.resize(static_cast<std::size_t>(
        std::snprintf(text.data(), text.size(), format, static_cast<int>(precision), value)));
    return text;
  }

  // Just between two doubles where the machine can say so, or a digit beside it.
  std::string Halfway() {
    const double value = AnyBits();
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const auto next = std::bit_cast<double>(bits + 1);
    if (next - next != 0) return Odd();
    const long double middle = (static_cast<long double>(value) + next) / 2;
    std::string text = Printed("%.*Le", 1100, middle);
    const std::size_t letter = text.find('e');
    const std::size_t last = text.find_last_not_of('0', letter - 1);
    if (last != std::string::npos && last + 1 < letter) text.erase(last + 1, letter - last - 1);
    if (m_random.OneIn(2)) return text;
    return text.insert(text.find('e'), m_random.OneIn(2) ? "1" : "0000000000000000000000001");
  }

  // Another letter and other zeros, the same number.
  std::string Respelled(std::string text) {
    static const char letters[] = "eEdD";
    if (const std::size_t at = text.find('e'); at != std::string::npos) {
      text[at] = letters[m_random.Below(4)];
      const std::size_t digits = text.find_first_of("0123456789", at);
      if (m_random.OneIn(8)) text.insert(digits, "000");
      if (m_random.OneIn(3) && text[at + 1] == '+') text.erase(at + 1, 1);
    }
    const bool isSigned = text[0] == '-' || text[0] == '+';
    if (m_random.OneIn(12)) text.insert(isSigned ? 1 : 0, m_random.OneIn(9) ? 40 : 2, '0');
    if (!isSigned && m_random.OneIn(12)) text.insert(0, "+");
    return text;
  }

  std::string Odd() {
    static const char* const odd[] = {"",
                                      "",
                                      "",
                                      "A",
                                      "\"a,b\"",
                                      "5\" pipe",
                                      "1 2",
                                      "-",
                                      "+",
                                      ".",
                                      "-.",
                                      "e5",
                                      ".e5",
                                      "1e",
                                      "1e+",
                                      "1d-",
                                      "0x1p3",
                                      "+-1",
                                      "1..2",
                                      "inf",
                                      "nan",
                                      "-inf",
                                      "1e400",
                                      "-1d400",
                                      "1e-400",
                                      "-1e-400",
                                      "1e99999999999999999999",
                                      "1e-99999999999999999999",
                                      "0e99999",
                                      "0.0D-99999",
                                      "1+5",
                                      "1.5f",
                                      "5\x80",
                                      "-0",
                                      "-0.",
                                      "-.0e5",
                                      "1e5.",
                                      "1E5e5",
                                      "5*",
                                      "9007199254740993",
                                      "9007199254740993.",
                                      "2.2250738585072011e-308",
                                      "1.7976931348623158e308",
                                      "1.7976931348623159e308",
                                      "4.9406564584124654e-324",
                                      "2.4703282292062327e-324",
                                      "2.4703282292062328e-324",
                                      "1_0",
                                      "1'0"};
    return odd[m_random.Below(std::size(odd))];
  }

  Random m_random;
};
