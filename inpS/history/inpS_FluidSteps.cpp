#include "inpS/history/inpS_FluidSteps.h"
#include "database/schema/eds_FormKind.h"
#include <algorithm>

bool inpS_FluidSteps::Has(const KvoSimPosition& step) {
  if (!m_hasAny || step.IsNull()) return false;
  if (m_step.IsNull() || !(m_step == step)) {
    m_step = step;
    m_isFluid = std::ranges::any_of(
        step.FollowMap(eds_Member::StepKeywords),
        [](const KvoSimPosition& keyword) { return keyword.IsA(eds_FormKind::Cfd); });
  }
  return m_isFluid;
}
