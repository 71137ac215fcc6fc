#pragma once

#include "parser/inp_Keyword.h"

class inp_Visitor;

// A field or value that names something behind dots: instance.SET, instance.12, "i.1"."a b". The
// last piece is a label when it is an integer, unless it stands in quotes: I."7" names a set.
struct inpS_ScopedField {
  cow_String instance; // empty: nothing stands in front
  cow_String name;     // of the set, or the label's digits
  bool isLabel = false;
  // What stands in front of the instance: I.J.12 is 12 of J. The assembly's name may, as the first
  // part of a full name; anything else takes no part and is worth a word.
  cow_String dropped;

  bool IsScoped() const { return !instance.empty(); }
  long long Label() const; // far beyond all labels when there are more digits than they may have
};

inpS_ScopedField inpS_scopedField(std::string_view asWritten);

// Warns of what takes no part in a field's name.
void inpS_reportDropped(const inp_Keyword& keyword, long long row, int col,
                        const inpS_ScopedField& field, inp_Visitor& messages);
