#include "host/inps_NameChoice.h"

#include <algorithm>

namespace {

cow_String folded(cow_String name) {
  for (char& c : name)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return name;
}

} // namespace

inps_NameChoice::inps_NameChoice(std::span<const cow_String> wanted,
                                 const cow_List<cow_String>& have)
    : m_all(wanted.empty()) {
  for (const cow_String& name : wanted) {
    const std::size_t before = m_chosen.size();
    if (std::ranges::find(have, name) != have.end()) {
      m_chosen.push_back(name);
      continue;
    }
    for (const cow_String& other : have)
      if (folded(other) == folded(name)) m_chosen.push_back(other);
    if (m_chosen.size() == before) m_missing.push_back(name);
  }
  std::ranges::sort(m_chosen);
}

bool inps_NameChoice::Has(const cow_String& name) const {
  return m_all || std::ranges::binary_search(m_chosen, name);
}
