#pragma once

#include "base/cow_Value.h"
#include <span>

class inp_Keyword;
class inp_Visitor;
class KvoSimDataRecord;

// How a parameter's value and the record's field become each other.
enum class inpS_Codec : unsigned char {
  Flag,   // a flag or YES; Bool field
  Real,   // Real field
  Word,   // one of the words; Symbol field: the word's place among them is the symbol's number
  Choice, // one of the words, kept as text; Text field
  Name    // Text field
};

// One parameter of a keyword and the field that keeps it: read and written back from one row. What
// is not given leaves the field unset; a field that was never set is not written, but for a word
// that is always told.
struct inpS_ParameterRow {
  const char* name;     // canonical: lower case without blanks
  const char* deckName; // as decks have it
  int field;
  inpS_Codec codec;
  const char* words = ""; // separated by bars; an empty one is never read or written
  bool always = false;
  bool readOnly = false; // another spelling of a parameter that is written by its own row
};

// Fills the fields of the record. A value that a row does not take is reported at its place and
// leaves the field unset; true when there was none.
bool inpS_readParameters(const inp_Keyword& keyword, std::span<const inpS_ParameterRow> rows,
                         KvoSimDataRecord record, inp_Visitor& messages);

// The place of a word in the row's words, blanks not counting; -1 when it is none of them.
int inpS_wordPlace(const inpS_ParameterRow& row, const cow_String& word);
cow_String inpS_wordAt(const inpS_ParameterRow& row, int place);
cow_String inpS_wordList(const inpS_ParameterRow& row); // for messages
