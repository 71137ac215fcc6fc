// How a rigid transformation is read from the keywords that hold one.

#include "inpS/framework/inpS_System.h"
#include "inpS/keywords/inpS_KeywordDataReader.h"
#include "inpS/keywords/inpS_KeywordReader.h"

namespace {

constexpr double radiansPerDegree = 3.141592653589793 / 180;

struct Point {
  double v[3] = {0, 0, 0};
};

Point pointAt(const inpS_KeywordDataReader& line, int item) {
  Point p;
  line.GetItemsAsDoubleWithDefault(item, 0.0, p.v[0], p.v[1], p.v[2]);
  return p;
}

// On the second data line; a blank one says nothing.
bool hasSecondLine(const inp_Keyword& keyword) {
  return keyword.Data().Rows() > 1 && !inpS_KeywordReader::IsBlankRow(keyword.Data(), 1);
}

} // namespace

bool inpS_System::ReadSystem(const inp_Keyword& keyword) {
  FillIdentity();
  inpS_KeywordDataReader line(keyword);
  if (line.IsDone()) return true;
  const Point a = pointAt(line, 0);
  const Point b = pointAt(line, 3);
  if (!hasSecondLine(keyword)) {
    // An origin alone turns nothing, and moves nothing either.
    if (Magnitude(b.v) < tolerance) return true;
    return SetFromPoints(a.v, b.v, nullptr);
  }
  line.Next();
  return SetFromPoints(a.v, b.v, pointAt(line, 0).v);
}

cow_List<inpS_UnreadField> inpS_System::UnreadFields(const inp_Keyword& keyword) {
  constexpr int valuesOfLine[] = {6, 3};
  const inp_DataArray& data = keyword.Data();
  cow_List<inpS_UnreadField> unread;
  for (long long row = 0; row < data.Rows(); ++row) {
    const int most = row < 2 ? valuesOfLine[row] : 0;
    for (int col = 0; col < data.Cols(row); ++col) {
      if (data.IsNone(row, col) || (col < most && data.IsNumber(row, col))) continue;
      unread.push_back({row, col, col >= most});
      if (col >= most) break;
    }
  }
  return unread;
}

// The system with origin a, x axis towards b and, when given, c in the x-y plane.
bool inpS_System::SetFromPoints(const double a[3], const double b[3], const double* c) {
  double x[3] = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
  double y[3] = {-x[1], x[0], 0}; // the global z axis crossed with x
  double z[3];
  if (c) {
    const double inPlane[3] = {c[0] - a[0], c[1] - a[1], c[2] - a[2]};
    CrossProduct(x, inPlane, z);
    if (!Normalize(x) || !Normalize(z)) return false;
    CrossProduct(z, x, y); // of unit vectors, so that small models keep their axes
  } else {
    if (!Normalize(x) || !Normalize(y)) return false;
    CrossProduct(x, y, z);
  }
  SetRotationVectors(x, y, z);
  SetTranslation(a[0], a[1], a[2]);
  return true;
}

void inpS_System::ReadInstance(const inp_Keyword& keyword) {
  inpS_System translation;
  translation.ReadInstanceTranslation(keyword);
  ReadInstanceRotation(keyword);
  Concatenate(translation);
}

void inpS_System::ReadInstanceTranslation(const inp_Keyword& keyword) {
  FillIdentity();
  const inpS_KeywordDataReader line(keyword);
  if (line.IsDone()) return;
  const Point translation = pointAt(line, 0);
  SetTranslation(translation.v[0], translation.v[1], translation.v[2]);
}

void inpS_System::ReadInstanceRotation(const inp_Keyword& keyword) {
  FillIdentity();
  if (!hasSecondLine(keyword)) return;
  inpS_KeywordDataReader line(keyword);
  line.Next();
  const double angle = line.GetItemAsDouble(6) * radiansPerDegree;
  SetAxisPointsAndAngle(pointAt(line, 0).v, pointAt(line, 3).v, angle);
}
