#pragma once

#include "database/KvoSimPosition.h"

// Whether an amplitude goes over the total time, from step to step; else it ends with its step.
bool inpS_isOverTotalTime(const KvoSimPosition& amplitude);
