#pragma once

#include "inpS/sets/inpS_SetVisitor.h"

// The loads phase. It converts no keyword yet: they are kept as text.
class inpS_LoadVisitor : public inpS_SetVisitor {
public:
  using inpS_SetVisitor::inpS_SetVisitor;
};
