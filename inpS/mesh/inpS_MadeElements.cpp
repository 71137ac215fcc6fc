#include "inpS/mesh/inpS_MadeElements.h"
#include <algorithm>
#include <memory>

inpS_MadeElements inpS_someOf(const inpS_MadeElements& made, std::vector<long long> places) {
  const auto kept = std::make_shared<const std::vector<long long>>(std::move(places));
  inpS_MadeElements some = made;
  some.count = static_cast<long long>(kept->size());
  some.labels = [kept, all = made.labels](long long first, std::span<int> labels) {
    for (std::size_t n = 0; n < labels.size(); ++n)
      all((*kept)[static_cast<std::size_t>(first) + n], labels.subspan(n, 1));
  };
  const auto width = static_cast<std::size_t>(made.kind.width);
  some.nodes = [kept, width, all = made.nodes](long long first, std::span<int> nodes) {
    for (std::size_t n = 0; n * width < nodes.size(); ++n)
      all((*kept)[static_cast<std::size_t>(first) + n], nodes.subspan(n * width, width));
  };
  some.scoped.clear();
  for (inpS_ScopedNode node : made.scoped) {
    const auto at = std::lower_bound(kept->begin(), kept->end(), node.element);
    if (at == kept->end() || *at != node.element) continue;
    node.element = at - kept->begin();
    some.scoped.push_back(std::move(node));
  }
  return some;
}
