#include "inpS/driver/inpS_Phases.h"
#include "database/KvoObjMesh.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimCollection.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimDistribution.h"
#include "database/KvoSimGrid.h"
#include "database/KvoSimTransaction.h"
#include "inpS/driver/inpS_Derive.h"
#include "inpS/driver/inpS_HandledKinds.h"
#include "inpS/framework/inpS_UnusedLines.h"
#include "inpS/history/inpS_AmplitudeVisitor.h"
#include "inpS/history/inpS_BoundaryVisitor.h"
#include "inpS/history/inpS_InitialConditionVisitor.h"
#include "inpS/history/inpS_LoadVisitor.h"
#include "inpS/history/inpS_OutputVisitor.h"
#include "inpS/history/inpS_StepVisitor.h"
#include "inpS/history/inpS_SubstructureOutputVisitor.h"
#include "inpS/history/inpS_TimePointsVisitor.h"
#include "inpS/interactions/inpS_ConnectorBehaviorVisitor.h"
#include "inpS/interactions/inpS_ConstraintVisitor.h"
#include "inpS/interactions/inpS_CosimulationVisitor.h"
#include "inpS/interactions/inpS_InteractionPropertyVisitor.h"
#include "inpS/interactions/inpS_InteractionVisitor.h"
#include "inpS/interactions/inpS_RigidBodyVisitor.h"
#include "inpS/materials/inpS_MaterialVisitor.h"
#include "inpS/mesh/inpS_MeshDimensions.h"
#include "inpS/mesh/inpS_MeshVisitor.h"
#include "inpS/mesh/inpS_Salvage.h"
#include "inpS/mesh/inpS_UserNodeVisitor.h"
#include "inpS/model/inpS_AssemblyVisitor.h"
#include "inpS/model/inpS_ModelVisitor.h"
#include "inpS/model/inpS_VerbatimVisitor.h"
#include "inpS/properties/inpS_DistributionLinks.h"
#include "inpS/properties/inpS_DistributionTableVisitor.h"
#include "inpS/properties/inpS_DistributionVisitor.h"
#include "inpS/properties/inpS_NodalThicknessVisitor.h"
#include "inpS/properties/inpS_OrientationFixupVisitor.h"
#include "inpS/properties/inpS_OrientationVisitor.h"
#include "inpS/properties/inpS_SectionInventory.h"
#include "inpS/properties/inpS_SectionVisitor.h"
#include "inpS/sets/inpS_SurfaceNodalAreas.h"
#include "inpS/sets/inpS_SurfaceVisitor.h"
#include "parser/inp_Utils.h"
#include <set>

using Driver = inpS_Inp2Sim;

const Driver::Phase* Driver::Phases() {
  using L = Labelers;
  static constexpr Phase phases[] = {
      {"initializesim",
       [](Driver& d, L&) { return d.InitializeSIM(d.m_document, d.m_modelString); }, true},
      {"model", [](Driver& d, L&) { return d.ProcessModel(); }, true},
      {"assembly", [](Driver& d, L&) { return d.ProcessAssembly(); }, true},
      {"nodelabeler", [](Driver& d, L& l) { return d.ReadNodeLabeler(l); }, false},
      {"elemlabeler", [](Driver& d, L& l) { return d.ReadElementLabeler(l); }, false},
      {"amplitudes", [](Driver& d, L&) { return d.ProcessAmplitudes(); }, true},
      {"materials", [](Driver& d, L&) { return d.ProcessMaterials(); }, true},
      {"conbehav", [](Driver& d, L& l) { return d.ProcessConnectorBehaviors(l); }, true},
      {"mesh", [](Driver& d, L& l) { return d.ProcessMesh(l); }, true},
      {"surfaces", [](Driver& d, L& l) { return d.ProcessSurfaces(l); }, true},
      {"rigidbodies", [](Driver& d, L& l) { return d.ProcessRigidBodies(l); }, true},
      {"distributions", [](Driver& d, L& l) { return d.ProcessDistributions(l); }, true},
      {"orientations", [](Driver& d, L& l) { return d.ProcessOrientations(l); }, true},
      {"sections", [](Driver& d, L& l) { return d.ProcessSections(l); }, true},
      {"constraints", [](Driver& d, L& l) { return d.ProcessConstraints(l); }, true},
      {"steps", [](Driver& d, L& l) { return d.ProcessSteps(l); }, true},
      {"interactions", [](Driver& d, L& l) { return d.ProcessInteractions(l); }, true},
      {"ics", [](Driver& d, L& l) { return d.ProcessInitialConditions(l); }, true},
      {"bcs", [](Driver& d, L& l) { return d.ProcessBoundaryConditions(l); }, true},
      {"loads", [](Driver& d, L& l) { return d.ProcessLoads(l); }, true},
      {"output", [](Driver& d, L& l) { return d.ProcessOutput(l); }, true},
      {"cosim", [](Driver& d, L& l) { return d.ProcessCosimulation(l); }, true},
      {"surfnodearea", [](Driver& d, L&) { return d.ProcessSurfaceNodalAreas(); }, false},
      {nullptr, nullptr, false}};
  return phases;
}

