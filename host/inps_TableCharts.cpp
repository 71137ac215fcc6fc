#include "database/schema/eds_FormKind.h"
#include "host/inps_Chart.h"

#include "host/inps_Reporter.h"
#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t mostLines = 12;  // in one chart
constexpr int64_t mostNumberRows = 12; // of a behaviour shown as numbers
constexpr double pronyMargin = 100;    // shown below the shortest and above the longest time
constexpr int pronyPoints = 200;

// What a row is given for, besides the chart's own axis.
struct Axis {
  int column;
  cow_String name;
  bool varies;
};

cow_List<Axis> axesOf(const inps_NamedTable& table) {
  cow_List<Axis> axes;
  const auto add = [&](int column, cow_String name) {
    const inps_NamedTable::Range range = table.RangeOf(column);
    axes.push_back({column, std::move(name), range.low != range.high});
  };
  for (std::size_t n = 0; n < table.columns.size(); ++n)
    if (table.columns[n].isIndependent)
      add(static_cast<int>(n), inps_readableName(table.columns[n].name));
  if (table.hasTemperature) add(table.TemperatureColumn(), "Temperature");
  for (int n = 0; n < table.fieldVariables; ++n)
    add(table.FirstFieldColumn() + n, "Field " + std::to_string(n + 1));
  return axes;
}

// Rows that differ in nothing but the chart's axis, in the order of the table.
struct Line {
  cow_List<double> states; // of the other axes
  cow_List<int64_t> rows;
};

cow_List<Line> linesOver(const inps_NamedTable& table, const cow_List<Axis>& axes, std::size_t x) {
  cow_List<Line> lines;
  cow_Map<cow_List<double>, std::size_t> index;
  cow_List<double> states;
  std::size_t line = 0;
  for (int64_t row = 0; row < table.rows; ++row) {
    states.clear();
    for (std::size_t n = 0; n < axes.size(); ++n)
      if (n != x) states.push_back(table.At(row, axes[n].column));
    if (lines.empty() || lines[line].states != states) { // mostly they follow each other
      line = index.try_emplace(states, lines.size()).first->second;
      if (line == lines.size()) lines.push_back({states, {}});
    }
    lines[line].rows.push_back(row);
  }
  return lines;
}

bool isCourse(const inps_NamedTable& table, const cow_List<Line>& lines, int column) {
  return std::ranges::any_of(lines, [&](const Line& line) {
    return std::ranges::any_of(line.rows, [&](int64_t row) {
      return table.At(row, column) != table.At(line.rows.front(), column);
    });
  });
}

std::string_view stemOf(std::string_view name) {
  const std::size_t last = name.find_last_not_of("0123456789");
  return last == name.npos ? name : name.substr(0, last + 1);
}

cow_String lowerFirst(cow_String text) {
  const bool word = text.size() > 1 && text[1] >= 'a' && text[1] <= 'z';
  if (word && text[0] >= 'A' && text[0] <= 'Z') text[0] = static_cast<char>(text[0] - 'A' + 'a');
  return text;
}

void addNote(cow_String& note, const cow_String& text) {
  note += (note.empty() ? "" : "; ") + text;
}

class TableCharts {
public:
  TableCharts(const inps_NamedTable& table, const cow_String& keyword, cow_List<inps_Chart>& charts)
      : m_table(table), m_keyword(keyword), m_charts(charts), m_axes(axesOf(table)) {}

  bool Draw() {
    for (m_x = 0; m_x < m_axes.size(); ++m_x) {
      if (!m_axes[m_x].varies) continue;
      m_lines = linesOver(m_table, m_axes, m_x);
      if (isCourse(m_table, m_lines, m_axes[m_x].column)) break;
    }
    if (m_x == m_axes.size()) return false;
    NoteConstants();
    KeepFewLines();
    FindColumns();
    // Columns that differ in their number alone share a chart: E1, E2, E3.
    for (std::size_t n = 0; n < m_columns.size();) {
      std::size_t end = n + 1;
      while (end < m_columns.size() &&
             stemOf(NameOf(m_columns[end])) == stemOf(NameOf(m_columns[n])))
        ++end;
      DrawChart(n, end);
      n = end;
    }
    return true;
  }

private:
  const cow_String& NameOf(int column) const {
    return m_table.columns[static_cast<std::size_t>(column)].name;
  }

