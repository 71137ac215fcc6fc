#pragma once

#include "base/cow_Value.h"

// One place in a deck. Lines and columns count from 1; 0 means unknown.
struct wip_Place {
  cow_String file;
  long long line = 0;
  int column = 0;
  int width = 0;         // characters to underline from column on; 0 or 1: a single caret
  cow_String sourceLine; // the text of that line, cut to a sensible length; may be empty
  cow_List<cow_String> includedFrom; // "file:line" of the including lines, innermost first
};

// A note that belongs to a message: the other party ("first defined here"), a near name, a remedy.
struct wip_Note {
  cow_String text;
  wip_Place place;
};

// A message on its way to the host: a plain text, or a text with the place it is about. Visitors
// make it with inp_Utils::MessageInKeyword; the host decides how to show it.
struct wip_Message {
  wip_Message() = default;
  wip_Message(const char* text) : text(text) {}
  wip_Message(cow_String text) : text(std::move(text)) {}

  // The message as one text: "in keyword *NODE, file "deck.inp", line 12: " and the text.
  cow_String AsText() const;

  cow_String text;
  cow_String keyword; // deck name in upper case without the asterisk; empty when about none
  wip_Place place;
  cow_List<wip_Note> notes;
  bool tellsKept = false; // tells only that a keyword of the language is kept as text
  long long count = 1;    // of the faults it tells of: more for those that are only counted
};
