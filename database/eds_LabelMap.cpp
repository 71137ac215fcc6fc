#include "database/eds_LabelMap.h"
#include "base/utl_Assert.h"
#include <algorithm>
#include <limits>
#if defined(_MSC_VER)
#include <intrin.h>
#endif

// A table of 4 bytes per label of the range costs about what the hash costs (8 bytes per slot, at
// most three quarters full) while one label in four is used, and is three times as fast.
constexpr int64_t denseFactor = 4;
constexpr int64_t smallRange = 1024; // not worth a thought

// Scattered labels find their slots in memory, not in the cache: a bulk look-up asks for those of
// the labels to come while it works on the present one.
constexpr size_t lookAhead = 16;

static void prefetch(const void* address) {
#if defined(_MSC_VER)
  _mm_prefetch(static_cast<const char*>(address), _MM_HINT_T0);
#else
  __builtin_prefetch(address);
#endif
}

eds_LabelMap eds_LabelMap::Copy() const {
  eds_LabelMap copy;
  copy.m_form = m_form;
  copy.m_count = m_count;
  copy.m_first = m_first;
  copy.m_stride = m_stride;
  copy.m_reserved = m_reserved;
  copy.m_labels = m_labels.Copy();
  copy.m_table = m_table.Copy();
  copy.m_tableLow = m_tableLow;
  copy.m_slots = m_slots.Copy();
  copy.m_shift = m_shift;
  copy.m_low = m_low;
  copy.m_high = m_high;
  return copy;
}

void eds_LabelMap::Reserve(int64_t count) {
  m_reserved = std::max(m_reserved, count);
  if (m_form != Form::Strided) m_labels.Reserve(static_cast<size_t>(m_reserved));
}

// ---- labels with a constant step

int32_t eds_LabelMap::StridedOrdinal(int32_t label) const {
  const int64_t distance = label - m_first;
  const int64_t ordinal = distance / m_stride;
  const bool found = ordinal >= 0 && ordinal < m_count && ordinal * m_stride == distance;
  return found ? static_cast<int32_t>(ordinal) : -1;
}

size_t eds_LabelMap::TakeStrided(std::span<const int32_t> labels, std::span<int32_t> ordinals) {
  for (size_t i = 0; i < labels.size(); ++i) {
    const int32_t label = labels[i];
    if (m_count == 0) m_first = label;
    if (m_count == 1 && label != m_first) m_stride = label - m_first; // the second sets the step
    if (label == m_first + m_count * m_stride) {
      ordinals[i] = static_cast<int32_t>(m_count++);
      continue;
    }
    ordinals[i] = StridedOrdinal(label);
    if (ordinals[i] < 0) return i;
  }
  return labels.size();
}

bool eds_LabelMap::AddStrided(int32_t first, int64_t count, int32_t stride) {
  utl_ASSERT(count >= 0 && (stride != 0 || count < 2));
  [[maybe_unused]] const int64_t last = first + (count > 0 ? (count - 1) * stride : 0);
  utl_ASSERT(last == static_cast<int32_t>(last));
  if (count == 0) return true;
  const bool continues = m_form == Form::Strided && m_count > 1 && m_stride == stride &&
                         first == m_first + m_count * m_stride;
  if (m_count == 0 || continues) {
    if (m_count == 0) {
      m_first = first;
      m_stride = count > 1 ? stride : 1;
    }
    m_count += count;
    return true;
  }
  std::vector<int32_t> labels(static_cast<size_t>(count));
  for (int64_t i = 0; i < count; ++i)
    labels[static_cast<size_t>(i)] = static_cast<int32_t>(first + i * stride);
  std::vector<int32_t> ordinals(labels.size());
  if (Ordinals(labels, ordinals) != count) return false;
  Add(labels, ordinals);
  return true;
}

void eds_LabelMap::Widen(std::span<const int32_t> labels) {
  if (labels.empty()) return;
  const auto [low, high] = std::minmax_element(labels.begin(), labels.end());
  const bool isFirst = m_high < m_low;
  m_low = isFirst ? *low : std::min<int64_t>(m_low, *low);
  m_high = isFirst ? *high : std::max<int64_t>(m_high, *high);
}

