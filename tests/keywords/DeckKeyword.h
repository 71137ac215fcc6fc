#pragma once

#include "inpS/messages/inpS_MessageContainer.h"
#include "parser/inp_Parser.h"

// The first keyword of a deck given as text.
inline inp_Keyword deckKeyword(const cow_String& deck) {
  return inp_Parser(deck, "", {}, "job.inp", true, true, false).Parse(false).at(0);
}

// What the thread's container holds, as the identifiers and arguments of its messages.
inline cow_List<cow_String> gatheredMessages() {
  cow_List<cow_String> gathered;
  for (const inpS_Message& message : inpS_MessageContainer::Instance().Messages()) {
    cow_String line = message.Text().empty() ? std::to_string(message.Id()) : message.Text();
    for (const inpS_MsgArg& arg : message.Args()) line += "|" + arg.AsString();
    gathered.push_back(line);
  }
  inpS_MessageContainer::Finalize();
  return gathered;
}
