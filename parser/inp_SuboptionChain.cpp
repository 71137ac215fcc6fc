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
  for (inp_KeywordList* chain : {&m_open, &m_apart})
    if (!chain->empty() && chain->back().ScopePtr() != keyword.ScopePtr()) chain->clear();
  if (row->parents.empty() || standsAlone(*row, *keyword.Body())) {
    m_open.clear();
    m_apart.clear();
  }
  const auto admits = [&](const inp_Keyword& open) {
    return table.IsSuboptionOf(keyword.Kind(), open.Kind());
  };
  // Nor must one in a wrong place, which may have sub-options of its own: a behavior of the
  // material that is open behind keywords of other subjects.
  const bool isApart =
      row->levels == inp_LevelsSub && !m_open.empty() && std::ranges::none_of(m_open, admits);
  inp_KeywordList& chain = isApart ? m_apart : m_open;
  if (!isApart) m_apart.clear();
  const auto parent = std::find_if(chain.rbegin(), chain.rend(), admits);
  chain.erase(parent.base(), chain.end());
  if (!chain.empty()) {
    inp_KeywordBody& owner = *chain.back().Body();
    keyword.Body()->parent = owner.kind;
    if (!owner.suboptions) owner.suboptions = std::make_shared<inp_KeywordList>();
    owner.suboptions->push_back(keyword);
  }
  chain.push_back(keyword);
}
