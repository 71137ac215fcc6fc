#pragma once

#include "inpS/forms/inpS_FormVisitor.h"

// What has to do with time and is read before the steps: lists of time points (those that stand in
// a step are the step's), spectra, and what corrects amplitudes; the model of cyclic symmetry
// beside them.
class inpS_TimePointsVisitor : public inpS_FormVisitor {
public:
  inpS_TimePointsVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                         const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::TimePoints, nodes, elements, inventory, ledger) {}

  void VisitAmplitude(const inp_Keyword& keyword) override;

  // Of *TIME POINTS wherever it stands; within its conversion. count: as of inpS_faultOfTimes.
  static cow_String FaultOfTimes(const inp_Keyword& keyword, const KvoSimPosition& line,
                                 long long& count);
  static void CheckTimes(const inp_Keyword& keyword, inp_Visitor& messages);

protected:
  bool MayConvert(const inp_Keyword& keyword, const inpS_Form& form) override;
  cow_String FaultOfLine(const KvoSimPosition& line) override;
  void Converted(const inp_Keyword& keyword, const inpS_Form& form,
                 const KvoSimPosition& record) override;

private:
  void CheckCyclicSymmetry(const inp_Keyword& keyword);

  inp_Keyword m_keyword; // that is being converted
  long long m_times = 0; // that its lines so far make
};
