#pragma once

#include "database/KvoSimTransaction.h"
#include "database/eds_Array.h"
#include "database/eds_MemberSet.h"
#include "inpS/framework/inpS_Inventory.h"
#include "inpS/properties/inpS_OrientationData.h"

// Writes the local systems that orientations come to, one after the other, each naming what the
// deck says of it (the parent). No link leads back: a deck may have a system for every node.
class inpS_OrientationDataWriter {
public:
  using System = inpS_OrientationData::System;

  explicit inpS_OrientationDataWriter(const inpS_Inventory& inventory) : m_inventory(inventory) {}

  void Initialize(KvoSimTransaction& transaction, const KvoObjDocument& document,
                  const KvoSimPosition& parent);
  KvoSimPosition CreateOrientation(System system); // it is the current one from then on
  void SetInstance(const KvoSimPosition& instance);
  void WriteRotationQuaternion(std::span<const double> quat); // x, y, z, w
  void WriteCylindricalAxisOrientationData(const double a[3], const double b[3]);
  void WriteSphericalAxisOrientationData(const double a[3], const double b[3]);
  void SetAdditionalAngle(int axis, double angle); // degrees
  // Axes of elements, 4 values each, beside those that the system has by now ("ORIENT"). The system
  // may have been made before.
  void WriteElementQuaternions(const KvoSimPosition& system, const eds_MemberSet& elements,
                               const eds_ArrayID& quaternions);

private:
  KvoSimPosition WritePoint(const double point[3]);

  const inpS_Inventory& m_inventory;
  KvoObjDocument m_document;
  KvoSimPosition m_parent;
  KvoSimPosition m_currOrientation;
};
