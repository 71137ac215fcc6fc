#pragma once

#include "database/KvoObjDocument.h"

class inps_Input;
class inps_Run;

// A model to read, which may come from anybody: a file whose records do not hold together is
// refused (eds_DamagedFileException) before anything follows them, and a deck with the command that
// makes a model of it (utl_FileException). `check` does without, to tell all faults.
KvoObjDocument inps_openModel(const inps_Input& input);

// Likewise, and warns of a model whose conversion did not end or had errors.
KvoObjDocument inps_openModel(const inps_Input& input, inps_Run& run);
void inps_warnOfOutcome(const KvoObjDocument& document, const inps_Input& input, inps_Run& run);

// Warns of the files that a deck written from the model makes its reader open.
void inps_warnOfNamedFiles(const KvoObjDocument& document, const inps_Input& input, inps_Run& run);

// Whether the file is to be taken for a model: it begins like one or is named like one.
bool inps_isModelFile(const std::filesystem::path& path);
// Whether its first bytes are a model's.
bool inps_beginsAsModel(const std::filesystem::path& path);
