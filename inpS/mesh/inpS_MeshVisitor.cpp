#include "inpS/mesh/inpS_MeshVisitor.h"
#include "base/utl_Assert.h"
#include "database/KvoObjLabeler.h"
#include "database/KvoObjMesh.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimCollection.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/framework/inpS_UnusedLines.h"
#include "inpS/keywords/inpS_TinyNumber.h"
#include "inpS/keywords/inpS_UnreadField.h"
#include "inpS/mesh/inpS_BaseMesh.h"
#include "inpS/mesh/inpS_BaseSets.h"
#include "inpS/mesh/inpS_ElementParameters.h"
#include "inpS/mesh/inpS_ElementReading.h"
#include "inpS/mesh/inpS_GeneratedNodes.h"
#include "inpS/mesh/inpS_MeshStore.h"
#include "inpS/mesh/inpS_NodeGeneration.h"
#include "inpS/mesh/inpS_NodeReader.h"
#include "inpS/mesh/inpS_Salvage.h"
#include "inpS/mesh/inpS_ScopedNodes.h"
#include "parser/inp_Utils.h"
#include <algorithm>
#include <limits>

namespace {

constexpr long long kMaxLabel = 999999999;

// The first point of a system is given and is not the global origin, and there is no other one.
bool isOriginAlone(const inp_DataArray& data) {
  bool isOrigin = false;
  for (long long row = 0; row < data.Rows(); ++row)
    for (int col = 0, cols = data.Cols(row); col < cols; ++col) {
      if (data.AsDouble(row, col) == 0) continue;
      if (row > 0 || col >= 3) return false;
      isOrigin = true;
    }
  return isOrigin;
}

} // namespace

inpS_MeshVisitor::inpS_MeshVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                                   const inpS_Inventory& inventory, inpS_Ledger& ledger)
    : m_nodes(nodes), m_elements(elements), m_inventory(inventory), m_ledger(ledger),
      m_setReader(m_scopes, m_setMessages), m_asText(m_scopes, m_elements, m_setReader, ledger) {
  OpenRoot();
}

inpS_MeshVisitor::~inpS_MeshVisitor() = default;

void inpS_MeshVisitor::VisitList(inp_KeywordListRef keywords) {
  // User element types hold for the whole deck, wherever in it they are defined.
  for (const inp_Keyword& keyword : keywords)
    if (keyword.Kind() == inp_KwUserElement && !keyword.IsInstanceCopy())
      m_types.ReadUserElement(keyword, *this);
  m_hasInstances = std::any_of(keywords.begin(), keywords.end(), [](const inp_Keyword& keyword) {
    return keyword.Kind() == inp_KwInstance;
  });
  m_copyScopes = inpS_CopyScopes(keywords);
  m_generatorScopes = inpS_GeneratorScopes(keywords);
  if (m_generatorScopes.Holds(m_scopes.Root())) m_scopes.Root().nodes.KeepPoints();
  LoadBaseElements(m_scopes.Root());
  // A part without nodes has labels, too, though none: a restart sees from them that it is stored.
  if (!m_scopes.Root().isStored)
    for (const inp_Keyword& keyword : keywords)
      if (keyword.Kind() == inp_KwPart && !keyword.IsInstanceCopy())
        OpenPart(keyword.StringOf("name", ""));
  OpenStoredInstances(keywords);
  // An instance shares what its part is when it opens: parts come first wherever they stand.
  const auto isOfParts = [](const inp_Keyword& keyword) {
    return keyword.Scope().kind == inp_Scope::Kind::Part || keyword.Kind() == inp_KwUserElement;
  };
  for (const inp_Keyword& keyword : keywords)
    if (isOfParts(keyword)) Visit(keyword);
  CompleteParts(keywords);
  for (const inp_Keyword& keyword : keywords)
    if (!isOfParts(keyword)) Visit(keyword);
  Finish(keywords);
  ReportUnreferredParameters(keywords, inpS_ownKeywords(inpS_Subject::Mesh));
  inpS_reportUnusedLines(keywords, {inp_KwElcopy}, *this);
}

