#include "inpS/mesh/inpS_ElementsAsText.h"
#include "base/utl_Controls.h"
#include "database/KvoObjLabeler.h"
#include "inpS/keywords/inpS_BlankLine.h"
#include "inpS/mesh/inpS_GenerationLimit.h"
#include "inpS/mesh/inpS_MeshSetReader.h"
#include "parser/inp_BulkDecode.h"
#include "parser/inp_Utils.h"
#include <algorithm>
#include <cstdlib>

namespace {

constexpr int kMostNodes = 100000; // as of a type that nobody describes
constexpr long long kMaxLabel = 999999999;

// As far as they can be told without knowing how many nodes an element has: one that ends in a
// comma goes on.
cow_List<int> elementLabels(const inp_Keyword& keyword) {
  inp_ElementForm form;
  form.maxNodes = kMostNodes;
  cow_List<int> labels;
  inp_streamElements(
      keyword.Data(), form, [](const inp_ElementPiece&) {},
      [&](const inp_ElementPiece& piece) {
        labels.insert(labels.end(), piece.labels.begin(), piece.labels.end());
      });
  return labels;
}

long long integerAt(const inp_DataArray& data, long long row, int col, long long absent) {
  return col < data.Cols(row) && data.IsInteger(row, col) ? data.AsInt64(row, col) : absent;
}

long long countAt(const inp_DataArray& data, long long row, int col) {
  return std::max(1LL, integerAt(data, row, col, 1));
}

// Whether a line that generates elements has labels for all of them, and no more than anyone wants.
bool isSensible(const inp_DataArray& data, long long row) {
  long long made = 1;
  long long span = 1;
  for (const int col : {1, 4, 7}) {
    const long long count = countAt(data, row, col);
    const long long step = integerAt(data, row, col + 2, 1);
    if (step > kMaxLabel || step < -kMaxLabel || count > inpS_mostGenerated / made) return false;
    made *= count;
    span += (count - 1) * std::abs(step);
  }
  return made <= span;
}

} // namespace

void inpS_ElementsAsText::Keep(const inp_Keyword& keyword, inpS_MeshScope& scope,
                               wip_Message message) {
  Keep(keyword, scope, std::move(message), "elset", elementLabels(keyword));
}

void inpS_ElementsAsText::KeepSet(const inp_Keyword& keyword) {
  m_ledger.KeepAsText(
      keyword, {{}, {}, "names a set that the model has without the step, which cannot change it"});
  keyword.ReferAll();
}

bool inpS_ElementsAsText::KeepCopiedFromText(const inp_Keyword& keyword, inpS_MeshScope& scope) {
  if (m_scopes.TextElements().IsEmpty()) return false; // as nearly always
  const cow_List<int> labels = CopiedLabels(keyword, scope);
  if (labels.empty()) return false;
  Keep(keyword, scope,
       inp_Utils::MessageInKeyword(keyword, "Elements of a keyword that is kept as text cannot be "
                                            "copied; this one is kept as text, too."),
       "newset", labels);
  return true;
}

cow_List<long long> inpS_ElementsAsText::KeepLinesFromText(const inp_Keyword& keyword,
                                                           inpS_MeshScope& scope) {
  cow_List<long long> rows;
  if (m_scopes.TextElements().IsEmpty()) return rows; // as nearly always
  const inp_DataArray& data = keyword.Data();
  cow_List<int> labels;
  cow_String lines;
  bool isAll = true;
  for (long long row = 0; row < data.Rows(); ++row) {
    if (inpS_isBlank(data, row)) continue;
    const cow_List<int> made = GeneratedLabels(data, row, scope);
    isAll = isAll && !made.empty();
    if (made.empty()) continue;
    rows.push_back(row);
    lines += cow_String(data.RowText(row)) + '\n';
    labels.insert(labels.end(), made.begin(), made.end());
    m_scopes.TextElements().Add(scope.elementOccurrence, made); // the next line may start from them
  }
  if (rows.empty()) return rows;
  utl_maskControlsInLines(lines);
  const long long first = rows.front();
  wip_Message message = inp_Utils::MessageAtRow(
      keyword, first,
      isAll ? cow_String("Elements of a keyword that is kept as text cannot be repeated; this one "
                         "is kept as text, too.")
            : "Elements of a keyword that is kept as text cannot be repeated; " +
                  (rows.size() == 1 ? cow_String("this line is")
                                    : std::to_string(rows.size()) + " lines are") +
                  " kept as text, too.");
  Keep(keyword, scope, std::move(message), "elset", labels,
       isAll ? cow_String() : keyword.HeadText() + lines);
  return rows;
}