  // A column without any value but 0 is one that the deck leaves out.
  void FindColumns() {
    cow_List<int> zeros;
    for (int n = 0; n < m_table.TemperatureColumn(); ++n) {
      if (m_table.columns[static_cast<std::size_t>(n)].isIndependent) continue;
      const inps_NamedTable::Range range = m_table.RangeOf(n);
      (range.low == 0 && range.high == 0 ? zeros : m_columns).push_back(n);
    }
    if (m_columns.empty()) return std::swap(m_columns, zeros);
    for (const int column : zeros) addNote(m_note, inps_readableName(NameOf(column)) + " is 0");
  }

  void NoteConstants() {
    for (std::size_t n = 0; n < m_axes.size(); ++n)
      if (n != m_x && !m_axes[n].varies)
        addNote(m_note, lowerFirst(m_axes[n].name) + " " +
                            inps_plainNumber(m_table.At(0, m_axes[n].column)));
  }

  void KeepFewLines() {
    if (m_lines.size() <= mostLines) return;
    addNote(m_note, std::to_string(mostLines) + " of " + std::to_string(m_lines.size()) +
                        " curves, evenly chosen");
    cow_List<Line> kept;
    for (std::size_t n = 0; n < mostLines; ++n)
      kept.push_back(std::move(m_lines[n * (m_lines.size() - 1) / (mostLines - 1)]));
    m_lines = std::move(kept);
  }

  cow_String LabelOf(const Line& line) const {
    cow_String label;
    std::size_t state = 0;
    for (std::size_t n = 0; n < m_axes.size(); ++n) {
      if (n == m_x) continue;
      const double value = line.states[state++];
      if (!m_axes[n].varies) continue;
      label +=
          (label.empty() ? "" : ", ") + lowerFirst(m_axes[n].name) + " " + inps_plainNumber(value);
    }
    return label;
  }

  void DrawChart(std::size_t first, std::size_t end) {
    inps_Chart chart;
    const bool shared = end - first > 1;
    const cow_String& name = NameOf(m_columns[first]);
    chart.y = inps_readableName(shared ? stemOf(name) : std::string_view(name));
    chart.x = m_axes[m_x].name;
    chart.title = chart.y + " over " + lowerFirst(chart.x);
    chart.keyword = m_keyword;
    chart.isRamp = !shared && m_lines.size() > 1;
    chart.note = m_note;
    std::size_t given = 0;
    std::size_t drawn = 0;
    for (std::size_t n = first; n < end; ++n)
      for (const Line& line : m_lines) {
        inps_Series series;
        series.label = LabelOf(line);
        if (shared)
          series.label = inps_readableName(NameOf(m_columns[n])) +
                         (series.label.empty() ? "" : ", " + series.label);
        for (const int64_t row : line.rows) {
          series.points.push_back(m_table.At(row, m_axes[m_x].column));
          series.points.push_back(m_table.At(row, m_columns[n]));
        }
        given += line.rows.size();
        inps_thin(series.points);
        drawn += series.points.size() / 2;
        chart.series.push_back(std::move(series));
      }
    if (drawn < given) addNote(chart.note, std::to_string(given) + " points, thinned for drawing");
    m_charts.push_back(std::move(chart));
  }

  const inps_NamedTable& m_table;
  const cow_String& m_keyword;
  cow_List<inps_Chart>& m_charts;
  cow_List<Axis> m_axes;
  std::size_t m_x = 0; // of the axes
  cow_List<Line> m_lines;
  cow_List<int> m_columns; // drawn
  cow_String m_note;
};

// Generalized Maxwell model (N. W. Tschoegl, The Phenomenological Theory of Linear Viscoelastic
// Behavior, 1989): relative to the instantaneous modulus,
//   relaxation  g(t) = 1 - sum g_i (1 - exp(-t / tau_i))
//   storage     g'(w) = 1 - sum g_i / (1 + (w tau_i)^2)
//   loss        g"(w) = sum g_i w tau_i / (1 + (w tau_i)^2)
struct PronyTerm {
  double part;
  double time;
};
using PronyCourse = double (*)(double at, const PronyTerm& term);

double relaxed(double t, const PronyTerm& term) {
  return -term.part * -std::expm1(-t / term.time);
}
double stored(double w, const PronyTerm& term) {
  return -term.part / (1 + w * term.time * w * term.time);
}
double lost(double w, const PronyTerm& term) {
  return term.part * w * term.time / (1 + w * term.time * w * term.time);
}

inps_Series pronySeries(cow_String label, const cow_List<PronyTerm>& terms, double from, double to,
                        double start, PronyCourse course) {
  inps_Series series{std::move(label), {}};
  for (int n = 0; n <= pronyPoints; ++n) {
    const double at = from * std::pow(to / from, static_cast<double>(n) / pronyPoints);
    double value = start;
    for (const PronyTerm& term : terms) value += course(at, term);
    series.points.insert(series.points.end(), {at, value});
  }
  return series;
}

