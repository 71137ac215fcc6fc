#pragma once

#include "base/utl_Assert.h"
#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

// Rows of equal length in one row-major buffer, with operations on whole columns. The callers check
// their indices.
template <class T> class inpS_FlatTable {
public:
  inpS_FlatTable() = default;
  inpS_FlatTable(std::size_t rows, std::size_t cols, T value)
      : m_cols(cols), m_rows(rows), m_values(rows * cols, value) {}

  std::size_t Rows() const { return m_rows; }
  std::size_t Cols() const { return m_cols; }
  T& At(std::size_t row, std::size_t col) { return m_values[row * m_cols + col]; }
  const T& At(std::size_t row, std::size_t col) const { return m_values[row * m_cols + col]; }
  std::span<T> Row(std::size_t row) { return {m_values.data() + row * m_cols, m_cols}; }
  std::span<const T> Row(std::size_t row) const { return {m_values.data() + row * m_cols, m_cols}; }
  std::span<const T> Values() const { return m_values; }

  // Empties the table and sets the length of its rows.
  void Reset(std::size_t cols) {
    m_values.clear();
    m_rows = 0;
    m_cols = cols;
  }
  // Takes over whole rows of the present length.
  void Assign(std::span<const T> values) {
    m_values.assign(values.begin(), values.end());
    m_rows = m_cols > 0 ? values.size() / m_cols : 0;
  }
  void Reserve(std::size_t rows) { m_values.reserve(rows * m_cols); }
  std::span<T> AppendRow(T value) {
    m_values.resize(m_values.size() + m_cols, value);
    return Row(m_rows++);
  }
  void ResizeRows(std::size_t rows, T value) {
    m_values.resize(rows * m_cols, value);
    m_rows = rows;
  }
  // Rows of the same length.
  void Append(const inpS_FlatTable& other) {
    utl_ASSERT(m_cols == other.m_cols);
    m_values.insert(m_values.end(), other.m_values.begin(), other.m_values.end());
    m_rows += other.m_rows;
  }

  void InsertColumns(std::size_t at, std::size_t count, T value) {
    std::vector<T> wider;
    wider.reserve(m_rows * (m_cols + count));
    for (std::size_t row = 0; row < m_rows; ++row) {
      const auto begin = m_values.begin() + static_cast<std::ptrdiff_t>(row * m_cols);
      const auto middle = begin + static_cast<std::ptrdiff_t>(at);
      wider.insert(wider.end(), begin, middle);
      wider.insert(wider.end(), count, value);
      wider.insert(wider.end(), middle, begin + static_cast<std::ptrdiff_t>(m_cols));
    }
    m_values = std::move(wider);
    m_cols += count;
  }

  void RemoveColumn(std::size_t col) {
    auto to = m_values.begin();
    for (std::size_t row = 0; row < m_rows; ++row) {
      const auto from = m_values.begin() + static_cast<std::ptrdiff_t>(row * m_cols);
      const auto removed = from + static_cast<std::ptrdiff_t>(col);
      to = std::copy(from, removed, to);
      to = std::copy(removed + 1, from + static_cast<std::ptrdiff_t>(m_cols), to);
    }
    m_values.erase(to, m_values.end());
    --m_cols;
  }

  // Keeps the columns whose mark is not 0.
  void KeepColumns(std::span<const char> keep) {
    std::size_t to = 0;
    for (std::size_t n = 0; n < m_values.size(); ++n)
      if (keep[n % m_cols]) m_values[to++] = m_values[n];
    m_values.resize(to);
    m_cols = static_cast<std::size_t>(std::ranges::count_if(keep, [](char c) { return c != 0; }));
  }

  void SwapColumns(std::size_t a, std::size_t b) {
    for (std::size_t row = 0; row < m_rows; ++row) std::swap(At(row, a), At(row, b));
  }

  void FillColumn(std::size_t col, T value) {
    for (std::size_t row = 0; row < m_rows; ++row) At(row, col) = value;
  }

private:
  std::size_t m_cols = 0;
  std::size_t m_rows = 0;
  std::vector<T> m_values;
};
