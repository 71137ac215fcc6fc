#include "inpS/sets/inpS_TextElements.h"
#include <algorithm>

void inpS_TextElements::Add(int occurrence, std::span<const int> labels) {
  std::vector<int>& all = m_labels[occurrence];
  all.insert(all.end(), labels.begin(), labels.end());
  std::sort(all.begin(), all.end());
  all.erase(std::unique(all.begin(), all.end()), all.end());
}

template <class Look> bool inpS_TextElements::AnyOf(int occurrence, Look look) const {
  if (m_labels.empty()) return false; // as nearly always
  const auto own = m_labels.find(occurrence);
  if (own != m_labels.end() && look(own->second)) return true;
  const auto part = m_parts.find(occurrence);
  if (part == m_parts.end()) return false;
  const auto ofPart = m_labels.find(part->second);
  return ofPart != m_labels.end() && look(ofPart->second);
}

bool inpS_TextElements::Has(int occurrence, int label) const {
  return AnyOf(occurrence, [label](const std::vector<int>& labels) {
    return std::binary_search(labels.begin(), labels.end(), label);
  });
}

std::vector<int> inpS_TextElements::Among(int occurrence, long long first, long long count,
                                          long long increment) const {
  std::vector<int> found;
  AnyOf(occurrence, [&](const std::vector<int>& labels) {
    for (const int label : labels) {
      const long long d = label - first;
      if (d % increment == 0 && d / increment >= 0 && d / increment < count) found.push_back(label);
    }
    return false; // the other list, too
  });
  return found;
}
