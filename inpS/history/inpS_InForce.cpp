#include "inpS/history/inpS_InForce.h"
#include "base/utl_Threads.h"
#include <algorithm>
#include <array>
#include <bit>
#include <optional>
#include <tuple>
#include <utility>

namespace {

using Kind = inpS_ExcitationKind;

// Sets up to so many members are looked up by member, larger ones by set.
constexpr long long kSmallSet = 1000;
constexpr long long kMostSpread = 4'000'000;

eds_MemberSet setOf(const cow_List<int32_t>& members) {
  return eds_MemberSet::Ascending(members);
}

// Of two ascending sets, in the time of the smaller one.
eds_MemberSet intersection(const eds_MemberSet& a, const eds_MemberSet& b) {
  const eds_MemberSet& few = a.Size() < b.Size() ? a : b;
  const eds_MemberSet& many = a.Size() < b.Size() ? b : a;
  constexpr long long muchLarger = 32;
  if (few.Size() * muchLarger > many.Size()) return a.Intersection(b);
  cow_List<int32_t> both;
  for (long long n = 0; n < few.Size(); ++n)
    if (many.IsMember(few[n])) both.push_back(few[n]);
  return setOf(both);
}

// What the rows of one record and look have in common.
struct RowFacts {
  inpS_InForce::Source::Rows rows;
  int lastTarget = -1;
  bool isAscending = true; // no target comes twice
  bool namesRegions = false;

  void Take(int target) {
    isAscending &= target > lastTarget;
    lastTarget = target;
    namesRegions |= target < 0;
  }
  // Those of rows further behind.
  void Join(const RowFacts& more) {
    isAscending &= more.isAscending && more.rows.first.target > lastTarget;
    namesRegions |= more.namesRegions;
    lastTarget = more.lastTarget;
    rows.count += more.rows.count;
  }
};

// By the looks of the piece.
void count(const inpS_ConditionRows::Piece& piece, cow_List<RowFacts>& facts) {
  facts.assign(piece.known.size(), {});
  for (std::size_t n = 0; n < piece.looks.size(); ++n) {
    RowFacts& fact = facts[static_cast<std::size_t>(piece.looks[n])];
    if (fact.rows.count++ == 0) {
      fact.rows.first.target = piece.targets[n];
      fact.rows.firstRow = piece.firstRow + static_cast<long long>(n);
    }
    fact.Take(piece.targets[n]);
  }
}

cow_List<RowFacts> factsOf(inpS_ConditionRows& rows) {
  struct Slot {
    inpS_ConditionRows::Piece piece;
    cow_List<RowFacts> facts;
  };
  const std::size_t pieces = rows.PieceCount();
  cow_List<Slot> slots(std::min(pieces, utl_slotCount()));
  cow_List<RowFacts> all;
  const auto join = [&](const Slot& slot) {
    for (std::size_t n = 0; n < slot.facts.size(); ++n) {
      if (slot.facts[n].rows.count == 0) continue;
      const auto look = static_cast<std::size_t>(rows.LookOf(slot.piece.known[n]));
      if (look < all.size()) {
        all[look].Join(slot.facts[n]);
        continue;
      }
      inpS_InForce::Source::Rows& first = all.emplace_back(slot.facts[n]).rows;
      const int target = first.first.target;
      first.first = rows.Looks()[look];
      first.first.target = target;
      first.first.value = rows.ValueOf(first.firstRow, first.first);
    }
  };
  utl_orderedBlocks(
      pieces,
      [&](std::size_t n, std::size_t slot) {
        rows.ReadLooks(n, slots[slot].piece);
        count(slots[slot].piece, slots[slot].facts);
      },
      [&](std::size_t, std::size_t slot) { join(slots[slot]); });
  for (RowFacts& fact : all)
    if (fact.rows.first.degrees == 0) fact = {}; // says nothing that can act
  return all;
}

// Whether rows of looks that share degrees are in ascending order of their targets all the same.
bool areAscending(inpS_ConditionRows rows) {
  std::array<int, 64> last;
  last.fill(-1);
  inpS_ConditionRow row;
  while (rows.Next(row))
    for (uint64_t degrees = row.degrees; degrees != 0; degrees &= degrees - 1) {
      int& target = last[static_cast<std::size_t>(std::countr_zero(degrees))];
      if (row.target <= target) return false;
      target = row.target;
    }
  return true;
}

bool haveOneValue(inpS_ConditionRows rows) {
  inpS_ConditionRow row;
  std::optional<double> value;
  while (rows.Next(row)) {
    if (row.degrees == 0) continue;
    if (value.value_or(row.value) != row.value) return false;
    value = row.value;
  }
  return true;
}

// Of a record's labels, by place + 1.
struct LabelFacts {
  cow_List<cow_String> keys;    // what each is about; empty: no row has it
  cow_List<std::size_t> firsts; // the first one that is about the same
  cow_List<char> areOfRoutine;
  cow_Map<cow_String, std::size_t> known;

