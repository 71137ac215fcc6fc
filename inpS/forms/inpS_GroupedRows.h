#pragma once

#include "inpS/forms/inpS_ColumnStore.h"
#include "inpS/forms/inpS_ColumnTargets.h"
#include "inpS/forms/inpS_FormTable.h"

// Reads rows in groups: a line with the number of rows alone, then these, as many to a line as
// stand there. A group that cannot be taken costs itself: what follows begins at the next line with
// a single whole number.
class inpS_GroupedRows {
public:
  // The rows of one group, by column; those of reals are empty among the ints, and the others among
  // the reals.
  struct Group {
    long long line = 0; // that tells how many they are
    std::size_t rows = 0;
    cow_List<cow_List<int>> ints;
    cow_List<cow_List<double>> reals;
  };
  // What is wrong with a group of sound rows; empty: nothing.
  using Check = std::function<cow_String(const Group& group)>;

  inpS_GroupedRows(const inp_Keyword& keyword, const eds_FormInfo& form,
                   const KvoSimPosition& record, const inpS_FormNames& names,
                   inp_Visitor& messages);
  void SetCheck(Check check) { m_check = std::move(check); }
  // False when not every group could be taken; each such group has been told.
  bool Read();

private:
  bool TellsRows(long long line) const;
  long long ReadGroup(long long line); // the line behind it
  bool AddRows(long long line, std::size_t wanted);
  bool AddField(long long line, int col, std::size_t column);
  bool Refuse(long long line, int col, const cow_String& fault);
  void StoreGroup();
  void Flush();

  const inp_Keyword& m_keyword;
  const inp_DataArray& m_data;
  const eds_FormInfo& m_form;
  const inpS_FormNames& m_names;
  inp_Visitor& m_messages;
  KvoSimPosition m_record;
  Check m_check;
  inpS_TargetSets m_sets;
  cow_List<std::optional<inpS_ColumnTargets>> m_targets; // by column
  inpS_ColumnStore m_numbers;                            // of groups
  cow_List<inpS_ColumnStore> m_columns;
  Group m_group;  // at hand
  Group m_stored; // what waits to be appended
  cow_List<int> m_storedNumbers;
  int m_groups = 0;
  long long m_rows = 0;
  bool m_isWhole = true;
};
