#pragma once

#include "inpS/keywords/inpS_KwdDataIterator.h"
#include "parser/inp_Keyword.h"

// A line cursor over one keyword's data. Items are counted from 0 within the current line; none of
// them has to be there. It tells nothing of numbers that are nearer to zero than they can be held:
// inpS_reportTinyNumbers does.
class inpS_KeywordDataReader : public inpS_KwdDataIterator {
public:
  explicit inpS_KeywordDataReader(const inp_Keyword& keyword);

  void First() override;
  void Next() override;
  bool IsDone() const override { return m_done; }
  long long Row() const { return m_row; }
  long long Rows() const { return m_rows; }

  bool CheckDataLength(int count) const; // at least so many fields
  bool IsItemNumber(int item) const;
  bool HasItemAsInt(int item) const;
  bool HasItemAsString(int item) const;

  int GetItemAsInt(int item) const;                              // 0 for what is no integer
  cow_String GetItemAsString(int item) const;                    // empty for what is no string
  int GetItemAsIntWithDefault(int item, int defaultValue) const; // the default: no number
  double GetItemAsDouble(int item) const { return GetItemAsDoubleWithDefault(item, 0.0); }
  double GetItemAsDoubleWithDefault(int item, double defaultValue) const;
  void GetItemsAsDoubleWithDefault(int item, double defaultValue, double& x, double& y,
                                   double& z) const;

  // All lines in order. A line gives at most so many values; what stands behind is not read.
  static constexpr int mostDoublesPerLine = 8;
  static constexpr int mostWordsPerLine = 16;
  // What is no number reads as 0.0, an empty field behind a last comma too.
  cow_List<double> ReadDataAsSequenceOfDoubles() const;
  cow_List<int> ReadDataAsSequenceOfInts() const;           // empty fields skipped
  cow_List<cow_String> ReadDataAsSequenceOfStrings() const; // empty last fields skipped
  cow_List<cow_String> ReadDataAsSequenceOfUniqueStrings() const;

  // Every line is a start, an end and an increment: start, start + increment … up to the end. A
  // start equal to the value before it is not repeated. A line whose increment is not positive
  // gives its start. A line that asks for more than ten million values is reported and gives its
  // start.
  cow_List<double> GenerateSequenceFrom3NumberTable() const;

private:
  bool IsWithinLine(int item) const;
  void ReportTooManyValues(double start, double end, double increment) const;
  template <class TakeField> void ForEachField(int mostPerLine, TakeField take) const;

  inp_Keyword m_keyword;
  long long m_rows;
  long long m_row = 0;
  bool m_done;
};
