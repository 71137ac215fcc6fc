#include "inpS/mesh/inpS_GeneratingReader.h"
#include "base/utl_BlockSize.h"
#include "inpS/framework/inpS_System.h"
#include "inpS/keywords/inpS_TinyNumber.h"
#include "inpS/keywords/inpS_UnreadField.h"
#include "inpS/mesh/inpS_GenerationLimit.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "inpS/sets/inpS_SetServices.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>
#include <cstdlib>

namespace {

constexpr std::size_t kPiece = 1 << 14; // nodes handed over at a time

} // namespace

inpS_GeneratingReader::inpS_GeneratingReader(inpS_KnownNodes& known, inp_Visitor& messages,
                                             bool threeDimensional)
    : inpS_NodeGenerator(threeDimensional), m_known(known), m_messages(messages) {}

void inpS_GeneratingReader::Open(const inp_Keyword& keyword, const inpS_NodeSink& sink,
                                 inpS_SetDefinition* collection) {
  m_keyword = &keyword;
  m_sink = &sink;
  m_collection = collection;
}

// ---- fields

bool inpS_GeneratingReader::Fails(long long row, int col, cow_String text) {
  m_messages.AddError(inp_Utils::MessageAtField(*m_keyword, row, col, std::move(text)));
  return false;
}

bool inpS_GeneratingReader::Fails(long long row, cow_String text) {
  m_messages.AddError(inp_Utils::MessageAtRow(*m_keyword, row, std::move(text)));
  return false;
}

bool inpS_GeneratingReader::HasValue(long long row, int col) const {
  const inp_DataArray& data = m_keyword->Data();
  return row < data.Rows() && col < data.Cols(row) && data.HasValue(row, col);
}

void inpS_GeneratingReader::TellNoLines() {
  if (inpS_isBlank(m_keyword->Data()))
    m_messages.AddWarning(inp_Utils::MessageInKeyword(
        *m_keyword, "There are no data lines; no nodes are generated."));
}

void inpS_GeneratingReader::TellUnused(long long row, int fields) {
  if (row >= m_keyword->Data().Rows()) return;
  int col = fields;
  const int cols = m_keyword->Data().Cols(row);
  while (col < cols && !HasValue(row, col)) ++col;
  if (col >= cols) return;
  m_messages.AddWarning(inp_Utils::MessageAtField(
      *m_keyword, row, col,
      "This field and those behind it have no meaning here; they are left out."));
  m_messages.LeaveOut("value", inpS_countGiven(*m_keyword, row, col));
}

void inpS_GeneratingReader::TellMissing(long long row, int coordinates) {
  int given = m_keyword->Data().Cols(row);
  while (given > 0 && !HasValue(row, given - 1)) --given;
  const int needed = m_threeDimensional ? coordinates : coordinates - 1;
  if (given >= needed) return;
  const int missing = coordinates - given;
  m_messages.AddWarning(inp_Utils::MessageAtRow(
      *m_keyword, row,
      inp_Utils::Format("The line has %d of its %d coordinates; the other%s read as 0.", given,
                        coordinates, missing == 1 ? " is" : "s are")));
}

void inpS_GeneratingReader::TellUnusedRows(long long row) {
  while (row < m_keyword->Data().Rows() && IsBlank(row)) ++row;
  if (row >= m_keyword->Data().Rows()) return;
  m_messages.AddWarning(inp_Utils::MessageAtRow(
      *m_keyword, row, "This line and those behind it have no meaning here; they are left out."));
  m_messages.LeaveOut("data line", m_keyword->Data().Rows() - row);
}

bool inpS_GeneratingReader::ReadInteger(long long row, int col, long long absent,
                                        long long& value) {
  value = absent;
  if (!HasValue(row, col)) return true;
  const inp_DataArray& data = m_keyword->Data();
  value = data.AsInt64(row, col);
  if (data.IsInteger(row, col) && std::llabs(value) <= kMaxLabel) return true;
  return Fails(row, col,
               "\"" + data.AsStringVerbatim(row, col) +
                   "\" is no integer of at most 999999999; line ignored.");
}

bool inpS_GeneratingReader::ReadReal(long long row, int col, double absent, double& value) {
  value = absent;
  if (!HasValue(row, col)) return true;
  const inp_DataArray& data = m_keyword->Data();
  value = data.AsDouble(row, col);
  if (auto tiny = inpS_tinyNumberMessage(*m_keyword, row, col))
    m_messages.AddWarning(std::move(*tiny));
  if (data.IsNumber(row, col)) return true;
  return Fails(row, col, "\"" + data.AsStringVerbatim(row, col) + "\" is no number; line ignored.");
}

bool inpS_GeneratingReader::ReadPoint(long long row, int col, double point[3]) {
  for (int i = 0; i < 3; ++i)
    if (!ReadReal(row, col + i, 0.0, point[i])) return false;
  return true;
}

bool inpS_GeneratingReader::ReadNode(long long row, int col, long long& ordinal) {
  long long label = 0;
  if (!HasValue(row, col))
    return Fails(row, inpS_messageText(inpS_mesh_IncompleteData) + " Line ignored.");
  if (!ReadInteger(row, col, 0, label)) return false;
  ordinal = m_known.OrdinalOf(static_cast<int>(label));
  if (ordinal >= 0) return true;
  return Fails(row, col, "Node " + std::to_string(label) + " does not exist; line ignored.");
}

