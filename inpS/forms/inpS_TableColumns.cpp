#include "inpS/forms/inpS_TableColumns.h"
#include "base/utl_Assert.h"
#include <algorithm>
#include <charconv>

namespace {

using Column = inpS_TableColumns::Column;

// Walks the text of a table's columns; a fault in it is a fault of ours.
class Scanner {
public:
  explicit Scanner(std::string_view text) : m_text(text) {}

  bool AtEnd() const { return m_at >= m_text.size(); }
  bool Take(std::string_view word) {
    if (!m_text.substr(m_at).starts_with(word)) return false;
    m_at += word.size();
    return true;
  }
  cow_String Word(std::string_view stops) {
    const std::size_t end = std::min(m_text.find_first_of(stops, m_at), m_text.size());
    cow_String word(m_text.substr(m_at, end - m_at));
    utl_ASSERT(!word.empty());
    m_at = end;
    return word;
  }
  bool IsAtNumber() const {
    return m_at < m_text.size() &&
           (m_text[m_at] == '-' || (m_text[m_at] >= '0' && m_text[m_at] <= '9'));
  }
  double Number() {
    double value = 0;
    const char* end = m_text.data() + m_text.size();
    const auto read = std::from_chars(m_text.data() + m_at, end, value);
    utl_ASSERT(read.ec == std::errc());
    m_at = static_cast<std::size_t>(read.ptr - m_text.data());
    return value;
  }

private:
  std::string_view m_text;
  std::size_t m_at = 0;
};

constexpr std::string_view kStops = " )?<>+!"; // behind a name

// One bound, a number or a column's name; false when there is none.
bool readBound(Scanner& scan, Column& column) {
  const bool low = scan.Take(">");
  if (!low && !scan.Take("<")) return false;
  const bool open = !scan.Take("=");
  if (scan.IsAtNumber()) {
    (low ? column.low : column.high) = scan.Number();
    (low ? column.lowOpen : column.highOpen) = open;
  } else {
    (low ? column.lowColumn : column.highColumn) = scan.Word(kStops);
    (low ? column.lowColumnOpen : column.highColumnOpen) = open;
  }
  return true;
}

Column::Order readOrder(Scanner& scan) {
  if (scan.Take("!")) return Column::Order::Any;
  if (scan.Take("++")) return Column::Order::Rising;
  return scan.Take("+") ? Column::Order::NotFalling : Column::Order::None;
}

Column readColumn(Scanner& scan) {
  using Role = Column::Role;
  Column column;
  column.role = scan.Take("~") ? Role::Independent : scan.Take("=") ? Role::Dependent : Role::Plain;
  column.name = column.tableName = scan.Word(kStops);
  column.optional = scan.Take("?");
  if (column.optional && scan.Take("=")) column.absent = scan.Number();
  while (readBound(scan, column)) {
  }
  column.order = readOrder(scan);
  column.fromZero = scan.Take("@0");
  return column;
}

// How many C_ij a strain energy polynomial of order n has: i + j from 1 to n.
long long polynomialSize(long long n) {
  return n * (n + 3) / 2;
}

} // namespace

inpS_TableColumns::inpS_TableColumns(std::string_view text) {
  Scanner scan(text);
  while (!scan.AtEnd()) {
    if (scan.Take(" ")) continue;
    Group group;
    if (scan.Take("(")) {
      m_isFixed = false;
      while (!scan.Take(")*")) {
        if (!scan.Take(" ")) group.columns.push_back(readColumn(scan));
      }
      group.parameter = scan.Word(" =:");
      if (scan.Take("=")) group.absent = static_cast<long long>(scan.Number());
      group.polynomial = scan.Take(":polynomial");
    } else {
      group.columns.push_back(readColumn(scan));
    }
    m_groups.push_back(std::move(group));
  }
  if (m_isFixed)
    for (const Group& group : m_groups) m_fixed.push_back(group.columns.front());
}

long long inpS_TableColumns::Repeats(const Group& group, const Count& count) {
  if (group.parameter.empty()) return 1;
  const long long n = std::max<long long>(0, count(group.parameter, group.absent));
  return group.polynomial ? polynomialSize(n) : n;
}

long long inpS_TableColumns::Size(const Count& count) const {
  if (m_isFixed) return static_cast<long long>(m_fixed.size());
  long long size = 0;
  for (const Group& group : m_groups)
    size += Repeats(group, count) * static_cast<long long>(group.columns.size());
  return size;
}

cow_List<Column> inpS_TableColumns::Expand(const Count& count) const {
  if (m_isFixed) return m_fixed;
  cow_List<Column> columns;
  for (const Group& group : m_groups) {
    const long long repeats = Repeats(group, count);
    for (long long n = 1; n <= repeats; ++n) {
      for (const Column& column : group.columns) {
        columns.push_back(column);
        if (group.parameter.empty()) continue;
        columns.back().name += std::to_string(n);
        if (!column.name.ends_with('_')) continue;
        columns.back().tableName = columns.back().name;
        columns.back().mayBeBlank = true; // it has a number, not a meaning
      }
    }
    if (!group.polynomial) continue;
    // C10 C01 C20 C11 C02 ...
    auto at = columns.end() - static_cast<std::ptrdiff_t>(repeats);
    for (long long order = 1; at != columns.end(); ++order)
      for (long long i = order; i >= 0; --i, ++at)
        at->name = group.columns.front().name + std::to_string(i) + std::to_string(order - i);
  }
  return columns;
}

cow_List<cow_String> inpS_TableColumns::Parameters() const {
  cow_List<cow_String> parameters;
  for (const Group& group : m_groups)
    if (!group.parameter.empty()) parameters.push_back(group.parameter);
  return parameters;
}
