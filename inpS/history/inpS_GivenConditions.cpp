#include "inpS/history/inpS_GivenConditions.h"
#include "database/KvoObjModel.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_ColumnWords.h"
#include "inpS/history/inpS_History.h"
#include <algorithm>

namespace {

using Kind = inpS_ExcitationKind;

struct Given {
  KvoSimPosition record;
  const Kind* kind;
  KvoSimPosition loadCase;
};

bool isRemoved(const Given& given) {
  return given.kind->remove >= 0 && given.record.DataRecord().GetBool(given.kind->remove);
}

// A keyword that removes is about those before it, of its own step, too.
bool isRemovedLater(const cow_List<Given>& all, std::size_t n) {
  return all[n].kind->remove >= 0 && std::any_of(all.begin() + static_cast<std::ptrdiff_t>(n) + 1,
                                                 all.end(), [&](const Given& later) {
                                                   return later.kind == all[n].kind &&
                                                          isRemoved(later) &&
                                                          later.loadCase == all[n].loadCase;
                                                 });
}

// Of a keyword that does not tell what it names, each type of targets by itself.
void add(const Given& given, inpS_InForce& inForce) {
  const KvoSimDataRecord record = given.record.DataRecord();
  const long long variable = given.kind->VariableOf(record);
  if (given.kind->key != Kind::Key::Words) {
    for (long long n = 0; n < given.kind->VariablesOf(record); ++n)
      inForce.Add(given.record, *given.kind, variable + n, given.loadCase);
    return;
  }
  const auto& items = given.kind->info->columnItems;
  const auto wordsOf = [&](int column) {
    return inpS_ColumnWords::Stored(record, items[static_cast<std::size_t>(column)].wordsField);
  };
  const auto targets = std::make_shared<const inpS_NamedTargets>(
      *inForce.Names(), wordsOf(given.kind->target), wordsOf(given.kind->label));
  for (const inpS_NamedTargets::Type type : inpS_NamedTargets::types)
    inForce.Add(given.record, inForce.Own(given.kind->OfType(type, targets)), variable,
                given.loadCase);
}

// One keyword of a kind that begins anew does so for the step, whatever its place in it.
void take(const cow_List<Given>& all, inpS_InForce& inForce) {
  for (const Given& given : all) {
    const bool isNew =
        given.kind->op >= 0 && given.record.DataRecord().GetString(given.kind->op) == "NEW";
    if (!(isNew || isRemoved(given)) || !given.loadCase.IsNull()) continue;
    const KvoSimDataRecord record = given.record.DataRecord();
    for (long long n = 0; n < given.kind->VariablesOf(record); ++n)
      inForce.TakeBack(*given.kind, given.kind->VariableOf(record) + n);
  }
  for (std::size_t n = 0; n < all.size(); ++n) {
    const Given& given = all[n];
    if (!isRemoved(given) && !isRemovedLater(all, n)) add(given, inForce);
  }
}

void takeOwner(const KvoSimPosition& owner, inpS_InForce& inForce) {
  cow_List<Given> given;
  for (const eds_Member member : {eds_Member::InitialConditions, eds_Member::Interactions})
    for (const KvoSimPosition& record : owner.GetVector(member))
      if (const Kind* kind = Kind::Of(record.Object().RecordKind()))
        given.push_back({record, kind, {}});
  take(given, inForce);
}

void takeStep(const KvoSimDataRecord& history, inpS_InForce& inForce) {
  inForce.BeginStep(history.GetInt(eds_HistoryStep_Number), inpS_isPerturbation(history));
  const KvoSimPosition step = history.GetReference(eds_HistoryStep_Step);
  if (step.IsNull()) return;
  cow_List<Given> given;
  KvoSimPosition loadCase;
  for (const KvoSimPosition& record : inpS_keywordsInOrder(step)) {
    const eds_RecordKind form = record.Object().RecordKind();
    // One of a substructure goes on to the next one, or to the end of the step.
    if (form == eds_FormKind::LoadCase || form == eds_FormKind::SubstructureLoadCase)
      loadCase = record;
    if (form == eds_FormKind::EndLoadCase) loadCase = {};
    if (const Kind* kind = Kind::Of(form)) given.push_back({record, kind, loadCase});
  }
  take(given, inForce);
}

long long countOf(const KvoObjDocument& document, bool nodes) {
  const KvoObjMesh mesh = document.GetMesh();
  if (mesh.IsNull()) return 0;
  const KvoSimPosition all =
      mesh.Position().Follow(nodes ? eds_Member::Nodes : eds_Member::Elements);
  if (all.IsNull()) return 0;
  const KvoSimCSet set =
      all.DataRecord().GetSet(nodes ? eds_NodeSet_Membership : eds_ElementSet_Membership);
  return set.IsNull() ? 0 : set.Size();
}

} // namespace

bool inpS_isPerturbation(const KvoSimDataRecord& history) {
  constexpr int task = 1; // of the vocabulary StepRegistration
  return history.GetBool(eds_HistoryStep_Perturbation) ||
         history.GetSymb(eds_HistoryStep_Registration) == task;
}

inpS_InForce inpS_givenConditions(const KvoObjDocument& document) {
  inpS_InForce inForce(countOf(document, true), countOf(document, false));
  if (!document.Context().GetRecords(eds_FormKind::FluidBoundary).empty())
    inForce.SetNames(std::make_shared<const inpS_NamedTargets::Names>(document));
  inForce.BeginStep(0, false);
  // The assembly stands before what the model has, wherever that stood.
  if (const KvoSimPosition assembly = document.GetModel().GetAssembly(); !assembly.IsNull())
    takeOwner(assembly, inForce);
  takeOwner(document.GetModel().Position(), inForce);
  for (const KvoSimPosition& step : document.Context().GetRecords(eds_RecordKind::HistoryStep))
    takeStep(step.DataRecord(), inForce);
  return inForce;
}
