#include "inpS/materials/inpS_PropertyUtils.h"
#include "base/utl_Assert.h"

namespace {

// Takes the columns out that no row of the deck gives.
void keepSpecified(inpS_KeywordDataTable& table, inpS_ExtraColumns& columns,
                   inpS_ExtraColumns& others) {
  for (std::size_t n = 0; n < columns.numbers.size();) {
    const int column = columns.numbers[n];
    bool specified = false;
    for (int row = 0; row < table.NumRows() && !specified; ++row)
      specified = table.IsColumnSpecified(row, column);
    if (specified) {
      ++n;
      continue;
    }
    table.RemoveColumn(column);
    columns.numbers.erase(columns.numbers.begin() + static_cast<std::ptrdiff_t>(n));
    columns.names.erase(columns.names.begin() + static_cast<std::ptrdiff_t>(n));
    for (inpS_ExtraColumns* list : {&columns, &others})
      for (int& number : list->numbers)
        if (number > column) --number;
  }
}

} // namespace

KvoSrvFsmFTable inpS_PropertyUtils::CreateProperty(const KvoSimPosition& property,
                                                   const inp_Keyword& keyword, int tableKind,
                                                   int values, int rowKind, bool temperature) {
  return CreateProperty(property, keyword, tableKind, values, rowKind, temperature, {}, {});
}

KvoSrvFsmFTable inpS_PropertyUtils::CreateProperty(const KvoSimPosition& property,
                                                   const inp_Keyword& keyword, int tableKind,
                                                   int values, int rowKind, bool temperature,
                                                   inpS_ExtraColumns dependent,
                                                   inpS_ExtraColumns independent) {
  inpS_KeywordDataTable table(keyword, values, 0, temperature);
  table.Read();
  table.RemoveTempColumnIfIndependent();
  return CreateProperty(property, tableKind, rowKind, std::move(table), std::move(dependent),
                        std::move(independent));
}

KvoSrvFsmFTable inpS_PropertyUtils::CreateProperty(const KvoSimPosition& property, int tableKind,
                                                   int rowKind, inpS_KeywordDataTable table,
                                                   inpS_ExtraColumns dependent,
                                                   inpS_ExtraColumns independent) {
  if (dependent.numbers.size() != dependent.names.size())
    utl_assertionFailed("posDepExtraColNumbers.size() == posDepExtraColNames.size()");
  if (independent.numbers.size() != independent.names.size())
    utl_assertionFailed("posInDepExtraColNumbers.size() == posInDepExtraColNames.size()");
  if (table.NumRows() == 0) return {};
  keepSpecified(table, dependent, independent);
  keepSpecified(table, independent, dependent);
  return KvoSrvFsmFTable::CreateTable(property, tableKind, table.NumRows(), table.NumDependencies(),
                                      dependent.names, independent.names, rowKind,
                                      table.GetDataAsBuffer(), table.NumCols(),
                                      table.HasTemperatureColumn());
}