void eds_LabelMap::LeaveStrided(std::span<const int32_t> coming) {
  m_labels.Reserve(static_cast<size_t>(std::max(m_reserved, m_count)));
  m_labels.Resize(static_cast<size_t>(m_count));
  for (int64_t i = 0; i < m_count; ++i)
    m_labels[static_cast<size_t>(i)] = static_cast<int32_t>(m_first + i * m_stride);
  Widen(std::span<const int32_t>(m_labels.Data(), m_labels.Size()));
  Widen(coming);
  const int64_t expected = m_count + static_cast<int64_t>(coming.size());
  if (FitsDense(m_low, m_high, expected)) {
    BecomeDense(m_low, m_high);
  } else {
    BecomeHashed(expected);
  }
}

// ---- compact labels

bool eds_LabelMap::FitsDense(int64_t low, int64_t high, int64_t count) const {
  return high - low < std::max(count, m_reserved) * denseFactor + smallRange;
}

void eds_LabelMap::BecomeDense(int64_t low, int64_t high) {
  m_form = Form::Dense;
  m_slots = {};
  m_tableLow = low;
  m_table.Resize(static_cast<size_t>(high - low + 1));
  std::fill(m_table.begin(), m_table.end(), -1);
  int32_t ordinal = 0;
  for (int32_t label : m_labels) m_table[static_cast<size_t>(label - low)] = ordinal++;
}

bool eds_LabelMap::MakeRoomDense(std::span<const int32_t> coming) {
  Widen(coming);
  const int64_t tableHigh = m_tableLow + static_cast<int64_t>(m_table.Size()) - 1;
  if (m_low >= m_tableLow && m_high <= tableHigh) return true;
  if (!FitsDense(m_low, m_high, m_count + static_cast<int64_t>(coming.size()))) return false;
  if (m_low < m_tableLow) {
    // Rare, since most labels grow; some room below keeps falling ones from doing it every time.
    const int64_t room = (tableHigh - m_low) / 2;
    BecomeDense(std::max<int64_t>(m_low - room, std::numeric_limits<int32_t>::min()),
                std::max(m_high, tableHigh));
    return true;
  }
  const size_t old = m_table.Size();
  m_table.Resize(static_cast<size_t>(m_high - m_tableLow + 1));
  std::fill(m_table.begin() + old, m_table.end(), -1);
  return true;
}

void eds_LabelMap::AddDense(std::span<const int32_t> labels, std::span<int32_t> ordinals) {
  for (size_t i = 0; i < labels.size(); ++i) {
    int32_t& ordinal = m_table[static_cast<size_t>(labels[i] - m_tableLow)];
    if (ordinal < 0) {
      ordinal = static_cast<int32_t>(m_count++);
      m_labels.Append(labels[i]);
    }
    ordinals[i] = ordinal;
  }
}

// ---- all others: robin-hood hashing with linear probing

size_t eds_LabelMap::Home(int32_t label) const {
  const uint64_t mixed = static_cast<uint32_t>(label) * 0x9e3779b97f4a7c15ULL;
  return static_cast<size_t>(mixed >> m_shift);
}

void eds_LabelMap::BecomeHashed(int64_t expected) {
  m_form = Form::Hashed;
  m_table = {};
  size_t slots = 1024;
  while (static_cast<int64_t>(slots) * 3 / 4 < std::max(expected, m_reserved)) slots *= 2;
  Rehash(slots);
}

void eds_LabelMap::Rehash(size_t slots) {
  m_slots = utl_Buffer<Slot>(slots);
  std::fill(m_slots.begin(), m_slots.end(), Slot{0, -1});
  m_shift = 64;
  for (size_t i = slots; i > 1; i /= 2) --m_shift;
  int32_t ordinal = 0;
  for (int32_t label : m_labels) Insert(label, ordinal++);
}

void eds_LabelMap::Insert(int32_t label, int32_t ordinal) {
  const size_t mask = m_slots.Size() - 1;
  Slot carried{label, ordinal};
  size_t at = Home(label);
  for (size_t distance = 0;; ++distance, at = (at + 1) & mask) {
    Slot& slot = m_slots[at];
    if (slot.ordinal < 0) {
      slot = carried;
      return;
    }
    const size_t itsDistance = (at - Home(slot.label)) & mask;
    if (itsDistance >= distance) continue;
    std::swap(slot, carried); // the one nearer to its home moves on
    distance = itsDistance;
  }
}

int32_t eds_LabelMap::HashedOrdinal(int32_t label) const {
  const size_t mask = m_slots.Size() - 1;
  size_t at = Home(label);
  for (size_t distance = 0;; ++distance, at = (at + 1) & mask) {
    const Slot& slot = m_slots[at];
    if (slot.ordinal < 0) return -1;
    if (slot.label == label) return slot.ordinal;
    if (((at - Home(slot.label)) & mask) < distance) return -1;
  }
}

