#include "host/inps_ElementAxes.h"

#include "database/KvoSimCSet.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimDistribution.h"
#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

using Vector = std::array<double, 3>;

Vector minus(const Vector& a, const Vector& b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
double dot(const Vector& a, const Vector& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
Vector cross(const Vector& a, const Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
Vector scaled(const Vector& a, double by) {
  return {a[0] * by, a[1] * by, a[2] * by};
}
// Nothing of a vector that is as good as zero beside `scale`.
bool normalize(Vector& a, double scale) {
  const double length = std::sqrt(dot(a, a));
  if (!(length > 1e-12 * scale)) return false;
  a = scaled(a, 1 / length);
  return true;
}

inps_Axes axesOf(const Vector& x, const Vector& y, const Vector& z) {
  inps_Axes axes;
  const Vector* all[] = {&x, &y, &z};
  for (std::size_t n = 0; n < 3; ++n)
    for (std::size_t i = 0; i < 3; ++i) axes[n][i] = static_cast<float>((*all[n])[i]);
  return axes;
}

// Turned by the quaternion x, y, z, w, the global axes are the local ones.
inps_Axes axesOf(const double q[4]) {
  const double x = q[0], y = q[1], z = q[2], w = q[3];
  return axesOf({1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w)},
                {2 * (x * y - z * w), 1 - 2 * (x * x + z * z), 2 * (y * z + x * w)},
                {2 * (x * z + y * w), 2 * (y * z - x * w), 1 - 2 * (x * x + y * y)});
}

Vector pointOf(const KvoSimPosition& distribution) {
  Vector point{};
  if (distribution.IsNull()) return point;
  for (const int64_t drawer : distribution.AsDistribution().DrawerIDArray()) {
    eds_ArrayReader reader(distribution.AsDistribution().DrawerArray(drawer));
    if (reader.Count() * reader.Width() == 3) reader.ReadPiece(0, std::span<double>(point));
  }
  return point;
}

} // namespace

// What a local system comes to.
struct inps_ElementAxes::System {
  enum class Kind : unsigned char { Constant, Cylindrical, Spherical, ByElement, Unknown };

  Kind kind = Kind::Unknown;
  cow_String name;
  KvoSimPosition instance;
  inps_Axes constant{};
  Vector a{};
  Vector axis{}; // from a on, a unit vector
  std::size_t turnAxis = 0;
  double turn = 0; // radians
  // Axes by element: positions in a table of quaternions.
  std::vector<std::pair<int32_t, int32_t>> items; // element and place, by element
  std::vector<double> quaternions;

  explicit System(const KvoSimPosition& record) {
    const KvoSimDataRecord data = record.DataRecord();
    name = data.ReturnString(eds_LocalSystem_Name);
    instance = data.GetReference(eds_LocalSystem_Instance);
    const cow_String system = data.ReturnString(eds_LocalSystem_System);
    const KvoSimPosition orient = data.GetReference(eds_LocalSystem_Orient);
    if (!orient.IsNull()) {
      kind = Kind::ByElement;
      ReadItems(orient.AsDistribution());
    } else if (system == "CYLINDRICAL" || system == "SPHERICAL") {
      a = pointOf(data.GetReference(eds_LocalSystem_PointA));
      axis = minus(pointOf(data.GetReference(eds_LocalSystem_PointB)), a);
      if (!normalize(axis, 0)) return;
      kind = system == "SPHERICAL" ? Kind::Spherical : Kind::Cylindrical;
      turnAxis = static_cast<std::size_t>(
          std::clamp<int64_t>(data.GetInt64(eds_LocalSystem_Axis), 1, 3) - 1);
      turn = data.GetDouble(eds_LocalSystem_Angle) * std::numbers::pi / 180;
    } else if (system == "RECTANGULAR" || system == "Z RECTANGULAR") {
      double q[4];
      for (int i = 0; i < 4; ++i) q[i] = data.GetDouble(eds_LocalSystem_QuaternionX + i);
      constant = axesOf(q);
      kind = Kind::Constant;
    }
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
    axes = axesOf(q);
    return true;
  }

  // On the axis, or in the centre, there is no direction away from it.
  bool InPlace(const Vector& place, inps_Axes& axes) const {
    Vector away = minus(place, a);
    const double distance = std::sqrt(dot(away, away));
    Vector e[3];
    if (kind == Kind::Cylindrical) { // away from the axis, about it, along it
      e[2] = axis;
      e[0] = minus(away, scaled(axis, dot(away, axis)));
      if (!normalize(e[0], distance)) return false;
      e[1] = cross(e[2], e[0]);
    } else { // away from the centre, along the circles of latitude, along the meridian
      e[0] = away;
      if (!normalize(e[0], 0)) return false;
      e[1] = cross(axis, e[0]);
      if (!normalize(e[1], 1)) return false;
      e[2] = cross(e[0], e[1]);
    }
    if (turn != 0) {
      Vector& u = e[(turnAxis + 1) % 3];
      Vector& v = e[(turnAxis + 2) % 3];
      const Vector before = u;
      for (std::size_t i = 0; i < 3; ++i) {
        u[i] = std::cos(turn) * before[i] + std::sin(turn) * v[i];
        v[i] = std::cos(turn) * v[i] - std::sin(turn) * before[i];
      }
    }
    axes = axesOf(e[0], e[1], e[2]);
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
  if (found && found->kind != System::Kind::Unknown) return found;
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

std::array<double, 3> inps_ElementAxes::MiddleOf(int64_t element) {
  if (m_coordinates.empty()) {
    m_coordinates.resize(3 * static_cast<std::size_t>(m_mesh.NodeCount()));
    m_mesh.ReadCoordinates(0, m_coordinates);
  }
  const std::size_t number = m_mesh.ElementBlockOf(element);
  const inps_FlatMesh::Elements& of = m_mesh.ElementBlocks()[number];
  std::vector<int32_t> nodes(static_cast<std::size_t>(of.block.width));
  m_mesh.ReadConnectivity(number, element - of.block.flatFirst, nodes);
  Vector middle{};
  int count = 0;
  for (const int32_t node : nodes) {
    if (node < 0) continue;
    for (std::size_t i = 0; i < 3; ++i)
      middle[i] += m_coordinates[3 * static_cast<std::size_t>(node) + i];
    ++count;
  }
  return count == 0 ? middle : scaled(middle, 1.0 / count);
}

void inps_ElementAxes::Add(const KvoSimPosition& assignment, int64_t first, int64_t count) {
  const System* system = SystemOf(assignment);
  const int64_t end = std::min(first + count, m_mesh.ElementCount());
  for (int64_t element = std::max<int64_t>(0, first); element < end; ++element) {
    inps_Axes axes{}; // a later section takes away what an earlier one gave
    if (system && system->kind == System::Kind::Constant)
      axes = system->constant;
    else if (system && system->kind == System::Kind::ByElement)
      system->ByElement(element, axes);
    else if (system)
      system->InPlace(MiddleOf(element), axes);
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
