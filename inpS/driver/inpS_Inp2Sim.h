#pragma once

#include "base/aio_ostream.h"
#include "inpS/forms/inpS_DistributedProperty.h"
#include "inpS/framework/inpS_Inventory.h"
#include "inpS/framework/inpS_Ledger.h"
#include "inpS/history/inpS_DuplicateReport.h"
#include "inpS/inpS_Export.h"
#include "inpS/model/inpS_NotModelled.h"
#include "inpS/sets/inpS_TextElements.h"
#include "parser/inp_Keyword.h"
#include <memory>
#include <optional>

class inpS_MeshVisitor;
class inpS_SurfaceVisitor;

// The one object through which a host turns a keyword deck into a filled simulation database.
//
// The host constructs it, calls Parse, CheckUtf8Compliance, Expand, Reorganize and BuildInventory,
// each after the previous succeeded, and then one of the three conversions. A conversion never
// stops at the first problem; every operation returns true when no error was recorded. One object
// may convert several times, each time into a document of its own: Convert fills an empty one and
// touches no other. Memory that runs out ends any of them with inpS_MemoryException. The first
// string is the deck's path, the second the folder where relative include files are looked for.
class INPS_EXPORT inpS_Inp2Sim {
public:
  // The name is what messages call the deck; empty: its path.
  inpS_Inp2Sim(const cow_String& deckPath, const cow_String& directory,
               const cow_String& deckName = {});
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
  // After Parse: the deck, its includes and data files as they were opened.
  const cow_List<inp_DeckTextPtr>& Files() const { return m_files; }
  // Likewise: files that keywords name which are kept as text.
  const cow_List<std::filesystem::path>& NamedFiles() const { return m_namedFiles; }
  const inpS_Inventory& Inventory() const { return m_inventory; }
  // After a conversion: what was kept verbatim instead of modelled, in deck order of first places.
  const cow_List<inpS_NotModelled>& NotModelled() const { return m_notModelled; }
  // A mesh with faults is stored all the same, without what is faulty; the result stays false.
  void SetSalvage(bool salvage) { m_salvage = salvage; }
  // After a conversion: whether the deck's nodes or elements had errors, which leave out all of
  // them and the sets.
  bool IsMeshLeftOut() const { return m_meshLeftOut; }
  // The keyword kinds of which some phase makes records, wholly or in some of their variants.
  static cow_List<inp_KeywordEnm> CoveredKinds();
  // After a conversion: those of which some keyword was taken.
  const inpS_Ledger::Kinds& TakenKinds() const { return m_ledger.TakenKinds(); }
  // Lays the deck's digest and name into the database's own description.
  static void DescribeSource(const KvoObjDocument& document, const cow_String& deckPath,
                             const cow_String& deckName = {});
  // How it went, likewise: "errors" and "warnings" as the host's reporter counted them, "left_out"
  // for what of the deck is not in the model: leftOut has what messages told of, by kind ("set
  // entry"). A restart adds to what its base tells of itself.
  void DescribeResult(const KvoObjDocument& document, long long errors, long long warnings,
                      const cow_Map<cow_String, long long>& leftOut = {}) const;
  // Hands what the calling thread has gathered in structured messages to its reporter. For a host
  // that converts on several threads: the end of the module's last use speaks for one of them.
  static void ReportGathered();

private:
  struct Labelers;
  struct Phase;
  static const Phase* Phases();
  static const Phase* RestartPhases();
  bool RunPhases(const Phase* phases, const char* prefix, Labelers& labelers);

  void Begin(const KvoObjDocument& document);
  void End();
  bool InitializeSIM(const KvoObjDocument& document, const cow_String& modelString);
  bool ProcessModel();
  bool ProcessAssembly();
  void ListUnreadParameters();
  void TellDoubts();
  // The keywords that nobody has taken.
  bool KeepVerbatim(bool restart, const inp_KeywordList& keywords);
  bool ReadNodeLabeler(Labelers& labelers);
  bool ReadElementLabeler(Labelers& labelers);
  bool ProcessAmplitudes();
  bool ProcessMaterials();
  bool ProcessConnectorBehaviors(Labelers& labelers);
  void RaiseDimensions(const inpS_MeshVisitor& mesh);
  bool ReadMesh(Labelers& labelers, std::optional<inpS_MeshVisitor>& mesh);
  bool ReadSoundMesh(Labelers& labelers, std::optional<inpS_MeshVisitor>& mesh);
  bool ProcessMesh(Labelers& labelers);
  bool ProcessRestartMesh(Labelers& labelers);
  bool ProcessSurfaces(Labelers& labelers);
  bool ProcessRigidBodies(Labelers& labelers);
  bool ProcessDistributions(Labelers& labelers);
  bool ProcessOrientations(Labelers& labelers);
  bool ProcessSections(Labelers& labelers);
  // Rebars of the old style: records among the sections, so nothing is left to do, and no phase
  // calls it.
  bool ProcessOldStyleRebars(Labelers& labelers);
  bool ProcessConstraints(Labelers& labelers);
  bool ProcessSteps(Labelers& labelers);
  bool ProcessInteractions(Labelers& labelers);
  bool ProcessInitialConditions(Labelers& labelers);
  bool ProcessBoundaryConditions(Labelers& labelers);
  bool Derive(); // what follows from the records
  bool ProcessLoads(Labelers& labelers);
  bool ProcessOutput(Labelers& labelers);
  bool ProcessSubstructureOutput(Labelers& labelers);
  bool ProcessCosimulation(Labelers& labelers);
  bool ProcessSurfaceNodalAreas();
  void SaveSurfaceNodalAreas();
  bool SaveNodeLabels(Labelers& labelers);
  bool SaveElementLabels(Labelers& labelers);
  template <class Visitor> bool Run(Labelers& labelers);
  template <class Visitor> bool RunForms(Labelers& labelers);
  static void DiscardEmptyKeywords(inp_KeywordList& keywords);

  cow_String m_stepString;
  cow_String m_deckPath;
  cow_String m_directory;
  cow_String m_deckName;
  inp_KeywordList m_keywords;
  cow_List<inp_DeckTextPtr> m_files;
  cow_List<std::filesystem::path> m_namedFiles;
  bool m_featureEnhanced = false;
  bool m_isDeckFeatureEnhanced = false; // the same without what a restart's base says
  inpS_Inventory m_inventory;
  cow_String m_modelString;
  KvoObjDocument m_document;
  std::unique_ptr<inpS_SurfaceVisitor> m_surfaceVisitor;
  bool m_unsupportedFeaturesAsWarnings = false;
  bool m_salvage = false;
  bool m_meshLeftOut = false;
  bool m_isRestart = false;
  cow_List<inpS_NotModelled> m_notModelled;
  inpS_Ledger m_ledger;
  inpS_DuplicateReport m_boundaries;                // where conditions of nodes were given
  cow_List<inpS_DistributedProperty> m_distributed; // of materials
  inpS_TextElements m_textElements;                 // that stand in some of them
};
