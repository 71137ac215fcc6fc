#include "inpS/sets/inpS_SurfaceFaceSets.h"
#include <algorithm>

namespace {

using Face = eds_SurfaceFace;

std::size_t indexOf(Face face) {
  return static_cast<std::size_t>(face);
}

} // namespace

eds_MemberSet inpS_difference(const eds_MemberSet& from, const eds_MemberSet& other) {
  if (from.IsEmpty() || other.IsEmpty()) return from;
  const eds_MemberSet a = from.AscendingSet();
  const eds_MemberSet common = a.Intersection(other);
  if (common.IsEmpty()) return a;
  std::vector<int> rest;
  rest.reserve(static_cast<std::size_t>(a.Size() - common.Size()));
  long long n = 0;
  for (long long i = 0; i < a.Size(); ++i) {
    if (n < common.Size() && common[n] == a[i])
      ++n;
    else
      rest.push_back(a[i]);
  }
  return eds_MemberSet::Ordered(std::move(rest));
}

eds_MemberSet inpS_unionOf(const cow_List<const eds_MemberSet*>& sets) {
  if (sets.empty()) return {};
  if (sets.size() == 1) return sets[0]->AscendingSet();
  if (sets.size() == 2) return sets[0]->Union(*sets[1]);
  std::vector<int> members;
  std::size_t total = 0;
  for (const eds_MemberSet* set : sets) total += static_cast<std::size_t>(set->Size());
  members.resize(total);
  std::size_t at = 0;
  for (const eds_MemberSet* set : sets) {
    const auto size = static_cast<std::size_t>(set->Size());
    set->Copy(0, std::span(members).subspan(at, size));
    at += size;
  }
  return eds_MemberSet::Ascending(std::move(members));
}

void inpS_FaceSets::Add(Face face, const KvoSimCSet& elements) {
  if (elements.IsEmpty()) return;
  m_entries[indexOf(face)].push_back({{}, elements});
}

void inpS_FaceSets::Add(Face face, eds_MemberSet elements) {
  if (elements.IsEmpty()) return;
  m_entries[indexOf(face)].push_back({std::move(elements), {}});
}

void inpS_FaceSets::Settle() {
  for (auto& entries : m_entries) {
    if (entries.empty() || (entries.size() == 1 && entries[0].Set().IsAscending())) continue;
    cow_List<const eds_MemberSet*> sets;
    for (const Entry& entry : entries) sets.push_back(&entry.Set());
    eds_MemberSet whole = inpS_unionOf(sets);
    entries.clear();
    entries.push_back({std::move(whole), {}});
  }
  const auto replace = [&](Face face, eds_MemberSet elements) {
    auto& entries = m_entries[indexOf(face)];
    if (elements.SameSet(Elements(face))) return;
    entries.clear();
    if (!elements.IsEmpty()) entries.push_back({std::move(elements), {}});
  };
  const eds_MemberSet both =
      Elements(Face::Whole).Union(Elements(Face::SPos).Intersection(Elements(Face::SNeg)));
  if (both.IsEmpty()) return;
  replace(Face::Whole, both);
  replace(Face::SPos, inpS_difference(Elements(Face::SPos), both));
  replace(Face::SNeg, inpS_difference(Elements(Face::SNeg), both));
}

bool inpS_FaceSets::IsEmpty() const {
  return std::all_of(m_entries.begin(), m_entries.end(),
                     [](const auto& entries) { return entries.empty(); });
}

const eds_MemberSet& inpS_FaceSets::Elements(Face face) const {
  static const eds_MemberSet none;
  const auto& entries = m_entries[indexOf(face)];
  return entries.empty() ? none : entries[0].Set();
}

eds_MemberSet inpS_FaceSets::Side(Face face) const {
  return Elements(face).Union(Elements(Face::Whole));
}

// Whole elements are both their sides.
template <class Operation>
inpS_FaceSets inpS_FaceSets::Combined(const inpS_FaceSets& other, Operation operation) const {
  inpS_FaceSets result;
  for (int n = 0; n < eds_surfaceFaceCount; ++n) {
    const auto face = static_cast<Face>(n);
    if (face == Face::Whole) continue;
    const bool isSide = face == Face::SPos || face == Face::SNeg;
    result.Add(face, isSide ? operation(Side(face), other.Side(face))
                            : operation(Elements(face), other.Elements(face)));
  }
  result.Settle();
  return result;
}

inpS_FaceSets inpS_FaceSets::Union(const inpS_FaceSets& other) const {
  return Combined(other, [](const auto& a, const auto& b) { return a.Union(b); });
}

inpS_FaceSets inpS_FaceSets::Intersection(const inpS_FaceSets& other) const {
  return Combined(other, [](const auto& a, const auto& b) { return a.Intersection(b); });
}

inpS_FaceSets inpS_FaceSets::Difference(const inpS_FaceSets& other) const {
  return Combined(other, [](const auto& a, const auto& b) { return inpS_difference(a, b); });
}

void inpS_FaceSets::Save(KvoObjSurface& surface, KvoSimCollection collection) const {
  for (int n = 0; n < eds_surfaceFaceCount; ++n) {
    const auto& entries = m_entries[static_cast<std::size_t>(n)];
    if (entries.empty()) continue;
    KvoSimCSetID stored = entries[0].stored.ID();
    if (stored.IsNull()) stored = collection.CreateCSet(entries[0].Set()).ID();
    surface.AddFaces(static_cast<Face>(n), stored);
  }
}
