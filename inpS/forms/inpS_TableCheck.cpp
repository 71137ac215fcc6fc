#include "inpS/forms/inpS_TableCheck.h"
#include "base/utl_Assert.h"
#include "base/utl_Number.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

using Column = inpS_TableColumns::Column;

cow_String text(double value) {
  char buffer[utl_doubleTextRoom];
  cow_String words(buffer, utl_printDouble(buffer, value));
  if (words.ends_with('.')) words.pop_back(); // "0.", as decks have it, reads badly in a sentence
  return words;
}

using Order = Column::Order;

bool isOrdered(const Column& column) {
  return column.order == Order::NotFalling || column.order == Order::Rising;
}

// A row is a point: its state (temperature, then field variables, behind the values) and the
// columns that it is given for. Tables are interpolated between points, so points rise: the last
// field variable varies slowest, before it the others, the temperature, and fastest the columns.
class Check {
public:
  Check(const inp_Keyword& keyword, const inpS_KeywordDataTable& table,
        const cow_List<Column>& columns, inp_Visitor& messages)
      : m_keyword(keyword), m_table(table), m_columns(columns), m_messages(messages),
        m_state(Number(columns.size())), m_values(table.GetDataAsBuffer().data()),
        m_width(table.NumCols()) {}

  void Run() {
    CheckLengths();
    for (std::size_t n = 0; n < m_columns.size(); ++n) {
      const Column& column = m_columns[n];
      if (column.IsBounded()) CheckRange(column, Number(n));
      if (!column.lowColumn.empty()) CheckRelation(column, Number(n), column.lowColumn, true);
      if (!column.highColumn.empty()) CheckRelation(column, Number(n), column.highColumn, false);
      if (isOrdered(column)) CheckOrder(column, Number(n));
      if (column.fromZero) CheckFirst(column, Number(n));
    }
    CheckStates();
    CheckPoints();
  }

private:
  static constexpr double kInfinity = std::numeric_limits<double>::infinity();
  static constexpr int kMostTold = 3; // of one kind of fault in one column

  double Value(int row, int column) const { return m_values[m_width * row + column]; }
  static int Number(std::size_t column) { return static_cast<int>(column); }

  wip_Message At(int row, int column, const cow_String& fault) const {
    return At(m_table.PlaceOf(row, column), fault);
  }
  wip_Message At(const inpS_KeywordDataTable::Place& place, const cow_String& fault) const {
    const auto [line, field] = place;
    return field >= 0 ? inp_Utils::MessageAtField(m_keyword, line, field, fault)
                      : inp_Utils::MessageAtRow(m_keyword, line, fault);
  }
  // A row that looks wrong is kept all the same: what it means is the analyst's to say. A word that
  // is no number has been told, and what it reads as is nobody's.
  void Tell(int row, int column, const cow_String& fault) {
    const inpS_KeywordDataTable::Place place = m_table.PlaceOf(row, column);
    if (!IsUnread(place)) m_messages.AddWarning(At(place, fault));
  }
  bool IsUnread(const inpS_KeywordDataTable::Place& place) const {
    const auto placeOf = [](const inpS_UnreadField& field) {
      return std::pair(field.row, field.col);
    };
    return std::ranges::binary_search(m_table.Unread(), std::pair(place.line, place.field), {},
                                      placeOf);
  }

  bool IsBlank(int row) const {
    for (int n = 0; n < m_table.NumCols(); ++n)
      if (m_table.IsColumnSpecified(row, n)) return false;
    return true;
  }

  // A blank line is a row all of whose values are left to their defaults, mostly 0. So is a value
  // that the row lacks.
  void CheckLengths() {
    if (m_table.IsWhole()) return;
    int told = 0;
    for (int row = 0; row < m_table.NumRows() && told < kMostTold; ++row) {
      const Missing lacks = MissingIn(row);
      const cow_String& missing = lacks.names;
      const cow_String variable = missing.empty() ? FirstMissingVariable(row) : cow_String();
      const bool blank = IsBlank(row);
      if (missing.empty() && variable.empty() && !blank) continue;
      wip_Message message =
          At(row, blank ? 0 : m_table.NumCols(),
             blank ? HasDefaults() ? "A blank data line is read as a row of defaults."
                                   : "A blank data line is read as a row of zeros."
                   : "Row " + std::to_string(row + 1) + " has no value for " + missing + variable +
                         (lacks.count > 1 ? "; they are read as 0." : "; it is read as 0."));
      m_messages.AddWarning(std::move(message));
      ++told;
    }
  }

