#pragma once

#include "inpS/messages/inpS_Message.h"

// Gathers messages and reports them, in order, when it goes.
class inpS_MsgContainerBase {
public:
  inpS_MsgContainerBase() = default;
  virtual ~inpS_MsgContainerBase();
  inpS_MsgContainerBase(const inpS_MsgContainerBase&) = delete;
  inpS_MsgContainerBase& operator=(const inpS_MsgContainerBase&) = delete;

  void AddMessage(inpS_Message message);
  // A message without a location (negative line) takes the keyword's.
  void AddMessage(inpS_Message message, const inp_Keyword& keyword);

  const cow_List<inpS_Message>& Messages() const { return m_messages; }
  // Beyond inp_MessageList::limit messages are counted and no longer gathered.
  // How many messages of severity error were added so far, reported or not.
  int ErrorCount() const { return m_errorCount; }

  // Reports and forgets what was gathered. What the host's reporter throws passes through, after
  // the remaining messages have been reported too.
  void Release();

private:
  cow_List<inpS_Message> m_messages;
  long long m_moreErrors = 0;
  long long m_moreWarnings = 0;
  int m_errorCount = 0;
};
