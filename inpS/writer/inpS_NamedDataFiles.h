#pragma once

#include "base/cow_Value.h"
#include "inpS/inpS_Export.h"

class KvoObjDocument;

// What a deck written from the model would make its reader open.
//
// A converter reads the data lines that stand in a file of their own when it reads the deck, and
// the model has the lines, not the name: one of ours names none. A stranger's may, in a keyword
// kept as text or in kept parameters, and nobody can tell from the model what its deck said. Such a
// name is no fault of the model, and it is written; whoever writes or checks the model says so.
struct inpS_NamedDataFile {
  cow_String keyword; // "NODE"
  cow_String file;    // as it stands there
};
INPS_EXPORT cow_List<inpS_NamedDataFile> inpS_namedDataFiles(const KvoObjDocument& document);
