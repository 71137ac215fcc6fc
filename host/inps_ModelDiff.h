#pragma once

#include "base/aio_ostream.h"
#include "host/inps_Tolerance.h"

class KvoObjDocument;

// Compares two models record by record and prints what differs, arrays by their first difference
// and the number of items that differ. Records belong together when their owners and names are the
// same, nameless ones in their order; the order of named ones does not count, nor how nodes and
// elements are cut into blocks. Real numbers within the tolerance are the same. Returns the number
// of differences printed.
long long inps_diffModels(const KvoObjDocument& a, const KvoObjDocument& b, aio_ostream& out,
                          const inps_Tolerance& tolerance = {});
