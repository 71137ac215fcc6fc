#pragma once

#include "parser/inp_UnreadText.h"

// Where the keyword lines of a text stand and what lies between them, found in one fast pass that
// neither splits nor converts anything. Pages of a large file leave memory behind the pass.

struct inp_KeywordMark {
  const char* at = nullptr;     // the asterisk
  long long line = 0;           // from 0
  long long commentsBefore = 0; // comment lines of the text before it
  bool ascii = true;            // no byte above 127 from here to the next mark
};

struct inp_Structure {
  cow_List<inp_KeywordMark> marks;   // in order
  cow_List<inp_UnreadText> unread{}; // in order
  long long lines = 0;
  long long comments = 0;
  bool ascii = true;         // the same before the first mark
  const char* nul = nullptr; // the first zero byte: the file is no text
};

inp_Structure inp_findStructure(const inp_DeckText& text);
