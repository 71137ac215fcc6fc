#include "host/inps_Json.h"

#include "base/utl_File.h"
#include "host/inps_Timings.h"
#include "parser/inp_Utf8Text.h"
#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>

namespace {

void addPlace(inps_Json& object, const wip_Place& place) {
  object["file"] = place.file;
  object["line"] = place.line;
  object["column"] = place.column;
  object["width"] = place.width;
  object["sourceLine"] = place.sourceLine;
  object["includedFrom"] = place.includedFrom;
}

inps_Json partsOf(const cow_List<inps_ModelSummary::Part>& parts, bool instances) {
  inps_Json list = inps_Json::array();
  for (const inps_ModelSummary::Part& part : parts) {
    inps_Json object{{"name", part.name}};
    if (instances) object["part"] = part.part;
    object["nodes"] = part.nodes;
    object["elements"] = part.elements;
    list.push_back(std::move(object));
  }
  return list;
}

} // namespace

inps_Json inps_jsonOf(const inps_Reported& reported) {
  const wip_Message& message = reported.message;
  inps_Json object{{"severity", inps_MessageView::Name(reported.severity)},
                   {"text", message.text},
                   {"keyword", message.keyword}};
  addPlace(object, message.place);
  inps_Json notes = inps_Json::array();
  for (const wip_Note& note : message.notes) {
    inps_Json entry{{"text", note.text}};
    addPlace(entry, note.place);
    notes.push_back(std::move(entry));
  }
  object["notes"] = std::move(notes);
  return object;
}

inps_Json inps_jsonOf(const inps_ModelSummary::Counts& counts) {
  inps_Json object = inps_Json::object();
  for (const auto& [name, count] : counts) object[name] = count;
  return object;
}

inps_Json inps_jsonOf(const inps_ModelSummary& summary) {
  return {{"heading", summary.heading},
          {"dimensions", summary.dimensions},
          {"nodes", summary.nodes},
          {"elements", summary.elements},
          {"elementTypes", inps_jsonOf(summary.elementTypes)},
          {"materials", summary.materials},
          {"amplitudes", summary.amplitudes},
          {"nodeSets", summary.nodeSets},
          {"elementSets", summary.elementSets},
          {"surfaces", summary.surfaces},
          {"parts", partsOf(summary.parts, false)},
          {"instances", partsOf(summary.instances, true)},
          {"keptAsText", inps_jsonOf(summary.keptAsText)},
          {"records", inps_jsonOf(summary.records)}};
}

inps_Json inps_jsonOf(const cow_List<inpS_NotModelled>& notModelled) {
  inps_Json list = inps_Json::array();
  for (const inpS_NotModelled& kind : notModelled)
    list.push_back({{"keyword", kind.keyword},
                    {"count", kind.count},
                    {"file", kind.file},
                    {"line", kind.line},
                    {"known", kind.known},
                    {"kept", kind.kept}});
  return list;
}

inps_Json inps_jsonOf(const inps_Timings& timings) {
  inps_Json spans = inps_Json::array();
  for (const inps_Timings::Span& span : timings.Spans())
    spans.push_back({{"label", span.label}, {"depth", span.depth}, {"seconds", span.seconds}});
  return {{"spans", std::move(spans)},
          {"seconds", timings.Seconds()},
          {"peakMemory", utl_peakMemory()}};
}

void inps_addMessages(inps_Json& object, const inps_Reporter& reporter) {
  object["errors"] = reporter.Errors();
  object["warnings"] = reporter.Warnings();
  inps_Json messages = inps_Json::array();
  for (const inps_Reported& reported : reporter.Messages())
    messages.push_back(inps_jsonOf(reported));
  object["messages"] = std::move(messages);
}

void inps_printJson(aio_ostream& out, const inps_Json& json) {
  const cow_String text = json.dump(2, ' ', false, inps_Json::error_handler_t::replace);
  // JSON leaves some characters as they are that no terminal should see; they stand in its texts
  // only, and an escape of its own says the same.
  const char* const end = text.data() + text.size();
  const char* rest = text.data();
  for (const char* p = rest; p != end;) {
    const std::size_t length = std::max<std::size_t>(1, inp_utf8CharLength(p, end));
    if (*p != '\n' && !inp_isPrintable({p, length})) {
      const cow_String escaped = inp_escaped({p, length});
      out << std::string_view(rest, p) << (length == 1 ? "\\u00" + escaped.substr(2) : escaped);
      rest = p + length;
    }
    p += length;
  }
  out << std::string_view(rest, end) << '\n';
}
