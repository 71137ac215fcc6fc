#include "inpS/messages/inpS_MsgContainerBase.h"
#include "inpS/messages/inpS_MessageReporter.h"
#include <utility>

inpS_MsgContainerBase::~inpS_MsgContainerBase() {
  try {
    Release();
  } catch (...) {
    // The host has been given every message; its exception has nowhere to go from here. Who wants
    // it calls Release.
  }
}

void inpS_MsgContainerBase::AddMessage(inpS_Message message) {
  if (message.GetSeverity() == inpS_Message::Error || message.IsFatal()) ++m_errorCount;
  m_messages.push_back(std::move(message));
}

void inpS_MsgContainerBase::AddMessage(inpS_Message message, const inp_Keyword& keyword) {
  if (message.Line() < 0) message.SetKeyword(keyword);
  AddMessage(std::move(message));
}

void inpS_MsgContainerBase::Release() {
  if (m_messages.empty()) return;
  const cow_List<inpS_Message> messages = std::exchange(m_messages, {});
  inpS_MessageReporter().Report(messages);
}