void inpS_ElementsAsText::Keep(const inp_Keyword& keyword, inpS_MeshScope& scope,
                               wip_Message message, std::string_view setParameter,
                               const cow_List<int>& labels, cow_String text) {
  message.notes.push_back(
      {"sets and surfaces that name its elements are stored without them, and written with "
       "them again",
       {}});
  m_messages.AddError(std::move(message));
  m_ledger.KeepAsText(keyword, {{}, {}, {}, true, std::move(text)});
  m_scopes.TextElements().Add(scope.elementOccurrence, labels);
  if (const inp_Item* name = m_sets.FindName(keyword, setParameter))
    m_textSets.push_back({&scope, inpS_SetKind::Elements, name->AsString(), keyword, labels});
  keyword.ReferAll(); // the text has all of it
}

// None, when the line does not start from an element that is text alone.
cow_List<int> inpS_ElementsAsText::GeneratedLabels(const inp_DataArray& data, long long row,
                                                   const inpS_MeshScope& scope) const {
  cow_List<int> labels;
  const long long master = integerAt(data, row, 0, 0);
  if (master < 1 || master > kMaxLabel) return labels;
  const int label = static_cast<int>(master);
  if (!m_scopes.TextElements().Has(scope.elementOccurrence, label) ||
      m_elements.ConvertInstanceLabel(scope.elementOccurrence, label) >= 0)
    return labels;
  cow_List<long long> made{master};
  if (!isSensible(data, row)) return {label};
  for (const int col : {1, 4, 7}) {
    const long long count = countAt(data, row, col);
    const long long step = integerAt(data, row, col + 2, 1);
    const std::size_t before = made.size();
    for (long long n = 1; n < count; ++n)
      for (std::size_t i = 0; i < before; ++i) made.push_back(made[i] + n * step);
  }
  for (const long long one : made)
    if (one > 0 && one <= kMaxLabel) labels.push_back(static_cast<int>(one));
  return labels;
}

cow_List<int> inpS_ElementsAsText::CopiedLabels(const inp_Keyword& keyword,
                                                const inpS_MeshScope& scope) const {
  const inp_Item* old = keyword.Find("oldset");
  const inp_Item* shift = keyword.Find("elementshift");
  cow_List<int> labels;
  if (!old || !shift) return labels;
  for (const TextSet& set : m_textSets)
    if (set.kind == inpS_SetKind::Elements && set.scope == &scope && set.name == old->AsString())
      for (const int label : set.labels) labels.push_back(label + shift->AsInt());
  return labels;
}

void inpS_ElementsAsText::KeepGenerator(const inp_Keyword& keyword, inpS_MeshScope& scope) {
  const bool copies = keyword.Kind() == inp_KwNcopy;
  if (keyword.Kind() != inp_KwNmap)
    if (const inp_Item* name = m_sets.FindName(keyword, copies ? "newset" : "nset"))
      m_textSets.push_back({&scope, inpS_SetKind::Nodes, name->AsString(), keyword, {}});
  m_ledger.KeepAsText(keyword, {{},
                                {},
                                keyword.Kind() == inp_KwNmap
                                    ? "moves no nodes, since its kind is not known"
                                    : "makes no nodes, since its kind is not known"});
  keyword.ReferAll();
}

// A label that an element of a known type has, too, names that one.
void inpS_ElementsAsText::AddSets() {
  for (const TextSet& set : m_textSets) {
    const bool isNew = !set.scope->sets.Find(set.kind, set.name);
    inpS_SetDefinition& named = set.scope->sets.FindOrAdd(set.kind, set.name);
    if (isNew) inpS_beginRuns(named, set.keyword);
    inpS_SetEntry known;
    for (const int label : set.labels) {
      if (m_elements.ConvertInstanceLabel(set.scope->elementOccurrence, label) >= 0)
        known.labels.Append(label);
      else
        named.elementsAsText.push_back(label);
    }
    std::ranges::sort(named.elementsAsText);
    if (known.labels.Size() == 0) continue;
    named.isStored = false;
    named.keywords.push_back(set.keyword);
    known.keyword = static_cast<int>(named.keywords.size()) - 1;
    named.entries.push_back(std::move(known));
  }
}
