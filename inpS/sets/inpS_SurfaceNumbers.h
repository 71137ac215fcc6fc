#pragma once

#include "inpS/sets/inpS_SurfaceTable.h"

class inp_Keyword;
class inp_Visitor;

// The numbers of a surface's data: points of axes, planes and boxes, and the segments of an
// analytical surface. Faults are reported at their place; a shape with a fault is none.
class inpS_SurfaceNumbers {
public:
  // consequence: what a fault costs, a sentence with a blank before it
  inpS_SurfaceNumbers(const inp_Keyword& keyword, inp_Visitor& messages, const char* consequence)
      : m_keyword(keyword), m_messages(messages), m_consequence(consequence) {}

  bool IsWhole() const { return m_isWhole; } // no line holds more than it may

  // Lines of points from a data row on; `row` becomes the one behind them.
  bool ReadPoints(const inpS_PointLines& lines, int optionalLines, long long& row,
                  cow_List<double>& coordinates);
  bool BeginsWithSegments() const; // no point stands in front of them
  void TellUnused(long long row);  // warns of what stands from a row on
  // All rows from one on. Rows of eds_segmentWidth numbers.
  bool ReadSegments(long long row, bool aroundAxis, cow_List<double>& segments);
  // The points that turn a box on the given row; true when there are none.
  bool CheckBox(long long row, const cow_List<double>& box);
  // The points of an analytical surface's axes or of a plane.
  bool CheckPoints(eds_SurfaceType type, const cow_List<double>& coordinates);

private:
  struct Point {
    double x = 0;
    double y = 0;
  };
  bool ReadNumbers(long long row, int firstCol, int count, double* numbers);
  bool CheckSegment(long long row, const inpS_SegmentRow& kind, const double* numbers, Point from,
                    double scale);
  bool CheckArc(long long row, Point from, Point to, Point centre, double scale);
  bool Fault(long long row, cow_String text); // false

  const inp_Keyword& m_keyword;
  inp_Visitor& m_messages;
  cow_String m_consequence;
  bool m_isWhole = true;
};
