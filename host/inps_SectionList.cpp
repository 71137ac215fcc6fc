#include "host/inps_SectionList.h"

#include "host/inps_NameChoice.h"
#include <algorithm>
#include <array>
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

// A table of texts: columns as wide as their widest text, those of numbers to the right.
template <std::size_t Columns> class TextTable {
public:
  using Row = std::array<cow_String, Columns>;

  explicit TextTable(Row head, unsigned numbers) : m_numbers(numbers) { Add(std::move(head)); }

  void Add(Row row) {
    for (std::size_t n = 0; n < Columns; ++n) {
      if (row[n].empty()) row[n] = "-";
      m_widths[n] = std::max(m_widths[n], WidthOf(row[n]));
    }
    m_rows.push_back(std::move(row));
  }

  void Print(aio_ostream& out) const {
    for (const Row& row : m_rows) {
      cow_String line;
      for (std::size_t n = 0; n < Columns; ++n) {
        const cow_String blanks(m_widths[n] - WidthOf(row[n]), ' ');
        line += "  " + ((m_numbers >> n & 1) != 0 ? blanks + row[n] : row[n] + blanks);
      }
      line.erase(line.find_last_not_of(' ') + 1);
      out << line << '\n';
    }
  }

private:
  static std::size_t WidthOf(const cow_String& text) { // characters
    return static_cast<std::size_t>(std::ranges::count_if(
        text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
  }

  unsigned m_numbers; // a bit for each column
  std::array<std::size_t, Columns> m_widths{};
  cow_List<Row> m_rows;
};

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
  TextTable<7> table({"kind", "name", "set", "material", "orientation", "elements", "thickness"},
                     1u << 5);
  for (const Section& section : sections)
    if (choice.Has(section.name))
      table.Add({section.variant, section.name, section.set, section.material, section.orientation,
                 std::to_string(section.elements), thicknessText(section)});
  table.Print(out);
}

void inps_printSectionKinds(aio_ostream& out, const cow_List<Section>& sections) {
  TextTable<3> table({"kind", "sections", "elements"}, 6);
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
