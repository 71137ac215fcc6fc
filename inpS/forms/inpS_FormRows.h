#pragma once

#include "database/KvoSimPosition.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/keywords/inpS_KeywordDataTable.h"

// The rows of a keyword whose form has a table: read, held against what the columns may be, and
// stored as the property table of a record.
class inpS_FormRows {
public:
  // False when they cannot be this form's: that is told, but for a keyword without rows.
  // columns: instead of those of the form, which has none.
  bool Read(const inp_Keyword& keyword, const inpS_Form& form, inp_Visitor& messages,
            cow_List<inpS_TableColumns::Column> columns = {});
  // Nothing when there are no rows.
  void Store(const KvoSimPosition& record);
  const inpS_KeywordDataTable& Table() const { return m_table; }
  bool HasRows() const { return m_table.NumRows() > 0; } // until they are stored

private:
  cow_List<inpS_TableColumns::Column> m_columns;
  inpS_KeywordDataTable m_table;
};
