#include "inpS/mesh/inpS_ElementSearch.h"
#include "parser/inp_Keyword.h"
#include <algorithm>

inpS_ElementSearch::inpS_ElementSearch(const inp_Keyword& keyword, const inp_ElementForm& form)
    : m_lists(keyword.Kind() == inp_KwElement || keyword.Kind() == inp_KwAssemblyElement),
      m_data(keyword.Data()), m_form(form) {}

inpS_ElementSearch::Place inpS_ElementSearch::OfLabel(int label, int which) const {
  return {FindRow([&](const Element& element) { return element.label == label && --which == 0; })};
}

inpS_ElementSearch::Place inpS_ElementSearch::OfWrongCount(int label, long long least,
                                                           long long most) const {
  return {FindRow([&](const Element& element) {
    const auto count = static_cast<long long>(element.nodes.size());
    return element.label == label && (element.odd || count < least || count > most);
  })};
}

inpS_ElementSearch::Place inpS_ElementSearch::OfNode(int node) const {
  const long long first = FindRow([&](const Element& element) {
    return std::find(element.nodes.begin(), element.nodes.end(), node) != element.nodes.end();
  });
  if (first < 0) return {};
  long long end = first;
  inp_elementFields(m_data, m_form, first, end);
  for (long long row = first; row < end; ++row)
    for (int col = row == first ? 1 : 0; col < m_data.Cols(row); ++col)
      if (m_data.IsInteger(row, col) && m_data.AsInt64(row, col) == node) return {row, col};
  return {first};
}

long long inpS_ElementSearch::FindRow(const std::function<bool(const Element&)>& wanted) const {
  long long found = -1;
  if (!m_lists) return found;
  inp_streamElements(
      m_data, m_form, [](const inp_ElementPiece&) {},
      [&](const inp_ElementPiece& piece) {
        std::size_t node = 0, odd = 0;
        for (std::size_t n = 0; n < piece.labels.size() && found < 0; ++n) {
          const auto count = static_cast<std::size_t>(piece.counts[n]);
          const bool isOdd =
              odd < piece.odd.size() && piece.odd[odd].slot == static_cast<long long>(n);
          odd += isOdd;
          if (wanted({piece.labels[n], piece.nodes.subspan(node, count), isOdd}))
            found = RowOf(piece.firstRow, n);
          node += count;
        }
      });
  return found;
}

long long inpS_ElementSearch::RowOf(long long firstRow, std::size_t element) const {
  long long row = firstRow;
  for (std::size_t n = 0; n < element; ++n) inp_elementFields(m_data, m_form, row, row);
  while (row < m_data.Rows() && m_data.Cols(row) == 0) ++row;
  return row;
}
