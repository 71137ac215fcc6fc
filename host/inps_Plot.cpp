#include "host/inps_Commands.h"

#include "base/utl_File.h"
#include "base/utl_Stream.h"
#include "database/KvoObjModel.h"
#include "host/inps_Arguments.h"
#include "host/inps_Input.h"
#include "host/inps_NameChoice.h"
#include "host/inps_OpenModel.h"
#include "host/inps_OutputFile.h"
#include "host/inps_PlotPage.h"
#include "host/inps_ReadFiles.h"
#include "host/inps_Reporter.h"
#include "host/inps_Run.h"
#include "host/inps_Session.h"
#include <algorithm>
#include <ostream>

namespace {

constexpr std::size_t mostDrawn = 300; // materials, and as many amplitudes

enum class Fate { Drawn, Listed, Absent };

// All, up to a number, or what is named on the command line.
Fate fateOf(const inps_NameChoice& choice, const cow_String& name, std::size_t drawn) {
  if (!choice.Has(name)) return Fate::Absent;
  return choice.IsAll() && drawn >= mostDrawn ? Fate::Listed : Fate::Drawn;
}

cow_List<cow_String> namesOf(const KvoObjDocument& document) {
  cow_List<cow_String> names;
  inps_forPropertyOwners(document,
                         [&](const inps_PropertyOwner& owner) { names.push_back(owner.name); });
  const KvoSimPosition model = document.GetModel().Position();
  if (model.IsNull()) return names; // cut short at its very start
  for (const KvoSimPosition& amplitude : model.FollowMap(eds_Member::Amplitudes))
    names.push_back(amplitude.Name());
  return names;
}

void list(inps_PlotPage& page, const cow_String& kind, const cow_String& name) {
  if (page.notDrawn.empty() || page.notDrawn.back().kind != kind)
    page.notDrawn.push_back({kind, {}});
  page.notDrawn.back().names.push_back(name);
}

void addMaterials(const KvoObjDocument& document, const inps_NameChoice& choice,
                  inps_PlotPage& page) {
  inps_forPropertyOwners(document, [&](const inps_PropertyOwner& owner) {
    const Fate fate = fateOf(choice, owner.name, page.sections.size());
    if (fate == Fate::Listed) list(page, owner.kind, owner.name);
    if (fate != Fate::Drawn) return;
    inps_PlotSection section{owner.kind, owner.name, {}, {}};
    for (const inpS_PropertyDescription& behavior : inpS_describeProperties(owner.position))
      inps_plotBehavior(behavior, inps_NamedTable(behavior), section);
    page.sections.push_back(std::move(section));
  });
}

void addAmplitudes(const KvoObjDocument& document, const inps_NameChoice& choice,
                   inps_PlotPage& page) {
  const KvoSimPosition model = document.GetModel().Position();
  if (model.IsNull()) return; // cut short at its very start
  inps_PlotSection section{"amplitudes", "Amplitudes", {}, {}};
  for (const KvoSimPosition& amplitude : model.FollowMap(eds_Member::Amplitudes)) {
    const cow_String name = amplitude.Name();
    const Fate fate = fateOf(choice, name, section.charts.size());
    if (fate == Fate::Listed) list(page, section.kind, name);
    if (fate == Fate::Drawn) section.charts.push_back(inps_plotAmplitude(amplitude));
  }
  if (!section.charts.empty()) page.sections.push_back(std::move(section));
}

// "4 materials, 5 amplitudes, 22 charts; …" of what the page shows.
cow_String factsOf(const inps_PlotPage& page) {
  long long materials = 0;
  long long gaskets = 0;
  long long amplitudes = 0;
  long long charts = 0;
  for (const inps_PlotSection& section : page.sections) {
    materials += section.kind == "material";
    gaskets += section.kind == "gasket behavior";
    if (section.kind == "amplitudes") amplitudes = static_cast<long long>(section.charts.size());
    charts += static_cast<long long>(section.charts.size());
  }
  cow_String facts = inps_counted(materials, "material");
  if (gaskets > 0) facts += ", " + inps_counted(gaskets, "gasket behavior");
  facts += ", " + inps_counted(amplitudes, "amplitude") + ", " + inps_counted(charts, "chart");
  std::size_t listed = 0;
  for (const inps_PlotPage::Names& rest : page.notDrawn) listed += rest.names.size();
  if (listed > 0)
    facts += "; " + std::to_string(listed) +
             " more are listed and not drawn, name those that you want behind the model";
  return facts;
}

} // namespace

int inps_plot(inps_Session& session, const inps_Arguments& arguments) {
  inps_Run run(session, arguments);
  return run.Do([&]() -> int {
    const bool named = arguments.Has(inps_Opt::Output);
    const bool toOutput = named && arguments.ValueOf(inps_Opt::Output) == inps_dash;
    const inps_Input input(arguments.Operands()[0], session);
    if (input.IsStandardInput() && !named) {
      session.err << "inps: a model from standard input has no name for its page; give -o\n";
      return inps_ExitUsage;
    }
    const KvoObjDocument document = inps_openModel(input, run);
    const inps_NameChoice choice(std::span(arguments.Operands()).subspan(1), namesOf(document));
    for (const cow_String& name : choice.Missing())
      session.err << "inps: the model has no material, gasket behavior or amplitude \"" << name
                  << "\"; nothing was written\n";
    if (!choice.Missing().empty()) return inps_ExitUsage;
    inps_PlotPage page;
    page.title = input.IsStandardInput() ? input.Name() : utl_pathText(input.File().filename());
    addMaterials(document, choice, page);
    addAmplitudes(document, choice, page);
    page.facts = factsOf(page);
    if (toOutput) {
      utl_Stream out(run.Data());
      inps_printPlotPage(out, page);
      out.Close();
      session.err << page.facts << '\n';
      return inps_ExitDone;
    }
    const std::filesystem::path target = named ? arguments.PathOf(inps_Opt::Output)
                                               : input.File().filename().replace_extension(".html");
    inps_writeFile(target, arguments.Has(inps_Opt::Force), {input.File()},
                   [&](utl_Stream& out) { inps_printPlotPage(out, page); });
    session.out << inps_oneLine(utl_pathText(target)) << ": " << page.facts << '\n';
    return inps_ExitDone;
  });
}
