#pragma once

#include "base/wip_Message.h"
#include <utility>

class inp_Keyword;
using inp_KeywordListRef = const cow_List<inp_Keyword>&;

// Double dispatch over keywords: one operation per keyword of the deck language, each doing nothing
// by default. A visitor overrides the keywords it converts and gathers its messages; when the walk
// ends they go to the host reporter.
class inp_Visitor {
public:
  virtual ~inp_Visitor();

  virtual void Visit(const inp_Keyword& keyword); // dispatches to VisitXxx
  virtual void VisitList(inp_KeywordListRef keywords);
  virtual void VisitListAndReport(inp_KeywordListRef keywords);

  bool IsError() const { return !m_errors.empty(); }
  virtual void Report(); // hands the messages to wip_WIPBase::Instance() and empties the warnings
  void AddDiagnostics(const cow_List<std::pair<int, cow_String>>& lines); // (line, text) errors

  void AddError(wip_Message message) { m_errors.push_back(std::move(message)); }
  void AddWarning(wip_Message message) { m_warnings.push_back(std::move(message)); }
  const cow_List<wip_Message>& Errors() const { return m_errors; }
  const cow_List<wip_Message>& Warnings() const { return m_warnings; }

#define INP_KEYWORD(Enm, ...) virtual void Visit##Enm(const inp_Keyword& keyword);
#include "parser/inp_keywords.def"

private:
  cow_List<wip_Message> m_errors;
  cow_List<wip_Message> m_warnings;
  std::size_t m_reported = 0; // errors already handed over: a second Report repeats none
};
