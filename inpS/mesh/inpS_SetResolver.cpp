#include "inpS/mesh/inpS_SetResolver.h"
#include "database/KvoObjLabeler.h"
#include "inpS/keywords/inpS_QuotedName.h"
#include "inpS/mesh/inpS_BaseMesh.h"
#include "inpS/mesh/inpS_BaseSets.h"
#include "inpS/mesh/inpS_GenerationLimit.h"
#include "inpS/mesh/inpS_OldElements.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>
#include <optional>
#include <vector>

namespace {

using Entry = inpS_SetEntry;

int occurrenceOf(const inpS_MeshScope& scope, inpS_SetKind kind) {
  return kind == inpS_SetKind::Nodes ? scope.nodeOccurrence : scope.elementOccurrence;
}

long long baseOf(const inpS_MeshScope& scope, inpS_SetKind kind) {
  return kind == inpS_SetKind::Nodes ? scope.nodeBase : scope.elementBase;
}

const char* nounOf(inpS_SetKind kind) {
  return kind == inpS_SetKind::Nodes ? "nodes" : "elements";
}

// Stored connectivity, looked at element by element: the piece at hand is kept.
class inpS_ElementNodes {
public:
  std::span<const int> Of(const inpS_ElementBlock& block, long long element) {
    if (block.array.IsNull()) return {}; // without nodes, which was told
    if (&block != m_block) {
      m_reader.emplace(block.array);
      m_block = &block;
    }
    const long long perChunk = m_reader->ItemsPerChunk();
    const std::span<const int> chunk = m_reader->Chunk<int>(element / perChunk);
    const auto width = static_cast<std::size_t>(block.width);
    return chunk.subspan(static_cast<std::size_t>(element % perChunk) * width, width);
  }

private:
  const inpS_ElementBlock* m_block = nullptr;
  std::optional<eds_ArrayReader> m_reader;
};

} // namespace

// What the entries gave so far: runs of ordinals in the order read, and the labels nobody has.
struct inpS_SetResolver::Gathered {
  struct Run {
    int first;
    int count;
    int stride;
  };
  struct Missing {
    int keyword;
    long long first;
    long long last;
    long long count;
  };
  std::vector<Run> runs;
  std::vector<Missing> missing;
  std::vector<Scoped> asText; // elements that the model has as text alone
  long long total = 0;
  bool isCut = false;  // there are more than there may be, and the runs no longer hold them
  bool unread = false; // nodes of elements that only the database knows were asked for

  // Members that are no single run, which takes no room.
  long long Listed() const { return isCut || runs.size() > 1 ? total : 0; }

  void AddRun(long long first, long long count, int stride) {
    total += count;
    const bool goesOn = !runs.empty() && runs.back().stride == 1 && stride == 1 &&
                        runs.back().first + static_cast<long long>(runs.back().count) == first;
    if (goesOn)
      runs.back().count += static_cast<int>(count);
    else
      runs.push_back({static_cast<int>(first), static_cast<int>(count), stride});
  }
  void Add(long long ordinal) { AddRun(ordinal, 1, 1); }
  void Add(const eds_MemberSet& members, long long offset) {
    if (members.IsEmpty()) return;
    if (members.IsStrided())
      return AddRun(members.First() + offset, members.Size(),
                    members.Size() == 1 ? 1 : members.Stride());
    if (total + members.Size() > inpS_mostMembers) {
      total += members.Size();
      isCut = true;
      return;
    }
    for (const int member : members.List()) Add(member + offset);
  }
  void Miss(int keyword, long long label) {
    if (!missing.empty() && missing.back().keyword == keyword && missing.back().last + 1 == label) {
      ++missing.back().last;
      ++missing.back().count;
      return;
    }
    missing.push_back({keyword, label, label, 1});
  }

  eds_MemberSet Members(bool unsorted) const {
    if (runs.empty()) return {};
    if (runs.size() == 1 && (unsorted || runs[0].stride > 0))
      return eds_MemberSet::Strided(runs[0].first, runs[0].count, runs[0].stride);
    std::size_t total = 0;
    for (const Run& run : runs) total += static_cast<std::size_t>(run.count);
    std::vector<int> members;
    members.reserve(total);
    for (const Run& run : runs)
      for (long long n = 0; n < run.count; ++n)
        members.push_back(static_cast<int>(run.first + n * run.stride));
    return unsorted ? eds_MemberSet::Ordered(std::move(members))
                    : eds_MemberSet::Ascending(std::move(members));
  }
};