const Driver::Phase* Driver::RestartPhases() {
  using L = Labelers;
  static constexpr Phase phases[] = {
      {"res-nodelabeler", [](Driver& d, L& l) { return d.ReadNodeLabeler(l); }, false},
      {"res-elemlabeler", [](Driver& d, L& l) { return d.ReadElementLabeler(l); }, false},
      {"res-amplitudes", [](Driver& d, L&) { return d.ProcessAmplitudes(); }, true},
      {"res-mesh", [](Driver& d, L& l) { return d.ProcessRestartMesh(l); }, true},
      {"res-substructout", [](Driver& d, L& l) { return d.ProcessSubstructureOutput(l); }, true},
      {"res-surf", [](Driver& d, L& l) { return d.ProcessSurfaces(l); }, false},
      {"res-steps", [](Driver& d, L& l) { return d.ProcessSteps(l); }, true},
      {"res-interactions", [](Driver& d, L& l) { return d.ProcessInteractions(l); }, true},
      {"res-bcs", [](Driver& d, L& l) { return d.ProcessBoundaryConditions(l); }, true},
      {"res-loads", [](Driver& d, L& l) { return d.ProcessLoads(l); }, true},
      {"res-output", [](Driver& d, L& l) { return d.ProcessOutput(l); }, true},
      {"res-cosim", [](Driver& d, L& l) { return d.ProcessCosimulation(l); }, true},
      {"res-surfnodearea", [](Driver& d, L&) { return d.ProcessSurfaceNodalAreas(); }, false},
      {"res-savenodes", [](Driver& d, L& l) { return d.SaveNodeLabels(l); }, false},
      {"res-saveelems", [](Driver& d, L& l) { return d.SaveElementLabels(l); }, false},
      {nullptr, nullptr, false}};
  return phases;
}

// A phase that converts nothing yet costs nothing.
template <class Visitor> bool Driver::Run(Labelers& labelers) {
  if constexpr (!inpS_convertsAny<Visitor>()) return true;
  Visitor visitor(*labelers.nodes, *labelers.elements, m_inventory);
  visitor.VisitListAndReport(m_keywords);
  return !visitor.IsError();
}

template <class Visitor> bool Driver::RunForms(Labelers& labelers) {
  Visitor visitor(*labelers.nodes, *labelers.elements, m_inventory, m_ledger);
  visitor.SetMeshLeftOut(m_meshLeftOut);
  visitor.VisitListAndReport(m_keywords);
  return !visitor.IsError();
}

// ---- skeleton, parts, assembly