// ---- owners

void inpS_MeshVisitor::OpenRoot() {
  const KvoObjModel model = m_inventory.GetDocument().GetModel();
  const KvoObjMesh mesh = model.GetMesh();
  if (!mesh.IsNull()) {
    m_storedNodes = mesh.GetNodeCollection().Space();
    m_storedElements = mesh.GetElementCollection().Space();
  }
  inpS_MeshScope& root = m_scopes.Root();
  root.owner = model.GetAssembly();
  if (root.owner.IsNull()) root.owner = model.Position();
  OpenLabels(root);
}

void inpS_MeshVisitor::OpenLabels(inpS_MeshScope& scope) {
  const int stored = m_nodes.FindOccurrence(scope.owner);
  scope.isStored = stored >= 0;
  if (scope.part && !scope.isStored) {
    scope.nodeOccurrence = m_nodes.OpenSharedOccurrence(scope.owner, scope.part->nodeOccurrence);
    scope.elementOccurrence =
        m_elements.OpenSharedOccurrence(scope.owner, scope.part->elementOccurrence);
  } else {
    scope.nodeOccurrence = m_nodes.OpenOccurrence(scope.owner);
    scope.elementOccurrence = m_elements.OpenOccurrence(scope.owner);
  }
  scope.nodes.SetBase(m_nodes.Size(scope.nodeOccurrence));
  if (m_generatorScopes.Holds(scope)) scope.nodes.KeepPoints();
  if (!scope.isStored) return;
  scope.storedNodes = m_nodes.Size(scope.nodeOccurrence);
  scope.base = std::make_shared<inpS_BaseMesh>(m_inventory.GetDocument().GetMesh(), scope.owner,
                                               scope.storedNodes);
  scope.storedElements = m_elements.Size(scope.elementOccurrence);
  scope.nodeBase = std::max<long long>(0, m_nodes.FlatFirst(scope.nodeOccurrence));
  scope.elementBase = std::max<long long>(0, m_elements.FlatFirst(scope.elementOccurrence));
  inpS_MeshSetReader::ReadStored(m_inventory.GetDocument().GetMesh(), scope);
  if (&scope != &m_scopes.Root()) LoadBaseElements(scope);
}

// Elements from before a restart are looked at like those of the deck; as labels only where others
// may be made from them.
void inpS_MeshVisitor::LoadBaseElements(inpS_MeshScope& scope) {
  if (!scope.base) return;
  scope.base->LoadElements([this](const cow_String& name, int width) {
    const inpS_ElementParameters type(m_types.Data(), name);
    const int topology = type.TopologyNodes(width);
    return inpS_BaseMesh::Type{m_types.IndexOf(type), topology,
                               width > topology && type.CarriesReferenceNode(),
                               inpS_GeneratedNodes::IsCompleted(name), type.NodesOfPlane()};
  });
  if (m_copyScopes.Holds(scope)) scope.base->LoadLabels(m_nodes, scope.nodeOccurrence);
  if (scope.part) return; // whose labels it has
  const eds_LabelMap& labels = m_nodes.Labels(scope.nodeOccurrence);
  for (long long n = 0; n < scope.storedNodes; ++n)
    m_largestNodeLabel = std::max(m_largestNodeLabel, static_cast<int>(labels.Label(n)));
}

bool inpS_MeshVisitor::MayGrow(const inp_Keyword& keyword, const inpS_MeshScope& scope) {
  const bool atTheEnd = scope.kind == inpS_MeshScope::Kind::Root &&
                        scope.nodeBase + scope.storedNodes == m_storedNodes &&
                        scope.elementBase + scope.storedElements == m_storedElements;
  if (!scope.isStored || atTheEnd) return true;
  Error(keyword, "A restart cannot add nodes or elements to an assembly with instances; ignored.");
  m_ledger.LeaveOut(keyword);
  return false;
}