inpS_SetResolver::inpS_SetResolver(const KvoObjLabeler& nodes, const KvoObjLabeler& elements,
                                   inpS_MeshScopes& scopes, inp_Visitor& messages)
    : m_nodes(nodes), m_elements(elements), m_scopes(scopes), m_messages(messages) {}

const eds_MemberSet& inpS_SetResolver::Members(const inpS_MeshScope& scope,
                                               const inpS_SetDefinition& set) {
  Result& result = m_results[&set];
  if (result.state == State::New) ResolveFirst(scope, set);
  return m_results[&set].members;
}

// Sets of sets may be nested thousands deep: the open ones are kept in a list, not on the stack.
void inpS_SetResolver::ResolveFirst(const inpS_MeshScope& scope, const inpS_SetDefinition& set) {
  std::vector<Frame> open{{&scope, &set, 0}};
  m_results[&set].state = State::Open;
  while (!open.empty()) {
    Frame& frame = open.back();
    if (frame.nextEntry == frame.set->entries.size()) {
      Finish(*frame.scope, *frame.set);
      open.pop_back();
      continue;
    }
    const Entry& entry = frame.set->entries[frame.nextEntry++];
    if (entry.kind != Entry::Kind::Set && entry.kind != Entry::Kind::NodesOfElset) continue;
    if (!MayTell(entry)) continue;
    const inpS_SetKind kind =
        entry.kind == Entry::Kind::Set ? frame.set->kind : inpS_SetKind::Elements;
    const Target target = Find(*frame.scope, kind, *frame.set, entry, false);
    if (!target.set) continue; // reported when the entry is added
    State& state = m_results[target.set].state;
    if (state == State::Open)
      ReportEntry(*frame.set, entry,
                  "Set \"" + target.set->name + "\" holds itself; this entry is left out.");
    if (state != State::New) continue;
    state = State::Open;
    open.push_back({target.scope, target.set, 0});
  }
}

void inpS_SetResolver::Finish(const inpS_MeshScope& scope, const inpS_SetDefinition& set) {
  Gathered gathered;
  bool isTooLarge = false;
  for (const Entry& entry : set.entries) {
    AddEntry(scope, set, entry, gathered);
    isTooLarge = IsTooLarge(set, entry, gathered);
    if (isTooLarge) break;
  }
  ReportUndefined();
  ReportMissing(set, gathered);
  if (gathered.unread)
    m_messages.AddError(inp_Utils::MessageInKeyword(
        set.keywords.back(),
        "The nodes of elements that the model held before the restart cannot be "
        "taken into a set; they are left out."));
  Result& result = m_results[&set];
  result.state = isTooLarge ? State::TooLarge : State::Done;
  std::ranges::sort(gathered.asText);
  const auto again = std::unique(gathered.asText.begin(), gathered.asText.end());
  gathered.asText.erase(again, gathered.asText.end());
  result.asText = std::move(gathered.asText);
  if (isTooLarge) return;
  result.members = gathered.Members(set.unsorted);
  if (m_base) m_base->Judge(scope, set, result.members);
  m_listed += gathered.Listed();
}

// Told at the entry that goes too far.
bool inpS_SetResolver::IsTooLarge(const inpS_SetDefinition& set, const Entry& entry,
                                  const Gathered& gathered) {
  const long long listed = gathered.Listed();
  const bool inAll = listed <= inpS_mostMembers;
  if (inAll && m_listed + listed <= inpS_mostMembersInAll) return false;
  cow_String text =
      inAll ? inp_Utils::Format("With set \"%s\" the sets of the deck have more than %lld members",
                                set.name.c_str(), inpS_mostMembersInAll)
            : inp_Utils::Format("Set \"%s\" has more than %lld members", set.name.c_str(),
                                inpS_mostMembers);
  ReportEntry(set, entry, text + ", the most there may be, here; it is left empty.");
  return true;
}

// Whether the members of a set that an entry names are known.
bool inpS_SetResolver::HasMembers(const inpS_SetDefinition& set, const Entry& entry,
                                  const Target& target) {
  if (!target.set) return false;
  const State state = m_results[target.set].state;
  if (state == State::TooLarge)
    ReportEntry(set, entry,
                "Set \"" + target.set->name +
                    "\" has been left empty, since it names too many members; this entry gives "
                    "none.");
  return state == State::Done;
}

// A part knows nothing of the instances that are made of it.
inpS_MeshScope* inpS_SetResolver::InstanceOf(const inpS_MeshScope& scope,
                                             const inpS_SetDefinition& set, const Entry& entry,
                                             bool report) {
  const bool inPart = scope.kind == inpS_MeshScope::Kind::Part;
  inpS_MeshScope* instance = inPart ? nullptr : m_scopes.FindInstance(entry.instance);
  if (!instance && report) NoteUndefined(inPart, set, entry);
  return instance;
}

