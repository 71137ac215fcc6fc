#pragma once

#include "base/aio_ostream.h"
#include "base/cow_Value.h"
#include <algorithm>
#include <array>
#include <initializer_list>
#include <ostream>
#include <utility>

// A table of texts: columns as wide as their widest text, those of numbers to the right.
template <std::size_t Columns> class inps_TextTable {
public:
  using Row = std::array<cow_String, Columns>;

  explicit inps_TextTable(Row head, unsigned numbers) : m_numbers(numbers) { Add(std::move(head)); }

  void Add(Row row) {
    for (std::size_t n = 0; n < Columns; ++n) {
      if (row[n].empty()) row[n] = "-";
      m_widths[n] = std::max(m_widths[n], WidthOf(row[n]));
    }
    m_rows.push_back(std::move(row));
  }

  void Print(aio_ostream& out) const {
    for (const Row& row : m_rows) {
      cow_String line;
      for (std::size_t n = 0; n < Columns; ++n) {
        const cow_String blanks(m_widths[n] - WidthOf(row[n]), ' ');
        line += "  " + ((m_numbers >> n & 1) != 0 ? blanks + row[n] : row[n] + blanks);
      }
      line.erase(line.find_last_not_of(' ') + 1);
      out << line << '\n';
    }
  }

private:
  // Columns of a terminal: accents that go with the character before take none, characters of East
  // Asia and pictures two.
  static std::size_t WidthOf(const cow_String& text) {
    std::size_t width = 0;
    for (std::size_t n = 0; n < text.size();) {
      const auto lead = static_cast<unsigned char>(text[n]);
      char32_t code = lead < 0x80   ? lead
                      : lead < 0xE0 ? lead & 0x1F
                      : lead < 0xF0 ? lead & 0xF
                                    : lead & 7;
      for (++n; n < text.size() && (static_cast<unsigned char>(text[n]) & 0xC0) == 0x80; ++n)
        code = code << 6 | (static_cast<unsigned char>(text[n]) & 0x3F);
      width += IsWithin(code, {{0x300, 0x36F}, {0x200B, 0x200D}, {0xFE00, 0xFE0F}}) ? 0
               : IsWide(code)                                                       ? 2
                                                                                    : 1;
    }
    return width;
  }
  static bool IsWide(char32_t code) {
    return IsWithin(code, {{0x1100, 0x115F},
                           {0x2E80, 0xA4CF},
                           {0xAC00, 0xD7A3},
                           {0xF900, 0xFAFF},
                           {0xFE30, 0xFE6F},
                           {0xFF00, 0xFF60},
                           {0xFFE0, 0xFFE6},
                           {0x1F300, 0x1FAFF},
                           {0x20000, 0x3FFFD}});
  }
  static bool IsWithin(char32_t code, std::initializer_list<std::pair<char32_t, char32_t>> ranges) {
    return std::ranges::any_of(
        ranges, [code](const auto& range) { return code >= range.first && code <= range.second; });
  }

  unsigned m_numbers; // a bit for each column
  std::array<std::size_t, Columns> m_widths{};
  cow_List<Row> m_rows;
};
