#pragma once

#include "base/cow_Value.h"
#include "inpS/mesh/inpS_KnownElement.h"
#include "parser/inp_Keyword.h"
#include <span>

class inpS_ElementParameters;
class inp_Visitor;
class KvoObjLabeler;
struct inpS_MeshScope;

// Elements below this ordinal are those of the instance's part, or of what a restart found.
long long inpS_firstOwnElement(const inpS_MeshScope& scope, const KvoObjLabeler& elements);

// Element labels of one keyword that no element may have, or not here.
class inpS_LabelFaults {
public:
  // The next elements of the keyword get these labels. Returns those that are known, in order.
  cow_List<inpS_KnownElement> Define(const inpS_MeshScope& scope, std::span<const int> labels,
                                     KvoObjLabeler& elements);
  // One message for each kind of fault with the labels listed, at the first one's place.
  void Report(const inp_Keyword& keyword, const inpS_ElementParameters& type,
              inp_Visitor& messages);

private:
  cow_List<int> m_notPositive;
  cow_List<int> m_notOwn;
};
