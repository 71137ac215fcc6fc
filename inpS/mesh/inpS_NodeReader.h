#pragma once

#include "base/cow_Value.h"
#include "inpS/mesh/inpS_NodeGenerator.h"

class inp_Keyword;
class inp_Visitor;
struct inp_NodePiece;
struct inp_OddRow;

// Reads the data lines of *NODE: label, up to three coordinates, up to three normal components.
class inpS_NodeReader : public inpS_NodeGenerator {
public:
  explicit inpS_NodeReader(inp_Visitor& messages) : m_messages(messages) {}

  // Hands the nodes over by the piece. Lines that cannot be read are reported and left out.
  void Read(const inp_Keyword& keyword, const inpS_System& system, const inpS_NodeSink& sink);

private:
  void TakePiece(const inp_Keyword& keyword, const inpS_System& system, const inp_NodePiece& piece,
                 const inpS_NodeSink& sink);
  bool ReadOddRow(const inp_Keyword& keyword, const inpS_System& system, const inp_OddRow& odd,
                  const inp_NodePiece& piece);
  void LeaveOutOverflowed(const inp_NodePiece& piece);
  bool AddNormal(const double values[3], std::size_t slot, const inpS_System& system);
  std::size_t Remove(const inp_NodePiece& piece);

  inp_Visitor& m_messages;
  bool m_mayOverflow = false;         // the piece at hand
  cow_List<std::size_t> m_unreadable; // of the piece at hand
  cow_List<std::size_t> m_normalAt;
  cow_List<double> m_normals;
};
