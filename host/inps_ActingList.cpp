#include "host/inps_ActingList.h"

#include "database/KvoSimDataRecord.h"
#include "host/inps_HistoryList.h"
#include "host/inps_NamedTable.h"
#include "host/inps_TextTable.h"
#include "host/inps_VisibleBuffer.h"
#include "inpS/writer/inpS_HistoryDescription.h"
#include "inpS/writer/inpS_InForceDescription.h"
#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>

namespace {

using Acting = inpS_ActingDescription;
constexpr std::size_t kColumns = 9;
constexpr long long kMostOfKeyword = 10;

// "ENDS", "PLATE-1.ENDS (3 nodes left)", "PLATE-1.17", "9990 rows"
cow_String regionText(const Acting& acting) {
  const cow_String within = acting.instance.empty() ? "" : acting.instance + ".";
  const cow_String members =
      acting.members ? inps_counted(*acting.members, acting.memberKind) : cow_String();
  if (acting.regionKind) {
    const cow_String left = members.empty() ? "" : " (" + members + " left)";
    return within + acting.region + left;
  }
  if (acting.target) return within + std::to_string(*acting.target);
  if (!members.empty()) return members;
  if (acting.isWhole) return acting.base.empty() ? cow_String() : "base " + acting.base;
  return acting.rows > 1 ? inps_counted(acting.rows, "row")
                         : "row " + std::to_string(acting.firstRow + 1);
}

cow_String fieldText(const Acting& acting) {
  if (!acting.restraint.empty()) return acting.restraint;
  if (acting.field.empty() || acting.field == acting.label) return acting.label;
  return acting.label.empty() ? acting.field : acting.field + " " + acting.label;
}

// "RAMP", "ended RAMP", "RAMP; film HEAT"
cow_String amplitudeText(const Acting& acting) {
  cow_String text = (acting.hasAmplitudeEnded ? "ended " : "") + acting.amplitude;
  if (!acting.filmAmplitude.empty())
    text += cow_String(text.empty() ? "" : "; ") +
            (acting.hasFilmAmplitudeEnded ? "ended film " : "film ") + acting.filmAmplitude;
  return text;
}

// Where it is no number of the deck: "fixed", "routine", "global step 2, increment 5",
// "times 9.81".
cow_String originText(const Acting& acting) {
  cow_String text = acting.isFixed    ? "fixed"
                    : acting.isByUser ? "routine"
                                      : inps_oneLine(acting.property);
  if (acting.isOfSubmodel) text = "global";
  if (acting.globalStep) text += " step " + std::to_string(*acting.globalStep);
  if (acting.globalIncrement) text += ", increment " + std::to_string(*acting.globalIncrement);
  if (!acting.scale) return text;
  return text + (text.empty() ? "times " : ", times ") + inps_plainNumber(*acting.scale);
}

// "HOT", "2", "cyclic mode 1"; "HOT, 2" of a keyword with LOAD CASE=2 within *LOAD CASE, NAME=HOT
cow_String loadCaseText(const Acting& acting) {
  const cow_String number =
      acting.loadCaseNumber ? std::to_string(*acting.loadCaseNumber) : cow_String();
  cow_String text =
      acting.loadCase + (acting.loadCase.empty() || number.empty() ? "" : ", ") + number;
  if (!acting.cyclicMode) return text;
  return text + (text.empty() ? "" : ", ") + "cyclic mode " + std::to_string(*acting.cyclicMode);
}

cow_String magnitudeText(const Acting& acting) {
  const bool isOfRows = !acting.regionKind && !acting.target && !acting.members && !acting.isWhole;
  cow_String text = acting.magnitude ? inps_plainNumber(*acting.magnitude) : originText(acting);
  if (text.empty() && acting.restraint.empty() && isOfRows) text = "by row";
  return acting.isImaginary ? text + " imaginary" : text;
}

inps_TextTable<kColumns>::Row rowOf(const Acting& acting) {
  cow_String components = acting.components;
  if (acting.isAlongLocalAxes) components += (components.empty() ? "" : ", ") + cow_String("local");
  cow_String region = regionText(acting);
  if (!acting.base.empty() && !acting.isWhole) region += ", base " + acting.base;
  return {acting.keyword,
          inps_oneLine(region),
          inps_oneLine(fieldText(acting)),
          components,
          magnitudeText(acting),
          inps_oneLine(amplitudeText(acting)),
          std::to_string(acting.fromStep),
          acting.how,
          inps_oneLine(loadCaseText(acting))};
}

void printStep(aio_ostream& out, inpS_InForceDescription& inForce, const KvoSimPosition& step) {
  const KvoSimDataRecord record = step.DataRecord();
  inps_TextTable<kColumns> table({"keyword", "region", "field", "components", "magnitude",
                                  "amplitude", "from", "how", "load case"},
                                 1u << 4 | 1u << 6);
  cow_List<std::pair<cow_String, long long>> counts; // by keyword, in order
  inForce.ForAllIn(
      step,
      [&](const cow_String& keyword) {
        auto known = std::ranges::find(counts, keyword, &std::pair<cow_String, long long>::first);
        if (known == counts.end()) known = counts.insert(counts.end(), {keyword, 0});
        return ++known->second <= kMostOfKeyword;
      },
      [&](const Acting& acting) { table.Add(rowOf(acting)); });
  out << "in step " << record.GetInt64(eds_HistoryStep_Number) << ", "
      << inps_oneLine(record.GetString(eds_HistoryStep_Name)) << ":";
  if (counts.empty()) {
    out << " nothing acts\n";
    return;
  }
  out << '\n';
  table.Print(out);
  for (const auto& [keyword, count] : counts)
    if (count > kMostOfKeyword)
      out << "  … and " << count - kMostOfKeyword << " more of *" << keyword
          << "; --json has them all\n";
}

inps_Json jsonOf(const Acting& acting) {
  const auto text = [](const cow_String& value) {
    return value.empty() ? inps_Json(nullptr) : inps_Json(value);
  };
  const auto number = [](const std::optional<long long>& value) {
    return value ? inps_Json(*value) : inps_Json(nullptr);
  };
  inps_Json one{{"keyword", acting.keyword}, {"excitation", acting.excitation}};
  one["region"] = acting.regionKind ? inps_Json(acting.region) : inps_Json(nullptr);
  one["regionKind"] = acting.regionKind ? inps_Json(acting.regionKind) : inps_Json(nullptr);
  one["instance"] = text(acting.instance);
  one["target"] = acting.target ? inps_Json(*acting.target) : inps_Json(nullptr);
  one["memberKind"] = acting.memberKind;
  one["members"] = acting.members ? inps_Json(*acting.members) : inps_Json(nullptr);
  one["wholeModel"] = acting.isWhole;
  one["firstRow"] = acting.firstRow;
  one["rows"] = acting.rows;
  one["field"] = text(acting.field);
  one["load"] = text(acting.label);
  one["components"] = text(acting.components);
  one["restraint"] = text(acting.restraint);
  one["magnitude"] = acting.magnitude ? inps_Json(*acting.magnitude) : inps_Json(nullptr);
  one["amplitude"] = text(acting.amplitude);
  one["amplitudeEnded"] = acting.hasAmplitudeEnded;
  one["filmAmplitude"] = text(acting.filmAmplitude);
  one["filmAmplitudeEnded"] = acting.hasFilmAmplitudeEnded;
  one["base"] = text(acting.base);
  one["fixed"] = acting.isFixed;
  one["user"] = acting.isByUser;
  one["submodel"] = inps_Json(nullptr);
  if (acting.isOfSubmodel)
    one["submodel"] = {{"step", number(acting.globalStep)},
                       {"increment", number(acting.globalIncrement)},
                       {"timeScale", acting.isTimeScaled}};
  one["scale"] = acting.scale ? inps_Json(*acting.scale) : inps_Json(nullptr);
  one["property"] = text(acting.property);
  one["localAxes"] = acting.isAlongLocalAxes;
  one["fromStep"] = acting.fromStep;
  one["how"] = acting.how;
  one["loadCase"] = text(acting.loadCase);
  one["loadCaseNumber"] =
      acting.loadCaseNumber ? inps_Json(*acting.loadCaseNumber) : inps_Json(nullptr);
  one["imaginary"] = acting.isImaginary;
  one["cyclicMode"] = acting.cyclicMode ? inps_Json(*acting.cyclicMode) : inps_Json(nullptr);
  return one;
}

// As it stands within an object: each line but the first further to the right.
cow_String within(const inps_Json& json, std::size_t depth) {
  std::ostringstream text;
  inps_printJson(text, json);
  cow_String indented;
  for (const char c : std::move(text).str()) {
    indented += c;
    if (c == '\n') indented.append(depth, ' ');
  }
  return indented.substr(0, indented.find_last_not_of(" \n") + 1);
}

void printMembers(aio_ostream& out, const inps_Json& members, const char* between) {
  for (const auto& [name, value] : members.items()) {
    out << between << "  " << inps_Json(name).dump() << ": " << within(value, 2);
    between = ",\n";
  }
}

} // namespace

