#include "parser/inp_NameIndex.h"

#include <bit>
#include <cstdint>

namespace {

std::uint64_t hashOf(std::string_view text) {
  std::uint64_t hash = 14695981039346656037u; // FNV-1a
  for (char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211u;
  return hash ^ (hash >> 32);
}

char upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

inp_FoldedName::inp_FoldedName(std::string_view text, Case fold) {
  for (char c : text) {
    if (c == ' ' || c == '\t') continue;
    if (m_length == limit) {
      m_length = 0;
      return;
    }
    m_text[m_length++] = fold == Case::Upper ? upper(c) : lower(c);
  }
}

inp_NameIndex::inp_NameIndex(std::size_t names) : m_slots(std::bit_ceil(2 * names + 1)) {}

void inp_NameIndex::Add(std::string_view folded, int number) {
  Slot& slot = m_slots[SlotOf(folded)];
  if (slot.number >= 0) return;
  slot = {folded, number};
}

int inp_NameIndex::Find(std::string_view folded) const {
  return m_slots[SlotOf(folded)].number;
}

std::size_t inp_NameIndex::SlotOf(std::string_view folded) const {
  const std::size_t mask = m_slots.size() - 1;
  std::size_t at = static_cast<std::size_t>(hashOf(folded)) & mask;
  while (m_slots[at].number >= 0 && m_slots[at].name != folded) at = (at + 1) & mask;
  return at;
}
