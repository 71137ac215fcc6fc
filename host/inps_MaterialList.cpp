#include "host/inps_MaterialList.h"
#include "host/inps_NameChoice.h"

#include "host/inps_Fields.h"
#include "host/inps_NamedTable.h"
#include "host/inps_Reporter.h"
#include <nlohmann/json.hpp>
#include <ostream>
#include <unordered_map>

namespace {

using Range = inps_NamedTable::Range;

cow_String rangeText(const Range& range) {
  const cow_String low = inps_plainNumber(range.low);
  return range.low == range.high ? low : low + " to " + inps_plainNumber(range.high);
}

// The keywords that are kept as text, by what they belong to.
using KeptKeywords = std::unordered_map<unsigned long long, cow_List<cow_String>>;

KeptKeywords keptKeywords(const KvoObjDocument& document) {
  const eds_ModelReader model(document);
  KeptKeywords kept;
  for (const int64_t id : model.RecordIDs(eds_RecordKind::VerbatimKeyword))
    kept[inps_refOf(model, eds_VerbatimKeyword_Owner, id).Packed()].push_back(
        inps_textOf(model, eds_VerbatimKeyword_Keyword, id));
  return kept;
}

const cow_List<cow_String>& keptOf(const KeptKeywords& kept, const KvoSimPosition& owner) {
  static const cow_List<cow_String> none;
  const auto found = kept.find(owner.Object().Packed());
  return found == kept.end() ? none : found->second;
}

void printTable(aio_ostream& out, const inps_NamedTable& table) {
  if (table.rows == 0) return;
  out << ": " << inps_counted(table.rows, "row");
  for (std::size_t n = 0; n < table.columns.size(); ++n)
    out << ", " << table.columns[n].name << ' ' << rangeText(table.RangeOf(static_cast<int>(n)));
  if (table.hasTemperature)
    out << ", temperature " << rangeText(table.RangeOf(table.TemperatureColumn()));
  if (table.fieldVariables > 0) out << ", " << inps_counted(table.fieldVariables, "field variable");
}

// That gives the values of a property which has none of its own; empty: none does.
cow_String distributionOf(const inpS_PropertyDescription& behavior) {
  if (behavior.property.IsNull()) return {};
  const KvoSimPosition values = behavior.property.Follow(eds_Member::ValuesFrom);
  return values.IsNull() ? cow_String() : values.Name();
}

inps_Json jsonOf(const Range& range) {
  return {{"low", range.low}, {"high", range.high}};
}

inps_Json jsonOf(const inpS_PropertyDescription& behavior) {
  const inps_NamedTable table(behavior);
  inps_Json object{
      {"depth", behavior.depth},
      {"keyword", behavior.variant},
      {"parameters", behavior.parameters.empty() ? cow_String() : behavior.parameters.substr(2)},
      {"rows", table.rows}};
  inps_Json columns = inps_Json::array();
  for (std::size_t n = 0; n < table.columns.size() && table.rows > 0; ++n) {
    inps_Json column{{"name", table.columns[n].name},
                     {"independent", table.columns[n].isIndependent}};
    column.update(jsonOf(table.RangeOf(static_cast<int>(n))));
    columns.push_back(std::move(column));
  }
  object["columns"] = std::move(columns);
  object["temperature"] = table.hasTemperature && table.rows > 0
                              ? jsonOf(table.RangeOf(table.TemperatureColumn()))
                              : inps_Json();
  object["fieldVariables"] = table.fieldVariables;
  if (const cow_String values = distributionOf(behavior); !values.empty())
    object["distribution"] = values;
  return object;
}

} // namespace

void inps_printMaterials(aio_ostream& out, const KvoObjDocument& document,
                         const inps_NameChoice& choice) {
  const KeptKeywords kept = keptKeywords(document);
  const auto printKept = [&](const KvoSimPosition& owner, std::size_t indent) {
    for (const cow_String& keyword : keptOf(kept, owner))
      out << cow_String(indent, ' ') << '*' << keyword << " (kept as text)\n";
  };
  bool any = false;
  inps_forPropertyOwners(document, [&](const inps_PropertyOwner& owner) {
    if (!choice.Has(owner.name)) return;
    any = true;
    out << owner.kind << ' ' << inps_quoted(owner.name) << '\n';
    for (const inpS_PropertyDescription& behavior : inpS_describeProperties(owner.position)) {
      const std::size_t indent = 2 + 2 * static_cast<std::size_t>(behavior.depth);
      out << cow_String(indent, ' ') << behavior.variant << behavior.parameters;
      printTable(out, inps_NamedTable(behavior));
      if (const cow_String values = distributionOf(behavior); !values.empty())
        out << ": values of distribution " << inps_quoted(values);
      out << '\n';
      if (!behavior.property.IsNull()) printKept(behavior.property, indent + 2);
    }
    printKept(owner.position, 2);
  });
  if (!any) out << "no materials\n";
}

inps_Json inps_jsonOfMaterials(const KvoObjDocument& document, const inps_NameChoice& choice) {
  const KeptKeywords kept = keptKeywords(document);
  inps_Json list = inps_Json::array();
  inps_forPropertyOwners(document, [&](const inps_PropertyOwner& owner) {
    if (!choice.Has(owner.name)) return;
    inps_Json behaviors = inps_Json::array();
    inps_Json texts = keptOf(kept, owner.position);
    for (const inpS_PropertyDescription& behavior : inpS_describeProperties(owner.position)) {
      behaviors.push_back(jsonOf(behavior));
      if (behavior.property.IsNull()) continue;
      for (const cow_String& keyword : keptOf(kept, behavior.property)) texts.push_back(keyword);
    }
    list.push_back({{"kind", owner.kind},
                    {"name", owner.name},
                    {"behaviors", std::move(behaviors)},
                    {"keptAsText", std::move(texts)}});
  });
  return list;
}
