#pragma once

#include "inpS/sets/inpS_SetVisitor.h"

// First half of the distributions phase: the tables. It converts no keyword yet: they are kept as
// text.
class inpS_DistributionTableVisitor : public inpS_SetVisitor {
public:
  using inpS_SetVisitor::inpS_SetVisitor;
};
