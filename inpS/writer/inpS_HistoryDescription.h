#pragma once

#include "database/KvoObjDocument.h"
#include "database/KvoSimPosition.h"
#include "inpS/inpS_Export.h"
#include <optional>

// A step of the history as a reader of decks knows it.
struct inpS_HistoryDescription {
  KvoSimPosition record; // HistoryStep; null: the step is kept as text
  long long number = 0;
  cow_String name;        // of a step kept as text that of its deck
  cow_String procedure;   // "*STATIC, RIKS"; empty: the step has none
  long long keywords = 0; // that it holds as records, its procedure among them
  // Large displacements are accounted for since a general step before, which said so last.
  bool isNonlinearSince = false;
  // The total time that it takes, as v_task has it; null: it has no procedure, or no period.
  std::optional<double> begins = {}, ends = {};
  bool IsText() const { return record.IsNull(); }
};

// In the order of the steps.
INPS_EXPORT cow_List<inpS_HistoryDescription> inpS_describeHistory(const KvoObjDocument& document);
