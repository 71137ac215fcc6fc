#include "database/KvoObjLabeler.h"
#include "base/utl_Assert.h"
#include "base/utl_File.h"
#include "database/KvoSimPosition.h"
#include "database/eds_Array.h"
#include "database/eds_Exception.h"
#include "database/engine/eds_Store.h"
#include <algorithm>
#include <numeric>
#include <unordered_map>

namespace {

struct Space {
  KvoSimPosition owner;
  std::shared_ptr<eds_LabelMap> labels;
  int source = -1; // the space whose labels these are
  int64_t flatFirst = -1;
  int64_t record = 0; // once saved
  int64_t saved = 0;  // labels in its array
  bool changed = true;
};

[[noreturn]] void damaged(eds_Store& store, int64_t record) {
  throw eds_DamagedFileException("\"" + utl_pathText(store.Path()) + "\" is damaged: label space " +
                                 std::to_string(record));
}

} // namespace

struct KvoObjLabeler::Impl {
  KvoObjDocument document;
  int kind;
  std::vector<Space> spaces;
  std::unordered_map<uint64_t, int> byOwner;
  std::unordered_map<int64_t, int> byRecord; // of the spaces read
  mutable std::vector<int> byFlat;           // spaces of the flat mesh by first ordinal
  mutable bool flatSorted = false;

  eds_Store& Store() const { return *document.ContextID().store; }

  Space& At(int occurrence) {
    utl_ASSERT(occurrence >= 0 && occurrence < static_cast<int>(spaces.size()));
    return spaces[static_cast<size_t>(occurrence)];
  }

  int Open(const KvoSimPosition& owner) {
    utl_ASSERT(!owner.IsNull());
    const auto number = static_cast<int>(spaces.size());
    const auto [found, isNew] = byOwner.emplace(owner.Object().Packed(), number);
    if (isNew) {
      spaces.emplace_back().owner = owner;
      spaces.back().labels = std::make_shared<eds_LabelMap>();
    }
    return found->second;
  }

  // The labels for changing: a space that reads another's, or is read by others, gets its own
  // first.
  eds_LabelMap& Own(int occurrence) {
    Space& space = At(occurrence);
    if (space.source < 0 && space.labels.use_count() > 1) PassOn(occurrence);
    if (space.labels.use_count() > 1)
      space.labels = std::make_shared<eds_LabelMap>(space.labels->Copy());
    space.source = -1;
    space.changed = true;
    return *space.labels;
  }

  // Those that read a space about to change keep what they read: the first of them becomes its
  // owner.
  void PassOn(int occurrence) {
    int heir = -1;
    for (int i = 0; i < static_cast<int>(spaces.size()); ++i) {
      Space& space = At(i);
      if (space.source != occurrence) continue;
      space.source = heir;
      space.changed = true;
      if (heir < 0) heir = i;
    }
  }

  void ReadRecord(int64_t id);
  void ReadLabels(Space& space, int64_t array, int64_t count);
  void SaveSpace(Space& space);
  void SaveLabels(Space& space);
  void SortFlat() const;
};

KvoObjLabeler::KvoObjLabeler(const KvoObjDocument& document, int kind)
    : m_impl(std::make_unique<Impl>()) {
  utl_ASSERT(kind == 0 || kind == 1);
  m_impl->document = document;
  m_impl->kind = kind;
}

KvoObjLabeler::KvoObjLabeler(KvoObjLabeler&&) noexcept = default;
KvoObjLabeler& KvoObjLabeler::operator=(KvoObjLabeler&&) noexcept = default;
KvoObjLabeler::~KvoObjLabeler() = default;

int KvoObjLabeler::Kind() const {
  return m_impl->kind;
}

// ---- the database

