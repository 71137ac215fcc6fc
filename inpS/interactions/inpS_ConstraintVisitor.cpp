#include "inpS/interactions/inpS_ConstraintVisitor.h"
#include "database/KvoSimCSet.h"
#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_FormKind.h"
#include "database/schema/eds_Schema.h"
#include "inpS/forms/inpS_GroupedRows.h"
#include "inpS/history/inpS_ExcitationKind.h"
#include "parser/inp_Utils.h"
#include <algorithm>

namespace {

constexpr std::size_t targetColumn = 0;
constexpr std::size_t degreeColumn = 1;
constexpr std::size_t coefficientColumn = 2;

long long sizeOfSet(const KvoSimPosition& set) {
  const KvoSimCSet members = set.DataRecord().GetSet(eds_NodeSet_Membership);
  return members.IsNull() ? 0 : members.Size();
}

// A node, or the members of a place among the record's targets.
long long sizeOf(const KvoSimPosition& record, int target) {
  if (target >= 0) return 1;
  const KvoSimPosition named =
      record.GetVector(eds_Member::Targets)[static_cast<std::size_t>(-1LL - target)];
  return sizeOfSet(named.DataRecord().GetReference(eds_Target_Set));
}

// Decided here: sets pair member by member with that of the first term, in their own order, and a
// node or a set of one goes with each of them; any other number leaves members without a partner.
// The first term's degree is what the equation is solved for, so its coefficient is not 0.
cow_String faultOfEquation(const KvoSimPosition& record, const inpS_GroupedRows::Group& group) {
  const cow_List<int>& degrees = group.ints[degreeColumn];
  const cow_List<int>& targets = group.ints[targetColumn];
  for (const int degree : degrees)
    if (degree < 1 || degree > inpS_Degrees::kMost)
      return "Degree of freedom " + std::to_string(degree) + " is none of 1 to " +
             std::to_string(inpS_Degrees::kMost) + ".";
  for (std::size_t n = 1; n < degrees.size(); ++n)
    if (degrees[n] == degrees.front() && targets[n] == targets.front())
      return "The degree of its first term comes again: it cannot be solved for that one.";
  if (group.reals[coefficientColumn].front() == 0)
    return "The coefficient of its first term is 0: it cannot be solved for that degree.";
  const long long first = sizeOf(record, targets.front());
  for (const int target : targets)
    if (const long long size = sizeOf(record, target); size != first && size != 1)
      return "A set of " + std::to_string(size) + " nodes cannot be paired with " +
             std::to_string(first) + " of the first term.";
  return {};
}

} // namespace

bool inpS_ConstraintVisitor::ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                                         const KvoSimPosition& record) {
  if (!form.isGrouped) return inpS_FormVisitor::ReadColumns(keyword, form, record);
  inpS_GroupedRows rows(keyword, form, record, Names(), *this);
  rows.SetCheck(
      [&](const inpS_GroupedRows::Group& group) { return faultOfEquation(record, group); });
  return rows.Read();
}

// Of what a coupling holds: displacements and rotations.
cow_String inpS_ConstraintVisitor::FaultOfLine(const KvoSimPosition& line) {
  if (!line.IsA(eds_FormKind::CoupledDegrees)) return {};
  static const int firstField = eds_formField(eds_FormKind::CoupledDegrees, "first");
  static const int lastField = eds_formField(eds_FormKind::CoupledDegrees, "last");
  const KvoSimDataRecord record = line.DataRecord();
  const int first = record.GetInt(firstField);
  const int last = record.IsMemberNull(lastField) ? first : record.GetInt(lastField);
  constexpr int rotations = 6;
  if (first >= 1 && last <= rotations && first <= last) return {};
  return "Degrees of freedom " + std::to_string(first) + " to " + std::to_string(last) +
         " are none of 1 to 6.";
}

void inpS_ConstraintVisitor::Converted(const inp_Keyword& keyword, const inpS_Form& form,
                                       const KvoSimPosition& record) {
  const bool isCoupling = form.kind == eds_FormKind::Coupling;
  if (!isCoupling && form.kind != eds_FormKind::KinematicCoupling) return;
  const KvoSimPosition nodes =
      record.DataRecord().GetReference(eds_formField(form.kind, "ref_node_nset"));
  if (const long long size = nodes.IsNull() ? 1 : sizeOfSet(nodes); size != 1)
    AddWarning(
        inp_Utils::MessageAtParameter(keyword, "refnode",
                                      "REF NODE is a set of " + std::to_string(size) +
                                          " nodes; a coupling has one. It is kept as given."));
  if (!isCoupling) return;
  const std::size_t manners = keyword.Suboptions().size();
  if (manners == 0)
    AddWarning(inp_Utils::MessageInKeyword(
        keyword, "Neither *KINEMATIC nor *DISTRIBUTING follows; nothing tells how it couples."));
  if (manners > 1)
    AddWarning(inp_Utils::MessageInKeyword(
        keyword, "A coupling is *KINEMATIC or *DISTRIBUTING; all that is given is kept."));
  const inp_Item* radius = keyword.Find("influenceradius");
  if (radius && radius->IsNumber() && radius->AsDouble() <= 0)
    AddWarning(inp_Utils::MessageAtParameter(keyword, "influenceradius",
                                             "INFLUENCE RADIUS=" + radius->Verbatim() +
                                                 " is not above 0. It is kept as given."));
}
