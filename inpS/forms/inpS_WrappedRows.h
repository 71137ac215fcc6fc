#pragma once

#include "inpS/forms/inpS_ColumnStore.h"
#include "inpS/forms/inpS_ColumnTargets.h"
#include "inpS/forms/inpS_ColumnWords.h"
#include "inpS/forms/inpS_FormTable.h"

// Reads lines that may go on: a target, a point's number or a rebar's name where the form has a
// column of it, and values up to the eighth field, then eight values a line. A form of such lines
// has a column of its own for each of the first values, or none, and a repeated one for the others;
// a row is as long as the longest one.
//
// Decided here, for no keyword says how many values there are: behind a line of eight fields one
// that begins with a number that is no whole one goes on with its values, as labels are whole.
// Behind a full line of state variables one that begins with a whole number does so, too, while
// there are fewer values than variables; where nobody knows how many there are, behind one of a
// set. What has the name of a rebar in its second field begins a row.
//
// Where the form says how many of the repeated values a line has, the keyword says how many lines a
// row has. One that begins with a name, or with a label and has more fields than such a line,
// begins a row all the same: the one before is short of lines then.
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
  // Of a form that tells how many values a line has; `said` is by which parameter.
  void SetLinesPerRow(long long count, cow_String said);
  // False when not all of a row could be taken; each such row has been told.
  bool Read();

private:
  using Piece = inp_ColumnPiece;
  static constexpr std::size_t kFields = 8;
  struct Line {
    int target = inp_blankInt;
    double first = inp_blankReal; // the field of the target, as a number
    int key = inp_blankInt;       // the second field: a word, or a whole number
    double values[kFields - 1];   // the others, the second one among them
    int wordAt = -1;              // behind the second field of forms with a key; -1: no word
    int surplusAt = -1;
    long long row = -1;          // -1: not known
    bool isBehindFields = false; // of the line above, all eight, blank ones too
    bool IsNumber() const { return !inp_isBlankReal(first); }
    bool IsReal() const { return IsNumber() && target == inp_blankInt; }
    bool IsName() const { return !IsNumber() && target != inp_blankInt; }
    bool IsFull() const { return !inp_isBlankReal(values[kFields - 2]); }
    bool HasWord() const { return key != inp_blankInt && inp_isBlankReal(values[0]); }
  };
  enum class Pass : unsigned char { Measure, Store, Tell };

  bool IsCounted() const { return m_perLine > 0; } // the lines of a row
  void Stream(Pass pass);
  void Take(const Piece& piece);
  Line ReadLine(long long row);
  bool HasAllFields(long long row) const; // the line above it that is not blank
  static bool IsBlank(const Line& line);  // of its values
  // Behind so many fields of a line; -1: nothing.
  static int FieldBehind(const Line& line, std::size_t fields);
  bool GoesOn(const Line& line) const;
  void AddLine(const Line& line);
  int KeyOf(const Line& head);
  void CloseRow();
  bool IsShort() const { return IsCounted() && m_lines < m_linesPerRow; }
  bool HasKeyFault() const;
  bool IsRefused() const;
  cow_String FaultOfKey() const;
  void StoreRow();
  int StoredKey();
  void Flush();
  void TellRow();
  cow_String FaultOfTarget() const;
  void TellFault(long long row, int col, cow_String text, bool isRefused);

  const inp_Keyword& m_keyword;
  const eds_FormInfo& m_form;
  const inpS_FormNames& m_names;
  KvoSimPosition m_record;
  inp_Visitor& m_messages;
  inpS_TargetSets m_sets;
  inpS_ColumnTargets m_targets;
  const eds_FormItem* m_keyItem; // null: values stand behind the target
  bool m_hasWords;               // the key is a text
  inpS_ColumnWords m_seen;       // words, in whatever order
  inpS_ColumnWords m_words;      // of the rows that are stored, in their order
  cow_List<int> m_wordOf;        // by place among those seen; 0: not known yet
  std::size_t m_keys;            // columns of it
  std::size_t m_singles;         // values with a column of their own
  std::size_t m_perLine;         // repeated ones; 0: up to the eighth field
  std::size_t m_fields;          // of the longest line
  bool m_isErrorToRefuse = false;
  std::size_t m_perRow = 0;
  long long m_linesPerRow = 1; // of those that are counted
  cow_String m_said;
  bool m_needsValue; // nothing but the lines gives one
  Pass m_pass = Pass::Measure;
  // The row at hand.
  bool m_isOpen = false;
  Line m_head;
  int m_key = inp_blankInt;
  bool m_isFull = false; // its last line
  long long m_lines = 0;
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
  cow_List<int> m_rowTargets; // of the piece
  cow_List<int> m_rowKeys;
  cow_List<cow_List<double>> m_rowReals; // by column behind these
};
