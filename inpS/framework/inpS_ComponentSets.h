#pragma once

#include "database/KvoObjDocument.h"
#include "database/KvoSimCSet.h"

// The sets of vector and quaternion components of one document, each made on first request.
class inpS_ComponentSets {
public:
  explicit inpS_ComponentSets(const KvoObjDocument& document) : m_document(document) {}

  const KvoSimCSetID& Vector(int dimensions); // C_1 … C_dimensions, 1 to 3
  const KvoSimCSetID& Quaternion();           // C_QUAT1 … C_QUAT4

private:
  KvoObjDocument m_document;
  KvoSimCSetID m_vectors[3];
  KvoSimCSetID m_quaternion;
};
