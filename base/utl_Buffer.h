#pragma once

#include "base/utl_Memory.h"
#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <span>
#include <type_traits>
#include <utility>

// A growable plain array for bulk numbers. Unlike std::vector it leaves new elements as they are,
// moves huge blocks without copying, and copies only when asked to by Copy().
template <class T> class utl_Buffer {
  static_assert(std::is_trivially_copyable_v<T>);
  static_assert(alignof(T) <= alignof(std::max_align_t));

public:
  utl_Buffer() = default;
  explicit utl_Buffer(std::size_t size) { Resize(size); }
  ~utl_Buffer() { utl_deallocate(m_data, m_capacity * sizeof(T)); }
  utl_Buffer(utl_Buffer&& other) noexcept { Swap(other); }
  utl_Buffer& operator=(utl_Buffer&& other) noexcept {
    utl_Buffer(std::move(other)).Swap(*this);
    return *this;
  }

  utl_Buffer Copy() const {
    utl_Buffer copy;
    copy.Append(std::span<const T>(*this));
    return copy;
  }

  T* Data() { return m_data; }
  const T* Data() const { return m_data; }
  std::size_t Size() const { return m_size; }
  std::size_t Capacity() const { return m_capacity; }
  bool IsEmpty() const { return m_size == 0; }
  T& operator[](std::size_t i) { return m_data[i]; }
  const T& operator[](std::size_t i) const { return m_data[i]; }
  T* begin() { return m_data; }
  T* end() { return m_data + m_size; }
  const T* begin() const { return m_data; }
  const T* end() const { return m_data + m_size; }
  operator std::span<T>() { return {m_data, m_size}; }
  operator std::span<const T>() const { return {m_data, m_size}; }

  // New elements hold whatever the memory held.
  void Resize(std::size_t size) {
    Grow(size);
    m_size = size;
  }
  void Reserve(std::size_t capacity) {
    if (capacity > m_capacity) SetCapacity(capacity);
  }
  void Clear() { m_size = 0; } // keeps the memory; assign {} to give it back
  void ShrinkToFit() {
    if (m_size < m_capacity) SetCapacity(m_size);
  }

  void Append(T value) {
    if (m_size == m_capacity) Grow(m_size + 1);
    m_data[m_size++] = value;
  }
  void Append(std::span<const T> values) { // not a part of this buffer itself
    if (values.empty()) return;
    T* to = AppendSpace(values.size());
    std::memcpy(to, values.data(), values.size_bytes());
  }
  // Room for `count` more elements at the end, to be written by the caller.
  T* AppendSpace(std::size_t count) {
    if (count > std::numeric_limits<std::size_t>::max() - m_size) throw std::bad_alloc();
    Resize(m_size + count);
    return m_data + (m_size - count);
  }

  void Swap(utl_Buffer& other) noexcept {
    std::swap(m_data, other.m_data);
    std::swap(m_size, other.m_size);
    std::swap(m_capacity, other.m_capacity);
  }

private:
  void Grow(std::size_t size) {
    if (size <= m_capacity) return;
    const std::size_t half = m_capacity + m_capacity / 2;
    SetCapacity(size > half ? size : half);
  }
  void SetCapacity(std::size_t capacity) {
    if (capacity > std::numeric_limits<std::size_t>::max() / sizeof(T)) throw std::bad_alloc();
    m_data = static_cast<T*>(utl_reallocate(m_data, m_capacity * sizeof(T), capacity * sizeof(T)));
    m_capacity = capacity;
  }

  T* m_data = nullptr;
  std::size_t m_size = 0;
  std::size_t m_capacity = 0;
};
