#pragma once

#include "inpS/sets/inpS_SetVisitor.h"

// The orientations phase. It converts no keyword yet: they are kept as text.
class inpS_OrientationVisitor : public inpS_SetVisitor {
public:
  using inpS_SetVisitor::inpS_SetVisitor;
};
