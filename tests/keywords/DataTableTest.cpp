#include "base/utl_Assert.h"
#include "inpS/keywords/inpS_2DArrayDouble.h"
#include "inpS/keywords/inpS_KeywordDataTable.h"
#include "parser/inp_Visitor.h"
#include "tests/keywords/DeckKeyword.h"
#include <gtest/gtest.h>
#include <limits>

using Doubles = cow_List<double>;
using Rows = cow_List<Doubles>;

namespace {

Rows rowsOf(const inpS_KeywordDataTable& table) {
  Rows rows;
  for (const double* row : table.GetDataAsPtr()) rows.emplace_back(row, row + table.NumCols());
  return rows;
}

struct TableForm {
  int dataColumns;
  bool temperature = false;
  const char* parameters = "";
  int firstColumn = 0;
  int firstDataLine = 0;
};

inpS_KeywordDataTable tableOf(const TableForm& form, const cow_String& lines,
                              const cow_List<int>& defaultColumns = {},
                              const Doubles& defaults = {}) {
  const inp_Keyword keyword = deckKeyword(cow_String("*ELASTIC") + form.parameters + "\n" + lines);
  inpS_KeywordDataTable table(keyword, form.dataColumns, form.firstDataLine, form.temperature);
  table.SetDefaultData(defaultColumns, defaults);
  table.Read(form.firstColumn);
  return table;
}

template <class Call> cow_String assertionOf(Call call) {
  try {
    call();
  } catch (const utl_Assertion& e) {
    return e.what();
  }
  return "none";
}

const cow_String one8 = "1,2,3,4,5,6,7,8";

} // namespace

