#include "inpS/history/inpS_Excitations.h"
#include "database/KvoObjLabeler.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimTransaction.h"
#include "inpS/history/inpS_ExcitationWriter.h"
#include "inpS/history/inpS_GivenConditions.h"
#include <optional>

namespace {

using Duplicates = cow_List<inpS_DuplicateCondition>;

// Those of other programs have no given record.
void removeDerived(const KvoSimContext& context) {
  const auto isDerived = [](const KvoSimPosition& excitation) {
    return excitation.IsNull() ||
           !excitation.DataRecord().GetReference(eds_Excitation_Given).IsNull();
  };
  for (KvoSimPosition& relay : context.GetRecords(eds_RecordKind::Relay)) {
    if (!isDerived(relay.DataRecord().GetReference(eds_Relay_Excitation))) continue;
    if (const KvoSimPosition own = relay.DataRecord().GetReference(eds_Relay_Members);
        !own.IsNull()) {
      if (const KvoSimPosition list = own.DataRecord().GetReference(eds_CSet_Array); !list.IsNull())
        list.Remove();
      own.Remove();
    }
    relay.Remove();
  }
  for (KvoSimPosition& old : context.GetRecords(eds_RecordKind::Excitation))
    if (isDerived(old)) old.Remove();
}

Duplicates labelled(const KvoObjDocument& document, const inpS_InForce& inForce) {
  Duplicates told;
  if (inForce.Duplicates().empty()) return told;
  std::optional<KvoObjLabeler> labelers[2]; // of nodes, of elements
  for (const inpS_InForce::Duplicate& duplicate : inForce.Duplicates()) {
    inpS_DuplicateCondition& one = told.emplace_back();
    one.record = duplicate.record;
    one.row = duplicate.row;
    const bool isOfElements = one.isOfElements = !duplicate.areNodes;
    std::optional<KvoObjLabeler>& labeler = labelers[isOfElements];
    if (!labeler) {
      labeler.emplace(document, isOfElements ? 1 : 0);
      labeler->Read();
    }
    for (const int32_t flat : duplicate.ordinals.Members()) {
      int64_t ordinal = 0;
      const int occurrence = labeler->OccurrenceOfFlat(flat, ordinal);
      if (occurrence >= 0) one.labels.push_back(labeler->GetInstanceLabel(occurrence, ordinal));
    }
  }
  return told;
}

} // namespace

Duplicates inpS_deriveExcitations(const KvoObjDocument& document) {
  KvoSimTransaction transaction(document.ContextID());
  removeDerived(document.Context());
  inpS_InForce inForce = inpS_givenConditions(document);
  if (!inForce.Sources().empty()) inpS_ExcitationWriter(document, inForce).Write();
  transaction.Commit();
  return labelled(document, inForce);
}
