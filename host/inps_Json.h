#pragma once

#include "host/inps_ModelSummary.h"
#include "host/inps_Reporter.h"
#include "inpS/driver/inpS_Inp2Sim.h"
#include <nlohmann/json_fwd.hpp>

class inps_Timings;

// The program's facts as JSON objects, their members in the order in which they are made here.
using inps_Json = nlohmann::ordered_json;

inps_Json inps_jsonOf(const inps_Reported& reported);
inps_Json inps_jsonOf(const inps_ModelSummary& summary);
inps_Json inps_jsonOf(const inps_ModelSummary::Counts& counts); // {name: count}
inps_Json inps_jsonOf(const cow_List<inpS_NotModelled>& notModelled);
inps_Json inps_jsonOf(const inps_Timings& timings);
// "errors", "warnings", "messages"
void inps_addMessages(inps_Json& object, const inps_Reporter& reporter);

// Indented, one line end at the end; bytes that are no UTF-8 are replaced.
void inps_printJson(aio_ostream& out, const inps_Json& json);
