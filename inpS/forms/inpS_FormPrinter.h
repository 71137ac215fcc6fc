#pragma once

#include "base/cow_Value.h"
#include "database/KvoSimPosition.h"
#include <functional>
#include <optional>

class inpS_KeptParts;
class utl_Stream;
struct inpS_Form;

// What the form of a record leaves to the writer.
struct inpS_FormPrinting {
  const inpS_KeptParts& parts; // what is kept beside records
  std::function<void(const inpS_Form& form, const KvoSimPosition& record)> columns; // in bulk
  std::function<void(const inpS_Form& form, const KvoSimPosition& record)> table;
  // The keywords kept as text within a record that stand behind one of its own; behind null: all
  // that are left.
  std::function<void(const KvoSimPosition& within, const KvoSimPosition& behind)> texts;
};

// The keyword alone, with its lines.
void inpS_printFormLines(utl_Stream& out, const KvoSimPosition& record,
                         const inpS_FormPrinting& printing);
// The data lines of a form without columns and table.
void inpS_printDataLines(utl_Stream& out, const KvoSimPosition& record,
                         const inpS_KeptParts& parts);
// A record of a form as the keyword that it was read from, or could be, with its sub-options.
// Nothing for what is no form's.
void inpS_printForm(utl_Stream& out, const KvoSimPosition& record,
                    const inpS_FormPrinting& printing);

// What stands under a record's keyword, and the texts there.
void inpS_printSuboptions(utl_Stream& out, const KvoSimPosition& record,
                          const inpS_FormPrinting& printing);

// By the names of parameters: their values, "" for one that has none; nullopt: not printed.
using inpS_ParameterTexts = cow_Map<cow_String, std::optional<cow_String>>;
// The keyword line of a record with some parameters changed; of no record with these alone.
void inpS_printKeywordWith(utl_Stream& out, const inpS_Form& form, const KvoSimPosition& record,
                           const inpS_KeptParts& parts, const inpS_ParameterTexts& changed);
