#include "inpS/mesh/inpS_ElcopyReader.h"
#include "base/utl_Assert.h"
#include "database/KvoObjLabeler.h"
#include "inpS/mesh/inpS_ReflectedNodes.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>
#include <set>

namespace {

constexpr long long kMaxLabel = 999999999;

bool isLabel(long long label) {
  return label >= 1 && label <= kMaxLabel;
}

} // namespace

inpS_ElcopyReader::inpS_ElcopyReader(long long elementShift, std::vector<int> oldElements,
                                     long long nodeShift, bool reflect, const inpS_MeshScope& scope,
                                     const KvoObjLabeler& nodes, const KvoObjLabeler& elements,
                                     cow_List<cow_String> typeNames)
    : m_elementShift(elementShift), m_old(std::move(oldElements)), m_nodeShift(nodeShift),
      m_reflect(reflect), m_elements(scope, nodes), m_labels(elements),
      m_occurrence(scope.elementOccurrence), m_typeNames(std::move(typeNames)) {}

bool inpS_ElcopyReader::Read(const inp_Keyword& keyword, inp_Visitor& messages) {
  if (!FindRuns(keyword, messages) || !CheckLabels(keyword, messages) ||
      !CheckNodes(keyword, messages))
    return false;
  if (m_reflect) ReportUnreflected(keyword, messages);
  return true;
}

// ---- what is to be copied

bool inpS_ElcopyReader::FindRuns(const inp_Keyword& keyword, inp_Visitor& messages) {
  const inpS_ElementBlock* block = nullptr;
  for (long long copy = 0; copy < Count(); ++copy) {
    const long long ordinal = m_old[static_cast<std::size_t>(copy)];
    if (!block || ordinal < block->first || ordinal >= block->first + block->count) {
      const inpS_OldElements::Place place = m_elements.Find(ordinal);
      if (!place.owner) {
        messages.AddError(inp_Utils::MessageAtParameter(
            keyword, "oldset",
            "The set holds elements that were in the model before the restart; they cannot be "
            "copied. Nothing is copied."));
        return false;
      }
      m_segments.push_back({place, copy});
      block = &place.Block();
    }
    AddTo(*block, copy);
  }
  return true;
}

void inpS_ElcopyReader::AddTo(const inpS_ElementBlock& block, long long copy) {
  const bool goesOn = !m_runs.empty() && m_runs.back().kind.spec == block.spec &&
                      m_runs.back().kind.source == block.source &&
                      m_runs.back().kind.offset == block.offset;
  if (!goesOn) {
    Run& run = m_runs.emplace_back();
    run.kind = {block.spec, 0, block.source, true, {}, block.offset, block.plane};
    run.first = copy;
  }
  Run& run = m_runs.back();
  const int nodes = m_elements.CountOf(block, m_old[static_cast<std::size_t>(copy)]);
  run.ragged = run.ragged || block.ragged || (run.count > 0 && nodes != run.kind.width);
  run.kind.width = std::max(run.kind.width, nodes);
  ++run.count;
  if (!m_reflect) return;
  const auto size = static_cast<std::size_t>(nodes);
  if (run.places.size() <= size) run.places.resize(size + 1);
  if (run.places[size].empty() && nodes > 0)
    run.places[size] =
        inpS_reflectedPlaces(m_typeNames[static_cast<std::size_t>(block.spec)], nodes);
}

bool inpS_ElcopyReader::CheckLabels(const inp_Keyword& keyword, inp_Visitor& messages) const {
  for (const int ordinal : m_old) {
    const long long label = m_labels.GetInstanceLabel(m_occurrence, ordinal) + m_elementShift;
    if (isLabel(label)) continue;
    messages.AddError(inp_Utils::MessageAtParameter(
        keyword, "elementshift",
        (label > 0 ? inpS_messageText(inpS_mesh_ElementNumberTooLarge)
                   : "Element labels must be positive integers: " + std::to_string(label) + ".") +
            " Nothing is copied."));
    return false;
  }
  return true;
}

bool inpS_ElcopyReader::CheckNodes(const inp_Keyword& keyword, inp_Visitor& messages) const {
  const auto shiftedOut = [this](int label) { return label > 0 && !isLabel(label + m_nodeShift); };
  for (std::size_t n = 0; n < m_segments.size(); ++n) {
    const inpS_ElementBlock& block = m_segments[n].place.Block();
    const long long end = n + 1 < m_segments.size() ? m_segments[n + 1].first : Count();
    for (long long copy = m_segments[n].first; copy < end; ++copy) {
      const int ordinal = m_old[static_cast<std::size_t>(copy)];
      const auto nodes = inpS_OldElements::NodesOf(block, ordinal);
      const auto scoped = inpS_OldElements::ScopedOf(block, ordinal);
      if (std::none_of(nodes.begin(), nodes.end(), shiftedOut) &&
          std::none_of(scoped.begin(), scoped.end(),
                       [&](const auto& node) { return shiftedOut(node.label); }))
        continue;
      messages.AddError(inp_Utils::MessageAtParameter(
          keyword, "shiftnodes",
          "The shift leads to node labels that are not from 1 to 999999999 in the copy of element "
          "" + std::to_string(m_labels.GetInstanceLabel(m_occurrence, ordinal)) +
              ". Nothing is copied."));
      return false;
    }
  }
  return true;
}

