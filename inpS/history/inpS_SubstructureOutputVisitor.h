#pragma once

#include "inpS/sets/inpS_SetVisitor.h"

// Recovery files of substructures, part of a restart. It converts no keyword yet: they are kept as
// text.
class inpS_SubstructureOutputVisitor : public inpS_SetVisitor {
public:
  using inpS_SetVisitor::inpS_SetVisitor;
};
