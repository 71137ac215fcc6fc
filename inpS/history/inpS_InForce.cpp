#include "inpS/history/inpS_InForce.h"
#include "base/utl_Threads.h"
#include <algorithm>
#include <array>
#include <bit>
#include <optional>
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
  cow_List<RowFacts> all;
  const auto join = [&](const inpS_ConditionRows::Piece& piece, const cow_List<RowFacts>& facts) {
    for (std::size_t n = 0; n < facts.size(); ++n) {
      if (facts[n].rows.count == 0) continue;
      const auto look = static_cast<std::size_t>(rows.LookOf(piece.known[n]));
      if (look < all.size()) {
        all[look].Join(facts[n]);
        continue;
      }
      inpS_InForce::Source::Rows& first = all.emplace_back(facts[n]).rows;
      const int target = first.first.target;
      first.first = rows.Looks()[look];
      first.first.target = target;
      first.first.value = rows.ValueOf(first.firstRow, first.first);
    }
  };
  if (const inpS_ConditionRows::Piece* whole = rows.Whole()) {
    cow_List<RowFacts> facts;
    count(*whole, facts);
    join(*whole, facts);
  } else {
    const std::size_t pieces = rows.PieceCount();
    cow_List<Slot> slots(std::min(pieces, utl_slotCount()));
    utl_orderedBlocks(
        pieces,
        [&](std::size_t n, std::size_t slot) {
          rows.ReadLooks(n, slots[slot].piece);
          count(slots[slot].piece, slots[slot].facts);
        },
        [&](std::size_t, std::size_t slot) { join(slots[slot].piece, slots[slot].facts); });
  }
  for (RowFacts& fact : all)
    if (fact.rows.first.degrees == 0) fact = {}; // says nothing that can act
  return all;
}

// Whether rows of looks that share degrees are in ascending order of their targets all the same.
bool areAscending(inpS_ConditionRows& rows) {
  rows.Rewind();
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

bool haveOneValue(inpS_ConditionRows& rows) {
  rows.Rewind();
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
bool mayMeet(const cow_List<RowFacts>& facts, const LabelFacts& labels, inpS_ConditionRows& given,
             const Kind& kind) {
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
  const bool mayShare = share && (degrees.size() > 1 || !areAscending(given));
  if (rows < 2 || (isUnique && !mayShare)) return false;
  return kind.twice != Kind::Twice::First || labels.HasRoutines() || !haveOneValue(given);
}

} // namespace

struct inpS_InForce::Met {
  std::unordered_map<int, uint64_t> lost; // degrees by node, that have another value
  // Entries of nodes, and degrees, that have the same.
  std::unordered_map<int, cow_List<std::pair<int, uint64_t>>> again;
  int largeAgain = -1; // the large set that is said over again as a whole
  bool isAllLost = false;

  void Clear() {
    lost.clear();
    again.clear();
    largeAgain = -1;
    isAllLost = false;
  }
  uint64_t LostOf(int node) const {
    const auto found = lost.find(node);
    return found == lost.end() ? 0 : found->second;
  }
};

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
  Met met; // of the row, among earlier ones of the record
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
  m_sources.push_back({record, &kind, loadCase, variable, m_step, isOwn ? m_step : kOpen});
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
  inpS_ConditionRows& rows = m_rows;
  rows.Open(record, kind);
  bool meets = Survey(arrival, rows);
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
  rows.Rewind();
  for (; rows.Next(arrival.what); ++arrival.row) {
    const auto label = static_cast<std::size_t>(arrival.what.label + 1);
    const bool isAny = label < keys.size(); // else it says nothing that can act
    arrival.values.emplace_back(arrival.what.value,
                                isAny ? arrival.labels.areOfRoutine[label] : char{0});
    arrival.met.Clear();
    if (arrival.what.degrees == 0) continue;
    const auto [own, held] = arrival.buckets[label];
    const Region region = RegionOf(kind, arrival.what.target, arrival.targets);
    Meet(*own, arrival, region, false);
    if (held) Meet(*held, arrival, region, true);
    Insert(*own, number, arrival.row, region, arrival.what.degrees, &arrival.met);
    TellLost(arrival);
  }
  for (const auto& [own, held] : arrival.buckets)
    if (own) Settle(*own);
}

// Which labels there are, and whether rows of the record may meet one another.
bool inpS_InForce::Survey(Arrival& arrival, inpS_ConditionRows& rows) {
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
         mayMeet(facts, arrival.labels, rows, arrival.kind);
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
        Insert(bucket, number, n, RegionOf(*source.kind, row.target, targets), row.degrees,
               nullptr);
    }
  }
}

