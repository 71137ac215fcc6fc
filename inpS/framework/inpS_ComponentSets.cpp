#include "inpS/framework/inpS_ComponentSets.h"
#include "base/utl_Assert.h"
#include "inpS/keywords/inpS_Collection.h"
#include "inpS/keywords/inpS_componentUtilities.h"

const KvoSimCSetID& inpS_ComponentSets::Vector(int dimensions) {
  utl_ASSERT(dimensions > 0 && dimensions < 4);
  KvoSimCSetID& set = m_vectors[dimensions - 1];
  if (set.IsNull()) set = inpS_Collection::VectorComponentsCSet(m_document, dimensions);
  return set;
}

const KvoSimCSetID& inpS_ComponentSets::Quaternion() {
  if (m_quaternion.IsNull()) m_quaternion = inpS_getQuaternionComponentCSet(m_document);
  return m_quaternion;
}
