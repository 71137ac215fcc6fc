#pragma once

#include "inpS/sets/inpS_SetVisitor.h"

// Interaction properties, read before the interactions. It converts no keyword yet: they are kept
// as text.
class inpS_InteractionPropertyVisitor : public inpS_SetVisitor {
public:
  using inpS_SetVisitor::inpS_SetVisitor;
};
