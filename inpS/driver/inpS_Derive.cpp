#include "inpS/driver/inpS_Derive.h"
#include "database/KvoObjLabeler.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimTransaction.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/framework/inpS_Inventory.h"
#include "inpS/framework/inpS_MemoryDoor.h"
#include "inpS/history/inpS_History.h"
#include "inpS/history/inpS_TimePointTables.h"
#include "inpS/properties/inpS_OrientationSystems.h"
#include "inpS/properties/inpS_SectionAssignments.h"
#include "inpS/properties/inpS_SectionFields.h"
#include <set>

namespace {

// One that varies over elements has systems that its sections ask for, in their decks' words.
cow_List<KvoSimPosition> givenSystems(const KvoSimContext& context) {
  cow_List<KvoSimPosition> given;
  for (const eds_RecordKind kind : {eds_FormKind::Orientation, eds_FormKind::OrientationByNodes,
                                    eds_FormKind::OrientationUser, eds_FormKind::Transform})
    for (const KvoSimPosition& record : context.GetRecords(kind))
      if (record.IsA(eds_FormKind::Transform) || !inpS_OrientationData::IsByElement(record))
        given.push_back(record);
  return given;
}

// What goes with a system: its points or axes, and the component sets over which they are given.
void removePoints(const KvoSimPosition& values, std::set<int64_t>& components) {
  if (values.IsNull()) return;
  for (const KvoSimPosition& drawer : values.GetVector(eds_Member::Drawers)) {
    components.insert(drawer.DataRecord().GetReference(eds_Drawer_Over).ID());
    drawer.DataRecord().GetReference(eds_Drawer_Array).Remove();
    drawer.Remove();
  }
  values.Remove();
}

void removeSystems(const KvoSimContext& context, const cow_List<KvoSimPosition>& given) {
  std::set<unsigned long long> all;
  for (const KvoSimPosition& record : given) all.insert(record.Object().Packed());
  std::set<int64_t> components;
  for (KvoSimPosition& system : context.GetRecords(eds_RecordKind::LocalSystem)) {
    const KvoSimDataRecord record = system.DataRecord();
    const KvoSimPosition of = record.GetReference(eds_LocalSystem_Given);
    if (!of.IsNull() && !all.contains(of.Object().Packed())) continue;
    for (const int field : {eds_LocalSystem_PointA, eds_LocalSystem_PointB, eds_LocalSystem_Orient})
      removePoints(record.GetReference(field), components);
    system.Remove();
  }
  for (const KvoSimPosition& drawer : context.GetRecords(eds_RecordKind::Drawer))
    components.erase(drawer.DataRecord().GetReference(eds_Drawer_Over).ID());
  for (const int64_t set : components) context.GetRecord(eds_RecordKind::CSet, set).Pos().Remove();
}

void deriveLocalSystems(const KvoObjDocument& document) {
  const cow_List<KvoSimPosition> given = givenSystems(document.Context());
  if (given.empty()) return;
  KvoSimTransaction transaction(document.ContextID());
  removeSystems(document.Context(), given);
  inpS_Inventory inventory;
  inventory.SetDocument(document);
  KvoObjLabeler nodes(document, 0);
  nodes.Read();
  inpS_OrientationSystems systems(inventory, nodes);
  for (const KvoSimPosition& record : given) systems.Derive(record, record.Parent());
  transaction.Commit();
}

} // namespace

void inpS_deriveSections(const KvoObjDocument& document) {
  inpS_deriveSectionAssignments(document);
  inpS_deriveSectionFields(document);
}

cow_List<inpS_DuplicateCondition> inpS_deriveSteps(const KvoObjDocument& document) {
  inpS_deriveTimePoints(document);
  inpS_deriveHistory(document);
  return inpS_deriveExcitations(document);
}

long long inpS_deriveAgain(const KvoObjDocument& document) try {
  deriveLocalSystems(document);
  inpS_deriveSections(document);
  return static_cast<long long>(inpS_deriveSteps(document).size());
} catch (...) {
  inpS_passOn();
}
