#pragma once

#include "inpS/inpS_Export.h"

// Called by a host before any use of the module and after the last. The module counts its uses: the
// first one adds to the caller's counter, the end of the last one takes away from it and reports
// what structured messages the calling thread still holds.
INPS_EXPORT void KvoI2sInpS_initialize(int& users);
INPS_EXPORT void KvoI2sInpS_finalize(int& users);
