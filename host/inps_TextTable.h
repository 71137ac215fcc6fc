#pragma once

#include "base/aio_ostream.h"
#include "base/cow_Value.h"
#include <algorithm>
#include <array>
#include <ostream>

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
  static std::size_t WidthOf(const cow_String& text) { // characters
    return static_cast<std::size_t>(std::ranges::count_if(
        text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
  }

  unsigned m_numbers; // a bit for each column
  std::array<std::size_t, Columns> m_widths{};
  cow_List<Row> m_rows;
};
