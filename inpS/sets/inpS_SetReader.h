#pragma once

#include "inpS/sets/inpS_SetDefinition.h"

class inp_Visitor;

// Reads the data lines of one set keyword into a definition. Messages go to the visitor.
class inpS_SetReader {
public:
  inpS_SetReader(const inp_Keyword& keyword, inpS_SetDefinition& definition, inp_Visitor& messages);

  // The instance that the keyword's "instance" parameter names; plain labels and names are its own.
  void SetInstance(const cow_String& instance) { m_instance = instance; }

  void Read();           // labels, names of other sets, scoped names and scoped labels
  void GenerateSetIds(); // first, last, increment per line

private:
  struct Id {
    long long label = 0;
    cow_String instance;
  };
  void ReadMixed();
  void ReadField(long long row, int col);
  void ReadName(long long row, int col);
  void GenerateRow(long long row);
  Id ReadId(long long row, int col, const Id& instead);
  long long ReadIncrement(long long row, int fields);
  void AddFault(long long row, int col, cow_String text);
  void RefuseField(long long row, int col);
  inpS_SetEntry& NewEntry(inpS_SetEntry::Kind kind, long long row, int col);
  inpS_SetEntry& LabelsOf(const cow_String& instance, long long row, int col);

  const inp_Keyword& m_keyword;
  const inp_DataArray& m_data;
  inpS_SetDefinition& m_definition;
  inp_Visitor& m_messages;
  cow_String m_instance;
  int m_keywordIndex = 0;
};
