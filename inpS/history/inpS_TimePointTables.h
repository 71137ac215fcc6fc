#pragma once

#include "base/cow_Value.h"

class KvoObjDocument;
class KvoSimPosition;

// The times that *TIME POINTS makes known: those of its lines in turn, or, with GENERATE, the start
// of each line and every increment behind it as far as the end. Each list has them as its property
// table of one column, "Time", in the unit of time of the deck. They follow from the records alone:
// derived again, they are the same.
void inpS_deriveTimePoints(const KvoObjDocument& document);

// What is wrong with a line of *TIME POINTS, GENERATE; empty: nothing. count: of what the lines
// before it make, and then of what it makes, too.
cow_String inpS_faultOfTimes(const KvoSimPosition& line, long long& count);
