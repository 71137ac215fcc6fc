#include "host/inps_Matching.h"

#include <string_view>
#include <unordered_map>

inps_Matching::inps_Matching(std::span<const cow_String> a, std::span<const cow_String> b) {
  struct Waiting {
    cow_List<std::size_t> places;
    std::size_t taken = 0;
  };
  std::unordered_map<std::string_view, Waiting> waiting;
  for (std::size_t i = 0; i < b.size(); ++i) waiting[b[i]].places.push_back(i);

  cow_List<bool> found(b.size());
  for (std::size_t i = 0; i < a.size(); ++i) {
    const auto entry = waiting.find(a[i]);
    if (entry == waiting.end() || entry->second.taken == entry->second.places.size()) {
      onlyA.push_back(i);
      continue;
    }
    const std::size_t partner = entry->second.places[entry->second.taken++];
    found[partner] = true;
    both.emplace_back(i, partner);
  }
  for (std::size_t i = 0; i < b.size(); ++i)
    if (!found[i]) onlyB.push_back(i);
}
