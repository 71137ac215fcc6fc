#pragma once

#include "base/aio_ostream.h"
#include "host/inps_Tolerance.h"

class KvoObjDocument;

// Compares two models record by record and prints what differs, arrays by their first difference
// and the number of items that differ. Records belong together when their owners and names are the
// same, nameless ones in their order. The order of named records counts where something holds them
// in an order. Real numbers within the tolerance are the same. Returns the number of differences
// printed.
long long inps_diffModels(const KvoObjDocument& a, const KvoObjDocument& b, aio_ostream& out,
                          const inps_Tolerance& tolerance = {});
