#pragma once

#include "database/KvoSimCSet.h"
#include "inpS/forms/inpS_StoredColumn.h"
#include "inpS/history/inpS_ExcitationKind.h"
#include "parser/inp_BulkColumns.h"
#include <array>
#include <memory>
#include <span>

// What one row of a given keyword says: about which target, which degrees or which label, and its
// magnitude.
struct inpS_ConditionRow {
  static constexpr int kAll = inp_blankInt; // the target of a row that names none

  int target = kAll; // an ordinal of the flat mesh; from -1 down a place among the record's targets
  uint64_t degrees = 1; // 0: the row says nothing that can act
  int restraint = -1;   // of the vocabulary RestraintType; -1: none
  int label = -1;       // place of its label among the record's words; -1: none
  double value = 0;     // none given is 0
  int look = 0; // rows of one look differ in target and value alone; from 0 in order of appearance
};

// The rows of a record one after the other, read by the piece.
class inpS_ConditionRows {
public:
  inpS_ConditionRows(const KvoSimPosition& record, const inpS_ExcitationKind& kind);

  long long Count() const { return m_count; }
  bool Next(inpS_ConditionRow& row) {
    if (m_next >= m_count) return false;
    if (m_next >= m_loaded) Load();
    const auto n = static_cast<std::size_t>(m_next++ - m_begin);
    row = m_looks[static_cast<std::size_t>(m_lookOfRow[n])];
    row.target = m_target.values[n];
    row.value = m_values[n];
    return true;
  }
  // Or all rows of a piece at once.
  struct Piece {
    long long firstRow;
    std::span<const int> targets;
    std::span<const int> looks;
    std::span<const double> values;
  };
  bool NextPiece(Piece& piece);
  const cow_List<inpS_ConditionRow>& Looks() const { return m_looks; } // without target and value
  // As labels: what the record calls them.
  cow_String Label(int place) const;
  // The value of all rows, when all have one.
  bool HasOneValue(double& value) const;
  KvoSimPosition Values() const; // their array; null: it has none

private:
  // What a row says beside its target and value, as its columns have it.
  struct Codes {
    int target = 0; // where it is a word of the label
    int first = 0;
    int last = 0;
    int label = 0;
    auto operator<=>(const Codes&) const = default;
  };
  void Load();
  void FindLooks(std::size_t count);
  void SettleValues();
  int FindLook(const Codes& codes);
  inpS_ConditionRow MakeLook(const Codes& codes);
  void SetDegrees(inpS_ConditionRow& row, const Codes& codes) const;
  cow_String WordOf(int column, int code) const;

  KvoSimDataRecord m_record;
  const inpS_ExcitationKind& m_kind;
  bool m_isWords = false; // the target is part of the label
  long long m_count = 0;
  long long m_next = 0;
  long long m_loaded = 0; // the row behind the piece
  long long m_begin = 0;
  std::unique_ptr<std::mutex> m_guard = std::make_unique<std::mutex>();
  struct Ints {
    std::optional<inpS_StoredColumn<int>> column;
    cow_List<int> values; // blank without a column
  };
  Ints m_target, m_first, m_last, m_label;
  cow_List<int> m_words; // of targets that are a part of the label
  // Where the target is a word, a row's label is that word and the label behind it.
  cow_Map<std::pair<int, int>, int> m_pairs;
  cow_List<std::pair<int, int>> m_pairCodes;
  cow_List<inpS_ConditionRow> m_looks;
  cow_List<int> m_lookOfRow; // of the piece
  cow_Map<Codes, int> m_lookOf;
  // The rows of a keyword look much alike: of each few codes the latest.
  struct Latest {
    uint64_t degrees = 0; // their codes, and those of the words
    uint64_t words = 0;
    int place = -1;
  };
  std::array<Latest, 32> m_latest;
  std::optional<inpS_StoredColumn<double>> m_value;
  cow_List<double> m_values;
  cow_List<cow_String> m_targetWords, m_labels, m_firstWords;
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

  KvoSimPosition m_record;
  bool m_isNodes = false;
  bool m_isSurface = false;
  bool m_isRead = false;
  cow_List<Region> m_regions;
  cow_List<std::unique_ptr<eds_MemberSet>> m_members;
};
