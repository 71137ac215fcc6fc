#pragma once

#include "inpS/forms/inpS_ColumnStore.h"
#include "inpS/forms/inpS_ColumnTargets.h"
#include "inpS/properties/inpS_DistributionTable.h"

// Reads the lines of a *DISTRIBUTION by element or node into the bulk columns of its record: label
// or set, then the values of all components. The line without a label or set gives the values of
// all others, and is kept apart. A row of more than eight fields goes on over further lines.
class inpS_DistributionReader {
public:
  inpS_DistributionReader(const inp_Keyword& keyword, const eds_FormInfo& form,
                          const KvoSimPosition& record, const inpS_FormNames& names,
                          const inpS_DistributionTable& table, inp_Visitor& messages);

  // How an undefined label is told: in an instance, with its name.
  void SetInstance(const cow_String& instance) { m_instance = instance; }
  // False when a row could not be taken; each such row has been told.
  bool Read();

private:
  using Piece = inp_ColumnPiece;
  enum class Fault : char { None, Target, Values, Word, TooMany };
  // The rows that some lines make, on their way into the columns.
  struct Rows {
    cow_List<int> targets; // inp_blankInt: of all others
    cow_List<double> values;
    cow_List<Fault> faults;
    cow_List<long long> lines; // in which each begins; where it is known
    void Clear();
  };
  // A line as fields: its target, and what it has as numbers.
  struct Line {
    int target = inp_blankInt;
    double first = inp_blankReal; // the field of the target, as a number
    std::span<const double> values;
    std::size_t surplus = 0; // fields behind those that a line has
    long long row = -1;
    Fault fault = Fault::None;
  };

  cow_List<inp_ColumnType> LineTypes() const;
  void Take(const Piece& piece);
  void TakePlain(const Piece& piece);
  void TakeLines(const Piece& piece);
  Fault ReadOdd(long long row, int& target, double& first, std::span<double> values);
  void AddLine(const Line& line);
  void BeginRow(const Line& line);
  void CloseRow();
  void Store(const Rows& rows);
  void StoreSound(const Rows& rows);
  void Append(std::span<const int> targets, std::span<const double> values);
  void TellFaults();
  void TellRows();
  void TellTarget(long long row);
  void TellMissing(std::size_t n);
  void TellField(long long row, Fault fault);
  void TellUndefined();
  bool IsWrapped() const;

  const inp_Keyword& m_keyword;
  const eds_FormInfo& m_form;
  KvoSimPosition m_record;
  inp_Visitor& m_messages;
  cow_String m_instance;
  cow_List<cow_String> m_components;
  inpS_TargetSets m_sets;
  inpS_ColumnTargets m_targets;
  inpS_ColumnStore m_targetColumn;
  inpS_ColumnStore m_valueColumn;
  Rows m_rows;         // of the piece at hand
  bool m_open = false; // the last row goes on
  int m_target = inp_blankInt;
  cow_List<double> m_values; // of the open row
  std::size_t m_surplus = 0; // of the line last read by the general road
  Fault m_fault = Fault::None;
  long long m_line = -1;
  long long m_count = 0; // rows that are stored
  cow_List<double> m_defaults;
  long long m_defaultRow = -1;
  bool m_isWhole = true;
  bool m_hasDefault = false; // of what has been told
  cow_List<cow_String> m_undefined;
  long long m_firstUndefined = -1;
};
