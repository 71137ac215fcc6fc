#pragma once

#include "parser/inp_Keyword.h"

// Follows parts, instances, assemblies and steps through the deck, and reports those that are not
// closed and ends that close nothing.
class inp_ScopeTracker {
public:
  explicit inp_ScopeTracker(cow_List<wip_Message>& errors) : m_errors(errors) {}

  // The kind of scope a keyword opens; Model when it opens none.
  static inp_Scope::Kind KindOpenedBy(inp_KeywordEnm keyword);

  // The scope the keyword stands in; null at model level. Opens and closes scopes as it says.
  inp_ScopePtr Enter(const std::shared_ptr<inp_KeywordBody>& keyword);
  // The *STEP of the innermost scope; null when that is none.
  std::shared_ptr<inp_KeywordBody> OpenStep() const;
  // At the end of the deck.
  void Finish();

private:
  struct Open {
    std::shared_ptr<inp_KeywordBody> opener;
    inp_KeywordEnm closer;
    inp_ScopePtr scope;
  };
  inp_ScopePtr Current() const { return m_open.empty() ? nullptr : m_open.back().scope; }
  void OpenScope(const std::shared_ptr<inp_KeywordBody>& keyword, inp_Scope::Kind kind);
  void CloseScope(const std::shared_ptr<inp_KeywordBody>& keyword);
  void ReportUnclosed(const std::shared_ptr<inp_KeywordBody>& before);

  cow_List<wip_Message>& m_errors;
  cow_List<Open> m_open;
  int m_steps = 0;
};
