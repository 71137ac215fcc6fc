#include "inpS/history/inpS_TimePointTables.h"
#include "database/KvoObjDocument.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimTransaction.h"
#include "database/KvoSrvFsmFTable.h"
#include "database/schema/eds_Form.h"
#include "database/schema/eds_FormKind.h"
#include <cmath>
#include <optional>

namespace {

constexpr double kMost = 100000; // of a keyword
// An end that lies so near to the last increment, as a part of it, is that increment's.
constexpr double kNearness = 1e-6;

const cow_List<int>& lineFields() {
  static const cow_List<int> fields = [] {
    cow_List<int> made;
    for (const eds_FormItem& item : eds_formOf(eds_FormKind::TimePointLine)->lines.front())
      made.push_back(item.alternatives.front().field);
    return made;
  }();
  return fields;
}

std::optional<double> valueAt(const KvoSimDataRecord& line, std::size_t n) {
  if (line.IsMemberNull(lineFields()[n])) return std::nullopt;
  return line.GetDouble(lineFields()[n]);
}

// Increments of a line that has no fault.
struct Generated {
  double start = 0, end = 0, increment = 0;
  double Count() const { return std::floor((end - start) / increment + kNearness); }
};

Generated generatedBy(const KvoSimDataRecord& line) {
  return {valueAt(line, 0).value_or(0), valueAt(line, 1).value_or(0), valueAt(line, 2).value_or(0)};
}

void appendGenerated(const KvoSimPosition& line, cow_List<double>& times) {
  if (auto before = static_cast<long long>(times.size()); !inpS_faultOfTimes(line, before).empty())
    return;
  const Generated made = generatedBy(line.DataRecord());
  const auto count = static_cast<long long>(made.Count());
  for (long long n = 0; n <= count; ++n) {
    const double time = made.start + static_cast<double>(n) * made.increment;
    times.push_back(n == count && std::abs(made.end - time) <= kNearness * made.increment ? made.end
                                                                                          : time);
  }
}

cow_List<double> timesOf(const KvoSimPosition& points) {
  static const int generate = eds_formField(eds_FormKind::TimePoints, "generate");
  const KvoSimDataRecord record = points.DataRecord();
  const bool isGenerated = !record.IsMemberNull(generate) && record.GetBool(generate);
  cow_List<double> times;
  for (const KvoSimPosition& line : points.GetVector(eds_Member::Lines)) {
    if (isGenerated) {
      appendGenerated(line, times);
      continue;
    }
    const KvoSimDataRecord values = line.DataRecord();
    for (std::size_t n = 0; n < lineFields().size(); ++n)
      if (const auto time = valueAt(values, n)) times.push_back(*time);
  }
  return times;
}

} // namespace

cow_String inpS_faultOfTimes(const KvoSimPosition& line, long long& count) {
  const KvoSimDataRecord values = line.DataRecord();
  if (!valueAt(values, 1) || !valueAt(values, 2))
    return "A line of generated time points tells their start, their end and an increment.";
  const Generated made = generatedBy(values);
  if (!(made.increment > 0)) return "The increment of time points must be greater than zero.";
  if (made.end < made.start) return "The end of the time points lies before their start.";
  if (!(static_cast<double>(count) + made.Count() < kMost))
    return "With this line there are more than 100,000 time points, which is the most there may "
           "be.";
  count += static_cast<long long>(made.Count()) + 1;
  return {};
}

void inpS_deriveTimePoints(const KvoObjDocument& document) {
  const auto all = document.Context().GetRecords(eds_FormKind::TimePoints);
  if (all.empty()) return;
  const int kind = static_cast<int>(eds_FormKind::TimePoints);
  KvoSimTransaction transaction(document.ContextID());
  for (const KvoSimPosition& points : all) {
    if (KvoSrvFsmFTable former = points.GetFTable(); !former.IsNull()) former.Remove();
    const cow_List<double> times = timesOf(points);
    if (times.empty()) continue;
    KvoSrvFsmFTable::CreateTable(points, kind, static_cast<int64_t>(times.size()), 0, {}, {"Time"},
                                 kind, times, 1, false, {"Time"});
  }
  transaction.Commit();
}
