#pragma once

#include "database/eds_ModelReader.h"
#include <functional>

// The order in which dumps and comparisons go through a model, and what they show where.

// Kinds that are shown where they are referred to and not by themselves.
bool inps_isShownInline(eds_RecordKind kind);

// The kinds of a model that are walked by themselves.
std::vector<const eds_RecordInfo*> inps_walkedKinds(const eds_ModelReader& model);

// The links of a record but those to what is shown inline.
std::vector<eds_LinkInfo> inps_shownLinks(const eds_ModelReader& model, eds_ObjectID owner);

// "parts[\"PLATE\"]", "bodies[3]" (from 0 in a list), "mesh"
cow_String inps_linkText(const eds_LinkInfo& link);

// Calls take(first, values) for every piece of an array; the values are of the array's type, whole
// items, in order. Ends early when take returns false.
template <class Take> void inps_forPieces(eds_ArrayReader& array, Take take) {
  for (int64_t chunk = 0; chunk < array.ChunkCount(); ++chunk)
    if (!take(chunk * array.ItemsPerChunk(), array.ChunkBytes(chunk))) return;
}

std::string_view inps_valueTypeName(eds_ValueType type);
// One value of a piece: integers as digits, reals as the shortest text, bytes as numbers.
cow_String inps_itemValueText(eds_ValueType type, const std::byte* at);
