#include "inpS/mesh/inpS_RedefinedElements.h"
#include "database/KvoObjLabeler.h"
#include "inpS/mesh/inpS_ElementSearch.h"
#include "inpS/mesh/inpS_MadeElements.h"
#include "inpS/mesh/inpS_OldElements.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>
#include <map>

namespace {

// Reading the lines of a long keyword again for each of thousands of short ones that repeat its
// elements would take hours: behind so many lines the keyword's own place has to do.
constexpr long long kLinesToSearch = 1000;

bool isOneKind(const inpS_ElementBlock& a, const inpS_ElementBlock& b) {
  return a.spec == b.spec && a.width == b.width && a.source == b.source && a.offset == b.offset &&
         a.topology == b.topology && a.referenceNode == b.referenceNode;
}

struct Element {
  const inpS_ElementBlock* block;
  long long at; // within the block
  std::span<const int> Nodes() const {
    std::span<const int> nodes = inpS_OldElements::NodesOf(*block, block->first + at);
    while (!nodes.empty() && nodes.back() == 0) nodes = nodes.first(nodes.size() - 1);
    return nodes;
  }
  std::span<const inpS_ScopedNode> Scoped() const {
    return inpS_OldElements::ScopedOf(*block, block->first + at);
  }
  const inpS_ElementBlock::From& From() const {
    return *(std::upper_bound(block->from.begin(), block->from.end(), at,
                              [](long long element, const inpS_ElementBlock::From& from) {
                                return element < from.firstElement;
                              }) -
             1);
  }
};

bool isSame(const Element& a, const Element& b) {
  if (a.block->spec != b.block->spec || a.block->source != b.block->source) return false;
  const auto isOneNode = [](const inpS_ScopedNode& one, const inpS_ScopedNode& other) {
    return one.index == other.index && one.label == other.label && one.instance == other.instance;
  };
  const auto nodes = a.Nodes(), others = b.Nodes();
  const auto scoped = a.Scoped(), otherScoped = b.Scoped();
  return std::equal(nodes.begin(), nodes.end(), others.begin(), others.end()) &&
         std::equal(scoped.begin(), scoped.end(), otherScoped.begin(), otherScoped.end(),
                    isOneNode);
}

// How many places of the block's elements the widest of them takes.
int widestOf(const inpS_ElementBlock& block) {
  int widest = std::min(1, block.width);
  for (long long n = 0; n < block.count && widest < block.width; ++n) {
    const std::span<const int> nodes = block.NodesOf(n);
    for (int i = block.width; i > widest; --i)
      if (nodes[static_cast<std::size_t>(i) - 1] != 0) widest = i;
  }
  for (const inpS_ScopedNode& node : block.scoped) widest = std::max(widest, node.index + 1);
  return widest;
}

// The block as what it holds by now would have made it.
void fit(inpS_ElementBlock& block) {
  bool implies = block.offset == 0;
  for (long long n = 0; n < block.count && !implies; ++n) implies = block.ImpliesPlanes(n);
  if (!implies) block.offset = 0;
  const int widest = widestOf(block);
  if (widest == block.width) return;
  utl_Buffer<int> nodes;
  for (long long n = 0; n < block.count; ++n)
    nodes.Append(block.NodesOf(n).first(static_cast<std::size_t>(widest)));
  block.nodes = std::move(nodes);
  block.topology = block.topology == block.width ? widest : std::min(block.topology, widest);
  block.referenceNode = block.referenceNode && widest > block.topology;
  block.width = widest;
}

// Puts runs of elements of several blocks together in blocks.
class Joiner {
public:
  cow_List<inpS_ElementBlock>& Blocks() { return m_blocks; }

