#include "inpS/mesh/inpS_Salvage.h"
#include "database/KvoObjLabeler.h"
#include "inpS/mesh/inpS_LabelFaults.h"
#include "inpS/mesh/inpS_MeshScope.h"
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

void inpS_Salvage::Note(const inpS_MeshScope& scope, std::span<const int> labels) {
  for (const int label : labels) Note(scope.elementOccurrence, label);
}

void inpS_Salvage::NoteFaulty(const inpS_MeshScopes& scopes, const KvoObjLabeler& elements) {
  for (const inpS_MeshScope& scope : scopes.All())
    for (const long long ordinal : scope.elements.Faulty())
      Note(scope.elementOccurrence, elements.GetInstanceLabel(scope.elementOccurrence, ordinal));
}

void inpS_Salvage::LeaveOutFaulty(const inpS_MeshScope& scope, const KvoObjLabeler& elements,
                                  inpS_ElementTopologyReader& reader) {
  m_passedOver += reader.Keep([&](int label) { return IsSound(scope, label, elements); });
}

bool inpS_Salvage::IsSound(const inpS_MeshScope& scope, int label,
                           const KvoObjLabeler& elements) const {
  if (label <= 0 || label > kMaxLabel || m_faulty.contains({scope.elementOccurrence, label}))
    return false;
  const int known = elements.ConvertInstanceLabel(scope.elementOccurrence, label);
  return known < 0 || known >= inpS_firstOwnElement(scope, elements);
}

inpS_MadeElements inpS_Salvage::SoundOf(const inpS_MadeElements& made, const inpS_MeshScope& scope,
                                        const KvoObjLabeler& elements) {
  std::vector<int> labels(static_cast<std::size_t>(made.count));
  made.labels(0, labels);
  std::vector<long long> kept;
  for (std::size_t n = 0; n < labels.size(); ++n)
    if (IsSound(scope, labels[n], elements)) kept.push_back(static_cast<long long>(n));
  if (kept.size() == labels.size()) return made;
  m_passedOver += static_cast<long long>(labels.size() - kept.size());
  return inpS_someOf(made, std::move(kept));
}
