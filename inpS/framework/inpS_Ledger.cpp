#include "inpS/framework/inpS_Ledger.h"
#include <algorithm>
#include <bit>
#include <cstdint>
#include <utility>

namespace {

constexpr std::size_t kLeastSlots = 64;

// At most four fifths of the slots are taken.
std::size_t slotsFor(std::size_t keywords) {
  return std::bit_ceil(std::max(kLeastSlots, keywords + keywords / 4 + 1));
}

} // namespace

void inpS_Ledger::Open(std::size_t keywords) {
  Close();
  m_takenKinds.reset();
  Grow(slotsFor(keywords));
}

void inpS_Ledger::Close() {
  m_bodies = {};
  m_entries = {};
  m_count = 0;
  m_records.clear();
  m_places.clear();
}

void inpS_Ledger::Take(const inp_Keyword& keyword, const KvoSimPosition& record) {
  if (Enter(keyword, Fate::Taken, m_records.size() + 1)) m_records.push_back(record);
}

void inpS_Ledger::KeepAsText(const inp_Keyword& keyword, inpS_TextPlace place) {
  if (Enter(keyword, Fate::Text, m_places.size() + 1)) m_places.push_back(std::move(place));
}

void inpS_Ledger::LeaveOut(const inp_Keyword& keyword) {
  if (!Enter(keyword, Fate::LeftOut))
    m_entries[SlotOf(keyword.Body().get())] = MakeEntry(Fate::LeftOut, 0);
}

void inpS_Ledger::Withdraw(inpS_Subject subject) {
  for (std::size_t slot = 0; slot < m_bodies.size(); ++slot)
    if (m_bodies[slot] && inpS_subjectOf(m_bodies[slot]->kind) == subject) m_entries[slot] = 0;
}

void inpS_Ledger::LeaveOut(inpS_Subject subject) {
  for (std::size_t slot = 0; slot < m_bodies.size(); ++slot)
    if (m_bodies[slot] && FateOf(m_entries[slot]) == Fate::Taken &&
        inpS_subjectOf(m_bodies[slot]->kind) == subject)
      m_entries[slot] = MakeEntry(Fate::LeftOut, 0);
}

bool inpS_Ledger::IsSettled(const inp_Keyword& keyword) const {
  const Fate fate = FateOf(Find(keyword));
  return fate == Fate::Taken || fate == Fate::LeftOut;
}

const KvoSimPosition* inpS_Ledger::RecordOf(const inp_Keyword& keyword) const {
  const Entry entry = Find(keyword);
  const std::size_t place = entry >> 2U;
  return FateOf(entry) == Fate::Taken && place > 0 ? &m_records[place - 1] : nullptr;
}

const inpS_TextPlace* inpS_Ledger::TextOf(const inp_Keyword& keyword) const {
  const Entry entry = Find(keyword);
  return FateOf(entry) == Fate::Text ? &m_places[(entry >> 2U) - 1] : nullptr;
}

// False: something has been said of it before.
bool inpS_Ledger::Enter(const inp_Keyword& keyword, Fate fate, std::size_t place) {
  if (m_count + m_count / 4 + 1 >= m_bodies.size()) Grow(slotsFor(2 * m_count));
  const inp_KeywordBody* body = keyword.Body().get();
  const std::size_t slot = SlotOf(body);
  if (m_entries[slot] != 0) return false;
  if (!m_bodies[slot]) ++m_count;
  m_bodies[slot] = body;
  m_entries[slot] = MakeEntry(fate, place);
  if (fate == Fate::Taken) m_takenKinds.set(static_cast<std::size_t>(keyword.Kind()));
  return true;
}

inpS_Ledger::Entry inpS_Ledger::Find(const inp_Keyword& keyword) const {
  return m_bodies.empty() ? 0 : m_entries[SlotOf(keyword.Body().get())];
}

// The body's slot, or the free one that it would take.
std::size_t inpS_Ledger::SlotOf(const inp_KeywordBody* body) const {
  const std::size_t mask = m_bodies.size() - 1;
  const auto address = static_cast<std::uint64_t>(std::bit_cast<std::uintptr_t>(body));
  std::size_t slot = static_cast<std::size_t>((address * 0x9E3779B97F4A7C15ULL) >> 20U) & mask;
  while (m_bodies[slot] && m_bodies[slot] != body) slot = (slot + 1) & mask;
  return slot;
}

void inpS_Ledger::Grow(std::size_t slots) {
  const std::vector<const inp_KeywordBody*> bodies = std::exchange(m_bodies, {});
  const std::vector<Entry> entries = std::exchange(m_entries, {});
  m_bodies.resize(slots);
  m_entries.resize(slots);
  for (std::size_t n = 0; n < bodies.size(); ++n) {
    if (!bodies[n]) continue;
    const std::size_t slot = SlotOf(bodies[n]);
    m_bodies[slot] = bodies[n];
    m_entries[slot] = entries[n];
  }
}
