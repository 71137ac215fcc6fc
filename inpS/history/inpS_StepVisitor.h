#pragma once

#include "inpS/sets/inpS_SetVisitor.h"

// The steps phase. It converts no keyword yet: they are kept as text.
class inpS_StepVisitor : public inpS_SetVisitor {
public:
  using inpS_SetVisitor::inpS_SetVisitor;
};