void inpS_SetResolver::NoteUndefined(bool inPart, const inpS_SetDefinition& set,
                                     const Entry& entry) {
  long long count = 1;
  if (entry.kind == Entry::Kind::Labels) count = static_cast<long long>(entry.labels.Size());
  if (entry.kind == Entry::Kind::Range) count = entry.count;
  const auto [known, isNew] =
      m_undefinedAt.try_emplace({entry.keyword, entry.instance}, m_undefined.size());
  if (isNew)
    m_undefined.push_back({&set, &entry, count, inPart});
  else
    m_undefined[known->second].count += count;
}

void inpS_SetResolver::ReportUndefined() {
  for (const Undefined& undefined : m_undefined) {
    cow_String text =
        inp_Utils::Format(undefined.inPart ? "Instance %s cannot be named within a part."
                                           : "Instance %s is not defined.",
                          undefined.entry->instance.c_str());
    if (undefined.count > 1)
      text += " The " + std::to_string(undefined.count) + " entries that name it are left out.";
    ReportEntry(*undefined.set, *undefined.entry, std::move(text));
    if (undefined.count > 1) m_messages.LeaveOut("set entry", undefined.count - 1);
  }
  m_undefined.clear();
  m_undefinedAt.clear();
}

inpS_SetResolver::Target inpS_SetResolver::Find(const inpS_MeshScope& scope, inpS_SetKind kind,
                                                const inpS_SetDefinition& set, const Entry& entry,
                                                bool report) {
  const inpS_MeshScope* owner = &scope;
  if (!entry.instance.empty()) {
    owner = InstanceOf(scope, set, entry, report);
    if (!owner) return {};
  }
  if (const inpS_SetDefinition* own = owner->sets.Find(kind, entry.name)) return {owner, own, 0};
  if (owner->part)
    if (const inpS_SetDefinition* ofPart = owner->part->sets.Find(kind, entry.name))
      return {owner->part, ofPart, baseOf(*owner, kind)};
  if (report)
    ReportEntry(
        set, entry,
        inpS_messageText(
            kind == inpS_SetKind::Nodes ? inpS_mesh_NodeSetUnknown : inpS_mesh_ElementSetUnknown,
            {entry.instance.empty() ? entry.name : entry.instance + "." + entry.name}));
  return {};
}

bool inpS_SetResolver::MayTell(const Entry& entry) const {
  return !m_underway || entry.instance.empty();
}

void inpS_SetResolver::AddEntry(const inpS_MeshScope& scope, const inpS_SetDefinition& set,
                                const Entry& entry, Gathered& gathered) {
  if (!MayTell(entry)) {
    m_leftOut = true;
    return;
  }
  switch (entry.kind) {
  case Entry::Kind::Positions:
    gathered.Add(eds_MemberSet::Strided(static_cast<int>(entry.first), entry.count),
                 baseOf(scope, set.kind));
    return;
  case Entry::Kind::Labels:
  case Entry::Kind::Range: {
    const inpS_MeshScope* owner =
        entry.instance.empty() ? &scope : InstanceOf(scope, set, entry, true);
    if (!owner) return;
    if (entry.kind == Entry::Kind::Labels)
      AddLabels(*owner, set.kind, entry, gathered);
    else
      AddRange(*owner, set.kind, entry, gathered);
    return;
  }
  case Entry::Kind::Set: {
    const Target target = Find(scope, set.kind, set, entry, true);
    if (!HasMembers(set, entry, target)) return;
    gathered.Add(m_results[target.set].members, target.offset);
    AddTextOf(set, entry, *target.set, gathered);
    return;
  }
  case Entry::Kind::NodesOfElset: {
    const Target target = Find(scope, inpS_SetKind::Elements, set, entry, true);
    if (!HasMembers(set, entry, target)) return;
    AddTextOf(set, entry, *target.set, gathered);
    if (m_underway)
      AddNodesKnown(scope, m_results[target.set].members, gathered);
    else
      AddNodesOf(scope, m_results[target.set].members, target.offset, gathered);
    return;
  }
  }
}

void inpS_SetResolver::AddLabels(const inpS_MeshScope& owner, inpS_SetKind kind, const Entry& entry,
                                 Gathered& gathered) const {
  const KvoObjLabeler& labeler = kind == inpS_SetKind::Nodes ? m_nodes : m_elements;
  const long long base = baseOf(owner, kind);
  utl_Buffer<int> ordinals(entry.labels.Size());
  labeler.ConvertInstanceLabels(occurrenceOf(owner, kind), entry.labels, ordinals);
  for (std::size_t n = 0; n < ordinals.Size(); ++n) {
    if (ordinals[n] < 0)
      Miss(owner, kind, entry, entry.labels[n], gathered);
    else
      gathered.Add(ordinals[n] + base);
  }
}

