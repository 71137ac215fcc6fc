#pragma once

#include "base/cow_Value.h"
#include "database/KvoSimPosition.h"
#include <span>

class utl_Stream;
class KvoSrvFsmFTable;

// The printing primitives that every keyword printer uses.

// n values separated by ", ", without a line end; nothing for n < 1.
void inpS_printArray(utl_Stream& out, const double* values, int n);
void inpS_printVector(utl_Stream& out, const cow_List<double>& vector);

// n labels, 16 to a data line, each line ended by a line feed.
void inpS_printSet(utl_Stream& out, long long n, const int* labels);

// A parameter value: in double quotes unless it is empty.
void inpS_printInpParamValueString(utl_Stream& out, const cow_String& value);

// Puts a name into double quotes where the deck language needs them: when it holds an underscore, a
// blank or a period, and also when it would not read back as itself bare (lower case letters,
// commas and other separators). Any other name is left as it is.
cow_String& QuotedName(cow_String& name);
// The same, and for a name that is a number: in front of a dot it would not be one name any more.
cow_String inpS_quoted(cow_String name);

// Appends the members of a component set, counted from 1 and separated by ", ", to a data line.
void inpS_printComponentsOnDataline(cow_String& line, const KvoSimPosition& componentSet);

// A property table: eight values to a data line, one table row after the other.
struct inpS_FTableOptions {
  int valuesPerLine = 8;
};
void inpS_printFTable(utl_Stream& out, const inpS_FTableOptions& options,
                      const KvoSrvFsmFTable& table);
