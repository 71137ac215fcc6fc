#pragma once

#include "database/KvoSimPosition.h"
#include "inpS/framework/inpS_Inventory.h"
#include "inpS/framework/inpS_Visitor.h"

// The assembly phase: the assembly and its instances with their places in space.
class inpS_AssemblyVisitor : public inpS_Visitor {
public:
  explicit inpS_AssemblyVisitor(const inpS_Inventory& inventory) : m_inventory(inventory) {}

  void VisitAssembly(const inp_Keyword& keyword) override;
  void VisitInstance(const inp_Keyword& keyword) override;

private:
  bool CheckPlacement(const inp_Keyword& keyword);
  void WritePlacement(const inp_Keyword& keyword, const KvoSimPosition& instance);

  const inpS_Inventory& m_inventory;
};
