#include "inpS/properties/inpS_OrientationData.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/keywords/inpS_ParameterBinding.h"
#include "inpS/sets/inpS_ScopedField.h"
#include "parser/inp_DataArray.h"
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
  return kind == eds_RecordKind::OrientationByNodes          ? Definition::Nodes
         : kind == eds_RecordKind::OrientationByOffset       ? Definition::OffsetToNodes
         : kind == eds_RecordKind::OrientationByDistribution ? Definition::Distribution
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

inpS_OrientationData inpS_OrientationData::Of(const KvoSimPosition& record) {
  const KvoSimDataRecord given = record.DataRecord();
  const eds_RecordKind kind = record.Object().RecordKind();
  const auto field = [&](std::string_view column) { return eds_formField(kind, column); };
  inpS_OrientationData data;
  data.definition = definitionOf(kind);
  if (kind == eds_RecordKind::OrientationUser) {
    data.system = System::User;
    return data;
  }
  const bool isTransform = kind == eds_RecordKind::Transform;
  data.system = isTransform ? transformOf(given.GetString(field("type")))
                            : systemOf(given.GetString(field("system")));
  constexpr std::string_view names[kPoints] = {"a", "b", "c"};
  for (int n = 0; n < kPoints && data.definition != Definition::Distribution; ++n) {
    const cow_String point(names[n]);
    if (data.definition != Definition::Coordinates) {
      if (given.IsMemberNull(field(point))) continue;
      data.nodes[n] = {true, given.GetInt64(field(point)), {}};
      if (data.definition != Definition::Nodes) continue;
      if (const KvoSimPosition instance = given.GetReference(field(point + "_instance"));
          !instance.IsNull())
        data.nodes[n].instance = instance.DataRecord().ReturnString(eds_Instance_Name);
    } else if (n < 2 || !isTransform) {
      for (int i = 0; i < 3; ++i) data.points[n][i] = given.GetDouble(field(point + "xyz"[i]));
    }
  }
  if (isTransform) return data;
  if (!given.IsMemberNull(field("axis"))) data.axis = given.GetString(field("axis")).front() - '0';
  data.angle = given.GetDouble(field("angle"));
  return data;
}

KvoSimPosition inpS_OrientationData::PointsOf(const KvoSimPosition& record) {
  if (!record.IsA(eds_RecordKind::OrientationByDistribution)) return {};
  return record.DataRecord().GetReference(
      eds_formField(eds_RecordKind::OrientationByDistribution, "distribution"));
}

KvoSimPosition inpS_OrientationData::AnglesOf(const KvoSimPosition& record) {
  if (record.IsA(eds_RecordKind::OrientationUser)) return {};
  return record.DataRecord().GetReference(
      eds_formField(record.Object().RecordKind(), "angle_distribution"));
}
