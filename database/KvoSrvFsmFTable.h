#pragma once

#include "database/KvoSimPosition.h"
#include <span>

// A property table: rows of doubles, each holding the data columns, then the temperature when any
// row depends on it, then the field variables. Held by its property as the one table it has.
class KvoSrvFsmFTable {
public:
  KvoSrvFsmFTable() = default;
  explicit KvoSrvFsmFTable(const KvoSimPosition& table) : m_position(table) {}

  // `values` is row-major, rows x columns. Dependent columns are what the table gives, independent
  // ones what it is given for: the columns that bear a role, whose presence a reader asks for.
  // `names` are the names of all data columns in order, without commas; empty: none is known.
  static KvoSrvFsmFTable CreateTable(const KvoSimPosition& property, int tableKind, int64_t rows,
                                     int fieldVariables,
                                     const std::vector<cow_String>& dependentColumns,
                                     const std::vector<cow_String>& independentColumns, int rowKind,
                                     std::span<const double> values, int columns,
                                     bool temperatureDependent,
                                     const std::vector<cow_String>& names = {});

  // Replaces all rows; the columns' names and the number of field variables stay.
  void SetValues(int64_t rows, std::span<const double> values, int columns,
                 bool temperatureDependent);

  void Remove(); // with its columns and values

  bool IsNull() const { return m_position.IsNull(); }
  const KvoSimPosition& Position() const { return m_position; }
  int TableKind() const;
  int RowKind() const;
  int64_t NumOfRows() const;
  int NumOfCols() const;
  int NumberFieldVariables() const;
  bool IsTemperatureDependent() const;
  std::vector<cow_String> DependentColumns() const;
  std::vector<cow_String> IndependentColumns() const;
  // Of all columns, those of the data, then "Temperature" and "Field1", ...; empty where the
  // table's maker told none.
  std::vector<cow_String> ColumnNames() const;
  bool HasColumn(std::string_view name) const;
  std::vector<double> GetColumnData(std::string_view name) const; // one value for each row
  std::vector<double> Values() const;                             // row-major
  // The same into memory of the caller's, which has room for rows x columns.
  void FillPointer(double* values) const;

private:
  void SetColumnNames(const std::vector<cow_String>& dataColumns);
  int DataColumns() const;
  int PlaceOf(std::string_view column) const; // -1: none of that name
  std::vector<cow_String> ColumnsOf(int role) const;
  KvoSimPosition m_position;
};
