#include "inpS/keywords/inpS_KeywordDataTable.h"
#include "base/utl_Assert.h"
#include "inpS/keywords/inpS_ArrayDouble.h"
#include "inpS/keywords/inpS_KeywordReader.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "inpS/messages/inpS_MessageContainer.h"
#include "parser/inp_BulkDecode.h"
#include <algorithm>

namespace {

// Beyond, the number is a slip of the pen: nobody numbers a thousand fields, and every row would be
// filled up with zeros for them.
constexpr int mostDependencies = 1000;

int dependenciesOf(const inp_Keyword& keyword) {
  const inp_Item* item = keyword.Find("dependencies");
  if (!item) return 0;
  const int count = item->AsInt();
  if (item->IsWhole() && count >= 0 && count <= mostDependencies) return count;
  if (!keyword.LeaveUnread("dependencies")) return 0;
  inpS_MessageContainer::Instance().AddMessage(
      inpS_Message(keyword, inpS_messageText(inpS_app_InvalidParameterValue, {"dependencies"}) +
                                " It must be a whole number from 0 to " +
                                std::to_string(mostDependencies) + "; it is read as 0."));
  return 0;
}

// Until something is missing all of it was given.
std::optional<inpS_FlatTable<char>> allGivenIn(const inpS_FlatTable<double>& table) {
  return inpS_FlatTable<char>(table.Rows(), table.Cols(), 1);
}

std::size_t index(int i) {
  return static_cast<std::size_t>(i);
}

} // namespace

inpS_KeywordDataTable::inpS_KeywordDataTable(const inp_Keyword& keyword, int dataColumns,
                                             long long firstDataLine, bool temperature)
    : m_keyword(keyword), m_dataColumns(dataColumns), m_dependencies(dependenciesOf(keyword)),
      m_temperature(temperature), m_firstDataLine(firstDataLine) {
  m_table.Reset(index(m_dataColumns + m_dependencies + (m_temperature ? 1 : 0)));
}

void inpS_KeywordDataTable::SetDefaultData(const cow_List<int>& defaultDataCols,
                                           const cow_List<double>& defaultDataVals) {
  if (defaultDataCols.size() != defaultDataVals.size())
    utl_assertionFailed("defaultDataCols.Length() == defaultDataVals.Length()");
  m_defaultDataCols = defaultDataCols;
  m_defaultDataVals = defaultDataVals;
}

int inpS_KeywordDataTable::MinimumPerRecord() const {
  const bool mayLackTemperature = m_temperature && m_dependencies == 0 && NumCols() >= 1;
  return mayLackTemperature ? NumCols() - 1 : NumCols();
}

// Many rows of one line each, all of them with the same number of values: the form of big tables.
// False, and nothing read, when the lines are any other.
bool inpS_KeywordDataTable::ReadAlikeRows() {
  constexpr long long fewRows = 32; // not worth starting for
  const inp_DataArray& data = m_keyword.Data();
  const bool oneLineEach = NumCols() <= inpS_KeywordDataArrayReader::mostFieldsPerLine;
  if (!oneLineEach || data.Rows() < fewRows || m_firstDataLine > 0) return false;
  const int given = data.Cols(0);
  if (given < std::max(1, MinimumPerRecord()) || given > NumCols()) return false;
  utl_Buffer<double> values;
  if (!inp_decodeRows(data, given, values)) return false;
  const auto missing = index(NumCols() - given);
  m_table.Reset(index(given));
  m_table.Assign(values);
  if (missing == 0) return true;
  m_given = allGivenIn(m_table);
  m_table.InsertColumns(index(given), missing, 0.0);
  m_given->InsertColumns(index(given), missing, 0);
  return true;
}

