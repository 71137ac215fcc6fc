#pragma once

#include "inpS/sets/inpS_SetVisitor.h"

// Second half of the distributions phase: the values. It converts no keyword yet: they are kept as
// text.
class inpS_DistributionVisitor : public inpS_SetVisitor {
public:
  using inpS_SetVisitor::inpS_SetVisitor;
};
