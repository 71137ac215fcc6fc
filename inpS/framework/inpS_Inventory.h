#pragma once

#include "base/cow_Value.h"
#include "database/KvoObjDocument.h"
#include "parser/inp_KeywordEnm.h"
#include "parser/inp_Visitor.h"
#include <memory>
#include <set>

class KvoSimCSetID;
class inpS_ComponentSets;

enum class inpS_RestartKind : int {
  None = 0,
  Increment = 1,
  Interval = 2,
  Iteration = 3,
  Cycle = 4
};

// Facts about the whole deck that later phases must know before they meet the keyword concerned.
// Filled by one walk over the prepared keyword list and only read afterwards; every visitor is
// given it by const reference. It reports no messages of its own.
class inpS_Inventory : public inp_Visitor {
public:
  inpS_Inventory();
  ~inpS_Inventory() override;
  inpS_Inventory(const inpS_Inventory&);
  inpS_Inventory& operator=(const inpS_Inventory&);

  bool IsStandard() const { return m_standard; }
  bool IsExplicit() const { return m_explicit; }
  bool IsCFD() const { return m_cfd; }
  bool HasAxisymmetric() const { return m_axisymmetric; }
  bool HasNodes() const { return m_hasNodes; }
  bool IsFeatureEnhanced() const { return m_featureEnhanced; }
  int NumberSpatialDimensions() const { return m_dimensions; }
  const cow_String& Heading() const { return m_heading; }
  bool HasHeading() const { return m_headingSeen; } // its text may be empty
  const cow_String& AssemblyName() const { return m_assemblyName; }
  const cow_String& InputDir() const { return m_inputDir; }
  // Whether some keyword of the kind has the name, of those to which others refer by it.
  bool Names(inp_KeywordEnm kind, const cow_String& name) const;
  // Such a one as a keyword that stands there may mean: what is another part's it does not see.
  bool NamesFor(const inp_Keyword& from, inp_KeywordEnm kind, const cow_String& name) const;
  const KvoObjDocument& GetDocument() const { return m_document; }

  inpS_RestartKind RestartKind() const { return m_restartKind; }
  int RestartStep() const { return m_restartStep; }
  int RestartNumber() const { return m_restartNumber; }
  bool RestartEndStep() const { return m_restartEndStep; }

  // Estimates for a host that wants to size something before it reads. The mesh phase does not: the
  // store cuts arrays into chunks of a fixed number of bytes, so that whoever reads a model needs
  // the same small buffer whatever the deck.
  int NodeChunkSize() const;
  int ElementChunkSize() const;
  cow_Map<cow_String, int> ElementChunkSizes() const;

  void SetFeatureEnhanced(bool enhanced) { m_featureEnhanced = enhanced; }
  void SetAssemblyName(const cow_String& name) { m_assemblyName = name; }
  void SetInputDir(const cow_String& folder) { m_inputDir = folder; }
  void SetDocument(const KvoObjDocument& document);

  // Created in the document's database on first request and kept.
  const KvoSimCSetID& VectorComponentsCSet() const; // as many as the model has dimensions
  const KvoSimCSetID& VectorComponents3DCSet() const;
  const KvoSimCSetID& QuaternionComponentsCSet() const;

  void Visit(const inp_Keyword& keyword) override;
  void VisitAssembly(const inp_Keyword& keyword) override;
  void VisitRestart(const inp_Keyword& keyword) override;
  void VisitStep(const inp_Keyword& keyword) override;
  void VisitAnneal(const inp_Keyword& keyword) override;
  void VisitCfd(const inp_Keyword& keyword) override;
  void VisitDynamic(const inp_Keyword& keyword) override;
  void VisitEndStep(const inp_Keyword& keyword) override;
  void VisitNcopy(const inp_Keyword& keyword) override;
  void VisitElcopy(const inp_Keyword& keyword) override;
  void VisitHeatTransfer(const inp_Keyword& keyword) override;
  void VisitHeading(const inp_Keyword& keyword) override;
  void VisitNode(const inp_Keyword& keyword) override;
  void VisitElement(const inp_Keyword& keyword) override;
  void VisitAssemblyElement(const inp_Keyword& keyword) override;
  void VisitSurface(const inp_Keyword& keyword) override;
  void VisitStatic(const inp_Keyword& keyword) override;
  void VisitSystem(const inp_Keyword& keyword) override;
  void VisitNgen(const inp_Keyword& keyword) override;
  void VisitElgen(const inp_Keyword& keyword) override;
  void VisitPart(const inp_Keyword& keyword) override;
  void VisitEndPart(const inp_Keyword& keyword) override;
  void VisitInstance(const inp_Keyword& keyword) override;

private:
  struct PartFacts {
    int nodes = 0;
    int dimensions = 2;
  };

  void SetDimensions(int dimensions);
  void CountNodes(long long count);

  int m_dimensions = 2;
  bool m_hasNodes = false;
  bool m_hasPartNodes = false; // nodes inside a part
  bool m_instancesSeen = false;
  bool m_featureEnhanced = false;
  bool m_cfd = false;
  bool m_standard = false;
  bool m_explicit = false;
  bool m_axisymmetric = false;
  bool m_needs3DInExplicit = false;
  inpS_RestartKind m_restartKind = inpS_RestartKind::None;
  int m_restartStep = -1;
  int m_restartNumber = -1;
  bool m_restartEndStep = false;
  bool m_headingSeen = false;
  cow_String m_heading;
  cow_String m_assemblyName;
  cow_String m_inputDir;
  // And the parts that they are names of; empty: of the model, the assembly or an instance.
  cow_Map<std::pair<inp_KeywordEnm, cow_String>, std::set<cow_String>> m_names;
  long long m_nodeCount = 0;
  cow_Map<cow_String, long long> m_elementCounts;
  cow_Map<cow_String, PartFacts> m_parts;
  cow_String m_openPart;
  bool m_partOpen = false;
  bool m_ncopySeen = false;
  bool m_elcopySeen = false;
  KvoObjDocument m_document;
  inpS_ComponentSets& Components() const;
  mutable std::shared_ptr<inpS_ComponentSets> m_componentSets;
};