void inpS_KeywordDataTable::Read(int firstColumn) {
  if (!m_keyword.Body()) utl_assertionFailed("m_keyword != 0");
  m_given.reset();
  m_lines.clear();
  m_unread.clear();
  if (firstColumn == 0 && m_defaultDataCols.empty() && ReadAlikeRows()) {
    m_tempDependent = m_temperature && IsDependentOnColumn(m_dataColumns);
    return;
  }
  const inp_DataArray& data = m_keyword.Data();
  long long rows = data.Rows();
  while (rows > m_firstDataLine + 1 && inpS_KeywordReader::IsBlankRow(data, rows - 1)) --rows;

  inpS_KeywordDataArrayReader reader(data, rows);
  reader.SetDefaultData(m_defaultDataCols, m_defaultDataVals);
  const int cols = NumCols();
  const int minimum = MinimumPerRecord();
  const long long linesPerRecord = std::max(1, (cols + 7) / 8);
  m_table.Reset(index(cols));
  m_given.reset();
  if (rows > m_firstDataLine)
    m_table.Reserve(static_cast<std::size_t>((rows - m_firstDataLine) / linesPerRecord + 1));

  for (long long row = m_firstDataLine; row < rows;) {
    const long long consumed = reader.RowsConsumed();
    const cow_List<double>& record =
        reader.ReadDoubleData(row, row == m_firstDataLine ? firstColumn : 0, minimum, cols);
    if (reader.RowsConsumed() == consumed) break;
    if (linesPerRecord > 1) m_lines.push_back(row);
    row += reader.RowsConsumed() - consumed;
    AppendRecord(record, reader.Given());
  }
  m_unread = reader.Unread();
  m_tempDependent = m_temperature && IsDependentOnColumn(m_dataColumns);
}

void inpS_KeywordDataTable::AppendRecord(const cow_List<double>& record,
                                         const cow_List<char>& given) {
  const std::size_t count = std::min(record.size(), m_table.Cols());
  const bool allGiven =
      count == m_table.Cols() && std::find(given.begin(), given.end(), 0) == given.end();
  if (!allGiven && !m_given) m_given = allGivenIn(m_table);
  std::copy_n(record.begin(), count, m_table.AppendRow(0.0).begin());
  if (m_given) std::copy_n(given.begin(), count, m_given->AppendRow(0).begin());
}

void inpS_KeywordDataTable::CheckColumn(int colNum) const {
  if (colNum < 0) utl_assertionFailed("colNum >= 0");
  if (colNum >= NumCols()) utl_assertionFailed("ncol < m_table.ConstGet(i).Length()");
}

double inpS_KeywordDataTable::Value(int row, int col) const {
  utl_ASSERT(row >= 0 && row < NumRows());
  CheckColumn(col);
  return m_table.At(index(row), index(col));
}

inpS_ArrayDouble inpS_KeywordDataTable::Column(int colNum) const {
  CheckColumn(colNum);
  inpS_ArrayDouble column(NumRows(), 0.0);
  for (int row = 0; row < NumRows(); ++row) column[row] = m_table.At(index(row), index(colNum));
  return column;
}

cow_List<double> inpS_KeywordDataTable::Columns(int startColumn, int length) const {
  if (startColumn < 0) utl_assertionFailed("startColumn >= 0");
  if (length <= 0) utl_assertionFailed("length > 0");
  CheckColumn(startColumn + length - 1);
  cow_List<double> values;
  values.reserve(m_table.Rows() * index(length));
  for (std::size_t row = 0; row < m_table.Rows(); ++row) {
    const auto columns = m_table.Row(row).subspan(index(startColumn), index(length));
    values.insert(values.end(), columns.begin(), columns.end());
  }
  return values;
}

bool inpS_KeywordDataTable::IsDependentOnColumn(int col) const {
  if (col < 0 || col >= NumCols()) return false;
  for (std::size_t row = 0; row < m_table.Rows(); ++row)
    if (m_table.At(row, index(col)) != 0.0) return true; // so is a NaN
  return false;
}

bool inpS_KeywordDataTable::IsColumnSpecified(int row, int col) const {
  if (row < 0 || row >= NumRows() || col < 0 || col >= NumCols()) return false;
  return !m_given || m_given->At(index(row), index(col)) != 0;
}

