#include "inpS/history/inpS_KeptValues.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/history/inpS_ActingConditions.h"
#include "inpS/history/inpS_GivenConditions.h"
#include <algorithm>
#include <bit>
#include <limits>

namespace {

constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();
constexpr int kMostSteps = 100; // that are followed back; each is looked at as a whole
constexpr int kTurning = 6;     // what TYPE speaks of

int64_t keyOf(int32_t node, int degree) {
  return int64_t{node} << 8 | degree;
}

} // namespace

inpS_KeptValues::inpS_KeptValues(const KvoObjDocument& document) : m_document(document) {
  for (const KvoSimPosition& step : document.Context().GetRecords(eds_RecordKind::HistoryStep))
    if (!inpS_isPerturbation(step.DataRecord()))
      m_steps.push_back(step.DataRecord().GetInt(eds_HistoryStep_Number));
  std::ranges::sort(m_steps);
}

double inpS_KeptValues::At(int step, int32_t node, int degree, int depth) {
  if (depth > kMostSteps) return kUnknown;
  const State& state = Before(step);
  const auto known = state.values.find(keyOf(node, degree));
  if (known == state.values.end()) return state.isFirst ? 0.0 : kUnknown;
  const Value value = known->second;
  return value.keptInStep > 0 ? At(value.keptInStep, node, degree, depth + 1) : value.given;
}

const inpS_KeptValues::State& inpS_KeptValues::Before(int step) {
  const auto [known, isNew] = m_states.try_emplace(step);
  State& state = known->second;
  const auto last = std::ranges::lower_bound(m_steps, step);
  if (!isNew || last == m_steps.begin()) return state;
  state.isFirst = false;
  inpS_ActingConditions(m_document, *(last - 1))
      .ForAll([&](const inpS_ActingConditions::Acting& acting) {
        const inpS_ExcitationKind& kind = acting.kind;
        const bool acts = acting.target >= 0 || acting.members;
        if (kind.form != eds_FormKind::Boundary || !acts || !acting.loadCase.IsNull()) return;
        const KvoSimDataRecord record = acting.record.DataRecord();
        if (record.GetBool(kind.imaginary)) return;
        const bool isFixed = record.GetBool(kind.fixed);
        const std::string_view type = record.GetString(kind.type);
        const bool isOdd = !type.empty() && type != "DISPLACEMENT";
        const bool isKnown = acting.restraint >= 0 || (!kind.IsGivenElsewhere(record, {}) &&
                                                       kind.AmplitudeOf(record).IsNull());
        const auto take = [&](int32_t node) {
          for (uint64_t left = acting.degrees; left != 0; left &= left - 1) {
            const int degree = std::countr_zero(left) + 1;
            const bool isValue = isKnown && !(isOdd && degree <= kTurning);
            state.values[keyOf(node, degree)] = {isValue ? acting.magnitude : kUnknown,
                                                 isFixed ? std::max(1, acting.fromStep) : 0};
          }
        };
        if (acting.target >= 0) return take(acting.target);
        for (int64_t n = 0; n < acting.members->Size(); ++n) take((*acting.members)[n]);
      });
  return state;
}
