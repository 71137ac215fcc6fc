#pragma once

#include "inpS/sets/inpS_SetVisitor.h"

// Nodes that other keywords than the mesh's own define. It converts no keyword yet: they are kept
// as text.
class inpS_UserNodeVisitor : public inpS_SetVisitor {
public:
  using inpS_SetVisitor::inpS_SetVisitor;
};