inpS_KeywordDataTable::Place inpS_KeywordDataTable::PlaceOf(int row, int col) const {
  const auto lineOf = [this](int n) {
    return index(n) < m_lines.size() ? m_lines[index(n)] : m_firstDataLine + n;
  };
  const inp_DataArray& data = m_keyword.Data();
  const long long end = row + 1 < NumRows() ? lineOf(row + 1) : data.Rows();
  Place place{std::min(lineOf(row), data.Rows() - 1)};
  int before = 0; // values on the lines passed
  for (long long line = lineOf(row); line < end; ++line) {
    int fields = data.Cols(line);
    if (fields > 0 && data.IsNone(line, fields - 1)) --fields; // behind the last comma is none
    fields = std::min(fields, inpS_KeywordDataArrayReader::mostFieldsPerLine);
    if (col - before < fields) return {line, col - before};
    before += fields;
    if (m_lines.empty()) break;
  }
  return place;
}

// Columns keep their meaning by position: data, temperature, field variables. Whoever moves them
// about otherwise than by the temperature operations takes the meaning over.
void inpS_KeywordDataTable::RemoveColumn(int colNum) {
  CheckColumn(colNum);
  m_table.RemoveColumn(index(colNum));
  if (m_given) m_given->RemoveColumn(index(colNum));
}

void inpS_KeywordDataTable::KeepColumns(std::span<const char> keep) {
  utl_ASSERT(keep.size() == m_table.Cols());
  m_table.KeepColumns(keep);
  if (m_given) m_given->KeepColumns(keep);
}

void inpS_KeywordDataTable::RemoveTempColumnIfIndependent() {
  if (!m_temperature || m_tempDependent) return;
  RemoveColumn(m_dataColumns);
  m_temperature = false;
}

void inpS_KeywordDataTable::ExpandTableNumColsTo(int cols) {
  if (cols <= NumCols()) return;
  if (!m_given) m_given = allGivenIn(m_table);
  const std::size_t present = m_table.Cols();
  m_table.InsertColumns(present, index(cols) - present, 0.0);
  m_given->InsertColumns(present, index(cols) - present, 0);
}

void inpS_KeywordDataTable::SetColumnToValue(int colNum, double value) {
  CheckColumn(colNum);
  m_table.FillColumn(index(colNum), value);
}

void inpS_KeywordDataTable::SetUnspecified(int colNum, double value) {
  CheckColumn(colNum);
  for (int row = 0; row < NumRows(); ++row)
    if (!IsColumnSpecified(row, colNum)) m_table.At(index(row), index(colNum)) = value;
}

void inpS_KeywordDataTable::InsertValueToColumn(double value, int colNum) {
  if (colNum != NumCols()) CheckColumn(colNum);
  m_table.InsertColumns(index(colNum), 1, value);
  if (m_given) m_given->InsertColumns(index(colNum), 1, 1);
}

void inpS_KeywordDataTable::SwapColumn(int a, int b) {
  CheckColumn(a);
  CheckColumn(b);
  m_table.SwapColumns(index(a), index(b));
  if (m_given) m_given->SwapColumns(index(a), index(b));
}

void inpS_KeywordDataTable::Append(const inpS_KeywordDataTable& other) {
  inpS_KeywordDataTable rows = other; // *this may be the other, and the other may be narrower
  rows.ExpandTableNumColsTo(NumCols());
  ExpandTableNumColsTo(rows.NumCols());
  if (rows.m_given && !m_given) m_given = allGivenIn(m_table);
  if (m_given && !rows.m_given) rows.m_given = allGivenIn(rows.m_table);
  m_table.Append(rows.m_table);
  if (m_given) m_given->Append(*rows.m_given);
  m_tempDependent = m_temperature && IsDependentOnColumn(m_dataColumns);
}

void inpS_KeywordDataTable::ClearAll() {
  m_table.Reset(m_table.Cols());
  m_given.reset();
  m_unread.clear();
  m_tempDependent = false;
}

cow_List<const double*> inpS_KeywordDataTable::GetDataAsPtr() const {
  cow_List<const double*> rows;
  rows.reserve(m_table.Rows());
  for (std::size_t row = 0; row < m_table.Rows(); ++row) rows.push_back(m_table.Row(row).data());
  return rows;
}
