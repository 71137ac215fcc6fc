#include "inpS/keywords/inpS_KeywordDataReader.h"
#include "base/utl_Number.h"
#include "inpS/messages/inpS_MessageContainer.h"
#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_set>

inpS_KeywordDataReader::inpS_KeywordDataReader(const inp_Keyword& keyword)
    : m_keyword(keyword), m_rows(keyword.Data().Rows()), m_done(m_rows == 0) {}

void inpS_KeywordDataReader::First() {
  m_row = 0;
  m_done = m_rows == 0;
}

void inpS_KeywordDataReader::Next() {
  if (m_done) return;
  ++m_row;
  m_done = m_row >= m_rows;
}

bool inpS_KeywordDataReader::CheckDataLength(int count) const {
  return !m_done && m_keyword.Data().Cols(m_row) >= count;
}

bool inpS_KeywordDataReader::IsWithinLine(int item) const {
  return item >= 0 && !m_done && item < m_keyword.Data().Cols(m_row);
}

bool inpS_KeywordDataReader::IsItemNumber(int item) const {
  return IsWithinLine(item) && m_keyword.Data().IsNumber(m_row, item);
}

bool inpS_KeywordDataReader::HasItemAsInt(int item) const {
  return IsWithinLine(item) && m_keyword.Data().IsInteger(m_row, item);
}

bool inpS_KeywordDataReader::HasItemAsString(int item) const {
  return IsWithinLine(item) && m_keyword.Data().Type(m_row, item) == inp_FieldType::String;
}

int inpS_KeywordDataReader::GetItemAsInt(int item) const {
  return HasItemAsInt(item) ? m_keyword.Data().AsInt(m_row, item) : 0;
}

cow_String inpS_KeywordDataReader::GetItemAsString(int item) const {
  return HasItemAsString(item) ? m_keyword.Data().AsString(m_row, item) : cow_String();
}

int inpS_KeywordDataReader::GetItemAsIntWithDefault(int item, int defaultValue) const {
  return IsItemNumber(item) ? m_keyword.Data().AsInt(m_row, item) : defaultValue;
}

double inpS_KeywordDataReader::GetItemAsDoubleWithDefault(int item, double defaultValue) const {
  if (!IsWithinLine(item)) return defaultValue;
  const utl_Field field = utl_classifyField(m_keyword.Data().FieldText(m_row, item));
  return field.IsNumber() ? field.real : defaultValue;
}

void inpS_KeywordDataReader::GetItemsAsDoubleWithDefault(int item, double defaultValue, double& x,
                                                         double& y, double& z) const {
  x = GetItemAsDoubleWithDefault(item, defaultValue);
  y = GetItemAsDoubleWithDefault(item + 1, defaultValue);
  z = GetItemAsDoubleWithDefault(item + 2, defaultValue);
}

template <class TakeField>
void inpS_KeywordDataReader::ForEachField(int mostPerLine, TakeField take) const {
  const inp_DataArray& data = m_keyword.Data();
  for (long long row = 0; row < m_rows; ++row) {
    const int cols = data.Cols(row);
    for (int col = 0; col < std::min(cols, mostPerLine); ++col) take(row, col, col + 1 == cols);
  }
}

cow_List<double> inpS_KeywordDataReader::ReadDataAsSequenceOfDoubles() const {
  cow_List<double> values;
  values.reserve(static_cast<std::size_t>(m_rows)); // at least one per line, as a rule
  ForEachField(mostDoublesPerLine, [&](long long row, int col, bool) {
    values.push_back(m_keyword.Data().AsDouble(row, col));
  });
  return values;
}

cow_List<int> inpS_KeywordDataReader::ReadDataAsSequenceOfInts() const {
  cow_List<int> values;
  ForEachField(mostWordsPerLine, [&](long long row, int col, bool) {
    const inp_DataArray& data = m_keyword.Data();
    if (data.HasValue(row, col)) values.push_back(data.AsInt(row, col));
  });
  return values;
}

cow_List<cow_String> inpS_KeywordDataReader::ReadDataAsSequenceOfStrings() const {
  cow_List<cow_String> words;
  ForEachField(mostWordsPerLine, [&](long long row, int col, bool last) {
    const inp_DataArray& data = m_keyword.Data();
    if (!last || data.HasValue(row, col)) words.push_back(data.AsString(row, col));
  });
  return words;
}

cow_List<cow_String> inpS_KeywordDataReader::ReadDataAsSequenceOfUniqueStrings() const {
  cow_List<cow_String> words = ReadDataAsSequenceOfStrings();
  std::unordered_set<cow_String> seen;
  std::erase_if(words, [&](const cow_String& word) { return !seen.insert(word).second; });
  return words;
}

void inpS_KeywordDataReader::ReportTooManyValues(double start, double end, double increment) const {
  inpS_Message message(m_keyword, "Going from %1$s to %2$s in steps of %3$s gives too many values; "
                                  "only the first is used.");
  message.AppendArgList({start, end, increment});
  message.SetLineOffset(static_cast<int>(m_row + 1));
  inpS_MessageContainer::Instance().AddMessage(std::move(message));
}

cow_List<double> inpS_KeywordDataReader::GenerateSequenceFrom3NumberTable() const {
  constexpr double tolerance = std::numeric_limits<double>::epsilon();
  constexpr double mostValuesPerLine = 1e7; // a slip of the pen, not a list
  cow_List<double> values;
  for (inpS_KeywordDataReader line(m_keyword); !line.IsDone(); line.Next()) {
    double start, end, increment;
    line.GetItemsAsDoubleWithDefault(0, 0.0, start, end, increment);
    if (values.empty() || !(std::fabs(values.back() - start) <= tolerance)) values.push_back(start);
    if (!(increment > 0)) continue; // would never arrive
    const double limit = end + increment / 100;
    if ((limit - start) / increment > mostValuesPerLine) {
      line.ReportTooManyValues(start, end, increment);
      continue;
    }
    for (long long step = 1;; ++step) {
      const double value = start + static_cast<double>(step) * increment;
      if (!(value < limit)) break;
      values.push_back(value);
    }
  }
  return values;
}
