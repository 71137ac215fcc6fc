#include "inpS/properties/inpS_OrientationSystems.h"
#include "database/KvoSimTransaction.h"
#include <algorithm>

using Data = inpS_OrientationData;

namespace {

bool hasPoints(const Data& data) {
  return data.system != Data::System::User && (data.definition == Data::Definition::Coordinates ||
                                               data.definition == Data::Definition::Nodes);
}

} // namespace

cow_String inpS_OrientationSystems::Locate(const Data& data, const Place& place,
                                           double points[3][3]) {
  std::copy(&data.points[0][0], &data.points[0][0] + 9, &points[0][0]);
  const bool areNodes = data.definition == Data::Definition::Nodes;
  for (int n = 0; areNodes && n < Data::kPoints; ++n)
    if (const Data::Node& node = data.nodes[n];
        node.isGiven &&
        !m_places.ReadCoordinatesForNodeLabel(place.owner, node.instance, node.label, points[n]))
      return "node " + (node.instance.empty() ? "" : node.instance + ".") +
             std::to_string(node.label) + " does not exist";
  if (!data.IsRectangular()) {
    // Nodes of the flat mesh stand where their instance has them.
    for (int n = 0; n < 2; ++n) {
      if (!areNodes) place.system.TransformPoint(points[n][0], points[n][1], points[n][2]);
      if (place.turns) inpS_OrientationAxes::ZeroSmallerThanTolerance(points[n]);
    }
    return {};
  }
  for (int n = 0; n < 2; ++n) {
    double* to = points[n];
    for (int i = 0; i < 3; ++i) to[i] -= points[2][i];
    inpS_OrientationAxes::Normalize(to);
    if (!place.turns) continue;
    if (!areNodes) place.system.TransformVector(to[0], to[1], to[2]);
    inpS_OrientationAxes::ZeroSmallerThanTolerance(to);
  }
  return {};
}

cow_String inpS_OrientationSystems::MakeAxes(const Data& data, double points[3][3],
                                             inpS_OrientationAxes& axes) {
  if (!data.IsRectangular()) {
    for (int i = 0; i < 3; ++i)
      if (points[0][i] != points[1][i]) return {};
    return "points A and B are the same";
  }
  const bool isZ = data.system == Data::System::ZRectangular;
  if (const char* fault = inpS_OrientationAxes::Make(points[0], points[1], isZ, axes)) return fault;
  axes.Rotate(data.axis, data.angle);
  return {};
}

cow_String inpS_OrientationSystems::FaultOf(const Data& data, const KvoSimPosition& owner) {
  if (!hasPoints(data)) return {};
  double points[3][3];
  const Place place{m_places.OwnerOfLabels(owner), {}, {}, false};
  const cow_String fault = Locate(data, place, points);
  inpS_OrientationAxes axes;
  return fault.empty() ? MakeAxes(data, points, axes) : fault;
}

void inpS_OrientationSystems::Write(const Data& data, const double points[3][3],
                                    const inpS_OrientationAxes& axes) {
  if (data.IsRectangular() && hasPoints(data))
    return m_writer.WriteRotationQuaternion(axes.Quaternion());
  if (hasPoints(data)) {
    if (data.system == Data::System::Cylindrical)
      m_writer.WriteCylindricalAxisOrientationData(points[0], points[1]);
    else
      m_writer.WriteSphericalAxisOrientationData(points[0], points[1]);
  }
  if (data.angle != 0.0) m_writer.SetAdditionalAngle(data.axis, data.angle);
}

cow_String inpS_OrientationSystems::Derive(const KvoSimPosition& given,
                                           const KvoSimPosition& owner) {
  const Data data = Data::Of(given);
  KvoSimTransaction transaction(m_document.ContextID());
  m_writer.Initialize(transaction, m_document, given);
  cow_String faults;
  for (const Place& place : m_places.Of(owner)) {
    double points[3][3] = {};
    inpS_OrientationAxes axes;
    cow_String fault = hasPoints(data) ? Locate(data, place, points) : cow_String();
    if (fault.empty() && hasPoints(data)) fault = MakeAxes(data, points, axes);
    if (!fault.empty()) {
      faults = fault;
      continue;
    }
    m_writer.CreateOrientation(data.system);
    if (!place.instance.IsNull()) m_writer.SetInstance(place.instance);
    Write(data, points, axes);
  }
  transaction.Commit();
  return faults;
}
