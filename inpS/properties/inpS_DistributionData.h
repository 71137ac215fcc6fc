#pragma once

#include "inpS/properties/inpS_DistributionTable.h"
#include <span>

class eds_MemberSet;

// The values of one distribution for some elements or nodes, column by column of its table.
class inpS_DistributionData {
public:
  explicit inpS_DistributionData(const inpS_DistributionTable& table) : m_table(table) {}
  // Those that a *DISTRIBUTION by element or node gives to the members (inpS_DistributionValues).
  static inpS_DistributionData Of(const KvoSimPosition& distribution, const eds_MemberSet& members);

  const inpS_DistributionTable& Table() const { return m_table; }
  long long Count() const; // members
  // The next column's values: its components for each member, NaN where it has none.
  void Add(cow_List<double> field);
  void
  SetDefaults(const cow_List<double>& components); // of all columns; for members without values
  // The values of a column, its components for each member; the buffer has exactly their size.
  void Values(int field, double* buffer, std::size_t bufferLength) const;

private:
  inpS_DistributionTable m_table;
  cow_List<cow_List<double>> m_fields;
  cow_List<double> m_defaults;
};
