#include "inpS/driver/inpS_Inp2Sim.h"
#include "base/bcu_ResourceMonitor.h"
#include "base/wip_WIPBase.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/driver/inpS_Derive.h"
#include "inpS/driver/inpS_Phases.h"
#include "inpS/driver/inpS_UnSupportedFeatureVisitor.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/framework/inpS_MemoryDoor.h"
#include "inpS/keywords/inpS_ParameterBinding.h"
#include "inpS/messages/inpS_MessageContainer.h"
#include "inpS/sets/inpS_SurfaceVisitor.h"
#include "parser/inp_KeywordExpansionVisitor.h"
#include "parser/inp_OrganizerVisitor.h"
#include "parser/inp_Parser.h"
#include "parser/inp_Utf8ValidityVisitor.h"
#include "parser/inp_Utils.h"
#include <algorithm>

inpS_Inp2Sim::inpS_Inp2Sim(const cow_String& deckPath, const cow_String& directory,
                           const cow_String& deckName)
    : m_deckPath(deckPath), m_directory(directory), m_deckName(deckName) {
  m_inventory.SetInputDir(directory);
}

inpS_Inp2Sim::~inpS_Inp2Sim() = default;

// ---- preparation

bool inpS_Inp2Sim::Parse() try {
  // Flags: follow *INCLUDE, attach sub-options, keep no comments.
  inp_Parser parser(m_deckPath, m_directory, {}, m_deckName, true, true, false);
  m_keywords = parser.Parse(true);
  m_files = parser.Files();
  m_namedFiles = parser.NamedFiles();
  wip_WIPBase& host = wip_WIPBase::Instance();
  // All that the text tells is told in one run. Its faults leave keywords behind, so that a host
  // may look for what else there is; without one of its files a deck's model tells nothing.
  if (!parser.FileErrors().empty()) {
    TellDoubts();
    m_keywords.clear();
  }
  for (const auto* errors : {&parser.FileErrors(), &parser.SyntaxErrors(), &parser.Slips()})
    if (!errors->empty()) host.ErrorList(*errors, 1);
  if (!parser.Warnings().empty()) host.WarningList(parser.Warnings());
  return parser.FileErrors().empty() && parser.SyntaxErrors().empty();
} catch (...) {
  inpS_passOn();
}

bool inpS_Inp2Sim::CheckUtf8Compliance() try {
  inp_Utf8ValidityVisitor visitor;
  visitor.VisitListAndReport(m_keywords);
  m_keywords = visitor.Keywords();
  return !visitor.IsError();
} catch (...) {
  inpS_passOn();
}

bool inpS_Inp2Sim::Expand() try {
  inp_KeywordExpansionVisitor visitor;
  visitor.SetDirectory(m_directory);
  visitor.SetFlag(false);
  visitor.VisitListAndReport(m_keywords);
  m_keywords = visitor.Keywords();
  SetFeatureEnhanced(visitor.IsFeatureEnhanced());
  DiscardEmptyKeywords(m_keywords);
  return !visitor.IsError();
} catch (...) {
  inpS_passOn();
}

bool inpS_Inp2Sim::Reorganize() try {
  inp_OrganizerVisitor visitor(m_featureEnhanced);
  visitor.VisitListAndReport(m_keywords);
  m_keywords = visitor.Keywords();
  DiscardEmptyKeywords(m_keywords);
  return !visitor.IsError();
} catch (...) {
  inpS_passOn();
}

void inpS_Inp2Sim::DiscardEmptyKeywords(inp_KeywordList& keywords) {
  std::erase_if(keywords,
                [](const inp_Keyword& keyword) { return keyword.Kind() == inp_NullKeyword; });
}

bool inpS_Inp2Sim::BuildInventory() try {
  m_inventory.VisitListAndReport(m_keywords);
  return !m_inventory.IsError();
} catch (...) {
  inpS_passOn();
}

bool inpS_Inp2Sim::ReportUnsupportedFeatures(const KvoObjDocument& document) try {
  inpS_UnSupportedFeatureVisitor visitor(document);
  if (m_unsupportedFeaturesAsWarnings) visitor.SetErrorsAsWarnings(true);
  visitor.VisitListAndReport(m_keywords);
  return !visitor.IsError();
} catch (...) {
  inpS_passOn();
}

bool inpS_Inp2Sim::IsSimDatabaseFeatureEnhanced(const KvoObjDocument& document) {
  return document.GetModel().RetrieveOccurences().size() >= 1;
}

void inpS_Inp2Sim::SetFeatureEnhanced(bool enhanced) {
  m_featureEnhanced = m_isDeckFeatureEnhanced = enhanced;
}

void inpS_Inp2Sim::SetUnsupportedFeaturesAsWarnings(bool warnings) {
  m_unsupportedFeaturesAsWarnings = warnings;
}

void inpS_Inp2Sim::Print(aio_ostream& out) const {
  for (const inp_Keyword& keyword : m_keywords) keyword.Print(out);
}

cow_List<inp_KeywordEnm> inpS_Inp2Sim::CoveredKinds() {
  cow_List<inp_KeywordEnm> kinds = inpS_ownKeywords();
  const cow_List<inp_KeywordEnm>& forms = inpS_FormTable::Instance().Keywords();
  kinds.insert(kinds.end(), forms.begin(), forms.end());
  return kinds;
}

// ---- the three conversions