  void Add(inpS_ElementBlock block) {
    m_blocks.push_back(std::move(block));
    m_mayJoin = false;
  }
  // Behind the last one, which is of its kind.
  void AddToLast(const inpS_ElementBlock& block) {
    m_mayJoin = true;
    Add(block, 0, block.count);
  }
  // What follows takes the places from this ordinal on.
  void Begin(long long ordinal) {
    m_next = ordinal;
    m_mayJoin = false;
  }
  void Add(const inpS_ElementBlock& block, long long begin, long long end) {
    if (begin == end) return;
    if (!m_mayJoin || !isOneKind(m_blocks.back(), block)) Open(block);
    inpS_ElementBlock& to = m_blocks.back();
    const long long shift = to.count - begin;
    for (const inpS_ElementBlock::From& from : FromOf(block, begin, end)) {
      const long long first = std::max(begin, from.firstElement) + shift;
      if (to.from.empty() || to.from.back().keyword.Body() != from.keyword.Body())
        to.from.push_back({from.keyword, first, to.first + first, from.form});
    }
    const auto scopedEnd = inpS_OldElements::ScopedOf(block, block.first + end);
    for (const inpS_ScopedNode* node =
             inpS_OldElements::ScopedOf(block, block.first + begin).data();
         node != scopedEnd.data(); ++node) {
      to.scoped.push_back(*node);
      to.scoped.back().element += shift;
    }
    const auto width = static_cast<std::size_t>(block.width);
    to.nodes.Append({block.nodes.Data() + static_cast<std::size_t>(begin) * width,
                     static_cast<std::size_t>(end - begin) * width});
    to.ragged = to.ragged || block.ragged;
    to.count += end - begin;
    m_next += end - begin;
  }

private:
  void Open(const inpS_ElementBlock& like) {
    inpS_ElementBlock& block = m_blocks.emplace_back();
    block.spec = like.spec;
    block.width = like.width;
    block.topology = like.topology;
    block.referenceNode = like.referenceNode;
    block.source = like.source;
    block.offset = like.offset;
    block.plane = like.plane;
    block.held = true;
    block.first = m_next;
    m_mayJoin = true;
  }
  static std::span<const inpS_ElementBlock::From> FromOf(const inpS_ElementBlock& block,
                                                         long long begin, long long end) {
    const auto first = &Element{&block, begin}.From();
    return {first, &Element{&block, end - 1}.From() + 1};
  }

  cow_List<inpS_ElementBlock> m_blocks;
  long long m_next = 0;
  bool m_mayJoin = false;
};

// What one keyword gave other nodes or another type.
struct Changed {
  const inpS_ElementBlock::From* from;
  inpS_ElementBlock::From first; // where the first one was defined before
  cow_List<int> labels;
};

void tell(const Changed& changed, inp_Visitor& messages) {
  const inp_Keyword& keyword = changed.from->keyword;
  const bool isHere = changed.first.keyword.Body() == keyword.Body();
  const int label = changed.labels.front();
  const auto at = inpS_ElementSearch(keyword, changed.from->form).OfLabel(label, isHere ? 2 : 1);
  wip_Message message = inp_Utils::MessageAtField(
      keyword, at.row, at.col,
      inp_Utils::MessageWithItems("Elements are defined again with other nodes or another type; "
                                  "the last definition of each holds: ",
                                  changed.labels));
  inpS_ElementSearch::Place place;
  if (isHere || changed.first.keyword.Data().Rows() <= kLinesToSearch)
    place = inpS_ElementSearch(changed.first.keyword, changed.first.form).OfLabel(label);
  message.notes.push_back(
      {"defined before here",
       inp_Utils::MessageAtField(changed.first.keyword, place.row, place.col, {}).place});
  messages.AddWarning(std::move(message));
}

} // namespace

// ---- while the deck is read

