#include "inpS/driver/inpS_HandledKinds.h"
#include "inpS/history/inpS_InitialConditionVisitor.h"
#include "inpS/properties/inpS_SectionVisitor.h"
#include "inpS/sets/inpS_SurfaceVisitor.h"

// A phase is left out when its visitor converts nothing. One operation is enough for it to run,
// whichever way the visitor came by it.

namespace {

struct Nothing : inpS_SetVisitor {
  using inpS_SetVisitor::inpS_SetVisitor;
};
struct OneOperation : Nothing {
  using Nothing::Nothing;
  void VisitCload(const inp_Keyword&) override {}
};
struct OfItsBase : OneOperation {
  using OneOperation::OneOperation;
};
struct OfTheBasesKind : inpS_Visitor {
  void VisitSystem(const inp_Keyword&) override {}
};
struct OwnWalk : Nothing {
  using Nothing::Nothing;
  void VisitList(inp_KeywordListRef) override {}
};

static_assert(!inpS_convertsAny<Nothing>());
static_assert(inpS_convertsAny<OneOperation>());
static_assert(inpS_convertsAny<OfItsBase>());
static_assert(inpS_convertsAny<OfTheBasesKind>());
static_assert(inpS_convertsAny<OwnWalk>());
static_assert(inpS_convertsAny<inpS_SectionVisitor>()); // its forms do it
static_assert(inpS_convertsAny<inpS_InitialConditionVisitor>());
static_assert(inpS_convertsAny<inpS_SurfaceVisitor>());

} // namespace
