#pragma once

#include "base/utl_Buffer.h"

class inpS_System;

// The nodes that one keyword reads or generates, in the order in which it delivers them: labels,
// three coordinates each, and the normals of those that carry one. Base of the node reader and the
// generators; the mesh merges what they deliver (a label already known is overwritten in place).
class inpS_NodeGenerator {
public:
  explicit inpS_NodeGenerator(bool threeDimensional = false)
      : m_threeDimensional(threeDimensional) {}
  virtual ~inpS_NodeGenerator() = default;

  void SetCylindricalSystem(bool cylindrical) { m_cylindrical = cylindrical; }
  void SetSphericalSystem(bool spherical) { m_spherical = spherical; }
  bool HasNormals() const { return !m_normalPositions.IsEmpty(); }

  utl_Buffer<int>& Labels() { return m_labels; }
  utl_Buffer<double>& Coordinates() { return m_coordinates; }       // 3 per label
  utl_Buffer<long long>& NormalPositions() { return m_normalPositions; } // into Labels(), ascending
  utl_Buffer<int> NormalLabels() const;
  utl_Buffer<double>& Normals() { return m_normals; }               // 3 per entry, unit length
  long long Count() const { return static_cast<long long>(m_labels.Size()); }

  // From the keyword's local system (r, theta, z or r, theta, phi; degrees) to rectangular axes. A
  // cosine or sine below 1e-12 counts as zero in the cylindrical system and not in the spherical one;
  // the difference is intended.
  static void CylindricalToRectangular(double point[3]);
  static void SphericalToRectangular(double point[3]);

protected:
  void ToRectangular(double point[3]) const;
  // All coordinates gathered so far: to rectangular axes, then by the current coordinate system.
  void ConvertCoordinates(const inpS_System& system);

  utl_Buffer<int> m_labels;
  utl_Buffer<double> m_coordinates;
  utl_Buffer<long long> m_normalPositions;
  utl_Buffer<double> m_normals;
  bool m_cylindrical = false;
  bool m_spherical = false;
  bool m_threeDimensional = false; // selects the spatial variant of circular generation
};