void inpS_InForce::Insert(Bucket& bucket, int source, long long row, const Region& region,
                          uint64_t degrees, const Met* met) {
  const Entry entry{source, -1, -1, row, degrees};
  if (!region.members) return Enter(bucket, entry, region.point, met);
  const long long size = region.members->Size();
  if (size > kSmallSet || m_spread + size > kMostSpread)
    return InsertLarge(bucket, {source, row, degrees, *region.members, {}, {}}, met);
  m_spread += size;
  for (long long n = 0; n < size; ++n) Enter(bucket, entry, (*region.members)[n], met);
}

void inpS_InForce::Enter(Bucket& bucket, Entry entry, int node, const Met* met) {
  const auto put = [&](uint64_t degrees, int& chain) {
    const int behind = std::exchange(chain, static_cast<int>(bucket.entries.size()));
    bucket.entries.push_back({entry.source, behind, -1, entry.row, degrees});
  };
  uint64_t left = entry.degrees;
  if (met) {
    left &= ~met->LostOf(node);
    if (const auto again = met->again.find(node); again != met->again.end())
      for (const auto& [first, degrees] : again->second) {
        int chain = bucket.entries[static_cast<std::size_t>(first)].again;
        put(degrees, chain);
        bucket.entries[static_cast<std::size_t>(first)].again = chain;
        left &= ~degrees;
      }
  }
  if (left != 0) put(left, bucket.heads[node].entry);
}

void inpS_InForce::InsertLarge(Bucket& bucket, Large large, const Met* met) {
  if (met && met->largeAgain >= 0 && met->lost.empty())
    return bucket.large[static_cast<std::size_t>(met->largeAgain)].again.push_back(large.row);
  cow_Map<uint64_t, cow_List<int32_t>> gone; // by degrees
  if (met)
    for (const auto& [node, degrees] : met->lost) gone[degrees & large.degrees].push_back(node);
  const std::size_t place = bucket.large.size();
  bucket.large.push_back(std::move(large));
  for (auto& [degrees, nodes] : gone)
    TakeFrom(bucket, place, degrees, eds_MemberSet::Ascending(std::move(nodes)));
}

// ---- what comes meets what is there

void inpS_InForce::Meet(Bucket& bucket, Arrival& arrival, const Region& region, bool isHeld) {
  if (!region.members) {
    MeetPoint(bucket, arrival, region.point, isHeld);
    for (Large& large : bucket.large) MeetLarge(arrival, large, region.point);
    return;
  }
  const eds_MemberSet& members = *region.members;
  if (members.Size() < static_cast<long long>(bucket.heads.size())) {
    for (long long n = 0; n < members.Size(); ++n) MeetPoint(bucket, arrival, members[n], isHeld);
  } else {
    cow_List<int> met; // in order: what comes of it is the same on every machine
    for (const auto& [node, head] : bucket.heads)
      if (members.IsMember(node)) met.push_back(node);
    std::ranges::sort(met);
    for (const int node : met) MeetPoint(bucket, arrival, node, isHeld);
  }
  for (std::size_t n = 0, count = bucket.large.size(); n < count; ++n)
    MeetLarge(bucket, arrival, n, members);
}

void inpS_InForce::MeetLarge(Arrival& arrival, Large& large, int node) {
  const uint64_t both = large.degrees & arrival.what.degrees;
  if (both == 0 || AddsUp(arrival, large.source) || !large.members.IsMember(node)) return;
  if (!IsOfFirst(arrival, large.source)) {
    if (Hit(arrival, large, both, node, nullptr)) large.taken[both].push_back(node);
  } else if (const uint64_t left = both & ~arrival.met.LostOf(node);
             left != 0 && !SaysAgain(arrival, large.row)) {
    Lose(arrival, left, node, nullptr);
  }
}

void inpS_InForce::MeetLarge(Bucket& bucket, Arrival& arrival, std::size_t place,
                             const eds_MemberSet& members) {
  const Large& large = bucket.large[place];
  const uint64_t degrees = large.degrees & arrival.what.degrees;
  const bool isOfFirst = IsOfFirst(arrival, large.source);
  if (degrees == 0 || AddsUp(arrival, large.source) || (isOfFirst && arrival.met.isAllLost)) return;
  const eds_MemberSet both = intersection(large.members, members);
  if (both.IsEmpty()) return;
  if (!isOfFirst) {
    if (Hit(arrival, large, degrees, -1, &both)) TakeFrom(bucket, place, degrees, both);
    return;
  }
  const bool isWhole = both.Size() == members.Size() && degrees == arrival.what.degrees;
  if (!SaysAgain(arrival, large.row)) {
    Lose(arrival, degrees, -1, &both);
    arrival.met.isAllLost |= isWhole;
  } else if (isWhole && both.Size() == large.members.Size() && degrees == large.degrees) {
    arrival.met.largeAgain = static_cast<int>(place);
  }
}

// A large set keeps what is left of it, so that what is gone is not met again.
void inpS_InForce::TakeFrom(Bucket& bucket, std::size_t large, uint64_t degrees,
                            const eds_MemberSet& gone) {
  Large& from = bucket.large[large];
  const uint64_t others = from.degrees & ~degrees;
  from.members = inpS_without(from.members, gone);
  if (others != 0) bucket.large.push_back({from.source, from.row, others, gone, from.again, {}});
}

