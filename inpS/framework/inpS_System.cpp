#include "inpS/framework/inpS_System.h"
#include "base/utl_Assert.h"
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <ostream>

// An exponent of ones alone is that of infinities and of what is no number; without a branch.
bool inpS_isFinite(std::span<const double> values) {
  constexpr std::uint64_t exponent = 0x7FF0000000000000;
  std::uint64_t found = 0;
  for (const double value : values)
    found |=
        static_cast<std::uint64_t>((std::bit_cast<std::uint64_t>(value) & exponent) == exponent);
  return found == 0;
}

void inpS_System::FillIdentity() {
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) m_matrix[i][j] = i == j ? 1.0 : 0.0;
}

bool inpS_System::IsIdentity() const {
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j)
      if (m_matrix[i][j] != (i == j ? 1.0 : 0.0)) return false;
  return true;
}

bool inpS_System::IsFinite() const {
  return inpS_isFinite({&m_matrix[0][0], 16});
}

void inpS_System::SetTranslation(double x, double y, double z) {
  m_matrix[0][3] = x;
  m_matrix[1][3] = y;
  m_matrix[2][3] = z;
}

// Rodrigues' formula.
void inpS_System::SetRotation(const double axis[3], double angle) {
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  const double x = axis[0], y = axis[1], z = axis[2];
  const double skew[3][3] = {{0, -z, y}, {z, 0, -x}, {-y, x, 0}};
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j)
      m_matrix[i][j] = (1 - c) * axis[i] * axis[j] + (i == j ? c : 0) + s * skew[i][j];
}

void inpS_System::SetRotationVectors(const double x[3], const double y[3], const double z[3]) {
  for (int i = 0; i < 3; ++i) {
    m_matrix[i][0] = x[i];
    m_matrix[i][1] = y[i];
    m_matrix[i][2] = z[i];
  }
}

void inpS_System::SetAxisPointsAndAngle(const double a[3], const double b[3], double angle) {
  FillIdentity();
  double axis[3] = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
  if (!Normalize(axis)) return;
  inpS_System rotation, toOrigin;
  rotation.SetRotation(axis, angle);
  toOrigin.SetTranslation(-a[0], -a[1], -a[2]);
  SetTranslation(a[0], a[1], a[2]);
  Concatenate(rotation);
  Concatenate(toOrigin);
}

void inpS_System::Concatenate(const inpS_System& other) {
  double product[4][4];
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) {
      product[i][j] = 0;
      for (int k = 0; k < 4; ++k) product[i][j] += m_matrix[i][k] * other.m_matrix[k][j];
    }
  std::copy(&product[0][0], &product[0][0] + 16, &m_matrix[0][0]);
}

void inpS_System::TransformVector(double& x, double& y, double& z) const {
  const double v[3] = {x, y, z};
  const auto& m = m_matrix;
  x = m[0][0] * v[0] + m[0][1] * v[1] + m[0][2] * v[2];
  y = m[1][0] * v[0] + m[1][1] * v[1] + m[1][2] * v[2];
  z = m[2][0] * v[0] + m[2][1] * v[1] + m[2][2] * v[2];
}

void inpS_System::TransformPoint(double& x, double& y, double& z) const {
  TransformVector(x, y, z);
  x += m_matrix[0][3];
  y += m_matrix[1][3];
  z += m_matrix[2][3];
}

void inpS_System::Transform(std::span<double> coordinates, int stride) const {
  utl_ASSERT(stride >= 3);
  if (IsIdentity()) return;
  const inpS_System local = *this; // nothing in the loop can change it
  const auto step = static_cast<std::size_t>(stride);
  double* const values = coordinates.data();
  for (std::size_t i = 0; i + 3 <= coordinates.size(); i += step)
    local.TransformPoint(values[i], values[i + 1], values[i + 2]);
}

void inpS_System::Transform(std::span<const double> from, std::span<double> to, int stride) const {
  utl_ASSERT(stride >= 3);
  utl_ASSERT(from.size() == to.size());
  if (stride > 3 || IsIdentity()) {
    std::copy(from.begin(), from.end(), to.begin());
    return Transform(to, stride);
  }
  const inpS_System local = *this;
  std::size_t i = 0;
  for (; i + 3 <= from.size(); i += 3) {
    double x = from[i], y = from[i + 1], z = from[i + 2];
    local.TransformPoint(x, y, z);
    to[i] = x;
    to[i + 1] = y;
    to[i + 2] = z;
  }
  std::copy(from.begin() + static_cast<std::ptrdiff_t>(i), from.end(),
            to.begin() + static_cast<std::ptrdiff_t>(i));
}

cow_List<double> inpS_System::GetTranslation() const {
  return {m_matrix[0][3], m_matrix[1][3], m_matrix[2][3]};
}

void inpS_System::AsArray(double matrix[4][4]) const {
  std::copy(&m_matrix[0][0], &m_matrix[0][0] + 16, &matrix[0][0]);
}

inpS_System inpS_System::InverseRigidTransform() const {
  inpS_System inverse;
  if (IsIdentity()) return inverse; // without negative zeros
  for (int i = 0; i < 3; ++i) {
    double moved = 0;
    for (int j = 0; j < 3; ++j) {
      inverse.m_matrix[i][j] = m_matrix[j][i];
      moved += m_matrix[j][i] * m_matrix[j][3];
    }
    inverse.m_matrix[i][3] = -moved;
  }
  return inverse;
}

// The largest of the trace and the diagonal is the pivot: its component is at least 1/2, so the
// others lose nothing in the division by it.
cow_List<double> inpS_System::GetRotationQuaternion() const {
  const auto& m = m_matrix;
  const double trace = m[0][0] + m[1][1] + m[2][2];
  int i = 0;
  if (m[1][1] > m[i][i]) i = 1;
  if (m[2][2] > m[i][i]) i = 2;
  if (trace >= m[i][i]) {
    const double w = 0.5 * std::sqrt(trace + 1);
    return {(m[2][1] - m[1][2]) / (4 * w), (m[0][2] - m[2][0]) / (4 * w),
            (m[1][0] - m[0][1]) / (4 * w), w};
  }
  const int j = (i + 1) % 3;
  const int k = (i + 2) % 3;
  const double pivot = 0.5 * std::sqrt(m[i][i] - m[j][j] - m[k][k] + 1);
  cow_List<double> quaternion(4);
  quaternion[static_cast<std::size_t>(i)] = pivot;
  quaternion[static_cast<std::size_t>(j)] = (m[j][i] + m[i][j]) / (4 * pivot);
  quaternion[static_cast<std::size_t>(k)] = (m[k][i] + m[i][k]) / (4 * pivot);
  quaternion[3] = (m[k][j] - m[j][k]) / (4 * pivot);
  return quaternion;
}

void inpS_System::Print(aio_ostream& out) const {
  for (const auto& row : m_matrix)
    out << row[0] << ' ' << row[1] << ' ' << row[2] << ' ' << row[3] << '\n';
}

double inpS_System::Magnitude(const double v[3]) {
  return std::hypot(v[0], v[1], v[2]);
}

bool inpS_System::Normalize(double v[3]) {
  const double length = Magnitude(v);
  if (!(length >= tolerance) || std::isinf(length)) return false;
  for (int i = 0; i < 3; ++i) v[i] /= length;
  return true;
}

void inpS_System::CrossProduct(const double a[3], const double b[3], double result[3]) {
  result[0] = a[1] * b[2] - a[2] * b[1];
  result[1] = a[2] * b[0] - a[0] * b[2];
  result[2] = a[0] * b[1] - a[1] * b[0];
}
