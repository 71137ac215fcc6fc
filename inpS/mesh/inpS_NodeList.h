#pragma once

#include "base/utl_Buffer.h"

class KvoObjLabeler;
class inpS_NodeGenerator;

// The nodes of one owner (part, instance, assembly, flat model) in order of first definition. Labels
// live in the node labeler; here are the coordinates by ordinal and the normals.
class inpS_NodeList {
public:
  // What one keyword's nodes became.
  struct Merged {
    long long first = 0; // ordinals first … first + count - 1 when all were new
    long long count = 0;
    bool allNew = true;
  };

  // base: ordinals below it belong to the instance's part and cannot be defined again here.
  void SetBase(long long base) { m_base = base; }

  // A label already known is overwritten in place: the last definition of a label wins, its first
  // position is kept. The generator's labels stay as they are, its coordinates are taken.
  Merged Merge(inpS_NodeGenerator& nodes, KvoObjLabeler& labeler, int occurrence);
  // Labels of this keyword's nodes that belong to the instance's part.
  const utl_Buffer<int>& Refused() const { return m_refused; }

  long long Count() const { return static_cast<long long>(m_coordinates.Size() / 3); }
  const utl_Buffer<double>& Coordinates() const { return m_coordinates; } // 3 each, from base on
  const double* Point(long long ordinal) const;
  void Append(const double point[3]) { m_coordinates.Append({point, 3}); }
  void FreeCoordinates() { m_coordinates = {}; }

  // Normals by ascending ordinal, the last one of each node; 3 values each.
  void SortNormals();
  const utl_Buffer<int>& NormalOrdinals() const { return m_normalOrdinals; }
  const utl_Buffer<double>& Normals() const { return m_normals; }

private:
  void MergeNormals(inpS_NodeGenerator& nodes, const KvoObjLabeler& labeler, int occurrence,
                    bool allNew);

  long long m_base = 0;
  utl_Buffer<double> m_coordinates;
  utl_Buffer<int> m_normalOrdinals;
  utl_Buffer<double> m_normals; // all zero: the node was defined again without one
  utl_Buffer<int> m_refused;
};