void KvoObjLabeler::Read() {
  m_impl->spaces.clear();
  m_impl->byOwner.clear();
  m_impl->byRecord.clear();
  m_impl->flatSorted = false;
  eds_RowTable& rows = m_impl->Store().Rows(eds_RecordKind::LabelSpace);
  for (int64_t id = 1; id <= rows.LastID(); ++id) {
    if (rows.Has(id) && rows.Int(id, eds_LabelSpace_Kind) == m_impl->kind) m_impl->ReadRecord(id);
  }
  m_impl->SortFlat(); // here, since writers look up nodes on many threads
}

void KvoObjLabeler::Impl::ReadRecord(int64_t id) {
  eds_RowTable& rows = Store().Rows(eds_RecordKind::LabelSpace);
  const eds_ObjectID owner = rows.Reference(id, eds_LabelSpace_Owner);
  if (owner.IsNull() || byOwner.count(owner.Packed()) != 0) damaged(Store(), id);
  Space& space = At(Open(KvoSimPosition(&Store(), owner)));
  space.record = id;
  byRecord.emplace(id, static_cast<int>(spaces.size()) - 1);
  space.changed = false;
  space.flatFirst = rows.Int(id, eds_LabelSpace_FlatFirst);
  const int64_t count = rows.Int(id, eds_LabelSpace_Count);
  const eds_ObjectID shares = rows.Reference(id, eds_LabelSpace_Shares);
  if (!shares.IsNull()) {
    auto found = byRecord.find(shares.id);
    if (found == byRecord.end() || shares.id >= id) damaged(Store(), id);
    const Space& source = At(found->second);
    if (source.labels->Size() != count) damaged(Store(), id);
    space.source = found->second;
    space.labels = source.labels;
    return;
  }
  const eds_ObjectID array = rows.Reference(id, eds_LabelSpace_Labels);
  if (!array.IsNull()) return ReadLabels(space, array.id, count);
  const int64_t first = rows.Int(id, eds_LabelSpace_First);
  const int64_t stride = rows.Int(id, eds_LabelSpace_Stride);
  constexpr int64_t most = INT32_MAX;
  const bool inRange = count >= 0 && count <= most && std::abs(first) <= most &&
                       std::abs(stride) <= most && (stride != 0 || count < 2) &&
                       std::abs(first + (count > 0 ? count - 1 : 0) * stride) <= most;
  if (!inRange) damaged(Store(), id);
  space.labels->AddStrided(static_cast<int32_t>(first), count, static_cast<int32_t>(stride));
}

void KvoObjLabeler::Impl::ReadLabels(Space& space, int64_t array, int64_t count) {
  eds_ArrayReader reader(eds_ArrayID{&Store(), array});
  if (reader.Count() != count || reader.Width() != 1) damaged(Store(), space.record);
  space.labels->Reserve(count);
  std::vector<int32_t> ordinals;
  for (int64_t chunk = 0; chunk < reader.ChunkCount(); ++chunk) {
    const std::span<const int32_t> labels = reader.Chunk<int32_t>(chunk);
    ordinals.resize(labels.size());
    const int64_t added = space.labels->Add(labels, ordinals);
    if (added != static_cast<int64_t>(labels.size())) damaged(Store(), space.record);
  }
  space.saved = count;
}

void KvoObjLabeler::Save(KvoSimTransaction& transaction) {
  utl_ASSERT(transaction.ContextID() == m_impl->document.ContextID());
  for (Space& space : m_impl->spaces)
    if (space.changed) m_impl->SaveSpace(space);
}

void KvoObjLabeler::Impl::SaveSpace(Space& space) {
  eds_RowTable& rows = Store().Rows(eds_RecordKind::LabelSpace);
  if (space.record == 0) {
    space.record = rows.Create();
    rows.SetReference(space.record, eds_LabelSpace_Owner, space.owner.Object());
    rows.SetInt(space.record, eds_LabelSpace_Kind, kind);
  }
  const int64_t id = space.record;
  if (space.flatFirst >= 0) rows.SetInt(id, eds_LabelSpace_FlatFirst, space.flatFirst);
  rows.SetInt(id, eds_LabelSpace_Count, space.labels->Size());
  if (space.source >= 0) {
    // Its source was opened, and so saved, before it.
    const int64_t source = At(space.source).record;
    utl_ASSERT(source != 0 && source < id);
    rows.SetReference(id, eds_LabelSpace_Shares, {eds_RecordKind::LabelSpace, source});
  } else {
    rows.Unset(id, eds_LabelSpace_Shares);
    SaveLabels(space);
  }
  space.changed = false;
}