  bool HasDefaults() const {
    return std::ranges::any_of(m_columns, [](const Column& one) { return one.absent != 0; });
  }

  struct Missing {
    cow_String names; // of the first few, and how many there are beyond
    int count = 0;
  };

  // The values that a row lacks of those it needs.
  Missing MissingIn(int row) const {
    constexpr int mostNamed = 9;
    Missing missing;
    std::size_t given = m_columns.size();
    while (given > 0 && !m_table.IsColumnSpecified(row, Number(given - 1))) --given;
    for (std::size_t n = 0; n < m_columns.size(); ++n) {
      if (m_columns[n].optional || m_table.IsColumnSpecified(row, Number(n))) continue;
      if (m_columns[n].mayBeBlank && n < given) continue;
      if (++missing.count <= mostNamed)
        missing.names += (missing.count > 1 ? ", " : "") + m_columns[n].name;
    }
    if (missing.count > mostNamed)
      missing.names += " and " + std::to_string(missing.count - mostNamed) + " more";
    return missing;
  }

  cow_String FirstMissingVariable(int row) const {
    for (int n = FirstVariable(); n < m_table.NumCols(); ++n)
      if (!m_table.IsColumnSpecified(row, n)) return StateName(n);
    return {};
  }

  // A blank line that may be one: what its zeros mean is held against the rules as if they stood
  // there.
  bool IsRowOfZeros(int row) const { return IsBlank(row) && MissingIn(row).count == 0; }
  bool IsGiven(int row, int number) const {
    return m_table.IsColumnSpecified(row, number) || IsRowOfZeros(row);
  }

  int FirstVariable() const { return m_state + (m_table.HasTemperatureColumn() ? 1 : 0); }
  cow_String StateName(int number) const {
    if (number < FirstVariable()) return "temperature";
    return "field variable " + std::to_string(number - FirstVariable() + 1);
  }

