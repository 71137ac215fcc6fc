#include "inpS/mesh/inpS_NodeReader.h"
#include "inpS/framework/inpS_System.h"
#include "parser/inp_BulkDecode.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr int kValues = 6; // three coordinates, three normal components
constexpr long long kMaxLabel = 999999999;
// A normal this close to unit length is left as it is, so that one written back reads the same.
constexpr double kUnitLength = 1e-14;

} // namespace

void inpS_NodeReader::Read(const inp_Keyword& keyword, const inpS_System& system) {
  inp_NodeRows rows;
  inp_decodeNodes(keyword.Data(), rows);
  m_labels = std::move(rows.labels);
  m_coordinates = std::move(rows.coords);

  cow_List<std::size_t> unreadable;
  for (const inp_OddRow& odd : rows.odd) {
    const auto slot = static_cast<std::size_t>(odd.slot);
    if (!ReadOddRow(keyword, odd.row, slot)) unreadable.push_back(slot);
  }
  Remove(unreadable);
  ConvertCoordinates(system);
  FinishNormals(system);
}

bool inpS_NodeReader::ReadOddRow(const inp_Keyword& keyword, long long row, std::size_t slot) {
  const inp_DataArray& data = keyword.Data();
  if (data.Type(row, 0) != inp_FieldType::Integer ||
      std::llabs(data.AsInt64(row, 0)) > kMaxLabel) {
    m_messages.AddError(inp_Utils::MessageAtField(
        keyword, row, 0,
        "\"" + data.AsStringVerbatim(row, 0) +
            "\" is no node label: an integer of at most 999999999 was expected; line ignored."));
    return false;
  }
  m_labels[slot] = data.AsInt(row, 0);
  double values[kValues] = {};
  const int cols = data.Cols(row);
  for (int col = 1; col < cols; ++col) {
    if (!data.HasValue(row, col)) continue;
    if (col > kValues || !data.IsNumber(row, col) || std::isinf(data.AsDouble(row, col))) {
      m_messages.AddError(inp_Utils::MessageAtField(
          keyword, row, col,
          col > kValues ? "A node has at most three coordinates and three normal components."
                        : "\"" + data.AsStringVerbatim(row, col) +
                              "\" is no coordinate: a number was expected."));
      return false;
    }
    values[col - 1] = data.AsDouble(row, col);
  }
  std::copy(values, values + 3, m_coordinates.Data() + 3 * slot);
  if (cols > 4) ReadNormal(values + 3, slot);
  return true;
}

void inpS_NodeReader::ReadNormal(const double values[3], std::size_t slot) {
  if (values[0] == 0.0 && values[1] == 0.0 && values[2] == 0.0) return;
  m_normalPositions.Append(static_cast<long long>(slot));
  for (int i = 0; i < 3; ++i) m_normals.Append(values[i]);
}

void inpS_NodeReader::Remove(const cow_List<std::size_t>& slots) {
  if (slots.empty()) return;
  std::size_t kept = slots.front(), next = 0, normal = 0;
  while (normal < m_normalPositions.Size() &&
         static_cast<std::size_t>(m_normalPositions[normal]) < kept)
    ++normal;
  for (std::size_t from = kept; from < m_labels.Size(); ++from) {
    if (next < slots.size() && slots[next] == from) {
      ++next;
      continue;
    }
    m_labels[kept] = m_labels[from];
    std::copy_n(m_coordinates.Data() + 3 * from, 3, m_coordinates.Data() + 3 * kept);
    if (normal < m_normalPositions.Size() &&
        static_cast<std::size_t>(m_normalPositions[normal]) == from)
      m_normalPositions[normal++] = static_cast<long long>(kept);
    ++kept;
  }
  m_labels.Resize(kept);
  m_coordinates.Resize(3 * kept);
}

// The local direction is converted as the coordinates are, scaled to unit length and turned by the
// current coordinate system.
void inpS_NodeReader::FinishNormals(const inpS_System& system) {
  for (std::size_t n = 0; n < m_normalPositions.Size(); ++n) {
    double* normal = m_normals.Data() + 3 * n;
    ToRectangular(normal);
    const double length = std::hypot(normal[0], normal[1], normal[2]);
    if (std::fabs(length - 1.0) > kUnitLength)
      for (int i = 0; i < 3; ++i) normal[i] /= length;
    system.TransformVector(normal[0], normal[1], normal[2]);
  }
}