bool inpS_GeneratingReader::ReadNodes(long long row, int col, inpS_KnownNodes::Set& nodes) {
  const inp_DataArray& data = m_keyword->Data();
  if (!HasValue(row, col) || data.Type(row, col) != inp_FieldType::String) {
    long long ordinal = 0;
    if (!ReadNode(row, col, ordinal)) return false;
    nodes = {};
    nodes.ordinals = eds_MemberSet::Strided(static_cast<int>(ordinal), 1);
    return true;
  }
  const cow_String name = data.AsString(row, col);
  const cow_List<cow_String> parts = inp_Utils::SplitScopedField(data.AsStringVerbatim(row, col));
  if (inp_Utils::IsScopedSetId(parts) || inp_Utils::IsScopedSetName(parts))
    return Fails(row, col,
                 "Nodes of an instance (" + name +
                     ") cannot be used to generate nodes outside of it; line ignored.");
  if (!m_known.FindSet(name, nodes))
    return Fails(row, col, inpS_messageText(inpS_mesh_NodeSetUnknown, {name}) + " Line ignored.");
  if (!nodes.leftOut) return true;
  return Fails(row, col,
               "Set \"" + name +
                   "\" names nodes of instances, which "
                   "cannot be used to generate nodes; line ignored.");
}

bool inpS_GeneratingReader::ArePairs(long long row, const inpS_KnownNodes::Set& a,
                                     const inpS_KnownNodes::Set& b) {
  if (a.ordinals.IsEmpty() && b.ordinals.IsEmpty()) {
    m_messages.AddWarning(inp_Utils::MessageAtRow(
        *m_keyword, row, "The sets hold no nodes yet; the line has no effect."));
    return false;
  }
  if (a.ordinals.Size() == b.ordinals.Size()) return true;
  const inp_DataArray& data = m_keyword->Data();
  const cow_String names = data.AsString(row, 0) + ", " + data.AsString(row, 1);
  return Fails(
      row, inp_Utils::Format(inpS_messageText(inpS_mesh_SetSizesDiffer).c_str(), names.c_str()) +
               " Line ignored.");
}

// The text has a cut placeholder where the label belongs.
cow_String inpS_GeneratingReader::InvalidLabel(long long label) {
  cow_String text = inpS_messageText(inpS_mesh_NodeNumberInvalid);
  const std::size_t cut = text.find("%1$");
  return text.substr(0, cut) + std::to_string(label);
}

bool inpS_GeneratingReader::LabelsFit(long long row, long long first, long long increment,
                                      long long count) {
  if (count <= 0) return true;
  const long long last = first + count * increment; // all within 1e9 * 1e9
  const long long least = std::min(first + increment, last);
  const long long most = std::max(first + increment, last);
  if (IsLabel(least) && IsLabel(most)) return true;
  return Fails(row, InvalidLabel(IsLabel(least) ? most : least) + "; line ignored.");
}

bool inpS_GeneratingReader::CountFits(long long row, long long count) {
  if (count <= inpS_mostGenerated) return true;
  return Fails(row, inpS_tooManyGenerated(count, "nodes") + " Line ignored.");
}

// ---- nodes

inpS_NodeValues inpS_GeneratingReader::ValuesOf(long long ordinal) {
  inpS_NodeValues values;
  std::copy_n(m_known.Point(ordinal), 3, values.value);
  if (const double* normal = m_known.Normal(ordinal)) {
    std::copy_n(normal, 3, values.value + 3);
    values.hasNormal = true;
  }
  return values;
}

void inpS_GeneratingReader::Gather(const inpS_KnownNodes::Set& nodes,
                                   cow_List<inpS_NodeValues>& values) {
  const long long count = nodes.ordinals.Size();
  values.resize(static_cast<std::size_t>(count));
  for (long long n = 0; n < count; ++n)
    values[static_cast<std::size_t>(n)] = ValuesOf(nodes.ordinals[n]);
}

void inpS_GeneratingReader::Collect(const inpS_KnownNodes::Set& nodes) {
  if (m_collection) inpS_SetServices::UnionNodeSets(*m_collection, nodes.ordinals);
}

// Every normal of the mesh has unit length, interpolated ones too.
void inpS_GeneratingReader::Emit(long long label, const inpS_NodeValues& node) {
  if (!inpS_isFinite({node.value, node.hasNormal ? std::size_t{6} : std::size_t{3}}))
    return NoteOverflow(static_cast<int>(label));
  if (node.hasNormal) {
    // Without negative zeros, which would not come back from a deck written.
    double normal[3] = {node.value[3] + 0.0, node.value[4] + 0.0, node.value[5] + 0.0};
    if (ToUnitLength(normal)) {
      m_hasNormals = true;
      m_normalAt.Append(m_labels.Size());
      m_normals.Append({normal, 3});
    }
  }
  m_labels.Append(static_cast<int>(label));
  m_coordinates.Append({node.value, 3});
  if (m_labels.Size() >= utl_blockSize(kPiece)) Flush();
}

void inpS_GeneratingReader::Close() {
  Flush();
  TellOverflows(*m_keyword, m_messages);
}

void inpS_GeneratingReader::Flush() {
  if (!m_labels.IsEmpty()) (*m_sink)({m_labels, m_coordinates, m_normalAt, m_normals});
  m_labels.Clear();
  m_coordinates.Clear();
  m_normalAt.Clear();
  m_normals.Clear();
}
