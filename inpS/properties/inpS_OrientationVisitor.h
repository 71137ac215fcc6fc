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

  // Orientations that vary over elements, by name, and the distribution that gives their points or
  // their angle; empty: the elements' nodes do.
  const cow_Map<cow_String, cow_String>& ConstGetOri2DistNameMap() const { return m_ori2DistName; }

protected:
  const inpS_Form* Choose(const inp_Keyword& keyword, const inp_Keyword* parent) override;
  bool MayConvert(const inp_Keyword& keyword, const inpS_Form& form) override;
  void Converted(const inp_Keyword& keyword, const inpS_Form& form,
                 const KvoSimPosition& record) override;
  bool ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                   const KvoSimPosition& record) override;
  cow_String FaultOfLine(const KvoSimPosition& line) override;

private:
  // Whether the field is no name, or that of a distribution; what is missing is told.
  bool HasDistribution(const inp_Keyword& keyword, long long row, int col);
  void NoteDistributions(const inp_Keyword& keyword, const KvoSimPosition& record);
  bool CheckAngles(const inp_Keyword& keyword, const KvoSimPosition& record);
  void CheckLocalDirections(const inp_Keyword& keyword);

  inpS_OrientationSystems m_systems;
  cow_Map<cow_String, cow_String> m_ori2DistName;
};
