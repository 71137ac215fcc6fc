#pragma once

#include "base/cow_Value.h"

class inp_Keyword;
class inp_Visitor;
class inpS_ElementParameters;
struct inp_ElementForm;

// A node named by its instance ("Inst-1.17") in an element of the assembly.
struct inpS_ScopedNode {
  long long element; // position among the elements read
  int index;         // among its nodes
  cow_String instance;
  int label;
  long long row; // where it is named
  int col;
};

// Reads one element by the general road: its label and its nodes (0 for the grounded end of a
// connector). False when a field is none of these, which is reported at its place. scoped: takes
// nodes named by their instance; null where they are not allowed.
bool inpS_readElementFields(const inp_Keyword& keyword, const inp_ElementForm& form,
                            const inpS_ElementParameters& type, long long row,
                            cow_List<int>& fields, cow_List<inpS_ScopedNode>* scoped,
                            inp_Visitor& messages);

// Elements of one keyword with too many or too few nodes, reported in one message each.
class inpS_FaultyElements {
public:
  // nodes: how many the element has; extra: how many besides its topology the type asks for.
  bool Count(int label, long long nodes, const inpS_ElementParameters& type, int extra);
  // A first line may not hold all of them.
  void NoteFirstLine(int label) { m_longFirstLine.push_back(label); }
  bool Has(int label) const; // too many or too few
  // At the line of the first one of each kind.
  void Report(const inp_Keyword& keyword, const inpS_ElementParameters& type,
              inp_Visitor& messages) const;

private:
  cow_List<int> m_tooMany;
  cow_List<int> m_tooFew;
  cow_List<int> m_longFirstLine;
};
