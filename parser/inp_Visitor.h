#pragma once

#include "parser/inp_MessageList.h"
#include <string_view>
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

  bool IsError() const { return !m_errors.IsEmpty(); }
  virtual void Report(); // hands the messages to wip_WIPBase::Instance() and empties the warnings
  void AddDiagnostics(const cow_List<std::pair<int, cow_String>>& lines); // (line, text) errors

  void AddError(wip_Message message) { m_errors.Add(std::move(message)); }
  void AddWarning(wip_Message message) { m_warnings.Add(std::move(message)); }
  // What of the deck is not in what comes of it, beside the message that tells so: "set entry".
  void LeaveOut(std::string_view what, long long count = 1) {
    if (count > 0) m_leftOut[cow_String(what)] += count;
  }
  const cow_List<wip_Message>& Errors() const { return m_errors.Messages(); }
  const cow_List<wip_Message>& Warnings() const { return m_warnings.Messages(); }

  // Inline: the table of a visitor's operations then leads to functions of its own library. The
  // loader would look up each of those of another one by its name, hundreds for every class at
  // every start.
#define INP_KEYWORD(Enm, ...)                                                                      \
  virtual void Visit##Enm(const inp_Keyword&) {}
#include "parser/inp_keywords.def"

private:
  inp_MessageList m_errors; // those handed over stay: a second Report repeats none
  inp_MessageList m_warnings;
  cow_Map<cow_String, long long> m_leftOut;
};