bool Driver::InitializeSIM(const KvoObjDocument& document, const cow_String& modelString) {
  KvoSimTransaction transaction(document.ContextID());
  const KvoObjModel owner = document.GetModel();
  const KvoSimPosition model(document.Context());
  if (m_inventory.HasHeading()) model.SetAnnotation(m_inventory.Heading());
  KvoSimDataRecord record = owner.DataRecord();
  if (!modelString.empty()) record.SetString(eds_Model_ModelString, modelString);
  record.SetInt(eds_Model_Dimensions, m_inventory.NumberSpatialDimensions());
  record.SetBool(eds_Model_FeatureEnhanced, m_inventory.IsFeatureEnhanced());

  const auto attach = [&](const KvoSimPosition& to, eds_CollectionKind kind) {
    const KvoSimPosition collection = to.CreateTypedCollection(kind);
    to.Associate(eds_Member::Collections, collection);
    return collection.AsCollection();
  };
  attach(model, eds_CollectionKind::NodeSet);
  KvoObjMesh mesh;
  mesh.Register(document);
  KvoObjModel(owner).SetMesh(mesh);
  const KvoSimPosition at = mesh.Position();
  const KvoSimCollection nodes = at.CreateTypedCollection(eds_CollectionKind::Node).AsCollection();
  const KvoSimCollection elements =
      at.CreateTypedCollection(eds_CollectionKind::Element).AsCollection();
  mesh.SetNodeCollection(nodes);
  mesh.SetElementCollection(elements);
  attach(model, eds_CollectionKind::ElementSet);
  const KvoSimCollection points = document.GetPointCollection();
  const KvoSimDSet connectivity =
      document.CreateTypedDSet(eds_DataType::Connectivity, KvoSimGrid{elements, points, nodes});
  mesh.SetConnectivity(connectivity);
  attach(model, eds_CollectionKind::Occurrence);
  attach(at, eds_CollectionKind::Region);
  const KvoSimGrid byNode{nodes, document.GetComponentCollection()};
  const KvoSimRangeType vectors(eds_ValueType::Double, 3);
  mesh.SetCoordinates(document.CreateTypedDistribution(eds_DataType::Coordinates, byNode, vectors));
  mesh.SetNodeNormals(document.CreateTypedDistribution(eds_DataType::NodeNormals, byNode, vectors));

  const KvoSimPosition defaults = at.CreateDataRecord(eds_RecordKind::MeshDefaults);
  at.SetPosition(eds_Member::MeshDefaults, defaults);
  attach(defaults, eds_CollectionKind::UserNode);
  attach(defaults, eds_CollectionKind::UserElement);
  transaction.Commit();
  return true;
}

bool Driver::ProcessModel() {
  inpS_ModelVisitor visitor(m_inventory, m_ledger);
  visitor.VisitListAndReport(m_keywords);
  return !visitor.IsError();
}

bool Driver::ProcessAssembly() {
  inpS_AssemblyVisitor visitor(m_inventory, m_ledger);
  visitor.VisitList(m_keywords);
  visitor.ReportUnreferredParameters(m_keywords, inpS_ownKeywords(inpS_Subject::Skeleton));
  visitor.Report();
  return !visitor.IsError();
}

bool Driver::KeepVerbatim(bool restart, const inp_KeywordList& keywords) {
  inpS_VerbatimVisitor visitor(m_inventory, m_ledger);
  if (restart) {
    visitor.ContinuePositions();
    visitor.SettleSkeleton(keywords);
  }
  visitor.VisitListAndReport(keywords);
  m_notModelled = visitor.AllKept();
  return !visitor.IsError();
}

bool Driver::ReadNodeLabeler(Labelers& labelers) {
  labelers.nodes.emplace(m_document, 0);
  labelers.nodes->Read();
  return true;
}

bool Driver::ReadElementLabeler(Labelers& labelers) {
  labelers.elements.emplace(m_document, 1);
  labelers.elements->Read();
  m_surfaceVisitor.reset();
  m_surfaceVisitor = std::make_unique<inpS_SurfaceVisitor>(*labelers.nodes, *labelers.elements,
                                                           m_inventory, m_ledger);
  return true;
}

// ---- model data

bool Driver::ProcessAmplitudes() {
  inpS_AmplitudeVisitor visitor(m_inventory, m_ledger);
  visitor.VisitListAndReport(m_keywords);
  return !visitor.IsError();
}

bool Driver::ProcessMaterials() {
  inpS_MaterialVisitor visitor(m_inventory, m_ledger);
  visitor.VisitListAndReport(m_keywords);
  m_distributed = visitor.Distributed();
  return !visitor.IsError();
}

bool Driver::ProcessConnectorBehaviors(Labelers& labelers) {
  return RunForms<inpS_ConnectorBehaviorVisitor>(labelers);
}

