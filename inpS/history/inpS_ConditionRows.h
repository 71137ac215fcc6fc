#pragma once

#include "database/KvoSimCSet.h"
#include "inpS/forms/inpS_StoredColumn.h"
#include "inpS/history/inpS_ExcitationKind.h"
#include "parser/inp_BulkColumns.h"
#include <array>
#include <memory>

// What one row of a given keyword says: about which target, which degrees or which label, and its
// magnitude.
struct inpS_ConditionRow {
  static constexpr int kAll = inp_blankInt; // the target of a row that names none

  int target = kAll; // an ordinal of the flat mesh; from -1 down a place among the record's targets
  uint64_t degrees = 1; // 0: the row says nothing that can act
  bool isOfAll = false; // names none of its degrees: those that another analysis has
  int restraint = -1;   // of the vocabulary RestraintType; -1: none
  int label = -1;       // place of its label among the record's words; -1: none
  double value = 0;     // none given is 0, or blank where it may be left out
  int look = 0; // rows of one look differ in target and value alone; from 0 in order of appearance
};

// The rows of a record: one after the other, or by the piece on several threads at once.
class inpS_ConditionRows {
public:
  inpS_ConditionRows() = default;
  inpS_ConditionRows(const KvoSimPosition& record, const inpS_ExcitationKind& kind) {
    Open(record, kind);
  }
  // Those of another record; who goes through many small ones needs no memory for each.
  void Open(const KvoSimPosition& record, const inpS_ExcitationKind& kind);

  long long Count() const { return m_count; }
  bool Next(inpS_ConditionRow& row) {
    if (m_next >= m_count) return false;
    if (m_next >= m_loaded) Load();
    const auto n = static_cast<std::size_t>(m_next++ - m_own.firstRow);
    row = m_looks[static_cast<std::size_t>(m_own.looks[n])];
    row.target = m_own.targets[n];
    row.value = m_own.values[n];
    return true;
  }

  // What a row says beside its target and value, as its columns have it.
  struct Codes {
    int target = 0; // where it is a word
    int first = 0;
    int last = 0;
    int label = 0;
    auto operator<=>(const Codes&) const = default;
  };
  // The rows of a piece, and how those looked that were read into it so far.
  struct Piece {
    long long firstRow = 0;
    cow_List<int> targets;
    cow_List<int> looks; // places in `known`
    cow_List<double> values;
    cow_List<Codes> known; // in order of appearance
    struct Latest {        // the rows of a keyword look much alike: of each few codes the latest
      uint64_t degrees = 0;
      uint64_t words = 0; // the label's and the target's
      int place = -1;
    };
    std::array<Latest, 32> latest{};
    cow_Map<Codes, int> placeOf;
    cow_List<int> first, last, label, words;

    void Clear(); // and keeps its memory
  };
  std::size_t PieceCount() const;
  const Piece* Whole(); // all rows with their values; null: they are more than a piece
  void Rewind();        // the first row comes next
  // All but the values, on any thread, each with a piece of its own.
  void ReadLooks(std::size_t number, Piece& piece);
  double ValueOf(long long row, const inpS_ConditionRow& look);
  // The place among all looks, in order of appearance when pieces come in their order.
  int LookOf(const Codes& codes);
  const cow_List<inpS_ConditionRow>& Looks() const { return m_looks; } // without target and value
  // As labels: what the record calls them.
  cow_String Label(int place) const;
  // The value of all rows, when all have one.
  bool HasOneValue(double& value) const;
  KvoSimPosition Values() const; // their array; null: it has none

private:
  void OpenColumns();
  void Load();
  void ReadRows(long long begin, long long end, Piece& piece);
  void FindLooks(std::size_t count, Piece& piece) const;
  void ReadValues(Piece& piece);
  int RestraintOf(int code) const;
  double GivenOr0(double value) const;
  inpS_ConditionRow MakeLook(const Codes& codes);
  void SetDegrees(inpS_ConditionRow& row, const Codes& codes) const;

  KvoSimDataRecord m_record;
  const inpS_ExcitationKind* m_kind = nullptr;
  bool m_isNamed = false; // targets are words, and some rows those of another type
  long long m_count = 0;
  long long m_next = 0;
  long long m_loaded = 0; // the row behind m_own
  Piece m_own;
  std::unique_ptr<std::mutex> m_guard = std::make_unique<std::mutex>();
  using Ints = std::optional<inpS_StoredColumn<int>>; // none: blank
  Ints m_target, m_first, m_last, m_label;
  // Where the target is a word, a row's label is that word and the label behind it.
  cow_List<inpS_ConditionRow> m_looks;
  cow_Map<Codes, int> m_lookOf;
  std::optional<inpS_StoredColumn<double>> m_value;
  cow_List<cow_String> m_labels, m_firstWords;
  cow_List<int> m_restraints; // of the first words
};

// What the targets of a record stand for.
class inpS_ConditionTargets {
public:
  inpS_ConditionTargets(const KvoSimPosition& record, const inpS_ExcitationKind& kind);

  struct Region {
    KvoSimPosition set; // or surface
    KvoSimPosition instance;
    long long offset = 0; // from the set's ordinals to those of the flat mesh
    KvoSimCSetID membership;
  };
  bool IsSurface() const { return m_isSurface; }
  const Region& At(int target); // of a row
  const eds_MemberSet& Members(int target);

private:
  void Read(); // when first asked for: most rows of large records name labels
  void AddRegion(const KvoSimPosition& named, const KvoSimPosition& instance);

  KvoSimPosition m_record;
  int m_lineSurface, m_lineInstance; // of lines that are records; -1: they are none
  std::shared_ptr<const inpS_NamedTargets> m_named;
  inpS_NamedTargets::Type m_namedType;
  bool m_isNodes = false;
  bool m_isSurface;
  bool m_isRead = false;
  cow_List<Region> m_regions;
  cow_List<std::unique_ptr<eds_MemberSet>> m_members;
};
