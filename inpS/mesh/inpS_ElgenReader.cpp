#include "inpS/mesh/inpS_ElgenReader.h"
#include "database/KvoObjLabeler.h"
#include "inpS/keywords/inpS_Flag.h"
#include "inpS/mesh/inpS_GenerationLimit.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

constexpr long long kMaxLabel = 999999999;
constexpr int kFields = 10;

} // namespace

inpS_ElgenReader::inpS_ElgenReader(const inp_Keyword& keyword, const inpS_MeshScope& scope,
                                   const KvoObjLabeler& nodes, const KvoObjLabeler& elements,
                                   inp_Visitor& messages)
    : m_keyword(keyword), m_elements(elements), m_occurrence(scope.elementOccurrence),
      m_old(scope, nodes), m_messages(messages),
      m_allNodes(inpS_readFlag(keyword, "allnodes", messages)) {}

bool inpS_ElgenReader::Refuse(long long row, int col, cow_String text) {
  m_messages.AddError(inp_Utils::MessageAtField(
      m_keyword, row, col, std::move(text) + " Nothing is generated from this line."));
  return false;
}

bool inpS_ElgenReader::ReadLine(long long row) {
  const inp_DataArray& data = m_keyword.Data();
  int fields = 0;
  for (int col = 0, cols = data.Cols(row); col < cols; ++col)
    if (data.HasValue(row, col)) fields = col + 1;
  if (fields == 0) return false; // a blank line says nothing
  if (fields > kFields)
    return Refuse(row, kFields, "The line has more than the ten fields it may have.");
  Pattern pattern;
  if (!ReadFields(row, pattern) || !FindMaster(row)) return false;
  const int label = m_elements.GetInstanceLabel(m_occurrence, m_master);
  if (!FitsLabels(row, pattern, label) || !FitsNodes(row, pattern)) return false;
  Make(pattern, label);
  return true;
}

// ---- the line

bool inpS_ElgenReader::ReadField(long long row, int col, long long& value) {
  const inp_DataArray& data = m_keyword.Data();
  if (col >= data.Cols(row) || !data.HasValue(row, col)) return true;
  if (!data.IsInteger(row, col))
    return Refuse(row, col, "\"" + data.AsStringVerbatim(row, col) + "\" is not an integer.");
  value = data.AsInt64(row, col);
  return true;
}

bool inpS_ElgenReader::ReadFields(long long row, Pattern& pattern) {
  for (int direction = 0; direction < kDirections; ++direction) {
    const int col = 1 + 3 * direction;
    long long& count = pattern.counts[direction];
    long long& nodes = pattern.nodeSteps[direction];
    long long& elements = pattern.elementSteps[direction];
    if (!ReadField(row, col, count) || !ReadField(row, col + 1, nodes) ||
        !ReadField(row, col + 2, elements))
      return false;
    if (count < 0) return Refuse(row, col, "The number of elements is negative.");
    if (count == 0) count = 1;
    if (count == 1) nodes = elements = 0; // never taken
    if (count > kMaxLabel)
      return Refuse(row, col, inpS_messageText(inpS_mesh_ElementNumberTooLarge));
    if (count > 1 && elements == 0)
      return Refuse(row, col + 2, "With an increment of 0 all elements would have one label.");
    for (const int field : {1, 2}) {
      const long long step = field == 1 ? nodes : elements;
      if (step < -kMaxLabel || step > kMaxLabel)
        return Refuse(row, col + field,
                      "The increment leads to labels that are not from 1 to 999999999.");
    }
  }
  return true;
}

bool inpS_ElgenReader::FindMaster(long long row) {
  long long label = 0;
  if (!ReadField(row, 0, label)) return false;
  const bool isLabel = label > 0 && label <= kMaxLabel;
  m_master = isLabel ? m_elements.ConvertInstanceLabel(m_occurrence, static_cast<int>(label)) : -1;
  if (m_master < 0)
    return Refuse(row, 0,
                  "Element " + std::to_string(label) + " is not defined in front of this keyword.");
  const inpS_OldElements::Place place = m_old.Find(m_master);
  if (!place.owner)
    return Refuse(row, 0,
                  "Element " + std::to_string(label) +
                      " was in the model before the restart and cannot be copied.");
  const inpS_ElementBlock& block = place.Block();
  const int count = m_old.CountOf(block, m_master);
  const auto nodes =
      inpS_OldElements::NodesOf(block, m_master).first(static_cast<std::size_t>(count));
  const auto scoped = inpS_OldElements::ScopedOf(block, m_master);
  m_nodes.assign(nodes.begin(), nodes.end());
  m_scoped.assign(scoped.begin(), scoped.end());
  m_made = {};
  m_made.kind = {block.spec, count, block.source, true, {}, block.offset, block.plane};
  m_made.topology = block.topology;
  m_made.referenceNode = block.referenceNode;
  m_made.ragged = block.ragged;
  return true;
}

// ---- limits, before anything is made

