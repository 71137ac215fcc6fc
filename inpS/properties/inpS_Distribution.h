#pragma once

#include "database/KvoSimCSet.h"
#include "database/KvoSimDistribution.h"

// A distribution of the store that a *DISTRIBUTION by element or node stands for: doubles over the
// elements or nodes that its rows name, sets standing for their members. A row for one label
// outweighs those of sets, and among its like the last row holds. Members are ordinals in the space
// of the keyword's owner: a part's own, else those of the flat mesh.
class inpS_Distribution {
public:
  explicit inpS_Distribution(const KvoSimDistribution& distribution)
      : m_distribution(distribution) {}
  // Made of the record alone the first time it is asked for, and found the next time. Where rows
  // name distinct labels and nothing else, it shares their values. In the caller's transaction.
  // Null for one of no mesh.
  static inpS_Distribution Of(const KvoSimPosition& record);

  bool IsNull() const { return m_distribution.IsNull(); }
  const KvoSimDistribution& Get() const { return m_distribution; }
  int NumComponents() const { return m_distribution.RangeType().NumValues(); }
  KvoSimCSet Over() const; // the members that have values; null: none
  // Values for the members of a new drawer, row by row.
  void WriteDouble(const KvoSimCSet& members, std::span<const double> values);

private:
  KvoSimDistribution m_distribution;
};