void inpS_ElcopyReader::ReportUnreflected(const inp_Keyword& keyword, inp_Visitor& messages) const {
  std::set<cow_String> types;
  for (const Run& run : m_runs)
    for (std::size_t nodes = 0; nodes < run.places.size(); ++nodes) {
      const cow_String& type = m_typeNames[static_cast<std::size_t>(run.kind.spec)];
      if (!run.places[nodes].empty() && !inpS_isReflectable(type, static_cast<int>(nodes)))
        types.insert(type);
    }
  if (types.empty()) return;
  messages.AddWarning(inp_Utils::MessageInKeyword(
      keyword,
      "The order of nodes of a mirrored element is not known for these types; the copies "
      "keep that of the old elements: ",
      cow_List<cow_String>(types.begin(), types.end())));
}

// ---- the copies

std::size_t inpS_ElcopyReader::SegmentOf(long long copy) const {
  const auto behind =
      std::partition_point(m_segments.begin(), m_segments.end(),
                           [copy](const Segment& segment) { return segment.first <= copy; });
  return static_cast<std::size_t>(behind - m_segments.begin()) - 1;
}

int inpS_ElcopyReader::NumberOfNodes(long long copy) const {
  if (copy < 0 || copy >= Count()) utl_assertionFailed("m_ElementNodes.size() > elementNum");
  return m_elements.CountOf(BlockOf(copy), m_old[static_cast<std::size_t>(copy)]);
}

void inpS_ElcopyReader::Labels(long long first, std::span<int> labels) const {
  for (std::size_t n = 0; n < labels.size(); ++n)
    labels[n] = static_cast<int>(
        m_labels.GetInstanceLabel(m_occurrence, m_old[static_cast<std::size_t>(first) + n]) +
        m_elementShift);
}

cow_List<int> inpS_ElcopyReader::ElementTypes() const {
  cow_List<int> types;
  for (const Run& run : m_runs) types.push_back(run.kind.spec);
  return types;
}

inpS_MadeElements inpS_ElcopyReader::Connectivity(std::size_t number) const {
  const Run& run = m_runs[number];
  inpS_MadeElements made;
  made.kind = run.kind;
  made.ragged = run.ragged;
  made.count = run.count;
  made.labels = [this, &run](long long first, std::span<int> labels) {
    Labels(run.first + first, labels);
  };
  made.nodes = [this, &run](long long first, std::span<int> nodes) { Fill(run, first, nodes); };
  AddScoped(run, made);
  return made;
}

void inpS_ElcopyReader::Fill(const Run& run, long long first, std::span<int> nodes) const {
  const auto width = static_cast<std::size_t>(run.kind.width);
  std::size_t segment = SegmentOf(run.first + first);
  const auto shift = static_cast<int>(m_nodeShift);
  for (std::size_t at = 0; at < nodes.size(); at += width) {
    const long long copy = run.first + first + static_cast<long long>(at / width);
    if (segment + 1 < m_segments.size() && m_segments[segment + 1].first <= copy) ++segment;
    const inpS_ElementBlock& block = m_segments[segment].place.Block();
    const int ordinal = m_old[static_cast<std::size_t>(copy)];
    const int* old = inpS_OldElements::NodesOf(block, ordinal).data();
    const auto count = static_cast<std::size_t>(m_elements.CountOf(block, ordinal));
    int* to = nodes.data() + at;
    if (m_reflect && count > 0) {
      const int* places = run.places[count].data();
      for (std::size_t n = 0; n < count; ++n) to[n] = old[places[n]];
    } else {
      std::copy_n(old, count, to);
    }
    for (std::size_t n = 0; n < count; ++n)
      if (to[n] > 0) to[n] += shift;
    std::fill(to + count, to + width, 0);
  }
}

void inpS_ElcopyReader::AddScoped(const Run& run, inpS_MadeElements& made) const {
  for (std::size_t n = SegmentOf(run.first); n < m_segments.size(); ++n) {
    const inpS_ElementBlock& block = m_segments[n].place.Block();
    const long long begin = std::max(run.first, m_segments[n].first);
    const long long behind = n + 1 < m_segments.size() ? m_segments[n + 1].first : Count();
    const long long end = std::min(run.first + run.count, behind);
    if (begin >= end) break;
    for (long long copy = begin; copy < end && !block.scoped.empty(); ++copy)
      for (inpS_ScopedNode node :
           inpS_OldElements::ScopedOf(block, m_old[static_cast<std::size_t>(copy)])) {
        node.element = copy - run.first;
        node.label += static_cast<int>(m_nodeShift);
        if (m_reflect) {
          const cow_List<int>& places = run.places[static_cast<std::size_t>(NumberOfNodes(copy))];
          node.index = static_cast<int>(std::find(places.begin(), places.end(), node.index) -
                                        places.begin());
        }
        made.scoped.push_back(std::move(node));
      }
  }
}
