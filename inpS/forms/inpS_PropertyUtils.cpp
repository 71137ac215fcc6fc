#include "inpS/forms/inpS_PropertyUtils.h"
#include "base/utl_Assert.h"
#include <algorithm>

namespace {

// Marks the columns that no row of the deck gives, and forgets their names.
void dropUnspecified(const inpS_KeywordDataTable& table, inpS_ExtraColumns& columns,
                     cow_List<char>& keep) {
  cow_List<cow_String> names;
  for (std::size_t n = 0; n < columns.numbers.size(); ++n) {
    const int column = columns.numbers[n];
    utl_ASSERT(column >= 0 && column < table.NumCols());
    bool specified = false;
    for (int row = 0; row < table.NumRows() && !specified; ++row)
      specified = table.IsColumnSpecified(row, column);
    if (specified)
      names.push_back(std::move(columns.names[n]));
    else
      keep[static_cast<std::size_t>(column)] = 0;
  }
  columns.names = std::move(names);
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
                                                   inpS_ExtraColumns independent,
                                                   const cow_List<cow_String>& names) {
  if (dependent.numbers.size() != dependent.names.size())
    utl_assertionFailed("posDepExtraColNumbers.size() == posDepExtraColNames.size()");
  if (independent.numbers.size() != independent.names.size())
    utl_assertionFailed("posInDepExtraColNumbers.size() == posInDepExtraColNames.size()");
  if (table.NumRows() == 0) return {};
  cow_List<char> keep(static_cast<std::size_t>(table.NumCols()), 1);
  inpS_ExtraColumns given[] = {dependent, independent};
  for (inpS_ExtraColumns& columns : given) dropUnspecified(table, columns, keep);
  const auto kept = std::ranges::count(keep, 1);
  cow_List<cow_String> keptNames = names;
  if (kept > 0 && kept < table.NumCols()) { // rows of nothing but blanks stay rows of zeros
    table.KeepColumns(keep);
    keptNames.clear();
    for (std::size_t n = 0; n < names.size(); ++n)
      if (keep[n] != 0) keptNames.push_back(names[n]);
    dependent = std::move(given[0]);
    independent = std::move(given[1]);
  }
  return KvoSrvFsmFTable::CreateTable(property, tableKind, table.NumRows(), table.NumDependencies(),
                                      dependent.names, independent.names, rowKind,
                                      table.GetDataAsBuffer(), table.NumCols(),
                                      table.HasTemperatureColumn(), keptNames);
}
