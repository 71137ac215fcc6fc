#pragma once

#include "inpS/forms/inpS_ColumnStore.h"
#include "inpS/forms/inpS_ColumnTargets.h"
#include "inpS/forms/inpS_FormTable.h"

// Reads lines that may go on: a target and seven values, then eight values a line. A form of such
// lines has a column of its own for each of the first values, or none, and a repeated one for the
// others; a row is as long as the longest one.
//
// Decided here, for no keyword says how many values there are: behind a line of eight fields one
// that begins with a number that is no whole one goes on with its values, as labels are whole.
// Behind a full line of state variables one that begins with a whole number does so, too, while
// there are fewer values than variables; where nobody knows how many there are, behind one of a
// set.
class inpS_WrappedRows {
public:
  inpS_WrappedRows(const inp_Keyword& keyword, const eds_FormInfo& form,
                   const KvoSimPosition& record, const inpS_FormNames& names,
                   inp_Visitor& messages);

  // The form that takes the keyword's lines: this one, or that of lines that go on.
  static const inpS_Form* FormOf(const inp_Keyword& keyword, const inpS_Form& form);

  void SetErrorToRefuse(bool isError) { m_isErrorToRefuse = isError; }
  // As all rows have them; 0: not known.
  void SetValuesPerRow(long long count) { m_perRow = static_cast<std::size_t>(count); }
  // False when not all of a row could be taken; each such row has been told.
  bool Read();

private:
  using Piece = inp_ColumnPiece;
  static constexpr std::size_t kFields = 8;
  struct Line {
    int target = inp_blankInt;
    double first = inp_blankReal; // the field of the target, as a number
    double values[kFields - 1];
    int wordAt = -1; // among the values; -1: all are numbers
    int surplusAt = -1;
    long long row = -1;
    bool isBehindFields = false; // of the line above, all eight, blank ones too
    bool IsNumber() const { return !inp_isBlankReal(first); }
    bool IsReal() const { return IsNumber() && target == inp_blankInt; }
    bool IsFull() const { return !inp_isBlankReal(values[kFields - 2]); }
  };
  enum class Pass : unsigned char { Measure, Store, Tell };

  void Stream(Pass pass);
  void Take(const Piece& piece);
  Line ReadLine(long long row);
  bool HasAllFields(long long row) const; // the line above it that is not blank
  static bool IsBlank(const Line& line);  // of its values
  bool GoesOn(const Line& line) const;
  void AddLine(const Line& line);
  void CloseRow();
  bool IsRefused() const;
  void StoreRow();
  void Flush();
  void TellRow();
  void TellFault(long long row, int col, cow_String text, bool isRefused);

  const inp_Keyword& m_keyword;
  const eds_FormInfo& m_form;
  const inpS_FormNames& m_names;
  KvoSimPosition m_record;
  inp_Visitor& m_messages;
  inpS_TargetSets m_sets;
  inpS_ColumnTargets m_targets;
  std::size_t m_singles; // values with a column of their own
  bool m_isErrorToRefuse = false;
  std::size_t m_perRow = 0;
  bool m_needsValue; // nothing but the lines gives one
  Pass m_pass = Pass::Measure;
  // The row at hand.
  bool m_isOpen = false;
  Line m_head;
  bool m_isFull = false; // its last line
  cow_List<double> m_values;
  long long m_wordRow = -1; // the line with a word among its values
  int m_wordAt = -1;
  long long m_surplusRow = -1;
  int m_surplusAt = -1;

  std::size_t m_width = 0; // values of the longest row
  long long m_rows = 0;
  bool m_isWhole = true;
  bool m_hasFaults = false;
  cow_List<inpS_ColumnStore> m_columns;
  cow_List<int> m_rowTargets;            // of the piece
  cow_List<cow_List<double>> m_rowReals; // by column behind the target
};