  void Add(std::size_t place, const cow_String& key, bool isOfRoutine) {
    keys[place] = key;
    firsts[place] = known.try_emplace(key, place).first->second;
    areOfRoutine[place] = isOfRoutine;
  }
  void Resize(std::size_t count) {
    keys.resize(count);
    firsts.resize(count);
    areOfRoutine.resize(count);
  }
  bool HasRoutines() const { return std::ranges::find(areOfRoutine, 1) != areOfRoutine.end(); }
};

// Whether the rows of one record can name a target and degree twice: with different values where
// the first one holds, for what the later one says beside its value holds, too.
bool mayMeet(const cow_List<RowFacts>& facts, const LabelFacts& labels,
             const KvoSimPosition& record, const Kind& kind) {
  bool isUnique = true, share = false;
  cow_Map<std::size_t, uint64_t> degrees; // by what labels are about: others do not meet
  long long rows = 0;
  for (const RowFacts& fact : facts) {
    if (fact.rows.count == 0) continue;
    rows += fact.rows.count;
    isUnique &= fact.isAscending && !fact.namesRegions;
    uint64_t& known = degrees[labels.firsts[static_cast<std::size_t>(fact.rows.first.label + 1)]];
    share |= (known & fact.rows.first.degrees) != 0;
    known |= fact.rows.first.degrees;
  }
  const bool mayShare = share && (degrees.size() > 1 || !areAscending({record, kind}));
  if (rows < 2 || (isUnique && !mayShare)) return false;
  return kind.twice != Kind::Twice::First || labels.HasRoutines() || !haveOneValue({record, kind});
}

} // namespace

struct inpS_InForce::Arrival {
  Arrival(const Source& source, int place)
      : number(place), kind(*source.kind),
        isGivenElsewhere(kind.IsGivenElsewhere(source.record.DataRecord(), {})),
        targets(source.record, *source.kind), record(source.record) {}

  int number;
  const inpS_ExcitationKind& kind;
  bool isGivenElsewhere; // what its lines say is not what holds
  bool isOwn = false;
  inpS_ConditionTargets targets;
  KvoSimPosition record;
  cow_List<std::pair<Bucket*, Bucket*>> buckets; // its own and what holds before, by label + 1
  LabelFacts labels;
  cow_List<std::pair<double, char>> values; // of its rows so far, and whether a routine's
  long long row = 0;
  inpS_ConditionRow what;
  bool isDuplicate = false; // the row has been told
  Lost lost;                // of the row, to earlier ones of the record
};

void inpS_InForce::BeginStep(int number, bool isPerturbation) {
  m_own.clear();
  m_step = number;
  m_isPerturbation = isPerturbation;
}

void inpS_InForce::TakeBack(const inpS_ExcitationKind& kind, long long variable) {
  const auto family = m_families.find(KeyOf(kind, variable));
  if (family == m_families.end()) return;
  for (const int number : family->second.live) {
    Source& source = m_sources[static_cast<std::size_t>(number)];
    if (!m_isPerturbation)
      source.lastStep = m_step - 1;
    else if (kind.lasting == Kind::Lasting::Held)
      source.gaps.push_back(m_step);
  }
  if (!m_isPerturbation) m_families.erase(family);
}

// ---- what comes

