#include "host/inps_HistoryList.h"

#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_FormKind.h"
#include "host/inps_NamedTable.h"
#include "host/inps_TextTable.h"
#include "host/inps_VisibleBuffer.h"
#include "inpS/writer/inpS_HistoryDescription.h"
#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>

namespace {

using Row = inps_TextTable<7>::Row;

constexpr int kAutomatic = 1; // symbols of StepIncrementation and StepStabilization
constexpr int kFixed = 2;
constexpr int kByFactor = 2;

bool isGiven(const KvoSimDataRecord& record, int field) {
  return !record.IsMemberNull(field);
}

cow_String number(const KvoSimDataRecord& record, int field) {
  return inps_plainNumber(record.GetDouble(field));
}

cow_String natureOf(const inpS_HistoryDescription& step, const KvoSimDataRecord& record) {
  constexpr int task = 1; // about a base state
  if (record.GetBool(eds_HistoryStep_Perturbation) ||
      record.GetSymb(eds_HistoryStep_Registration) == task)
    return "perturbation";
  if (!isGiven(record, eds_HistoryStep_Nonlinear))
    return step.isNonlinearSince ? "nonlinear (carried)" : "general";
  return record.GetBool(eds_HistoryStep_Nonlinear) ? "nonlinear" : "linear";
}

// "fixed 0.1", "automatic 0.1 (1e-06 to 0.5)"; what the solver chooses is left out.
cow_String incrementsOf(const KvoSimDataRecord& record) {
  const int kind = record.GetSymb(eds_HistoryStep_Incrementation);
  if (kind != kAutomatic && kind != kFixed) return {};
  cow_String text = kind == kFixed ? "fixed" : "automatic";
  if (record.GetDouble(eds_HistoryStep_Initial) != 0)
    text += " " + number(record, eds_HistoryStep_Initial);
  const bool hasLeast = record.GetDouble(eds_HistoryStep_Minimum) != 0;
  const bool hasMost = record.GetDouble(eds_HistoryStep_Maximum) != 0;
  if (hasLeast || hasMost)
    text += " (" + (hasLeast ? number(record, eds_HistoryStep_Minimum) : cow_String()) +
            (hasMost ? (hasLeast ? " to " : "to ") + number(record, eds_HistoryStep_Maximum)
                     : cow_String(" on")) +
            ")";
  return text + ", at most " + std::to_string(record.GetInt64(eds_HistoryStep_Increments));
}

cow_String frequenciesOf(const KvoSimDataRecord& record) {
  const bool hasLow = isGiven(record, eds_HistoryStep_LowestFrequency);
  const bool hasHigh = isGiven(record, eds_HistoryStep_HighestFrequency);
  if (!hasLow && !hasHigh) return {};
  if (!hasLow) return "up to " + number(record, eds_HistoryStep_HighestFrequency);
  const cow_String low = number(record, eds_HistoryStep_LowestFrequency);
  return hasHigh ? low + " to " + number(record, eds_HistoryStep_HighestFrequency) : "from " + low;
}

// Of an arc it is a length, and no time.
cow_String periodOf(const KvoSimDataRecord& record) {
  if (!isGiven(record, eds_HistoryStep_Period)) return {};
  const KvoSimPosition procedure = record.GetReference(eds_HistoryStep_Procedure);
  if (procedure.IsNull() || !procedure.IsA(eds_FormKind::StaticRiks))
    return number(record, eds_HistoryStep_Period);
  if (record.GetDouble(eds_HistoryStep_Period) == 0) return "arc";
  return "arc " + number(record, eds_HistoryStep_Period);
}

bool takesIncrements(const KvoSimDataRecord& record) {
  const int kind = record.GetSymb(eds_HistoryStep_Incrementation);
  return kind == kAutomatic || kind == kFixed;
}

cow_List<cow_String> optionsOf(const inpS_HistoryDescription& step,
                               const KvoSimDataRecord& record) {
  cow_List<cow_String> options;
  const auto add = [&](cow_String option) {
    if (!option.empty()) options.push_back(std::move(option));
  };
  if (isGiven(record, eds_HistoryStep_Eigenvalues))
    add(std::to_string(record.GetInt64(eds_HistoryStep_Eigenvalues)) + " modes");
  add(frequenciesOf(record));
  if (const int method = record.GetSymb(eds_HistoryStep_Stabilization); method != 0)
    add("stabilized " + number(record, method == kByFactor ? eds_HistoryStep_DampingFactor
                                                           : eds_HistoryStep_EnergyFraction));
  if (record.GetBool(eds_HistoryStep_SteadyState)) add("steady state");
  if (record.GetBool(eds_HistoryStep_NoStop)) add("no stop");
  if (record.GetBool(eds_HistoryStep_Dsa)) add("sensitivities");
  if (record.GetBool(eds_HistoryStep_Iterative)) add("iterative solver");
  const long long others = step.keywords - (step.procedure.empty() ? 0 : 1);
  if (others > 0) add(inps_counted(others, "keyword"));
  return options;
}

cow_String joined(const cow_List<cow_String>& words) {
  cow_String text;
  for (const cow_String& word : words) text += (text.empty() ? "" : ", ") + word;
  return text;
}

Row rowOf(const inpS_HistoryDescription& step) {
  if (step.IsText())
    return {std::to_string(step.number), inps_oneLine(step.name), "kept as text", "", "", "", ""};
  const KvoSimDataRecord record = step.record.DataRecord();
  return {std::to_string(step.number),
          inps_oneLine(step.name),
          step.procedure.empty() ? "no procedure" : step.procedure,
          natureOf(step, record),
          periodOf(record),
          incrementsOf(record),
          joined(optionsOf(step, record))};
}

} // namespace

