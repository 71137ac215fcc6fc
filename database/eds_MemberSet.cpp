#include "database/eds_MemberSet.h"
#include "base/utl_Assert.h"
#include <algorithm>
#include <limits>
#include <numeric>

eds_MemberSet eds_MemberSet::Strided(int32_t first, int64_t count, int32_t stride) {
  utl_ASSERT(count >= 0);
  utl_ASSERT(stride != 0 || count < 2);
  [[maybe_unused]] const int64_t last = first + (count > 0 ? (count - 1) * stride : 0);
  utl_ASSERT(last == static_cast<int32_t>(last));
  eds_MemberSet set;
  set.m_first = count > 0 ? first : 0;
  set.m_count = count;
  set.m_stride = count > 1 ? stride : 1; // one form for equal sets
  set.m_ascending = set.m_stride > 0;
  return set;
}

eds_MemberSet eds_MemberSet::Ordered(std::vector<int32_t> members) {
  eds_MemberSet set;
  set.m_ascending =
      std::adjacent_find(members.begin(), members.end(), std::greater_equal<>()) == members.end();
  set.m_list = std::move(members);
  set.m_isList = true;
  set.FoldIntoRange();
  return set;
}

eds_MemberSet eds_MemberSet::Ascending(std::vector<int32_t> members) {
  if (!std::is_sorted(members.begin(), members.end())) std::sort(members.begin(), members.end());
  members.erase(std::unique(members.begin(), members.end()), members.end());
  return Ordered(std::move(members));
}

// A list with constant steps becomes a range.
void eds_MemberSet::FoldIntoRange() {
  const size_t size = m_list.size();
  const int64_t step = size > 1 ? int64_t{m_list[1]} - m_list[0] : 1;
  if (step == 0 || step != static_cast<int32_t>(step)) return;
  for (size_t i = 2; i < size; ++i)
    if (int64_t{m_list[i]} - m_list[i - 1] != step) return;
  const int32_t first = size > 0 ? m_list[0] : 0;
  *this = Strided(first, static_cast<int64_t>(size), static_cast<int32_t>(step));
}

bool eds_MemberSet::IsMember(int32_t member) const {
  if (!m_isList) {
    const int64_t distance = int64_t{member} - m_first;
    return distance % m_stride == 0 && distance / m_stride >= 0 && distance / m_stride < m_count;
  }
  if (m_ascending) return std::binary_search(m_list.begin(), m_list.end(), member);
  return std::find(m_list.begin(), m_list.end(), member) != m_list.end();
}

void eds_MemberSet::Copy(int64_t first, std::span<int32_t> out) const {
  utl_ASSERT(first >= 0 && first + static_cast<int64_t>(out.size()) <= Size());
  if (m_isList) {
    std::copy_n(m_list.begin() + first, out.size(), out.begin());
    return;
  }
  int64_t member = m_first + first * m_stride;
  for (int32_t& each : out) {
    each = static_cast<int32_t>(member);
    member += m_stride;
  }
}

std::vector<int32_t> eds_MemberSet::Members() const {
  std::vector<int32_t> members(static_cast<size_t>(Size()));
  Copy(0, members);
  return members;
}

eds_MemberSet eds_MemberSet::AscendingSet() const {
  if (m_ascending) return *this;
  if (m_isList) return Ascending(m_list);
  return Strided((*this)[m_count - 1], m_count, -m_stride);
}

