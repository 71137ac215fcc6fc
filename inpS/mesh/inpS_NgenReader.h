#pragma once

#include "inpS/framework/inpS_System.h"
#include "inpS/mesh/inpS_GeneratingReader.h"

// *NGEN: nodes on the line between two end nodes. Where the ends are node sets, their members are
// paired in the order of the sets, as though each pair stood on a line of its own.
//
// Fields: first end, last end, label increment (absent or 0: 1), then for arcs and parabolas the
// label of the centre or middle node, or 0 and its coordinates, then for arcs the axis.
class inpS_NgenReader : public inpS_GeneratingReader {
public:
  // line: "RC" straight, "C" circular arc, "P" parabola. The system in force places coordinates.
  inpS_NgenReader(cow_String line, bool threeDimensional, const inpS_System& system,
                  inpS_KnownNodes& known, inp_Visitor& messages)
      : inpS_GeneratingReader(known, messages, threeDimensional), m_line(std::move(line)),
        m_system(system) {}

  // The ends go into the collection too.
  void Read(const inp_Keyword& keyword, const inpS_NodeSink& sink, inpS_SetDefinition* collection);

private:
  // A circle's radius vectors as polar coordinates in the plane of the arc.
  struct Arc {
    double centre[3];
    double radial[3];     // unit vector from the centre to the first end
    double tangential[3]; // where it turns to
    double normal[3];
    double radii[2];
    double angle;     // from the first end to the last
    double height[2]; // of the ends above the plane; planar arcs only
  };
  struct Line {
    long long row = 0;
    long long increment = 1;
    bool hasExtra = false; // the centre or middle node
    inpS_NodeValues extra;
    bool hasAxis = false;
    double axis[3] = {};
  };

  bool ReadLine(Line& line, inpS_KnownNodes::Set& first, inpS_KnownNodes::Set& last);
  bool ReadExtra(Line& line);
  // Nodes that the line makes.
  long long CountOf(const Line& line, const inpS_KnownNodes::Set& first,
                    const inpS_KnownNodes::Set& last);
  void Generate(const Line& line, long long first, long long last);
  void TellRest(const Line& line, long long label, long long span);
  void Straight(const Line& line, long long label, long long intervals, const inpS_NodeValues& a,
                const inpS_NodeValues& b);
  void Parabola(const Line& line, long long label, long long intervals, const inpS_NodeValues& a,
                const inpS_NodeValues& b);
  void Circle(const Line& line, long long label, long long intervals, const inpS_NodeValues& a,
              const inpS_NodeValues& b);
  bool MakeArc(const Line& line, const inpS_NodeValues& a, const inpS_NodeValues& b, Arc& arc);
  bool OrientArc(const Line& line, const double first[3], const double last[3], Arc& arc);

  cow_String m_line;
  inpS_System m_system;
  long long m_lastTold = -1; // row whose increment was told not to lead to the end
};
