#include "host/inps_NodeAxes.h"

#include "database/KvoSimCSet.h"
#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_Form.h"
#include "database/schema/eds_FormKind.h"
#include "host/inps_ExportGrid.h"
#include <algorithm>

inps_NodeAxes::inps_NodeAxes(const inps_FlatMesh& mesh, const KvoObjDocument& document)
    : m_mesh(mesh) {
  for (const KvoSimPosition& record : document.Context().GetRecords(eds_RecordKind::LocalSystem)) {
    const KvoSimDataRecord data = record.DataRecord();
    const KvoSimPosition given = data.GetReference(eds_LocalSystem_Given);
    if (given.IsNull() || !given.IsA(eds_FormKind::Transform)) continue;
    const auto named = [&](const char* column) {
      return given.DataRecord().GetReference(eds_formField(eds_FormKind::Transform, column));
    };
    const KvoSimPosition instance = named("nset_instance");
    const eds_MemberSet nodes = inps_flatMembers(
        named("nset"), instance.IsNull() ? data.GetReference(eds_LocalSystem_Instance) : instance);
    const inps_LocalAxes axes(record);
    if (!axes.IsKnown()) continue;
    m_systems.push_back(axes);
    m_systemOf.resize(static_cast<std::size_t>(mesh.NodeCount()), -1);
    for (int64_t n = 0; n < nodes.Size(); ++n)
      if (nodes[n] >= 0 && nodes[n] < mesh.NodeCount())
        m_systemOf[static_cast<std::size_t>(nodes[n])] = static_cast<int32_t>(m_systems.size() - 1);
  }
}

void inps_NodeAxes::MakeGlobal(int32_t node, std::span<double, 3> vector) const {
  const int32_t number = m_systemOf.empty() ? -1 : m_systemOf[static_cast<std::size_t>(node)];
  if (number < 0) return;
  const inps_LocalAxes& system = m_systems[static_cast<std::size_t>(number)];
  inps_Vector place{};
  if (!system.IsConstant()) m_mesh.ReadCoordinates(node, place);
  inps_PlaceAxes axes;
  if (!system.At(place, axes)) return;
  inps_Vector global{};
  for (std::size_t axis = 0; axis < 3; ++axis)
    for (std::size_t i = 0; i < 3; ++i) global[i] += vector[axis] * axes[axis][i];
  std::ranges::copy(global, vector.begin());
}