// When all rows of a record have come.
void inpS_InForce::Settle(Bucket& bucket) {
  for (std::size_t n = 0, count = bucket.large.size(); n < count; ++n)
    for (auto& [degrees, nodes] : std::exchange(bucket.large[n].taken, {}))
      TakeFrom(bucket, n, degrees, eds_MemberSet::Ascending(std::move(nodes)));
  std::erase_if(bucket.large, [](const Large& large) { return large.members.IsEmpty(); });
}

// What is held by others takes no harm: to leave it out of the step once is enough.
void inpS_InForce::MeetPoint(Bucket& bucket, Arrival& arrival, int node, bool isHeld) {
  const auto head = bucket.heads.find(node);
  if (head == bucket.heads.end()) return;
  const uint64_t degrees = arrival.what.degrees;
  const bool isOnce = isHeld || arrival.kind.twice == Kind::Twice::Add;
  if (isOnce && !HasOld(bucket, head->second, degrees)) return;
  int* link = &head->second.entry;
  while (*link >= 0) {
    Entry& entry = bucket.entries[static_cast<std::size_t>(*link)];
    const uint64_t both = entry.degrees & degrees & ~arrival.met.LostOf(node);
    if (!IsOfFirst(arrival, entry.source))
      Hit(bucket, arrival, entry, node);
    else if (both != 0 && SaysAgain(arrival, entry.row))
      arrival.met.again[node].push_back({*link, both});
    else if (both != 0)
      Lose(arrival, both, node, nullptr);
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

// Rows of one record of which the first value holds.
bool inpS_InForce::IsOfFirst(const Arrival& arrival, int source) {
  return source == arrival.number && arrival.kind.twice == Kind::Twice::First;
}

bool inpS_InForce::SaysAgain(const Arrival& arrival, long long row) {
  return arrival.isGivenElsewhere ||
         arrival.values[static_cast<std::size_t>(row)] == arrival.values.back();
}

// The row that comes does not count there.
void inpS_InForce::Lose(Arrival& arrival, uint64_t degrees, int node, const eds_MemberSet* set) {
  cow_List<int32_t> lost;
  const long long size = set ? set->Size() : 1;
  for (long long n = 0; n < size; ++n) {
    uint64_t& known = arrival.met.lost[set ? (*set)[n] : node];
    if ((degrees & ~known) != 0 && set) lost.push_back((*set)[n]);
    known |= degrees;
  }
  if (set && lost.empty()) return;
  const eds_MemberSet members = setOf(lost);
  Take(arrival.number, arrival.row, degrees, node, set ? &members : nullptr, false);
}

void inpS_InForce::TellLost(const Arrival& arrival) {
  if (arrival.met.lost.empty()) return;
  cow_List<int32_t> told;
  for (const auto& [node, degrees] : arrival.met.lost) told.push_back(node);
  std::ranges::sort(told);
  m_duplicates.push_back({arrival.record, arrival.row, setOf(told), arrival.kind.IsOfNodes()});
}

// True: the other one loses it for good.
bool inpS_InForce::Hit(Bucket& bucket, const Arrival& arrival, Entry& other, int node) {
  const uint64_t both = other.degrees & arrival.what.degrees;
  const Source& source = m_sources[static_cast<std::size_t>(other.source)];
  if (both == 0 || AddsUp(arrival, other.source)) return false;
  const bool isGap = arrival.isOwn && source.lastStep == kOpen;
  const auto take = [&](Entry& entry) {
    if ((entry.degrees & both) == 0) return;
    Take(entry.source, entry.row, entry.degrees & both, node, nullptr, isGap);
    if (!isGap) entry.degrees &= ~both;
  };
  take(other);
  for (int again = other.again; again >= 0;) {
    Entry& entry = bucket.entries[static_cast<std::size_t>(again)];
    take(entry);
    again = entry.next;
  }
  return !isGap;
}

bool inpS_InForce::Hit(const Arrival& arrival, const Large& other, uint64_t degrees, int node,
                       const eds_MemberSet* set) {
  const Source& source = m_sources[static_cast<std::size_t>(other.source)];
  const bool isGap = arrival.isOwn && source.lastStep == kOpen;
  Take(other.source, other.row, degrees, node, set, isGap);
  for (const long long row : other.again) Take(other.source, row, degrees, node, set, isGap);
  return !isGap;
}

void inpS_InForce::Take(int source, long long row, uint64_t degrees, int node,
                        const eds_MemberSet* set, bool isGap) {
  if (set) m_sets.push_back(*set);
  m_cuts.push_back({source, m_step, row, degrees, set ? -1 : node,
                    set ? static_cast<int>(m_sets.size()) - 1 : -1, isGap});
}
