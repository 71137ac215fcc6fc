#pragma once

#include "host/inps_ElementAxes.h"
#include "host/inps_ExportCells.h"
#include "host/inps_VtuFile.h"
#include "inpS/writer/inpS_SectionDescription.h"
#include <optional>

// What the sections say of each element, as arrays of cells: the section's number and name, its
// material (of a layup all of them), its thickness, and on wish the local axes.
class inps_ExportSections {
public:
  inps_ExportSections(const inps_FlatMesh& mesh, const KvoObjDocument& document, bool withAxes);

  bool IsEmpty() const { return m_sections.empty(); }
  // Section and Material with SectionNames and MaterialNames, -1 where there is none; Thickness, no
  // number where there is none; Axis1, Axis2, Axis3, zeros where there are none. The grid refers to
  // this and to the cells.
  void AddTo(inps_VtuGrid& grid, const inps_ExportCells& cells) const;
  // Orientations without axes of their own.
  cow_List<cow_String> UnknownAxes() const {
    return m_axes ? m_axes->Unknown() : cow_List<cow_String>();
  }

private:
  // Values that vary, and the sections whose thickness they are a part of.
  struct Varying;
  void PaintThickness(const cow_Map<int32_t, cow_List<KvoSimPosition>>& assignments);
  void AddByElement(const Varying& varying);
  void AddByNode(const Varying& varying);
  void Add(std::size_t element, double value);
  double ThicknessOf(int64_t element) const;

  const inps_FlatMesh& m_mesh;
  KvoObjDocument m_document;
  cow_List<inpS_SectionDescription> m_sections;
  cow_List<cow_String> m_sectionNames;
  cow_List<cow_String> m_materials;
  cow_List<int32_t> m_materialOf;   // by section
  std::vector<int32_t> m_sectionOf; // by element
  std::vector<double> m_thickness;  // by element, where it varies anywhere
  std::optional<inps_ElementAxes> m_axes;
};
