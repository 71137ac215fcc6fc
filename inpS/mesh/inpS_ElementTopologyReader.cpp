#include "inpS/mesh/inpS_ElementTopologyReader.h"
#include "parser/inp_BulkDecode.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>
#include <cstdlib>

namespace {

constexpr long long kMaxLabel = 999999999;

bool carriesReferenceNode(const inpS_ElementParameters& type) {
  return type.IsAxisymmetricRigidSurfaceElement() || type.Is3DDragchainElement();
}

// Beams take one node more than their topology needs: it orients the first section axis.
bool mayCarryOrientationNode(const inpS_ElementParameters& type) {
  return type.IsBeamElement() && type.MaxNodesPerElement() == type.MinNodesPerElement() + 1;
}

} // namespace

inpS_ElementTopologyReader::inpS_ElementTopologyReader(const inpS_ElementParameters& type,
                                                       inp_Visitor& messages)
    : m_type(type), m_messages(messages) {}

void inpS_ElementTopologyReader::Read(const inp_Keyword& keyword, bool scopedNodes) {
  inp_ElementForm form;
  form.maxNodes = m_type.MaxNodesPerElement();
  form.extraFields = carriesReferenceNode(m_type) ? 1 : 0;
  form.firstLineNodes = m_type.FirstLineNodes();
  inp_ElementRows rows;
  inp_decodeElements(keyword.Data(), form, rows);
  if (rows.odd.empty())
    TakeRegular(keyword, rows);
  else
    Rebuild(keyword, rows, scopedNodes);
  const bool extra = carriesReferenceNode(m_type) || mayCarryOrientationNode(m_type);
  m_topology = extra ? m_type.MinNodesPerElement() : std::max(m_width, m_type.MinNodesPerElement());
  CheckCounts(keyword);
}

void inpS_ElementTopologyReader::TakeRegular(const inp_Keyword&, inp_ElementRows& rows) {
  const int extra = carriesReferenceNode(m_type) ? 1 : 0;
  const int least = m_type.MinNodesPerElement() + extra;
  const int most = m_type.MaxNodesPerElement() + extra;
  m_width = rows.width;
  m_labels = std::move(rows.labels);
  m_nodes = std::move(rows.nodes);
  const bool uniform = rows.counts.IsEmpty();
  m_ragged = !uniform;
  if (uniform && rows.width >= least && rows.width <= most) return;
  for (std::size_t n = 0; n < m_labels.Size(); ++n) {
    const int count = uniform ? rows.width : rows.counts[n];
    if (count > most) m_tooMany.push_back(m_labels[n]);
    if (count < least) m_tooFew.push_back(m_labels[n]);
  }
}

// Some lines could not be read by the bulk road (a text, a blank field, a label out of range): those
// are read field by field and the whole is put together in deck order.
void inpS_ElementTopologyReader::Rebuild(const inp_Keyword& keyword, inp_ElementRows& rows,
                                         bool scopedNodes) {
  struct Read {
    long long slot;
    bool usable;
    std::size_t firstScoped;
    cow_List<int> fields; // label, nodes
  };
  cow_List<Read> reads;
  m_width = rows.width;
  for (const inp_OddRow& odd : rows.odd) {
    Read& read = reads.emplace_back(Read{odd.slot, false, m_scopedNodes.size(), {}});
    read.usable = ReadOddRow(keyword, odd, rows, scopedNodes, read.fields);
    if (!read.usable) m_scopedNodes.resize(read.firstScoped);
    if (read.usable) m_width = std::max(m_width, static_cast<int>(read.fields.size()) - 1);
  }
  std::size_t next = 0, scoped = 0;
  for (std::size_t n = 0; n < rows.labels.Size(); ++n) {
    if (next == reads.size() || reads[next].slot != static_cast<long long>(n)) {
      const int count = rows.counts.IsEmpty() ? rows.width : rows.counts[n];
      Add(rows.labels[n], rows.nodes.Data() + n * static_cast<std::size_t>(rows.width), count);
      continue;
    }
    const Read& read = reads[next++];
    if (!read.usable) continue;
    const std::size_t until = next < reads.size() ? reads[next].firstScoped : m_scopedNodes.size();
    for (; scoped < until; ++scoped)
      m_scopedNodes[scoped].element = static_cast<long long>(m_labels.Size());
    Add(read.fields[0], read.fields.data() + 1, static_cast<int>(read.fields.size()) - 1);
  }
}

