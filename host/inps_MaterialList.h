#pragma once

#include "base/aio_ostream.h"
#include "host/inps_Json.h"

class inps_NameChoice;
class KvoObjDocument;

// The chosen materials and gasket behaviours with its behaviours: what a deck calls them, how many
// rows their tables have, and the range of each column, of the temperature and how many field
// variables. What is kept as text is named where it stands.
void inps_printMaterials(aio_ostream& out, const KvoObjDocument& document,
                         const inps_NameChoice& choice);
// [{"kind", "name", "behaviors": [{"depth", "keyword", "parameters", "rows", "columns": [{"name",
// "independent", "low", "high"}], "temperature": {"low", "high"} or null, "fieldVariables"}],
// "keptAsText": [keyword]}]
inps_Json inps_jsonOfMaterials(const KvoObjDocument& document, const inps_NameChoice& choice);
