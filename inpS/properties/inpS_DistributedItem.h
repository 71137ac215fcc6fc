#pragma once

#include "database/schema/eds_Form.h"
#include "inpS/properties/inpS_DistributionTable.h"

// What an item of a section, or of a ply of one, takes from the distribution that it may name.
struct inpS_DistributedItem {
  int field = -1;                   // that names the distribution; -1: the item can name none
  cow_List<std::string_view> types; // the field types that it takes; none: not known
  std::string_view boundAs;         // the name of the field of the store; empty: none is made

  static inpS_DistributedItem Of(const eds_FormItem& item);
  // Where the first column of the (first) type begins in a row. -1: the table lacks a type.
  int ComponentIn(const inpS_DistributionTable& table) const;
};
