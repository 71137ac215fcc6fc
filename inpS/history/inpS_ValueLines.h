#pragma once

#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_LineCheck.h"
#include "inpS/history/inpS_LoadedElements.h"
#include "parser/inp_Keyword.h"

// Lines that prescribe one value of a target: one that ends before it is told, for it says 0.
class inpS_ValueLines : public inpS_LineCheck {
public:
  // dimensions: of space; a rotation in three has an axis
  explicit inpS_ValueLines(eds_RecordKind form, int dimensions = 0);
  // Such lines, whose values neither a routine of the user nor a file gives.
  static bool Has(const inp_Keyword& keyword, eds_RecordKind form);

  // Of lines about a node of an element, by its number in there: record is what they become.
  void SetElements(inpS_LoadedElements& elements, const KvoSimPosition& record) {
    m_elements = &elements;
    m_record = record;
  }

  bool IsSound(const inp_ColumnPiece& piece, Words words) override;
  std::optional<inpS_LineFault> FaultOf(const inpS_LineView& line) override;
  bool IsErrorToRefuse() const override { return true; }

private:
  // The type of the target, or of one of its members, that has fewer nodes; null: none has.
  inpS_LoadedElements::Type TypeOfFewer(int target, int nodes);

  inpS_LoadedElements* m_elements = nullptr; // null: lines are about no nodes of elements
  KvoSimPosition m_record;
  cow_Map<int, cow_List<inpS_LoadedElements::Type>> m_sets; // by place
  bool m_hasAxis;
  int m_column;
  cow_String m_what;
  bool m_isAny;
  bool m_isFraction;
  int m_numbers = -1; // the column of what is numbered; -1: nothing is
  cow_String m_one;
  cow_String m_all;
};
