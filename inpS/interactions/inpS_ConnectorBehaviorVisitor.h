#pragma once

#include "inpS/framework/inpS_Inventory.h"
#include "inpS/framework/inpS_Visitor.h"

// The connector behaviours phase. It converts no keyword yet: they are kept as text.
class inpS_ConnectorBehaviorVisitor : public inpS_Visitor {
public:
  explicit inpS_ConnectorBehaviorVisitor(const inpS_Inventory& inventory)
      : m_inventory(inventory) {}

protected:
  const inpS_Inventory& Inventory() const { return m_inventory; }

private:
  const inpS_Inventory& m_inventory;
};
