#pragma once

#include "inpS/history/inpS_ConditionRows.h"
#include "inpS/history/inpS_RowTimeline.h"
#include <limits>
#include <unordered_map>

// What of the given conditions and loads is in force from which step to which. Steps come one after
// the other; what each gives meets what acts already, node by node and degree by degree. Nothing is
// copied from step to step: of a row it is kept when it began and what later ones took from it.
//
// docs/carrying.md tells the rules with examples.
class inpS_InForce {
public:
  static constexpr int kOpen = std::numeric_limits<int>::max(); // the last step of what goes on

  // The rows of one record.
  struct Source {
    KvoSimPosition record;
    const inpS_ExcitationKind* kind;
    KvoSimPosition loadCase;
    long long variable; // of a field; else 0
    int firstStep;
    int lastStep = kOpen;
    long long rows = 0;
    cow_List<int> gaps{}; // perturbation steps that take all of it back
    // Its rows that can act, by look; where all are about one node or element each.
    struct Rows {
      inpS_ConditionRow first;
      long long firstRow = 0;
      long long count = 0;
    };
    cow_List<Rows> looks{};
  };
  // The first of several values holds: where a later row of the same keyword gave another one.
  struct Duplicate {
    KvoSimPosition record;
    long long row;
    eds_MemberSet ordinals;
    bool areNodes;
  };
  using Piece = inpS_RowTimeline::Piece;

  // `elements` and `nodes`: how many the flat mesh has.
  inpS_InForce(long long nodes, long long elements) : m_nodes(nodes), m_elements(elements) {}

  // A kind of this model's own: it lives as long as what is in force.
  const inpS_ExcitationKind& Own(inpS_ExcitationKind kind) {
    return *m_kinds.emplace_back(std::make_shared<const inpS_ExcitationKind>(std::move(kind)));
  }
  const inpS_NamedTargets::Names* Names() const { return m_names.get(); }
  void SetNames(std::shared_ptr<const inpS_NamedTargets::Names> names) {
    m_names = std::move(names);
  }
  void BeginStep(int number, bool isPerturbation);
  void TakeBack(const inpS_ExcitationKind& kind, long long variable);
  void Add(const KvoSimPosition& record, const inpS_ExcitationKind& kind, long long variable,
           const KvoSimPosition& loadCase);

  const cow_List<Source>& Sources() const { return m_sources; }
  const cow_List<Duplicate>& Duplicates() const { return m_duplicates; }

  // Whom a row is about: a node, an element, a surface (each a number), or members of the flat
  // mesh.
  struct Region {
    int point = -1;
    const eds_MemberSet* members = nullptr; // else
  };
  Region RegionOf(const inpS_ExcitationKind& kind, int target, inpS_ConditionTargets& targets);

  // The pieces of the rows of a source, asked for in ascending order of sources and rows. Null: the
  // row is in force as a whole as long as its source.
  class Pieces {
  public:
    explicit Pieces(inpS_InForce& all);
    const cow_List<Piece>* Of(std::size_t source, long long row, const inpS_ConditionRow& what,
                              inpS_ConditionTargets& targets);
    // No row of the source ends before it does.
    bool AreWhole(std::size_t source);

