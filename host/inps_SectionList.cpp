#include "host/inps_SectionList.h"

#include "host/inps_NameChoice.h"
#include "host/inps_TextTable.h"
#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <ostream>
#include <unordered_map>

namespace {

using Section = inpS_SectionDescription;
using Thickness = Section::Thickness;

cow_String thicknessText(const Section& section) {
  switch (section.kind) {
  case Thickness::None:
    return {};
  case Thickness::Constant: { // a sum of plies is 0.3, whatever its last digit
    char text[32];
    std::snprintf(text, sizeof text, "%.12g", section.thickness);
    return text;
  }
  case Thickness::Distribution:
    return "distribution";
  case Thickness::Nodal:
    return "nodal";
  }
  return {};
}

struct KindCount {
  cow_String variant;
  long long sections = 0;
  long long elements = 0;
};

// In order of first appearance.
cow_List<KindCount> countByKind(const cow_List<Section>& sections) {
  cow_List<KindCount> counts;
  std::unordered_map<std::string_view, std::size_t> index;
  for (const Section& section : sections) {
    const auto [known, isNew] = index.try_emplace(section.variant, counts.size());
    if (isNew) counts.push_back({section.variant});
    ++counts[known->second].sections;
    counts[known->second].elements += section.elements;
  }
  return counts;
}

} // namespace

void inps_printSections(aio_ostream& out, const cow_List<Section>& sections,
                        const inps_NameChoice& choice) {
  inps_TextTable<7> table(
      {"kind", "name", "set", "material", "orientation", "elements", "thickness"}, 1u << 5);
  for (const Section& section : sections)
    if (choice.Has(section.name))
      table.Add({section.variant, section.name, section.set, section.material, section.orientation,
                 std::to_string(section.elements), thicknessText(section)});
  table.Print(out);
}

void inps_printSectionKinds(aio_ostream& out, const cow_List<Section>& sections) {
  inps_TextTable<3> table({"kind", "sections", "elements"}, 6);
  for (const KindCount& kind : countByKind(sections))
    table.Add({kind.variant, std::to_string(kind.sections), std::to_string(kind.elements)});
  table.Print(out);
}

inps_Json inps_jsonOfSections(const cow_List<Section>& sections, const inps_NameChoice& choice) {
  inps_Json list = inps_Json::array();
  for (const Section& section : sections) {
    if (!choice.Has(section.name)) continue;
    inps_Json object{{"kind", section.variant},
                     {"name", section.name},
                     {"set", section.set},
                     {"material", section.material},
                     {"orientation", section.orientation},
                     {"plies", nullptr},
                     {"elements", section.elements},
                     {"thickness", nullptr}};
    if (section.plies > 0) object["plies"] = section.plies;
    if (section.kind == Thickness::Constant)
      object["thickness"] = section.thickness;
    else if (section.kind != Thickness::None)
      object["thickness"] = thicknessText(section);
    list.push_back(std::move(object));
  }
  return list;
}

inps_Json inps_jsonOfSectionKinds(const cow_List<Section>& sections) {
  inps_Json object = inps_Json::object();
  for (const KindCount& kind : countByKind(sections))
    object[kind.variant] = {{"sections", kind.sections}, {"elements", kind.elements}};
  return object;
}
