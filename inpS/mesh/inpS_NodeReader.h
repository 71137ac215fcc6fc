#pragma once

#include "base/cow_Value.h"
#include "inpS/mesh/inpS_NodeGenerator.h"

class inp_Keyword;
class inp_Visitor;
struct inp_NodeRows;

// Reads the data lines of *NODE: label, up to three coordinates, up to three normal components.
class inpS_NodeReader : public inpS_NodeGenerator {
public:
  explicit inpS_NodeReader(inp_Visitor& messages) : m_messages(messages) {}

  // Lines that cannot be read are reported and left out.
  void Read(const inp_Keyword& keyword, const inpS_System& system);

private:
  bool ReadOddRow(const inp_Keyword& keyword, long long row, std::size_t slot);
  void ReadNormal(const double values[3], std::size_t slot);
  void Remove(const cow_List<std::size_t>& slots);
  void FinishNormals(const inpS_System& system);

  inp_Visitor& m_messages;
};