// Lines alone do not show where a generator, a copy or a map puts its nodes, or what a restart
// adds: the stored dimensions are raised to what the lines of the mesh, once written, will say.
void Driver::RaiseDimensions(const inpS_MeshVisitor& mesh) {
  if (m_inventory.NumberSpatialDimensions() == 3 ||
      (mesh.HasGenerated() && inpS_tellsThreeDimensions(m_document.GetModel().GetMesh())))
    m_document.GetModel().DataRecord().SetInt(eds_Model_Dimensions, 3);
}

// A failed mesh is committed as far as it got: element types and beams' extra nodes stay, nodes and
// elements are not written. A faulty set fails no mesh, though the phase.
bool Driver::ProcessMesh(Labelers& labelers) {
  KvoSimTransaction transaction(m_document.ContextID()); // bulk arrays are stored as they are read
  std::optional<inpS_MeshVisitor> mesh;
  const bool isSound = ReadMesh(labelers, mesh);
  mesh->SaveBeamExtraNodes(transaction);
  mesh->SaveElementTypes(transaction);
  bool good = !m_meshLeftOut;
  if (!good) mesh->Discard();
  if (good) {
    mesh->SaveMeshAndUserNodes(transaction);
    mesh->SaveMeshAndUserElements(transaction);
    mesh->SaveSets(transaction);
    RaiseDimensions(*mesh);
    good = Run<inpS_UserNodeVisitor>(labelers);
  }
  if (good) {
    labelers.nodes->Save(transaction);
    labelers.elements->Save(transaction);
  }
  transaction.Commit();
  return good && isSound;
}

// False when anything of it is in error; m_meshLeftOut says whether it can be stored.
bool Driver::ReadMesh(Labelers& labelers, std::optional<inpS_MeshVisitor>& mesh) {
  mesh.emplace(*labelers.nodes, *labelers.elements, m_inventory, m_ledger);
  mesh->VisitListAndReport(m_keywords);
  const bool good = !mesh->IsError();
  const bool isSound = good && !mesh->HasSetErrors() && !mesh->HasTextErrors();
  m_meshLeftOut = !good && !(m_salvage && ReadSoundMesh(labelers, mesh));
  if (m_meshLeftOut) m_ledger.LeaveOut(inpS_Subject::Mesh);
  m_textElements = mesh->TextElements();
  return isSound;
}

// Once more from the start, as often as it takes: labels that the labelers have taken in stay
// there.
bool Driver::ReadSoundMesh(Labelers& labelers, std::optional<inpS_MeshVisitor>& mesh) {
  inpS_Salvage salvage;
  do {
    mesh->Discard();
    mesh.reset();
    labelers.nodes.emplace(m_document, 0).Read();
    labelers.elements.emplace(m_document, 1).Read();
    m_ledger.Withdraw(inpS_Subject::Mesh);
    mesh.emplace(*labelers.nodes, *labelers.elements, m_inventory, m_ledger);
    salvage.Begin();
    mesh->SetSalvage(&salvage);
    mesh->VisitList(m_keywords);
  } while (mesh->IsWhole() && salvage.IsToBeRepeated());
  mesh->SetSalvage(nullptr);
  if (!mesh->IsWhole()) return false;
  inp_Visitor messages;
  messages.AddWarning(
      {inp_Utils::Format("The mesh is stored without what is faulty: the lines that "
                         "cannot be read, and %lld element%s besides.",
                         salvage.LeftOut(), salvage.LeftOut() == 1 ? "" : "s")});
  messages.LeaveOut("element", salvage.LeftOut());
  // Elements that were passed over have no fault in the last walk.
  messages.LeaveOut("mesh fault", static_cast<long long>(mesh->Errors().size()));
  messages.Report();
  return true;
}

bool Driver::ProcessSurfaces(Labelers& labelers) {
  if (!m_surfaceVisitor)
    m_surfaceVisitor = std::make_unique<inpS_SurfaceVisitor>(*labelers.nodes, *labelers.elements,
                                                             m_inventory, m_ledger);
  m_surfaceVisitor->SetTextElements(m_textElements);
  if (labelers.hasSurfaces) m_surfaceVisitor->SkipConverted();
  m_surfaceVisitor->VisitListAndReport(m_keywords);
  return !m_surfaceVisitor->IsError();
}

