#pragma once

#include "base/utl_Buffer.h"
#include "inpS/keywords/inpS_BlankLine.h"
#include "inpS/mesh/inpS_KnownNodes.h"
#include "inpS/mesh/inpS_NodeGenerator.h"
#include "parser/inp_Keyword.h"

class inp_Visitor;

// A node as generators reckon with it: coordinates, then the normal's components (zero when it has
// none).
struct inpS_NodeValues {
  double value[6] = {};
  bool hasNormal = false;
};

// Base of the readers that make nodes from nodes: looks up what their lines name, reports what is
// wrong with a line at its place, and hands the new nodes over by the piece.
class inpS_GeneratingReader : public inpS_NodeGenerator {
public:
  inpS_GeneratingReader(inpS_KnownNodes& known, inp_Visitor& messages, bool threeDimensional);

protected:
  static constexpr long long kMaxLabel = 999999999;

  void Open(const inp_Keyword& keyword, const inpS_NodeSink& sink, inpS_SetDefinition* collection);

  // ---- one line's fields; false when there was something to report, which then was done
  bool IsBlank(long long row) const { return inpS_isBlank(m_keyword->Data(), row); }
  void TellNoLines(); // warns of a keyword that has none but blank ones
  // Warn of what stands behind all that a keyword reads: fields of a line, lines.
  void TellUnused(long long row, int fields);
  void TellUnusedRows(long long row);
  // Warn of a line that ends before the coordinates of its points, but for the third of a point in
  // a plane.
  void TellMissing(long long row, int coordinates);
  bool ReadNodes(long long row, int col, inpS_KnownNodes::Set& nodes); // a label or a set's name
  bool ReadNode(long long row, int col, long long& ordinal);           // a label
  bool ReadInteger(long long row, int col, long long absent, long long& value);
  bool ReadReal(long long row, int col, double absent, double& value);
  bool ReadPoint(long long row, int col, double point[3]); // what is absent is 0
  // Whether the sets of fields 0 and 1 can be paired.
  bool ArePairs(long long row, const inpS_KnownNodes::Set& a, const inpS_KnownNodes::Set& b);
  bool HasValue(long long row, int col) const;
  bool Fails(long long row, int col, cow_String text); // reports at the field; always false
  bool Fails(long long row, cow_String text);

  static bool IsLabel(long long label) { return label >= 1 && label <= kMaxLabel; }
  static cow_String InvalidLabel(long long label); // without a full stop
  // Whether all labels first + n * increment for n = 1 … count are from 1 to 999999999.
  bool LabelsFit(long long row, long long first, long long increment, long long count);
  bool CountFits(long long row, long long count); // inpS_mostGenerated

  // ---- nodes
  inpS_NodeValues ValuesOf(long long ordinal);
  void Gather(const inpS_KnownNodes::Set& nodes, cow_List<inpS_NodeValues>& values);
  void Collect(const inpS_KnownNodes::Set& nodes); // they go into the collection as they are
  void Emit(long long label, const inpS_NodeValues& node);
  void Flush();
  void Close(); // at the end of the keyword

  const inp_Keyword& Keyword() const { return *m_keyword; }
  inpS_KnownNodes& Known() { return m_known; }
  inp_Visitor& Messages() { return m_messages; }

private:
  inpS_KnownNodes& m_known;
  inp_Visitor& m_messages;
  const inp_Keyword* m_keyword = nullptr;
  const inpS_NodeSink* m_sink = nullptr;
  inpS_SetDefinition* m_collection = nullptr;
  utl_Buffer<int> m_labels; // the piece at hand
  utl_Buffer<double> m_coordinates;
  utl_Buffer<std::size_t> m_normalAt;
  utl_Buffer<double> m_normals;
};
