#pragma once

#include "base/utl_Assert.h"
#include <cstddef>

class KvoSimCSet;

// A value-semantic array of integers.
class inpS_ArrayInt {
public:
  inpS_ArrayInt() = default;
  inpS_ArrayInt(int size, int fill);
  inpS_ArrayInt(const int* values, int count);
  // The first `count` members of a component set, in the set's order.
  inpS_ArrayInt(const KvoSimCSet& set, int count);

  int Size() const { return static_cast<int>(m_values.size()); }
  void Resize(int size); // new values are 0
  int& operator[](int i) {
    utl_ASSERT(i >= 0 && i < Size());
    return m_values[static_cast<std::size_t>(i)];
  }
  int operator[](int i) const {
    utl_ASSERT(i >= 0 && i < Size());
    return m_values[static_cast<std::size_t>(i)];
  }
  const cow_List<int>& AsList() const { return m_values; }
  friend bool operator==(const inpS_ArrayInt&, const inpS_ArrayInt&) = default;

private:
  cow_List<int> m_values;
};
