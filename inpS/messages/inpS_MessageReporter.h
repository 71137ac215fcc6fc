#pragma once

#include "inpS/messages/inpS_Message.h"

// Turns structured messages into texts and hands them to the host reporter of the calling thread.
class inpS_MessageReporter {
public:
  // Every message of the calling thread's container, in order. They stay in it.
  void Report() const;
  // Every one of these messages, in order. When the host's reporter throws, the rest is reported
  // nevertheless and the first exception goes on.
  void Report(const cow_List<inpS_Message>& messages) const;

  // One message: its text looked up where it has none, arguments substituted, header in front.
  void ReportMessage(inpS_Message message) const;
  void ReportFatalErrorMessage(inpS_Message message) const; // as an error, whatever its severity

  // in keyword *NODE, file "deck.inp", line 12(3): and a line end; empty without a keyword.
  static cow_String Header(const inpS_Message& message);
};