void inpS_InForce::Add(const KvoSimPosition& record, const inpS_ExcitationKind& kind,
                       long long variable, const KvoSimPosition& loadCase) {
  const int number = static_cast<int>(m_sources.size());
  const bool isOwn =
      m_isPerturbation || kind.lasting == Kind::Lasting::OwnStep || !loadCase.IsNull();
  m_sources.push_back({record, &kind, loadCase, m_step, isOwn ? m_step : kOpen});
  const long long key = KeyOf(kind, variable);
  const unsigned long long place = loadCase.IsNull() ? 0 : loadCase.Object().Packed();
  Family& family = (isOwn ? m_own[place] : m_families)[key];
  family.live.push_back(number);
  // What a load case holds is about that load case: for the others the base state stays.
  const bool meetsBase =
      m_isPerturbation && loadCase.IsNull() && kind.lasting == Kind::Lasting::Held;
  const auto base = meetsBase ? m_families.find(key) : m_families.end();

  Arrival arrival(m_sources.back(), number);
  arrival.isOwn = isOwn;
  bool meets = Survey(arrival);
  const cow_List<cow_String>& keys = arrival.labels.keys;
  for (std::size_t n = 0; n < keys.size(); ++n) {
    if (keys[n].empty()) continue;
    Bucket& own = family.buckets[keys[n]];
    arrival.buckets[n].first = &own;
    meets = meets || (!own.IsEmpty() && (own.oldest < m_step || kind.twice != Kind::Twice::Add));
    if (base == m_families.end()) continue;
    const auto held = base->second.buckets.find(keys[n]);
    if (held == base->second.buckets.end()) continue;
    arrival.buckets[n].second = &held->second;
    meets = true;
  }
  for (std::size_t n = 0; n < keys.size(); ++n) {
    const auto [own, held] = arrival.buckets[n];
    if (!own) continue;
    own->oldest = std::min(own->oldest, m_step);
    const bool waits = !own->waiting.empty() && own->waiting.back() == number; // by another label
    if (!meets && !waits) own->waiting.push_back(number);
    if (meets) Index(*own, keys[n]);
    if (meets && held) Index(*held, keys[n]);
  }
  if (!meets) return;
  inpS_ConditionRows rows(record, kind);
  for (; rows.Next(arrival.what); ++arrival.row) {
    const auto label = static_cast<std::size_t>(arrival.what.label + 1);
    const bool isAny = label < keys.size(); // else it says nothing that can act
    arrival.values.emplace_back(arrival.what.value,
                                isAny ? arrival.labels.areOfRoutine[label] : char{0});
    arrival.isDuplicate = false;
    arrival.lost.clear();
    if (arrival.what.degrees == 0) continue;
    const auto [own, held] = arrival.buckets[label];
    const Region region = RegionOf(kind, arrival.what.target, arrival.targets);
    Meet(*own, arrival, region);
    if (held) Meet(*held, arrival, region);
    Insert(*own, number, arrival.row, region, arrival.what.degrees, arrival.lost);
  }
  for (const auto& [own, held] : arrival.buckets)
    if (own) Settle(*own);
}

// Which labels there are, and whether rows of the record may meet one another.
bool inpS_InForce::Survey(Arrival& arrival) {
  inpS_ConditionRows rows(arrival.record, arrival.kind);
  Source& source = m_sources[static_cast<std::size_t>(arrival.number)];
  source.rows = rows.Count();
  const cow_String part = arrival.kind.PartOf(arrival.record.DataRecord());
  const cow_List<RowFacts> facts = factsOf(rows);
  bool namesRegions = false;
  for (const RowFacts& fact : facts) {
    source.looks.push_back(fact.rows);
    if (fact.rows.count == 0) continue;
    namesRegions |= fact.namesRegions;
    const int label = fact.rows.first.label;
    const auto place = static_cast<std::size_t>(label + 1);
    if (place >= arrival.labels.keys.size()) arrival.labels.Resize(place + 1);
    if (!arrival.labels.keys[place].empty()) continue;
    const cow_String word = rows.Label(label);
    arrival.labels.Add(place, part + arrival.kind.Prescribed(word), inpS_isOfRoutine(word));
  }
  if (namesRegions) source.looks = {};
  arrival.buckets.resize(arrival.labels.keys.size());
  return arrival.kind.twice != Kind::Twice::Add &&
         mayMeet(facts, arrival.labels, arrival.record, arrival.kind);
}