bool Driver::ProcessRigidBodies(Labelers& labelers) {
  return Run<inpS_RigidBodyVisitor>(labelers);
}

bool Driver::ProcessDistributions(Labelers& labelers) {
  const bool good = RunForms<inpS_DistributionTableVisitor>(labelers);
  const bool isSound = RunForms<inpS_DistributionVisitor>(labelers) && good;
  inp_Visitor messages;
  inpS_linkDistributions(m_distributed, m_document, messages);
  messages.Report();
  return isSound;
}

bool Driver::ProcessOrientations(Labelers& labelers) {
  inpS_OrientationVisitor visitor(*labelers.nodes, *labelers.elements, m_inventory, m_ledger);
  visitor.SetMeshLeftOut(m_meshLeftOut);
  visitor.VisitListAndReport(m_keywords);
  const auto& varying = visitor.ConstGetOri2DistNameMap();
  if (varying.empty()) return !visitor.IsError();
  inpS_OrientationFixupVisitor fixup(*labelers.nodes, *labelers.elements, m_inventory, varying);
  fixup.VisitListAndReport(m_keywords);
  return !visitor.IsError() && !fixup.IsError();
}

bool Driver::ProcessSections(Labelers& labelers) {
  inpS_SectionInventory sections(*labelers.nodes, *labelers.elements, m_inventory);
  sections.VisitList(m_keywords);
  inpS_NodalThicknessVisitor thickness(*labelers.nodes, *labelers.elements, m_inventory);
  thickness.VisitListAndReport(m_keywords);
  if (!m_meshLeftOut) thickness.Save(); // of nodes that are stored
  inpS_SectionVisitor visitor(*labelers.nodes, *labelers.elements, m_inventory, m_ledger);
  visitor.SetMeshLeftOut(m_meshLeftOut);
  visitor.SetTextElements(m_textElements);
  visitor.VisitListAndReport(m_keywords);
  sections.TellDoubled(m_ledger, sections);
  sections.Report();
  if (sections.NumberSections() > 0) inpS_deriveSections(m_document);
  visitor.WriteBulkShellSectionDistributions();
  return !visitor.IsError();
}

bool Driver::ProcessOldStyleRebars(Labelers&) {
  return true;
}

bool Driver::ProcessConstraints(Labelers& labelers) {
  return RunForms<inpS_ConstraintVisitor>(labelers);
}

// ---- history

bool Driver::ProcessSteps(Labelers& labelers) {
  const bool good = RunForms<inpS_TimePointsVisitor>(labelers);
  return RunForms<inpS_StepVisitor>(labelers) && good;
}

bool Driver::ProcessInteractions(Labelers& labelers) {
  const bool good = RunForms<inpS_InteractionPropertyVisitor>(labelers);
  return RunForms<inpS_InteractionVisitor>(labelers) && good;
}

bool Driver::ProcessInitialConditions(Labelers& labelers) {
  inpS_InitialConditionVisitor visitor(*labelers.nodes, *labelers.elements, m_inventory, m_ledger);
  visitor.SetMeshLeftOut(m_meshLeftOut);
  visitor.SetPlaces(m_boundaries);
  visitor.VisitListAndReport(m_keywords);
  return !visitor.IsError();
}

bool Driver::ProcessBoundaryConditions(Labelers& labelers) {
  inpS_BoundaryVisitor visitor(*labelers.nodes, *labelers.elements, m_inventory, m_ledger);
  visitor.SetMeshLeftOut(m_meshLeftOut);
  visitor.SetPlaces(m_boundaries);
  visitor.VisitListAndReport(m_keywords);
  return !visitor.IsError();
}

bool Driver::ProcessLoads(Labelers& labelers) {
  return RunForms<inpS_LoadVisitor>(labelers);
}

bool Driver::ProcessOutput(Labelers&) {
  if constexpr (!inpS_convertsAny<inpS_OutputVisitor>()) return true;
  inpS_OutputVisitor visitor(m_inventory);
  visitor.VisitListAndReport(m_keywords);
  return !visitor.IsError();
}

bool Driver::ProcessCosimulation(Labelers& labelers) {
  return Run<inpS_CosimulationVisitor>(labelers);
}

