#pragma once

#include "database/KvoSimPosition.h"
#include "database/eds_Array.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/forms/inpS_FormValue.h"
#include "parser/inp_BulkColumns.h"
#include <optional>
#include <unordered_map>

// Reads the lines of a keyword into the bulk columns of its record: a million lines cost some typed
// arrays, and neither a record nor a look-up of a name each. Targets become ordinals of the owner
// that is open (flat ones, or a part's own), or -1 for the first set that the record names, -2 for
// the second, and so on.

// One column as it grows: a value while all rows have the same, then some values, then an array.
class inpS_ColumnStore {
public:
  inpS_ColumnStore(const KvoSimPosition& record, const eds_FormItem& item);

  void Append(std::span<const int> values) { Take(values, m_ints, m_firstInt); }
  void Append(std::span<const double> values) { Take(values, m_reals, m_firstReal); }
  void Finish(); // sets the fields of the record

private:
  template <class T> void Take(std::span<const T> values, cow_List<T>& few, T& first);
  template <class T> void Spread(cow_List<T>& few, T first);
  template <class T> void AppendTo(std::span<const T> values, cow_List<T>& few);
  bool IsReal() const { return m_item.alternatives.front().type == eds_FormType::Real; }

  KvoSimPosition m_record;
  const eds_FormItem& m_item;
  long long m_rows = 0;
  bool m_isOne = true; // all rows have the first value
  int m_firstInt = 0;
  double m_firstReal = 0;
  cow_List<int> m_ints;
  cow_List<double> m_reals;
  std::optional<eds_ArrayWriter> m_array;
};

class inpS_ColumnReader {
public:
  inpS_ColumnReader(const inp_Keyword& keyword, const eds_FormInfo& form,
                    const KvoSimPosition& record, const inpS_FormNames& names,
                    inp_Visitor& messages);

  // False when a line could not be taken; each such line has been told.
  bool Read();

private:
  using Piece = inp_ColumnPiece;

  void Translate(const Piece& piece) const; // on any thread: labels to ordinals
  void Take(const Piece& piece);
  void TakeNames(const Piece& piece);
  // What the lines that the bulk decode leaves to others say, slot by slot; false: no row.
  bool TakeOdd(const Piece& piece, std::size_t slot, long long row);
  int TargetOf(std::size_t column, std::string_view name); // inp_blankInt: there is none
  int PlaceOf(const KvoSimPosition& set, const KvoSimPosition& instance);
  void Drop(const Piece& piece, std::span<const char> isFaulty);
  void TellFaults();
  cow_String FaultOf(long long row, int& col);

  const inp_Keyword& m_keyword;
  const eds_FormInfo& m_form;
  KvoSimPosition m_record;
  const inpS_FormNames& m_names;
  inp_Visitor& m_messages;
  cow_List<inp_ColumnType> m_types;
  cow_List<inpS_LabelSpaceView> m_spaces; // of target columns
  cow_List<inpS_ColumnStore> m_columns;
  struct NameHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const {
      return std::hash<std::string_view>()(name);
    }
  };
  using TargetsByName = std::unordered_map<cow_String, int, NameHash, std::equal_to<>>;
  cow_List<TargetsByName> m_targets; // by column, as written
  cow_Map<std::pair<unsigned long long, unsigned long long>, int> m_places;
  cow_List<cow_List<int>> m_codes; // of a piece's names, by column
  cow_List<char> m_isFaulty;       // of a piece's slots
  long long m_rows = 0;
  bool m_isWhole = true;
};
