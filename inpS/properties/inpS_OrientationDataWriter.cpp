#include "inpS/properties/inpS_OrientationDataWriter.h"
#include "base/utl_Assert.h"
#include "database/KvoObjMesh.h"
#include "database/KvoSimCSet.h"
#include "database/KvoSimTransfer.h"
#include "database/schema/eds_FormKind.h"

void inpS_OrientationDataWriter::Initialize(KvoSimTransaction& transaction,
                                            const KvoObjDocument& document,
                                            const KvoSimPosition& parent) {
  utl_ASSERT(transaction.ContextID().store == document.ContextID().store);
  m_document = document;
  m_parent = parent;
  m_currOrientation = {};
}

KvoSimPosition inpS_OrientationDataWriter::CreateOrientation(System system) {
  m_currOrientation = m_parent.CreateDataRecord(eds_RecordKind::LocalSystem);
  KvoSimDataRecord record = m_currOrientation.DataRecord();
  if (!m_parent.IsA(eds_FormKind::Transform))
    record.SetString(eds_LocalSystem_Name, m_parent.Name());
  record.SetReference(eds_LocalSystem_Given, m_parent);
  record.SetString(eds_LocalSystem_System, inpS_OrientationData::NameOf(system));
  return m_currOrientation;
}

void inpS_OrientationDataWriter::SetInstance(const KvoSimPosition& instance) {
  m_currOrientation.DataRecord().SetReference(eds_LocalSystem_Instance, instance);
}

void inpS_OrientationDataWriter::WriteRotationQuaternion(std::span<const double> quat) {
  if (quat.size() != 4) utl_assertionFailed("quat.Length() == 4");
  KvoSimDataRecord record = m_currOrientation.DataRecord();
  for (int i = 0; i < 4; ++i)
    record.SetDouble(eds_LocalSystem_QuaternionX + i, quat[static_cast<std::size_t>(i)]);
}

void inpS_OrientationDataWriter::WriteCylindricalAxisOrientationData(const double a[3],
                                                                     const double b[3]) {
  KvoSimDataRecord record = m_currOrientation.DataRecord();
  record.SetReference(eds_LocalSystem_PointA, WritePoint(a));
  record.SetReference(eds_LocalSystem_PointB, WritePoint(b));
}

// The same two fields: the centre, and a point of the polar axis.
void inpS_OrientationDataWriter::WriteSphericalAxisOrientationData(const double a[3],
                                                                   const double b[3]) {
  WriteCylindricalAxisOrientationData(a, b);
}

void inpS_OrientationDataWriter::SetAdditionalAngle(int axis, double angle) {
  if (m_currOrientation.IsNull()) utl_assertionFailed("! m_currOrientation.IsNull()");
  KvoSimDataRecord record = m_currOrientation.DataRecord();
  record.SetInt(eds_LocalSystem_Axis, axis);
  record.SetDouble(eds_LocalSystem_Angle, angle);
}

KvoSimPosition inpS_OrientationDataWriter::WritePoint(const double point[3]) {
  const KvoSimDistribution distribution = m_document.CreateTypedDistribution(
      eds_DataType::Coordinates, KvoSimGrid{m_document.GetComponentCollection()},
      KvoSimRangeType(eds_ValueType::Double, 1));
  KvoSimTransfer twrite(distribution);
  twrite.SetMakeNewDrawer(m_inventory.VectorComponents3DCSet());
  twrite.SetBuffer(std::span<const double>(point, 3));
  if (twrite.RequiredBufferSize() != 3 * static_cast<int64_t>(sizeof(double)))
    utl_assertionFailed("twrite.RequiredBufferSize() == 3*sizeof(double)");
  twrite.ExecMake();
  return distribution.Position();
}

void inpS_OrientationDataWriter::WriteElementQuaternions(const KvoSimPosition& system,
                                                         const eds_MemberSet& elements,
                                                         const eds_ArrayID& quaternions) {
  const KvoSimCSet quatSet(m_inventory.QuaternionComponentsCSet());
  if (quatSet.Size() != 4) utl_assertionFailed("quatSet.Size() == 4");
  KvoSimDataRecord record = system.DataRecord();
  KvoSimCollection all = m_document.GetMesh().GetElementCollection();
  if (record.IsMemberNull(eds_LocalSystem_Orient)) {
    const KvoSimPosition orient =
        m_document
            .CreateTypedDistribution(eds_DataType::General,
                                     KvoSimGrid{all, m_document.GetComponentCollection()},
                                     KvoSimRangeType(eds_ValueType::Double, 4))
            .Position();
    orient.DataRecord().SetString(eds_Distribution_Name, "ORIENT");
    record.SetReference(eds_LocalSystem_Orient, orient);
  }
  record.GetReference(eds_LocalSystem_Orient)
      .AsDistribution()
      .AddDrawer(all.CreateCSet(elements).ID(), quaternions);
}
