#include "host/inps_ExportSections.h"

#include "database/KvoObjField.h"
#include "database/KvoSimCSet.h"
#include "database/KvoSimDataRecord.h"
#include "host/inps_ElementSections.h"
#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <unordered_map>

namespace {

using Thickness = inpS_SectionDescription::Thickness;
constexpr double none = std::numeric_limits<double>::quiet_NaN();

// fill(flat element ordinals, out): one item for each.
template <class T, class Fill>
inps_VtuArray cellArray(const inps_ExportCells& cells, const char* name, const char* type,
                        int components, Fill fill) {
  return inps_vtuArray<T>(
      name, type, cells.CellCount(),
      [&cells, fill, components](int64_t first, std::span<T> out) {
        thread_local std::vector<int32_t> flat;
        flat.resize(out.size() / static_cast<std::size_t>(components));
        cells.FillElements(first, flat);
        fill(std::span<const int32_t>(flat), out);
      },
      components);
}

// The first number of each member of a distribution, in the order of the members.
template <class Take> void forValues(const KvoSimDistribution& data, Take take) {
  constexpr int64_t most = 8192;
  std::vector<double> values;
  for (const int64_t drawer : data.DrawerIDArray()) {
    const KvoSimCSet over = data.DrawerCSet(drawer);
    eds_ArrayReader reader(data.DrawerArray(drawer));
    if (over.IsNull() || reader.Count() != over.Set().Size()) continue;
    const auto width = static_cast<std::size_t>(reader.Width());
    for (int64_t begin = 0; begin < reader.Count(); begin += most) {
      const int64_t count = std::min(most, reader.Count() - begin);
      values.resize(static_cast<std::size_t>(count) * width);
      reader.ReadPiece(begin, std::span(values));
      for (int64_t n = 0; n < count; ++n)
        take(int64_t{over.Set()[begin + n]}, values[static_cast<std::size_t>(n) * width]);
    }
  }
}

int64_t firstOf(const KvoSimPosition& instance, eds_FieldID field) {
  return instance.IsNull() ? 0 : std::max<int64_t>(0, instance.DataRecord().GetInt64(field));
}

} // namespace

inps_ExportSections::inps_ExportSections(const inps_FlatMesh& mesh, const KvoObjDocument& document,
                                         bool withAxes)
    : m_mesh(mesh), m_document(document), m_sections(inpS_describeSections(document)) {
  if (m_sections.empty()) return;
  if (withAxes) m_axes.emplace(mesh, document);
  std::unordered_map<unsigned long long, int32_t> index;
  std::unordered_map<cow_String, int32_t> materials;
  for (const inpS_SectionDescription& section : m_sections) {
    index.emplace(section.section.Object().Packed(), static_cast<int32_t>(index.size()));
    m_sectionNames.push_back(section.name);
    int32_t material = -1;
    if (!section.material.empty()) {
      const auto [known, isNew] =
          materials.try_emplace(section.material, static_cast<int32_t>(m_materials.size()));
      if (isNew) m_materials.push_back(section.material);
      material = known->second;
    }
    m_materialOf.push_back(material);
  }
  m_sectionOf.assign(static_cast<std::size_t>(mesh.ElementCount()), -1);
  cow_Map<int32_t, cow_List<KvoSimPosition>> varying; // the assignments of sections
  inps_forAssignedElements(
      document, [&](const KvoSimPosition& assignment, int64_t first, int64_t count) {
        const auto section = index.find(
            assignment.DataRecord().GetReference(eds_SectionAssignment_Section).Object().Packed());
        if (section == index.end()) return;
        const int64_t from = std::clamp<int64_t>(first, 0, mesh.ElementCount());
        const int64_t to = std::clamp<int64_t>(first + count, from, mesh.ElementCount());
        std::fill(m_sectionOf.begin() + from, m_sectionOf.begin() + to, section->second);
        if (m_axes) m_axes->Add(assignment, from, to - from);
        const Thickness kind = m_sections[static_cast<std::size_t>(section->second)].kind;
        if (kind != Thickness::Distribution && kind != Thickness::Nodal) return;
        cow_List<KvoSimPosition>& assignments = varying[section->second];
        if (assignments.empty() || !(assignments.back() == assignment))
          assignments.push_back(assignment);
      });
  if (!varying.empty()) PaintThickness(varying);
}

struct inps_ExportSections::Varying {
  KvoSimDistribution data;
  bool isByNode = false;
  std::unordered_map<int32_t, double> factors; // by section
  std::set<int64_t> offsets;                   // from its members to flat ordinals
};

// Each distribution is read once, however many sections name it.
void inps_ExportSections::PaintThickness(
    const cow_Map<int32_t, cow_List<KvoSimPosition>>& assignments) {
  cow_Map<int64_t, Varying> all;
  const int64_t flatNodes = m_mesh.Mesh().GetNodeCollection().ID();
  const int64_t flatElements = m_mesh.Mesh().GetElementCollection().ID();
  const auto collect = [&](const KvoSimPosition& holder, int32_t section, double factor) {
    bool isAny = false;
    for (const KvoSimPosition& position : holder.GetVector(eds_Member::Fields)) {
      const KvoObjField field(position);
      if (field.Name() != "thickness") continue;
      isAny = true;
      for (const KvoSimDistribution& data : field.GetData()) {
        if (data.IsNull() || data.Grid().IsNull()) continue; // of a damaged file
        Varying& varying = all[data.ID()];
        varying.data = data;
        varying.isByNode = field.GetGridType() == KvoGridType::Node;
        varying.factors[section] += factor;
        const bool isFlat = data.Grid()[0].ID() == (varying.isByNode ? flatNodes : flatElements);
        for (const KvoSimPosition& assignment : assignments.at(section))
          varying.offsets.insert(
              isFlat
                  ? 0
                  : firstOf(assignment.DataRecord().GetReference(eds_SectionAssignment_Instance),
                            varying.isByNode ? eds_Instance_FirstNode : eds_Instance_FirstElement));
      }
    }
    return isAny;
  };
  for (const auto& [number, ignored] : assignments) {
    const inpS_SectionDescription& of = m_sections[static_cast<std::size_t>(number)];
    // Of plies it is a share of the whole shell's, where that is given.
    if (collect(of.section, number, 1)) continue;
    for (const KvoSimPosition& ply : of.section.GetVector(eds_Member::Lines))
      collect(ply, number, of.isSymmetric ? 2 : 1);
  }
  m_thickness.assign(m_sectionOf.size(), none);
  for (const auto& [id, varying] : all)
    if (varying.isByNode)
      AddByNode(varying);
    else
      AddByElement(varying);
}

