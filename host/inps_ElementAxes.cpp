#include "host/inps_ElementAxes.h"

#include "database/KvoSimCSet.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimDistribution.h"
#include <algorithm>
#include <cmath>

namespace {

inps_Axes rounded(const inps_PlaceAxes& axes) {
  inps_Axes all;
  for (std::size_t n = 0; n < 3; ++n)
    for (std::size_t i = 0; i < 3; ++i) all[n][i] = static_cast<float>(axes[n][i]);
  return all;
}

} // namespace

// What a local system comes to.
struct inps_ElementAxes::System {
  cow_String name;
  KvoSimPosition instance;
  inps_LocalAxes local;
  bool isByElement = false;
  // Axes by element: positions in a table of quaternions.
  std::vector<std::pair<int32_t, int32_t>> items; // element and place, by element
  std::vector<double> quaternions;

  explicit System(const KvoSimPosition& record) : local(record) {
    const KvoSimDataRecord data = record.DataRecord();
    name = data.ReturnString(eds_LocalSystem_Name);
    instance = data.GetReference(eds_LocalSystem_Instance);
    const KvoSimPosition orient = data.GetReference(eds_LocalSystem_Orient);
    isByElement = !orient.IsNull();
    if (isByElement) ReadItems(orient.AsDistribution());
  }

  void ReadItems(const KvoSimDistribution& orient) {
    for (const int64_t drawer : orient.DrawerIDArray()) {
      const KvoSimCSet over = orient.DrawerCSet(drawer);
      eds_ArrayReader reader(orient.DrawerArray(drawer));
      if (over.IsNull() || reader.Width() != 4 || reader.Count() != over.Set().Size()) continue;
      const auto begin = quaternions.size();
      quaternions.resize(begin + 4 * static_cast<std::size_t>(reader.Count()));
      reader.ReadPiece(0, std::span(quaternions).subspan(begin));
      for (int64_t n = 0; n < reader.Count(); ++n)
        items.emplace_back(over.Set()[n], static_cast<int32_t>(begin / 4 + static_cast<size_t>(n)));
    }
    std::ranges::stable_sort(items, {}, &std::pair<int32_t, int32_t>::first);
  }

  // The last drawer's, where several have the element. False: it has none.
  bool ByElement(int64_t element, inps_Axes& axes) const {
    const auto behind =
        std::ranges::upper_bound(items, element, {}, &std::pair<int32_t, int32_t>::first);
    if (behind == items.begin() || (behind - 1)->first != element) return false;
    const double* q = quaternions.data() + 4 * static_cast<std::size_t>((behind - 1)->second);
    if (!std::isfinite(q[0])) return false;
    axes = rounded(inps_axesOfQuaternion(q));
    return true;
  }
};

inps_ElementAxes::inps_ElementAxes(const inps_FlatMesh& mesh, const KvoObjDocument& document)
    : m_mesh(mesh) {
  for (const KvoSimPosition& record : document.Context().GetRecords(eds_RecordKind::LocalSystem)) {
    const KvoSimPosition given = record.DataRecord().GetReference(eds_LocalSystem_Given);
    if (!given.IsNull()) m_systems[given.Object().Packed()].emplace_back(record);
  }
}

inps_ElementAxes::~inps_ElementAxes() = default;

// Of a part's orientation that of the instance, else the only one.
const inps_ElementAxes::System* inps_ElementAxes::SystemOf(const KvoSimPosition& assignment) {
  const KvoSimDataRecord record = assignment.DataRecord();
  const KvoSimPosition orientation = record.GetReference(eds_SectionAssignment_Orientation);
  if (orientation.IsNull()) return nullptr;
  const KvoSimPosition instance = record.GetReference(eds_SectionAssignment_Instance);
  const auto systems = m_systems.find(orientation.Object().Packed());
  const System* found = nullptr;
  if (systems != m_systems.end())
    for (const System& system : systems->second)
      if (system.instance == instance || system.instance.IsNull()) found = &system;
  if (found && (found->isByElement || found->local.IsKnown())) return found;
  if (std::ranges::find(m_unknown, orientation.Name()) == m_unknown.end())
    m_unknown.push_back(orientation.Name());
  return nullptr;
}

void inps_ElementAxes::Give(int64_t element, const inps_Axes& axes) {
  if (element < 0 || element >= m_mesh.ElementCount()) return;
  if (m_place.empty()) m_place.assign(static_cast<std::size_t>(m_mesh.ElementCount()), -1);
  if (m_axes.empty() || m_axes.back() != axes) m_axes.push_back(axes);
  m_place[static_cast<std::size_t>(element)] = static_cast<int32_t>(m_axes.size() - 1);
}

inps_Vector inps_ElementAxes::MiddleOf(int64_t element) {
  if (m_coordinates.empty()) {
    m_coordinates.resize(3 * static_cast<std::size_t>(m_mesh.NodeCount()));
    m_mesh.ReadCoordinates(0, m_coordinates);
  }
  const std::size_t number = m_mesh.ElementBlockOf(element);
  const inps_FlatMesh::Elements& of = m_mesh.ElementBlocks()[number];
  std::vector<int32_t> nodes(static_cast<std::size_t>(of.block.width));
  m_mesh.ReadConnectivity(number, element - of.block.flatFirst, nodes);
  inps_Vector middle{};
  int count = 0;
  for (const int32_t node : nodes) {
    if (node < 0) continue;
    for (std::size_t i = 0; i < 3; ++i)
      middle[i] += m_coordinates[3 * static_cast<std::size_t>(node) + i];
    ++count;
  }
  for (double& coordinate : middle) coordinate /= std::max(1, count);
  return middle;
}

void inps_ElementAxes::Add(const KvoSimPosition& assignment, int64_t first, int64_t count) {
  const System* system = SystemOf(assignment);
  const int64_t end = std::min(first + count, m_mesh.ElementCount());
  for (int64_t element = std::max<int64_t>(0, first); element < end; ++element) {
    inps_Axes axes{}; // a later section takes away what an earlier one gave
    inps_PlaceAxes there;
    if (system && system->isByElement)
      system->ByElement(element, axes);
    else if (system && system->local.At(
                           system->local.IsConstant() ? inps_Vector{} : MiddleOf(element), there))
      axes = rounded(there);
    if (axes != inps_Axes{})
      Give(element, axes);
    else if (!m_place.empty())
      m_place[static_cast<std::size_t>(element)] = -1;
  }
}

inps_Axes inps_ElementAxes::Of(int64_t element) const {
  const int32_t place = m_place.empty() ? -1 : m_place[static_cast<std::size_t>(element)];
  return place < 0 ? inps_Axes{} : m_axes[static_cast<std::size_t>(place)];
}
