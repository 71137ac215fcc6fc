#include "database/schema/eds_FormKind.h"
#include "host/inps_Chart.h"

#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_Form.h"
#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

using Points = cow_List<double>; // times and magnitudes in turn
constexpr int stepsPerInterval = 24;
constexpr int fewestSteps = 400;
constexpr double mostSteps = 20000;
constexpr double tau = 2 * std::numbers::pi;

double real(const KvoSimDataRecord& record, std::string_view column) {
  return record.GetDouble(eds_formField(record.Object().RecordKind(), column));
}

// A course from the start of things (or its own start, if earlier) for so long behind its start;
// `initial` up to there.
template <class Course>
Points sampled(double start, double duration, double steps, double initial, Course course) {
  Points points;
  if (start > 0) points = {0, initial};
  const int count = static_cast<int>(std::min(std::max(steps, 1.0 * fewestSteps), mostSteps));
  for (int n = 0; n <= count; ++n) {
    const double since = duration * n / count;
    points.insert(points.end(), {start + since, course(since)});
  }
  return points;
}

// From point to point by a polynomial of the fifth degree whose first and second derivatives vanish
// at both ends: a + (b - a) s^3 (10 - 15 s + 6 s^2), s from 0 to 1. (K. Perlin, Improving Noise,
// ACM Transactions on Graphics 21, 2002, has it as a fade curve.)
Points smoothSteps(const Points& pairs) {
  Points points;
  for (std::size_t n = 0; n + 3 < pairs.size(); n += 2) {
    for (int step = 0; step < stepsPerInterval; ++step) {
      const double s = static_cast<double>(step) / stepsPerInterval;
      const double rise = s * s * s * (10 + s * (-15 + 6 * s));
      points.insert(points.end(), {std::lerp(pairs[n], pairs[n + 2], s),
                                   std::lerp(pairs[n + 1], pairs[n + 3], rise)});
    }
  }
  if (pairs.size() >= 2) points.insert(points.end(), pairs.end() - 2, pairs.end());
  return points;
}

// Fourier series: A0 + sum (A_n cos n w (t - t0) + B_n sin n w (t - t0)), A0 before t0; two periods
// are shown.
Points periodic(const KvoSimDataRecord& record, const Points& coefficients) {
  const double omega = real(record, "omega");
  const double initial = real(record, "initial");
  const double period = omega != 0 ? tau / std::fabs(omega) : 1;
  const auto terms = static_cast<double>(coefficients.size()) / 2;
  return sampled(real(record, "start"), 2 * period, 80 * terms, initial, [&](double since) {
    double value = initial;
    for (std::size_t n = 0; n + 1 < coefficients.size(); n += 2) {
      const double angle = static_cast<double>(n / 2 + 1) * omega * since;
      value += coefficients[n] * std::cos(angle) + coefficients[n + 1] * std::sin(angle);
    }
    return value;
  });
}

// Exponential decay: A0 + A exp(-(t - t0) / td), A0 before t0; shown until 1/150 is left.
Points decay(const KvoSimDataRecord& record) {
  const double initial = real(record, "initial");
  const double amplitude = real(record, "amplitude");
  const double time = real(record, "decay_time");
  return sampled(real(record, "start"), 5 * std::fabs(time), fewestSteps, initial,
                 [&](double since) { return initial + amplitude * std::exp(-since / time); });
}

// Product of two sines: A0 + A sin w1 (t - t0) sin w2 (t - t0), A0 before t0; shown for the slower
// one's period.
Points modulated(const KvoSimDataRecord& record) {
  const double initial = real(record, "initial");
  const double amplitude = real(record, "amplitude");
  const double first = real(record, "omega1");
  const double second = real(record, "omega2");
  const double fast = std::max(std::fabs(first), std::fabs(second));
  const double slower = std::min(std::fabs(first), std::fabs(second));
  const double slow = slower > 0 ? slower : fast;
  return sampled(real(record, "start"), slow > 0 ? tau / slow : 1, slow > 0 ? 40 * fast / slow : 0,
                 initial, [&](double since) {
                   return initial + amplitude * std::sin(first * since) * std::sin(second * since);
                 });
}

// SCALEX and SHIFTX act on times, SCALEY and SHIFTY on magnitudes: first the factor, then the
// shift.
void scale(Points& points, const KvoSimDataRecord& record) {
  const double scaleX = real(record, "scalex");
  const double shiftX = real(record, "shiftx");
  const double scaleY = real(record, "scaley");
  const double shiftY = real(record, "shifty");
  for (std::size_t n = 0; n + 1 < points.size(); n += 2) {
    points[n] = scaleX * points[n] + shiftX;
    points[n + 1] = scaleY * points[n + 1] + shiftY;
  }
}

struct Kind {
  eds_RecordKind record;
  Points (*course)(const KvoSimDataRecord& record, const Points& pairs);
};

const Kind kinds[] = {
    {eds_FormKind::AmplitudeTabular,
     [](const KvoSimDataRecord&, const Points& pairs) { return pairs; }},
    {eds_FormKind::AmplitudeSmoothStep,
     [](const KvoSimDataRecord&, const Points& pairs) { return smoothSteps(pairs); }},
    {eds_FormKind::AmplitudePeriodic, periodic},
    {eds_FormKind::AmplitudeDecay,
     [](const KvoSimDataRecord& record, const Points&) { return decay(record); }},
    {eds_FormKind::AmplitudeModulated,
     [](const KvoSimDataRecord& record, const Points&) { return modulated(record); }},
};

} // namespace

inps_Chart inps_plotAmplitude(const KvoSimPosition& amplitude) {
  const inpS_AmplitudeDescription description = inpS_describeAmplitude(amplitude);
  const KvoSimDataRecord record = amplitude.DataRecord();
  inps_Chart chart;
  chart.keyword = description.keyword;
  chart.x = "Time";
  chart.y = "Amplitude";
  for (const Kind& kind : kinds) {
    if (!amplitude.IsA(kind.record)) continue;
    chart.title = record.ReturnString(eds_formField(kind.record, "name"));
    Points points = kind.course(record, description.pairs);
    scale(points, record);
    const std::size_t given = points.size();
    inps_thin(points);
    if (points.size() < given && !description.pairs.empty())
      chart.note = std::to_string(given / 2) + " points, thinned for drawing";
    chart.series.push_back({{}, std::move(points)});
  }
  return chart;
}
