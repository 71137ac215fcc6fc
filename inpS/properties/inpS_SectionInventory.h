#pragma once

#include "inpS/sets/inpS_SetVisitor.h"

// What the sections phase must know of all sections beforehand. It converts no keyword yet: they
// are kept as text.
class inpS_SectionInventory : public inpS_SetVisitor {
public:
  using inpS_SetVisitor::inpS_SetVisitor;
};
