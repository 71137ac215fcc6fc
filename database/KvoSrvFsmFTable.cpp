#include "database/KvoSrvFsmFTable.h"
#include "base/utl_Assert.h"
#include "database/KvoSimTransaction.h"
#include "database/eds_Array.h"
#include "database/eds_DamagedModel.h"
#include <algorithm>
#include <bit>
#include <cstring>

namespace {

enum Role { dependent, independent };

// A table of a few rows costs no array of its own.
constexpr size_t mostBytesInRecord = 4096;
static_assert(std::endian::native == std::endian::little); // as files are

void createColumns(const KvoSimPosition& table, const std::vector<cow_String>& names, Role role) {
  for (size_t i = 0; i < names.size(); ++i) {
    const KvoSimPosition column = table.CreateDataRecord(eds_RecordKind::PropertyColumn);
    KvoSimDataRecord record = column.DataRecord();
    record.SetReference(eds_PropertyColumn_Table, table);
    record.SetInt(eds_PropertyColumn_Position, static_cast<int64_t>(i));
    record.SetString(eds_PropertyColumn_Name, names[i]);
    record.SetSymb(eds_PropertyColumn_Role, role);
    table.Associate(eds_Member::Columns, column);
  }
}

} // namespace

KvoSrvFsmFTable KvoSrvFsmFTable::CreateTable(const KvoSimPosition& property, int tableKind,
                                             int64_t rows, int fieldVariables,
                                             const std::vector<cow_String>& dependentColumns,
                                             const std::vector<cow_String>& independentColumns,
                                             int rowKind, std::span<const double> values,
                                             int columns, bool temperatureDependent,
                                             const std::vector<cow_String>& names) {
  KvoSimTransaction transaction(property.Context());
  KvoSrvFsmFTable table = property.CreateFTable(eds_RecordKind::PropertyTable);
  KvoSimDataRecord record = table.m_position.DataRecord();
  record.SetInt(eds_PropertyTable_TableKind, tableKind);
  record.SetInt(eds_PropertyTable_RowKind, rowKind);
  record.SetInt(eds_PropertyTable_FieldVariables, fieldVariables);
  createColumns(table.m_position, dependentColumns, dependent);
  createColumns(table.m_position, independentColumns, independent);
  table.SetValues(rows, values, columns, temperatureDependent);
  if (!names.empty()) table.SetColumnNames(names);
  transaction.Commit();
  return table;
}

void KvoSrvFsmFTable::SetValues(int64_t rows, std::span<const double> values, int columns,
                                bool temperatureDependent) {
  utl_ASSERT(rows >= 0 && columns >= 0);
  utl_ASSERT(static_cast<int64_t>(values.size()) == rows * columns);
  KvoSimTransaction transaction(m_position.Context());
  KvoSimDataRecord record = m_position.DataRecord();
  std::vector<cow_String> names = ColumnNames();
  if (!names.empty()) names.resize(static_cast<size_t>(DataColumns()));
  record.SetInt(eds_PropertyTable_Rows, rows);
  record.SetInt(eds_PropertyTable_Columns, columns);
  record.SetBool(eds_PropertyTable_TemperatureDependent, temperatureDependent);
  const KvoSimPosition former = record.GetReference(eds_PropertyTable_Values);
  record.UnsetMember(eds_PropertyTable_Values);
  record.UnsetMember(eds_PropertyTable_FewValues);
  if (!former.IsNull()) former.Remove();
  if (values.size_bytes() <= mostBytesInRecord) {
    if (!values.empty())
      record.SetString(eds_PropertyTable_FewValues,
                       {reinterpret_cast<const char*>(values.data()), values.size_bytes()});
  } else {
    eds_ArrayWriter writer(m_position, eds_ValueType::Double, columns);
    writer.Append(values);
    record.SetReference(eds_PropertyTable_Values, writer.Finish().Position());
  }
  if (!names.empty()) SetColumnNames(names);
  transaction.Commit();
}

int KvoSrvFsmFTable::DataColumns() const {
  return NumOfCols() - NumberFieldVariables() - (IsTemperatureDependent() ? 1 : 0);
}

// One text for all columns: a record for each would double what a small table costs.
void KvoSrvFsmFTable::SetColumnNames(const std::vector<cow_String>& dataColumns) {
  utl_ASSERT(static_cast<int>(dataColumns.size()) == DataColumns());
  cow_String text;
  for (const cow_String& name : dataColumns) {
    utl_ASSERT(!name.empty() && name.find(',') == cow_String::npos);
    text += name + ',';
  }
  if (IsTemperatureDependent()) text += "Temperature,";
  for (int n = 1; n <= NumberFieldVariables(); ++n) text += "Field" + std::to_string(n) + ',';
  text.pop_back();
  m_position.DataRecord().SetString(eds_PropertyTable_ColumnNames, text);
}

