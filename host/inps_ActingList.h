#pragma once

#include "base/aio_ostream.h"
#include "host/inps_Json.h"

class KvoObjDocument;
struct inpS_HistoryDescription;

// Steps, and below them what acts in each: the first ones of many steps, and of each keyword the
// first ones of many regions.
void inps_printActing(aio_ostream& out, const KvoObjDocument& document,
                      const cow_List<inpS_HistoryDescription>& steps, std::size_t mostListed);

// One JSON object: the members of `head`, "history" with all of the steps, each as
// inps_jsonOfStep has it with "acting" as its last member, then those of `tail`. A step is printed
// before the next one is looked at: many steps of many loads fit no memory.
// "acting" is [{"keyword", "excitation", "region", "regionKind", "instance", "target" (label of a
// node or element), "memberKind", "members" (that are left of the region; null: all),
// "wholeModel", "rows" (of the keyword, those about this field, from "firstRow" on, which counts
// from 0), "field", "load", "components",
// "restraint", "magnitude", "amplitude", "amplitudeEnded", "localAxes", "fromStep", "how" ("given",
// "carried", "held"), "loadCase", "imaginary"}], null for what there is not.
void inps_printActingJson(aio_ostream& out, const KvoObjDocument& document,
                          const cow_List<inpS_HistoryDescription>& steps, const inps_Json& head,
                          const inps_Json& tail);
