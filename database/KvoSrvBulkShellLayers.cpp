#include "database/KvoSrvBulkShellLayers.h"
#include "base/utl_Assert.h"
#include "database/KvoSimTransaction.h"
#include "database/eds_Array.h"

namespace {

template <class T>
void writeColumn(const KvoSimPosition& layers, int field, const std::vector<T>& values) {
  eds_ArrayWriter writer(layers, eds_valueTypeOf<T>(), 1);
  writer.Append(std::span<const T>(values));
  layers.DataRecord().SetReference(field, writer.Finish().Position());
}

template <class T> std::vector<T> readColumn(const KvoSimPosition& layers, int field) {
  const KvoSimPosition array = layers.DataRecord().GetReference(field);
  eds_ArrayReader reader(eds_ArrayID{array.Store(), array.ID()});
  std::vector<T> values(static_cast<size_t>(reader.Count()));
  reader.ReadPiece(0, std::span(values));
  return values;
}

} // namespace

KvoSrvBulkShellLayers KvoSrvBulkShellLayers::Create(const KvoSrvShellSection& section,
                                                    const std::vector<KvoShellPly>& plies) {
  KvoSimTransaction transaction(section.Position().Context());
  const KvoSimPosition layers =
      section.Position().CreateDataRecord(eds_RecordKind::BulkShellLayers);
  KvoSimDataRecord record = layers.DataRecord();
  record.SetReference(eds_BulkShellLayers_Section, section.Position());
  record.SetInt(eds_BulkShellLayers_Layers, static_cast<int64_t>(plies.size()));
  std::vector<double> thicknesses, angles;
  std::vector<int32_t> points;
  std::vector<int64_t> materials; // 0: none
  for (const KvoShellPly& ply : plies) {
    thicknesses.push_back(ply.thickness);
    angles.push_back(ply.angle);
    points.push_back(ply.integrationPoints);
    materials.push_back(ply.material.ID());
  }
  writeColumn(layers, eds_BulkShellLayers_Thicknesses, thicknesses);
  writeColumn(layers, eds_BulkShellLayers_Angles, angles);
  writeColumn(layers, eds_BulkShellLayers_IntegrationPoints, points);
  writeColumn(layers, eds_BulkShellLayers_Materials, materials);
  transaction.Commit();
  return KvoSrvBulkShellLayers(layers);
}

std::vector<KvoShellPly> KvoSrvBulkShellLayers::Plies() const {
  const auto thicknesses = readColumn<double>(m_position, eds_BulkShellLayers_Thicknesses);
  const auto angles = readColumn<double>(m_position, eds_BulkShellLayers_Angles);
  const auto points = readColumn<int32_t>(m_position, eds_BulkShellLayers_IntegrationPoints);
  const auto materials = readColumn<int64_t>(m_position, eds_BulkShellLayers_Materials);
  utl_ASSERT(angles.size() == thicknesses.size() && points.size() == thicknesses.size() &&
             materials.size() == thicknesses.size());
  std::vector<KvoShellPly> plies(thicknesses.size());
  for (size_t i = 0; i < plies.size(); ++i) {
    plies[i].thickness = thicknesses[i];
    plies[i].angle = angles[i];
    plies[i].integrationPoints = points[i];
    if (materials[i] != 0)
      plies[i].material =
          KvoSimPosition(m_position.Store(), {eds_RecordKind::Material, materials[i]});
  }
  return plies;
}