std::vector<cow_String> KvoSrvFsmFTable::ColumnNames() const {
  const KvoSimDataRecord record = m_position.DataRecord();
  std::vector<cow_String> names;
  if (record.IsMemberNull(eds_PropertyTable_ColumnNames)) return names;
  const std::string_view text = record.GetString(eds_PropertyTable_ColumnNames);
  for (size_t at = 0; at <= text.size();) {
    const size_t end = std::min(text.find(',', at), text.size());
    names.emplace_back(text.substr(at, end - at));
    at = end + 1;
  }
  if (static_cast<int>(names.size()) != NumOfCols())
    eds_tellDamaged(m_position, "a property table has " + std::to_string(names.size()) +
                                    " names for " + std::to_string(NumOfCols()) + " columns");
  return names;
}

void KvoSrvFsmFTable::Remove() {
  KvoSimTransaction transaction(m_position.Context());
  const KvoSimPosition values = m_position.DataRecord().GetReference(eds_PropertyTable_Values);
  if (!values.IsNull()) values.Remove();
  for (const KvoSimPosition& column : m_position.GetVector(eds_Member::Columns)) column.Remove();
  m_position.Remove();
  m_position = {};
  transaction.Commit();
}

int KvoSrvFsmFTable::TableKind() const {
  return m_position.DataRecord().GetInt(eds_PropertyTable_TableKind);
}

int KvoSrvFsmFTable::RowKind() const {
  return m_position.DataRecord().GetInt(eds_PropertyTable_RowKind);
}

int64_t KvoSrvFsmFTable::NumOfRows() const {
  return m_position.DataRecord().GetInt64(eds_PropertyTable_Rows);
}

int KvoSrvFsmFTable::NumOfCols() const {
  return m_position.DataRecord().GetInt(eds_PropertyTable_Columns);
}

int KvoSrvFsmFTable::NumberFieldVariables() const {
  return m_position.DataRecord().GetInt(eds_PropertyTable_FieldVariables);
}

bool KvoSrvFsmFTable::IsTemperatureDependent() const {
  return m_position.DataRecord().GetBool(eds_PropertyTable_TemperatureDependent);
}

std::vector<cow_String> KvoSrvFsmFTable::ColumnsOf(int role) const {
  std::vector<cow_String> names;
  for (const KvoSimPosition& column : m_position.GetVector(eds_Member::Columns)) {
    const KvoSimDataRecord record = column.DataRecord();
    if (record.GetSymb(eds_PropertyColumn_Role) == role)
      names.push_back(record.ReturnString(eds_PropertyColumn_Name));
  }
  return names;
}

std::vector<cow_String> KvoSrvFsmFTable::DependentColumns() const {
  return ColumnsOf(dependent);
}

std::vector<cow_String> KvoSrvFsmFTable::IndependentColumns() const {
  return ColumnsOf(independent);
}

std::vector<double> KvoSrvFsmFTable::Values() const {
  const KvoSimDataRecord record = m_position.DataRecord();
  const KvoSimPosition array = record.GetReference(eds_PropertyTable_Values);
  if (array.IsNull()) {
    const std::string_view bytes = record.GetString(eds_PropertyTable_FewValues);
    std::vector<double> values(bytes.size() / sizeof(double));
    if (!values.empty()) std::memcpy(values.data(), bytes.data(), values.size() * sizeof(double));
    if (static_cast<int64_t>(values.size()) != NumOfRows() * NumOfCols())
      eds_tellDamaged(m_position, "a property table has " + std::to_string(values.size()) +
                                      " values for " + std::to_string(NumOfRows()) + " rows of " +
                                      std::to_string(NumOfCols()));
    return values;
  }
  eds_ArrayReader reader(eds_ArrayID{array.Store(), array.ID()});
  if (reader.Width() != NumOfCols() || reader.Count() != NumOfRows())
    eds_tellDamaged(m_position, "a property table does not fit its array");
  std::vector<double> values(static_cast<size_t>(reader.Count() * reader.Width()));
  reader.ReadPiece(0, std::span(values));
  return values;
}

int KvoSrvFsmFTable::PlaceOf(std::string_view column) const {
  const std::vector<cow_String> names = ColumnNames();
  const auto found = std::find(names.begin(), names.end(), column);
  return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

bool KvoSrvFsmFTable::HasColumn(std::string_view name) const {
  return PlaceOf(name) >= 0;
}

std::vector<double> KvoSrvFsmFTable::GetColumnData(std::string_view name) const {
  const int place = PlaceOf(name);
  const int width = NumOfCols();
  utl_ASSERT(place >= 0 && place < width);
  const std::vector<double> values = Values();
  std::vector<double> column;
  column.reserve(static_cast<size_t>(NumOfRows()));
  for (auto at = static_cast<size_t>(place); at < values.size(); at += static_cast<size_t>(width))
    column.push_back(values[at]);
  return column;
}

void KvoSrvFsmFTable::FillPointer(double* values) const {
  const std::vector<double> all = Values();
  std::copy(all.begin(), all.end(), values);
}
