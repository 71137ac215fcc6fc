#pragma once

#include "inpS/mesh/inpS_AffineMap.h"
#include "inpS/mesh/inpS_GeneratingReader.h"

// *NMAP: moves the nodes of a set. The map is defined by points a, b, c, d, given by global
// coordinates (two points a line) or as node labels (one line). A last line holds up to three
// factors f; absent ones and zeros are 1.
//
// With e1 from a to b, e2 from there towards c and e3 = e1 x e2 (unit vectors), what were a node's
// coordinates (p, q, s) are taken as local ones, times their factors:
//   RECTANGULAR  x' = a + p e1 + q e2 + s e3
//   CYLINDRICAL  p = r, q = theta in degrees: x' = a + r cos q e1 + r sin q e2 + s e3
//   SPHERICAL    p = r, q = theta, s = phi in degrees:
//                x' = a + r cos s cos q e1 + r cos s sin q e2 + r sin s e3
//   TOROIDAL     p = r, q = theta, s = phi in degrees, R = |b - a| the radius of the tube's centre
//                line, theta around the tube from its outside, phi around e3:
//                x' = a + (R + r cos q) (cos s e1 + sin s e2) + r sin q e3
//   DIAMOND      skew axes along a-b, a-c and a-d (without d: e3): x' = a + p u1 + q u2 + s u3
// The others take the coordinates as global ones:
//   TRANSLATION  x' = x + (b - a); a value on the last line is the distance to go instead of |b-a|
//   ROTATION     about the line from a to b, right-handed, by the degrees on the last line
//   SCALE        x' = a + f (x - a), along the global axes
class inpS_NmapReader : public inpS_GeneratingReader {
public:
  inpS_NmapReader(cow_String type, cow_String definition, inpS_KnownNodes::Set nodes,
                  inpS_KnownNodes& known, inp_Visitor& messages)
      : inpS_GeneratingReader(known, messages, true), m_type(std::move(type)),
        m_definition(std::move(definition)), m_nodes(std::move(nodes)) {}

  void Read(const inp_Keyword& keyword, const inpS_NodeSink& sink);

private:
  using Map = void (inpS_NmapReader::*)(inpS_NodeValues& node) const;
  struct Kind {
    const char* name;
    int points; // that define it
    bool (inpS_NmapReader::*prepare)();
    Map map;
  };
  static const Kind* FindKind(const cow_String& type);

  bool ReadPoints(int count, long long& row);
  bool ReadFactors(long long row);
  bool PrepareAxes();
  bool PrepareRectangular();
  bool PrepareDiamond();
  bool PrepareTranslation();
  bool PrepareRotation();
  bool PrepareScale();
  void SetLocal(const double axes[3][3]);
  void SetNormalMatrix();

  void MapAffine(inpS_NodeValues& node) const;
  void MapCylindrical(inpS_NodeValues& node) const;
  void MapSpherical(inpS_NodeValues& node) const;
  void MapToroidal(inpS_NodeValues& node) const;
  void Place(inpS_NodeValues& node, const double local[3], const double frame[3][3]) const;

  cow_String m_type;
  cow_String m_definition;
  inpS_KnownNodes::Set m_nodes;
  double m_points[4][3] = {};
  bool m_given[4] = {};
  double m_values[3] = {}; // of the last line as it stands
  double m_factors[3] = {1, 1, 1};
  double m_axes[3][3] = {}; // e1, e2, e3
  double m_radius = 0;      // of a torus
  inpS_AffineMap m_map;
  double m_normalMatrix[3][3] = {}; // what m_map does to normals
};