inpS_RedefinedElements::Again&
inpS_RedefinedElements::BlockFor(const inpS_ElementConnectivity::Kind& kind,
                                 const inp_Keyword& keyword) {
  const auto takes = [&](const inpS_ElementBlock& block) {
    return block.spec == kind.spec && block.width == kind.width && block.source == kind.source &&
           block.offset == kind.offset;
  };
  if (m_again.empty() || !takes(m_again.back().block)) {
    inpS_ElementBlock& block = m_again.emplace_back().block;
    block.spec = kind.spec;
    block.width = block.topology = kind.width;
    block.source = kind.source;
    block.offset = kind.offset;
    block.plane = kind.plane;
    block.held = true;
  }
  inpS_ElementBlock& block = m_again.back().block;
  if (block.from.empty() || block.from.back().keyword.Body() != keyword.Body())
    block.from.push_back({keyword, block.count, 0, kind.form});
  return m_again.back();
}

void inpS_RedefinedElements::AddOrdinals(Again& again, const cow_List<inpS_KnownElement>& known) {
  for (const inpS_KnownElement& element : known) again.ordinals.push_back(element.ordinal);
}

void inpS_RedefinedElements::Take(const inpS_ElementConnectivity::Kind& kind,
                                  const inp_Keyword& keyword, inpS_ElementTopologyReader again,
                                  bool ragged, const cow_List<inpS_KnownElement>& known) {
  Again& to = BlockFor(kind, keyword);
  inpS_ElementConnectivity::AppendHeld(to.block, again, ragged);
  AddOrdinals(to, known);
}

void inpS_RedefinedElements::Take(const inpS_MadeElements& again, const inp_Keyword& keyword,
                                  const cow_List<inpS_KnownElement>& known) {
  Again& to = BlockFor(again.kind, keyword);
  inpS_ElementConnectivity::AppendMade(to.block, again);
  AddOrdinals(to, known);
}

void inpS_RedefinedElements::Take(const inpS_ElementConnectivity::Kind& kind,
                                  const inp_Keyword& keyword, std::span<const int> ordinals,
                                  std::span<const inpS_OpenEntry> open,
                                  const cow_List<inpS_KnownElement>& known,
                                  const KvoObjLabeler& nodes, int occurrence, cow_List<int>& fresh,
                                  cow_List<inpS_OpenEntry>& freshOpen) {
  Again& to = BlockFor(kind, keyword);
  const auto width = static_cast<std::size_t>(kind.width);
  std::size_t nextKnown = 0, nextOpen = 0;
  for (std::size_t n = 0; n < ordinals.size() / width; ++n) {
    const bool isKnown = nextKnown < known.size() && known[nextKnown].at == n;
    if (isKnown) ++nextKnown;
    for (std::size_t entry = n * width; entry < (n + 1) * width; ++entry) {
      const bool isOpen =
          nextOpen < open.size() && open[nextOpen].entry == static_cast<long long>(entry);
      const inpS_OpenEntry* at = isOpen ? &open[nextOpen++] : nullptr;
      if (!isKnown) {
        if (at) freshOpen.push_back({static_cast<long long>(fresh.size()), at->label, at->element});
        fresh.push_back(ordinals[entry]);
      } else if (at) {
        to.block.nodes.Append(at->label == 0 ? -1 : at->label); // 0: no node
      } else {
        const int ordinal = ordinals[entry];
        to.block.ragged = to.block.ragged || ordinal < 0;
        to.block.nodes.Append(ordinal < 0 ? 0 : nodes.GetInstanceLabel(occurrence, ordinal));
      }
    }
  }
  to.block.count += static_cast<long long>(known.size());
  AddOrdinals(to, known);
}

// ---- putting them in their places

// By ordinal, those of one element in deck order.
cow_List<inpS_RedefinedElements::Definition> inpS_RedefinedElements::Definitions() const {
  cow_List<Definition> all;
  for (std::size_t again = 0; again < m_again.size(); ++again) {
    const cow_List<int>& ordinals = m_again[again].ordinals;
    for (std::size_t n = 0; n < ordinals.size(); ++n)
      if (ordinals[n] >= 0) all.push_back({ordinals[n], again, static_cast<long long>(n)});
  }
  std::stable_sort(all.begin(), all.end(),
                   [](const auto& a, const auto& b) { return a.ordinal < b.ordinal; });
  return all;
}

