#include "host/inps_Commands.h"

#include "base/utl_File.h"
#include "base/utl_Stream.h"
#include "database/KvoObjModel.h"
#include "host/inps_Arguments.h"
#include "host/inps_OpenModel.h"
#include "host/inps_OutputFile.h"
#include "host/inps_PlotPage.h"
#include "host/inps_ReadFiles.h"
#include "host/inps_Reporter.h"
#include "host/inps_Session.h"
#include <algorithm>
#include <ostream>
#include <unordered_set>

namespace {

constexpr std::size_t mostDrawn = 300; // materials, and as many amplitudes

// Chooses what is drawn: all, up to a number, or what is named on the command line.
class Choice {
public:
  explicit Choice(std::span<const cow_String> names) : m_wanted(names.begin(), names.end()) {}

  enum class Fate { Drawn, Listed, Absent };
  Fate Of(const cow_String& name, std::size_t drawn) {
    if (m_wanted.empty()) return drawn < mostDrawn ? Fate::Drawn : Fate::Listed;
    if (!m_wanted.contains(name)) return Fate::Absent;
    m_found.insert(name);
    return Fate::Drawn;
  }
  bool IsWanted(const cow_String& name) const { return !m_found.contains(name); }

private:
  std::unordered_set<cow_String> m_wanted;
  std::unordered_set<cow_String> m_found;
};

void list(inps_PlotPage& page, const cow_String& kind, const cow_String& name) {
  if (page.notDrawn.empty() || page.notDrawn.back().kind != kind)
    page.notDrawn.push_back({kind, {}});
  page.notDrawn.back().names.push_back(name);
}

void addMaterials(const KvoObjDocument& document, Choice& choice, inps_PlotPage& page) {
  inps_forPropertyOwners(document, [&](const inps_PropertyOwner& owner) {
    const Choice::Fate fate = choice.Of(owner.name, page.sections.size());
    if (fate == Choice::Fate::Listed) list(page, owner.kind, owner.name);
    if (fate != Choice::Fate::Drawn) return;
    inps_PlotSection section{owner.kind, owner.name, {}, {}};
    for (const inpS_PropertyDescription& behavior : inpS_describeProperties(owner.position))
      inps_plotBehavior(behavior, inps_NamedTable(behavior), section);
    page.sections.push_back(std::move(section));
  });
}

void addAmplitudes(const KvoObjDocument& document, Choice& choice, inps_PlotPage& page) {
  const KvoSimPosition model = document.GetModel().Position();
  if (model.IsNull()) return; // cut short at its very start
  inps_PlotSection section{"amplitudes", "Amplitudes", {}, {}};
  for (const KvoSimPosition& amplitude : model.FollowMap(eds_Member::Amplitudes)) {
    const cow_String name = amplitude.Name();
    const Choice::Fate fate = choice.Of(name, section.charts.size());
    if (fate == Choice::Fate::Listed) list(page, section.kind, name);
    if (fate == Choice::Fate::Drawn) section.charts.push_back(inps_plotAmplitude(amplitude));
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
  const std::filesystem::path file = arguments.Path(0);
  const KvoObjDocument document = inps_openModel(file, session);
  const auto names = std::span(arguments.Operands()).subspan(1);
  Choice choice(names);
  inps_PlotPage page;
  page.title = utl_pathText(file.filename());
  addMaterials(document, choice, page);
  addAmplitudes(document, choice, page);
  page.facts = factsOf(page);
  for (const cow_String& name : names) {
    if (!choice.IsWanted(name)) continue;
    session.err << "inps: the model has no material, gasket behavior or amplitude \"" << name
                << "\"; nothing was written\n";
    return inps_ExitUsage;
  }
  const bool named = arguments.Has(inps_Opt::Output);
  const std::filesystem::path target =
      named ? arguments.PathOf(inps_Opt::Output) : file.filename().replace_extension(".html");
  inps_writeFile(target, arguments.Has(inps_Opt::Force), {file},
                 [&](utl_Stream& out) { inps_printPlotPage(out, page); });
  session.out << utl_pathText(target) << ": " << page.facts << '\n';
  return inps_ExitDone;
}
