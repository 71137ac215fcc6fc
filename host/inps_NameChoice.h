#pragma once

#include "base/cow_Value.h"
#include <span>

// The names on the command line that choose from those of a model. Decks fold the case of names
// that are not quoted, so a name is found in any case; where the model has it as it was typed too,
// that one alone is meant.
class inps_NameChoice {
public:
  // have: every name there is to choose from.
  inps_NameChoice(std::span<const cow_String> wanted, const cow_List<cow_String>& have);

  bool IsAll() const { return m_all; } // nothing was named
  bool Has(const cow_String& name) const;
  const cow_List<cow_String>& Missing() const { return m_missing; } // wanted, and not there

private:
  bool m_all;
  cow_List<cow_String> m_chosen; // sorted
  cow_List<cow_String> m_missing;
};
