#include "host/inps_Commands.h"

#include "host/inps_Arguments.h"
#include "host/inps_Json.h"
#include "host/inps_Session.h"
#include "inpS/history/inpS_LoadLabels.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>
#include <array>
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

// ---- the labels of loads

// A mark at a value says that it must be given; so do words.
cow_String valuesOf(const inpS_LoadLabel& label) {
  cow_String text;
  for (const inpS_LoadLabel::Value& value : label.values) {
    text += (text.empty() ? "" : ", ") + cow_String(value.name);
    if (value.components > 1) text += " (" + std::to_string(value.components) + ")";
    if (value.isRequired) text += " !";
  }
  std::ranges::replace(text, '_', ' ');
  return text.empty() ? "by the user" : text;
}

cow_String elementsOf(const inpS_LoadLabel& label) {
  constexpr std::string_view parts[] = {"", "", "faces of ", "edges of "};
  return cow_String(parts[static_cast<std::size_t>(label.part)]) +
         inpS_familiesText(label.families);
}

void printLoads(aio_ostream& out, bool isMarkdown) {
  using Row = std::array<cow_String, 5>;
  cow_List<Row> rows;
  for (const inpS_LoadLabel& label : inpS_loadLabels()) {
    cow_String labels(label.labels);
    for (std::size_t at = labels.find(' '); at != labels.npos; at = labels.find(' ', at + 2))
      labels.replace(at, 1, ", ");
    rows.push_back({"*" + cow_String(label.keywordName), labels, elementsOf(label), valuesOf(label),
                    cow_String(label.units)});
  }
  if (isMarkdown) {
    out << "| Keyword | Labels | On | Values | Units |\n|---|---|---|---|---|\n";
    for (const Row& row : rows)
      out << "| `" << row[0] << "` | `" << row[1] << "` | " << row[2] << " | " << row[3] << " | "
          << row[4] << " |\n";
    return;
  }
  std::array<std::size_t, std::tuple_size_v<Row>> widths{};
  for (const Row& row : rows)
    for (std::size_t n = 0; n < row.size(); ++n) widths[n] = std::max(widths[n], row[n].size());
  for (const Row& row : rows) {
    for (std::size_t n = 0; n + 1 < row.size(); ++n)
      out << row[n] << cow_String(widths[n] - row[n].size() + 2, ' ');
    out << row.back() << '\n';
  }
}

void printLoadsJson(aio_ostream& out) {
  inps_Json list = inps_Json::array();
  for (const inpS_LoadLabel& label : inpS_loadLabels()) {
    inps_Json values = inps_Json::array();
    for (const inpS_LoadLabel::Value& value : label.values)
      values.push_back(
          {{"name", value.name}, {"components", value.components}, {"required", value.isRequired}});
    list.push_back({{"keyword", label.keywordName},
                    {"labels", label.labels},
                    {"elements", elementsOf(label)},
                    {"values", std::move(values)},
                    {"units", label.units}});
  }
  inps_printJson(out, {{"command", "keywords"}, {"loads", std::move(list)}});
}

} // namespace

int inps_keywords(inps_Session& session, const inps_Arguments& arguments) {
  if (arguments.Has(inps_Opt::Loads)) {
    if (arguments.Has(inps_Opt::Json))
      printLoadsJson(session.out);
    else
      printLoads(session.out, arguments.Has(inps_Opt::Markdown));
    return inps_ExitDone;
  }
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
