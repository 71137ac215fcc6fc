#pragma once

#include "base/cow_Value.h"
#include <functional>
#include <limits>

// What the values of a table's rows are, from one line of text:
//
//   columns    := item { " " item }
//   item       := column | "(" columns ")*" parameter [ "=" default ] [ ":" law ]
//   column     := [ "~" | "=" ] name [ "?" [ "=" number ] ] { bound } [ order ]
//   bound      := ( ">" | ">=" | "<" | "<=" ) ( number | name of a column before it )
//   order      := ( "+" | "++" ) [ "@0" ] | "!"
//
// "~" marks what the row is given for and "=" what it gives, where the table holds them under their
// names (its extra columns): one that no row of the deck gives is no column of the table, so that a
// blank which stands for a default stays one. "?" marks a value that may be missing; it is then 0,
// or the number behind the "=". Values of an ordered column rise from row to row ("++"; "+": do not
// fall) as long as temperature and field variables stay the same; "@0": the first of them is 0.
// What a row is given for rises by itself; "!" marks where any order is meant, as in test data. A
// group is repeated as often as the keyword's parameter says; the law "polynomial" stands for all
// C_ij with i + j from 1 to N.
class inpS_TableColumns {
public:
  struct Column {
    enum class Role : unsigned char { Plain, Independent, Dependent };
    enum class Order : unsigned char { None, NotFalling, Rising, Any };
    cow_String name;      // numbered in a repeated group
    cow_String tableName; // as an extra column: numbered only behind a "_"
    Role role = Role::Plain;
    Order order = Order::None;
    bool fromZero = false;
    bool optional = false;
    double absent = 0;       // what holds where the value is missing
    bool mayBeBlank = false; // where another value follows
    double low = -std::numeric_limits<double>::infinity();
    double high = std::numeric_limits<double>::infinity();
    bool lowOpen = false;
    bool highOpen = false;
    cow_String lowColumn; // another column that bounds it; empty: none
    cow_String highColumn;
    bool lowColumnOpen = false;
    bool highColumnOpen = false;
    bool IsBounded() const {
      return low > -std::numeric_limits<double>::infinity() ||
             high < std::numeric_limits<double>::infinity();
    }
  };
  // The value of an integer parameter; the default where the keyword does not carry it.
  using Count = std::function<long long(const cow_String& parameter, long long absent)>;

  explicit inpS_TableColumns(std::string_view text);

  bool IsEmpty() const { return m_groups.empty(); }
  bool IsFixed() const { return m_isFixed; } // no group depends on a parameter
  // How many columns a row has; without making them.
  long long Size(const Count& count) const;
  // The columns of a row; those of a repeated group are numbered from 1.
  cow_List<Column> Expand(const Count& count) const;
  const cow_List<Column>& Fixed() const { return m_fixed; } // of a table without groups
  // The parameters that groups depend on.
  cow_List<cow_String> Parameters() const;

private:
  struct Group {
    cow_List<Column> columns;
    cow_String parameter; // empty: once
    long long absent = 1;
    bool polynomial = false;
  };
  static long long Repeats(const Group& group, const Count& count);

  cow_List<Group> m_groups;
  cow_List<Column> m_fixed;
  bool m_isFixed = true;
};