void KvoObjLabeler::Impl::SaveLabels(Space& space) {
  eds_RowTable& rows = Store().Rows(eds_RecordKind::LabelSpace);
  const eds_LabelMap& labels = *space.labels;
  if (labels.IsStrided()) {
    rows.SetInt(space.record, eds_LabelSpace_First, labels.First());
    rows.SetInt(space.record, eds_LabelSpace_Stride, labels.Stride());
    return;
  }
  const std::span<const int32_t> all = labels.Labels();
  const eds_ObjectID array = rows.Reference(space.record, eds_LabelSpace_Labels);
  if (array.IsNull()) {
    eds_ArrayWriter writer(&Store(), eds_ValueType::Int32, 1);
    writer.Append(all);
    const eds_ArrayID written = writer.Finish();
    rows.SetReference(space.record, eds_LabelSpace_Labels, {eds_RecordKind::Array, written.id});
    rows.Unset(space.record, eds_LabelSpace_First);
    rows.Unset(space.record, eds_LabelSpace_Stride);
  } else {
    // Labels are only ever appended.
    eds_updateArray(eds_ArrayID{&Store(), array.id}, space.saved,
                    std::as_bytes(all.subspan(static_cast<size_t>(space.saved))));
  }
  space.saved = labels.Size();
}

// ---- occurrences

int KvoObjLabeler::FindOccurrence(const KvoSimPosition& owner) const {
  auto found = m_impl->byOwner.find(owner.Object().Packed());
  return found != m_impl->byOwner.end() ? found->second : -1;
}

int KvoObjLabeler::OpenOccurrence(const KvoSimPosition& owner) {
  return m_impl->Open(owner);
}

int KvoObjLabeler::OpenSharedOccurrence(const KvoSimPosition& owner, int source) {
  utl_ASSERT(FindOccurrence(owner) < 0);
  const int occurrence = m_impl->Open(owner);
  Space& space = m_impl->At(occurrence);
  const Space& shared = m_impl->At(source);
  space.source = shared.source >= 0 ? shared.source : source;
  space.labels = shared.labels;
  return occurrence;
}

int KvoObjLabeler::OccurrenceCount() const {
  return static_cast<int>(m_impl->spaces.size());
}

std::vector<KvoSimPosition> KvoObjLabeler::Occurrences() const {
  std::vector<KvoSimPosition> owners;
  for (const Space& space : m_impl->spaces) owners.push_back(space.owner);
  return owners;
}

int64_t KvoObjLabeler::Size(int occurrence) const {
  return Labels(occurrence).Size();
}

const eds_LabelMap& KvoObjLabeler::Labels(int occurrence) const {
  return *m_impl->At(occurrence).labels;
}

void KvoObjLabeler::Reserve(int occurrence, int64_t labels) {
  if (m_impl->At(occurrence).source < 0) m_impl->Own(occurrence).Reserve(labels);
}

// ---- labels and ordinals

int64_t KvoObjLabeler::AddInstanceLabels(int occurrence, std::span<const int32_t> labels,
                                         std::span<int32_t> ordinals) {
  if (m_impl->At(occurrence).source >= 0) {
    // Nothing new leaves the sharing as it is.
    if (ConvertInstanceLabels(occurrence, labels, ordinals) == 0) return 0;
  }
  return m_impl->Own(occurrence).Add(labels, ordinals);
}

bool KvoObjLabeler::HasInstanceLabel(int occurrence, int32_t label) const {
  return Labels(occurrence).Ordinal(label) >= 0;
}

int32_t KvoObjLabeler::ConvertInstanceLabel(int occurrence, int32_t label) const {
  return Labels(occurrence).Ordinal(label);
}