void inps_printHistory(aio_ostream& out, const cow_List<inpS_HistoryDescription>& history,
                       std::size_t mostListed) {
  if (history.empty()) return;
  inps_TextTable<7> table(
      {"step", "name", "procedure", "nature", "period", "increments", "options"}, 1);
  for (std::size_t n = 0; n < std::min(history.size(), mostListed); ++n)
    table.Add(rowOf(history[n]));
  out << "steps:\n";
  table.Print(out);
  if (history.size() > mostListed)
    out << "  … and " << history.size() - mostListed << " more; --json has them all\n";
}

inps_Json inps_jsonOfHistory(const cow_List<inpS_HistoryDescription>& history) {
  inps_Json steps = inps_Json::array();
  for (const inpS_HistoryDescription& step : history) steps.push_back(inps_jsonOfStep(step));
  return steps;
}

inps_Json inps_jsonOfStep(const inpS_HistoryDescription& step) {
  constexpr const char* registrations[] = {"step", "task", "event"};
  constexpr const char* increments[] = {"none", "automatic", "fixed"};
  if (step.IsText()) return {{"number", step.number}, {"name", step.name}, {"keptAsText", true}};
  const KvoSimDataRecord record = step.record.DataRecord();
  const auto real = [&](int field) -> inps_Json {
    if (!isGiven(record, field)) return nullptr;
    return record.GetDouble(field);
  };
  const auto word = [&](int field, std::span<const char* const> words) -> inps_Json {
    const auto at = static_cast<std::size_t>(record.GetSymb(field));
    if (!isGiven(record, field) || at >= words.size()) return nullptr;
    return words[at];
  };
  inps_Json one{{"number", step.number},
                {"name", step.name},
                {"keptAsText", false},
                {"description", record.ReturnString(eds_HistoryStep_Description)}};
  one["procedure"] = step.procedure.empty() ? inps_Json(nullptr) : inps_Json(step.procedure);
  one["registration"] = word(eds_HistoryStep_Registration, registrations);
  one["nonlinear"] = isGiven(record, eds_HistoryStep_Nonlinear)
                         ? inps_Json(record.GetBool(eds_HistoryStep_Nonlinear))
                         : inps_Json(nullptr);
  one["nonlinearSinceBefore"] = step.isNonlinearSince;
  const cow_String nature = natureOf(step, record);
  one["nature"] = nature;
  one["perturbation"] = nature == "perturbation";
  one["period"] = real(eds_HistoryStep_Period);
  one["begins"] = step.begins ? inps_Json(*step.begins) : inps_Json(nullptr);
  one["ends"] = step.ends ? inps_Json(*step.ends) : inps_Json(nullptr);
  one["increments"] = takesIncrements(record)
                          ? inps_Json(record.GetInt64(eds_HistoryStep_Increments))
                          : inps_Json(nullptr);
  one["incrementation"] = word(eds_HistoryStep_Incrementation, increments);
  one["initial"] = real(eds_HistoryStep_Initial);
  one["minimum"] = real(eds_HistoryStep_Minimum);
  one["maximum"] = real(eds_HistoryStep_Maximum);
  one["stabilized"] = record.GetSymb(eds_HistoryStep_Stabilization) != 0;
  one["eigenvalues"] = isGiven(record, eds_HistoryStep_Eigenvalues)
                           ? inps_Json(record.GetInt64(eds_HistoryStep_Eigenvalues))
                           : inps_Json(nullptr);
  one["lowest"] = real(eds_HistoryStep_LowestFrequency);
  one["highest"] = real(eds_HistoryStep_HighestFrequency);
  one["keywords"] = step.keywords;
  one["options"] = optionsOf(step, record);
  return one;
}
