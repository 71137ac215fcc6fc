#pragma once

#include <bit>
#include <cstdint>
#include <span>
#include <vector>

// Some of the nodes of the flat mesh, numbered anew from 0 in their order: a bit for each node, and
// the number of nodes before every word of bits.
class inps_NodeSelection {
public:
  static inps_NodeSelection All(int64_t nodes) {
    inps_NodeSelection selection;
    selection.m_all = true;
    selection.m_count = nodes;
    return selection;
  }
  static inps_NodeSelection None(int64_t nodes) {
    inps_NodeSelection selection;
    selection.m_bits.assign(static_cast<std::size_t>(nodes + 63) / 64, 0);
    return selection;
  }

  void Add(int32_t flat) { m_bits[Word(flat)] |= uint64_t{1} << (flat & 63); }
  bool Has(int32_t flat) const { return m_all || (m_bits[Word(flat)] >> (flat & 63) & 1) != 0; }
  // After the last Add, before anything below.
  void Number() {
    m_before.resize(m_bits.size());
    m_count = 0;
    for (std::size_t word = 0; word < m_bits.size(); ++word) {
      m_before[word] = static_cast<int32_t>(m_count);
      m_count += std::popcount(m_bits[word]);
    }
  }

  int64_t Count() const { return m_count; }
  int32_t Index(int32_t flat) const { // of a node of the selection
    if (m_all) return flat;
    const uint64_t below = m_bits[Word(flat)] & ((uint64_t{1} << (flat & 63)) - 1);
    return m_before[Word(flat)] + std::popcount(below);
  }
  // The flat ordinals of the nodes from a new number on, as many as the span takes.
  void Copy(int64_t first, std::span<int32_t> flat) const;

private:
  static std::size_t Word(int32_t flat) { return static_cast<std::size_t>(flat) >> 6; }

  bool m_all = false;
  int64_t m_count = 0;
  std::vector<uint64_t> m_bits;
  std::vector<int32_t> m_before;
};