// Of several plies that vary the first finds what is constant of the layup.
void inps_ExportSections::Add(std::size_t element, double value) {
  const auto section = static_cast<std::size_t>(m_sectionOf[element]);
  if (std::isnan(m_thickness[element])) m_thickness[element] = m_sections[section].thickness;
  m_thickness[element] += value;
}

void inps_ExportSections::AddByElement(const Varying& varying) {
  for (const int64_t offset : varying.offsets)
    forValues(varying.data, [&](int64_t member, double value) {
      const int64_t element = member + offset;
      if (element < 0 || element >= m_mesh.ElementCount()) return;
      const auto at = static_cast<std::size_t>(element);
      const auto factor = varying.factors.find(m_sectionOf[at]);
      if (factor != varying.factors.end()) Add(at, factor->second * value);
    });
}

// In the element's middle: the mean of its nodes that have a value.
void inps_ExportSections::AddByNode(const Varying& varying) {
  std::vector<double> byNode(static_cast<std::size_t>(m_mesh.NodeCount()), none);
  for (const int64_t offset : varying.offsets)
    forValues(varying.data, [&](int64_t member, double value) {
      if (member + offset >= 0 && member + offset < m_mesh.NodeCount())
        byNode[static_cast<std::size_t>(member + offset)] = value;
    });
  std::vector<int32_t> nodes;
  for (std::size_t number = 0; number < m_mesh.ElementBlocks().size(); ++number) {
    const inps_FlatMesh::Elements& of = m_mesh.ElementBlocks()[number];
    nodes.resize(static_cast<std::size_t>(of.block.width));
    for (int64_t n = 0; n < of.block.count; ++n) {
      const auto at = static_cast<std::size_t>(of.block.flatFirst + n);
      const auto factor = varying.factors.find(m_sectionOf[at]);
      if (factor == varying.factors.end()) continue;
      m_mesh.ReadConnectivity(number, n, nodes);
      double sum = 0;
      int count = 0;
      for (const int32_t node : nodes) {
        if (node < 0 || std::isnan(byNode[static_cast<std::size_t>(node)])) continue;
        sum += byNode[static_cast<std::size_t>(node)];
        ++count;
      }
      if (count > 0) Add(at, factor->second * sum / count);
    }
  }
}

double inps_ExportSections::ThicknessOf(int64_t element) const {
  const int32_t section = m_sectionOf[static_cast<std::size_t>(element)];
  if (section < 0) return none;
  const inpS_SectionDescription& of = m_sections[static_cast<std::size_t>(section)];
  if (of.kind == Thickness::None) return none;
  if (of.kind == Thickness::Constant) return of.thickness;
  return m_thickness.empty() ? none : m_thickness[static_cast<std::size_t>(element)];
}

void inps_ExportSections::AddTo(inps_VtuGrid& grid, const inps_ExportCells& cells) const {
  if (IsEmpty()) return;
  const auto add = [&](const char* name, auto valueOf) {
    grid.cellData.push_back(cellArray<int32_t>(
        cells, name, "Int32", 1, [valueOf](std::span<const int32_t> flat, std::span<int32_t> out) {
          for (std::size_t n = 0; n < flat.size(); ++n) out[n] = valueOf(flat[n]);
        }));
  };
  const auto sectionOf = [this](int32_t element) {
    return m_sectionOf[static_cast<std::size_t>(element)];
  };
  add("Section", sectionOf);
  grid.fieldData.push_back(inps_vtuTexts("SectionNames", m_sectionNames));
  if (!m_materials.empty()) {
    add("Material", [this, sectionOf](int32_t element) {
      const int32_t section = sectionOf(element);
      return section < 0 ? -1 : m_materialOf[static_cast<std::size_t>(section)];
    });
    grid.fieldData.push_back(inps_vtuTexts("MaterialNames", m_materials));
  }
  if (std::ranges::any_of(m_sections, [](const inpS_SectionDescription& section) {
        return section.kind != Thickness::None;
      }))
    grid.cellData.push_back(
        cellArray<double>(cells, "Thickness", "Float64", 1,
                          [this](std::span<const int32_t> flat, std::span<double> out) {
                            for (std::size_t n = 0; n < flat.size(); ++n)
                              out[n] = ThicknessOf(flat[n]);
                          }));
  static constexpr const char* axes[] = {"Axis1", "Axis2", "Axis3"};
  for (std::size_t axis = 0; m_axes && m_axes->HasAny() && axis < 3; ++axis)
    grid.cellData.push_back(
        cellArray<float>(cells, axes[axis], "Float32", 3,
                         [this, axis](std::span<const int32_t> flat, std::span<float> out) {
                           for (std::size_t n = 0; n < flat.size(); ++n)
                             std::ranges::copy(m_axes->Of(flat[n])[axis],
                                               out.begin() + 3 * static_cast<std::ptrdiff_t>(n));
                         }));
}
