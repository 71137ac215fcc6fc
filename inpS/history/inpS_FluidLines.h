#pragma once

#include "inpS/forms/inpS_FormValue.h"
#include "inpS/forms/inpS_LineCheck.h"
#include "parser/inp_Keyword.h"

// The lines of *FLUID BOUNDARY by surface, by face of an element, or by node.
//
// Decided here: the label of a face of an element ends in the face's number, 1 to 6; a node's line
// tells its magnitude unless a routine of the user does. Without TYPE a line may name any of the
// three. A label that is not known is doubted: of flows there may be more than are listed here.
class inpS_FluidLines : public inpS_LineCheck {
public:
  inpS_FluidLines(const inp_Keyword& keyword, eds_RecordKind form, const inpS_FormNames& names);

  bool IsSound(const inp_ColumnPiece& piece, Words words) override;
  std::optional<inpS_LineFault> FaultOf(const inpS_LineView& line) override;
  bool IsErrorToRefuse() const override { return true; }

private:
  bool IsThere(const cow_String& target) const;
  bool AreKnown(Words words); // labels, and targets where any may be named

  const inpS_FormNames& m_names;
  bool m_isOfAny;
  bool m_isOfFaces;
  bool m_isOfNodes;
  bool m_needsMagnitude;
  std::size_t m_knownLabels = 0; // how many are looked at
  std::size_t m_knownTargets = 0;
  bool m_areKnown = true; // all of them
};
