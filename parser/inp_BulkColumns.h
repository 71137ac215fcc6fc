#pragma once

#include "parser/inp_BulkDecode.h"
#include <climits>
#include <cmath>
#include <limits>

// Bulk decode of lines of like fields, such as `set or label, degree, magnitude`: each field goes
// to the column of its place, a million lines to a few typed arrays. Names are told apart, so that
// whoever looks them up does it for each name and not for each line.

enum class inp_ColumnType : unsigned char {
  Target, // a label, or a name
  Word,   // a name, also where it looks like a number
  Int,    // at most nine digits
  Real,
  TargetOrReal, // of lines of which some begin with a target and others go on with numbers
};

// What stands for a field that is blank, or that its line does not have. No number that is read is
// not finite.
inline constexpr int inp_blankInt = INT_MIN;
inline constexpr double inp_blankReal = std::numeric_limits<double>::quiet_NaN();
inline bool inp_isBlankReal(double value) {
  return std::isnan(value);
}

// Names in a column of integers: place n in a list of names. Labels have at most nine digits.
inline constexpr int inp_firstNameCode = INT_MIN + 1;
inline constexpr int inp_mostNames = 1'000'000'000;
inline constexpr bool inp_isNameCode(int code) {
  return code >= inp_firstNameCode && code < inp_firstNameCode + inp_mostNames;
}
inline constexpr int inp_nameCode(int place) {
  return inp_firstNameCode + place;
}
inline constexpr int inp_namePlace(int code) {
  return code - inp_firstNameCode;
}

// Looked at in one go, several at once.
inline bool inp_hasBlank(std::span<const double> values) {
  long long blanks = 0;
  for (const double value : values) blanks |= static_cast<long long>(inp_isBlankReal(value));
  return blanks != 0;
}
inline bool inp_areWithin(std::span<const int> values, int low, int high) {
  unsigned outside = 0;
  const unsigned range = static_cast<unsigned>(high) - static_cast<unsigned>(low);
  for (const int value : values)
    outside |= static_cast<unsigned>(value) - static_cast<unsigned>(low) > range;
  return outside == 0;
}

// Some thousand rows, still in the cache. Blank lines are no rows.
struct inp_ColumnPiece {
  struct Column {
    std::span<int> ints;     // Target, Word (codes of names), Int, TargetOrReal
    std::span<double> reals; // Real, TargetOrReal: a label is a number, too
  };
  std::size_t count = 0;           // rows
  std::span<const Column> columns; // as asked for
  std::size_t given = 0;           // columns from here on are blank in all rows
  // Each once, as written, without the blanks around it: those of the piece, and behind one another
  // those of the earlier pieces of its slot. The first `known` were there with the slot's last
  // piece.
  std::span<const std::string_view> names;
  std::size_t known = 0;
  std::size_t slot = 0; // utl_orderedBlocks
  // Rows with a field that is not of its column's type, a quote, or more fields than columns, but
  // for blank ones. Their slots hold what could be read, else blanks.
  std::span<inp_OddRow> odd; // slots within the piece; rows of the keyword once it is taken
  long long firstRow = 0;    // of the keyword, once it is taken: blank lines count
};

// prepare is called for pieces on all threads at once, take for one after the other in deck order.
void inp_streamColumns(const inp_DataArray& data, std::span<const inp_ColumnType> columns,
                       const std::function<void(const inp_ColumnPiece&)>& prepare,
                       const std::function<void(const inp_ColumnPiece&)>& take);
