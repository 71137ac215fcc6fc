#pragma once

#include "database/KvoObjSurface.h"
#include "inpS/keywords/inpS_ParameterBinding.h"
#include <string_view>

// What *SURFACE has in both directions: its parameters, and the spelling of faces and segments.

std::span<const inpS_ParameterBinding> inpS_surfaceParameters();

// The faces as decks name them, by number; empty for the one that has no identifier.
std::string_view inpS_faceName(eds_SurfaceFace face);
// False for what is no identifier. In any case; an empty text means Whole.
bool inpS_readFace(std::string_view text, eds_SurfaceFace& face);

// One kind of segment: its word in the deck and how many numbers follow it.
struct inpS_SegmentRow {
  eds_SegmentKind kind;
  const char* word;
  int numbers;
};
std::span<const inpS_SegmentRow> inpS_segmentRows(); // by number of the kind

// Data lines of points before the segments, or of the plane or box, by numbers in each.
struct inpS_PointLines {
  int lines = 0;
  int numbers[3] = {};
};
inpS_PointLines inpS_pointLinesOf(eds_SurfaceType type, eds_SurfaceOperation operation);
