#pragma once

#include "base/utl_Buffer.h"
#include <cstdint>
#include <span>
#include <vector>

// The two-way map between user labels and ordinals 0, 1, ... of one space. Labels are any int32; in
// a deck up to 999999999, zero and negative ones too. Labels with a constant step cost nothing,
// compact ones a table, all others a robin-hood hash: this class decides and changes its mind as
// labels come.
class eds_LabelMap {
public:
  eds_LabelMap Copy() const;
  int64_t Size() const { return m_count; }
  // How many labels will come, if that is known: it settles the form early.
  void Reserve(int64_t count);

  // The ordinals of the labels; labels not seen before are appended in their order. Returns how
  // many were new. Spans have equal lengths.
  int64_t Add(std::span<const int32_t> labels, std::span<int32_t> ordinals);
  // Appends `count` labels first, first + stride, ...; false, and nothing done, when one is known.
  bool AddStrided(int32_t first, int64_t count, int32_t stride);

  int32_t Ordinal(int32_t label) const; // -1 when unknown
  // Bulk look-up, -1 for the unknown ones; returns how many those were.
  int64_t Ordinals(std::span<const int32_t> labels, std::span<int32_t> ordinals) const;
  int32_t Label(int64_t ordinal) const {
    return m_form == Form::Strided ? static_cast<int32_t>(m_first + ordinal * m_stride)
                                   : m_labels[static_cast<size_t>(ordinal)];
  }
  // The labels of ordinals from `first` on, as many as the buffer takes.
  void CopyLabels(int64_t first, std::span<int32_t> out) const;

  bool IsStrided() const { return m_form == Form::Strided; }
  int32_t First() const { return static_cast<int32_t>(m_first); }
  int32_t Stride() const { return static_cast<int32_t>(m_stride); }
  std::span<const int32_t> Labels() const { return m_labels; } // empty when strided

private:
  enum class Form { Strided, Dense, Hashed };
  struct Slot {
    int32_t label;
    int32_t ordinal; // -1: free
  };

  int32_t StridedOrdinal(int32_t label) const;
  int32_t HashedOrdinal(int32_t label) const;
  size_t TakeStrided(std::span<const int32_t> labels, std::span<int32_t> ordinals);
  void LeaveStrided(std::span<const int32_t> coming);
  bool FitsDense(int64_t low, int64_t high, int64_t count) const;
  bool MakeRoomDense(std::span<const int32_t> coming);
  void BecomeDense(int64_t low, int64_t high);
  void BecomeHashed(int64_t expected);
  void Rehash(size_t slots);
  void Insert(int32_t label, int32_t ordinal);
  void AddDense(std::span<const int32_t> labels, std::span<int32_t> ordinals);
  // Stops early when the labels so far are better kept in a table; returns how many were taken.
  size_t AddHashed(std::span<const int32_t> labels, std::span<int32_t> ordinals);
  void Widen(std::span<const int32_t> labels);
  size_t Home(int32_t label) const;

  Form m_form = Form::Strided;
  int64_t m_count = 0;
  int64_t m_first = 0;
  int64_t m_stride = 1;
  int64_t m_reserved = 0;
  utl_Buffer<int32_t> m_labels; // by ordinal
  utl_Buffer<int32_t> m_table;  // Dense: ordinal by label - m_tableLow, -1 where there is none
  int64_t m_tableLow = 0;
  utl_Buffer<Slot> m_slots; // Hashed: a power of two
  int m_shift = 64;         // of the hash, to the number of slots
  int64_t m_low = 0;        // least and greatest label, unless strided
  int64_t m_high = -1;
};