// What a conversion before this one left belongs to its document, which may be closed by now; so
// does what a restart learned of its base.
void inpS_Inp2Sim::Begin(const KvoObjDocument& document) {
  m_surfaceVisitor.reset();
  const auto own = std::ranges::count(m_keywords, false, &inp_Keyword::IsInstanceCopy);
  m_ledger.Open(static_cast<std::size_t>(own));
  m_notModelled.clear();
  m_boundaries = {};
  m_meshLeftOut = m_isRestart = false;
  m_featureEnhanced = m_isDeckFeatureEnhanced;
  m_modelString.clear();
  m_inventory.SetFeatureEnhanced(false);
  m_document = document;
  m_inventory.SetDocument(document);
}

bool inpS_Inp2Sim::Derive() {
  return m_boundaries.Report(inpS_deriveSteps(m_document));
}

void inpS_Inp2Sim::End() {
  TellDoubts();
  m_ledger.Close();
  ListUnreadParameters();
}

bool inpS_Inp2Sim::RunPhases(const Phase* phases, const char* prefix, Labelers& labelers) {
  bool good = true;
  const auto structuredErrors = [] { return inpS_MessageContainer::Instance().ErrorCount(); };
  const auto before = structuredErrors();
  for (const Phase* phase = phases; phase->tag; ++phase) {
    const bcu_MarkScope mark(prefix, phase->tag);
    const bool result = phase->run(*this, labelers);
    if (phase->counted) good = result && good;
  }
  return good && structuredErrors() == before; // those reach the host when the container goes
}

bool inpS_Inp2Sim::Convert(const KvoObjDocument& document) try {
  Begin(document);
  if (!document.GetMesh().IsNull()) {
    wip_WIPBase::Instance().Error(
        {"The database holds a model already; a conversion fills an empty one, and only a restart "
         "goes on with what is there. Nothing is converted."},
        1);
    return false;
  }
  Labelers labelers;
  const bcu_MarkScope mark("inp2sim-", "convert");
  const bool converted = RunPhases(Phases(), "inp2sim-", labelers);
  // Last: its texts stand in deck order behind everything that was converted.
  const bool kept = KeepVerbatim(false, m_keywords);
  const bool derived = Derive();
  End();
  return converted && kept && derived;
} catch (...) {
  inpS_passOn();
}

// What the parser found wrong with values, and nobody has told with what it costs.
void inpS_Inp2Sim::TellDoubts() {
  inp_Visitor messages;
  for (const inp_Keyword& keyword : m_keywords) {
    if (keyword.IsInstanceCopy()) continue; // the same as its original
    if (std::ranges::none_of(keyword.Parameters(), &inp_Parameter::doubted)) continue;
    const auto unknown = inpS_unknownWords(keyword);
    for (const inp_Parameter& parameter : keyword.Parameters()) {
      if (!parameter.doubted) continue;
      const bool isKept =
          m_ledger.RecordOf(keyword) && std::ranges::find(unknown, parameter.name) != unknown.end();
      messages.AddWarning(inp_Utils::MessageAtParameter(keyword, parameter.name,
                                                        isKept ? "It is kept as it stands." : ""));
    }
  }
  messages.Report();
}

// Every look-up marks its parameter; what no reader asked for is not in the model.
void inpS_Inp2Sim::ListUnreadParameters() {
  cow_Map<cow_String, inpS_NotModelled> rows;
  for (const inp_Keyword& keyword : m_keywords) {
    if (keyword.IsInstanceCopy()) continue; // its original in the part has been judged
    for (const inp_Parameter& parameter : keyword.Parameters()) {
      if (parameter.referred) continue;
      cow_String name = parameter.name;
      for (char& c : name)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
      inpS_NotModelled& row = rows[keyword.Name() + ", " + name];
      if (row.count++ == 0) {
        row.file = keyword.FileName();
        row.line = keyword.Line();
        row.kept = false;
      }
    }
  }
  for (auto& [name, row] : rows) {
    row.keyword = name;
    m_notModelled.push_back(row);
  }
}

bool inpS_Inp2Sim::ConvertRestart(const KvoObjDocument& document) try {
  Begin(document);
  m_isRestart = true;
  if (IsSimDatabaseFeatureEnhanced(document)) {
    m_inventory.SetFeatureEnhanced(true);
    m_modelString = document.GetModel().DataRecord().ReturnString(eds_Model_ModelString);
    m_featureEnhanced = true;
  }
  Labelers labelers;
  const bool converted = RunPhases(RestartPhases(), "inp2sim-", labelers);
  // Last, as the phases tell what else goes with them.
  const bool kept = KeepVerbatim(true, m_keywords);
  const bool derived = Derive();
  End();
  return converted && kept && derived;
} catch (...) {
  inpS_passOn();
}

bool inpS_Inp2Sim::ConvertSubstructureRecovery(const KvoObjDocument& document,
                                               const cow_String&) try {
  Begin(document);
  Labelers labelers;
  labelers.nodes.emplace(document, 0); // not read: recovery refers to no label of the mesh
  labelers.elements.emplace(document, 1);
  ProcessSteps(labelers);
  ProcessOutput(labelers);
  // Of the steps nothing is lost that they do not make records of; the rest of the deck is the
  // model's, which is there.
  inp_KeywordList ofSteps;
  for (const inp_Keyword& keyword : m_keywords)
    if (keyword.Kind() == inp_KwStep || keyword.Kind() == inp_KwEndStep ||
        keyword.Scope().kind == inp_Scope::Kind::Step)
      ofSteps.push_back(keyword);
  if (!ofSteps.empty()) KeepVerbatim(true, ofSteps);
  Derive();
  TellDoubts();
  return true;
} catch (...) {
  inpS_passOn();
}
