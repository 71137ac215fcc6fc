#include "inpS/properties/inpS_OrientationFixupVisitor.h"
#include "base/utl_BlockSize.h"
#include "database/KvoSimTransaction.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/properties/inpS_DistributionValues.h"
#include "inpS/properties/inpS_OrientationAxes.h"
#include "parser/inp_Utils.h"
#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace {

constexpr int64_t kElementsPerPiece = 8192;

const inp_Item* valueOf(const inp_Keyword& keyword, std::string_view name) {
  for (const inp_Parameter& parameter : keyword.Parameters())
    if (parameter.name == name) return &parameter.value;
  return nullptr;
}

// What a distribution gives to the elements of a piece; none: nothing.
class Source {
public:
  // offset: from its ordinals to flat ones.
  Source(const KvoSimPosition& distribution, long long offset) : m_offset(offset) {
    if (!distribution.IsNull()) m_values.emplace(distribution);
  }
  explicit operator bool() const { return m_values.has_value(); }
  void Read(const eds_MemberSet& piece) {
    if (!m_values) return;
    m_rows.resize(static_cast<std::size_t>(piece.Size() * m_values->Width()));
    m_values->Read(inpS_SetVisitor::Moved(piece, -m_offset), m_rows);
  }
  const double* Row(std::size_t n) const {
    return m_rows.data() + n * static_cast<std::size_t>(m_values->Width());
  }

private:
  std::optional<inpS_DistributionValues> m_values;
  long long m_offset;
  cow_List<double> m_rows;
};

// Turned as the place is, and cleaned.
void turn(const inpS_OrientationSystems::Place& place, double v[3]) {
  if (!place.turns) return;
  inpS_OrientationAxes::Normalize(v);
  place.system.TransformVector(v[0], v[1], v[2]);
  inpS_OrientationAxes::ZeroSmallerThanTolerance(v);
}

// The axes of one element; false: there are none.
bool makeQuaternion(const inpS_OrientationData& data, const double to[2][3], double angle,
                    double quat[4]) {
  inpS_OrientationAxes axes;
  const bool isZ = data.system == inpS_OrientationData::System::ZRectangular;
  if (!std::isfinite(angle) || inpS_OrientationAxes::Make(to[0], to[1], isZ, axes)) return false;
  axes.Rotate(data.axis, angle);
  std::ranges::copy(axes.Quaternion(), quat);
  return true;
}

} // namespace

void inpS_OrientationFixupVisitor::Visit(const inp_Keyword& keyword) {
  inpS_SetVisitor::Visit(keyword);
  if (keyword.IsInstanceCopy()) return;
  const inp_Item* orientation = valueOf(keyword, "orientation");
  const inp_Item* elset = orientation ? valueOf(keyword, "elset") : nullptr;
  if (elset) FixOrientation(keyword, orientation->AsString(), elset->Verbatim());
}

bool inpS_OrientationFixupVisitor::CheckDistributions(const inp_Keyword& keyword,
                                                      const KvoSimPosition& orientation) {
  const auto has = [](const inpS_DistributionTable& table, int column, std::string_view type) {
    return column < table.NumFieldTypes() &&
           inpS_DistributionTable::FieldTypeName(table.FieldType(column)) == type;
  };
  const KvoSimPosition points = inpS_OrientationData::PointsOf(orientation);
  const KvoSimPosition angles = inpS_OrientationData::AnglesOf(orientation);
  if (!points.IsNull()) {
    const inpS_DistributionTable table = inpS_DistributionTable::Of(points);
    if (!has(table, 0, "COORD3D") || !has(table, 1, "COORD3D")) {
      Error(keyword, "Orientation distribution table expects a distribution with first and second "
                     "columns to be COORD3D");
      return false;
    }
  }
  if (!angles.IsNull() && !has(inpS_DistributionTable::Of(angles), 0, "ANGLE")) {
    Error(keyword, "The angle of orientation " + orientation.Name() +
                       " comes from a distribution whose first column is no ANGLE.");
    return false;
  }
  for (const KvoSimPosition& one : {points, angles}) {
    if (one.IsNull() || one.IsA(eds_FormKind::DistributionByElement)) continue;
    Error(keyword, "Orientation " + orientation.Name() +
                       " varies over elements, and distribution \"" + one.Name() +
                       "\" is not by element.");
    return false;
  }
  return true;
}

// Of a part's orientation that of the instance, else the only one; what has no axes but those of
// elements gets its system here.
KvoSimPosition inpS_OrientationFixupVisitor::SystemFor(const KvoSimPosition& orientation,
                                                       const Place& place) {
  if (!m_madeBy) {
    m_madeBy.emplace();
    for (const KvoSimPosition& system :
         orientation.Context().GetRecords(eds_RecordKind::LocalSystem)) {
      const KvoSimDataRecord record = system.DataRecord();
      m_madeBy->try_emplace({record.GetReference(eds_LocalSystem_Given).Object().Packed(),
                             record.GetReference(eds_LocalSystem_Instance).Object().Packed()},
                            system);
    }
  }
  KvoSimPosition& made =
      (*m_madeBy)[{orientation.Object().Packed(), place.instance.Object().Packed()}];
  if (made.IsNull()) {
    made = m_writer.CreateOrientation(inpS_OrientationData::Of(orientation).system);
    if (!place.instance.IsNull()) m_writer.SetInstance(place.instance);
  }
  return made;
}