// An element of a keyword that is kept as text is told there.
void inpS_SetResolver::Miss(const inpS_MeshScope& owner, inpS_SetKind kind, const Entry& entry,
                            long long label, Gathered& gathered) const {
  const bool isInText =
      kind == inpS_SetKind::Elements &&
      m_scopes.TextElements().Has(owner.elementOccurrence, static_cast<int>(label));
  if (isInText)
    gathered.asText.emplace_back(entry.instance, static_cast<int>(label));
  else
    gathered.Miss(entry.keyword, label);
}

// What a set that is named has of them. Nobody knows the nodes of an element that is kept as text.
void inpS_SetResolver::AddTextOf(const inpS_SetDefinition& set, const Entry& entry,
                                 const inpS_SetDefinition& other, Gathered& gathered) {
  if (m_scopes.TextElements().IsEmpty()) return; // as nearly always
  const std::vector<Scoped>& named = m_results[&other].asText;
  if (named.empty() && other.elementsAsText.empty()) return;
  if (entry.kind == Entry::Kind::NodesOfElset) {
    if (!m_underway)
      m_messages.AddWarning(inp_Utils::MessageInKeyword(
          set.keywords[static_cast<std::size_t>(entry.keyword)],
          "Set \"" + other.name +
              "\" has elements of a keyword that is kept as text; their nodes are left out."));
    return;
  }
  for (const auto& [instance, label] : named)
    gathered.asText.emplace_back(instance.empty() ? entry.instance : instance, label);
  for (const int label : other.elementsAsText) gathered.asText.emplace_back(entry.instance, label);
}

cow_String inpS_SetResolver::LinesOfText(const inpS_SetDefinition& set) const {
  constexpr int perLine = 16;
  cow_String lines;
  const auto known = m_results.find(&set);
  if (known == m_results.end()) return lines;
  int onLine = 0;
  for (const auto& [instance, label] : known->second.asText) {
    if (instance.empty() && std::ranges::binary_search(set.elementsAsText, label)) continue;
    if (onLine > 0) lines += onLine % perLine ? ", " : "\n";
    ++onLine;
    if (!instance.empty()) lines += inpS_quoted(instance) + '.';
    lines += std::to_string(label);
  }
  return onLine > 0 ? lines + '\n' : lines;
}

// A range costs no more than the labels there are, however long it is.
void inpS_SetResolver::AddRange(const inpS_MeshScope& owner, inpS_SetKind kind, const Entry& entry,
                                Gathered& gathered) const {
  const KvoObjLabeler& labeler = kind == inpS_SetKind::Nodes ? m_nodes : m_elements;
  const int occurrence = occurrenceOf(owner, kind);
  const long long base = baseOf(owner, kind);
  const long long last = entry.first + (entry.count - 1) * entry.increment;
  const long long size = labeler.Size(occurrence);
  const eds_LabelMap& labels = labeler.Labels(occurrence);
  if (size > 0 && labels.IsStrided() && labels.Stride() == 1) {
    const long long low = labels.First(), high = low + size - 1;
    if (std::min(entry.first, last) >= low && std::max(entry.first, last) <= high) {
      gathered.Add(eds_MemberSet::Strided(static_cast<int>(entry.first - low), entry.count,
                                          static_cast<int>(entry.increment)),
                   base);
      return;
    }
  }
  if (entry.count <= 4 * size + 1024) {
    for (long long n = 0, label = entry.first; n < entry.count; ++n, label += entry.increment) {
      const int ordinal = labeler.ConvertInstanceLabel(occurrence, static_cast<int>(label));
      if (ordinal < 0)
        Miss(owner, kind, entry, label, gathered);
      else
        gathered.Add(ordinal + base);
    }
    return;
  }
  std::vector<std::pair<long long, long long>> found; // step within the range, ordinal
  for (long long ordinal = 0; ordinal < size; ++ordinal) {
    const long long d = labels.Label(ordinal) - entry.first;
    if (d % entry.increment == 0 && d / entry.increment >= 0 && d / entry.increment < entry.count)
      found.emplace_back(d / entry.increment, ordinal);
  }
  std::sort(found.begin(), found.end());
  for (const auto& [step, ordinal] : found) gathered.Add(ordinal + base);
  long long known = static_cast<long long>(found.size());
  if (kind == inpS_SetKind::Elements)
    for (const int label :
         m_scopes.TextElements().Among(occurrence, entry.first, entry.count, entry.increment)) {
      gathered.asText.emplace_back(entry.instance, label);
      ++known;
    }
  if (known < entry.count)
    gathered.missing.push_back({entry.keyword, entry.first, last, entry.count - known});
}

