#include "host/inps_NodeSelection.h"

#include <algorithm>
#include <numeric>

void inps_NodeSelection::Copy(int64_t first, std::span<int32_t> flat) const {
  if (flat.empty()) return;
  if (m_all) {
    std::iota(flat.begin(), flat.end(), static_cast<int32_t>(first));
    return;
  }
  const auto behind = std::ranges::upper_bound(m_before, static_cast<int32_t>(first));
  std::size_t word = static_cast<std::size_t>(behind - m_before.begin()) - 1;
  uint64_t bits = m_bits[word];
  for (int64_t skip = first - m_before[word]; skip > 0; --skip) bits &= bits - 1;
  for (int32_t& node : flat) {
    while (bits == 0) bits = m_bits[++word];
    node = static_cast<int32_t>(word * 64) + std::countr_zero(bits);
    bits &= bits - 1;
  }
}
