#include "inpS/writer/inpS_RowLayout.h"
#include "base/utl_Stream.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSrvFsmFTable.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/writer/inpS_PrintPrimitives.h"
#include <algorithm>

namespace {

using Column = inpS_TableColumns::Column;
constexpr int kBlank = -1;
constexpr int kZero = -2;
constexpr int kPerLine = 8;

// The names of a table's extra columns, one after the other.
class Names {
public:
  explicit Names(cow_List<cow_String> names) : m_names(std::move(names)) {}
  bool Take(const cow_String& name) {
    const bool has = m_at < m_names.size() && m_names[m_at] == name;
    if (has) ++m_at;
    return has;
  }

private:
  cow_List<cow_String> m_names;
  std::size_t m_at = 0;
};

} // namespace

inpS_RowLayout::inpS_RowLayout(int columns, int zeroAt) : m_columns(columns) {
  for (int column = 0; column < columns; ++column) m_fields.push_back(column);
  if (zeroAt >= 0) m_fields.insert(m_fields.begin() + zeroAt, kZero);
}

inpS_RowLayout::inpS_RowLayout(const inpS_Form& behavior, const KvoSimDataRecord& record,
                               const KvoSrvFsmFTable& table)
    : m_columns(table.NumOfCols()) {
  Names dependent(table.DependentColumns());
  Names independent(table.IndependentColumns());
  const int variables = table.NumberFieldVariables();
  const bool temperature = table.IsTemperatureDependent();
  int next = 0;
  for (const Column& column : behavior.columns.Expand(behavior.CountIn(record))) {
    Names& names = column.role == Column::Role::Dependent ? dependent : independent;
    const bool has = column.role == Column::Role::Plain || names.Take(column.tableName);
    m_fields.push_back(has ? next++ : kBlank);
  }
  if (behavior.HasTemperature() && !temperature && variables > 0) m_fields.push_back(kZero);
  for (int n = variables + (temperature ? 1 : 0); n > 0; --n) m_fields.push_back(next++);
  while (!m_fields.empty() && m_fields.back() == kBlank) m_fields.pop_back();
  m_hasBlanks = std::ranges::find(m_fields, kBlank) != m_fields.end();
  if (next != m_columns) *this = inpS_RowLayout(m_columns, -1); // of another program
}

void inpS_RowLayout::PrintField(utl_Stream& out, const double* row, int field) const {
  if (field != kBlank) out << (field == kZero ? 0.0 : row[field]);
}

void inpS_RowLayout::Print(utl_Stream& out, std::span<const double> values) const {
  const int width = static_cast<int>(m_fields.size());
  const auto columns = static_cast<std::size_t>(m_columns);
  double line[kPerLine];
  for (std::size_t at = 0; at + columns <= values.size() && columns > 0; at += columns) {
    const double* row = values.data() + at;
    for (int first = 0; first < width; first += kPerLine) {
      const int last = std::min(width, first + kPerLine);
      const int* fields = m_fields.data();
      if (m_hasBlanks) {
        for (int n = first; n < last; ++n) {
          if (n > first) out << ", ";
          PrintField(out, row, fields[n]);
        }
      } else {
        for (int n = first; n < last; ++n)
          line[n - first] = fields[n] == kZero ? 0.0 : row[fields[n]];
        inpS_printArray(out, line, last - first);
      }
      out << (last < width ? ",\n" : "\n");
    }
  }
}

void inpS_printRows(utl_Stream& out, const inpS_Form& form, const KvoSimPosition& record) {
  const KvoSrvFsmFTable table = record.GetFTable();
  if (table.IsNull()) return;
  // Field variables stand behind the temperature, which is blank where nothing depends on it.
  const int variables = table.NumberFieldVariables();
  const bool lacksTemperature =
      form.HasTemperature() && variables > 0 && !table.IsTemperatureDependent();
  const inpS_RowLayout layout =
      form.columns.IsEmpty()
          ? inpS_RowLayout(table.NumOfCols(), lacksTemperature ? table.NumOfCols() - variables : -1)
          : inpS_RowLayout(form, record.DataRecord(), table);
  inpS_printFTable(out, {&layout, {}}, table);
}
