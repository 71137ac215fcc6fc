#pragma once

#include "base/cow_Value.h"
#include "host/inps_NamedTable.h"

// What a page of plots shows, without a word on how it looks.

struct inps_Series {
  cow_String label;
  cow_List<double> points; // x and y in turn
};

struct inps_Chart {
  cow_String title;
  cow_String keyword; // "*PLASTIC, HARDENING=KINEMATIC"
  cow_String x;       // names of the axes
  cow_String y;
  bool isRamp = false; // the series belong to rising values of one quantity, such as temperature
  cow_String note;
  cow_List<inps_Series> series;
};

// A behaviour that is shown as numbers, for there is no course to draw.
struct inps_Numbers {
  cow_String keyword;
  int depth = 0;
  cow_List<cow_String> names;
  cow_List<cow_List<double>> rows;
  int64_t moreRows = 0; // that are not among them
};

struct inps_PlotSection {
  cow_String kind; // "material", "gasket behavior", "amplitudes"
  cow_String name;
  cow_List<inps_Chart> charts;
  cow_List<inps_Numbers> numbers;
};

// Of one behaviour: its charts, or its numbers when there is nothing to draw. A table is drawn over
// its first independent column, else over the temperature or a field variable; whatever else it
// depends on makes one line each. Prony series are drawn as the courses that they stand for.
void inps_plotBehavior(const inpS_PropertyDescription& behavior, const inps_NamedTable& table,
                       inps_PlotSection& section);

// Of one amplitude: tabular as it is given, the others by their formulas.
inps_Chart inps_plotAmplitude(const KvoSimPosition& amplitude);

// A column's name for people: "Yield stress" for YieldStress, "ν₁₂" for nu12.
cow_String inps_readableName(std::string_view column);

// At most so many points stay that a curve still shows every peak: of each stretch the lowest and
// the highest, besides the first and the last of all.
void inps_thin(cow_List<double>& points);
inline constexpr std::size_t inps_mostPoints = 600;
