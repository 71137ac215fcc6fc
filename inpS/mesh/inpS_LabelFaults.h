#pragma once

#include "inpS/mesh/inpS_MeshScope.h"

class inpS_ElementParameters;
class KvoObjLabeler;

// Element labels of one keyword that no element may have, or that an element has already.
class inpS_LabelFaults {
public:
  // The next elements of the keyword get these labels.
  void Define(const inpS_MeshScope& scope, std::span<const int> labels, KvoObjLabeler& elements);
  // One message for each kind of fault with the labels listed, at the first one's place.
  void Report(const inp_Keyword& keyword, const inpS_ElementParameters& type,
              const inpS_MeshScope& scope, const KvoObjLabeler& elements, inp_Visitor& messages);

private:
  void AddRepeated(int label, int ordinal); // of the element that has the label
  void ReportRepeated(const inp_Keyword& keyword, const inp_ElementForm& form,
                      const inpS_MeshScope& scope, const KvoObjLabeler& elements,
                      inp_Visitor& messages) const;

  cow_List<int> m_notPositive;
  cow_List<int> m_repeated;
  int m_firstDefinition = 0; // of the first repeated label
};
