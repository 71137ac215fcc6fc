#pragma once

#include "inpS/framework/inpS_Inventory.h"
#include "inpS/framework/inpS_Visitor.h"
#include "inpS/mesh/inpS_ElementCopies.h"
#include "inpS/mesh/inpS_ElementTypes.h"
#include "inpS/mesh/inpS_ElementsAsText.h"
#include "inpS/mesh/inpS_MeshSetReader.h"
#include "inpS/mesh/inpS_NodeGeneration.h"
#include "inpS/mesh/inpS_SetResolver.h"
#include "inpS/sets/inpS_SetServices.h"
#include <optional>

class inpS_Salvage;
class KvoSimTransaction;

// Converts the mesh: nodes, elements, node and element sets of the model, of parts, of instances
// and of the assembly. Everything is gathered while the deck is walked, references are resolved
// when the walk ends, and the Save operations write it.
class inpS_MeshVisitor : public inpS_Visitor, public inpS_SetServices {
public:
  inpS_MeshVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements, const inpS_Inventory& inventory,
                   inpS_Ledger& ledger);
  ~inpS_MeshVisitor() override;

  // Before the walk: passes over the elements that have faults. Nothing is told, for another walk
  // has told it.
  void SetSalvage(inpS_Salvage* salvage) {
    m_salvage = salvage;
    m_isTold = true;
  }
  bool IsWhole() const { return m_resolver != nullptr; } // the walk came to its end

  void VisitList(inp_KeywordListRef keywords) override; // walks, then resolves
  void Report() override;
  // A faulty line of a set costs that line: IsError tells of nodes and elements alone.
  bool HasSetErrors() const { return m_setMessages.IsError(); }
  // Nor does an element type that nobody knows fail the mesh: its keyword is kept as text.
  bool HasTextErrors() const { return m_asText.Messages().IsError(); }
  const inpS_TextElements& TextElements() const { return m_scopes.TextElements(); }

  void VisitNode(const inp_Keyword& keyword) override;
  void VisitNgen(const inp_Keyword& keyword) override { GenerateNodes(keyword); }
  void VisitNfill(const inp_Keyword& keyword) override { GenerateNodes(keyword); }
  void VisitNcopy(const inp_Keyword& keyword) override { GenerateNodes(keyword); }
  void VisitNmap(const inp_Keyword& keyword) override { GenerateNodes(keyword); }
  void VisitElement(const inp_Keyword& keyword) override;
  void VisitAssemblyElement(const inp_Keyword& keyword) override { VisitElement(keyword); }
  void VisitElgen(const inp_Keyword& keyword) override;
  void VisitElcopy(const inp_Keyword& keyword) override;
  void VisitNset(const inp_Keyword& keyword) override;
  void VisitElset(const inp_Keyword& keyword) override;
  void VisitAssemblyNset(const inp_Keyword& keyword) override { VisitNset(keyword); }
  void VisitAssemblyElset(const inp_Keyword& keyword) override { VisitElset(keyword); }
  void NsetFromElset(const inp_Keyword& keyword); // a node set of the nodes of an element set
  void VisitSystem(const inp_Keyword& keyword) override;
  void VisitInstance(const inp_Keyword& keyword) override;

  void SaveBeamExtraNodes(KvoSimTransaction& transaction);
  void SaveElementTypes(KvoSimTransaction& transaction);
  void SaveMeshAndUserNodes(KvoSimTransaction& transaction);
  void SaveMeshAndUserElements(KvoSimTransaction& transaction);
  void SaveSets(KvoSimTransaction& transaction);
  void Discard(); // after an error: takes back what was stored of nodes and elements

  inpS_MeshScopes& Scopes() { return m_scopes; }
  int LargestNodeLabel() const { return m_largestNodeLabel; }
  bool HasGenerated() const { return m_hasGenerated; } // by keywords that made nodes from others
  bool IsInSpace() const; // by the lines of this deck, what it has generated so far, or its base

private:
  inpS_MeshScope* ScopeOf(const inp_Keyword& keyword); // null: it belongs to a refused instance
  inpS_MeshScope* OpenPart(const cow_String& name);
  void OpenRoot();
  void OpenLabels(inpS_MeshScope& scope);
  void OpenStoredInstances(inp_KeywordListRef keywords);
  void LoadBaseElements(inpS_MeshScope& scope);
  bool MayGrow(const inp_Keyword& keyword, const inpS_MeshScope& scope);
  bool Skip(const inp_Keyword& keyword);
  bool IsNewSetOfStep(const inp_Keyword& keyword);
  void GenerateNodes(const inp_Keyword& keyword);
  void TakeNodes(inpS_MeshScope& scope, const inpS_NodePiece& nodes, inpS_SetDefinition* set,
                 cow_List<int>& refused);
  void ReportRefused(const inp_Keyword& keyword, const cow_List<int>& refused);
  inpS_ElementCopies Copies();
  void FinishScope(inpS_MeshScope& scope);
  void CompleteParts(inp_KeywordListRef keywords);
  void Finish(inp_KeywordListRef keywords);
  bool FitsOrdinals(inp_KeywordListRef keywords);

  KvoObjLabeler& m_nodes;
  KvoObjLabeler& m_elements;
  const inpS_Inventory& m_inventory;
  inpS_Ledger& m_ledger;
  inpS_ElementTypes m_types;
  inpS_MeshScopes m_scopes;
  inp_Visitor m_setMessages;  // what is told of sets, kept apart
  inp_Visitor m_lateMessages; // of a walk of which nothing else is told
  inpS_Salvage* m_salvage = nullptr;
  bool m_isTold = false; // what the walk tells
  inpS_MeshSetReader m_setReader;
  inpS_ElementsAsText m_asText;
  cow_Map<std::pair<bool, cow_String>, inp_ScopePtr> m_setsOfSteps; // of nodes, name: the step
  inp_ScopePtr m_lastScope;
  inpS_MeshScope* m_current = nullptr;
  std::unique_ptr<inpS_SetResolver> m_resolver;
  inpS_CopyScopes m_copyScopes;
  inpS_GeneratorScopes m_generatorScopes;
  bool m_hasInstances = false; // anywhere in the deck
  bool m_hasGenerated = false;
  bool m_hasLeftPlane = false; // with a node that it has generated
  int m_largestNodeLabel = 0;
  long long m_storedNodes = 0; // in the flat mesh before this deck
  long long m_storedElements = 0;
};