int64_t KvoObjLabeler::ConvertInstanceLabels(int occurrence, std::span<const int32_t> labels,
                                             std::span<int32_t> ordinals) const {
  return Labels(occurrence).Ordinals(labels, ordinals);
}

int32_t KvoObjLabeler::GetInstanceLabel(int occurrence, int64_t ordinal) const {
  const eds_LabelMap& labels = Labels(occurrence);
  utl_ASSERT(ordinal >= 0 && ordinal < labels.Size());
  return labels.Label(ordinal);
}

void KvoObjLabeler::GetInstanceLabelsAndOrdinals(int occurrence, std::vector<int32_t>& labels,
                                                 std::vector<int32_t>& ordinals) const {
  const eds_LabelMap& map = Labels(occurrence);
  const auto size = static_cast<size_t>(map.Size());
  std::vector<int32_t> byOrdinal(size);
  map.CopyLabels(0, byOrdinal);
  ordinals.resize(size);
  std::iota(ordinals.begin(), ordinals.end(), 0);
  if (!std::is_sorted(byOrdinal.begin(), byOrdinal.end())) {
    std::sort(ordinals.begin(), ordinals.end(), [&](int32_t a, int32_t b) {
      return byOrdinal[static_cast<size_t>(a)] < byOrdinal[static_cast<size_t>(b)];
    });
  }
  labels.resize(size);
  for (size_t i = 0; i < size; ++i) labels[i] = byOrdinal[static_cast<size_t>(ordinals[i])];
}

std::vector<int32_t> KvoObjLabeler::GetInstanceSetLabels(int occurrence,
                                                         const eds_MemberSet& ordinals) const {
  std::vector<int32_t> labels(static_cast<size_t>(ordinals.Size()));
  for (int64_t i = 0; i < ordinals.Size(); ++i)
    labels[static_cast<size_t>(i)] = GetInstanceLabel(occurrence, ordinals[i]);
  return labels;
}

// ---- the flat mesh

int64_t KvoObjLabeler::FlatFirst(int occurrence) const {
  return m_impl->At(occurrence).flatFirst;
}

void KvoObjLabeler::SetFlatFirst(int occurrence, int64_t first) {
  Space& space = m_impl->At(occurrence);
  space.flatFirst = first;
  space.changed = true;
  m_impl->flatSorted = false;
}

void KvoObjLabeler::Impl::SortFlat() const {
  byFlat.clear();
  for (size_t i = 0; i < spaces.size(); ++i)
    if (spaces[i].flatFirst >= 0) byFlat.push_back(static_cast<int>(i));
  std::stable_sort(byFlat.begin(), byFlat.end(), [&](int a, int b) {
    return spaces[static_cast<size_t>(a)].flatFirst < spaces[static_cast<size_t>(b)].flatFirst;
  });
  flatSorted = true;
}

int KvoObjLabeler::OccurrenceOfFlat(int64_t flat, int64_t& ordinal) const {
  if (!m_impl->flatSorted) m_impl->SortFlat();
  const std::vector<int>& byFlat = m_impl->byFlat;
  auto after = std::upper_bound(byFlat.begin(), byFlat.end(), flat, [&](int64_t value, int space) {
    return value < m_impl->At(space).flatFirst;
  });
  // An empty space may begin where the next one does.
  while (after != byFlat.begin()) {
    const Space& space = m_impl->At(*--after);
    ordinal = flat - space.flatFirst;
    if (ordinal < space.labels->Size()) return *after;
    if (space.labels->Size() > 0) return -1;
  }
  return -1;
}

void KvoObjLabeler::FillFlatMeshOrdinalArray(int occurrence, std::span<int32_t> flat) const {
  const Space& space = m_impl->At(occurrence);
  utl_ASSERT(space.flatFirst >= 0);
  utl_ASSERT(static_cast<int64_t>(flat.size()) == space.labels->Size());
  std::iota(flat.begin(), flat.end(), static_cast<int32_t>(space.flatFirst));
}
