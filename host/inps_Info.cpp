#include "host/inps_Commands.h"

#include "base/utl_File.h"
#include "base/utl_Interruption.h"
#include "database/eds_ModelReader.h"
#include "host/inps_ActingList.h"
#include "host/inps_Arguments.h"
#include "host/inps_ElementSections.h"
#include "host/inps_HistoryList.h"
#include "host/inps_Input.h"
#include "host/inps_Json.h"
#include "host/inps_MaterialList.h"
#include "host/inps_MeshQuality.h"
#include "host/inps_NameChoice.h"
#include "host/inps_NamedTable.h"
#include "host/inps_OpenModel.h"
#include "host/inps_SectionList.h"
#include "host/inps_Session.h"
#include "host/inps_Timings.h"
#include "inpS/writer/inpS_HistoryDescription.h"
#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>

namespace {

constexpr std::size_t mostListed = 20; // parts, instances, sections or steps

void printCounts(aio_ostream& out, const char* title, const inps_ModelSummary::Counts& counts,
                 const char* prefix) {
  if (counts.empty()) return;
  out << title << '\n';
  std::size_t widest = 0;
  for (const auto& entry : counts) widest = std::max(widest, entry.first.size());
  for (const auto& [name, count] : counts)
    out << "  " << prefix << name << cow_String(widest - name.size() + 2, ' ') << count << '\n';
}

void printParts(aio_ostream& out, const char* title,
                const cow_List<inps_ModelSummary::Part>& parts) {
  if (parts.empty()) return;
  out << title << '\n';
  for (std::size_t i = 0; i < std::min(parts.size(), mostListed); ++i) {
    const inps_ModelSummary::Part& part = parts[i];
    out << "  " << part.name;
    if (!part.part.empty()) out << " of " << part.part;
    out << ": " << inps_counted(part.nodes, "node") << ", "
        << inps_counted(part.elements, "element") << '\n';
  }
  if (parts.size() > mostListed) out << "  … and " << parts.size() - mostListed << " more\n";
}

void printSections(aio_ostream& out, const KvoObjDocument& document) {
  const cow_List<inpS_SectionDescription> sections = inpS_describeSections(document);
  if (sections.empty()) return;
  if (sections.size() <= mostListed) {
    out << "sections:\n";
    inps_printSections(out, sections, inps_NameChoice({}, {}));
  } else {
    out << sections.size() << " sections; --sections lists them:\n";
    inps_printSectionKinds(out, sections);
  }
  const cow_String bare = inps_withoutSectionText(inps_elementsWithoutSection(document));
  if (!bare.empty()) out << bare << '\n';
}

void printInfo(aio_ostream& out, const inps_ModelSummary& summary, const KvoObjDocument& document) {
  if (!summary.heading.empty()) out << "heading: " << summary.heading << '\n';
  out << inps_summaryLine(summary) << '\n';
  out << "dimensions: " << summary.dimensions << '\n';
  if (summary.materials > 0 || summary.amplitudes > 0)
    out << inps_counted(summary.materials, "material") << ", "
        << inps_counted(summary.amplitudes, "amplitude") << '\n';
  printParts(out, "parts:", summary.parts);
  printParts(out, "instances:", summary.instances);
  printSections(out, document);
  inps_printHistory(out, inpS_describeHistory(document), mostListed);
  if (summary.nodes > 0) inps_printQuality(out, inps_assessMesh(document));
  printCounts(out, "kept as text:", summary.keptAsText, "*");
  printCounts(out, "records:", summary.records, "");
}

// The names that were not found are told; whether all were.
bool areThere(inps_Session& session, const inps_NameChoice& choice, const char* kind) {
  for (const cow_String& name : choice.Missing())
    session.err << "inps: the model has no " << kind << " \"" << name << "\"\n";
  return choice.Missing().empty();
}

void printListJson(inps_Session& session, const inps_Arguments& arguments, const char* name,
                   inps_Json list) {
  inps_printJson(session.out, {{"command", "info"},
                               {"model", arguments.Operands()[0]},
                               {name, std::move(list)},
                               {"failure", nullptr},
                               {"exit", inps_ExitDone}});
}

int listSections(inps_Session& session, const inps_Arguments& arguments,
                 const KvoObjDocument& document) {
  const cow_List<inpS_SectionDescription> sections = inpS_describeSections(document);
  cow_List<cow_String> have;
  for (const inpS_SectionDescription& section : sections) have.push_back(section.name);
  const inps_NameChoice choice(std::span(arguments.Operands()).subspan(1), have);
  if (!areThere(session, choice, "section")) return inps_ExitUsage;
  if (arguments.Has(inps_Opt::Json))
    printListJson(session, arguments, "sections", inps_jsonOfSections(sections, choice));
  else if (sections.empty())
    session.out << "no sections\n";
  else
    inps_printSections(session.out, sections, choice);
  return inps_ExitDone;
}

int listMaterials(inps_Session& session, const inps_Arguments& arguments,
                  const KvoObjDocument& document) {
  cow_List<cow_String> have;
  inps_forPropertyOwners(document,
                         [&](const inps_PropertyOwner& owner) { have.push_back(owner.name); });
  const inps_NameChoice choice(std::span(arguments.Operands()).subspan(1), have);
  if (!areThere(session, choice, "material or gasket behavior")) return inps_ExitUsage;
  if (arguments.Has(inps_Opt::Json))
    printListJson(session, arguments, "materials", inps_jsonOfMaterials(document, choice));
  else
    inps_printMaterials(session.out, document, choice);
  return inps_ExitDone;
}

// A step is named by its name, or by its number.
int listHistory(inps_Session& session, const inps_Arguments& arguments,
                const KvoObjDocument& document) {
  const cow_List<inpS_HistoryDescription> history = inpS_describeHistory(document);
  cow_List<cow_String> have;
  cow_List<cow_String> numbers;
  for (const inpS_HistoryDescription& step : history) {
    have.push_back(step.name);
    numbers.push_back(std::to_string(step.number));
  }
  cow_List<cow_String> wanted(arguments.Operands().begin() + 1, arguments.Operands().end());
  for (cow_String& word : wanted) {
    const auto number = std::ranges::find(numbers, word);
    if (number != numbers.end() && std::ranges::find(have, word) == have.end())
      word = have[static_cast<std::size_t>(number - numbers.begin())];
  }
  const inps_NameChoice choice(wanted, have);
  if (!areThere(session, choice, "step")) return inps_ExitUsage;
  cow_List<inpS_HistoryDescription> chosen;
  for (std::size_t n = 0; n < history.size(); ++n)
    if (choice.Has(have[n])) chosen.push_back(history[n]);
  if (arguments.Has(inps_Opt::Json))
    inps_printActingJson(session.out, document, chosen,
                         {{"command", "info"}, {"model", arguments.Operands()[0]}},
                         {{"failure", nullptr}, {"exit", inps_ExitDone}});
  else if (history.empty())
    session.out << "no steps\n";
  else
    inps_printActing(session.out, document, chosen, mostListed);
  return inps_ExitDone;
}

inps_Json jsonOf(const inps_Input& input, const KvoObjDocument& document,
                 const inps_ModelSummary& summary, uintmax_t bytes) {
  inps_Json json{{"command", "info"},  {"model", input.Name()},
                 {"bytes", bytes},     {"finished", document.IsFinished()},
                 {"failure", nullptr}, {"exit", inps_ExitDone}};
  if (summary.outcome.isKnown) {
    json["errors"] = summary.outcome.errors;
    json["warnings"] = summary.outcome.warnings;
    json["leftOut"] = summary.outcome.leftOut;
    json["meshLeftOut"] = summary.outcome.IsMeshLeftOut() || summary.outcome.IsRestartMeshLeftOut();
  }
  inps_Json facts = inps_Json::object();
  for (const auto& [name, value] : eds_ModelReader(document).Meta()) facts[name] = value;
  json["meta"] = std::move(facts);
  json["summary"] = inps_jsonOf(summary);
  const cow_List<inpS_SectionDescription> sections = inpS_describeSections(document);
  json["sectionKinds"] = inps_jsonOfSectionKinds(sections);
  json["sections"] = sections.size() > mostListed
                         ? inps_Json()
                         : inps_jsonOfSections(sections, inps_NameChoice({}, {}));
  json["withoutSection"] = inps_jsonOf(inps_elementsWithoutSection(document));
  json["history"] = inps_jsonOfHistory(inpS_describeHistory(document));
  json["quality"] = inps_jsonOf(inps_assessMesh(document));
  return json;
}

// Facts that the first lines tell already.
bool isToldAbove(std::string_view fact) {
  return fact == "finished" || fact == "errors" || fact == "warnings" || fact == "left_out";
}

int info(inps_Session& session, const inps_Arguments& arguments) {
  const bool named = arguments.Operands().size() > 1;
  const bool ofMaterials = arguments.Has(inps_Opt::Materials);
  const bool ofSections = arguments.Has(inps_Opt::Sections);
  const bool ofHistory = arguments.Has(inps_Opt::History);
  const int lists = ofMaterials + ofSections + ofHistory;
  if (named && lists == 0) {
    session.err << "inps: names choose from what \"--materials\", \"--sections\" or \"--history\" "
                   "lists, and none of them is given\n";
    return inps_ExitUsage;
  }
  if (lists > 1) {
    session.err
        << "inps: \"--materials\", \"--sections\" and \"--history\" are lists of their own; "
           "ask for one\n";
    return inps_ExitUsage;
  }
  const inps_Input input(arguments.Operands()[0], session);
  const KvoObjDocument document = inps_openModel(input);
  if (ofMaterials) return listMaterials(session, arguments, document);
  if (ofSections) return listSections(session, arguments, document);
  if (ofHistory) return listHistory(session, arguments, document);
  const inps_ModelSummary summary = inps_summarize(document);
  std::error_code ignored;
  const auto size = std::filesystem::file_size(input.File(), ignored);
  if (arguments.Has(inps_Opt::Json)) {
    inps_printJson(session.out, jsonOf(input, document, summary, size));
    return inps_ExitDone;
  }
  session.out << inps_oneLine(input.Name()) << ": " << inps_bytesText(size) << ", "
              << (document.IsFinished()
                      ? "finished"
                      : "not finished: its conversion was cut short or still goes on")
              << '\n';
  if (summary.outcome.isKnown) {
    session.out << (summary.outcome.errors > 0 ? "does not hold all of its deck: "
                                               : "converted with ")
                << summary.outcome.Text() << '\n';
  }
  for (const auto& [name, value] : eds_ModelReader(document).Meta())
    if (!isToldAbove(name)) session.out << name << ": " << inps_oneLine(value) << '\n';
  printInfo(session.out, summary, document);
  return inps_ExitDone;
}

} // namespace

int inps_info(inps_Session& session, const inps_Arguments& arguments) {
  if (!arguments.Has(inps_Opt::Json)) return info(session, arguments);
  try {
    return info(session, arguments);
  } catch (const std::exception& failure) {
    const bool asked = dynamic_cast<const utl_Interruption*>(&failure) != nullptr;
    inps_printJson(session.out,
                   {{"command", "info"},
                    {"model", arguments.Operands()[0]},
                    {"failure", session.Shown(failure.what())},
                    {"exit", static_cast<int>(asked ? inps_ExitInterrupted : inps_ExitFailure)}});
    throw;
  }
}
