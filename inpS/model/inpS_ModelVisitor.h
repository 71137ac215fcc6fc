#pragma once

#include "database/KvoSimPosition.h"
#include "inpS/framework/inpS_Inventory.h"
#include "inpS/framework/inpS_Ledger.h"
#include "inpS/framework/inpS_Visitor.h"

// The model phase: the deck's parts become part records of the model.
class inpS_ModelVisitor : public inpS_Visitor {
public:
  inpS_ModelVisitor(const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : m_inventory(inventory), m_ledger(ledger) {}

  void VisitHeading(const inp_Keyword& keyword) override;
  void VisitPart(const inp_Keyword& keyword) override;
  void VisitEndPart(const inp_Keyword& keyword) override;

private:
  const inpS_Inventory& m_inventory;
  inpS_Ledger& m_ledger;
  bool m_hasHeading = false;
  KvoSimPosition m_headingPart; // what the heading's line says beside its name
  KvoSimPosition m_part;        // that is open
};
