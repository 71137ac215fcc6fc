#pragma once

#include "base/cow_Value.h"
#include "parser/inp_ElementInfo.h"
#include <string_view>

// The element types a deck may use: the fixed table, the obsolete ones, and the types that the
// deck's user elements add. Names are taken in any case.
class inpS_BasicElemTypeData {
public:
  bool IsSupported(std::string_view name) const; // in the fixed table
  bool IsObsolete(std::string_view name) const;

  // Of the fixed table, else of a user element type; 0 and 100000 for a name in neither.
  int MinNodesPerElement(std::string_view name) const;
  int MaxNodesPerElement(std::string_view name) const;

  // Adds a user element type; one already known keeps its node count.
  void UpdateUserElemType(std::string_view name, int nodes);

private:
  const int* UserNodes(std::string_view name) const; // null: no such user element type

  cow_Map<cow_String, int> m_userTypes; // upper-case name -> nodes
};
