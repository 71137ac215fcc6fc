#pragma once

#include "database/eds_Array.h"
#include "database/eds_MemberSet.h"
#include "inpS/properties/inpS_DistributionTable.h"
#include <optional>

// The values of a *DISTRIBUTION by element or node, in bulk, for whoever uses them: those of its
// rows, and where no row speaks of a member those of its default line.
class inpS_DistributionValues {
public:
  // distribution: its record, of kind DistributionByElement or DistributionByNode.
  explicit inpS_DistributionValues(const KvoSimPosition& distribution);

  const inpS_DistributionTable& Table() const { return m_table; }
  int Width() const { return m_width; } // numbers for each member: all components of the table
  bool IsByNode() const { return m_isByNode; }
  const cow_List<double>& Defaults() const { return m_defaults; } // empty: no default line

  // The values of the members first, first + 1, ..., row by row: as many members as the buffer has
  // rows of Width() numbers. Members are ordinals in the space of the distribution's owner: a
  // part's own ordinals, else those of the flat mesh. NaN where neither a row nor a default line
  // gives any; returns how many members that are. A million members cost some reads of blocks.
  long long Read(long long first, std::span<double> values);
  // Likewise those of a set, in its order.
  long long Read(const eds_MemberSet& members, std::span<double> values);

private:
  void Fill(long long first, std::span<double> values, std::span<char> has);

  inpS_DistributionTable m_table;
  int m_width = 0;
  bool m_isByNode = false;
  cow_List<double> m_defaults;
  eds_MemberSet m_members;                       // of the store's distribution
  cow_List<std::pair<int32_t, int32_t>> m_items; // member and item by member, where not ascending
  std::optional<eds_ArrayReader> m_reader;
  cow_List<double> m_block;
  cow_List<char> m_has;
};
