#pragma once

#include "inpS/sets/inpS_SetVisitor.h"

// Whether a visitor converts anything: an operation of its own, or a walk of its own. Its type
// tells, so nobody keeps a list: the type of &Visitor::VisitNset names the class that declares it.
// What the bases do on the way (the place in the deck, the coordinate system) serves operations.
namespace inpS_handledKinds {

template <class Argument> constexpr bool isOwn(void (inp_Visitor::*)(Argument)) {
  return false;
}
template <class Argument> constexpr bool isOwn(void (inpS_Visitor::*)(Argument)) {
  return false;
}
template <class Argument> constexpr bool isOwn(void (inpS_SetVisitor::*)(Argument)) {
  return false;
}
template <class Visitor, class Argument> constexpr bool isOwn(void (Visitor::*)(Argument)) {
  return true;
}

} // namespace inpS_handledKinds

template <class Visitor> constexpr bool inpS_convertsAny() {
  using inpS_handledKinds::isOwn;
  bool any =
      isOwn(&Visitor::Visit) || isOwn(&Visitor::VisitList) || isOwn(&Visitor::VisitListAndReport);
#define INP_KEYWORD(Suffix, ...) any = any || isOwn(&Visitor::Visit##Suffix);
#include "parser/inp_keywords.def"
  return any;
}