inpS_MeshScope* inpS_MeshVisitor::OpenPart(const cow_String& name) {
  if (inpS_MeshScope* known = m_scopes.FindPart(name)) return known;
  const KvoSimPosition owner = m_inventory.GetDocument().GetModel().GetPart(name);
  if (owner.IsNull()) return nullptr;
  inpS_MeshScope& part = m_scopes.Add(inpS_MeshScope::Kind::Part, name);
  part.owner = owner;
  OpenLabels(part);
  return &part;
}

// An instance shares the labels, the connectivity and the sets of its part; it is all there when it
// opens, so the part's keywords are not looked at again in each of its instances.
void inpS_MeshVisitor::VisitInstance(const inp_Keyword& keyword) {
  const inp_Item* name = keyword.Find("name");
  if (!name || m_scopes.FindInstance(name->AsString())) return; // the assembly phase told
  const KvoSimPosition owner = m_inventory.GetDocument().GetModel().GetOccurence(name->AsString());
  if (owner.IsNull()) return;
  const inp_Item* partName = keyword.Find("part");
  inpS_MeshScope* part = partName ? OpenPart(partName->AsString()) : nullptr;
  inpS_MeshScope& instance = m_scopes.Add(inpS_MeshScope::Kind::Instance, name->AsString());
  instance.owner = owner;
  instance.part = part;
  instance.placement.ReadInstance(keyword);
  instance.keyword = keyword;
  OpenLabels(instance);
  if (part) m_scopes.TextElements().Share(instance.elementOccurrence, part->elementOccurrence);
}

// Sets of the assembly, which those of steps are, may name instances from before a restart.
void inpS_MeshVisitor::OpenStoredInstances(inp_KeywordListRef keywords) {
  const auto isOfAssembly = [](const inp_Keyword& keyword) {
    const bool isSet = keyword.Kind() == inp_KwNset || keyword.Kind() == inp_KwElset;
    return keyword.Scope().kind == inp_Scope::Kind::Assembly ||
           (isSet && keyword.Scope().kind == inp_Scope::Kind::Step);
  };
  if (!m_scopes.Root().isStored || std::none_of(keywords.begin(), keywords.end(), isOfAssembly))
    return;
  const auto instances = m_inventory.GetDocument().GetModel().RetrieveOccurences();
  for (const auto& [name, owner] : instances) {
    const KvoSimDataRecord record = owner.DataRecord();
    const KvoSimPosition part = record.GetReference(eds_Instance_Part);
    inpS_MeshScope* const pattern =
        part.IsNull() ? nullptr : OpenPart(part.DataRecord().ReturnString(eds_Part_Name));
    inpS_MeshScope& instance = m_scopes.Add(inpS_MeshScope::Kind::Instance, name);
    instance.owner = owner;
    instance.part = pattern;
    OpenLabels(instance);
  }
}

inpS_MeshScope* inpS_MeshVisitor::ScopeOf(const inp_Keyword& keyword) {
  if (keyword.ScopePtr() == m_lastScope && m_lastScope) return m_current;
  m_lastScope = keyword.ScopePtr();
  switch (keyword.Scope().kind) {
  case inp_Scope::Kind::Part:
    m_current = OpenPart(keyword.Scope().name);
    break;
  case inp_Scope::Kind::Instance:
    m_current = m_scopes.FindInstance(keyword.Scope().name);
    break;
  default:
    m_current = &m_scopes.Root();
  }
  return m_current;
}

bool inpS_MeshVisitor::Skip(const inp_Keyword& keyword) {
  if (keyword.IsInstanceCopy()) return true;
  if (keyword.Scope().kind == inp_Scope::Kind::Step && !IsNewSetOfStep(keyword)) return true;
  const bool outside = keyword.Scope().kind == inp_Scope::Kind::Model &&
                       m_scopes.Root().owner.IsA(eds_RecordKind::Assembly);
  if (!outside && ScopeOf(keyword)) return false;
  keyword.ReferAll(); // one word for all of it
  m_ledger.LeaveOut(keyword);
  if (!outside) return true;
  const bool isSet = keyword.Kind() == inp_KwNset || keyword.Kind() == inp_KwElset;
  (isSet ? m_setMessages : *this)
      .AddError(inp_Utils::MessageInKeyword(
          keyword, "In a deck with an assembly, mesh and sets belong to a part, an instance or the "
                   "assembly; ignored."));
  return true;
}

