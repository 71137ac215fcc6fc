#pragma once

#include "database/KvoSimContext.h"
#include "database/KvoSimPosition.h"
#include <span>

class inp_Keyword;
class inp_Visitor;
struct inp_Parameter;

// What a record cannot hold of the keyword it was made from: parameters that it has no field for,
// or whose values no field takes, and data lines with values that are left over. They are kept as
// they stood in the deck, and written back.
struct inpS_KeptPart {
  long long firstRow = 0;  // of the owner's table: the first that the keyword gave
  cow_String parameters{}; // ", NAME=VALUE" for each
  cow_String lines{};      // all of them, or none
};

// Of a whole model, read once.
class inpS_KeptParts {
public:
  inpS_KeptParts() = default;
  explicit inpS_KeptParts(const KvoSimContext& context);

  std::span<const inpS_KeptPart> Of(const KvoSimPosition& owner) const; // by first row
  // Of the first keyword; empty where nothing is kept.
  const inpS_KeptPart& FirstOf(const KvoSimPosition& owner) const;
  const inpS_KeptPart& At(const KvoSimPosition& owner, long long firstRow) const;

private:
  cow_Map<unsigned long long, cow_List<inpS_KeptPart>> m_byOwner;
};

KvoSimPosition inpS_keepPart(const KvoSimPosition& owner, const inpS_KeptPart& part);

// The parameter's name as the deck spells it.
cow_String inpS_spelledName(const inp_Parameter& parameter);

// ", NAME=VALUE" for each parameter that nothing asked for, or whose value nothing took; from now
// on they count as read.
cow_String inpS_takeOtherParameters(const inp_Keyword& keyword);
// A warning for each of them of which nobody has spoken yet.
void inpS_tellOtherParameters(const inp_Keyword& keyword, inp_Visitor& messages);
// Both, and keeps what there is beside the record.
void inpS_keepOthers(const inp_Keyword& keyword, const KvoSimPosition& owner,
                     inp_Visitor& messages);

// Whether kept parameters have one of that name: whoever prints a keyword leaves it to them.
bool inpS_holdsParameter(std::string_view kept, std::string_view name);
// Where one keyword is written for several: of a parameter that is kept already the first value
// stays; another one is told, and left out.
void inpS_dropRepeated(const inp_Keyword& keyword, std::string_view kept, inp_Visitor& messages);
void inpS_tellRepeated(const inp_Keyword& keyword, const cow_String& parameter,
                       inp_Visitor& messages);

// As they stand, but for control characters, which no deck that is written has.
cow_String inpS_dataLines(const inp_Keyword& keyword, inp_Visitor& messages);
// Of data lines that are kept: that such are left out.
void inpS_tellControls(const inp_Keyword& keyword, inp_Visitor& messages);

// Of a keyword that takes no data lines: those that it has all the same, with a warning.
cow_String inpS_takeUnusedLines(const inp_Keyword& keyword, inp_Visitor& messages);
// What a record without a table has no field for: parameters and data lines. What closes a scope
// has none of its own: it is kept with the scope's record, as row inpS_closingRow.
constexpr long long inpS_closingRow = 1;
// Of a surface: lines behind its own, and lines in the place of all of them.
constexpr long long inpS_moreLines = 1;
constexpr long long inpS_wholeLines = 2;
void inpS_keepUnused(const inp_Keyword& keyword, const KvoSimPosition& owner, inp_Visitor& messages,
                     long long row = 0);
