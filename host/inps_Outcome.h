#pragma once

#include "base/cow_Value.h"
#include <cstdint>

class KvoObjDocument;

// What a model tells of the conversion that made it.
struct inps_Outcome {
  bool isKnown = false; // older models and those of other programs say nothing
  int64_t errors = 0;
  int64_t warnings = 0;
  cow_String leftOut; // "mesh; *NODE, FOO", empty: nothing that is known of

  bool IsMeshLeftOut() const;        // of the deck that made the model
  bool IsRestartMeshLeftOut() const; // of one that went on with it
  cow_String Text() const;           // "2 errors, 1 warning; left out: mesh"
};

inps_Outcome inps_outcomeOf(const KvoObjDocument& document);
