#pragma once

#include "inpS/mesh/inpS_AffineMap.h"
#include "inpS/mesh/inpS_GeneratingReader.h"

// *NCOPY: copies of a node set with labels shifted by a constant. Points on its data lines are in
// global coordinates. Normals turn with the copy.
//
// SHIFT        first line the translation, second line two points and an angle in degrees: a
//              rotation about the line through them, behind the translation. MULTIPLE tells how
//              often that rotation is applied; there is one copy all the same.
// POLE         the pole's label, or none and its coordinates: the old node lies half way between
//              the pole and the new one, x' = x + (x - pole).
// REFLECT      LINE: two points of a line, x' = a + 2 u (u . (x - a)) - (x - a), u along the line;
//              MIRROR: three points of a plane (the third on a second line), x' = x - 2 n (n . (x -
//              a)), n its normal; POINT: one point, x' = 2 a - x.
class inpS_NcopyReader : public inpS_GeneratingReader {
public:
  struct Options {
    long long changeNumber = 0;
    bool shift = false;
    bool pole = false;
    cow_String reflect; // LINE, MIRROR or POINT
    long long multiple = 1;
  };

  inpS_NcopyReader(inpS_KnownNodes::Set oldSet, Options options, inpS_KnownNodes& known,
                   inp_Visitor& messages, bool threeDimensional)
      : inpS_GeneratingReader(known, messages, threeDimensional), m_oldSet(std::move(oldSet)),
        m_options(std::move(options)) {}

  void Read(const inp_Keyword& keyword, const inpS_NodeSink& sink);
  // The copies keep the order of an unsorted set.
  bool IsUnsorted() const { return m_oldSet.unsorted; }

private:
  bool ReadMap();
  bool ReadShift();
  bool ReadPole();
  bool ReadReflection();
  bool ReadLine();
  bool ReadMirror();
  bool HasLine(long long row);
  bool LabelsFit();
  bool MayFallOnOld();

  inpS_KnownNodes::Set m_oldSet;
  Options m_options;
  inpS_AffineMap m_map;
};
