#pragma once

#include "inpS/sets/inpS_SetVisitor.h"

// Thicknesses given by node, read before the sections that take them: from the columns of the
// records that *NODAL THICKNESS has become to the model's field of nodal thickness.
class inpS_NodalThicknessVisitor : public inpS_SetVisitor {
public:
  using inpS_SetVisitor::inpS_SetVisitor;

  void VisitNodalThickness(const inp_Keyword& keyword) override;
  // Writes the field, if any node has a thickness: over the nodes of the flat mesh that have one. A
  // part's holds in each of its instances, an instance's outweighs it, and so does the assembly's
  // and the model's; of one owner the last one holds.
  void Save();

private:
  void CheckRange(const inp_Keyword& keyword, long long row);
  // What the owner says, at the place of the instance (null: it is no part's).
  void Apply(const KvoSimPosition& owner, const KvoSimPosition& instance,
             std::span<double> values) const;
  void ApplyTargets(const KvoSimPosition& record, bool isPart, const KvoSimPosition& instance,
                    std::span<double> values) const;
  void ApplyRanges(const KvoSimPosition& record, const KvoSimPosition& owner,
                   std::span<double> values) const;

  bool m_hasAny = false;
};
