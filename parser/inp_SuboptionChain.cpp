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

bool isContainer(inp_KeywordEnm kind) {
  return kind == inp_KwMaterial || kind == inp_KwGasketBehavior;
}

bool isInStep(const inp_Keyword& keyword) {
  return keyword.Scope().kind == inp_Scope::Kind::Step;
}

// What is the whole model's wherever it stands: a written deck has it before its steps, and what it
// stood between goes together there.
bool isOfModelIn(const inp_Keyword& step) {
  return isInStep(step) && (step.Kind() == inp_KwAmplitude || step.Kind() == inp_KwNset ||
                            step.Kind() == inp_KwElset);
}

bool admits(const inp_Keyword& open, const inp_Keyword& keyword) {
  return inp_KeywordTable::Instance().IsSuboptionOf(keyword.Kind(), open.Kind());
}

bool anyAdmits(const inp_KeywordList& chain, const inp_Keyword& keyword) {
  return std::ranges::any_of(chain, [&](const inp_Keyword& open) { return admits(open, keyword); });
}

bool isNameless(const inp_Keyword& keyword) {
  return isContainer(keyword.Kind()) && keyword.StringOf("name", "").empty();
}

} // namespace

// A step keeps its own; the model's materials know nothing of them.
void inp_SuboptionChain::CloseOpen() {
  if (!m_open.empty() && isContainer(m_open.front().Kind()) && !isInStep(m_open.front()))
    m_held.insert(m_held.begin() + (m_isResumed ? 1 : 0), std::move(m_open));
  m_open.clear();
  m_apart.clear();
  m_isResumed = false;
}

// One without a name opens nothing: what follows goes on with the one before it of its kind. False:
// there is none, and what follows must not go to one of the other kind.
bool inp_SuboptionChain::Resume(const inp_Keyword& nameless) {
  const auto isOfKind = [&](const inp_KeywordList& chain) {
    return !chain.empty() && chain.front().Kind() == nameless.Kind();
  };
  if (isInStep(nameless) || isOfKind(m_open)) return true;
  if (std::ranges::none_of(m_held, isOfKind)) return false;
  CloseOpen();
  const auto held = std::ranges::find_if(m_held, isOfKind);
  std::rotate(m_held.begin(), held, std::next(held));
  return m_isResumed = true;
}

inp_KeywordList& inp_SuboptionChain::ChainFor(const inp_Keyword& keyword) {
  // One in a wrong place, which may have sub-options of its own, must not tear those behind it from
  // their keyword either.
  const bool isSub = inp_KeywordTable::Instance().Row(keyword.Kind())->levels == inp_LevelsSub;
  if (anyAdmits(m_open, keyword)) return m_open;
  if (!isSub) {
    CloseOpen();
    return m_open;
  }
  if (anyAdmits(m_apart, keyword)) return m_apart;
  // A behavior goes on with what may stand under it until another material, or gasket behavior,
  // opens: that one is of its subject.
  const bool isOpen = m_isResumed || m_open.empty() || !isContainer(m_open.front().Kind());
  if (isInStep(keyword) || m_held.empty()) return m_open.empty() ? m_open : m_apart;
  if (isOpen && anyAdmits(m_held.front(), keyword)) return m_held.front();
  const auto held = std::ranges::find_if(
      m_held, [&](const auto& chain) { return admits(chain.front(), keyword); });
  if (held != m_held.end()) {
    std::rotate(m_held.begin(), held, std::next(held));
    m_isResumed = true;
    return m_held.front();
  }
  return m_open.empty() ? m_open : m_apart;
}

void inp_SuboptionChain::Attach(const inp_Keyword& keyword) {
  const inp_KeywordRow* row = inp_KeywordTable::Instance().Row(keyword.Kind());
  // A misspelt sub-option must not tear those behind it from their keyword.
  if (!row) return;
  if (isNameless(keyword) && Resume(keyword)) return;
  if (!m_open.empty() && m_open.back().ScopePtr() != keyword.ScopePtr()) CloseOpen();
  if (!m_apart.empty() && m_apart.back().ScopePtr() != keyword.ScopePtr()) m_apart.clear();
  if (isOfModelIn(keyword)) {
    m_apart.assign(1, keyword);
    return;
  }
  if (row->parents.empty() || standsAlone(*row, *keyword.Body())) CloseOpen();
  if (isContainer(keyword.Kind()) && !isInStep(keyword))
    std::erase_if(m_held, [&](const auto& held) { return held.front().Kind() == keyword.Kind(); });
  inp_KeywordList& chain = ChainFor(keyword);
  if (&chain != &m_apart) m_apart.clear();
  const auto parent = std::find_if(chain.rbegin(), chain.rend(),
                                   [&](const inp_Keyword& open) { return admits(open, keyword); });
  chain.erase(parent.base(), chain.end());
  if (!chain.empty()) {
    inp_KeywordBody& owner = *chain.back().Body();
    keyword.Body()->parent = owner.kind;
    if (!owner.suboptions) owner.suboptions = std::make_shared<inp_KeywordList>();
    owner.suboptions->push_back(keyword);
  }
  chain.push_back(keyword);
}
