#pragma once

#include "inpS/forms/inpS_LineCheck.h"
#include "parser/inp_Keyword.h"

// The lines of *FLUID BOUNDARY by surface, by face of an element, or by node.
//
// Decided here: the label of a face of an element ends in the face's number, 1 to 6; a node's line
// tells its magnitude unless a routine of the user does.
class inpS_FluidLines : public inpS_LineCheck {
public:
  inpS_FluidLines(const inp_Keyword& keyword, eds_RecordKind form);

  bool IsSound(const inp_ColumnPiece& piece, Words words) override;
  std::optional<inpS_LineFault> FaultOf(const inpS_LineView& line) override;
  bool IsErrorToRefuse() const override { return true; }

private:
  bool m_isOfFaces;
  bool m_isOfNodes;
  bool m_needsMagnitude;
};
