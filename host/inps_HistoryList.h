#pragma once

#include "base/aio_ostream.h"
#include "host/inps_Json.h"

struct inpS_HistoryDescription;

// The history of a model: a line for each step, the first ones of many. Nothing without steps.
void inps_printHistory(aio_ostream& out, const cow_List<inpS_HistoryDescription>& history,
                       std::size_t mostListed);
// [{"number", "name", "description", "procedure", "registration", "nonlinear" (null: not said),
// "perturbation", "period", "increments", "incrementation", "initial", "minimum", "maximum",
// "stabilized", "eigenvalues", "lowest", "highest", "keywords"}]; null where a step has none.
inps_Json inps_jsonOfHistory(const cow_List<inpS_HistoryDescription>& history);
inps_Json inps_jsonOfStep(const inpS_HistoryDescription& step);
