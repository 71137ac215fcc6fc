#include "inpS/properties/inpS_OrientationFixupVisitor.h"
#include "base/utl_BlockSize.h"
#include "database/KvoSimTransaction.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_FormValue.h"
#include "inpS/properties/inpS_DistributionValues.h"
#include "inpS/properties/inpS_ElementQuaternions.h"
#include "parser/inp_Utils.h"
#include <algorithm>
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

// All that a keyword with a set names, each once: of itself, of the lines of its plies, of a
// connector's second line, of what stands under it.
cow_List<cow_String> orientationsOf(const inp_Keyword& keyword) {
  cow_List<cow_String> names;
  const auto add = [&](const cow_String& name) {
    if (std::ranges::find(names, name) == names.end()) names.push_back(name);
  };
  const inp_DataArray& lines = keyword.Data();
  const auto addField = [&](long long row, int col) {
    if (row < lines.Rows() && col < lines.Cols(row) && lines.HasValue(row, col) &&
        !lines.IsNumber(row, col))
      add(inp_Utils::Fold(lines.AsStringVerbatim(row, col)));
  };
  if (const inp_Item* own = valueOf(keyword, "orientation")) add(own->AsString());
  constexpr int columnOfPlies = 3;
  if (valueOf(keyword, "composite"))
    for (long long row = 0; row < lines.Rows(); ++row) addField(row, columnOfPlies);
  if (keyword.Kind() == inp_KwConnectorSection)
    for (const int col : {0, 1}) addField(1, col);
  for (const inp_Keyword& suboption : keyword.Suboptions())
    if (const inp_Item* axes = valueOf(suboption, "orientation");
        axes && !valueOf(suboption, "elset"))
      add(axes->AsString());
  return names;
}

} // namespace

void inpS_OrientationFixupVisitor::Visit(const inp_Keyword& keyword) {
  inpS_SetVisitor::Visit(keyword);
  if (keyword.IsInstanceCopy()) return;
  const inp_Item* elset = valueOf(keyword, "elset");
  if (!elset) return;
  for (const cow_String& name : orientationsOf(keyword))
    if (m_ori2DistName.contains(inp_Utils::SplitScopedField(name).back()))
      FixOrientation(keyword, name, elset->Verbatim());
}

bool inpS_OrientationFixupVisitor::CheckDistributions(const inp_Keyword& keyword,
                                                      const KvoSimPosition& orientation) {
  const auto has = [](const inpS_DistributionTable& table, int column, std::string_view type) {
    return column < table.NumFieldTypes() &&
           inpS_DistributionTable::FieldTypeName(table.FieldType(column)) == type;
  };
  const KvoSimPosition points = inpS_OrientationData::PointsOf(orientation);
  if (points.IsNull()) return true;
  const inpS_DistributionTable table = inpS_DistributionTable::Of(points);
  if (!has(table, 0, "COORD3D") || !has(table, 1, "COORD3D")) {
    Error(keyword, "Orientation distribution table expects a distribution with first and second "
                   "columns to be COORD3D");
    return false;
  }
  if (points.IsA(eds_FormKind::DistributionByElement)) return true;
  Error(keyword, "Orientation " + orientation.Name() +
                     " varies over elements, and distribution \"" + points.Name() +
                     "\" is not by element.");
  return false;
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

inpS_OrientationFixupVisitor::Lacking
inpS_OrientationFixupVisitor::Fix(const KvoSimPosition& orientation, const Place& place,
                                  const eds_MemberSet& elements, long long first) {
  const inpS_OrientationData data = inpS_OrientationData::Of(orientation);
  const auto offsetOf = [&](const KvoSimPosition& distribution) {
    const bool isPart = !distribution.IsNull() && distribution.Parent().IsA(eds_RecordKind::Part);
    return isPart ? place.instance.DataRecord().GetInt64(eds_Instance_FirstElement) : 0;
  };
  const KvoSimPosition points = inpS_OrientationData::PointsOf(orientation);
  const KvoSimPosition angles = inpS_OrientationData::AnglesOf(orientation);
  Source pointSource(points, offsetOf(points));
  Source angleSource(angles, offsetOf(angles));
  const int angle =
      angles.IsNull() ? 0 : inpS_DistributionTable::Of(angles).FirstComponentOf("ANGLE");
  Lacking lacking;
  double to[3][3] = {};
  if (points.IsNull() && data.definition != inpS_OrientationData::Definition::OffsetToNodes)
    if (!m_systems.Locate(data, place, to).empty())
      return {elements.Size(), elements[0] - first, "its points are not there"};
  inpS_ElementQuaternions maker(data, place, to, m_nodes);
  eds_ArrayWriter quaternions(orientation, eds_ValueType::Double, 4);
  cow_List<int32_t> piece;
  cow_List<double> quats;
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
      const char* fault =
          maker.Make(piece[n], pointSource ? pointSource.Row(n) : nullptr,
                     angleSource ? angleSource.Row(n)[angle] : data.angle, &quats[4 * n]);
      if (!fault) continue;
      std::fill_n(&quats[4 * n], 4, std::numeric_limits<double>::quiet_NaN());
      if (lacking.count++ == 0) lacking = {1, piece[n] - first, fault};
    }
    quaternions.Append(std::span<const double>(quats));
  }
  m_writer.WriteElementQuaternions(SystemFor(orientation, place), elements, quaternions.Finish());
  return lacking;
}

inpS_SetVisitor::Found inpS_OrientationFixupVisitor::Find(const cow_String& asWritten) const {
  static const eds_Referable& orientations =
      *std::ranges::find(eds_referables(), "orientation", &eds_Referable::word);
  return inpS_FormNames(*this).Find(orientations, asWritten);
}

void inpS_OrientationFixupVisitor::FixOrientation(const inp_Keyword& keyword,
                                                  const cow_String& orientation,
                                                  const cow_String& elset) {
  const Found found = Find(orientation);
  const KvoSimPosition& record = found.set;
  if (record.IsNull() || !inpS_OrientationData::IsByElement(record)) return; // another of that name
  eds_MemberSet members;
  if (!GetElementSetMembers(elset, members) || members.IsEmpty()) return;
  if (!inpS_OrientationData::FaultOfAngles(record).empty()) return; // told where it is defined
  if (!CheckDistributions(keyword, record)) return;
  const bool isModels = record.Parent() == Model();
  KvoSimTransaction transaction(Inventory().GetDocument().ContextID());
  m_writer.Initialize(transaction, Inventory().GetDocument(), record);
  Lacking lacking;
  for (Place place : m_systems.PlacesOf(found.instance.IsNull() ? Holder() : found.instance)) {
    long long first = 0;
    if (Holder().IsA(eds_RecordKind::Part))
      first = place.instance.DataRecord().GetInt64(eds_Instance_FirstElement);
    if (isModels) place = m_systems.PlacesOf(Model()).front(); // it turns with no instance
    const Lacking here = Fix(record, place, Moved(members.AscendingSet(), first), first);
    if (lacking.count == 0)
      lacking = here;
    else
      lacking.count += here.count;
  }
  transaction.Commit();
  if (lacking.count > 0)
    Warning(keyword, "Orientation " + orientation + " gives " + std::to_string(lacking.count) +
                         (lacking.count == 1 ? " element" : " elements") + " of the set no axes" +
                         (lacking.count == 1 ? "" : ", the first of them") + ", element " +
                         std::to_string(GetElementLabel(lacking.first)) + ": " + lacking.fault +
                         ".");
}
