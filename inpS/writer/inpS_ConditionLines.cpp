#include "inpS/writer/inpS_ConditionLines.h"

namespace inpS_ConditionLines {

cow_String Label(const inpS_DeckLabels& labels, bool nodes, int64_t flat) {
  const KvoObjLabeler& labeler = nodes ? labels.nodes : labels.elements;
  int64_t ordinal = 0;
  const int occurrence = labeler.OccurrenceOfFlat(flat, ordinal);
  if (occurrence < 0) return {};
  const cow_String& instance = labels.InstanceOf(nodes, occurrence);
  return (instance.empty() ? "" : instance + ".") +
         std::to_string(labeler.Labels(occurrence).Label(ordinal));
}

cow_List<std::pair<int, int>> Runs(uint64_t degrees) {
  cow_List<std::pair<int, int>> runs;
  for (int degree = 1; degree <= inpS_Degrees::kMost; ++degree) {
    if ((degrees & inpS_Degrees::Bit(degree)) == 0) continue;
    if (!runs.empty() && runs.back().second == degree - 1)
      runs.back().second = degree;
    else
      runs.emplace_back(degree, degree);
  }
  return runs;
}

void Add(cow_String& lines, const cow_List<cow_String>& fields, bool goesOn) {
  constexpr std::size_t perLine = 8;
  std::size_t count = fields.size();
  while (!goesOn && count > 0 && fields[count - 1].empty()) --count;
  for (std::size_t n = 0; n < count; ++n) {
    if (n > 0) lines += goesOn && n % perLine == 0 ? ",\n" : ", ";
    lines += fields[n];
  }
  if (count > 0) lines += '\n';
}

bool IsOfNodes(const inpS_ExcitationKind& kind) {
  return kind.target >= 0 &&
         kind.info->columnItems.front().alternatives.front().type == eds_FormType::Node;
}

} // namespace inpS_ConditionLines
