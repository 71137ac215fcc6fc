#include "parser/inp_Visitor.h"
#include "base/utl_Interruption.h"
#include "base/wip_WIPBase.h"
#include "parser/inp_Keyword.h"
#include <iterator>
#include <utility>

namespace {

using Operation = void (inp_Visitor::*)(const inp_Keyword&);

// By kind; the null keyword has none.
constexpr Operation operations[] = {
    nullptr,
#define INP_KEYWORD(Suffix, ...) &inp_Visitor::Visit##Suffix,
#include "parser/inp_keywords.def"
};
static_assert(std::size(operations) == inp_KeywordEnd);

constexpr int errorLevel = 1;

} // namespace

inp_Visitor::~inp_Visitor() = default;

void inp_Visitor::Visit(const inp_Keyword& keyword) {
  const inp_KeywordEnm kind = keyword.Kind();
  if (kind > inp_NullKeyword && kind < inp_KeywordEnd) (this->*operations[kind])(keyword);
}

void inp_Visitor::VisitList(inp_KeywordListRef keywords) {
  for (const inp_Keyword& keyword : keywords) {
    utl_stopIfAsked();
    Visit(keyword);
  }
}

void inp_Visitor::VisitListAndReport(inp_KeywordListRef keywords) {
  VisitList(keywords);
  Report();
}

void inp_Visitor::Report() {
  wip_WIPBase& reporter = wip_WIPBase::Instance();
  const cow_List<wip_Message> errors = m_errors.TakeNew();
  if (!errors.empty()) reporter.ErrorList(errors, errorLevel);
  const cow_List<wip_Message> warnings = std::exchange(m_warnings, {}).TakeNew();
  if (!warnings.empty()) reporter.WarningList(warnings);
  for (const auto& [what, count] : std::exchange(m_leftOut, {})) reporter.LeftOut(what, count);
}

void inp_Visitor::AddDiagnostics(const cow_List<std::pair<int, cow_String>>& lines) {
  for (const auto& [line, text] : lines) {
    wip_Message message(text);
    message.place.line = line;
    AddError(std::move(message));
  }
}
