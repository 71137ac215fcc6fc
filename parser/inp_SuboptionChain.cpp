#include "parser/inp_SuboptionChain.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>

namespace {

bool hasElset(const inp_KeywordBody& keyword) {
  return std::any_of(keyword.parameters.begin(), keyword.parameters.end(),
                     [](const inp_Parameter& parameter) { return parameter.name == "elset"; });
}

// A keyword that can stand alone and names its elements does not need a parent (*SPRING, ELSET=…
// behind *JOINT is a spring of its own).
bool standsAlone(const inp_KeywordRow& row, const inp_KeywordBody& keyword) {
  return row.levels != inp_LevelsSub && hasElset(keyword);
}

} // namespace

void inp_SuboptionChain::Attach(const inp_Keyword& keyword) {
  const inp_KeywordTable& table = inp_KeywordTable::Instance();
  const inp_KeywordRow* row = table.Row(keyword.Kind());
  // A misspelt sub-option must not tear those behind it from their keyword.
  if (!row) return;
  if (!m_open.empty() && m_open.back().ScopePtr() != keyword.ScopePtr()) m_open.clear();
  if (row->parents.empty() || standsAlone(*row, *keyword.Body())) m_open.clear();
  const auto admits = [&](const inp_Keyword& open) {
    return table.IsSuboptionOf(keyword.Kind(), open.Kind());
  };
  const auto parent = std::find_if(m_open.rbegin(), m_open.rend(), admits);
  // Nor must one in a wrong place.
  if (parent == m_open.rend() && row->levels == inp_LevelsSub && !m_open.empty()) return;
  m_open.erase(parent.base(), m_open.end());
  if (!m_open.empty()) {
    inp_KeywordBody& owner = *m_open.back().Body();
    keyword.Body()->parent = owner.kind;
    if (!owner.suboptions) owner.suboptions = std::make_shared<inp_KeywordList>();
    owner.suboptions->push_back(keyword);
  }
  m_open.push_back(keyword);
}
