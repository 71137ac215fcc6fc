#pragma once

#include "parser/inp_Keyword.h"

// Attaches sub-options to the keyword they belong to: the nearest open keyword before them in the
// same scope that admits them. The chain of open keywords is one line of descent, such as MATERIAL,
// PLASTIC, RATE DEPENDENT; a keyword that nothing in it admits begins a new one.
class inp_SuboptionChain {
public:
  void Attach(const inp_Keyword& keyword);

private:
  inp_KeywordList m_open;
  inp_KeywordList m_apart; // of what nothing open admits
};
