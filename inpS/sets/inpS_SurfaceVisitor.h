#pragma once

#include "inpS/sets/inpS_SetVisitor.h"

// The surfaces phase; it lives until the surface nodal areas are written. It converts no keyword
// yet: they are kept as text.
class inpS_SurfaceVisitor : public inpS_SetVisitor {
public:
  using inpS_SetVisitor::inpS_SetVisitor;
};
