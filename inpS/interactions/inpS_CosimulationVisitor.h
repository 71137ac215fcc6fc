#pragma once

#include "inpS/sets/inpS_SetVisitor.h"

// The co-simulation phase. It converts no keyword yet: they are kept as text.
class inpS_CosimulationVisitor : public inpS_SetVisitor {
public:
  using inpS_SetVisitor::inpS_SetVisitor;
};
