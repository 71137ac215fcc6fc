#include "inpS/properties/inpS_OrientationData.h"
#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/keywords/inpS_ParameterBinding.h"
#include "inpS/properties/inpS_DistributionTable.h"
#include "inpS/sets/inpS_ScopedField.h"
#include "parser/inp_DataArray.h"
#include <algorithm>
#include <array>
#include <cmath>

namespace {

using Data = inpS_OrientationData;
using System = Data::System;
using Definition = Data::Definition;

constexpr std::array<std::string_view, 5> kSystems = {"RECTANGULAR", "CYLINDRICAL", "SPHERICAL",
                                                      "Z RECTANGULAR", "USER"};

System systemOf(std::string_view word) {
  const cow_String bare = inpS_bareWord(word);
  for (std::size_t n = 0; n < kSystems.size(); ++n)
    if (inpS_bareWord(kSystems[n]) == bare) return static_cast<System>(n);
  return System::Rectangular;
}

System transformOf(std::string_view type) {
  return type == "C" ? System::Cylindrical : type == "S" ? System::Spherical : System::Rectangular;
}

Definition definitionOf(eds_RecordKind kind) {
  return kind == eds_FormKind::OrientationByNodes          ? Definition::Nodes
         : kind == eds_FormKind::OrientationByOffset       ? Definition::OffsetToNodes
         : kind == eds_FormKind::OrientationByDistribution ? Definition::Distribution
                                                           : Definition::Coordinates;
}

cow_String quoted(const inp_DataArray& lines, long long row, int col) {
  return "\"" + lines.AsStringVerbatim(row, col) + "\"";
}

bool hasValue(const inp_DataArray& lines, long long row, int col) {
  return row < lines.Rows() && col < lines.Cols(row) && lines.HasValue(row, col);
}

cow_String readCoordinates(const inp_DataArray& lines, Data& data) {
  const int points = data.IsRectangular() ? 3 : 2;
  for (int col = 0; col < 3 * points; ++col) {
    if (!hasValue(lines, 0, col)) continue;
    if (!lines.IsNumber(0, col)) return quoted(lines, 0, col) + " is no number";
    data.points[col / 3][col % 3] = lines.AsDouble(0, col);
    if (!std::isfinite(data.points[col / 3][col % 3]))
      return quoted(lines, 0, col) + " is too large a number";
  }
  return {};
}

cow_String readNodes(const inp_DataArray& lines, Data& data) {
  for (int n = 0; n < Data::kPoints; ++n) {
    if (!hasValue(lines, 0, n)) {
      if (n < 2) return cow_String("it does not tell point ") + (n == 0 ? "A" : "B");
      continue;
    }
    const cow_String text = lines.AsStringVerbatim(0, n);
    const bool isOffset = data.definition == Definition::OffsetToNodes;
    const inpS_ScopedField field = inpS_scopedField(text);
    const bool isNumber = lines.Type(0, n) == inp_FieldType::Integer;
    if (!(isNumber || (field.isLabel && !isOffset)) || (isOffset && lines.AsInt64(0, n) < 1))
      return "\"" + text + "\" is no node number";
    data.nodes[n] = {true, isNumber ? lines.AsInt64(0, n) : field.Label(), field.instance};
  }
  return {};
}

cow_String readRotation(const inp_DataArray& lines, Data& data) {
  if (hasValue(lines, 1, 0)) {
    const cow_String axis = lines.AsString(1, 0);
    if (axis != "1" && axis != "2" && axis != "3")
      return "local axis " + quoted(lines, 1, 0) + " of the additional rotation is none of 1, 2, 3";
    data.axis = axis.front() - '0';
  }
  if (!hasValue(lines, 1, 1) || !lines.IsNumber(1, 1)) return {}; // a name: of a distribution
  data.angle = lines.AsDouble(1, 1);
  return std::isfinite(data.angle) ? cow_String() : quoted(lines, 1, 1) + " is too large an angle";
}

} // namespace

std::string_view inpS_OrientationData::NameOf(System system) {
  return kSystems[static_cast<std::size_t>(system)];
}

cow_String inpS_OrientationData::Read(const inp_Keyword& keyword, const inpS_Form& form,
                                      inpS_OrientationData& data) {
  data.system = systemOf(keyword.StringOf("system", ""));
  data.definition = definitionOf(form.kind);
  if (data.system == System::User) return {};
  const inp_DataArray& lines = keyword.Data();
  if (lines.Rows() == 0) return "there is no data line";
  cow_String fault;
  if (data.definition == Definition::Coordinates) fault = readCoordinates(lines, data);
  if (data.definition == Definition::Nodes || data.definition == Definition::OffsetToNodes)
    fault = readNodes(lines, data);
  return fault.empty() ? readRotation(lines, data) : fault;
}

