#pragma once

#include "inpS/sets/inpS_SetVisitor.h"

// Thicknesses given by node, read before the sections. It converts no keyword yet: they are kept as
// text.
class inpS_NodalThicknessVisitor : public inpS_SetVisitor {
public:
  using inpS_SetVisitor::inpS_SetVisitor;
};
