#pragma once

#include "base/aio_ostream.h"
#include "base/cow_Value.h"
#include "host/inps_Outcome.h"
#include <cstdint>
#include <utility>

class KvoObjDocument;

// What is in a model, in numbers.
struct inps_ModelSummary {
  struct Part {
    cow_String name;
    cow_String part; // of an instance
    int64_t nodes = 0;
    int64_t elements = 0;
  };
  using Counts = cow_List<std::pair<cow_String, int64_t>>; // in order of first appearance

  inps_Outcome outcome;
  cow_String heading;
  int64_t dimensions = 0;
  int64_t nodes = 0; // of the flat mesh: parts count once per instance
  int64_t elements = 0;
  Counts elementTypes;
  int64_t materials = 0;
  int64_t amplitudes = 0;
  int64_t nodeSets = 0; // those of the user
  int64_t elementSets = 0;
  int64_t surfaces = 0;
  cow_List<Part> parts;
  cow_List<Part> instances;
  Counts keptAsText; // keywords
  Counts records;    // of every kind
};

inps_ModelSummary inps_summarize(const KvoObjDocument& document);

// "2197 nodes, 1728 elements (C3D8 1728), 3 node sets, …"
cow_String inps_summaryLine(const inps_ModelSummary& summary);
