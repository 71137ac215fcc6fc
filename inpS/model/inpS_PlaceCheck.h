#pragma once

#include "parser/inp_Keyword.h"
#include "parser/inp_Visitor.h"
#include <utility>

// Looks whether keywords stand where the deck language has them, and tells of those that do not:
// once for each kind and level, at the first place.
class inpS_PlaceCheck {
public:
  // isConverted: some phase converts it all the same; else it is kept as text. True: it is told.
  bool Look(const inp_Keyword& keyword, bool isConverted);
  void TellTo(inp_Visitor& messages) const;

private:
  struct Found {
    inp_Keyword first;
    long long count = 0;
    bool isConverted = false;
  };
  cow_Map<std::pair<inp_KeywordEnm, inp_Scope::Kind>, std::size_t> m_known;
  cow_List<Found> m_found; // in deck order
};
