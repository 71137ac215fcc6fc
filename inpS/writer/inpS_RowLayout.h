#pragma once

#include "base/cow_Value.h"
#include <span>

struct inpS_Form;
class KvoSimDataRecord;
class KvoSimPosition;
class KvoSrvFsmFTable;
class utl_Stream;

// The fields of a property table's row as the deck has them, each with the column of the table it
// is printed from. The table lacks the columns that the deck never gave: their fields are blank. It
// may lack the temperature: where field variables stand behind it, its field is 0.
class inpS_RowLayout {
public:
  // Of `columns` columns as they stand, with a zero before one of them; -1: with none.
  inpS_RowLayout(int columns, int zeroAt);
  inpS_RowLayout(const inpS_Form& behavior, const KvoSimDataRecord& record,
                 const KvoSrvFsmFTable& table);

  // Rows of the table, eight values to a line.
  void Print(utl_Stream& out, std::span<const double> values) const;

private:
  void PrintField(utl_Stream& out, const double* row, int field) const;

  cow_List<int> m_fields; // columns, or what stands for one
  int m_columns;          // of the table
  bool m_hasBlanks = false;
};

// The table of a record by its form; nothing where it has none.
void inpS_printRows(utl_Stream& out, const inpS_Form& form, const KvoSimPosition& record);
