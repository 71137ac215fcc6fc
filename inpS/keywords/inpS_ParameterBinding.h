#pragma once

#include "base/cow_Value.h"
#include <span>

class inp_Keyword;
class inp_Visitor;
class KvoSimDataRecord;
class utl_Stream;

// How a parameter's value and the record's field become each other.
enum class inpS_Codec : unsigned char {
  Flag,   // a bare name or YES; NO. Bool field
  Int,    // Int field
  Real,   // Real field
  Word,   // one of the words; Symbol field: the word's place among them is the symbol's number
  Choice, // one of the words, kept as text; Text field
  Name,   // any text; empty for a bare name. Text field
  Item    // a name of what has one, or one of several types: forms read and print it
};

// One parameter of a keyword and the field that keeps it: read and written back by one row. What is
// not given leaves the field unset; a field that was never set is not written, but for a word that
// is always told.
struct inpS_ParameterBinding {
  cow_String key;  // canonical: lower case without blanks
  cow_String name; // as decks have it
  int field = 0;
  inpS_Codec codec = inpS_Codec::Name;
  cow_List<std::string_view> words{}; // as decks have them; an empty one is never read or written
  bool always = false;
  bool readOnly = false; // another spelling of a parameter that is written by its own row
};
using inpS_ParameterBindings = cow_List<inpS_ParameterBinding>;

// Fills the fields of the record. A value that a row does not take is reported at its place and
// leaves the field unset and the parameter unread, for whoever keeps what is left; true when there
// was none.
bool inpS_readParameters(const inp_Keyword& keyword, std::span<const inpS_ParameterBinding> rows,
                         KvoSimDataRecord record, inp_Visitor& messages);

// Whether some value is none of the words that the language has for it.
bool inpS_hasUnknownWord(const inp_Keyword& keyword);
// The parameters whose values are such.
cow_List<cow_String> inpS_unknownWords(const inp_Keyword& keyword);

// ", NAME=VALUE" for every field that is set.
void inpS_printParameters(utl_Stream& out, std::span<const inpS_ParameterBinding> rows,
                          const KvoSimDataRecord& record);

// The place of a word in the row's words, blanks not counting: the word itself, or the only one
// that begins with it; -1 when there is none.
int inpS_wordPlace(const inpS_ParameterBinding& row, const cow_String& word);

cow_String inpS_wordList(const inpS_ParameterBinding& row); // for people, separated by ", "

// "NUMBERBACKSTRESSES" for "Number Back_Stresses": how values are compared.
cow_String inpS_bareWord(std::string_view text);