size_t eds_LabelMap::AddHashed(std::span<const int32_t> labels, std::span<int32_t> ordinals) {
  for (size_t i = 0; i < labels.size(); ++i) {
    if (i + lookAhead < labels.size()) prefetch(&m_slots[Home(labels[i + lookAhead])]);
    ordinals[i] = HashedOrdinal(labels[i]);
    if (ordinals[i] >= 0) continue;
    if (m_count >= static_cast<int64_t>(m_slots.Size()) * 3 / 4) {
      // Before it doubles: shuffled labels have grown dense by now.
      if (FitsDense(m_low, m_high, m_count)) {
        BecomeDense(m_low, m_high);
        return i;
      }
      Rehash(m_slots.Size() * 2);
    }
    ordinals[i] = static_cast<int32_t>(m_count++);
    m_labels.Append(labels[i]);
    Insert(labels[i], ordinals[i]);
  }
  return labels.size();
}

// ---- for all forms

int64_t eds_LabelMap::Add(std::span<const int32_t> labels, std::span<int32_t> ordinals) {
  utl_ASSERT(labels.size() == ordinals.size());
  utl_ASSERT(m_count + static_cast<int64_t>(labels.size()) <= std::numeric_limits<int32_t>::max());
  const int64_t before = m_count;
  if (m_form == Form::Strided) {
    const size_t taken = TakeStrided(labels, ordinals);
    labels = labels.subspan(taken);
    ordinals = ordinals.subspan(taken);
    if (labels.empty()) return m_count - before;
    LeaveStrided(labels);
  }
  if (m_form == Form::Hashed) {
    Widen(labels);
    const size_t taken = AddHashed(labels, ordinals);
    labels = labels.subspan(taken);
    ordinals = ordinals.subspan(taken);
  }
  if (labels.empty()) return m_count - before;
  if (!MakeRoomDense(labels)) {
    BecomeHashed(m_count + static_cast<int64_t>(labels.size()));
    const int64_t known = m_count;
    [[maybe_unused]] const size_t taken = AddHashed(labels, ordinals);
    utl_ASSERT(taken == labels.size() && m_count >= known); // room was made for all of them
    return m_count - before;
  }
  AddDense(labels, ordinals);
  return m_count - before;
}

int32_t eds_LabelMap::Ordinal(int32_t label) const {
  switch (m_form) {
  case Form::Strided:
    return StridedOrdinal(label);
  case Form::Dense: {
    const auto at = static_cast<uint64_t>(label - m_tableLow);
    return at < m_table.Size() ? m_table[static_cast<size_t>(at)] : -1;
  }
  case Form::Hashed:
    return HashedOrdinal(label);
  }
  return -1;
}

int64_t eds_LabelMap::Ordinals(std::span<const int32_t> labels, std::span<int32_t> ordinals) const {
  utl_ASSERT(labels.size() == ordinals.size());
  const size_t count = labels.size();
  int64_t missing = 0;
  if (m_form == Form::Strided && m_stride == 1) {
    const auto size = static_cast<uint64_t>(m_count);
    for (size_t i = 0; i < count; ++i) {
      const auto at = static_cast<uint64_t>(labels[i] - m_first);
      ordinals[i] = at < size ? static_cast<int32_t>(at) : -1;
      missing += at >= size;
    }
  } else if (m_form == Form::Dense) {
    const int32_t* table = m_table.Data();
    const uint64_t size = m_table.Size();
    for (size_t i = 0; i < count; ++i) {
      const auto at = static_cast<uint64_t>(labels[i] - m_tableLow);
      ordinals[i] = at < size ? table[at] : -1;
      missing += ordinals[i] < 0;
    }
  } else if (m_form == Form::Hashed) {
    for (size_t i = 0; i < count; ++i) {
      if (i + lookAhead < count) prefetch(&m_slots[Home(labels[i + lookAhead])]);
      ordinals[i] = HashedOrdinal(labels[i]);
      missing += ordinals[i] < 0;
    }
  } else {
    for (size_t i = 0; i < count; ++i) {
      ordinals[i] = StridedOrdinal(labels[i]);
      missing += ordinals[i] < 0;
    }
  }
  return missing;
}

void eds_LabelMap::CopyLabels(int64_t first, std::span<int32_t> out) const {
  utl_ASSERT(first >= 0 && first + static_cast<int64_t>(out.size()) <= m_count);
  for (int32_t& label : out) label = Label(first++);
}
