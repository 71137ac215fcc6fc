#include "inpS/history/inpS_Excitations.h"
#include "database/KvoObjLabeler.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimCSet.h"
#include "database/KvoSimTransaction.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/history/inpS_ExcitationWriter.h"
#include <algorithm>

namespace {

using Kind = inpS_ExcitationKind;
using Duplicates = cow_List<inpS_DuplicateCondition>;

class Deriver {
public:
  explicit Deriver(const KvoObjDocument& document)
      : m_document(document), m_model(document.GetModel().Position()),
        m_inForce(CountOf(true), CountOf(false)) {}

  Duplicates Run() {
    RemoveOld();
    m_inForce.BeginStep(0, false);
    TakeOwner(m_model);
    if (const KvoSimPosition assembly = m_document.GetModel().GetAssembly(); !assembly.IsNull())
      TakeOwner(assembly);
    for (const KvoSimPosition& step : m_document.Context().GetRecords(eds_RecordKind::HistoryStep))
      TakeStep(step.DataRecord());
    if (!m_inForce.Sources().empty()) inpS_ExcitationWriter(m_document, m_inForce).Write();
    return ToldDuplicates();
  }

private:
  long long CountOf(bool nodes) const {
    const KvoObjMesh mesh = m_document.GetMesh();
    if (mesh.IsNull()) return 0;
    const KvoSimPosition all =
        mesh.Position().Follow(nodes ? eds_Member::Nodes : eds_Member::Elements);
    if (all.IsNull()) return 0;
    const KvoSimCSet set =
        all.DataRecord().GetSet(nodes ? eds_NodeSet_Membership : eds_ElementSet_Membership);
    return set.IsNull() ? 0 : set.Size();
  }

  // Those of other programs have no given record.
  void RemoveOld() {
    for (KvoSimPosition& relay : m_document.Context().GetRecords(eds_RecordKind::Relay)) {
      const KvoSimPosition of = relay.DataRecord().GetReference(eds_Relay_Excitation);
      if (of.IsNull() || !of.DataRecord().GetReference(eds_Excitation_Given).IsNull())
        relay.Remove();
    }
    for (KvoSimPosition& old : m_document.Context().GetRecords(eds_RecordKind::Excitation))
      if (!old.DataRecord().GetReference(eds_Excitation_Given).IsNull()) old.Remove();
  }

  void TakeOwner(const KvoSimPosition& owner) {
    cow_List<Given> given;
    for (const KvoSimPosition& record : owner.GetVector(eds_Member::InitialConditions))
      if (const Kind* kind = Kind::Of(record.Object().RecordKind()))
        given.push_back({record, kind, {}});
    Take(given);
  }

  void TakeStep(const KvoSimDataRecord& history) {
    m_inForce.BeginStep(history.GetInt(eds_HistoryStep_Number),
                        history.GetBool(eds_HistoryStep_Perturbation));
    const KvoSimPosition step = history.GetReference(eds_HistoryStep_Step);
    if (step.IsNull()) return;
    const auto places = step.GetIntKeys(eds_Member::StepKeywords);
    const auto records = step.FollowMap(eds_Member::StepKeywords);
    cow_List<std::size_t> order(records.size());
    for (std::size_t n = 0; n < order.size(); ++n) order[n] = n;
    std::ranges::sort(order, {}, [&](std::size_t n) { return places[n]; });
    cow_List<Given> given;
    KvoSimPosition loadCase;
    for (const std::size_t n : order) {
      const eds_RecordKind form = records[n].Object().RecordKind();
      if (form == eds_FormKind::LoadCase) loadCase = records[n];
      if (form == eds_FormKind::EndLoadCase) loadCase = {};
      if (const Kind* kind = Kind::Of(form)) given.push_back({records[n], kind, loadCase});
    }
    Take(given);
  }

  struct Given {
    KvoSimPosition record;
    const Kind* kind;
    KvoSimPosition loadCase;
  };

  static long long VariableOf(const Given& given) {
    return given.kind->variable < 0 ? 0 : given.record.DataRecord().GetInt64(given.kind->variable);
  }

  // One keyword of a kind that begins anew does so for the step, whatever its place in it.
  void Take(const cow_List<Given>& all) {
    for (const Given& given : all) {
      const KvoSimDataRecord record = given.record.DataRecord();
      const bool isNew = given.kind->op >= 0 && record.GetString(given.kind->op) == "NEW";
      const bool isRemoved = given.kind->remove >= 0 && record.GetBool(given.kind->remove);
      if ((isNew || isRemoved) && given.loadCase.IsNull())
        m_inForce.TakeBack(*given.kind, VariableOf(given));
    }
    for (const Given& given : all) {
      const bool isRemoved =
          given.kind->remove >= 0 && given.record.DataRecord().GetBool(given.kind->remove);
      if (!isRemoved) m_inForce.Add(given.record, *given.kind, VariableOf(given), given.loadCase);
    }
  }

  Duplicates ToldDuplicates() const {
    Duplicates told;
    if (m_inForce.Duplicates().empty()) return told;
    KvoObjLabeler labeler(m_document, 0);
    labeler.Read();
    for (const inpS_InForce::Duplicate& duplicate : m_inForce.Duplicates()) {
      inpS_DuplicateCondition& one = told.emplace_back();
      one.record = duplicate.record;
      one.row = duplicate.row;
      for (const int32_t flat : duplicate.ordinals.Members()) {
        int64_t ordinal = 0;
        const int occurrence = labeler.OccurrenceOfFlat(flat, ordinal);
        if (occurrence >= 0) one.labels.push_back(labeler.GetInstanceLabel(occurrence, ordinal));
      }
    }
    return told;
  }

  const KvoObjDocument& m_document;
  KvoSimPosition m_model;
  inpS_InForce m_inForce;
};

} // namespace

Duplicates inpS_deriveExcitations(const KvoObjDocument& document) {
  KvoSimTransaction transaction(document.ContextID());
  Duplicates duplicates = Deriver(document).Run();
  transaction.Commit();
  return duplicates;
}
