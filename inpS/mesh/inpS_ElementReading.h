#pragma once

#include "inpS/mesh/inpS_ElementConnectivity.h"
#include "inpS/mesh/inpS_ElementParameters.h"
#include "inpS/mesh/inpS_LabelFaults.h"

class inpS_ElementTypes;
class inpS_Salvage;
struct inpS_MeshScope;

// The elements of one *ELEMENT on their way to their owner: those of a plain type as they are
// decoded, any others once the keyword has been read.
class inpS_ElementReading {
public:
  // salvage: null where elements with faults are not passed over.
  inpS_ElementReading(const inp_Keyword& keyword, inpS_ElementTypes& types,
                      const KvoObjLabeler& nodes, KvoObjLabeler& elements, inpS_Salvage* salvage,
                      inp_Visitor& messages);

  // mayStream: nodes can be looked up already, and nobody wants the elements as labels.
  void Read(inpS_MeshScope& scope, bool mayStream);

  // What a set of the keyword holds: the new elements, and those that it defines again.
  long long First() const { return m_first; }
  long long Count() const { return m_count; }
  const cow_List<int>& Again() const { return m_again; }

private:
  void Stream(inpS_MeshScope& scope);
  void Hold(inpS_MeshScope& scope);
  void ImplyNodes(inpS_MeshScope& scope, inpS_ElementTopologyReader& reader);
  void NoteAgain(const cow_List<inpS_KnownElement>& known);
  void TellFaulty(const inpS_MeshScope& scope, const cow_List<int>& labels, const char* text);

  const inp_Keyword& m_keyword;
  const KvoObjLabeler& m_nodes;
  KvoObjLabeler& m_elements;
  inpS_Salvage* m_salvage;
  inp_Visitor& m_messages;
  inpS_ElementParameters m_type;
  inpS_ElementConnectivity::Kind m_kind;
  inpS_LabelFaults m_faults;
  long long m_first = 0;
  long long m_count = 0;
  cow_List<int> m_again; // ordinals
};
