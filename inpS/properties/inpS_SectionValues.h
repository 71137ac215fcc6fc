#pragma once

#include "database/KvoSimCollection.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/forms/inpS_FormValue.h"
#include "inpS/properties/inpS_SectionData.h"
#include <optional>
#include <unordered_map>

struct inpS_DistributedItem;
class inp_Visitor;

// What distributions and the nodal thickness give the elements of sections: tells of one that has
// no column for what it is named for, and of elements or nodes that it leaves without a value.
class inpS_SectionValues {
public:
  inpS_SectionValues(inpS_SetVisitor& place, const inpS_FormNames& names,
                     const KvoObjDocument& document)
      : m_place(place), m_names(names), m_document(document) {}

  // Of a section that has become a record, as the walk stands at its keyword.
  void Check(const inp_Keyword& keyword, const inpS_Form& form);

private:
  // Where something is named: a parameter, or a field of a line.
  struct At {
    cow_String parameter;
    long long row = -1;
    int col = -1;
  };
  struct Lacking {
    long long count = 0;
    long long all = 0;
    long long first = 0; // an ordinal of the place
  };

  void CheckItem(const eds_FormItem& item, const cow_String& asWritten, const At& at);
  bool HasColumn(const KvoSimPosition& distribution, const inpS_DistributedItem& item,
                 const At& at);
  void CheckCover(const inpS_SetVisitor::Found& found, const inpS_DistributedItem& item,
                  const At& at);
  bool IsForeign(const inpS_SetVisitor::Found& found) const;
  void CheckNodal();
  const eds_MemberSet& Covered(const KvoSimPosition& distribution);
  Lacking LackingIn(const eds_MemberSet& covered, bool byNode, bool ofPart,
                    const KvoSimPosition& instance);
  const eds_MemberSet& Elements();
  const eds_MemberSet& Nodes();
  cow_String FirstOf(const Lacking& lacking, bool byNode) const;
  void Tell(const At& at, cow_String text);

  inpS_SetVisitor& m_place;
  const inpS_FormNames& m_names;
  const KvoObjDocument& m_document;
  std::unordered_map<unsigned long long, eds_MemberSet> m_covered; // by distribution
  std::optional<eds_MemberSet> m_withNodal;                        // nodes that have a thickness
  std::optional<inpS_SectionData> m_data;                          // of the owner at hand
  // Of the keyword at hand:
  const inp_Keyword* m_keyword = nullptr;
  std::optional<eds_MemberSet> m_elements;
  std::optional<eds_MemberSet> m_nodes;
};
