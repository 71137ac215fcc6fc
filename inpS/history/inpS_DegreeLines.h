#pragma once

#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_LineCheck.h"
#include "inpS/history/inpS_LoadedElements.h"
#include "parser/inp_Keyword.h"

// Lines whose second field is a degree of freedom, or a component, that only some numbers can be:
// fluxes are of temperatures, flows of the pore pressure, charges and currents of the potential;
// connectors and velocities have six components. Elements that are no connectors have none, and are
// told.
class inpS_DegreeLines : public inpS_LineCheck {
public:
  inpS_DegreeLines(const inp_Keyword& keyword, eds_RecordKind form);
  static bool Has(eds_RecordKind form); // such lines
  static bool IsOfConnectors(eds_RecordKind form);
  // Of lines of connectors: record is what they become.
  void SetElements(inpS_LoadedElements& elements, const KvoSimPosition& record);

  bool IsSound(const inp_ColumnPiece& piece, Words words) override;
  std::optional<inpS_LineFault> FaultOf(const inpS_LineView& line) override;
  bool IsErrorToRefuse() const override { return true; }

private:
  // The type of the target, or of one of its members, that is no connector; null: none is.
  inpS_LoadedElements::Type NoConnector(int target);

  int m_first;
  int m_last;
  cow_String m_what;
  bool m_needsMagnitude;
  bool m_isRange;                            // another one follows, the last
  inpS_LoadedElements* m_elements = nullptr; // null: any elements or nodes
  bool m_areAllConnectors = true;            // of the mesh
  KvoSimPosition m_record;
  cow_Map<int, inpS_LoadedElements::Type> m_sets; // by place
};
