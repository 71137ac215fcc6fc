#include "host/inps_Commands.h"

#include "host/inps_Arguments.h"
#include "host/inps_Json.h"
#include "host/inps_Session.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>

namespace {

struct Coverage {
  std::string_view name;
  unsigned levels = 0;
  bool modelled = false;
};

// One row per deck name: the organiser's variants of a keyword are one keyword to users.
cow_List<Coverage> coverage() {
  const cow_List<inp_KeywordEnm> modelled = inpS_Inp2Sim::CoveredKinds();
  cow_Map<std::string_view, Coverage> byName;
  for (const inp_KeywordRow& row : inp_KeywordTable::Instance().Rows()) {
    Coverage& entry = byName[row.name];
    entry.name = row.name;
    entry.levels |= row.levels;
    entry.modelled |= std::ranges::find(modelled, row.kind) != modelled.end();
  }
  cow_List<Coverage> rows;
  for (const auto& entry : byName) rows.push_back(entry.second);
  return rows;
}

cow_List<std::string_view> placesOf(unsigned levels) {
  struct Place {
    unsigned level;
    std::string_view name;
  };
  static constexpr Place places[] = {{inp_LevelsModel, "model"},
                                     {inp_LevelsPart, "part"},
                                     {inp_LevelsInstance, "instance"},
                                     {inp_LevelsAssembly, "assembly"},
                                     {inp_LevelsStep, "step"}};
  cow_List<std::string_view> names;
  for (const Place& place : places)
    if (levels & place.level) names.push_back(place.name);
  if (names.empty()) names.push_back("sub-option");
  return names;
}

std::string_view fate(bool modelled) {
  return modelled ? "modelled" : "kept as text";
}

void printText(aio_ostream& out, const cow_List<Coverage>& rows) {
  std::size_t widest = 0;
  for (const Coverage& row : rows) widest = std::max(widest, row.name.size());
  for (const Coverage& row : rows) {
    out << '*' << row.name << cow_String(widest - row.name.size() + 2, ' ') << fate(row.modelled);
    out << cow_String(14 - fate(row.modelled).size(), ' ');
    const char* separator = "";
    for (const std::string_view place : placesOf(row.levels)) {
      out << separator << place;
      separator = ", ";
    }
    out << '\n';
  }
}

// For a page to be read: what is modelled by name, the hundreds that are kept as a number.
void printMarkdown(aio_ostream& out, const cow_List<Coverage>& rows) {
  out << "| Fate | Count | Keywords |\n|---|---|---|\n| " << fate(true) << " | "
      << std::ranges::count(rows, true, &Coverage::modelled) << " | ";
  const char* separator = "";
  for (const Coverage& row : rows) {
    if (!row.modelled) continue;
    out << separator << "`*" << row.name << '`';
    separator = ", ";
  }
  out << " |\n| " << fate(false) << " | " << std::ranges::count(rows, false, &Coverage::modelled)
      << " | all others; `inps keywords` names them |\n";
}

void printJson(aio_ostream& out, const cow_List<Coverage>& rows) {
  inps_Json list = inps_Json::array();
  for (const Coverage& row : rows)
    list.push_back(
        {{"keyword", row.name}, {"modelled", row.modelled}, {"places", placesOf(row.levels)}});
  inps_printJson(out, {{"command", "keywords"}, {"keywords", std::move(list)}});
}

} // namespace

int inps_keywords(inps_Session& session, const inps_Arguments& arguments) {
  const cow_List<Coverage> rows = coverage();
  if (arguments.Has(inps_Opt::Json)) {
    printJson(session.out, rows);
  } else if (arguments.Has(inps_Opt::Markdown)) {
    printMarkdown(session.out, rows);
  } else {
    printText(session.out, rows);
    const auto modelled = std::ranges::count(rows, true, &Coverage::modelled);
    session.out
        << modelled << " of " << rows.size()
        << " keywords are modelled; the others, and words that are no keywords, are kept as "
           "text\nin their place and reported\n";
  }
  return inps_ExitDone;
}
