#pragma once

#include "base/utl_Assert.h"
#include <cstddef>

// A value-semantic array of doubles.
class inpS_ArrayDouble {
public:
  inpS_ArrayDouble() = default;
  inpS_ArrayDouble(int size, double fill);
  inpS_ArrayDouble(const double* values, int count);

  int Size() const { return static_cast<int>(m_values.size()); }
  double& operator[](int i) {
    utl_ASSERT(i >= 0 && i < Size());
    return m_values[static_cast<std::size_t>(i)];
  }
  double operator[](int i) const {
    utl_ASSERT(i >= 0 && i < Size());
    return m_values[static_cast<std::size_t>(i)];
  }
  const cow_List<double>& AsList() const { return m_values; }
  const double* Data() const { return m_values.data(); }

  inpS_ArrayDouble Slice(int first, int count) const;
  void Swap(inpS_ArrayDouble& other) noexcept { m_values.swap(other.m_values); }
  bool IsEqual(const inpS_ArrayDouble& other) const { return m_values == other.m_values; }
  friend bool operator==(const inpS_ArrayDouble&, const inpS_ArrayDouble&) = default;

private:
  cow_List<double> m_values;
};
