#include "inpS/mesh/inpS_ElementReading.h"
#include "database/KvoObjLabeler.h"
#include "inpS/keywords/inpS_Flag.h"
#include "inpS/mesh/inpS_ElementStream.h"
#include "inpS/mesh/inpS_ElementTypes.h"
#include "inpS/mesh/inpS_GeneratedNodes.h"
#include "inpS/mesh/inpS_MeshScope.h"
#include "inpS/mesh/inpS_Salvage.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"

namespace {

inpS_ElementParameters typeOf(const inp_Keyword& keyword, const inpS_BasicElemTypeData& data,
                              inp_Visitor& messages) {
  const cow_String& name = keyword.Find("type")->AsString();
  const bool solidNumbering = inpS_readFlag(keyword, "solidelementnumbering", messages);
  const bool hasPlanes = inpS_ElementParameters(data, name).IsOffsetElement();
  const int offset = hasPlanes ? inpS_GeneratedNodes::OffsetOf(keyword, messages) : 0;
  return {data, name, solidNumbering, offset};
}

cow_String sourceOf(const inp_Keyword& keyword, const inpS_ElementParameters& type) {
  const inp_Item* file = keyword.Find("file");
  if (type.HasSolidElementNumbering()) return "SOLID ELEMENT NUMBERING";
  return file && type.IsSubstructure() ? "FILE=" + file->Verbatim() : "";
}

} // namespace

inpS_ElementReading::inpS_ElementReading(const inp_Keyword& keyword, inpS_ElementTypes& types,
                                         const KvoObjLabeler& nodes, KvoObjLabeler& elements,
                                         inpS_Salvage* salvage, inp_Visitor& messages)
    : m_keyword(keyword), m_nodes(nodes), m_elements(elements), m_salvage(salvage),
      m_messages(messages),
      m_type(typeOf(keyword, types.Data(), messages)), m_kind{types.IndexOf(m_type),
                                                              m_type.MaxNodesPerElement(),
                                                              sourceOf(keyword, m_type), false,
                                                              m_type.Form()} {}

void inpS_ElementReading::Read(inpS_MeshScope& scope, bool mayStream) {
  m_first = m_elements.Size(scope.elementOccurrence);
  m_elements.Reserve(scope.elementOccurrence, m_first + m_keyword.Data().Rows());
  // Elements that stood in front of all nodes make one block with those behind.
  m_kind.held = true;
  m_kind.held = !mayStream || m_salvage || !inpS_ElementStream::Serves(m_type) ||
                scope.elements.Continues(m_kind);
  if (m_kind.held)
    Hold(scope);
  else
    Stream(scope);
  m_faults.Report(m_keyword, m_type, m_messages);
  m_count = m_elements.Size(scope.elementOccurrence) - m_first;
}

// Of elements that are the owner's own.
void inpS_ElementReading::NoteAgain(const cow_List<inpS_KnownElement>& known) {
  for (const inpS_KnownElement& element : known)
    if (element.ordinal >= 0) m_again.push_back(element.ordinal);
}

void inpS_ElementReading::Stream(inpS_MeshScope& scope) {
  inpS_ElementStream stream(m_type, m_messages);
  const inpS_ElementBlock* block = nullptr;
  const auto append = [&](long long first, std::span<const int> ordinals,
                          std::span<const inpS_OpenEntry> open) {
    if (!block) block = &scope.elements.BlockFor(m_kind, first, m_keyword, scope.owner);
    scope.elements.AppendStreamed(ordinals, open);
  };
  const auto take = [&](const inpS_ElementStream::Piece& piece) {
    const long long first = m_elements.Size(scope.elementOccurrence);
    const cow_List<inpS_KnownElement> known = m_faults.Define(scope, piece.labels, m_elements);
    if (known.empty()) return append(first, piece.ordinals, piece.open);
    NoteAgain(known);
    cow_List<int> fresh;
    cow_List<inpS_OpenEntry> open;
    scope.redefined.Take(m_kind, m_keyword, piece.ordinals, piece.open, known, m_nodes,
                         scope.nodeOccurrence, fresh, open);
    if (!fresh.empty()) append(first, fresh, open);
  };
  stream.Read(m_keyword, m_nodes, scope.nodeOccurrence, take);
}

void inpS_ElementReading::Hold(inpS_MeshScope& scope) {
  inpS_ElementTopologyReader reader(m_type, m_messages);
  reader.Read(m_keyword, scope.kind == inpS_MeshScope::Kind::Root);
  if (m_salvage) m_salvage->LeaveOutFaulty(scope, m_elements, reader);
  if (reader.Count() == 0) return;
  ImplyNodes(scope, reader);
  m_kind.width = reader.Width();
  const long long first = m_elements.Size(scope.elementOccurrence);
  const cow_List<inpS_KnownElement> known = m_faults.Define(scope, reader.Labels(), m_elements);
  const bool ragged = reader.IsRagged() || m_type.IsConnectorElement();
  if (!known.empty()) {
    NoteAgain(known);
    cow_List<std::size_t> places;
    for (const inpS_KnownElement& element : known) places.push_back(element.at);
    scope.redefined.Take(m_kind, m_keyword, reader.TakeOut(places), ragged, known);
    if (reader.Count() == 0) return;
  }
  inpS_ElementBlock& block = scope.elements.BlockFor(m_kind, first, m_keyword, scope.owner);
  scope.elements.AppendHeld(block, reader, ragged);
}

// Elements that list the nodes of their first plane alone have the others by their labels.
void inpS_ElementReading::ImplyNodes(inpS_MeshScope& scope, inpS_ElementTopologyReader& reader) {
  if (!m_type.IsOffsetElement()) return;
  const cow_List<int> across = inpS_GeneratedNodes::AcrossInstances(m_type, reader);
  TellFaulty(scope, across, "Elements with nodes of instances must list all their nodes: ");
  if (!across.empty()) return; // the mesh fails
  const auto planes = inpS_GeneratedNodes::AddFourierPlanes(m_type, reader);
  m_kind.offset = planes.offset;
  m_kind.plane = m_type.NodesOfPlane();
  TellFaulty(scope, planes.tooFar,
             "OFFSET leads to node labels that are not from 1 to 999999999 in elements: ");
}

void inpS_ElementReading::TellFaulty(const inpS_MeshScope& scope, const cow_List<int>& labels,
                                     const char* text) {
  if (m_salvage) m_salvage->Note(scope, labels);
  if (!labels.empty()) m_messages.AddError(inp_Utils::MessageInKeyword(m_keyword, text, labels));
}
