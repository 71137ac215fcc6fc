#include "host/inps_Conversion.h"

#include "base/bcu_ResourceMonitor.h"
#include "base/utl_File.h"
#include "host/inps_Input.h"
#include "host/inps_OpenModel.h"
#include "host/inps_ReadFiles.h"
#include "host/inps_Run.h"
#include "host/inps_Terminal.h"
#include "inpS/driver/inpS_Module.h"
#include <algorithm>
#include <exception>
#include <fstream>

namespace {

// The module in use: giving it back hands its last gathered messages to the reporter.
class ModuleUse {
public:
  ModuleUse() { KvoI2sInpS_initialize(m_uses); }
  // Throws what the reporter throws, unless a failure is on its way already.
  ~ModuleUse() noexcept(false) {
    try {
      KvoI2sInpS_finalize(m_uses);
      inpS_Inp2Sim::ReportGathered(); // other threads may use the module still
    } catch (const std::exception&) {
      if (std::uncaught_exceptions() == 0) throw;
    }
  }
  ModuleUse(const ModuleUse&) = delete;
  ModuleUse& operator=(const ModuleUse&) = delete;

private:
  int m_uses = 0;
};

// The system's own words for a deck that is not there, is a folder or may not be read. A pipe can
// be read only once and is left to the parser.
void requireReadable(const inps_Input& input) {
  const std::filesystem::path& deck = input.File();
  std::error_code ignored;
  const std::filesystem::file_status status = std::filesystem::status(deck, ignored);
  if (std::filesystem::is_socket(status))
    throw utl_FileException("cannot read", deck, "it is a socket");
  if (std::filesystem::is_directory(status))
    throw utl_FileException("cannot read", deck, "it is a folder");
  if (!std::filesystem::is_fifo(status)) utl_requireReadable(deck);
  if (inps_beginsAsModel(deck))
    throw utl_FileException(
        "cannot read", deck,
        "it is a model and not a deck; write it as one first: inps write " +
            (input.IsStandardInput() ? cow_String(inps_dash) : inps_shellWord(utl_pathText(deck))));
}

bool phase(const char* tag, inpS_Inp2Sim& driver, bool (inpS_Inp2Sim::*step)()) {
  const bcu_MarkScope mark("inps-", tag);
  return (driver.*step)();
}

} // namespace

inps_Conversion::inps_Conversion(const inps_Input& deck, inps_Reporter& reporter)
    : m_deck(deck.File()), m_name(deck.IsStandardInput() ? deck.Name() : cow_String()),
      m_reporter(reporter), m_errorsBefore(reporter.Errors()),
      m_warningsBefore(reporter.AllWarnings()) {
  requireReadable(deck);
}

inps_Conversion::~inps_Conversion() = default;

bool inps_Conversion::Prepare() {
  const ModuleUse use;
  // Include files are looked for beside the deck whatever folder the program runs in.
  const std::filesystem::path folder = m_name.empty() ? m_deck.parent_path() : "";
  m_driver = std::make_unique<inpS_Inp2Sim>(utl_pathText(m_deck), utl_pathText(folder), m_name);
  bool good = true;
  for (const auto& [tag, step] : {std::pair("parse", &inpS_Inp2Sim::Parse),
                                  std::pair("utf8", &inpS_Inp2Sim::CheckUtf8Compliance),
                                  std::pair("expand", &inpS_Inp2Sim::Expand),
                                  std::pair("reorganize", &inpS_Inp2Sim::Reorganize),
                                  std::pair("inventory", &inpS_Inp2Sim::BuildInventory)}) {
    good = phase(tag, *m_driver, step) && good;
    if (m_driver->Keywords().empty()) return false;
  }
  // The deck cannot be converted as it stands, but its other faults need not wait for another run.
  if (!good) m_driver->Convert(KvoObjDocument::InMemory());
  return good;
}

template <class Work> bool inps_Conversion::Run(const KvoObjDocument& document, Work work) {
  bool done = false;
  m_reporter.TakeLeftOut(); // of what ran before
  {
    const ModuleUse use;
    inpS_Inp2Sim::DescribeSource(document, utl_pathText(m_deck), m_name);
    done = work();
  }
  for (const inp_DeckTextPtr& file : m_driver->Files())
    if (!file->IsFileAsItWas())
      throw utl_FileException("cannot read", file->Path(), "its size changed while it was read");
  m_notModelled = m_driver->NotModelled();
  m_driver->DescribeResult(document, m_reporter.Errors() - m_errorsBefore,
                           m_reporter.AllWarnings() - m_warningsBefore, m_reporter.TakeLeftOut());
  return done;
}

bool inps_Conversion::Convert(const KvoObjDocument& document) {
  return Run(document, [&] { return m_driver->Convert(document); });
}

bool inps_Conversion::ConvertRestart(const KvoObjDocument& document) {
  return Run(document, [&] { return m_driver->ConvertRestart(document); });
}

namespace {

// From about here on a model of small pages is no smaller than one of large pages by a share that
// anybody would notice, and takes longer.
constexpr std::ptrdiff_t mostOfSmall = 1 << 20;

// A line of these may stand for a million nodes.
bool isGenerator(inp_KeywordEnm kind) {
  constexpr inp_KeywordEnm generators[] = {inp_KwNgen, inp_KwNfill, inp_KwNcopy, inp_KwElgen,
                                           inp_KwElcopy};
  return std::ranges::find(generators, kind) != std::end(generators);
}

} // namespace

KvoSize inps_Conversion::ExpectedSize() const {
  constexpr std::ptrdiff_t keywordLine = 32;
  std::ptrdiff_t bytes = 0;
  for (const inp_Keyword& keyword : m_driver->Keywords()) {
    bytes += keywordLine;
    for (const inp_DataSegment& segment : keyword.Data().Segments())
      bytes += segment.end - segment.begin;
    if (bytes > mostOfSmall || isGenerator(keyword.Kind())) return KvoSize::Large;
  }
  return KvoSize::Small;
}

void inps_Conversion::TellFiles(inps_ReadFiles& read) const {
  for (const inp_DeckTextPtr& file : m_driver->Files()) read.Add(file->Path());
  read.AddNamed(m_driver->NamedFiles());
}

const inp_Keyword* inps_Conversion::RestartKeyword() const {
  const auto reads = [](const inp_Parameter& parameter) { return parameter.name == "read"; };
  for (const inp_Keyword& keyword : m_driver->Keywords())
    if (keyword.Kind() == inp_KwRestart && std::ranges::any_of(keyword.Parameters(), reads))
      return &keyword;
  return nullptr;
}

KvoObjDocument inps_openModelOrDeck(const inps_Input& input, inps_Run& run, inps_ReadFiles* read) {
  if (read) read->Add(input.File());
  if (inps_isModelFile(input.File())) return inps_openModel(input, run);
  inps_Conversion conversion(input, run.Reporter());
  if (!conversion.Prepare()) return {};
  if (read) conversion.TellFiles(*read);
  KvoObjDocument document = KvoObjDocument::InMemory();
  conversion.Convert(document);
  return document;
}