// The nodes of elements of one part, or of the flat mesh.
void inpS_SetResolver::AddNodesOf(const inpS_MeshScope& scope, const eds_MemberSet& elements,
                                  long long offset, Gathered& gathered) const {
  const bool inPart = scope.kind == inpS_MeshScope::Kind::Part;
  std::vector<bool> used(static_cast<std::size_t>(inPart ? scope.nodeCount : m_scopes.FlatNodes()));
  inpS_ElementNodes connectivity;
  for (long long n = 0; n < elements.Size(); ++n) {
    const long long flat = elements[n] + offset;
    const inpS_MeshScope& owner = inPart ? scope : m_scopes.ScopeOfFlatElement(flat);
    const long long element = inPart ? flat : flat - owner.elementBase;
    const bool ofPart = owner.part && element < owner.part->elementCount;
    const inpS_MeshScope& source = ofPart ? *owner.part : owner;
    const inpS_ElementBlock* block = source.elements.BlockOf(element);
    if (!block && source.base) block = source.base->Elements().BlockOf(element);
    if (!block) {
      gathered.unread = true;
      continue;
    }
    for (const int node : connectivity.Of(*block, element - block->first))
      if (node >= 0) used[static_cast<std::size_t>(node + (inPart ? 0 : owner.nodeBase))] = true;
  }
  for (std::size_t node = 0; node < used.size(); ++node)
    if (used[node]) gathered.Add(static_cast<long long>(node));
}

void inpS_SetResolver::AddNodesKnown(const inpS_MeshScope& scope, const eds_MemberSet& elements,
                                     Gathered& gathered) {
  std::vector<bool> used(static_cast<std::size_t>(m_nodes.Size(scope.nodeOccurrence)));
  const inpS_OldElements old(scope, m_nodes);
  for (long long n = 0; n < elements.Size(); ++n) {
    const long long element = elements[n];
    const inpS_OldElements::Place place = old.Find(element);
    if (!place.owner || !inpS_OldElements::ScopedOf(place.Block(), element).empty()) {
      m_leftOut = true;
      continue;
    }
    for (const int label : inpS_OldElements::NodesOf(place.Block(), element)) {
      if (label <= 0) continue;
      const int ordinal = m_nodes.ConvertInstanceLabel(scope.nodeOccurrence, label);
      if (ordinal >= 0) used[static_cast<std::size_t>(ordinal)] = true;
    }
  }
  for (std::size_t node = 0; node < used.size(); ++node)
    if (used[node]) gathered.Add(static_cast<long long>(node));
}

void inpS_SetResolver::ReportEntry(const inpS_SetDefinition& set, const Entry& entry,
                                   cow_String text) {
  m_messages.LeaveOut("set entry");
  if (set.keywords.empty()) return m_messages.AddError({std::move(text)}); // of the base
  const inp_Keyword& keyword = set.keywords[static_cast<std::size_t>(entry.keyword)];
  const bool fromData = entry.kind != Entry::Kind::NodesOfElset &&
                        entry.kind != Entry::Kind::Positions && keyword.Data().Rows() > 0;
  m_messages.AddError(
      fromData ? inp_Utils::MessageAtField(keyword, entry.row, entry.col, std::move(text))
               : inp_Utils::MessageInKeyword(keyword, std::move(text)));
}

void inpS_SetResolver::ReportMissing(const inpS_SetDefinition& set, Gathered& gathered) {
  for (std::size_t n = 0; n < gathered.missing.size();) {
    const int keyword = gathered.missing[n].keyword;
    long long count = 0;
    cow_List<cow_String> labels;
    for (; n < gathered.missing.size() && gathered.missing[n].keyword == keyword; ++n) {
      const Gathered::Missing& miss = gathered.missing[n];
      count += miss.count;
      labels.push_back(std::to_string(miss.first));
      if (miss.last != miss.first) labels.back() += " to " + std::to_string(miss.last);
    }
    m_messages.AddWarning(inp_Utils::MessageInKeyword(
        set.keywords[static_cast<std::size_t>(keyword)],
        inp_Utils::Format("Set \"%s\" names %s that do not exist (%lld left out): ",
                          set.name.c_str(), nounOf(set.kind), count),
        labels));
    m_messages.LeaveOut("set member", count);
  }
}
