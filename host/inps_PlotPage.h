#pragma once

#include "host/inps_Chart.h"

class utl_Stream;

// What one page holds.
struct inps_PlotPage {
  struct Names { // of what is not drawn, for there is too much of it
    cow_String kind;
    cow_List<cow_String> names;
  };
  cow_String title;
  cow_String facts; // one line
  cow_List<inps_PlotSection> sections;
  cow_List<Names> notDrawn;
};

// One HTML file that needs nothing but itself.
void inps_printPlotPage(utl_Stream& out, const inps_PlotPage& page);
