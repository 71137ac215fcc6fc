#pragma once

#include "base/cow_Value.h"
#include "database/KvoSimPosition.h"
#include "inpS/keywords/inpS_QuotedName.h"
#include <span>

class utl_Stream;
class KvoSrvFsmFTable;
class inpS_RowLayout;

// The printing primitives that every keyword printer uses.

// n values separated by ", ", without a line end; nothing for n < 1.
void inpS_printArray(utl_Stream& out, const double* values, int n);
void inpS_printVector(utl_Stream& out, const cow_List<double>& vector);

// n labels, 16 to a data line, each line ended by a line feed.
void inpS_printSet(utl_Stream& out, long long n, const int* labels);

// A parameter value: in double quotes unless it is empty.
void inpS_printInpParamValueString(utl_Stream& out, const cow_String& value);

// Appends the members of a component set, counted from 1 and separated by ", ", to a data line.
void inpS_printComponentsOnDataline(cow_String& line, const KvoSimPosition& componentSet);

// How a property table is printed: where its columns stand on a line, and which rows.
struct inpS_FTableOptions {
  const inpS_RowLayout* layout = nullptr; // null: the columns as they stand
  std::span<const double> rows{};         // some of the table's own, row by row; none: all of them
};
// A property table: eight values to a data line, one table row after the other.
void inpS_printFTable(utl_Stream& out, const inpS_FTableOptions& options,
                      const KvoSrvFsmFTable& table);