inpS_InForce::Region inpS_InForce::RegionOf(const inpS_ExcitationKind& kind, int target,
                                            inpS_ConditionTargets& targets) {
  const bool isNodes = kind.IsOfNodes();
  const bool hasTarget = kind.target >= 0 || kind.lineSurface >= 0;
  if (!hasTarget && !isNodes) return {0, nullptr};
  if (target >= 0) return {target, nullptr};
  if (target == inpS_ConditionRow::kAll) {
    eds_MemberSet& every = isNodes ? m_everyNode : m_everyElement;
    if (every.IsEmpty()) every = eds_MemberSet::Strided(0, isNodes ? m_nodes : m_elements);
    return {-1, &every};
  }
  if (!targets.IsSurface()) return {-1, &targets.Members(target)};
  const inpS_ConditionTargets::Region& region = targets.At(target);
  const std::pair key{region.set.IsNull() ? 0 : region.set.Object().Packed(),
                      region.instance.IsNull() ? 0 : region.instance.Object().Packed()};
  return {m_surfaces.try_emplace(key, static_cast<int>(m_surfaces.size())).first->second, nullptr};
}

// ---- who names a node

void inpS_InForce::Index(Bucket& bucket, const cow_String& key) {
  for (const int number : std::exchange(bucket.waiting, {})) {
    const Source& source = m_sources[static_cast<std::size_t>(number)];
    inpS_ConditionRows rows(source.record, *source.kind);
    inpS_ConditionTargets targets(source.record, *source.kind);
    const cow_String part = source.kind->PartOf(source.record.DataRecord());
    cow_List<char> isOfBucket; // by label: 0 not known yet, 1 no, 2 yes
    inpS_ConditionRow row;
    for (long long n = 0; rows.Next(row); ++n) {
      if (row.degrees == 0) continue;
      const auto place = static_cast<std::size_t>(row.label + 1);
      if (place >= isOfBucket.size()) isOfBucket.resize(place + 1);
      if (isOfBucket[place] == 0)
        isOfBucket[place] = part + source.kind->Prescribed(rows.Label(row.label)) == key ? 2 : 1;
      if (isOfBucket[place] == 2)
        Insert(bucket, number, n, RegionOf(*source.kind, row.target, targets), row.degrees, {});
    }
  }
}

void inpS_InForce::Insert(Bucket& bucket, int source, long long row, const Region& region,
                          uint64_t degrees, const Lost& lost) {
  const auto enter = [&](int node) {
    const auto gone = lost.find(node);
    const uint64_t left = gone == lost.end() ? degrees : degrees & ~gone->second;
    if (left == 0) return;
    Bucket::Head& head = bucket.heads[node];
    bucket.entries.push_back({source, head.entry, row, left});
    head.entry = static_cast<int>(bucket.entries.size()) - 1;
  };
  if (!region.members) return enter(region.point);
  const long long size = region.members->Size();
  if (size > kSmallSet || m_spread + size > kMostSpread) {
    InsertLarge(bucket, {source, row, degrees, *region.members, {}}, lost);
    return;
  }
  m_spread += size;
  for (long long n = 0; n < size; ++n) enter((*region.members)[n]);
}

void inpS_InForce::InsertLarge(Bucket& bucket, Large large, const Lost& lost) {
  cow_Map<uint64_t, cow_List<int32_t>> gone; // by degrees
  for (const auto& [node, degrees] : lost) gone[degrees & large.degrees].push_back(node);
  const std::size_t place = bucket.large.size();
  bucket.large.push_back(std::move(large));
  for (auto& [degrees, nodes] : gone)
    TakeFrom(bucket, place, degrees, eds_MemberSet::Ascending(std::move(nodes)));
}

// ---- what comes meets what is there