void inpS_ElementTopologyReader::Add(int label, const int* nodes, int count) {
  const int extra = carriesReferenceNode(m_type) ? 1 : 0;
  if (count > m_type.MaxNodesPerElement() + extra) m_tooMany.push_back(label);
  if (count < m_type.MinNodesPerElement() + extra) m_tooFew.push_back(label);
  if (count < m_width) m_ragged = true;
  m_labels.Append(label);
  const std::size_t first = m_nodes.Size();
  m_nodes.Resize(first + static_cast<std::size_t>(m_width));
  std::copy_n(nodes, count, m_nodes.Data() + first);
  std::fill(m_nodes.Data() + first + count, m_nodes.Data() + first + m_width, 0);
}

bool inpS_ElementTopologyReader::ReadOddRow(const inp_Keyword& keyword, const inp_OddRow& odd,
                                            const inp_ElementRows& rows, bool scopedNodes,
                                            cow_List<int>& fields) {
  const inp_DataArray& data = keyword.Data();
  const auto slot = static_cast<std::size_t>(odd.slot);
  long long end = data.Rows();
  if (slot + 1 < rows.labels.Size())
    end = rows.rows.IsEmpty() ? odd.row + 1 : rows.rows[slot + 1];
  for (long long row = odd.row; row < end; ++row) {
    int cols = data.Cols(row);
    if (cols > 0 && data.IsNone(row, cols - 1)) --cols; // behind a trailing comma
    for (int col = 0; col < cols; ++col) {
      const inp_FieldType type = data.Type(row, col);
      const bool blankNode = type == inp_FieldType::None && m_type.IsConnectorElement();
      if (blankNode && !fields.empty()) {
        fields.push_back(0); // the grounded end of a connector
        continue;
      }
      if (type == inp_FieldType::Integer && std::llabs(data.AsInt64(row, col)) <= kMaxLabel) {
        fields.push_back(data.AsInt(row, col));
        continue;
      }
      if (type == inp_FieldType::String && scopedNodes && !fields.empty() &&
          ReadScoped(keyword, row, col, fields))
        continue;
      m_messages.AddError(inp_Utils::MessageAtField(
          keyword, row, col,
          "\"" + data.AsStringVerbatim(row, col) + "\" is no " +
              (fields.empty() ? "element" : "node") +
              " label: an integer of at most 999999999 was expected; element ignored."));
      return false;
    }
  }
  return !fields.empty();
}

bool inpS_ElementTopologyReader::ReadScoped(const inp_Keyword& keyword, long long row, int col,
                                            cow_List<int>& fields) {
  const cow_List<cow_String> parts =
      inp_Utils::SplitScopedSet(keyword.Data().AsString(row, col));
  if (!inp_Utils::IsScopedSetId(parts)) return false;
  const int label = std::atoi(parts.back().c_str());
  m_scopedNodes.push_back({0, static_cast<int>(fields.size()) - 1, parts[parts.size() - 2], label});
  fields.push_back(label);
  return true;
}

bool inpS_ElementTopologyReader::HasReferenceNodes() const {
  return HasExtraNodes() && carriesReferenceNode(m_type);
}

void inpS_ElementTopologyReader::Widen(utl_Buffer<int> nodes, int width) {
  m_nodes = std::move(nodes);
  m_width = m_topology = width;
}

void inpS_ElementTopologyReader::CheckCounts(const inp_Keyword& keyword) const {
  if (!m_tooMany.empty())
    m_messages.AddError(inp_Utils::MessageInKeyword(
        keyword,
        inp_Utils::Format("Too many nodes for element(s) of type \"%s\" ", m_type.Name().c_str()),
        m_tooMany));
  if (!m_tooFew.empty())
    m_messages.AddError(inp_Utils::MessageInKeyword(
        keyword,
        inp_Utils::Format("Too few nodes for element(s) of type \"%s\" ", m_type.Name().c_str()),
        m_tooFew));
}
