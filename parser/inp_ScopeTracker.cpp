#include "parser/inp_ScopeTracker.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Utf8Text.h"
#include "parser/inp_Utils.h"
#include <algorithm>
#include <utility>

namespace {

using Kind = inp_Scope::Kind;

bool isCloser(inp_KeywordEnm keyword) {
  return keyword == inp_KwEndPart || keyword == inp_KwEndInstance || keyword == inp_KwEndAssembly ||
         keyword == inp_KwEndStep;
}

// Only instances stand within another scope. Whether one may stand outside an assembly is for those
// who convert it.
bool mayHold(Kind outer, Kind inner) {
  return outer == Kind::Assembly && inner == Kind::Instance;
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

inp_ScopePtr inp_ScopeTracker::Enter(const std::shared_ptr<inp_KeywordBody>& keyword) {
  const Kind opened = KindOpenedBy(keyword->kind);
  if (opened == Kind::Model && !isCloser(keyword->kind)) return Current();
  if (opened == Kind::Model) {
    CloseScope(keyword);
    return Current();
  }
  while (!m_open.empty() && !mayHold(m_open.back().scope->kind, opened)) ReportUnclosed(keyword);
  inp_ScopePtr outer = Current();
  OpenScope(keyword, opened);
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

void inp_ScopeTracker::CloseScope(const std::shared_ptr<inp_KeywordBody>& keyword) {
  const bool isOpen = std::any_of(m_open.begin(), m_open.end(),
                                  [&](const Open& open) { return open.closer == keyword->kind; });
  if (!isOpen) {
    m_errors.push_back(inp_Utils::MessageInKeyword(
        inp_Keyword(keyword, {}), "*" + keyword->name + " closes nothing that is open"));
    return;
  }
  while (m_open.back().closer != keyword->kind) ReportUnclosed(keyword);
  m_open.pop_back();
}

// Closes the innermost scope in the user's place.
void inp_ScopeTracker::ReportUnclosed(const std::shared_ptr<inp_KeywordBody>& before) {
  const Open open = std::move(m_open.back());
  m_open.pop_back();
  const inp_KeywordRow* closer = inp_KeywordTable::Instance().Row(open.closer);
  cow_String text = "*" + cow_String(closer ? closer->name : "END") + " is missing";
  if (!open.scope->name.empty()) text += " for \"" + inp_printable(open.scope->name, 80) + '"';
  wip_Message message = inp_Utils::MessageInKeyword(inp_Keyword(open.opener, {}), text);
  if (before)
    message.notes.push_back(
        {"it must stand before this *" + before->name, inp_Keyword(before, {}).Place()});
  m_errors.push_back(std::move(message));
}

std::shared_ptr<inp_KeywordBody> inp_ScopeTracker::OpenStep() const {
  const bool isOpen = !m_open.empty() && m_open.back().scope->kind == Kind::Step;
  return isOpen ? m_open.back().opener : nullptr;
}

void inp_ScopeTracker::Finish() {
  while (!m_open.empty()) ReportUnclosed(nullptr);
}
