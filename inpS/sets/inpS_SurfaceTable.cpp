#include "inpS/sets/inpS_SurfaceTable.h"
#include "database/KvoSimDataRecord.h"

std::span<const inpS_ParameterBinding> inpS_surfaceParameters() {
  using C = inpS_Codec;
  static const inpS_ParameterBinding rows[] = {
      {"name", "NAME", eds_Surface_Name, C::Name},
      {"type",
       "TYPE",
       eds_Surface_Type,
       C::Word,
       {"ELEMENT", "NODE", "SEGMENTS", "CYLINDER", "REVOLUTION", "CUTTING SURFACE"},
       true},
      {"combine",
       "COMBINE",
       eds_Surface_Operation,
       C::Word,
       {"", "UNION", "INTERSECTION", "DIFFERENCE"}},
      {"crop", "CROP", eds_Surface_Operation, C::Word, {"", "", "", "", "IN", "OUT"}},
      {"filletradius", "FILLET RADIUS", eds_Surface_FilletRadius, C::Real},
      {"maxratio", "MAX RATIO", eds_Surface_MaxRatio, C::Real},
      {"minratio", "MIN RATIO", eds_Surface_MinRatio, C::Real},
      {"radius", "RADIUS", eds_Surface_Radius, C::Real},
      {"offset", "OFFSET", eds_Surface_Offset, C::Name},
      {"trim", "TRIM", eds_Surface_Trim, C::Choice, {"YES", "NO"}},
      {"definition", "DEFINITION", eds_Surface_Definition, C::Choice, {"COORDINATES", "NODES"}},
      {"regiontype",
       "REGION TYPE",
       eds_Surface_RegionType,
       C::Choice,
       {"LAGRANGIAN", "SLIDING", "EULERIAN"}},
      {"property", "PROPERTY", eds_Surface_Property, C::Name},
      {"nothick", "NO THICK", eds_Surface_NoThickness, C::Flag},
      {"nothickness", "NO THICKNESS", eds_Surface_NoThickness, C::Flag, {}, false, true},
      {"spos", "SPOS", eds_Surface_Spos, C::Flag},
      {"sneg", "SNEG", eds_Surface_Sneg, C::Flag},
      {"userdefined", "USER DEFINED", eds_Surface_UserDefined, C::Flag},
      {"internal", "INTERNAL", eds_Surface_Internal, C::Flag},
  };
  return rows;
}

namespace {

constexpr std::string_view kFaces[eds_surfaceFaceCount] = {
    "",     "S1",   "S2", "S3", "S4", "S5", "S6",   "S7",   "S8",
    "SPOS", "SNEG", "E1", "E2", "E3", "E4", "END1", "END2", "EDGE"};

constexpr char upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool sameWord(std::string_view text, std::string_view word) {
  if (text.size() != word.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i)
    if (upper(text[i]) != word[i]) return false;
  return true;
}

} // namespace

std::string_view inpS_faceName(eds_SurfaceFace face) {
  return kFaces[static_cast<int>(face)];
}

bool inpS_readFace(std::string_view text, eds_SurfaceFace& face) {
  for (int n = 0; n < eds_surfaceFaceCount; ++n) {
    if (!sameWord(text, kFaces[n])) continue;
    face = static_cast<eds_SurfaceFace>(n);
    return true;
  }
  return false;
}

std::span<const inpS_SegmentRow> inpS_segmentRows() {
  using K = eds_SegmentKind;
  static constexpr inpS_SegmentRow rows[] = {{K::Start, "START", 2},
                                             {K::Line, "LINE", 2},
                                             {K::Arc, "CIRCL", 4},
                                             {K::Parabola, "PARAB", 4}};
  return rows;
}

inpS_PointLines inpS_pointLinesOf(eds_SurfaceType type, eds_SurfaceOperation operation) {
  using Op = eds_SurfaceOperation;
  // A box: two opposite corners, then, where it does not lie along the axes, two points that turn
  // it: on its own first axis, and in the plane of its first two.
  if (operation == Op::CropIn || operation == Op::CropOut) return {2, {6, 6, 0}};
  if (operation != Op::Defined) return {};
  switch (type) {
  case eds_SurfaceType::Cylinder: // origin and a point on the first axis; a point on the second
    return {2, {6, 3, 0}};
  case eds_SurfaceType::Revolution: // two points of the axis
    return {1, {6, 0, 0}};
  case eds_SurfaceType::Cutting: // a point of the plane and its normal
    return {1, {6, 0, 0}};
  default:
    return {};
  }
}