bool drawProny(const inps_NamedTable& table, const cow_String& keyword, bool overFrequency,
               cow_List<inps_Chart>& charts) {
  if (table.rows == 0 || table.columns.size() < 2) return false;
  const int timeColumn = table.TemperatureColumn() - 1;
  const inps_NamedTable::Range times = table.RangeOf(timeColumn);
  if (!(times.low > 0)) return false;
  const double from = (overFrequency ? 1 / times.high : times.low) / pronyMargin;
  const double to = (overFrequency ? 1 / times.low : times.high) * pronyMargin;
  for (int column = 0; column < timeColumn; ++column) {
    cow_List<PronyTerm> terms;
    for (int64_t row = 0; row < table.rows; ++row)
      terms.push_back({table.At(row, column), table.At(row, timeColumn)});
    if (std::ranges::all_of(terms, [](const PronyTerm& term) { return term.part == 0; })) continue;
    const cow_String which = column == 0 ? "Shear" : "Bulk";
    inps_Chart chart;
    chart.keyword = keyword;
    chart.note = inps_counted(table.rows, "term") + ", relative to the instantaneous modulus";
    if (overFrequency) {
      chart.title = which + " modulus over frequency";
      chart.x = "Angular frequency";
      chart.y = "Relative modulus";
      chart.series = {pronySeries("storage", terms, from, to, 1, stored),
                      pronySeries("loss", terms, from, to, 0, lost)};
    } else {
      chart.title = which + " relaxation over time";
      chart.x = "Time";
      chart.y = "Relative modulus";
      chart.series = {pronySeries("", terms, from, to, 1, relaxed)};
    }
    charts.push_back(std::move(chart));
  }
  return true;
}

inps_Numbers numbersOf(const inpS_PropertyDescription& behavior, const inps_NamedTable& table) {
  inps_Numbers numbers{behavior.variant + behavior.parameters, behavior.depth, {}, {}, 0};
  for (const inpS_PropertyDescription::Column& column : table.columns)
    numbers.names.push_back(inps_readableName(column.name));
  if (table.hasTemperature) numbers.names.emplace_back("Temperature");
  for (int n = 0; n < table.fieldVariables; ++n)
    numbers.names.push_back("Field " + std::to_string(n + 1));
  for (int64_t row = 0; row < std::min(table.rows, mostNumberRows); ++row) {
    const auto at = table.values.begin() + static_cast<std::ptrdiff_t>(row) * table.width;
    numbers.rows.emplace_back(at, at + table.width);
  }
  numbers.moreRows = table.rows - static_cast<int64_t>(numbers.rows.size());
  return numbers;
}

} // namespace

void inps_plotBehavior(const inpS_PropertyDescription& behavior, const inps_NamedTable& table,
                       inps_PlotSection& section) {
  const cow_String keyword = behavior.variant + behavior.parameters;
  bool drawn = false;
  if (!behavior.property.IsNull() && table.rows > 0) {
    const bool overTime = behavior.property.IsA(eds_FormKind::ViscoelasticTimeProny);
    const bool overFrequency = behavior.property.IsA(eds_FormKind::ViscoelasticFrequencyProny);
    drawn = overTime || overFrequency ? drawProny(table, keyword, overFrequency, section.charts)
                                      : TableCharts(table, keyword, section.charts).Draw();
  }
  if (!drawn) section.numbers.push_back(numbersOf(behavior, table));
}

void inps_thin(cow_List<double>& points) {
  const std::size_t count = points.size() / 2;
  if (count <= inps_mostPoints) return;
  const std::size_t stretches = (inps_mostPoints - 2) / 2;
  cow_List<double> kept(points.begin(), points.begin() + 2);
  for (std::size_t stretch = 0; stretch < stretches; ++stretch) {
    const std::size_t first = 1 + stretch * (count - 2) / stretches;
    const std::size_t end = 1 + (stretch + 1) * (count - 2) / stretches;
    std::size_t low = first;
    std::size_t high = first;
    for (std::size_t n = first; n < end; ++n) {
      if (points[2 * n + 1] < points[2 * low + 1]) low = n;
      if (points[2 * n + 1] > points[2 * high + 1]) high = n;
    }
    for (const std::size_t n : {std::min(low, high), std::max(low, high)})
      kept.insert(kept.end(), {points[2 * n], points[2 * n + 1]});
  }
  kept.insert(kept.end(), points.end() - 2, points.end());
  points = std::move(kept);
}
