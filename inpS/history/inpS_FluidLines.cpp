#include "inpS/history/inpS_FluidLines.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/keywords/inpS_Flag.h"
#include "parser/inp_BulkColumns.h"
#include "parser/inp_Utils.h"
#include <algorithm>

namespace {

constexpr int labelColumn = 1;
constexpr int magnitudeColumn = 2;

// -1: the label does not end in a number.
int faceOf(std::string_view label) {
  if (label.ends_with("NU")) label.remove_suffix(2);
  const std::size_t begin = label.find_last_not_of("0123456789") + 1;
  return begin == label.size() || label.size() - begin > 2
             ? -1
             : std::stoi(cow_String(label.substr(begin)));
}

bool isFace(std::string_view label) {
  const int face = faceOf(label);
  return face >= 1 && face <= 6;
}

} // namespace

inpS_FluidLines::inpS_FluidLines(const inp_Keyword& keyword, eds_RecordKind form)
    : m_isOfFaces(form == eds_FormKind::FluidBoundaryElement),
      m_isOfNodes(form == eds_FormKind::FluidBoundaryNode),
      m_needsMagnitude(!inpS_saysYes(keyword, "user")) {}

bool inpS_FluidLines::IsSound(const inp_ColumnPiece& piece, Words words) {
  if (m_isOfFaces && !std::ranges::all_of(words[labelColumn]->All(), isFace)) return false;
  if (!m_isOfNodes) return true;
  const auto isBlank = [](int label) { return label == inp_blankInt; };
  return std::ranges::none_of(piece.columns[labelColumn].ints.first(piece.count), isBlank) &&
         (!m_needsMagnitude ||
          std::ranges::none_of(piece.columns[magnitudeColumn].reals.first(piece.count),
                               inp_isBlankReal));
}

std::optional<inpS_LineFault> inpS_FluidLines::FaultOf(const inpS_LineView& line) {
  const cow_String label = inp_Utils::Fold(line.Text(labelColumn));
  if (m_isOfFaces && !isFace(label))
    return inpS_LineFault{labelColumn,
                          "\"" + label + "\" does not end in the number of a face, 1 to 6."};
  const bool isComplete =
      !label.empty() && (!m_needsMagnitude || line.Has(magnitudeColumn) || label.ends_with("NU"));
  if (m_isOfNodes && !isComplete) return inpS_LineFault{-1, "Incomplete data line"};
  return {};
}