void inpS_InForce::Meet(Bucket& bucket, Arrival& arrival, const Region& region) {
  if (!region.members) {
    MeetPoint(bucket, arrival, region.point);
    for (Large& large : bucket.large)
      if ((large.degrees & arrival.what.degrees) != 0 && large.members.IsMember(region.point) &&
          Hit(arrival, large, region.point, nullptr))
        large.taken[large.degrees & arrival.what.degrees].push_back(region.point);
    return;
  }
  const eds_MemberSet& members = *region.members;
  if (members.Size() < static_cast<long long>(bucket.heads.size())) {
    for (long long n = 0; n < members.Size(); ++n) MeetPoint(bucket, arrival, members[n]);
  } else {
    cow_List<int> met; // in order: what comes of it is the same on every machine
    for (const auto& [node, head] : bucket.heads)
      if (members.IsMember(node)) met.push_back(node);
    std::ranges::sort(met);
    for (const int node : met) MeetPoint(bucket, arrival, node);
  }
  for (std::size_t n = 0, count = bucket.large.size(); n < count; ++n) {
    const uint64_t degrees = bucket.large[n].degrees & arrival.what.degrees;
    if (degrees == 0 || AddsUp(arrival, bucket.large[n].source)) continue;
    const eds_MemberSet both = intersection(bucket.large[n].members, members);
    if (!both.IsEmpty() && Hit(arrival, bucket.large[n], -1, &both))
      TakeFrom(bucket, n, degrees, both);
  }
}

// A large set keeps what is left of it, so that what is gone is not met again.
void inpS_InForce::TakeFrom(Bucket& bucket, std::size_t large, uint64_t degrees,
                            const eds_MemberSet& gone) {
  Large& from = bucket.large[large];
  const uint64_t others = from.degrees & ~degrees;
  from.members = inpS_without(from.members, gone);
  if (others != 0) bucket.large.push_back({from.source, from.row, others, gone, {}});
}

// When all rows of a record have come.
void inpS_InForce::Settle(Bucket& bucket) {
  for (std::size_t n = 0, count = bucket.large.size(); n < count; ++n)
    for (auto& [degrees, nodes] : std::exchange(bucket.large[n].taken, {}))
      TakeFrom(bucket, n, degrees, eds_MemberSet::Ascending(std::move(nodes)));
  std::erase_if(bucket.large, [](const Large& large) { return large.members.IsEmpty(); });
}

void inpS_InForce::MeetPoint(Bucket& bucket, Arrival& arrival, int node) {
  const auto head = bucket.heads.find(node);
  if (head == bucket.heads.end()) return;
  if (arrival.kind.twice == Kind::Twice::Add && !HasOld(bucket, head->second, arrival.what.degrees))
    return;
  int* link = &head->second.entry;
  while (*link >= 0) {
    Entry& entry = bucket.entries[static_cast<std::size_t>(*link)];
    Hit(arrival, entry, node, nullptr);
    if (entry.degrees == 0)
      *link = entry.next;
    else
      link = &entry.next;
  }
}

// Of what adds up a step may have many on a node: they are not met one by one.
bool inpS_InForce::HasOld(const Bucket& bucket, Bucket::Head& head, uint64_t degrees) const {
  if (head.step != m_step) {
    head.step = m_step;
    head.old = 0;
    for (int entry = head.entry; entry >= 0;) {
      const Entry& one = bucket.entries[static_cast<std::size_t>(entry)];
      if (m_sources[static_cast<std::size_t>(one.source)].firstStep < m_step)
        head.old |= one.degrees;
      entry = one.next;
    }
  }
  const bool isAny = (head.old & degrees) != 0;
  head.old &= ~degrees;
  return isAny;
}

bool inpS_InForce::AddsUp(const Arrival& arrival, int source) const {
  return arrival.kind.twice == Kind::Twice::Add &&
         m_sources[static_cast<std::size_t>(source)].firstStep == m_step;
}

// True: the other one loses it for good.
template <class Other>
bool inpS_InForce::Hit(Arrival& arrival, Other& other, int node, const eds_MemberSet* set) {
  using Twice = Kind::Twice;
  const uint64_t both = other.degrees & arrival.what.degrees;
  if (both == 0) return false;
  const Source& source = m_sources[static_cast<std::size_t>(other.source)];
  const Twice twice = arrival.kind.twice;
  const bool isSame = other.source == arrival.number;
  if (AddsUp(arrival, other.source)) return false;
  if (isSame && twice == Twice::First) {
    if (arrival.isGivenElsewhere || other.row == arrival.row ||
        arrival.values[static_cast<std::size_t>(other.row)] == arrival.values.back())
      return false;
    Take(arrival.number, arrival.row, both, node, set, false);
    const eds_MemberSet told = set ? *set : eds_MemberSet::Strided(node, 1);
    if (!arrival.isDuplicate)
      m_duplicates.push_back({arrival.record, arrival.row, told, arrival.kind.IsOfNodes()});
    else
      m_duplicates.back().ordinals = m_duplicates.back().ordinals.Union(told);
    arrival.isDuplicate = true;
    for (long long n = 0; n < told.Size(); ++n) arrival.lost[told[n]] |= both;
    return false;
  }
  const bool isGap = arrival.isOwn && source.lastStep == kOpen;
  Take(other.source, other.row, both, node, set, isGap);
  if constexpr (std::is_same_v<Other, Entry>)
    if (!isGap) other.degrees &= ~both;
  return !isGap;
}

