#pragma once

#include <cstdint>
#include <span>
#include <vector>

// A set of member indices as a value: a strided range or a list, in a given order or ascending.
// Ranges stay ranges wherever the result allows. The size is 64-bit, members are 32-bit.
class eds_MemberSet {
public:
  eds_MemberSet() = default; // empty
  static eds_MemberSet Strided(int32_t first, int64_t count, int32_t stride = 1);
  // The members in the given order, repeats kept. A list with constant steps becomes strided.
  static eds_MemberSet Ordered(std::vector<int32_t> members);
  // Sorted, repeats dropped.
  static eds_MemberSet Ascending(std::vector<int32_t> members);

  int64_t Size() const { return m_isList ? static_cast<int64_t>(m_list.size()) : m_count; }
  bool IsEmpty() const { return Size() == 0; }
  bool IsStrided() const { return !m_isList; }
  bool IsAscending() const { return m_ascending; }
  int32_t First() const { return m_first; }
  int32_t Stride() const { return m_stride; }
  int32_t operator[](int64_t index) const {
    return m_isList ? m_list[static_cast<size_t>(index)]
                    : static_cast<int32_t>(m_first + index * m_stride);
  }
  std::span<const int32_t> List() const { return m_list; } // empty when strided

  // O(1) for a range, O(log n) for an ascending list, O(n) else.
  bool IsMember(int32_t member) const;
  // The members from `first` on, as many as the buffer takes.
  void Copy(int64_t first, std::span<int32_t> out) const;
  std::vector<int32_t> Members() const;

  eds_MemberSet AscendingSet() const;
  // Ascending, whatever the order of the two.
  eds_MemberSet Union(const eds_MemberSet& other) const;
  eds_MemberSet Intersection(const eds_MemberSet& other) const;
  bool SameSet(const eds_MemberSet& other) const; // same members in the same order
  bool SameMembers(const eds_MemberSet& other) const;
  std::vector<bool> AsBitVector(int64_t space) const;

private:
  void FoldIntoRange();

  std::vector<int32_t> m_list;
  int64_t m_count = 0;
  int32_t m_first = 0;
  int32_t m_stride = 1;
  bool m_isList = false;
  bool m_ascending = true;
};
