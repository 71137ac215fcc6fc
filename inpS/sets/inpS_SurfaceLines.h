#pragma once

#include "base/utl_Buffer.h"
#include "inpS/sets/inpS_SetVisitor.h"
#include "inpS/sets/inpS_SurfaceTable.h"
#include <array>

// The data lines of one surface, read into pieces: a set or surface that is named, or everything
// that is listed by label with one face. Faults are reported at their place, and nothing is made of
// the line.
class inpS_SurfaceLines {
public:
  struct Piece {
    eds_SurfaceFace face = eds_SurfaceFace::Whole;
    inpS_SetVisitor::Found named; // null: listed by label
    utl_Buffer<int> ordinals;     // of the owner, in the order listed
    utl_Buffer<int> rows;         // the data row of each
    utl_Buffer<double> areas;     // of nodes: of each
    double area = 1;              // of a node set's nodes
    long long row = 0;
    int col = 0;
  };

  inpS_SurfaceLines(const inp_Keyword& keyword, inpS_SetVisitor& visitor)
      : m_keyword(keyword), m_data(keyword.Data()), m_visitor(visitor) {}

  void ReadFaces();                                 // element or set, face
  void ReadNodes();                                 // node or set, area
  void ReadElements(long long row);                 // elements or sets, as many as there are
  void ReadSurfaces(long long row, long long rows); // names, as many as there are

  cow_List<Piece>& Pieces() { return m_pieces; }
  bool IsWhole() const { return m_isWhole; } // false: told; the lines are to be kept
  void SetPartial() { m_isWhole = false; }
  // Lines that name elements which the deck has in keywords kept as text, as the others are
  // written.
  cow_String TakeAsText() { return std::move(m_asText); }

private:
  // Labels read and not yet looked up: all of one piece and of one owner.
  struct Run {
    std::size_t piece = 0;
    inpS_SetVisitor::LabelSpace space;
    utl_Buffer<int> labels;
    std::string_view prefix; // the instance's name as written, where the labels have one
  };
  using Kind = inpS_SetVisitor::Kind;

  bool SplitRow(long long row, std::string_view& who, std::string_view& what);
  void Take(long long row, int col, std::string_view who, eds_SurfaceFace face, double area);
  const inpS_SetVisitor::LabelSpace& OwnSpace(); // of plain labels
  bool ReadLabel(long long row, int col, std::string_view who, long long& label,
                 inpS_SetVisitor::LabelSpace& space);
  void TakeNamed(long long row, int col, std::string_view who, eds_SurfaceFace face, double area);
  void TakeLabel(long long row, int col, long long label, const inpS_SetVisitor::LabelSpace& space,
                 eds_SurfaceFace face, double area);
  void Flush();
  void Finish();
  void Fault(long long row, int col, cow_String text);

  const inp_Keyword& m_keyword;
  const inp_DataArray& m_data;
  inpS_SetVisitor& m_visitor;
  Kind m_kind = Kind::Elements;
  cow_List<Piece> m_pieces;
  std::array<int, eds_surfaceFaceCount> m_listed{}; // the piece of each face, from 1
  Run m_run;
  bool m_hasOwnSpace = false;
  inpS_SetVisitor::LabelSpace m_ownSpace;
  std::string_view m_prefix; // the instance that the last scoped label named, as written
  inpS_SetVisitor::LabelSpace m_prefixSpace;
  long long m_missing = 0;
  cow_String m_asText;
  bool m_isWhole = true;
};
