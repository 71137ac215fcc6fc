#pragma once

#include "base/aio_ostream.h"
#include "inpS/framework/inpS_Inventory.h"
#include "inpS/inpS_Export.h"
#include "parser/inp_Keyword.h"
#include <memory>
#include <set>

class KvoObjLabeler;
class inpS_SurfaceVisitor;

// What a conversion did not model, one row per kind of keyword.
struct inpS_NotModelled {
  cow_String keyword;
  long long count = 0;
  cow_String file; // first place
  long long line = 0;
  bool known = true; // kept verbatim; false: a word the vocabulary does not know, kept as text too
};

// The one object through which a host turns a keyword deck into a filled simulation database.
//
// The host constructs it, calls Parse, CheckUtf8Compliance, Expand, Reorganize and BuildInventory,
// each after the previous succeeded, and then one of the three conversions. A conversion never stops
// at the first problem; every operation returns true when no error was recorded. The first string is
// the deck's path, the second the folder where relative include files are looked for.
class INPS_EXPORT inpS_Inp2Sim {
public:
  inpS_Inp2Sim(const cow_String& deckPath, const cow_String& directory);
  ~inpS_Inp2Sim();
  inpS_Inp2Sim(const inpS_Inp2Sim&) = delete;
  inpS_Inp2Sim& operator=(const inpS_Inp2Sim&) = delete;

  bool Parse();
  bool CheckUtf8Compliance();
  bool Expand();
  bool Reorganize();
  bool BuildInventory();
  bool ReportUnsupportedFeatures(const KvoObjDocument& document);

  static bool IsSimDatabaseFeatureEnhanced(const KvoObjDocument& document);
  void SetFeatureEnhanced(bool enhanced);
  void SetUnsupportedFeaturesAsWarnings(bool warnings);

  bool Convert(const KvoObjDocument& document);
  bool ConvertRestart(const KvoObjDocument& document);
  bool ConvertSubstructureRecovery(const KvoObjDocument& document, const cow_String& output);

  void Print(aio_ostream& out) const;

  const inp_KeywordList& Keywords() const { return m_keywords; }
  const inpS_Inventory& Inventory() const { return m_inventory; }
  // After a conversion: what was kept verbatim instead of modelled, in deck order of first places.
  cow_List<inpS_NotModelled> NotModelled() const;
  // The keyword kinds that some phase converts.
  static cow_List<inp_KeywordEnm> ModelledKinds();
  // Lays the deck's digest and name into the database's own description.
  static void DescribeSource(const KvoObjDocument& document, const cow_String& deckPath);

private:
  struct Labelers;

  bool InitializeSIM(const KvoObjDocument& document, const cow_String& modelString);
  bool ProcessModel();
  bool ProcessAssembly();
  bool ProcessAmplitudes();
  bool ProcessMaterials();
  bool ProcessConnectorBehaviors();
  bool ProcessMesh(KvoObjLabeler& nodes, KvoObjLabeler& elements, const inpS_Inventory& inventory);
  bool ProcessRestartMesh(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                          const inpS_Inventory& inventory);
  bool ProcessSurfaces(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                       const inpS_Inventory& inventory);
  bool ProcessRigidBodies(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                          const inpS_Inventory& inventory);
  bool ProcessDistributions(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                            const inpS_Inventory& inventory);
  bool ProcessOrientations(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                           const inpS_Inventory& inventory);
  bool ProcessSections(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                       const inpS_Inventory& inventory);
  bool ProcessConstraints(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                          const inpS_Inventory& inventory);
  bool ProcessSteps(KvoObjLabeler& nodes, KvoObjLabeler& elements, const inpS_Inventory& inventory);
  bool ProcessInteractions(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                           const inpS_Inventory& inventory);
  bool ProcessInitialConditions(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                                const inpS_Inventory& inventory);
  bool ProcessBoundaryConditions(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                                 const inpS_Inventory& inventory);
  bool ProcessLoads(KvoObjLabeler& nodes, KvoObjLabeler& elements, const inpS_Inventory& inventory);
  bool ProcessOutput(const cow_String& output);
  bool ProcessSubstructureOutput(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                                 const inpS_Inventory& inventory);
  bool ProcessCosimulation(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                           const inpS_Inventory& inventory);
  static void DiscardEmptyKeywords(inp_KeywordList& keywords);

  cow_String m_stepString;
  cow_String m_deckPath;
  cow_String m_directory;
  inp_KeywordList m_keywords;
  bool m_featureEnhanced = false;
  inpS_Inventory m_inventory;
  cow_String m_modelString;
  KvoObjDocument m_document;
  std::unique_ptr<inpS_SurfaceVisitor> m_surfaceVisitor;
  bool m_unsupportedFeaturesAsWarnings = false;
};
