#include "inpS/mesh/inpS_Salvage.h"
#include "database/KvoObjLabeler.h"
#include <algorithm>
#include <memory>
#include <vector>

namespace {

constexpr int kMaxLabel = 999999999;

} // namespace

void inpS_Salvage::Begin() {
  m_grown = false;
  m_passedOver = 0;
}

void inpS_Salvage::Note(int occurrence, int label) {
  m_grown = m_faulty.insert({occurrence, label}).second || m_grown;
}

// The first definition of a label counts.
bool inpS_Salvage::IsSound(int occurrence, int label, const KvoObjLabeler& elements) const {
  return label > 0 && label <= kMaxLabel && !m_faulty.contains({occurrence, label}) &&
         elements.ConvertInstanceLabel(occurrence, label) < 0;
}

inpS_MadeElements inpS_Salvage::SoundOf(const inpS_MadeElements& made, int occurrence,
                                        const KvoObjLabeler& elements) {
  std::vector<int> labels(static_cast<std::size_t>(made.count));
  made.labels(0, labels);
  std::set<int> seen;
  const auto kept = std::make_shared<std::vector<long long>>();
  for (std::size_t n = 0; n < labels.size(); ++n)
    if (IsSound(occurrence, labels[n], elements) && seen.insert(labels[n]).second)
      kept->push_back(static_cast<long long>(n));
  if (kept->size() == labels.size()) return made;
  m_passedOver += static_cast<long long>(labels.size() - kept->size());
  inpS_MadeElements sound = made;
  sound.count = static_cast<long long>(kept->size());
  sound.labels = [kept, all = made.labels](long long first, std::span<int> some) {
    for (std::size_t n = 0; n < some.size(); ++n)
      all((*kept)[static_cast<std::size_t>(first) + n], some.subspan(n, 1));
  };
  const auto width = static_cast<std::size_t>(made.kind.width);
  sound.nodes = [kept, width, all = made.nodes](long long first, std::span<int> some) {
    for (std::size_t n = 0; n * width < some.size(); ++n)
      all((*kept)[static_cast<std::size_t>(first) + n], some.subspan(n * width, width));
  };
  sound.scoped.clear();
  for (inpS_ScopedNode node : made.scoped) {
    const auto at = std::lower_bound(kept->begin(), kept->end(), node.element);
    if (at == kept->end() || *at != node.element) continue;
    node.element = at - kept->begin();
    sound.scoped.push_back(std::move(node));
  }
  return sound;
}
