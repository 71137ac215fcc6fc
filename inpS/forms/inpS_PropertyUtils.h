#pragma once

#include "database/KvoSrvFsmFTable.h"
#include "inpS/keywords/inpS_KeywordDataTable.h"

// The columns of a table that it holds under their names, beside plain values: what a row gives
// (dependent) or is given for (independent). Numbers count from 0 and ascend.
struct inpS_ExtraColumns {
  cow_List<int> numbers;
  cow_List<cow_String> names;
};

// The one rule by which a keyword's data lines become the table of a property.
class inpS_PropertyUtils {
public:
  // A table of the property from the keyword's rows: `values` numbers each, then the temperature
  // when the flag is set and any row depends on it, then the field variables. Null, and nothing
  // created, when the keyword has no rows.
  static KvoSrvFsmFTable CreateProperty(const KvoSimPosition& property, const inp_Keyword& keyword,
                                        int tableKind, int values, int rowKind, bool temperature);
  // The same with extra columns. One that the deck does not give is taken out of the table, and
  // those behind it count one less.
  static KvoSrvFsmFTable CreateProperty(const KvoSimPosition& property, const inp_Keyword& keyword,
                                        int tableKind, int values, int rowKind, bool temperature,
                                        inpS_ExtraColumns dependent, inpS_ExtraColumns independent);
  // From a table that has been read. `names` are those of its data columns, all of them; none: not
  // known.
  static KvoSrvFsmFTable CreateProperty(const KvoSimPosition& property, int tableKind, int rowKind,
                                        inpS_KeywordDataTable table, inpS_ExtraColumns dependent,
                                        inpS_ExtraColumns independent,
                                        const cow_List<cow_String>& names = {});

  // Table and row kind of a property kind: one each, under its own number.
  static int TableKindOf(eds_RecordKind property) { return static_cast<int>(property); }
};
