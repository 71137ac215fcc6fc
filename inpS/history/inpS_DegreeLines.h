#pragma once

#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_LineCheck.h"
#include "parser/inp_Keyword.h"

// Lines whose second field is a degree of freedom, or a component, that only some numbers can be:
// fluxes are of temperatures, flows of the pore pressure, charges and currents of the potential;
// connectors and velocities have six components.
class inpS_DegreeLines : public inpS_LineCheck {
public:
  inpS_DegreeLines(const inp_Keyword& keyword, eds_RecordKind form);
  static bool Has(eds_RecordKind form); // such lines

  bool IsSound(const inp_ColumnPiece& piece, Words words) override;
  std::optional<inpS_LineFault> FaultOf(const inpS_LineView& line) override;
  bool IsErrorToRefuse() const override { return true; }

private:
  int m_first;
  int m_last;
  cow_String m_what;
  bool m_needsMagnitude;
};