  void CheckRange(const Column& column, int number) {
    int told = 0;
    for (int row = 0; row < m_table.NumRows() && told < kMostTold; ++row) {
      if (!IsGiven(row, number)) continue;
      const double value = Value(row, number);
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

  // One column against another, in the rows that give both.
  void CheckRelation(const Column& column, int number, const cow_String& otherName, bool low) {
    const auto named = std::ranges::find(m_columns, otherName, &Column::name);
    utl_ASSERT(named != m_columns.end());
    const int other = Number(static_cast<std::size_t>(named - m_columns.begin()));
    const bool open = low ? column.lowColumnOpen : column.highColumnOpen;
    int told = 0;
    for (int row = 0; row < m_table.NumRows() && told < kMostTold; ++row) {
      if (!IsGiven(row, number) || !IsGiven(row, other)) continue;
      const double value = Value(row, number);
      const double bound = Value(row, other);
      // Both 0 where neither is needed: as if not given, a law without temperature.
      if (column.optional && value == 0 && bound == 0) continue;
      const double ahead = low ? value - bound : bound - value;
      if (!(open ? ahead <= 0 : ahead < 0)) continue;
      const char* words =
          low ? (open ? "greater than " : "at least ") : (open ? "less than " : "at most ");
      Tell(row, number,
           column.name + " is " + text(value) + " but must be " + words + otherName + ", " +
               text(bound) + "; it is kept as given.");
      ++told;
    }
  }

  // Whether a row belongs to the same state as the one before.
  bool Continues(int row) const {
    for (int n = m_state; n < m_table.NumCols(); ++n)
      if (Value(row, n) != Value(row - 1, n)) return false;
    return true;
  }

  void CheckOrder(const Column& column, int number) {
    const bool rising = column.order == Order::Rising;
    int told = 0;
    for (int row = 1; row < m_table.NumRows() && told < kMostTold; ++row) {
      const double before = Value(row - 1, number);
      const double value = Value(row, number);
      const bool good = rising ? value > before : value >= before;
      if (good || !Continues(row)) continue;
      Tell(row, number,
           column.name + " is " + text(value) + " behind " + text(before) +
               (rising ? ", but must rise from row to row." : ", but must not fall."));
      ++told;
    }
  }

  // The temperature and the field variables; a row that is nothing but its state is the only one.
  void CheckStates() {
    const bool repeats =
        !m_table.HasTemperatureColumn() || std::ranges::any_of(m_columns, [](const Column& column) {
          return column.order != Order::None || column.role == Column::Role::Independent;
        });
    int told = 0;
    for (int row = 1; row < m_table.NumRows() && told < kMostTold; ++row) {
      int number = m_table.NumCols() - 1;
      while (number >= m_state && Value(row, number) == Value(row - 1, number)) --number;
      if (IsBlank(row) && !IsRowOfZeros(row)) continue; // told by itself
      if (number < m_state) {
        if (repeats) continue;
        Tell(row, 0,
             "Row " + std::to_string(row + 1) +
                 " is for the same temperature and field variables as the row before.");
        ++told;
        continue;
      }
      const double before = Value(row - 1, number);
      const double value = Value(row, number);
      if (!(value < before)) continue;
      cow_String name = StateName(number);
      name = number < FirstVariable() ? "The " + name : "F" + name.substr(1);
      Tell(row, number,
           name + " is " + text(value) + " behind " + text(before) + ", but must not fall.");
      ++told;
    }
  }

  // ---- the columns that a row is given for

  // They may be nested either way, the first varying fastest or the last; what rises in neither
  // is doubtful.
  void CheckPoints() {
    cow_List<int> points;
    for (std::size_t n = 0; n < m_columns.size(); ++n) {
      if (m_columns[n].role != Column::Role::Independent) continue;
      if (m_columns[n].order != Order::None) return;
      points.push_back(Number(n));
    }
    if (points.empty()) return;
    const cow_List<int> firstFastest(points.rbegin(), points.rend()); // slowest first
    const cow_List<Fall> falls = FallsOf(firstFastest);
    if (falls.empty() || (points.size() > 1 && FallsOf(points).empty())) return;
    for (const Fall& fall : falls) m_messages.AddWarning(At(fall.row, fall.column, TextOf(fall)));
  }

  struct Fall {
    int row;
    int column; // -1: nothing differs
  };

  cow_List<Fall> FallsOf(const cow_List<int>& slowestFirst) const {
    cow_List<Fall> falls;
    for (int row = 1; row < m_table.NumRows() && Number(falls.size()) < kMostTold; ++row) {
      const auto differs = [&](int n) { return Value(row, n) != Value(row - 1, n); };
      if (!Continues(row) || IsBlank(row)) continue;
      const auto at = std::ranges::find_if(slowestFirst, differs);
      if (at == slowestFirst.end())
        falls.push_back({row, -1});
      else if (Value(row, *at) < Value(row - 1, *at))
        falls.push_back({row, *at});
    }
    return falls;
  }

  cow_String TextOf(const Fall& fall) const {
    if (fall.column < 0) {
      cow_String names;
      for (const Column& column : m_columns)
        if (column.role == Column::Role::Independent)
          names += (names.empty() ? "" : ", ") + column.name;
      return "Row " + std::to_string(fall.row + 1) + " is for the same " + names +
             " as the row before.";
    }
    return m_columns[static_cast<std::size_t>(fall.column)].name + " is " +
           text(Value(fall.row, fall.column)) + " behind " +
           text(Value(fall.row - 1, fall.column)) +
           "; a table is interpolated between rising values.";
  }

  void CheckFirst(const Column& column, int number) {
    int told = 0;
    for (int row = 0; row < m_table.NumRows() && told < kMostTold; ++row) {
      if (row > 0 && Continues(row)) continue;
      const double value = Value(row, number);
      if (value == 0.0) continue;
      Tell(row, number, "The first " + column.name + " is " + text(value) + " but must be 0.");
      ++told;
    }
  }

  const inp_Keyword& m_keyword;
  const inpS_KeywordDataTable& m_table;
  const cow_List<Column>& m_columns;
  inp_Visitor& m_messages;
  const int m_state;            // the first column of the state
  const double* const m_values; // row by row
  const std::ptrdiff_t m_width;
};

} // namespace

void inpS_checkTable(const inp_Keyword& keyword, const inpS_KeywordDataTable& table,
                     const cow_List<inpS_TableColumns::Column>& columns, inp_Visitor& messages) {
  Check(keyword, table, columns, messages).Run();
}
