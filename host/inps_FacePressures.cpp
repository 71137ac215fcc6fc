#include "host/inps_FacePressures.h"

#include <algorithm>

void inps_FacePressures::Add(eds_SurfaceFace face, const eds_MemberSet& elements, double value) {
  Faces& faces = m_faces[face];
  faces.reserve(faces.size() + static_cast<std::size_t>(elements.Size()));
  for (int64_t n = 0; n < elements.Size(); ++n) faces.emplace_back(elements[n], value);
}

void inps_FacePressures::Add(eds_SurfaceFace face, int32_t element, double value) {
  m_faces[face].emplace_back(element, value);
}

// Elements that lack the face make no cell: the cells tell which are there.
void inps_FacePressures::Plan(inps_ExportCells& cells) {
  for (auto& [face, faces] : m_faces) {
    std::ranges::stable_sort(faces, {}, &Faces::value_type::first);
    std::vector<int32_t> elements;
    std::vector<double> sums;
    for (const auto& [element, value] : faces) {
      if (elements.empty() || elements.back() != element) {
        elements.push_back(element);
        sums.push_back(0);
      }
      sums.back() += value;
    }
    const int64_t before = cells.CellCount();
    cells.AddFaces(eds_MemberSet::Ascending(std::vector(elements)), face);
    std::vector<int32_t> there(static_cast<std::size_t>(cells.CellCount() - before));
    cells.FillElements(before, there);
    for (const int32_t element : there)
      m_pressures.push_back(sums[static_cast<std::size_t>(
          std::ranges::lower_bound(elements, element) - elements.begin())]);
  }
}

void inps_FacePressures::AddTo(inps_VtuGrid& grid) const {
  grid.cellData.push_back(
      inps_vtuArray<double>("Pressure", "Float64", static_cast<int64_t>(m_pressures.size()),
                            [this](int64_t first, std::span<double> out) {
                              std::copy_n(m_pressures.begin() + first, out.size(), out.begin());
                            }));
}