// A set that a step defines is the model's (the assembly's, where there is one), for that is where
// conditions look for it. What earlier steps name it may not change.
bool inpS_MeshVisitor::IsNewSetOfStep(const inp_Keyword& keyword) {
  const bool nodes = keyword.Kind() == inp_KwNset;
  if (!nodes && keyword.Kind() != inp_KwElset) return false;
  const inpS_SetKind kind = nodes ? inpS_SetKind::Nodes : inpS_SetKind::Elements;
  const cow_String name = keyword.StringOf(nodes ? "nset" : "elset", "");
  if (name.empty()) return true; // which its reader tells
  if (!m_scopes.Root().sets.Find(kind, name)) {
    m_setsOfSteps[{nodes, name}] = keyword.ScopePtr();
    m_setMessages.AddWarning(inp_Utils::MessageInKeyword(
        keyword, "A set that a step defines is there for the whole model; it is written before the "
                 "steps."));
    return true;
  }
  const auto known = m_setsOfSteps.find({nodes, name});
  if (known != m_setsOfSteps.end() && known->second == keyword.ScopePtr()) return true;
  m_asText.KeepSet(keyword);
  return false;
}

// ---- nodes

void inpS_MeshVisitor::VisitSystem(const inp_Keyword& keyword) {
  static constexpr int kFieldsOfSystem[] = {6, 3}; // as inpS_System reads them
  if (Skip(keyword)) return;
  m_ledger.Take(keyword);
  inpS_MeshScope& scope = *ScopeOf(keyword);
  const cow_List<inpS_UnreadField> unread = inpS_System::UnreadFields(keyword);
  inpS_reportUnreadFields(keyword, unread, *this, "left out");
  for (const inpS_UnreadField& field : unread)
    if (field.surplus) LeaveOut("value", inpS_countGiven(keyword, field.row, field.col));
  inpS_reportTinyNumbers(keyword, kFieldsOfSystem, *this);
  scope.system.FillIdentity();
  if (scope.system.ReadSystem(keyword)) {
    if (scope.system.IsIdentity() && isOriginAlone(keyword.Data()))
      Warning(keyword,
              "An origin without a point on the first axis makes no system; the nodes that "
              "follow are read in global coordinates.");
    return;
  }
  scope.system.FillIdentity();
  Error(keyword, "The points of the system do not define its axes (they coincide or lie on one "
                 "line); the nodes that follow are read in global coordinates.");
}

void inpS_MeshVisitor::VisitNode(const inp_Keyword& keyword) {
  if (Skip(keyword)) return;
  inpS_MeshScope& scope = *ScopeOf(keyword);
  if (!MayGrow(keyword, scope)) return;
  m_ledger.Take(keyword);
  keyword.Find("input"); // the parser has read that file's lines
  inpS_NodeReader reader(*this);
  reader.ReadLocalSystem(keyword, *this);
  inpS_SetDefinition* set = m_setReader.Open(keyword, scope, inpS_SetKind::Nodes, "nset");
  m_nodes.Reserve(scope.nodeOccurrence, m_nodes.Size(scope.nodeOccurrence) + keyword.Data().Rows());
  cow_List<int> refused;
  scope.nodes.SetKeyword(keyword, 0);
  reader.Read(keyword, scope.system,
              [&](const inpS_NodePiece& nodes) { TakeNodes(scope, nodes, set, refused); });
  ReportRefused(keyword, refused);
}

void inpS_MeshVisitor::TakeNodes(inpS_MeshScope& scope, const inpS_NodePiece& nodes,
                                 inpS_SetDefinition* set, cow_List<int>& refused) {
  for (const int label : nodes.labels) m_largestNodeLabel = std::max(m_largestNodeLabel, label);
  scope.nodes.Merge(nodes, m_nodes, scope.nodeOccurrence, scope.owner, set, refused);
}