  private:
    void Build(std::size_t source, const inpS_ConditionRow& what, std::size_t end,
               const eds_MemberSet* region);
    inpS_InForce& m_all;
    std::size_t m_next = 0;
    inpS_RowTimeline m_timeline;
  };

private:
  struct Cut {
    int source;
    int step;
    long long row;
    uint64_t degrees;
    int node; // -1: the set
    int set;
    bool isGap; // of that step alone
  };
  // What a row says of a node, and behind it what further rows of its record say over again: what
  // takes from the first takes from them.
  struct Entry {
    int source;
    int next;
    int again; // the latest of those; -1: none
    long long row;
    uint64_t degrees; // that are left
  };
  struct Large {
    int source;
    long long row;
    uint64_t degrees;
    eds_MemberSet members;                      // that are left
    cow_List<long long> again;                  // rows of the source that say the same
    cow_Map<uint64_t, cow_List<int32_t>> taken; // by the rows that come, by degrees
  };
  // The rows of one kind and label: which of them name a node.
  struct Bucket {
    cow_List<int> waiting; // sources that are not indexed yet
    struct Head {
      int entry = -1;
      int step = -1;    // in which `old` was found
      uint64_t old = 0; // degrees that earlier steps gave it and this one has not met
    };
    std::unordered_map<int, Head> heads;
    cow_List<Entry> entries;
    cow_List<Large> large;
    int oldest = kOpen; // step of the first one
    bool IsEmpty() const { return oldest == kOpen; }
  };
  struct Family {
    cow_List<int> live;
    std::unordered_map<cow_String, Bucket> buckets;
  };
  struct Arrival; // the source that comes

  static long long KeyOf(const inpS_ExcitationKind& kind, long long variable) {
    return kind.number + (variable << 8);
  }
  bool Survey(Arrival& arrival, inpS_ConditionRows& rows);
  void Index(Bucket& bucket, const cow_String& key);
  struct Met; // what a row finds that its record has said before
  void Insert(Bucket& bucket, int source, long long row, const Region& region, uint64_t degrees,
              const Met* met);
  static void Enter(Bucket& bucket, Entry entry, int node, const Met* met);
  static void InsertLarge(Bucket& bucket, Large large, const Met* met);
  // isHeld: the bucket is of the base of a perturbation step.
  void Meet(Bucket& bucket, Arrival& arrival, const Region& region, bool isHeld);
  void MeetPoint(Bucket& bucket, Arrival& arrival, int node, bool isHeld);
  void MeetLarge(Arrival& arrival, Large& large, int node);
  void MeetLarge(Bucket& bucket, Arrival& arrival, std::size_t place, const eds_MemberSet& members);
  bool HasOld(const Bucket& bucket, Bucket::Head& head, uint64_t degrees) const;
  bool AddsUp(const Arrival& arrival, int source) const;
  static bool IsOfFirst(const Arrival& arrival, int source);
  static bool SaysAgain(const Arrival& arrival, long long row);
  void Lose(Arrival& arrival, uint64_t degrees, int node, const eds_MemberSet* set);
  void TellLost(const Arrival& arrival);
  static void TakeFrom(Bucket& bucket, std::size_t large, uint64_t degrees,
                       const eds_MemberSet& gone);
  static void Settle(Bucket& bucket);
  bool Hit(Bucket& bucket, const Arrival& arrival, Entry& other, int node);
  bool Hit(const Arrival& arrival, const Large& other, uint64_t degrees, int node,
           const eds_MemberSet* set);
  void Take(int source, long long row, uint64_t degrees, int node, const eds_MemberSet* set,
            bool isGap);

  std::shared_ptr<const inpS_NamedTargets::Names> m_names; // that kinds look up
  cow_List<std::shared_ptr<const inpS_ExcitationKind>> m_kinds;
  inpS_ConditionRows m_rows; // of the source that comes
  long long m_nodes, m_elements;
  int m_step = 0;
  bool m_isPerturbation = false;
  cow_List<Source> m_sources;
  cow_List<Duplicate> m_duplicates;
  std::unordered_map<long long, Family> m_families;
  // Of the perturbation step, by load case: they act in it alone.
  cow_Map<unsigned long long, std::unordered_map<long long, Family>> m_own;
  cow_List<Cut> m_cuts;
  cow_List<eds_MemberSet> m_sets;                                             // of cuts
  cow_Map<std::pair<unsigned long long, unsigned long long>, int> m_surfaces; // as points
  eds_MemberSet m_everyNode, m_everyElement;
  long long m_spread = 0; // members of small sets in indexes
};
