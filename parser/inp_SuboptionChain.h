#pragma once

#include "parser/inp_Keyword.h"
#include <vector>

// Attaches sub-options to the keyword they belong to: the nearest open keyword before them in the
// same scope that admits them. The chain of open keywords is one line of descent, such as MATERIAL,
// PLASTIC, RATE DEPENDENT; a keyword that nothing in it admits begins a new one. Materials and
// gasket behaviors stay open behind keywords of other subjects, each until the next of its kind:
// what may stand right under them goes on as if the others were not there, and so does what may
// stand under the behaviors of the latest one, which is how a deck that is written has them.
class inp_SuboptionChain {
public:
  void Attach(const inp_Keyword& keyword);

private:
  void CloseOpen();
  bool Resume(const inp_Keyword& nameless);
  inp_KeywordList& ChainFor(const inp_Keyword& keyword);

  inp_KeywordList m_open;
  inp_KeywordList m_apart;             // of what nothing open admits
  std::vector<inp_KeywordList> m_held; // of a material and of a gasket behavior, the latest first
  bool m_isResumed = false;            // the first of them goes on, behind what is open
};
