#include "inpS/history/inpS_FluidLines.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/history/inpS_ExcitationKind.h"
#include "inpS/history/inpS_NamedTargets.h"
#include "inpS/keywords/inpS_Flag.h"
#include "parser/inp_BulkColumns.h"
#include "parser/inp_Utils.h"
#include <algorithm>

namespace {

constexpr int targetColumn = 0;
constexpr int labelColumn = 1;
constexpr int magnitudeColumn = 2;

constexpr std::string_view labels[] = {"DIST", "HFLUX",   "P",      "PASSIVEOUTFLOW", "PRESSURE",
                                       "TEMP", "TURBEPS", "TURBKE", "TURBNU",         "TURBOMEGA",
                                       "VELX", "VELY",    "VELZ",   "VOLUME"};

bool isOneOf(std::string_view label) {
  return std::ranges::find(labels, label) != std::end(labels);
}

// With the number of a face, or of values that a routine gives.
bool isLabel(std::string_view label, bool isOfFaces) {
  if (isOneOf(label)) return true;
  if (label.ends_with("NU")) label.remove_suffix(2);
  if (isOfFaces) label = label.substr(0, label.find_last_not_of("0123456789") + 1);
  return isOneOf(label) || (label.ends_with("NU") && isOneOf(label.substr(0, label.size() - 2)));
}

cow_String listOfLabels() {
  cow_String list;
  for (const std::string_view label : labels)
    list += (list.empty() ? "" : ", ") + cow_String(label);
  return list;
}

const eds_Referable& referable(std::string_view word) {
  return *std::ranges::find(eds_referables(), word, &eds_Referable::word);
}

bool isFace(std::string_view label) {
  return inpS_faceOfFlow(label) > 0;
}

} // namespace

inpS_FluidLines::inpS_FluidLines(const inp_Keyword& keyword, eds_RecordKind form,
                                 const inpS_FormNames& names)
    : m_names(names), m_isOfAny(form == eds_FormKind::FluidBoundary),
      m_isOfFaces(form == eds_FormKind::FluidBoundaryElement),
      m_isOfNodes(form == eds_FormKind::FluidBoundaryNode),
      m_needsMagnitude(!inpS_saysYes(keyword, "user")) {}

bool inpS_FluidLines::IsThere(const cow_String& target) const {
  return std::ranges::any_of(std::initializer_list<std::string_view>{"surface", "nset", "elset"},
                             [&](std::string_view word) {
                               return !m_names.Find(referable(word), target).set.IsNull();
                             }) ||
         m_names.FindLabel(eds_FormType::Node, target).isKnown ||
         m_names.FindLabel(eds_FormType::Element, target).isKnown;
}

bool inpS_FluidLines::AreKnown(Words words) {
  const cow_List<cow_String>& all = words[labelColumn]->All();
  for (; m_knownLabels < all.size(); ++m_knownLabels)
    m_areKnown = m_areKnown && isLabel(all[m_knownLabels], m_isOfFaces || m_isOfAny);
  if (!m_isOfAny) return m_areKnown;
  const cow_List<cow_String>& targets = words[targetColumn]->All();
  for (; m_knownTargets < targets.size(); ++m_knownTargets)
    m_areKnown = m_areKnown && IsThere(targets[m_knownTargets]);
  return m_areKnown;
}

bool inpS_FluidLines::IsSound(const inp_ColumnPiece& piece, Words words) {
  if (!AreKnown(words)) return false;
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
  if (m_isOfAny && !IsThere(line.Text(targetColumn)))
    return inpS_LineFault{targetColumn, "There is no surface, node, element or set \"" +
                                            inp_Utils::Fold(line.Text(targetColumn)) + "\"."};
  if (m_isOfFaces && !isFace(label))
    return inpS_LineFault{labelColumn,
                          "\"" + label + "\" does not end in the number of a face, 1 to 6."};
  const bool isComplete =
      !label.empty() && (!m_needsMagnitude || line.Has(magnitudeColumn) || inpS_isOfRoutine(label));
  if (m_isOfNodes && !isComplete) return inpS_LineFault{-1, "Incomplete data line"};
  if (!label.empty() && !isLabel(label, m_isOfFaces || m_isOfAny))
    return inpS_LineFault{labelColumn,
                          "\"" + label + "\" is none of the labels of flows: " + listOfLabels() +
                              ". The line is kept as given.",
                          false, false};
  return {};
}
