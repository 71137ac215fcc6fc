#include "host/inps_PlotPage.h"

#include "base/utl_Assert.h"
#include "base/utl_Stream.h"
#include "host/inps_Json.h"
#include "host/page/inps_pageTexts.h"
#include <nlohmann/json.hpp>

namespace {

cow_String escaped(std::string_view text) {
  cow_String out;
  for (const char c : text) {
    switch (c) {
    case '<':
      out += "&lt;";
      break;
    case '>':
      out += "&gt;";
      break;
    case '&':
      out += "&amp;";
      break;
    case '"':
      out += "&quot;";
      break;
    default:
      out += c;
    }
  }
  return out;
}

// What heads its kind in the list of contents.
cow_String groupOf(const cow_String& kind) {
  return kind == "material"     ? "Materials"
         : kind == "amplitudes" ? "Amplitudes"
                                : "Gasket behaviors";
}

inps_Json jsonOf(const inps_Chart& chart) {
  inps_Json series = inps_Json::array();
  for (const inps_Series& one : chart.series)
    series.push_back({{"label", one.label}, {"points", one.points}});
  return {{"title", chart.title},
          {"keyword", chart.keyword},
          {"x", chart.x},
          {"y", chart.y},
          {"ramp", chart.isRamp},
          {"note", chart.note},
          {"series", std::move(series)}};
}

inps_Json jsonOf(const inps_PlotSection& section) {
  const bool each = section.kind == "amplitudes"; // an entry for every chart
  inps_Json object{{"group", groupOf(section.kind)},
                   {"name", section.name},
                   {"label", section.kind == "gasket behavior" ? section.kind : cow_String()},
                   {"each", each}};
  inps_Json charts = inps_Json::array();
  for (const inps_Chart& chart : section.charts) charts.push_back(jsonOf(chart));
  object["charts"] = std::move(charts);
  inps_Json numbers = inps_Json::array();
  for (const inps_Numbers& one : section.numbers)
    numbers.push_back({{"keyword", one.keyword},
                       {"depth", one.depth},
                       {"names", one.names},
                       {"rows", one.rows},
                       {"more", one.moreRows}});
  object["numbers"] = std::move(numbers);
  return object;
}

// JSON that may stand inside a script element: nothing in it can end that. Bytes that are no UTF-8
// are replaced.
cow_String dataOf(const inps_PlotPage& page) {
  inps_Json object{{"facts", page.facts}};
  inps_Json sections = inps_Json::array();
  for (const inps_PlotSection& section : page.sections) sections.push_back(jsonOf(section));
  object["sections"] = std::move(sections);
  inps_Json notDrawn = inps_Json::array();
  for (const inps_PlotPage::Names& rest : page.notDrawn)
    notDrawn.push_back({{"group", groupOf(rest.kind)}, {"names", rest.names}});
  object["notDrawn"] = std::move(notDrawn);
  const cow_String json = object.dump(-1, ' ', false, inps_Json::error_handler_t::replace);
  cow_String text;
  text.reserve(json.size());
  for (const char c : json) {
    if (c == '<')
      text += "\\u003c";
    else
      text += c;
  }
  return text;
}

} // namespace

void inps_printPlotPage(utl_Stream& out, const inps_PlotPage& page) {
  for (std::string_view rest = inps_pageHtml; !rest.empty();) {
    const std::size_t mark = std::min(rest.find("{{"), rest.size());
    out << rest.substr(0, mark);
    rest.remove_prefix(mark);
    if (rest.empty()) break;
    const std::size_t end = rest.find("}}");
    utl_ASSERT(end != rest.npos);
    const std::string_view name = rest.substr(2, end - 2);
    if (name == "title")
      out << escaped(page.title);
    else if (name == "style")
      out << inps_pageStyle;
    else if (name == "script")
      out << inps_pageScript;
    else
      out << dataOf(page);
    rest.remove_prefix(end + 2);
  }
}
