#pragma once

#include "parser/inp_DeckParameters.h"

// Deck parameters while the deck is still being read: names of files may hold <name> too, and what
// they name must be known before there is a list to expand. Expansion evaluates all parameters
// again and reports what is wrong with them, so nothing is said of that here.
class inp_ParametersSoFar {
public:
  // The value of a parameter that names a file, with the values that parameters in front of it have
  // put into it. open: the keyword whose data lines are being gathered, and those lines so far.
  // Unknown ones are told and stay in the name.
  cow_String FileName(const inp_KeywordList& keywords, const inp_KeywordBody* open,
                      const cow_List<inp_DataSegment>& lines, const inp_KeywordBody& body,
                      const inp_Parameter& parameter, cow_List<wip_Message>& errors);

private:
  static void Define(const inp_KeywordBody& body, const inp_DataArray& data,
                     inp_DeckParameters& parameters);

  inp_DeckParameters m_parameters;
  std::size_t m_taken = 0; // keywords looked at
};