inpS_ElgenReader::Span inpS_ElgenReader::SpanOf(const Pattern& pattern,
                                                const long long (&steps)[kDirections]) {
  Span span;
  for (int direction = 0; direction < kDirections; ++direction) {
    const long long last = (pattern.counts[direction] - 1) * steps[direction];
    (last < 0 ? span.least : span.most) += last;
  }
  return span;
}

// Counts and steps are at most 10^9 each, so sums of two products fit; that of three counts may
// not.
bool inpS_ElgenReader::FitsLabels(long long row, const Pattern& pattern, long long master) {
  const Span span = SpanOf(pattern, pattern.elementSteps);
  if (master + span.most > kMaxLabel)
    return Refuse(row, 0, inpS_messageText(inpS_mesh_ElementNumberTooLarge));
  if (master + span.least < 1)
    return Refuse(
        row, 0,
        "Element labels must be positive integers: " + std::to_string(master + span.least) + ".");
  const long long labels =
      std::min(span.most - span.least + 1, kMaxLabel - m_elements.Size(m_occurrence) + 1);
  const long long inLayer = pattern.counts[0] * pattern.counts[1];
  if (inLayer <= labels && inLayer * pattern.counts[2] <= labels) {
    const long long made = inLayer * pattern.counts[2] - 1;
    return made <= inpS_mostGenerated || Refuse(row, 0, inpS_tooManyGenerated(made, "elements"));
  }
  return Refuse(row, 0,
                inp_Utils::Format("There are %lld labels for %lld x %lld x %lld elements.", labels,
                                  pattern.counts[0], pattern.counts[1], pattern.counts[2]));
}

bool inpS_ElgenReader::FitsNodes(long long row, const Pattern& pattern) {
  const Span span = SpanOf(pattern, pattern.nodeSteps);
  const auto refuses = [&](int label, int index) {
    if (label <= 0 || !Moves(index)) return false;
    return label + span.least < 1 || label + span.most > kMaxLabel;
  };
  bool refused = false;
  for (std::size_t n = 0; n < m_nodes.size(); ++n)
    refused = refused || refuses(m_nodes[n], static_cast<int>(n));
  for (const inpS_ScopedNode& node : m_scoped) refused = refused || refuses(node.label, node.index);
  if (!refused) return true;
  return Refuse(row, 0, "The increments lead to node labels that are not from 1 to 999999999.");
}

// ---- the elements

// Walks over the places along the rows, with the sum of the steps taken; the master is place 0.
class inpS_ElgenReader::Walk {
public:
  Walk(const Pattern& pattern, const long long (&steps)[kDirections], long long place)
      : m_pattern(pattern), m_steps(steps), m_along(place % pattern.counts[0]),
        m_row(place / pattern.counts[0] % pattern.counts[1]) {
    const long long layer = place / pattern.counts[0] / pattern.counts[1];
    m_shift = m_along * steps[0] + m_row * steps[1] + layer * steps[2];
  }
  long long Shift() const { return m_shift; }
  void Next() {
    m_shift += m_steps[0];
    if (++m_along < m_pattern.counts[0]) return;
    m_along = 0;
    m_shift += m_steps[1] - m_pattern.counts[0] * m_steps[0];
    if (++m_row < m_pattern.counts[1]) return;
    m_row = 0;
    m_shift += m_steps[2] - m_pattern.counts[1] * m_steps[1];
  }

private:
  const Pattern& m_pattern;
  const long long (&m_steps)[kDirections];
  long long m_along;
  long long m_row;
  long long m_shift;
};

void inpS_ElgenReader::Make(const Pattern& pattern, int master) {
  m_made.count = pattern.counts[0] * pattern.counts[1] * pattern.counts[2] - 1;
  m_made.labels = [pattern, master](long long first, std::span<int> labels) {
    Walk walk(pattern, pattern.elementSteps, first + 1);
    for (int& label : labels) {
      label = static_cast<int>(master + walk.Shift());
      walk.Next();
    }
  };
  cow_List<int> moves; // 1 where a node takes part in the shift
  for (std::size_t n = 0; n < m_nodes.size(); ++n)
    moves.push_back(m_nodes[n] > 0 && Moves(static_cast<int>(n)) ? 1 : 0);
  m_made.nodes = [pattern, base = m_nodes, moves](long long first, std::span<int> nodes) {
    Walk walk(pattern, pattern.nodeSteps, first + 1);
    for (std::size_t at = 0; at < nodes.size(); at += base.size()) {
      const auto shift = static_cast<int>(walk.Shift());
      for (std::size_t n = 0; n < base.size(); ++n) nodes[at + n] = base[n] + moves[n] * shift;
      walk.Next();
    }
  };
  if (!m_scoped.empty()) MakeScoped(pattern);
}

void inpS_ElgenReader::MakeScoped(const Pattern& pattern) {
  Walk walk(pattern, pattern.nodeSteps, 1);
  for (long long element = 0; element < m_made.count; ++element) {
    for (inpS_ScopedNode node : m_scoped) {
      node.element = element;
      if (Moves(node.index)) node.label += static_cast<int>(walk.Shift());
      m_made.scoped.push_back(std::move(node));
    }
    walk.Next();
  }
}
