#pragma once

#include "inpS/forms/inpS_ColumnStore.h"
#include "inpS/forms/inpS_ColumnTargets.h"
#include "inpS/forms/inpS_ColumnWords.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/forms/inpS_FormValue.h"
#include "inpS/forms/inpS_LineCheck.h"
#include <optional>

// Reads the lines of a keyword into the bulk columns of its record: a million lines cost some typed
// arrays, and neither a record nor a look-up of a name each. Targets become ordinals of the owner
// that is open (flat ones, or a part's own), or -1 for the first set that the record names, -2 for
// the second, and so on.
class inpS_ColumnReader {
public:
  inpS_ColumnReader(const inp_Keyword& keyword, const eds_FormInfo& form,
                    const KvoSimPosition& record, const inpS_FormNames& names,
                    inp_Visitor& messages, inpS_LineCheck* check = nullptr);

  // Whether a line that is refused, for whatever reason, is an error; else it is as the check says.
  void SetErrorToRefuse(bool isError) { m_isErrorToRefuse = isError; }
  // False when not all of a line could be taken; each such line has been told.
  bool Read();
  // The data lines that are no rows, in order.
  const cow_List<long long>& Refused() const { return m_refused; }

private:
  using Piece = inp_ColumnPiece;

  void Translate(const Piece& piece) const; // on any thread: labels to ordinals
  void Take(const Piece& piece);
  bool FindFaults(const Piece& piece);
  // What the lines that the bulk decode leaves to others say, slot by slot; false: no row.
  bool TakeOdd(const Piece& piece, std::size_t slot, long long row);
  void Drop(const Piece& piece, std::span<const char> isFaulty);
  int SlotOf(std::size_t column, long long row);      // of a field that is no real
  int ColOf(std::size_t column, long long row) const; // where the line has it
  void MarkRefused(const Piece& piece);
  std::optional<inpS_LineFault> CheckedFaultOf(long long row);
  void TellFault(long long row, const inpS_LineFault& fault);
  bool IsNumberOfWords(std::size_t column, const inp_DataArray& data, long long row) const;
  void TellFaults();
  cow_String FaultOf(long long row, int& col);
  int SurplusOf(long long row) const;
  bool GoesOn(long long row) const; // with the values of the line before
  cow_String TextOfMissing(const eds_FormItem& item, const cow_String& name, bool isNumber) const;

  const inp_Keyword& m_keyword;
  const eds_FormInfo& m_form;
  const inpS_FormNames& m_names;
  KvoSimPosition m_record;
  inp_Visitor& m_messages;
  cow_List<inp_ColumnType> m_types;
  inpS_TargetSets m_sets;
  cow_List<std::optional<inpS_ColumnTargets>> m_targets; // by column
  cow_List<std::optional<inpS_ColumnWords>> m_words;     // of columns that hold words
  cow_List<inpS_ColumnStore> m_columns;
  inpS_LineCheck* m_check; // null: none beyond the types
  bool m_isErrorToRefuse;
  bool m_endsInTexts; // behind reals, whose place they may take
  cow_List<long long> m_refused;
  cow_List<char> m_isFaulty; // of a piece's slots
  cow_List<int> m_line;      // slots of the line at hand
  long long m_rows = 0;
  bool m_isWhole = true;
  bool m_hasFaults = false; // that the check has found
};
