#include "inpS/mesh/inpS_NodeReader.h"
#include "base/utl_Number.h"
#include "inpS/framework/inpS_System.h"
#include "inpS/keywords/inpS_TinyNumber.h"
#include "inpS/keywords/inpS_UnreadField.h"
#include "parser/inp_BulkDecode.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>
#include <atomic>
#include <cstdlib>

namespace {

constexpr int kValues = 6; // three coordinates, three normal components
constexpr long long kMaxLabel = 999999999;

} // namespace

void inpS_NodeReader::Read(const inp_Keyword& keyword, const inpS_System& system,
                           const inpS_NodeSink& sink) {
  const bool converts = m_cylindrical || m_spherical || !system.IsIdentity();
  std::atomic<bool> overflowed = false; // the pieces are converted at the same time
  inp_streamNodes(
      keyword.Data(),
      [&](const inp_NodePiece& piece) {
        if (!converts) return;
        ConvertPoints(piece.coords, system);
        if (!inpS_isFinite(piece.coords)) overflowed = true;
      },
      [&](const inp_NodePiece& piece) {
        m_mayOverflow = overflowed || (converts && !piece.odd.empty());
        TakePiece(keyword, system, piece, sink);
      });
  TellOverflows(keyword, m_messages);
}

void inpS_NodeReader::TakePiece(const inp_Keyword& keyword, const inpS_System& system,
                                const inp_NodePiece& piece, const inpS_NodeSink& sink) {
  m_unreadable.clear();
  m_normalAt.clear();
  m_normals.clear();
  for (const inp_OddRow& odd : piece.odd)
    if (!ReadOddRow(keyword, system, odd, piece))
      m_unreadable.push_back(static_cast<std::size_t>(odd.slot));
  if (m_mayOverflow) LeaveOutOverflowed(piece);
  const std::size_t count = Remove(piece);
  sink({piece.labels.first(count), piece.coords.first(3 * count), m_normalAt, m_normals});
}

bool inpS_NodeReader::ReadOddRow(const inp_Keyword& keyword, const inpS_System& system,
                                 const inp_OddRow& odd, const inp_NodePiece& piece) {
  const inp_DataArray& data = keyword.Data();
  const long long row = odd.row;
  if (!data.IsInteger(row, 0) || std::llabs(data.AsInt64(row, 0)) > kMaxLabel) {
    m_messages.AddError(inp_Utils::MessageAtField(
        keyword, row, 0,
        "\"" + data.AsStringVerbatim(row, 0) +
            "\" is no node label: an integer of at most 999999999 was expected; line ignored."));
    return false;
  }
  double values[kValues] = {};
  const int cols = data.Cols(row);
  for (int col = 1; col < cols; ++col) {
    if (!data.HasValue(row, col)) continue;
    if (col > kValues) {
      m_messages.AddWarning(inp_Utils::MessageAtField(
          keyword, row, col,
          "A node has at most three coordinates and three normal components; what is behind them "
          "is left out."));
      m_messages.LeaveOut("value", inpS_countGiven(keyword, row, col));
      break;
    }
    if (!data.IsNumber(row, col)) {
      const cow_String word = data.AsStringVerbatim(row, col);
      m_messages.AddError(inp_Utils::MessageAtField(
          keyword, row, col,
          "\"" + word + "\" is " +
              (utl_classifyField(word).IsOutOfRange()
                   ? "larger than any number that can be held; line ignored."
                   : "no coordinate: a number was expected.")));
      return false;
    }
    values[col - 1] = data.AsDouble(row, col);
    if (auto tiny = inpS_tinyNumberMessage(keyword, row, col))
      m_messages.AddWarning(std::move(*tiny));
  }
  const auto slot = static_cast<std::size_t>(odd.slot);
  piece.labels[slot] = data.AsInt(row, 0);
  const std::span<double> point = piece.coords.subspan(3 * slot, 3);
  std::copy(values, values + 3, point.begin());
  ConvertPoints(point, system);
  if (cols > 4 && !AddNormal(values + 3, slot, system))
    m_messages.AddWarning(inp_Utils::MessageAtField(
        keyword, row, 4, "The normal has no direction; the node is read without it."));
  return true;
}

// Of nodes whose numbers all were finite, as read.
void inpS_NodeReader::LeaveOutOverflowed(const inp_NodePiece& piece) {
  const std::size_t known = m_unreadable.size();
  for (std::size_t slot = 0, next = 0; slot < piece.labels.size(); ++slot) {
    if (next < known && m_unreadable[next] == slot) {
      ++next;
      continue;
    }
    if (inpS_isFinite(piece.coords.subspan(3 * slot, 3))) continue;
    NoteOverflow(piece.labels[slot]);
    m_unreadable.push_back(slot);
  }
  std::sort(m_unreadable.begin(), m_unreadable.end());
}

// The local direction is converted as the coordinates are, scaled to unit length and turned by the
// current coordinate system. False for one without a direction.
bool inpS_NodeReader::AddNormal(const double values[3], std::size_t slot,
                                const inpS_System& system) {
  if (values[0] == 0.0 && values[1] == 0.0 && values[2] == 0.0) return true;
  double normal[3] = {values[0], values[1], values[2]};
  ToRectangular(normal);
  if (!ToUnitLength(normal)) return false;
  // As with points: times one, plus zeros, is not the same for a negative zero.
  if (!system.IsIdentity()) system.TransformVector(normal[0], normal[1], normal[2]);
  m_normalAt.push_back(slot);
  m_normals.insert(m_normals.end(), normal, normal + 3);
  m_hasNormals = true;
  return true;
}

// Closes the gaps that unreadable lines leave; returns how many nodes remain.
std::size_t inpS_NodeReader::Remove(const inp_NodePiece& piece) {
  if (m_unreadable.empty()) return piece.labels.size();
  std::size_t kept = m_unreadable.front(), next = 0;
  const auto behind = std::lower_bound(m_normalAt.begin(), m_normalAt.end(), kept);
  auto normal = static_cast<std::size_t>(behind - m_normalAt.begin()), normalsKept = normal;
  for (std::size_t from = kept; from < piece.labels.size(); ++from) {
    const bool hasNormal = normal < m_normalAt.size() && m_normalAt[normal] == from;
    const bool isLeftOut = next < m_unreadable.size() && m_unreadable[next] == from;
    if (isLeftOut) {
      ++next;
    } else {
      piece.labels[kept] = piece.labels[from];
      std::copy_n(&piece.coords[3 * from], 3, &piece.coords[3 * kept]);
      if (hasNormal) {
        m_normalAt[normalsKept] = kept;
        std::copy_n(&m_normals[3 * normal], 3, &m_normals[3 * normalsKept++]);
      }
      ++kept;
    }
    normal += hasNormal ? 1 : 0;
  }
  m_normalAt.resize(normalsKept);
  m_normals.resize(3 * normalsKept);
  return kept;
}
