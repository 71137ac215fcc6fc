#pragma once

#include "database/KvoSimPosition.h"

// Tells of the step that is open whether it computes a flow; it looks once into each step.
class inpS_FluidSteps {
public:
  explicit inpS_FluidSteps(bool hasAny) : m_hasAny(hasAny) {}
  bool Has(const KvoSimPosition& step);

private:
  bool m_hasAny;
  KvoSimPosition m_step;
  bool m_isFluid = false;
};