long long inpS_OrientationFixupVisitor::Fix(const KvoSimPosition& orientation, const Place& place,
                                            const eds_MemberSet& elements, long long first) {
  const inpS_OrientationData data = inpS_OrientationData::Of(orientation);
  const auto offsetOf = [&](const KvoSimPosition& distribution) {
    const bool isPart = Holder().IsA(eds_RecordKind::Part) && !distribution.IsNull() &&
                        Holder().FollowStringKey(eds_Member::NamedDistributions,
                                                 distribution.Name()) == distribution;
    return isPart ? first : 0;
  };
  const KvoSimPosition points = inpS_OrientationData::PointsOf(orientation);
  const KvoSimPosition angles = inpS_OrientationData::AnglesOf(orientation);
  Source pointSource(points, offsetOf(points));
  Source angleSource(angles, offsetOf(angles));
  double to[3][3] = {};
  if (points.IsNull() && !m_systems.Locate(data, place, to).empty()) return elements.Size();
  eds_ArrayWriter quaternions(orientation, eds_ValueType::Double, 4);
  cow_List<int32_t> piece;
  cow_List<double> quats;
  long long lacking = 0;
  const auto most = static_cast<int64_t>(utl_blockSize(kElementsPerPiece));
  for (int64_t begin = 0; begin < elements.Size(); begin += most) {
    const auto count = static_cast<std::size_t>(std::min(most, elements.Size() - begin));
    piece.resize(count);
    elements.Copy(begin, piece);
    const eds_MemberSet members = eds_MemberSet::Ordered(piece);
    pointSource.Read(members);
    angleSource.Read(members);
    quats.resize(4 * count);
    for (std::size_t n = 0; n < count; ++n) {
      if (pointSource) {
        std::copy_n(pointSource.Row(n), 6, &to[0][0]);
        turn(place, to[0]);
        turn(place, to[1]);
      }
      double* const quat = &quats[4 * n];
      if (makeQuaternion(data, to, angleSource ? *angleSource.Row(n) : data.angle, quat)) continue;
      std::fill_n(quat, 4, std::numeric_limits<double>::quiet_NaN());
      ++lacking;
    }
    quaternions.Append(std::span<const double>(quats));
  }
  m_writer.WriteElementQuaternions(SystemFor(orientation, place), elements, quaternions.Finish());
  return lacking;
}

void inpS_OrientationFixupVisitor::FixOrientation(const inp_Keyword& keyword,
                                                  const cow_String& orientation,
                                                  const cow_String& elset) {
  if (!m_ori2DistName.contains(orientation)) return;
  const KvoSimPosition own =
      Holder().IsNull() ? KvoSimPosition()
                        : Holder().FollowStringKey(eds_Member::NamedOrientations, orientation);
  const KvoSimPosition record =
      own.IsNull() ? Model().FollowStringKey(eds_Member::NamedOrientations, orientation) : own;
  if (record.IsNull()) return;
  if (inpS_OrientationData::PointsOf(record).IsNull() &&
      inpS_OrientationData::AnglesOf(record).IsNull())
    return; // another one of that name
  const inpS_OrientationData data = inpS_OrientationData::Of(record);
  if (!data.IsRectangular() || data.definition == inpS_OrientationData::Definition::OffsetToNodes)
    return; // its rotation is not applied
  eds_MemberSet members;
  if (!GetElementSetMembers(elset, members) || members.IsEmpty()) return;
  if (!CheckDistributions(keyword, record)) return;
  KvoSimTransaction transaction(Inventory().GetDocument().ContextID());
  m_writer.Initialize(transaction, Inventory().GetDocument(), record);
  long long lacking = 0;
  for (Place place : m_systems.PlacesOf(Holder())) {
    long long first = 0;
    if (Holder().IsA(eds_RecordKind::Part))
      first = place.instance.DataRecord().GetInt64(eds_Instance_FirstElement);
    if (own.IsNull()) place = {Model(), {}, {}, false}; // the model's axes turn with no instance
    lacking += Fix(record, place, Moved(members.AscendingSet(), first), first);
  }
  transaction.Commit();
  if (lacking > 0)
    Warning(keyword,
            "Orientation " + orientation + " gives " + std::to_string(lacking) +
                (lacking == 1 ? " element" : " elements") +
                " of the set no axes: the distribution has no values for them, or points A "
                "and B lie in one line with the origin.");
}
