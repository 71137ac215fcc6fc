#pragma once

#include "inpS/forms/inpS_FormVisitor.h"
#include "inpS/properties/inpS_OrientationSystems.h"

// The orientations phase: *ORIENTATION and *TRANSFORM with the local systems they come to, *NORMAL
// and *NODAL THICKNESS.
class inpS_OrientationVisitor : public inpS_FormVisitor {
public:
  inpS_OrientationVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                          const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::Orientations, nodes, elements, inventory, ledger),
        m_systems(inventory, nodes) {}

protected:
  const inpS_Form* Choose(const inp_Keyword& keyword, const inp_Keyword* parent) override;
  bool MayConvert(const inp_Keyword& keyword, const inpS_Form& form) override;
  void Converted(const inp_Keyword& keyword, const inpS_Form& form,
                 const KvoSimPosition& record) override;

private:
  bool HasAngle(const inp_Keyword& keyword);
  void CheckLocalDirections(const inp_Keyword& keyword);

  inpS_OrientationSystems m_systems;
};
