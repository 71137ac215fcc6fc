#include "inpS/messages/inpS_MsgContainerBase.h"
#include "inpS/messages/inpS_MessageReporter.h"
#include "parser/inp_MessageList.h"
#include <utility>

namespace {

void appendMore(cow_List<inpS_Message>& messages, long long count, int severity) {
  if (count == 0) return;
  inpS_Message more(inp_MessageList::More(count).text);
  more.SetSeverity(severity);
  more.SetCount(count);
  messages.push_back(std::move(more));
}

} // namespace

inpS_MsgContainerBase::~inpS_MsgContainerBase() {
  try {
    Release();
  } catch (...) {
    // The host has been given every message; its exception has nowhere to go from here. Who wants
    // it calls Release.
  }
}

void inpS_MsgContainerBase::AddMessage(inpS_Message message) {
  const bool isError = message.GetSeverity() == inpS_Message::Error || message.IsFatal();
  if (isError) ++m_errorCount;
  if (m_messages.size() < inp_MessageList::limit)
    m_messages.push_back(std::move(message));
  else
    ++(isError ? m_moreErrors : m_moreWarnings);
}

void inpS_MsgContainerBase::AddMessage(inpS_Message message, const inp_Keyword& keyword) {
  if (message.Line() < 0) message.SetKeyword(keyword);
  AddMessage(std::move(message));
}

void inpS_MsgContainerBase::Release() {
  if (m_messages.empty()) return;
  cow_List<inpS_Message> messages = std::exchange(m_messages, {});
  appendMore(messages, std::exchange(m_moreErrors, 0), inpS_Message::Error);
  appendMore(messages, std::exchange(m_moreWarnings, 0), inpS_Message::Note);
  inpS_MessageReporter().Report(messages);
}