TEST(DataTable, ReadsRecords) {
  struct Case {
    const char* what;
    TableForm form;
    cow_String lines;
    Rows rows;
    bool tempDependent = false;
  };
  const Case cases[] = {
      {"nothing", {2}, "", {}},
      {"one line each", {2}, "1,2\n3,4\n", {{1, 2}, {3, 4}}},
      {"nine over two lines",
       {9},
       one8 + ",\n9\n" + one8 + "\n19,\n",
       {{1, 2, 3, 4, 5, 6, 7, 8, 9}, {1, 2, 3, 4, 5, 6, 7, 8, 19}}},
      {"short lines of a long record",
       {9},
       "1,2,3\n4,5,6\n7,8,9\n",
       {{1, 2, 3, 4, 5, 6, 0, 0, 0}, {7, 8, 9, 0, 0, 0, 0, 0, 0}}}, // two lines at most
      {"temperature left out", {2, true}, "1,2\n3,4,\n", {{1, 2, 0}, {3, 4, 0}}},
      {"temperature of zero", {2, true}, "1,2,0\n", {{1, 2, 0}}},
      {"temperature in one row", {2, true}, "1,2\n3,4,-20.\n", {{1, 2, 0}, {3, 4, -20}}, true},
      {"ninth is a temperature",
       {8, true},
       one8 + "\n20\n" + one8 + ",\n30,\n",
       {{1, 2, 3, 4, 5, 6, 7, 8, 20}, {1, 2, 3, 4, 5, 6, 7, 8, 30}},
       true},
      {"ninth left out",
       {8, true},
       one8 + "\n" + one8 + "\n",
       {{1, 2, 3, 4, 5, 6, 7, 8, 0}, {1, 2, 3, 4, 5, 6, 7, 8, 0}}},
      {"field variables",
       {1, true, ", DEPENDENCIES=2"},
       "1,20,3,4\n5,30\n",
       {{1, 20, 3, 4}, {5, 30, 0, 0}},
       true},
      {"field variables on a second line",
       {6, true, ", dependencies=3"},
       one8 + "\n9,10\n" + one8 + ",\n19\n",
       {{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, {1, 2, 3, 4, 5, 6, 7, 8, 19, 0}},
       true},
      {"blank lines", {2}, "1,2\n\n3,4\n \n\n", {{1, 2}, {0, 0}, {3, 4}}},
      {"one blank line", {2}, "\n", {{0, 0}}},
      {"empty fields", {3}, ",2,3\n1,,\n,,3\n", {{0, 2, 3}, {1, 0, 0}, {0, 0, 3}}},
      {"later first column", {2, false, "", 3}, "9,9,9,1,2\n3,4\n", {{1, 2}, {3, 4}}},
      {"later first line", {2, false, "", 0, 1}, "9,9\n3,4\n", {{3, 4}}},
      {"first line beyond the data", {2, false, "", 0, 5}, "9,9\n", {}},
      {"comments between", {9}, one8 + ",\n** the ninth\n9\n", {{1, 2, 3, 4, 5, 6, 7, 8, 9}}},
  };
  for (const Case& c : cases) {
    const inpS_KeywordDataTable table = tableOf(c.form, c.lines);
    EXPECT_EQ(rowsOf(table), c.rows) << c.what;
    EXPECT_EQ(table.IsTempDependent(), c.tempDependent) << c.what;
    EXPECT_TRUE(table.Unread().empty()) << c.what;
  }
}

TEST(DataTable, DefaultsFillEmptyFieldsOnly) {
  const auto table = tableOf({9}, "1,,3,4,5,6,7,8\n,,\n,,3\n", {1, 8, 2}, {0.3, 70, -1});
  EXPECT_EQ(rowsOf(table), (Rows{{1, .3, 3, 4, 5, 6, 7, 8, 70}, {0, .3, 3, 0, 0, 0, 0, 0, 0}}));
  const bool given[2][9] = {{1, 0, 1, 1, 1, 1, 1, 1, 0}, {0, 0, 1, 0, 0, 0, 0, 0, 0}};
  for (int row = 0; row < 2; ++row)
    for (int col = 0; col < 9; ++col)
      EXPECT_EQ(table.IsColumnSpecified(row, col), given[row][col]) << row << ' ' << col;
  EXPECT_FALSE(table.IsColumnSpecified(2, 0));
  EXPECT_FALSE(table.IsColumnSpecified(0, 9));
}

TEST(DataTable, TellsWhatItCouldNotRead) {
  const auto table = tableOf({2}, "1,2\n x,2\n1,2,,3,4\n1,2,,\n" + one8 + ",9\n");
  EXPECT_EQ(rowsOf(table), (Rows{{1, 2}, {0, 2}, {1, 2}, {1, 2}, {1, 2}}));
  inp_Visitor visitor;
  table.ReportUnread(visitor);
  const auto told = [](const cow_List<wip_Message>& messages) {
    cow_List<cow_String> texts;
    for (const wip_Message& message : messages)
      texts.push_back(std::to_string(message.place.line) + ":" +
                      std::to_string(message.place.column) + " " + message.text);
    return texts;
  };
  const cow_String surplus =
      "More values than belong on this line; from here on they are kept, but not used.";
  EXPECT_EQ(told(visitor.Errors()),
            (cow_List<cow_String>{"3:2 A number is expected instead of \"x\"; 0 is used."}));
  EXPECT_EQ(told(visitor.Warnings()), (cow_List<cow_String>{"4:6 " + surplus, "6:5 " + surplus}));

  const auto ninth = tableOf({9}, one8 + ",9\n10\n"); // no line holds nine
  EXPECT_EQ(rowsOf(ninth), (Rows{{1, 2, 3, 4, 5, 6, 7, 8, 10}}));
  EXPECT_EQ(ninth.Unread().size(), 1u);
}

TEST(DataTable, UnusableDependenciesAreReported) {
  for (const char* parameter :
       {", DEPENDENCIES=-1", ", DEPENDENCIES=1001", ", DEPENDENCIES=2000000000"}) {
    EXPECT_EQ(tableOf({2, false, parameter}, "1,2\n").NumCols(), 2);
    EXPECT_EQ(
        gatheredMessages(),
        cow_List<cow_String>{"Value of the parameter \"dependencies\" is invalid. It must be a "
                             "whole number from 0 to 1000; it is read as 0."});
  }
}

TEST(DataTable, ColumnOperations) {
  auto table = tableOf({2, true}, "1,2,20\n3,4,30\n");
  EXPECT_EQ(table.Column(1).AsList(), (Doubles{2, 4}));
  EXPECT_EQ(table.Columns(1, 2), (Doubles{2, 20, 4, 30}));
  EXPECT_TRUE(table.IsDependentOnColumn(2));
  EXPECT_FALSE(table.IsDependentOnColumn(3));
  table.RemoveTempColumnIfIndependent(); // it is not
  table.InsertValueToColumn(7, 0);
  EXPECT_EQ(rowsOf(table), (Rows{{7, 1, 2, 20}, {7, 3, 4, 30}}));
  table.SwapColumn(0, 3);
  table.RemoveColumn(1);
  table.SetColumnToValue(0, 5);
  EXPECT_EQ(rowsOf(table), (Rows{{5, 2, 7}, {5, 4, 7}}));
  table.ExpandTableNumColsTo(2); // wide enough
  table.ExpandTableNumColsTo(4);
  EXPECT_EQ(rowsOf(table), (Rows{{5, 2, 7, 0}, {5, 4, 7, 0}}));
  EXPECT_TRUE(table.IsColumnSpecified(1, 2));
  EXPECT_FALSE(table.IsColumnSpecified(1, 3));
  table.SetColumnToValue(3, std::numeric_limits<double>::quiet_NaN());
  EXPECT_TRUE(table.IsDependentOnColumn(3)); // a NaN is not zero
  table.ClearAll();
  EXPECT_EQ(table.NumRows(), 0);
  EXPECT_FALSE(table.IsDependentOnColumn(0));
}

TEST(DataTable, IndependentTemperatureGoes) {
  auto table = tableOf({1, true, ", DEPENDENCIES=1"}, "1,0,5\n2,,6\n");
  table.RemoveTempColumnIfIndependent();
  EXPECT_EQ(rowsOf(table), (Rows{{1, 5}, {2, 6}}));
  table.RemoveTempColumnIfIndependent(); // gone already
  EXPECT_EQ(table.NumCols(), 2);
}

TEST(DataTable, Appends) {
  auto table = tableOf({1, true}, "1\n");
  const auto wider = tableOf({3}, "4,,6\n");
  table.Append(wider);
  EXPECT_EQ(rowsOf(table), (Rows{{1, 0, 0}, {4, 0, 6}}));
  EXPECT_FALSE(table.IsColumnSpecified(0, 1));
  EXPECT_FALSE(table.IsColumnSpecified(1, 1));
  EXPECT_TRUE(table.IsColumnSpecified(1, 2));
  table.Append(tableOf({2}, "7,8\n"));
  table.Append(table);
  EXPECT_EQ(rowsOf(table),
            (Rows{{1, 0, 0}, {4, 0, 6}, {7, 8, 0}, {1, 0, 0}, {4, 0, 6}, {7, 8, 0}}));
  EXPECT_TRUE(table.IsColumnSpecified(5, 1));
  const std::span<const double> buffer = table.GetDataAsBuffer();
  EXPECT_EQ(buffer.size(), 18u);
  EXPECT_EQ(buffer[8], 0);
  EXPECT_EQ(buffer[7], 8);
}

TEST(DataTable, ProgrammingErrorsAssert) {
  auto table = tableOf({2}, "1,2\n");
  EXPECT_EQ(assertionOf([] { inpS_KeywordDataTable().Read(); }), "m_keyword != 0");
  EXPECT_EQ(assertionOf([&] {
              table.SetDefaultData({1, 2}, {1});
            }),
            "defaultDataCols.Length() == defaultDataVals.Length()");
  EXPECT_EQ(assertionOf([&] { table.Column(-1); }), "colNum >= 0");
  EXPECT_EQ(assertionOf([&] { table.RemoveColumn(2); }), "ncol < m_table.ConstGet(i).Length()");
  EXPECT_EQ(assertionOf([&] { table.Columns(-1, 1); }), "startColumn >= 0");
  EXPECT_EQ(assertionOf([&] { table.Columns(0, 0); }), "length > 0");
  EXPECT_EQ(assertionOf([&] { table.Columns(1, 2); }), "ncol < m_table.ConstGet(i).Length()");
  EXPECT_EQ(
      assertionOf([] { inpS_KeywordDataArrayReader(inp_DataArray()).SetDefaultData({}, {1}); }),
      "m_defaultDataCols.Length() == m_defaultDataVals.Length()");
}

TEST(DataArrayReader, ReadsOneRow) {
  const inp_Keyword keyword = deckKeyword("*ELASTIC\n" + one8 + "\n9,\n");
  inpS_KeywordDataArrayReader reader(keyword.Data());
  EXPECT_EQ(reader.ReadDoubleDataInRow(0, 6, 4), (Doubles{7, 8, 0, 0}));
  EXPECT_EQ(reader.ReadDoubleDataInRow(1, 0, 2), (Doubles{9, 0}));
  EXPECT_EQ(reader.ReadDoubleDataInRow(2, 0, 1), (Doubles{0})); // no such line
  EXPECT_EQ(reader.RowsConsumed(), 2);
  EXPECT_EQ(reader.ReadDoubleData(1, 3, 1, 2), Doubles{}); // no such field
  EXPECT_EQ(reader.RowsConsumed(), 3);
}

TEST(Arrays, Doubles) {
  inpS_ArrayDouble array(3, 1.5);
  array[1] = 2;
  const double values[] = {7, 8};
  inpS_ArrayDouble other(values, 2);
  EXPECT_EQ(array.Slice(1, 2).AsList(), (Doubles{2, 1.5}));
  EXPECT_EQ(array.Slice(3, 0).Size(), 0);
  EXPECT_NE(assertionOf([&] { array.Slice(2, 2); }), "none");
  EXPECT_NE(assertionOf([&] { array[3] = 0; }), "none");
  array.Swap(other);
  EXPECT_TRUE(array.IsEqual(inpS_ArrayDouble(values, 2)));
  EXPECT_FALSE(array.IsEqual(other));
}

TEST(Arrays, TwoDimensions) {
  inpS_2DArrayDouble table(2, 2);
  const double values[] = {1, 2, 3};
  table.setRow(0, inpS_ArrayDouble(values, 3));    // wider than the table
  table.AddToRow(1, 9);                            // behind the two it was made with
  table.setColumn(0, inpS_ArrayDouble(values, 3)); // longer than the table
  table.AddToRow(2, 5);
  table.Get(2, 2) = 6;
  EXPECT_EQ(Doubles(table.Values().begin(), table.Values().end()),
            (Doubles{1, 2, 3, 2, 0, 9, 3, 5, 6}));
  table.AddToRow(0, 4);
  EXPECT_EQ(table.Cols(), 4);
  EXPECT_EQ(table.ConstGet(0, 3), 4);
  EXPECT_EQ(table.Column(2).AsList(), (Doubles{3, 9, 6}));
  table.setRow(0, inpS_ArrayDouble(values, 1));
  table.Resize(1);
  EXPECT_EQ(Doubles(table.Values().begin(), table.Values().end()), (Doubles{1, 0, 0, 0}));
  EXPECT_NE(assertionOf([&] { table.ConstGet(1, 0); }), "none");
}