void inpS_MeshVisitor::ReportRefused(const inp_Keyword& keyword, const cow_List<int>& refused) {
  if (!refused.empty())
    AddError(inp_Utils::MessageInKeyword(
        keyword,
        "These nodes are not this deck section's own and cannot be defined again here: ", refused));
}

bool inpS_MeshVisitor::IsInSpace() const {
  const KvoObjModel model = m_inventory.GetDocument().GetModel();
  return m_hasLeftPlane || m_inventory.NumberSpatialDimensions() == 3 ||
         model.DataRecord().GetInt(eds_Model_Dimensions) == 3;
}

void inpS_MeshVisitor::GenerateNodes(const inp_Keyword& keyword) {
  if (Skip(keyword)) return;
  m_hasGenerated = true;
  inpS_MeshScope& scope = *ScopeOf(keyword);
  if (!MayGrow(keyword, scope)) return;
  if (!inpS_NodeGeneration::KnowsKind(keyword)) return m_asText.KeepGenerator(keyword, scope);
  m_ledger.Take(keyword);
  if (m_copyScopes.Holds(scope)) scope.SettleElements(m_nodes, m_elements, *this);
  inpS_KnownNodes known(scope, m_scopes, m_nodes, m_elements);
  cow_List<int> refused;
  inpS_NodeGeneration generation(known, scope, m_setReader, IsInSpace(), *this,
                                 [&](const inpS_NodePiece& nodes, inpS_SetDefinition* set) {
                                   bool left = false;
                                   for (std::size_t n = 2; n < nodes.coordinates.size(); n += 3)
                                     left |= nodes.coordinates[n] != 0;
                                   m_hasLeftPlane |= left;
                                   TakeNodes(scope, nodes, set, refused);
                                 });
  scope.nodes.SetKeyword(keyword, inpS_NodeGeneration::ToleranceOf(keyword));
  try {
    generation.Read(keyword);
  } catch (const utl_Assertion& fault) { // the deck's other faults are told all the same
    Error(keyword, "The keyword cannot be carried out; it ends where this does not hold: " +
                       cow_String(fault.what()));
  }
  ReportRefused(keyword, refused);
}

// ---- elements

void inpS_MeshVisitor::VisitElement(const inp_Keyword& keyword) {
  if (Skip(keyword)) return;
  inpS_MeshScope& scope = *ScopeOf(keyword);
  if (!MayGrow(keyword, scope)) return;
  keyword.Find("input"); // the parser has read that file's lines
  if (std::optional<wip_Message> fault = m_types.FaultOf(keyword))
    return m_asText.Keep(keyword, scope, *std::move(fault));
  m_ledger.Take(keyword);
  const inp_Item* elset = m_setReader.FindName(keyword, "elset");
  inpS_ElementReading reading(keyword, m_types, m_nodes, m_elements, m_salvage, *this);
  // Without any node to refer to, or with nodes named by instance, nothing can be translated yet;
  // where others will be made from these elements, they are to stay at hand as the deck has them.
  const bool mayStream = m_nodes.Size(scope.nodeOccurrence) > 0 &&
                         !(scope.kind == inpS_MeshScope::Kind::Root && m_hasInstances) &&
                         !m_copyScopes.Holds(scope);
  reading.Read(scope, mayStream);
  if (!elset) return;
  inpS_SetDefinition& set = scope.sets.FindOrAdd(inpS_SetKind::Elements, elset->AsString());
  inpS_beginRuns(set, keyword);
  if (reading.Count() > 0) inpS_addRun(set, reading.First(), reading.Count());
  for (const int ordinal : reading.Again()) inpS_addRun(set, ordinal, 1);
}

inpS_ElementCopies inpS_MeshVisitor::Copies() {
  return {m_nodes,        m_elements,      m_scopes,  m_setReader,
          m_types.Data(), m_types.Names(), m_salvage, *this};
}

