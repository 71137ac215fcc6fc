#include "database/KvoSimDistribution.h"
#include "base/utl_Assert.h"
#include "base/utl_File.h"
#include "database/KvoSimPosition.h"
#include "database/eds_Exception.h"
#include "database/engine/eds_Store.h"
#include <charconv>

namespace {

// Reads a grid back from its text.
KvoSimGrid gridOf(eds_Store* store, std::string_view text) {
  std::vector<KvoSimCollection> collections;
  const char* at = text.data();
  const char* end = at + text.size();
  while (at != end) {
    int64_t id = 0;
    const auto [next, fault] = std::from_chars(at, end, id);
    if (fault != std::errc() || !store->Exists({eds_RecordKind::Collection, id})) {
      throw eds_DamagedFileException("\"" + utl_pathText(store->Path()) +
                                     "\" is damaged: a grid names no collection");
    }
    collections.emplace_back(store, id);
    at = next;
    if (at != end) ++at; // the blank
  }
  return KvoSimGrid(std::move(collections));
}

} // namespace

// ---- distributions

KvoSimPosition KvoSimDistribution::Position() const {
  return {m_store, {eds_RecordKind::Distribution, m_id}};
}

KvoSimGrid KvoSimDistribution::Grid() const {
  return gridOf(m_store,
                m_store->Rows(eds_RecordKind::Distribution).Text(m_id, eds_Distribution_Grid));
}

KvoSimRangeType KvoSimDistribution::RangeType() const {
  const KvoSimDataRecord record = Position().DataRecord();
  return {static_cast<eds_ValueType>(record.GetSymb(eds_Distribution_ValueType)),
          record.GetInt(eds_Distribution_Values)};
}

int KvoSimDistribution::NumDimensions() const {
  return Grid().NumDimensions();
}

std::vector<int64_t> KvoSimDistribution::DrawerIDArray() const {
  std::vector<int64_t> drawers;
  if (IsNull()) return drawers;
  for (const KvoSimPosition& drawer : Position().GetVector(eds_Member::Drawers))
    drawers.push_back(drawer.ID());
  return drawers;
}

int64_t KvoSimDistribution::NumDrawers() const {
  return IsNull() ? 0 : Position().MemberCount(eds_Member::Drawers);
}

std::vector<int64_t> KvoSimDistribution::QueryDrawers(const KvoSimCSet& over) const {
  std::vector<int64_t> drawers;
  for (int64_t drawer : DrawerIDArray())
    if (!DrawerCSet(drawer).Intersection(over).IsEmpty()) drawers.push_back(drawer);
  return drawers;
}

KvoSimCSet KvoSimDistribution::DrawerCSet(int64_t drawer) const {
  const eds_ObjectID over =
      m_store->Rows(eds_RecordKind::Drawer).Reference(drawer, eds_Drawer_Over);
  return over.IsNull() ? KvoSimCSet() : KvoSimCSet(KvoSimCSetID(m_store, over.id));
}

eds_ArrayID KvoSimDistribution::DrawerArray(int64_t drawer) const {
  return {m_store, m_store->Rows(eds_RecordKind::Drawer).Reference(drawer, eds_Drawer_Array).id};
}

int64_t KvoSimDistribution::AddDrawer(const KvoSimCSetID& over, const eds_ArrayID& array) {
  utl_ASSERT(over.Number() > 0); // temporary sets are not kept
  eds_RowTable& drawers = m_store->Rows(eds_RecordKind::Drawer);
  const int64_t drawer = drawers.Create();
  drawers.SetReference(drawer, eds_Drawer_Distribution, {eds_RecordKind::Distribution, m_id});
  drawers.SetReference(drawer, eds_Drawer_Over, {eds_RecordKind::CSet, over.Number()});
  if (!array.IsNull())
    drawers.SetReference(drawer, eds_Drawer_Array, {eds_RecordKind::Array, array.id});
  Position().Associate(eds_Member::Drawers, {m_store, drawers.Object(drawer)});
  return drawer;
}

// ---- data sets

KvoSimPosition KvoSimDSet::Position() const {
  return {m_store, {eds_RecordKind::DSet, m_id}};
}

KvoSimGrid KvoSimDSet::Grid() const {
  return gridOf(m_store, m_store->Rows(eds_RecordKind::DSet).Text(m_id, eds_DSet_Grid));
}

void KvoSimDSet::Collect(const KvoSimDistribution& distribution) {
  Position().Associate(eds_Member::Distributions, distribution.Position());
}

std::vector<KvoSimDistribution> KvoSimDSet::Representation() const {
  std::vector<KvoSimDistribution> distributions;
  if (IsNull()) return distributions;
  for (const KvoSimPosition& position : Position().GetVector(eds_Member::Distributions))
    distributions.push_back(position.AsDistribution());
  return distributions;
}

std::vector<KvoSimDistribution> KvoSimDSet::Select(const KvoSimCSet& over) const {
  std::vector<KvoSimDistribution> distributions;
  for (const KvoSimDistribution& distribution : Representation())
    if (!distribution.QueryDrawers(over).empty()) distributions.push_back(distribution);
  return distributions;
}
