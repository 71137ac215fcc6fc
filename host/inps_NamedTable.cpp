#include "host/inps_NamedTable.h"

#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSrvFsmFTable.h"
#include <algorithm>
#include <charconv>

inps_NamedTable::inps_NamedTable(const inpS_PropertyDescription& description)
    : columns(description.columns) {
  if (description.property.IsNull()) return;
  const KvoSrvFsmFTable table = description.property.GetFTable();
  if (table.IsNull()) return;
  rows = table.NumOfRows();
  width = table.NumOfCols();
  hasTemperature = table.IsTemperatureDependent();
  fieldVariables = table.NumberFieldVariables();
  values = table.Values();
}

inps_NamedTable::Range inps_NamedTable::RangeOf(int column) const {
  Range range{At(0, column), At(0, column)};
  for (int64_t row = 1; row < rows; ++row) {
    range.low = std::min(range.low, At(row, column));
    range.high = std::max(range.high, At(row, column));
  }
  return range;
}

void inps_forPropertyOwners(const KvoObjDocument& document,
                            const std::function<void(const inps_PropertyOwner&)>& take) {
  struct Kind {
    const char* name;
    eds_Member member;
  };
  const KvoSimPosition model = document.GetModel().Position();
  if (model.IsNull()) return; // cut short at its very start
  for (const Kind& kind : {Kind{"material", eds_Member::Materials},
                           Kind{"gasket behavior", eds_Member::GasketBehaviors}})
    for (const KvoSimPosition& owner : model.FollowMap(kind.member))
      take({kind.name, owner.DataRecord().ReturnString(0), owner});
}

cow_String inps_plainNumber(double value) {
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, value).ptr};
}