void inpS_MeshVisitor::VisitElgen(const inp_Keyword& keyword) {
  if (Skip(keyword)) return;
  inpS_MeshScope& scope = *ScopeOf(keyword);
  if (!MayGrow(keyword, scope)) return;
  const cow_List<long long> asText = m_asText.KeepLinesFromText(keyword, scope);
  if (asText.empty()) m_ledger.Take(keyword);
  if (!m_asText.IsWhollyText(keyword)) Copies().Generate(keyword, scope, asText);
}

void inpS_MeshVisitor::VisitElcopy(const inp_Keyword& keyword) {
  if (Skip(keyword)) return;
  m_hasGenerated = true;
  inpS_MeshScope& scope = *ScopeOf(keyword);
  if (!MayGrow(keyword, scope) || m_asText.KeepCopiedFromText(keyword, scope)) return;
  m_ledger.Take(keyword);
  Copies().Copy(keyword, scope);
}

// ---- sets

void inpS_MeshVisitor::VisitNset(const inp_Keyword& keyword) {
  if (Skip(keyword)) return;
  m_ledger.Take(keyword);
  if (keyword.StringOf("elset", "").empty())
    m_setReader.Read(keyword, *ScopeOf(keyword), inpS_SetKind::Nodes);
  else
    NsetFromElset(keyword);
}

void inpS_MeshVisitor::NsetFromElset(const inp_Keyword& keyword) {
  m_setReader.ReadElsetNodes(keyword, *ScopeOf(keyword));
}

void inpS_MeshVisitor::VisitElset(const inp_Keyword& keyword) {
  if (Skip(keyword)) return;
  m_ledger.Take(keyword);
  m_setReader.Read(keyword, *ScopeOf(keyword), inpS_SetKind::Elements);
}

// ---- the end of the walk

void inpS_MeshVisitor::FinishScope(inpS_MeshScope& scope) {
  scope.nodes.Finish();
  scope.nodes.TellRedefined(m_nodes, scope.nodeOccurrence, *this);
  scope.SettleElements(m_nodes, m_elements, *this);
}

// New labels must not meet those of the nodes that instances add to their part's.
void inpS_MeshVisitor::CompleteParts(inp_KeywordListRef keywords) {
  const cow_List<cow_String> types = m_types.Names();
  for (inpS_MeshScope& scope : m_scopes.All())
    if (scope.kind == inpS_MeshScope::Kind::Part) FinishScope(scope);
  const auto takesLabels = [&](const inpS_MeshScope& scope) {
    return inpS_GeneratedNodes::TakesNewLabels(scope, types);
  };
  if (std::any_of(m_scopes.All().begin(), m_scopes.All().end(), takesLabels)) {
    for (const inp_Keyword& keyword : keywords) {
      if (keyword.Kind() != inp_KwNode || keyword.Scope().kind != inp_Scope::Kind::Instance)
        continue;
      const inp_DataArray& data = keyword.Data();
      for (long long row = 0; row < data.Rows(); ++row)
        if (data.Cols(row) > 0 && data.IsInteger(row, 0) && data.AsInt64(row, 0) <= kMaxLabel)
          m_largestNodeLabel = std::max(m_largestNodeLabel, data.AsInt(row, 0));
    }
  }
  for (inpS_MeshScope& scope : m_scopes.All()) {
    if (scope.kind != inpS_MeshScope::Kind::Part) continue;
    inpS_GeneratedNodes::Complete(m_scopes, scope, types, m_nodes, m_largestNodeLabel);
  }
}

