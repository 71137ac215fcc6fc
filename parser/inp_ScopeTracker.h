#pragma once

#include "parser/inp_Keyword.h"

// Follows parts, instances, assemblies and steps through the deck.
class inp_ScopeTracker {
public:
  struct Open {
    std::shared_ptr<inp_KeywordBody> opener;
    inp_KeywordEnm closer;
    inp_ScopePtr scope;
  };

  // The kind of scope a keyword opens; Model when it opens none.
  static inp_Scope::Kind KindOpenedBy(inp_KeywordEnm keyword);
  // Whether the keyword closes a scope.
  static bool IsCloser(inp_KeywordEnm keyword);

  // The scope the keyword stands in; null at model level. Opens and closes scopes as it says: those
  // that MustEndBefore tells are closed by it.
  inp_ScopePtr Enter(const std::shared_ptr<inp_KeywordBody>& keyword);
  // The innermost scope that must have ended before the keyword; null: none must.
  const Open* MustEndBefore(inp_KeywordEnm keyword) const;
  const Open* Innermost() const { return m_open.empty() ? nullptr : &m_open.back(); }
  // Whether there is a scope that the keyword closes.
  bool IsOpenFor(inp_KeywordEnm closer) const;

private:
  inp_ScopePtr Current() const { return m_open.empty() ? nullptr : m_open.back().scope; }
  void OpenScope(const std::shared_ptr<inp_KeywordBody>& keyword, inp_Scope::Kind kind);

  cow_List<Open> m_open;
  int m_steps = 0;
};
