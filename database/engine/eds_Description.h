#pragma once

#include "database/engine/eds_Engine.h"

// What a finished file says of itself: the stored schema (tables schema_...), of the kinds that it
// has tables of, and the views v_... for people. Nothing of ours reads either, so that a model in
// memory has none, and a file gets them when it is finished: their cost goes with what the model
// holds, not with the number of kinds that there are.

// Brings both up to the tables that the file has by now; within a transaction of the caller.
void eds_describe(eds_Engine& engine);
