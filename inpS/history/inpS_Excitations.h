#pragma once

#include "database/KvoObjDocument.h"
#include "database/KvoSimPosition.h"

// A node and degree that one keyword prescribes twice with different values; the first one holds.
struct inpS_DuplicateCondition {
  KvoSimPosition record;
  long long row; // of the record, from 0
  cow_List<int> labels;
  bool isOfElements = false;
};

// Makes an excitation of what each given keyword prescribes of one field, and relays that say which
// of its rows are in force from which step to which (docs/carrying.md). They follow from the given
// records and the history alone, and share their columns: made again, they are the same.
// Excitations without a given record, of other programs, stay as they are.
//
// Decided here, where decks leave it open:
// - A row of a keyword of 64 rows or fewer has a relay of its own, and so has each one that names
// a
//   set or surface (up to 10,000 in a keyword): it tells the region, the label, the magnitude. Rows
//   of larger ones that are in force together share one.
// - A transform belongs to an excitation, whose nodes are in its node set; of several the last one
//   holds. Rows of different transforms are excitations of their own, and so are parts of a set.
cow_List<inpS_DuplicateCondition> inpS_deriveExcitations(const KvoObjDocument& document);
