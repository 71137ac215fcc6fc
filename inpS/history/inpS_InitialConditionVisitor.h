#pragma once

#include "inpS/sets/inpS_SetVisitor.h"

// The initial conditions phase. It converts no keyword yet: they are kept as text.
class inpS_InitialConditionVisitor : public inpS_SetVisitor {
public:
  using inpS_SetVisitor::inpS_SetVisitor;
};
