#pragma once

#include "base/cow_Value.h"
#include "inpS/inpS_Export.h"
#include "parser/inp_ElementInfo.h"
#include "parser/inp_KeywordEnm.h"
#include <span>
#include <string_view>

// The labels of loads (inpS_loadLabels.def): on which elements each makes sense, and what follows
// it.

enum class inpS_LoadedPart : unsigned char { Body, Side, Face, Edge };

struct inpS_LoadLabel {
  // What stands behind the label.
  struct Value {
    std::string_view name;
    int components = 1;
    bool isRequired = false;
    bool IsAxis() const { return name == "axis"; }
  };
  std::string_view labels; // as the table has them
  std::string_view keywordName;
  inp_KeywordEnm keyword = inp_NullKeyword;
  unsigned families = 0; // inp_ElementFlags and further ones; 0: any
  inpS_LoadedPart part = inpS_LoadedPart::Body;
  std::string_view valuesText;
  std::string_view units;
  cow_List<Value> values;

  // Whether an element of the type can be loaded so; number: of the label, 0 for none.
  bool Takes(const inp_ElementInfo& type, int number) const;
  bool IsOfFamily(const inp_ElementInfo& type) const;
  // What the keyword's loads act on and the type does not have, as "temperatures"; empty: none.
  std::string_view LackOf(const inp_ElementInfo& type) const;
  // Why no element of the type has the label's direction; empty: they have.
  std::string_view NoDirectionOf(const inp_ElementInfo& type) const;
};

INPS_EXPORT std::span<const inpS_LoadLabel> inpS_loadLabels();
bool inpS_hasLoadLabels(inp_KeywordEnm keyword);

// The rows that a label of a keyword stands in; none: it is no label of it.
struct inpS_FoundLabel {
  cow_List<const inpS_LoadLabel*> rows;
  int number = 0; // of its face or edge
};
INPS_EXPORT inpS_FoundLabel inpS_findLoadLabel(inp_KeywordEnm keyword, std::string_view label);
// Why elements of the type cannot be loaded so; empty: they can.
cow_String inpS_faultOfLoad(const inpS_FoundLabel& found, const cow_String& label,
                            const inp_ElementInfo& type);

// "solids, shells": for people.
INPS_EXPORT cow_String inpS_familiesText(unsigned families);
