#pragma once

#include "database/KvoObjDocument.h"
#include "inpS/writer/inpS_PropertyDescription.h"
#include <functional>

// The table of a behaviour, its columns under their names.
struct inps_NamedTable {
  explicit inps_NamedTable(const inpS_PropertyDescription& description);

  int64_t rows = 0;
  int width = 0; // columns of a row: those named, then the temperature, then field variables
  bool hasTemperature = false;
  int fieldVariables = 0;
  cow_List<double> values; // row-major
  cow_List<inpS_PropertyDescription::Column> columns;

  double At(int64_t row, int column) const {
    return values[static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
                  static_cast<std::size_t>(column)];
  }
  struct Range {
    double low = 0;
    double high = 0;
  };
  Range RangeOf(int column) const; // of a table with rows
  int TemperatureColumn() const { return static_cast<int>(columns.size()); }
  int FirstFieldColumn() const { return TemperatureColumn() + (hasTemperature ? 1 : 0); }
};

// A material or gasket behaviour.
struct inps_PropertyOwner {
  const char* kind; // "material", "gasket behavior"
  cow_String name;
  KvoSimPosition position;
};
// All of a model, in the order of their definition.
void inps_forPropertyOwners(const KvoObjDocument& document,
                            const std::function<void(const inps_PropertyOwner&)>& take);

// A number as people write it: "210000", "0.3", "7.85e-09".
cow_String inps_plainNumber(double value);
