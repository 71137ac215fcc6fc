#include "host/inps_SectionList.h"

#include "host/inps_NameChoice.h"
#include "host/inps_TextTable.h"
#include "host/inps_VisibleBuffer.h"
#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <ostream>
#include <unordered_map>

namespace {

using Section = inpS_SectionDescription;
using Thickness = Section::Thickness;

cow_String numberText(double value) { // a sum of plies is 0.3, whatever its last digit
  char text[32];
  std::snprintf(text, sizeof text, "%.12g", value);
  return text;
}

// Of a layup with its plies as they are given.
cow_String thicknessText(const Section& section) {
  cow_String text;
  if (section.kind == Thickness::Constant ||
      (section.kind == Thickness::Distribution && section.thickness != 0))
    text = numberText(section.thickness);
  if (section.kind == Thickness::Nodal) text = "nodal";
  for (const cow_String& name : section.distributions) {
    const bool isFirst = &name == &section.distributions.front();
    text += (text.empty() ? ""
             : isFirst    ? " and "
                          : ", ") +
            cow_String(isFirst ? "by distribution " : "") + name;
  }
  if (section.plies == 0) return text;
  return text + (text.empty() ? "" : ", ") + std::to_string(section.plies) +
         (section.plies == 1 ? " ply" : " plies") + (section.isSymmetric ? " mirrored" : "");
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
      table.Add({section.variant, inps_oneLine(section.name), inps_oneLine(section.set),
                 inps_oneLine(section.material), inps_oneLine(section.orientation),
                 std::to_string(section.elements), inps_oneLine(thicknessText(section))});
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
                     {"symmetric", section.isSymmetric},
                     {"elements", section.elements},
                     {"thickness", nullptr},
                     {"constantThickness", nullptr},
                     {"distributions", section.distributions}};
    if (section.plies > 0) object["plies"] = section.plies;
    if (section.kind == Thickness::Constant)
      object["thickness"] = section.thickness;
    else if (section.kind != Thickness::None)
      object["thickness"] = section.kind == Thickness::Nodal ? "nodal" : "distribution";
    if (section.kind == Thickness::Distribution && section.thickness != 0)
      object["constantThickness"] = section.thickness;
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
