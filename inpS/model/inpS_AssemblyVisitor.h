#pragma once

#include "database/KvoSimPosition.h"
#include "inpS/framework/inpS_Inventory.h"
#include "inpS/framework/inpS_Ledger.h"
#include "inpS/framework/inpS_Visitor.h"

// The assembly phase: the assembly and its instances with their places in space.
class inpS_AssemblyVisitor : public inpS_Visitor {
public:
  inpS_AssemblyVisitor(const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : m_inventory(inventory), m_ledger(ledger) {}

  void VisitAssembly(const inp_Keyword& keyword) override;
  void VisitEndAssembly(const inp_Keyword& keyword) override;
  void VisitInstance(const inp_Keyword& keyword) override;
  void VisitEndInstance(const inp_Keyword& keyword) override;

private:
  bool Place(const inp_Keyword& keyword);
  bool CheckPlacement(const inp_Keyword& keyword, bool& isWhole);
  void KeepClosing(const inp_Keyword& keyword, KvoSimPosition& open);
  void WritePlacement(const inp_Keyword& keyword, const KvoSimPosition& instance);

  const inpS_Inventory& m_inventory;
  inpS_Ledger& m_ledger;
  KvoSimPosition m_assembly; // that is open
  KvoSimPosition m_instance;
};