void inpS_InForce::Take(int source, long long row, uint64_t degrees, int node,
                        const eds_MemberSet* set, bool isGap) {
  if (set) m_sets.push_back(*set);
  m_cuts.push_back({source, m_step, row, degrees, set ? -1 : node,
                    set ? static_cast<int>(m_sets.size()) - 1 : -1, isGap});
}

// ---- what is left of a row

inpS_InForce::Pieces::Pieces(inpS_InForce& all) : m_all(all) {
  std::ranges::stable_sort(
      m_all.m_cuts, {}, [](const Cut& cut) { return std::tuple(cut.source, cut.row, cut.step); });
}

bool inpS_InForce::Pieces::AreWhole(std::size_t source) {
  const cow_List<Cut>& cuts = m_all.m_cuts;
  const auto sourceOf = [](const Cut& cut) { return static_cast<std::size_t>(cut.source); };
  while (m_next < cuts.size() && sourceOf(cuts[m_next]) < source) ++m_next;
  return (m_next == cuts.size() || sourceOf(cuts[m_next]) > source) &&
         m_all.m_sources[source].gaps.empty();
}

const cow_List<inpS_InForce::Piece>* inpS_InForce::Pieces::Of(std::size_t source, long long row,
                                                              const inpS_ConditionRow& what,
                                                              inpS_ConditionTargets& targets) {
  const cow_List<Cut>& cuts = m_all.m_cuts;
  const auto isBefore = [&](const Cut& cut) {
    return std::pair(static_cast<std::size_t>(cut.source), cut.row) < std::pair(source, row);
  };
  while (m_next < cuts.size() && isBefore(cuts[m_next])) ++m_next;
  std::size_t end = m_next;
  while (end < cuts.size() && static_cast<std::size_t>(cuts[end].source) == source &&
         cuts[end].row == row)
    ++end;
  const Source& from = m_all.m_sources[source];
  if (end == m_next && from.gaps.empty()) return nullptr;
  Build(source, what, end, m_all.RegionOf(*from.kind, what.target, targets).members);
  m_next = end;
  return &m_timeline.Pieces();
}

// What each step takes, its members together where they lose the same degrees.
void inpS_InForce::Pieces::Build(std::size_t place, const inpS_ConditionRow& what, std::size_t end,
                                 const eds_MemberSet* region) {
  const Source& source = m_all.m_sources[place];
  const cow_List<Cut>& cuts = m_all.m_cuts;
  long long losses = 0;
  for (std::size_t n = m_next; n < end; ++n)
    losses += n == m_next || cuts[n].step != cuts[n - 1].step;
  m_timeline.Begin(source.firstStep, what.degrees, region, losses);
  for (std::size_t n = m_next; n < end;) {
    const int step = cuts[n].step;
    const bool isGap = cuts[n].isGap;
    cow_Map<uint64_t, cow_List<int32_t>> gone;
    for (; n < end && cuts[n].step == step; ++n) {
      cow_List<int32_t>& nodes = gone[cuts[n].degrees];
      if (cuts[n].node >= 0) nodes.push_back(cuts[n].node);
      if (cuts[n].set < 0) continue;
      const cow_List<int32_t> members =
          m_all.m_sets[static_cast<std::size_t>(cuts[n].set)].Members();
      nodes.insert(nodes.end(), members.begin(), members.end());
    }
    inpS_RowTimeline::Losses losses;
    for (auto& [degrees, nodes] : gone) losses.Add(degrees, std::move(nodes));
    m_timeline.Lose(step, losses, isGap);
  }
  m_timeline.End(source.lastStep, source.gaps);
}
