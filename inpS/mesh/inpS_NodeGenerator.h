#pragma once

#include <functional>
#include <span>

class inpS_System;
class inp_Keyword;
class inp_Visitor;

// Nodes on their way into the mesh: some thousand at a time, in the order in which the deck gives
// them. A label already known is overwritten in place when they are merged.
struct inpS_NodePiece {
  std::span<const int> labels;
  std::span<const double> coordinates;   // 3 per label, global
  std::span<const std::size_t> normalAt; // which of them carry a normal, ascending
  std::span<const double> normals;       // 3 per entry of normalAt, unit length, global
};
using inpS_NodeSink = std::function<void(const inpS_NodePiece&)>;

// The value at part / whole of the way from a to b, with one division, so that round values come
// out round; a where both are the same.
inline double inpS_between(double a, double b, double part, double whole) {
  return a == b ? a : (a * (whole - part) + b * part) / whole;
}

// Base of what reads or generates nodes: the local system of its keyword.
class inpS_NodeGenerator {
public:
  explicit inpS_NodeGenerator(bool threeDimensional = false)
      : m_threeDimensional(threeDimensional) {}
  virtual ~inpS_NodeGenerator() = default;

  void SetCylindricalSystem(bool cylindrical) { m_cylindrical = cylindrical; }
  void SetSphericalSystem(bool spherical) { m_spherical = spherical; }
  // Both from the keyword's "system": C, S or R; anything else is told and taken as R.
  void ReadLocalSystem(const inp_Keyword& keyword, inp_Visitor& messages);
  bool HasNormals() const { return m_hasNormals; }

  // From the keyword's local system (r, theta, z or r, theta, phi; degrees) to rectangular axes. A
  // cosine or sine below 1e-12 counts as zero in the cylindrical system and not in the spherical
  // one; the difference is intended.
  static void CylindricalToRectangular(double point[3]);
  static void SphericalToRectangular(double point[3]);

protected:
  // False, and the vector as it was, when it has no direction or is not finite. One that is as good
  // as of unit length already stays as it is, so that it reads the same when it is written back.
  static bool ToUnitLength(double vector[3]);
  void ToRectangular(double point[3]) const;
  // Coordinates as read to rectangular axes, then by the current coordinate system.
  void ConvertPoints(std::span<double> coordinates, const inpS_System& system) const;

  // A node whose place or direction is not finite, which numbers too large for the arithmetic give,
  // does not get into the mesh: it is noted, and all of a keyword are told at once.
  void NoteOverflow(int label);
  void TellOverflows(const inp_Keyword& keyword, inp_Visitor& messages);

  bool m_hasNormals = false;
  bool m_cylindrical = false;
  bool m_spherical = false;
  bool m_threeDimensional = false; // selects the spatial variant of circular generation

private:
  long long m_overflows = 0;
  int m_firstOverflow = 0; // its label
};
