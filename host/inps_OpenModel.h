#pragma once

#include "database/KvoObjDocument.h"

struct inps_Session;

// A model to read, which may come from anybody: a file whose records do not hold together is
// refused (eds_DamagedFileException) before anything follows them. `check` does without, to tell
// all faults.
KvoObjDocument inps_openModel(const std::filesystem::path& file);

// Likewise, and tells the user of a model whose conversion did not end.
KvoObjDocument inps_openModel(const std::filesystem::path& file, inps_Session& session);
