#pragma once

#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_LineCheck.h"
#include "parser/inp_Keyword.h"

// Lines that prescribe one value of a target: one that ends before it is told, for it says 0.
class inpS_ValueLines : public inpS_LineCheck {
public:
  // dimensions: of space; a rotation in three has an axis
  explicit inpS_ValueLines(eds_RecordKind form, int dimensions = 0);
  // Such lines, whose values neither a routine of the user nor a file gives.
  static bool Has(const inp_Keyword& keyword, eds_RecordKind form);

  bool IsSound(const inp_ColumnPiece& piece, Words words) override;
  std::optional<inpS_LineFault> FaultOf(const inpS_LineView& line) override;
  bool IsErrorToRefuse() const override { return true; }

private:
  bool m_isOfModes;
  bool m_hasAxis;
  int m_column;
  cow_String m_what;
  bool m_isAny;
  bool m_hasProperty; // in the place of the value, or behind it
};