void inpS_RedefinedElements::Settle(inpS_ElementConnectivity& elements, const KvoObjLabeler& nodes,
                                    int nodeOccurrence, const KvoObjLabeler& labels,
                                    int elementOccurrence, inp_Visitor& messages) {
  if (m_again.empty()) return;
  const cow_List<Definition> all = Definitions();
  cow_List<Definition> last; // of those that are not what they were
  std::map<std::pair<std::size_t, const inpS_ElementBlock::From*>, Changed> changed; // deck order
  for (std::size_t n = 0; n < all.size();) {
    const int ordinal = all[n].ordinal;
    const inpS_ElementBlock* block = elements.BlockOf(ordinal);
    elements.Hold(elements.Blocks()[static_cast<std::size_t>(block - elements.Blocks().data())],
                  nodes, nodeOccurrence);
    const Element first = {block, ordinal - block->first};
    Element before = first;
    for (; n < all.size() && all[n].ordinal == ordinal; ++n) {
      const Element now = {&m_again[all[n].again].block, all[n].element};
      if (!isSame(before, now)) {
        const auto [to, isNew] = changed.try_emplace({all[n].again, &now.From()});
        if (isNew) to->second = {&now.From(), before.From(), {}};
        to->second.labels.push_back(labels.GetInstanceLabel(elementOccurrence, ordinal));
      }
      before = now;
    }
    if (!isSame(first, before)) last.push_back(all[n - 1]);
  }
  for (const auto& [place, one] : changed) tell(one, messages);
  if (!last.empty()) Replace(elements, last);
  Tidy(elements, nodes, nodeOccurrence);
  m_again.clear();
}

void inpS_RedefinedElements::Replace(inpS_ElementConnectivity& elements,
                                     std::span<const Definition> last) const {
  Joiner joiner;
  auto next = last.begin();
  for (inpS_ElementBlock& block : elements.Blocks()) {
    if (next == last.end() || next->ordinal >= block.first + block.count) {
      joiner.Add(std::move(block));
      continue;
    }
    joiner.Begin(block.first);
    long long at = 0;
    for (; next != last.end() && next->ordinal < block.first + block.count; ++next) {
      joiner.Add(block, at, next->ordinal - block.first);
      joiner.Add(m_again[next->again].block, next->element, next->element + 1);
      at = next->ordinal - block.first + 1;
    }
    joiner.Add(block, at, block.count);
  }
  elements.Blocks() = std::move(joiner.Blocks());
}

// Blocks without elements that went elsewhere, or got others in their places, are what a deck that
// defines nothing again would have made them: as wide as they need to be, and one where they are of
// one kind side by side.
void inpS_RedefinedElements::Tidy(inpS_ElementConnectivity& elements, const KvoObjLabeler& nodes,
                                  int nodeOccurrence) {
  cow_List<inpS_ElementBlock>& blocks = elements.Blocks();
  for (inpS_ElementBlock& block : blocks)
    if (block.held) fit(block);
  std::vector<bool> joins(blocks.size());
  for (std::size_t n = 1; n < blocks.size(); ++n) {
    joins[n] = isOneKind(blocks[n - 1], blocks[n]);
    if (!joins[n]) continue;
    elements.Hold(blocks[n - 1], nodes, nodeOccurrence);
    elements.Hold(blocks[n], nodes, nodeOccurrence);
  }
  if (std::find(joins.begin(), joins.end(), true) == joins.end()) return;
  Joiner joiner;
  for (std::size_t n = 0; n < blocks.size(); ++n) {
    if (joins[n])
      joiner.AddToLast(blocks[n]);
    else
      joiner.Add(std::move(blocks[n]));
  }
  blocks = std::move(joiner.Blocks());
}
