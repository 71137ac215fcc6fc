#pragma once

#include "parser/inp_BulkDecode.h"
#include <functional>

class inp_Keyword;

// Where elements stand in the data lines of their keyword. That is kept for no element: the lines
// are read again when one is at fault. A keyword that makes elements of others (*ELGEN, *ELCOPY)
// lists none: nothing is found in it, and its own place has to do.
class inpS_ElementSearch {
public:
  struct Place {
    long long row = -1; // -1: not found
    int col = 0;
  };

  inpS_ElementSearch(const inp_Keyword& keyword, const inp_ElementForm& form);

  // The element with this label: the first one, the second one, …
  Place OfLabel(int label, int which = 1) const;
  // The first element of this label with fewer than least or more than most nodes.
  Place OfWrongCount(int label, long long least, long long most) const;
  // The first place where an element names this node.
  Place OfNode(int node) const;

private:
  struct Element {
    int label;
    std::span<const int> nodes;
    bool odd; // its nodes may not be all
  };
  // The first data row of the first element that is wanted; -1 when none is.
  long long FindRow(const std::function<bool(const Element&)>& wanted) const;
  long long RowOf(long long firstRow, std::size_t element) const;

  bool m_lists;
  const inp_DataArray& m_data;
  inp_ElementForm m_form;
};