namespace {

// Two ascending ranges as one, when their union is one.
bool joinRanges(const eds_MemberSet& a, const eds_MemberSet& b, eds_MemberSet& joined) {
  // The one that starts first goes first, the finer one when both start together.
  if (a.First() > b.First() || (a.First() == b.First() && b.Size() > 1 && a.Stride() > b.Stride()))
    return joinRanges(b, a, joined);
  const int64_t lastA = a[a.Size() - 1];
  const int64_t lastB = b[b.Size() - 1];
  // A single member takes the other's step, or the distance to the other single one.
  int64_t stride = a.Size() > 1 ? a.Stride() : b.Stride();
  if (a.Size() == 1 && b.Size() == 1) stride = std::max<int64_t>(1, int64_t{b.First()} - a.First());
  if (b.Size() > 1 && b.Stride() % stride != 0) return false;
  if ((int64_t{b.First()} - a.First()) % stride != 0 || b.First() > lastA + stride) return false;
  // A coarser second range must lie within the first.
  if (b.Size() > 1 && b.Stride() != stride && lastB > lastA + stride) return false;
  if (stride != static_cast<int32_t>(stride)) return false;
  const int64_t last = std::max(lastA, lastB);
  joined = eds_MemberSet::Strided(a.First(), (last - a.First()) / stride + 1,
                                  static_cast<int32_t>(stride));
  return true;
}

// The common members of two ascending ranges: again a range, found by the extended Euclid
// algorithm.
eds_MemberSet meetRanges(const eds_MemberSet& a, const eds_MemberSet& b) {
  const int64_t p = a.Stride();
  const int64_t q = b.Stride();
  const int64_t gap = int64_t{b.First()} - a.First();
  int64_t r0 = p, r1 = q, s0 = 1, s1 = 0; // r0 = s0 * p (mod q)
  while (r1 != 0) {
    const int64_t quotient = r0 / r1;
    r0 -= quotient * r1;
    std::swap(r0, r1);
    s0 -= quotient * s1;
    std::swap(s0, s1);
  }
  const int64_t divisor = r0;
  if (gap % divisor != 0) return {};
  const int64_t step = p / divisor * q; // both strides are 32-bit: fits
  const int64_t modulus = q / divisor;
  int64_t turns = (gap / divisor % modulus) * (s0 % modulus) % modulus;
  if (turns < 0) turns += modulus;
  int64_t first = a.First() + turns * p; // a common member, if both went on for ever
  const int64_t low = std::max<int64_t>(a.First(), b.First());
  if (first < low) first += (low - first + step - 1) / step * step;
  const int64_t high = std::min<int64_t>(a[a.Size() - 1], b[b.Size() - 1]);
  if (first > high) return {};
  const int64_t count = (high - first) / step + 1;
  const int64_t stride = count > 1 ? step : 1;
  return eds_MemberSet::Strided(static_cast<int32_t>(first), count, static_cast<int32_t>(stride));
}

std::vector<int32_t> filtered(const eds_MemberSet& list, const eds_MemberSet& range) {
  std::vector<int32_t> members;
  for (int32_t member : list.List())
    if (range.IsMember(member)) members.push_back(member);
  return members;
}

} // namespace

eds_MemberSet eds_MemberSet::Union(const eds_MemberSet& other) const {
  const eds_MemberSet a = AscendingSet();
  const eds_MemberSet b = other.AscendingSet();
  if (a.IsEmpty()) return b;
  if (b.IsEmpty()) return a;
  eds_MemberSet joined;
  if (!a.m_isList && !b.m_isList && joinRanges(a, b, joined)) return joined;
  // Each side is expanded by the piece while merging, never as a whole.
  std::vector<int32_t> members;
  members.reserve(static_cast<size_t>(a.Size() + b.Size()));
  int64_t i = 0, j = 0;
  while (i < a.Size() && j < b.Size()) {
    const int32_t fromA = a[i];
    const int32_t fromB = b[j];
    members.push_back(std::min(fromA, fromB));
    i += fromA <= fromB;
    j += fromB <= fromA;
  }
  for (; i < a.Size(); ++i) members.push_back(a[i]);
  for (; j < b.Size(); ++j) members.push_back(b[j]);
  return Ordered(std::move(members));
}

eds_MemberSet eds_MemberSet::Intersection(const eds_MemberSet& other) const {
  const eds_MemberSet a = AscendingSet();
  const eds_MemberSet b = other.AscendingSet();
  if (a.IsEmpty() || b.IsEmpty()) return {};
  if (!a.m_isList && !b.m_isList) return meetRanges(a, b);
  if (!a.m_isList) return Ordered(filtered(b, a));
  if (!b.m_isList) return Ordered(filtered(a, b));
  std::vector<int32_t> members;
  std::set_intersection(a.m_list.begin(), a.m_list.end(), b.m_list.begin(), b.m_list.end(),
                        std::back_inserter(members));
  return Ordered(std::move(members));
}

bool eds_MemberSet::SameSet(const eds_MemberSet& other) const {
  // Equal sets have one form.
  return m_isList == other.m_isList && m_count == other.m_count && m_first == other.m_first &&
         m_stride == other.m_stride && m_list == other.m_list;
}

bool eds_MemberSet::SameMembers(const eds_MemberSet& other) const {
  return AscendingSet().SameSet(other.AscendingSet());
}

std::vector<bool> eds_MemberSet::AsBitVector(int64_t space) const {
  std::vector<bool> bits(static_cast<size_t>(space));
  for (int64_t i = 0; i < Size(); ++i) {
    const int32_t member = (*this)[i];
    utl_ASSERT(member >= 0 && member < space);
    bits[static_cast<size_t>(member)] = true;
  }
  return bits;
}