// Ordinals over the whole mesh are kept in 32 bits; a part of millions of nodes and some hundred
// instances of it pass them. Told at the first instance that does.
bool inpS_MeshVisitor::FitsOrdinals(inp_KeywordListRef keywords) {
  constexpr long long most = std::numeric_limits<int>::max();
  if (m_scopes.FlatNodes() <= most && m_scopes.FlatElements() <= most) return true;
  const cow_String text =
      inp_Utils::Format("The instances have %lld nodes and %lld elements in all; a model may have "
                        "at most %lld of each. No mesh is made.",
                        m_scopes.FlatNodes(), m_scopes.FlatElements(), most);
  for (const inp_Keyword& keyword : keywords) {
    if (keyword.Kind() != inp_KwInstance || !keyword.Find("name")) continue;
    const inpS_MeshScope* scope = m_scopes.FindInstance(keyword.Find("name")->AsString());
    if (!scope || (scope->nodeBase + scope->nodeCount <= most &&
                   scope->elementBase + scope->elementCount <= most))
      continue;
    AddError(inp_Utils::MessageInKeyword(keyword, text));
    return false;
  }
  AddError({text});
  return false;
}

void inpS_MeshVisitor::Finish(inp_KeywordListRef keywords) {
  m_asText.AddSets();
  const cow_List<cow_String> types = m_types.Names();
  const auto complete = [&](inpS_MeshScope& scope) {
    FinishScope(scope);
    inpS_GeneratedNodes::Complete(m_scopes, scope, types, m_nodes, m_largestNodeLabel);
  };
  for (inpS_MeshScope& scope : m_scopes.All())
    if (scope.kind == inpS_MeshScope::Kind::Instance) complete(scope);
  complete(m_scopes.Root());
  m_scopes.AssignFlatOrdinals(m_storedNodes, m_storedElements);
  if (!FitsOrdinals(keywords)) return;
  for (inpS_MeshScope& scope : m_scopes.All())
    scope.elements.Resolve(m_nodes, scope.nodeOccurrence, m_elements, scope.elementOccurrence,
                           *this);
  inpS_resolveScopedNodes(m_scopes, m_nodes, *this);
  if (m_salvage) m_salvage->NoteFaulty(m_scopes, m_elements);
  for (inpS_MeshScope& scope : m_scopes.All()) scope.elements.StoreHeld(scope.owner);
  m_resolver = std::make_unique<inpS_SetResolver>(m_nodes, m_elements, m_scopes, m_setMessages);
  inpS_BaseSets base(m_inventory.GetDocument(), m_setMessages);
  if (m_scopes.Root().isStored) m_resolver->SetBase(&base);
  for (const inpS_MeshScope& scope : m_scopes.All())
    for (const inpS_SetDefinition& set : scope.sets.All()) m_resolver->Members(scope, set);
  m_resolver->SetBase(nullptr); // all are known
}

void inpS_MeshVisitor::Report() {
  inpS_Visitor::Report();
  m_asText.Report();
  m_setMessages.Report();
}

void inpS_MeshVisitor::Discard() {
  for (inpS_MeshScope& scope : m_scopes.All()) {
    scope.nodes.Discard();
    scope.elements.Discard();
  }
}

// ---- writing

void inpS_MeshVisitor::SaveElementTypes(KvoSimTransaction&) {
  m_types.Save(m_inventory.GetDocument(), m_scopes);
}

void inpS_MeshVisitor::SaveBeamExtraNodes(KvoSimTransaction&) {
  inpS_MeshStore(m_inventory.GetDocument(), m_nodes, m_elements, m_scopes).SaveExtraNodes();
}

void inpS_MeshVisitor::SaveMeshAndUserNodes(KvoSimTransaction&) {
  inpS_MeshStore store(m_inventory.GetDocument(), m_nodes, m_elements, m_scopes);
  store.SaveNodes(m_isTold ? m_lateMessages : *this);
  if (m_isTold) return m_lateMessages.Report();
  Report(); // the walk over the deck is over
}

void inpS_MeshVisitor::SaveMeshAndUserElements(KvoSimTransaction&) {
  inpS_MeshStore(m_inventory.GetDocument(), m_nodes, m_elements, m_scopes)
      .SaveElements(m_types.Records());
}

void inpS_MeshVisitor::SaveSets(KvoSimTransaction&) {
  inpS_MeshStore(m_inventory.GetDocument(), m_nodes, m_elements, m_scopes).SaveSets(*m_resolver);
}
