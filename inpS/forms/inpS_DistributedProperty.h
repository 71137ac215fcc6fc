#pragma once

#include "database/KvoSimPosition.h"
#include "parser/inp_Keyword.h"

// A property whose only data line names a distribution instead of numbers. It has no table; the
// line is kept beside it until the distribution's record is there.
struct inpS_DistributedProperty {
  KvoSimPosition property;
  KvoSimPosition kept; // what holds the line
  inp_Keyword keyword;
};
