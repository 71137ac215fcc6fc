#pragma once

#include "inpS/sets/inpS_SetVisitor.h"

// Lists of time points, read before the steps. It converts no keyword yet: they are kept as text.
class inpS_TimePointsVisitor : public inpS_SetVisitor {
public:
  using inpS_SetVisitor::inpS_SetVisitor;
};
