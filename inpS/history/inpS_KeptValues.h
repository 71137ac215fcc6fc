#pragma once

#include "database/KvoObjDocument.h"
#include "inpS/inpS_Export.h"
#include <unordered_map>

// What boundary conditions that keep what there is (FIXED) keep: the displacements, rotations and
// other degrees of freedom that the steps before have led to. Known where a condition of the last
// of them prescribes the value, without an amplitude and not elsewhere; and 0 before all of them.
class INPS_EXPORT inpS_KeptValues {
public:
  explicit inpS_KeptValues(const KvoObjDocument& document);

  // Of a degree of freedom (from 1 on) of a node (flat ordinal) where the step begins that has this
  // number in the history. NaN: not known.
  double At(int step, int32_t node, int degree) { return At(step, node, degree, 0); }

private:
  struct Value {
    double given;   // NaN: not known
    int keptInStep; // it is kept, too; 0: it is given
  };
  struct State {
    bool isFirst = true; // no step is before
    std::unordered_map<int64_t, Value> values;
  };
  double At(int step, int32_t node, int degree, int depth);
  const State& Before(int step);

  const KvoObjDocument m_document;
  cow_List<int> m_steps; // that lead on, ascending
  cow_Map<int, State> m_states;
};
