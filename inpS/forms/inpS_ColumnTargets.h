#pragma once

#include "inpS/forms/inpS_FormValue.h"
#include "inpS/forms/inpS_NameCodes.h"
#include <unordered_map>

// What a column of targets holds for a label that is not there, or a name that nothing has. No
// line keeps it.
inline constexpr int inpS_noTarget = inp_firstNameCode + inp_mostNames;

// The sets that the columns of a record name, each once: -1 for the first, -2 for the second.
class inpS_TargetSets {
public:
  explicit inpS_TargetSets(const KvoSimPosition& record) : m_record(record) {}
  int PlaceOf(const KvoSimPosition& set, const KvoSimPosition& instance);

private:
  KvoSimPosition m_record;
  cow_Map<std::pair<unsigned long long, unsigned long long>, int> m_places;
};

// What the fields of one column name: nodes or elements by label, or sets that stand for their
// members. Targets are ordinals of the owner that is open (flat ones, or a part's own), or places
// of sets.
class inpS_ColumnTargets {
public:
  inpS_ColumnTargets(const eds_FormItem& item, const inpS_FormNames& names, inpS_TargetSets& sets);

  // Labels become targets; blanks and the codes of names stay. On any thread.
  void Translate(std::span<int> slots) const;
  // The codes of a piece's names become targets; names of other columns are none of this one's.
  void TranslateNames(const inp_ColumnPiece& piece, std::span<int> slots);
  int OfLabel(long long label) const;
  int OfName(std::string_view name);          // a set, or "instance.label"
  bool IsLabel(const cow_String& name) const; // "instance.label", whether it is there or not
  // A field that is not blank, by the general road.
  int Of(const inp_DataArray& data, long long row, int col);

private:
  struct NameHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const {
      return std::hash<std::string_view>()(name);
    }
  };

  const eds_FormItem& m_item;
  const inpS_FormNames& m_names;
  inpS_TargetSets& m_sets;
  inpS_LabelSpaceView m_space;
  std::unordered_map<cow_String, int, NameHash, std::equal_to<>> m_known; // as written
  inpS_NameCodes m_codes;
};
