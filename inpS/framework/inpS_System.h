#pragma once

#include "base/aio_ostream.h"
#include "base/cow_Value.h"
#include "inpS/keywords/inpS_UnreadField.h"
#include <span>

class inp_Keyword;

// Whether all are: looked at in bulk, so that whole meshes can be.
bool inpS_isFinite(std::span<const double> values);

// A rigid transformation: a 4 x 4 matrix whose upper left block is the rotation (its columns are
// the local axes in global coordinates) and whose fourth column is the translation. Lengths are in
// the deck's unit, angles in radians unless a deck line gives them.
class inpS_System {
public:
  // Lengths below it are no lengths.
  static constexpr double tolerance = 1e-06;

  inpS_System() { FillIdentity(); }

  void FillIdentity();
  bool IsIdentity() const; // every entry exactly
  bool IsFinite() const;   // no entry has overflowed

  void SetTranslation(double x, double y, double z);
  void SetRotation(const double axis[3], double angle); // about a unit axis through the origin
  void SetRotationVectors(const double x[3], const double y[3], const double z[3]);
  // Rotation about the line from a to b; the identity when the points coincide.
  void SetAxisPointsAndAngle(const double a[3], const double b[3], double angle);
  void Concatenate(const inpS_System& other); // this = this x other: the other is applied first

  void TransformPoint(double& x, double& y, double& z) const;
  void TransformVector(double& x, double& y, double& z) const;
  // Every point of a flat list in place: the first three of every `stride` values, the others stay.
  // Values behind the last whole point stay too.
  void Transform(std::span<double> coordinates, int stride = 3) const;
  // The same from one list to another of the same length, copying what is no coordinate.
  void Transform(std::span<const double> from, std::span<double> to, int stride = 3) const;

  cow_List<double> GetTranslation() const;
  void AsArray(double matrix[4][4]) const;
  inpS_System InverseRigidTransform() const;
  cow_List<double> GetRotationQuaternion() const; // x, y, z, w

  // The coordinate system of *SYSTEM. False, and the identity, when its points define none.
  bool ReadSystem(const inp_Keyword& keyword);
  // What its data lines hold besides two points and a third one: words, and values too many.
  static cow_List<inpS_UnreadField> UnreadFields(const inp_Keyword& keyword);
  // The placing of *INSTANCE: translated first, then rotated about the axis a-b of the second line,
  // whose points are those of the assembly.
  void ReadInstance(const inp_Keyword& keyword);
  void ReadInstanceTranslation(const inp_Keyword& keyword); // the first line only
  void ReadInstanceRotation(const inp_Keyword& keyword);    // the second line only

  void Print(aio_ostream& out) const;

private:
  static double Magnitude(const double v[3]);
  // False, and v as it was, below the tolerance and beyond all numbers.
  static bool Normalize(double v[3]);
  static void CrossProduct(const double a[3], const double b[3], double result[3]);
  bool SetFromPoints(const double a[3], const double b[3], const double* c);

  double m_matrix[4][4];
};
