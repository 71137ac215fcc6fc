#include "inpS/materials/inpS_TableCheck.h"
#include "base/utl_Number.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

using Column = inpS_BehaviorColumns::Column;

cow_String text(double value) {
  char buffer[utl_doubleTextRoom];
  cow_String words(buffer, utl_printDouble(buffer, value));
  if (words.ends_with('.')) words.pop_back(); // "0.", as decks have it, reads badly in a sentence
  return words;
}

class Check {
public:
  Check(const inp_Keyword& keyword, const inpS_KeywordDataTable& table,
        const cow_List<Column>& columns, inp_Visitor& messages)
      : m_keyword(keyword), m_table(table), m_columns(columns), m_messages(messages),
        m_linesPerRow(std::max(1, (table.NumCols() + 7) / 8)) {}

  void Run() {
    CheckLengths();
    for (std::size_t n = 0; n < m_columns.size(); ++n) {
      const Column& column = m_columns[n];
      if (column.low != -kInfinity || column.high != kInfinity) CheckRange(column, Number(n));
      if (column.order != Column::Order::None) CheckOrder(column, Number(n));
      if (column.fromZero) CheckFirst(column, Number(n));
    }
    const auto isPlain = [](const Column& column) {
      return column.order == Column::Order::None && column.role != Column::Role::Independent;
    };
    if (m_table.HasTemperatureColumn() && std::ranges::all_of(m_columns, isPlain))
      CheckTemperatures();
  }

private:
  static constexpr double kInfinity = std::numeric_limits<double>::infinity();
  static constexpr int kMostTold = 3; // of one kind of fault in one column

  static int Number(std::size_t column) { return static_cast<int>(column); }

  void Tell(int row, int column, const cow_String& fault) {
    const long long line = static_cast<long long>(row) * m_linesPerRow + column / 8;
    const bool known = line < m_keyword.Data().Rows() && column % 8 < m_keyword.Data().Cols(line);
    m_messages.AddError(known ? inp_Utils::MessageAtField(m_keyword, line, column % 8, fault)
                              : inp_Utils::MessageInKeyword(m_keyword, fault));
  }

  void CheckLengths() {
    int told = 0;
    for (int row = 0; row < m_table.NumRows() && told < kMostTold; ++row) {
      std::size_t given = m_columns.size();
      while (given > 0 && !m_table.IsColumnSpecified(row, Number(given - 1))) --given;
      for (std::size_t n = 0; n < m_columns.size(); ++n) {
        if (m_columns[n].optional || m_table.IsColumnSpecified(row, Number(n))) continue;
        if (m_columns[n].mayBeBlank && n < given) continue;
        const long long line = static_cast<long long>(row) * m_linesPerRow;
        m_messages.AddError(
            inp_Utils::MessageAtRow(m_keyword, std::min(line, m_keyword.Data().Rows() - 1),
                                    "Row " + std::to_string(row + 1) + " has no value for " +
                                        m_columns[n].name + "; it is read as 0."));
        ++told;
        break;
      }
    }
  }

  void CheckRange(const Column& column, int number) {
    int told = 0;
    for (int row = 0; row < m_table.NumRows() && told < kMostTold; ++row) {
      if (!m_table.IsColumnSpecified(row, number)) continue;
      const double value = m_table.Value(row, number);
      const bool low = column.lowOpen ? value > column.low : value >= column.low;
      const bool high = column.highOpen ? value < column.high : value <= column.high;
      if (low && high) continue;
      Tell(row, number,
           column.name + " is " + text(value) + " but must be " + Bounds(column) +
               "; it is kept as given.");
      ++told;
    }
  }

  static cow_String Bounds(const Column& column) {
    cow_String words;
    if (column.low != -kInfinity)
      words = (column.lowOpen ? "greater than " : "at least ") + text(column.low);
    if (column.high == kInfinity) return words;
    if (!words.empty()) words += " and ";
    return words + (column.highOpen ? "less than " : "at most ") + text(column.high);
  }

  // Whether a row belongs to the same curve as the one before: the same temperature and field
  // variables, and the same of what stands behind the column.
  bool Continues(int row, int behind) const {
    for (int n = behind; n < m_table.NumCols(); ++n)
      if (m_table.Value(row, n) != m_table.Value(row - 1, n)) return false;
    return true;
  }

  void CheckOrder(const Column& column, int number) {
    const bool rising = column.order == Column::Order::Rising;
    int told = 0;
    for (int row = 1; row < m_table.NumRows() && told < kMostTold; ++row) {
      const double before = m_table.Value(row - 1, number);
      const double value = m_table.Value(row, number);
      const bool good = rising ? value > before : value >= before;
      if (good || !Continues(row, static_cast<int>(m_columns.size()))) continue;
      Tell(row, number,
           column.name + " is " + text(value) + " behind " + text(before) +
               (rising ? ", but must rise from row to row." : ", but must not fall."));
      ++told;
    }
  }

  // Where a row is one state: of the same field variables, the colder one stands first.
  void CheckTemperatures() {
    const int number = static_cast<int>(m_columns.size());
    const auto given = [&](int row) { return m_table.IsColumnSpecified(row, number); };
    int told = 0;
    for (int row = 1; row < m_table.NumRows() && told < kMostTold; ++row) {
      if (!given(row) || !given(row - 1) || !Continues(row, number + 1)) continue;
      const double before = m_table.Value(row - 1, number);
      const double value = m_table.Value(row, number);
      if (value >= before) continue;
      Tell(row, number,
           "The temperature is " + text(value) + " behind " + text(before) +
               ", but must not fall.");
      ++told;
    }
  }

  void CheckFirst(const Column& column, int number) {
    int told = 0;
    for (int row = 0; row < m_table.NumRows() && told < kMostTold; ++row) {
      if (row > 0 && Continues(row, static_cast<int>(m_columns.size()))) continue;
      const double value = m_table.Value(row, number);
      if (value == 0.0) continue;
      Tell(row, number, "The first " + column.name + " is " + text(value) + " but must be 0.");
      ++told;
    }
  }

  const inp_Keyword& m_keyword;
  const inpS_KeywordDataTable& m_table;
  const cow_List<Column>& m_columns;
  inp_Visitor& m_messages;
  const int m_linesPerRow;
};

} // namespace

void inpS_checkTable(const inp_Keyword& keyword, const inpS_KeywordDataTable& table,
                     const cow_List<inpS_BehaviorColumns::Column>& columns, inp_Visitor& messages) {
  Check(keyword, table, columns, messages).Run();
}
