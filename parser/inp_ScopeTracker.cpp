#include "parser/inp_ScopeTracker.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Utf8Text.h"
#include "parser/inp_Utils.h"
#include <algorithm>
#include <utility>

namespace {

using Kind = inp_Scope::Kind;

// Only instances stand within another scope, and parts that are read as if they stood before it.
// Whether an instance may stand outside an assembly is for those who convert it.
bool mayHold(Kind outer, Kind inner) {
  return outer == Kind::Assembly && (inner == Kind::Instance || inner == Kind::Part);
}

cow_String valueOf(const inp_KeywordBody& keyword, std::string_view name) {
  for (const inp_Parameter& parameter : keyword.parameters)
    if (parameter.name == name) return parameter.value.AsString();
  return {};
}

} // namespace

inp_Scope::Kind inp_ScopeTracker::KindOpenedBy(inp_KeywordEnm keyword) {
  switch (keyword) {
  case inp_KwPart:
    return Kind::Part;
  case inp_KwInstance:
    return Kind::Instance;
  case inp_KwAssembly:
    return Kind::Assembly;
  case inp_KwStep:
    return Kind::Step;
  default:
    return Kind::Model;
  }
}

bool inp_ScopeTracker::IsCloser(inp_KeywordEnm keyword) {
  return keyword == inp_KwEndPart || keyword == inp_KwEndInstance || keyword == inp_KwEndAssembly ||
         keyword == inp_KwEndStep;
}

bool inp_ScopeTracker::IsOpenFor(inp_KeywordEnm closer) const {
  return std::ranges::find(m_open, closer, &Open::closer) != m_open.end();
}

const inp_ScopeTracker::Open* inp_ScopeTracker::MustEndBefore(inp_KeywordEnm keyword) const {
  if (m_open.empty()) return nullptr;
  const Open& last = m_open.back();
  if (IsCloser(keyword)) return last.closer != keyword && IsOpenFor(keyword) ? &last : nullptr;
  const Kind opened = KindOpenedBy(keyword);
  return opened == Kind::Model || mayHold(last.scope->kind, opened) ? nullptr : &last;
}

inp_ScopePtr inp_ScopeTracker::Enter(const std::shared_ptr<inp_KeywordBody>& keyword) {
  while (MustEndBefore(keyword->kind)) m_open.pop_back();
  const Kind opened = KindOpenedBy(keyword->kind);
  // What opens and what closes a scope stand outside of it; a part's stand in none.
  const bool isOfPart = opened == Kind::Part || keyword->kind == inp_KwEndPart;
  if (IsCloser(keyword->kind) && IsOpenFor(keyword->kind)) m_open.pop_back();
  inp_ScopePtr outer = isOfPart ? nullptr : Current();
  if (opened != Kind::Model) OpenScope(keyword, opened);
  return outer;
}

void inp_ScopeTracker::OpenScope(const std::shared_ptr<inp_KeywordBody>& keyword, Kind kind) {
  auto scope = std::make_shared<inp_Scope>();
  scope->kind = kind;
  scope->name = valueOf(*keyword, "name");
  if (kind == Kind::Instance) scope->partName = valueOf(*keyword, "part");
  if (kind == Kind::Step) scope->ordinal = ++m_steps;
  m_open.push_back({keyword, inp_KeywordTable::Instance().CloserOf(keyword->kind), scope});
}