bool Driver::ProcessSurfaceNodalAreas() {
  m_surfaceVisitor.reset();
  SaveSurfaceNodalAreas();
  return true;
}

namespace {

// At the keywords that define them; one from before a restart has none.
void tellAreasLeftOut(const cow_List<KvoObjSurface>& surfaces, const inp_KeywordList& keywords,
                      const KvoObjModel& model) {
  if (surfaces.empty()) return;
  std::set<std::pair<unsigned long long, cow_String>> untold; // by owner
  for (const KvoObjSurface& surface : surfaces)
    untold.emplace(surface.Owner().Object().Packed(), surface.Name());
  const auto ownerOf = [&](const inp_Scope& scope) {
    if (scope.kind == inp_Scope::Kind::Part) return model.GetPart(scope.name);
    if (scope.kind == inp_Scope::Kind::Instance) return model.GetOccurence(scope.name);
    return model.GetAssembly().IsNull() ? model.Position() : model.GetAssembly();
  };
  const auto textFor = [](const cow_String& name) {
    return "The nodal areas of surface \"" + name +
           "\" are too large to be held; they are left out.";
  };
  inp_Visitor messages;
  for (const inp_Keyword& keyword : keywords) {
    if (keyword.Kind() != inp_KwSurface || keyword.IsInstanceCopy()) continue;
    const KvoSimPosition owner = ownerOf(keyword.Scope());
    const cow_String name = keyword.StringOf("name", "");
    if (!owner.IsNull() && untold.erase({owner.Object().Packed(), name}) > 0)
      messages.AddWarning(inp_Utils::MessageInKeyword(keyword, textFor(name)));
  }
  for (const auto& [owner, name] : untold) messages.AddWarning({textFor(name)});
  messages.Report();
}

} // namespace

// Of the surfaces that have none yet.
void Driver::SaveSurfaceNodalAreas() {
  const KvoObjMesh mesh = m_document.GetMesh();
  if (mesh.IsNull() || m_document.Context().GetRecords(eds_RecordKind::Surface).empty()) return;
  KvoSimTransaction transaction(m_document.ContextID());
  const cow_List<KvoObjSurface> leftOut = inpS_SurfaceNodalAreas(mesh).Save();
  transaction.Commit();
  tellAreasLeftOut(leftOut, m_keywords, m_document.GetModel());
}

// ---- restart

bool Driver::ProcessRestartMesh(Labelers& labelers) {
  KvoSimTransaction transaction(m_document.ContextID());
  std::optional<inpS_MeshVisitor> mesh;
  bool good = ReadMesh(labelers, mesh);
  mesh->SaveElementTypes(transaction);
  labelers.holdUnstored = m_meshLeftOut;
  if (m_meshLeftOut) {
    mesh->Discard();
  } else {
    mesh->SaveBeamExtraNodes(transaction);
    mesh->SaveMeshAndUserNodes(transaction);
    mesh->SaveMeshAndUserElements(transaction);
    mesh->SaveSets(transaction);
    RaiseDimensions(*mesh);
  }
  transaction.Commit();
  good = Run<inpS_UserNodeVisitor>(labelers) && good;
  labelers.hasSurfaces = true;
  inpS_SurfaceVisitor surfaces(*labelers.nodes, *labelers.elements, m_inventory, m_ledger);
  surfaces.SetTextElements(m_textElements);
  surfaces.VisitListAndReport(m_keywords);
  good = !surfaces.IsError() && good;
  SaveSurfaceNodalAreas();
  return good;
}

bool Driver::ProcessSubstructureOutput(Labelers& labelers) {
  return Run<inpS_SubstructureOutputVisitor>(labelers);
}

bool Driver::SaveNodeLabels(Labelers& labelers) {
  if (labelers.holdUnstored) return true;
  KvoSimTransaction transaction(m_document.ContextID());
  labelers.nodes->Save(transaction);
  transaction.Commit();
  return true;
}

bool Driver::SaveElementLabels(Labelers& labelers) {
  if (labelers.holdUnstored) return true;
  KvoSimTransaction transaction(m_document.ContextID());
  labelers.elements->Save(transaction);
  transaction.Commit();
  return true;
}