namespace {

// Where a kind keeps what an orientation says; -1: nowhere. A deck may have many of one kind.
struct Fields {
  explicit Fields(eds_RecordKind kind);
  int system = -1, axis = -1, angle = -1;
  int points[Data::kPoints][3];
  int nodes[Data::kPoints] = {-1, -1, -1};
  int instances[Data::kPoints] = {-1, -1, -1};
};

Fields::Fields(eds_RecordKind kind) {
  const auto& all = eds_formRecord(kind)->fields;
  const auto find = [&](const cow_String& column) {
    const auto found = std::ranges::find(all, column, &eds_FieldInfo::column);
    return found == all.end() ? -1 : static_cast<int>(found - all.begin());
  };
  system = find(kind == eds_FormKind::Transform ? "type" : "system");
  axis = find("axis");
  angle = find("angle");
  constexpr std::string_view names[] = {"a", "b", "c"};
  for (int n = 0; n < Data::kPoints; ++n) {
    const cow_String point(names[n]);
    for (int i = 0; i < 3; ++i) points[n][i] = find(point + "xyz"[i]);
    nodes[n] = find(point);
    instances[n] = find(point + "_instance");
  }
}

const Fields& fieldsOf(eds_RecordKind kind) {
  namespace K = eds_FormKind;
  static const Fields byNodes(K::OrientationByNodes), byOffset(K::OrientationByOffset),
      byDistribution(K::OrientationByDistribution), transform(K::Transform), plain(K::Orientation);
  return kind == K::OrientationByNodes          ? byNodes
         : kind == K::OrientationByOffset       ? byOffset
         : kind == K::OrientationByDistribution ? byDistribution
         : kind == K::Transform                 ? transform
                                                : plain;
}

} // namespace

inpS_OrientationData inpS_OrientationData::Of(const KvoSimPosition& record) {
  const KvoSimDataRecord given = record.DataRecord();
  const eds_RecordKind kind = record.Object().RecordKind();
  inpS_OrientationData data;
  data.definition = definitionOf(kind);
  if (kind == eds_FormKind::OrientationUser) {
    data.system = System::User;
    return data;
  }
  const Fields& fields = fieldsOf(kind);
  const std::string_view system = given.GetString(fields.system);
  data.system = kind == eds_FormKind::Transform ? transformOf(system) : systemOf(system);
  for (int n = 0; n < kPoints; ++n) {
    for (int i = 0; i < 3; ++i)
      if (fields.points[n][i] >= 0) data.points[n][i] = given.GetDouble(fields.points[n][i]);
    if (fields.nodes[n] < 0 || given.IsMemberNull(fields.nodes[n])) continue;
    data.nodes[n] = {true, given.GetInt64(fields.nodes[n]), {}};
    if (fields.instances[n] < 0) continue;
    if (const KvoSimPosition instance = given.GetReference(fields.instances[n]); !instance.IsNull())
      data.nodes[n].instance = instance.DataRecord().ReturnString(eds_Instance_Name);
  }
  if (fields.axis >= 0 && !given.IsMemberNull(fields.axis))
    data.axis = given.GetString(fields.axis).front() - '0';
  if (fields.angle >= 0) data.angle = given.GetDouble(fields.angle);
  return data;
}

KvoSimPosition inpS_OrientationData::PointsOf(const KvoSimPosition& record) {
  if (!record.IsA(eds_FormKind::OrientationByDistribution)) return {};
  return record.DataRecord().GetReference(
      eds_formField(eds_FormKind::OrientationByDistribution, "distribution"));
}

KvoSimPosition inpS_OrientationData::AnglesOf(const KvoSimPosition& record) {
  if (record.IsA(eds_FormKind::OrientationUser)) return {};
  return record.DataRecord().GetReference(
      eds_formField(record.Object().RecordKind(), "angle_distribution"));
}

cow_String inpS_OrientationData::FaultOfAngles(const KvoSimPosition& record) {
  const KvoSimPosition angles = AnglesOf(record);
  if (angles.IsNull()) return {};
  const cow_String name = "distribution \"" + angles.Name() + "\"";
  if (!angles.IsA(eds_FormKind::DistributionByElement))
    return "varies over elements, and " + name + " is not by element";
  if (inpS_DistributionTable::Of(angles).FirstComponentOf("ANGLE") >= 0) return {};
  return "takes its angles from " + name + ", whose table has no column ANGLE";
}

bool inpS_OrientationData::IsByElement(const KvoSimPosition& record) {
  return record.IsA(eds_FormKind::OrientationByOffset) || !PointsOf(record).IsNull() ||
         !AnglesOf(record).IsNull();
}
