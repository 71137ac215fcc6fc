#pragma once

#include "database/KvoObjDocument.h"
#include "inpS/history/inpS_InForce.h"
#include "inpS/inpS_Export.h"
#include <functional>
#include <span>

// What acts in one step, row by row of the given keywords: for who makes arrays of it.
class INPS_EXPORT inpS_ActingConditions {
public:
  struct Acting {
    const inpS_ExcitationKind& kind;
    KvoSimPosition record;        // what the deck says
    KvoSimPosition loadCase;      // null: none
    int fromStep;                 // in which it began; 0: before all steps
    bool isOfStep;                // given in it; else carried into it, or held
    bool isHeld;                  // of the state before a perturbation
    uint64_t degrees;             // inpS_Degrees::Bit; 1 where the kind has none
    int restraint;                // -1: none
    double magnitude;             // as given, without its amplitude
    cow_String label;             // of a load: P1 and so on
    KvoSimPosition region;        // the set or surface; null: a node or element, or the whole model
    KvoSimPosition instance;      // by which the region is named; null: by none
    int target;                   // flat ordinal of the node or element; -1: the region
    const eds_MemberSet* members; // flat ordinals of the region; null: a surface, or one target
    // Of temperatures and fields: the values behind the first one, as the sections have them
    // (gradients, or at further points); no number where none is given.
    std::span<const double> more;
  };

  // `step`: its number in the history.
  inpS_ActingConditions(const KvoObjDocument& document, int step);
  void ForAll(const std::function<void(const Acting&)>& take);

private:
  bool ActsIn(const inpS_InForce::Source& source) const;

  inpS_InForce m_inForce;
  int m_step;
  bool m_isPerturbation = false;
};