void inps_printActing(aio_ostream& out, const KvoObjDocument& document,
                      const cow_List<inpS_HistoryDescription>& steps, std::size_t mostListed) {
  inps_printHistory(out, steps, mostListed);
  inpS_InForceDescription inForce(document);
  for (std::size_t n = 0; n < std::min(steps.size(), mostListed); ++n) {
    if (steps[n].IsText()) continue; // what it says is not known
    out << '\n';
    printStep(out, inForce, steps[n].record);
  }
}

void inps_printActingJson(aio_ostream& out, const KvoObjDocument& document,
                          const cow_List<inpS_HistoryDescription>& steps, const inps_Json& head,
                          const inps_Json& tail) {
  inpS_InForceDescription inForce(document);
  out << "{\n";
  printMembers(out, head, "");
  out << ",\n  \"history\": [";
  for (std::size_t n = 0; n < steps.size(); ++n) {
    inps_Json step = inps_jsonOfStep(steps[n]);
    inps_Json acting = inps_Json::array();
    if (!steps[n].IsText())
      inForce.ForAllIn(
          steps[n].record, [](const cow_String&) { return true; },
          [&](const Acting& one) { acting.push_back(jsonOf(one)); });
    step["acting"] = steps[n].IsText() ? inps_Json() : std::move(acting);
    out << (n > 0 ? ",\n    " : "\n    ") << within(step, 4);
  }
  out << (steps.empty() ? "]" : "\n  ]");
  printMembers(out, tail, ",\n");
  out << "\n}\n";
}
