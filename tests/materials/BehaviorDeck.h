#pragma once

#include "inpS/materials/inpS_Behaviors.h"

// One way to write a keyword of the material table.
struct BehaviorForm {
  int rows = 1;
  bool temperature = false;
  int variables = 0; // DEPENDENCIES
};

// A keyword with a number of its own in every place, under whatever parents it needs, in a material
// (or gasket behaviour) of its own; and what the model must hold of it.
struct BehaviorCase {
  cow_String name; // of the material
  const inpS_Form* behavior = nullptr;
  bool gasket = false;
  cow_List<cow_String> keywords; // as deck text, the case's own last
  cow_List<double> values;       // row by row, as the table must hold them
  cow_Map<int, double> reals;    // fields that parameters were given for
  cow_Map<int, long long> integers;
};

// All cases of a row of the table; `number` makes their numbers and names differ from others'.
cow_List<BehaviorCase> behaviorCases(const inpS_Form& behavior, int& number);
// One without parameters, but for those that say how many values there are.
BehaviorCase leastCase(const inpS_Form& behavior, int& number);
