#include "inpS/properties/inpS_OrientationPlaces.h"
#include "database/KvoObjModel.h"
#include <algorithm>

namespace {

constexpr double kRadiansPerDegree = 3.141592653589793 / 180;

int64_t firstOf(const KvoMeshNodeBlock& block) {
  return block.flatFirst < 0 ? block.first : block.flatFirst;
}

bool turns(const inpS_System& system) {
  double matrix[4][4];
  system.AsArray(matrix);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j)
      if (matrix[i][j] != (i == j ? 1.0 : 0.0)) return true;
  return false;
}

} // namespace

// As the assembly places it: moved by its first line, then turned about the axis of its second.
inpS_OrientationPlaces::Place inpS_OrientationPlaces::PlaceOf(const KvoSimPosition& instance) {
  const KvoSimDataRecord record = instance.DataRecord();
  const auto at = [&](int field) { return record.GetDouble(field); };
  inpS_System translation;
  translation.SetTranslation(at(eds_Instance_TranslationX), at(eds_Instance_TranslationY),
                             at(eds_Instance_TranslationZ));
  Place place{instance, instance, {}, false};
  if (record.GetBool(eds_Instance_RotationGiven)) {
    double a[3], b[3];
    for (int i = 0; i < 3; ++i) {
      a[i] = at(eds_Instance_RotationAX + i);
      b[i] = at(eds_Instance_RotationBX + i);
    }
    place.system.SetAxisPointsAndAngle(a, b, at(eds_Instance_RotationAngle) * kRadiansPerDegree);
  }
  place.turns = turns(place.system);
  place.system.Concatenate(translation);
  return place;
}

const cow_List<inpS_OrientationPlaces::Place>&
inpS_OrientationPlaces::Of(const KvoSimPosition& owner) {
  const auto [known, isNew] = m_places.try_emplace(owner.Object().Packed());
  if (!isNew) return known->second;
  if (owner.IsA(eds_RecordKind::Instance)) {
    known->second.push_back(PlaceOf(owner));
  } else if (owner.IsA(eds_RecordKind::Part)) {
    for (const KvoSimPosition& instance : m_document.GetModel().Occurences())
      if (instance.DataRecord().GetReference(eds_Instance_Part) == owner)
        known->second.push_back(PlaceOf(instance));
  } else {
    known->second.push_back({OwnerOfLabels(owner), {}, {}, false});
  }
  return known->second;
}

KvoSimPosition inpS_OrientationPlaces::OwnerOfLabels(const KvoSimPosition& owner) const {
  if (!owner.IsA(eds_RecordKind::Model)) return owner;
  const KvoSimPosition assembly = m_document.GetModel().GetAssembly();
  return assembly.IsNull() ? owner : assembly;
}

const KvoMeshNodeBlock* inpS_OrientationPlaces::BlockOf(const KvoSimPosition& part,
                                                        int64_t ordinal) {
  if (m_blocks.empty()) {
    m_blocks[0];
    for (const KvoMeshNodeBlock& block : m_document.GetMesh().NodeBlocks())
      m_blocks[block.flatFirst < 0 ? block.owner.Object().Packed() : 0].push_back(block);
    for (auto& [owner, blocks] : m_blocks) std::ranges::sort(blocks, {}, firstOf);
  }
  const auto known = m_blocks.find(part.IsNull() ? 0 : part.Object().Packed());
  if (known == m_blocks.end()) return nullptr;
  const auto next = std::ranges::upper_bound(known->second, ordinal, {}, firstOf);
  if (next == known->second.begin()) return nullptr;
  const KvoMeshNodeBlock& block = *std::prev(next);
  return ordinal < firstOf(block) + block.count ? &block : nullptr;
}

bool inpS_OrientationPlaces::ReadCoordinatesForNodeLabel(const KvoSimPosition& owner,
                                                         const cow_String& instance,
                                                         long long label, double point[3]) {
  if (!instance.empty() && owner.IsA(eds_RecordKind::Part)) return false;
  const KvoSimPosition space =
      instance.empty() ? owner : m_document.GetModel().GetOccurence(instance);
  const int occurrence = space.IsNull() ? -1 : m_nodes.FindOccurrence(space);
  if (occurrence < 0 || label != static_cast<int>(label)) return false;
  int64_t ordinal = m_nodes.ConvertInstanceLabel(occurrence, static_cast<int>(label));
  if (ordinal < 0) return false;
  const bool isPart = space.IsA(eds_RecordKind::Part);
  if (!isPart) ordinal += std::max<int64_t>(0, m_nodes.FlatFirst(occurrence));
  const KvoMeshNodeBlock* block = BlockOf(isPart ? space : KvoSimPosition(), ordinal);
  if (!block) return false;
  if (!m_reader || m_array != block->coordinates.id) {
    m_reader.emplace(block->coordinates);
    m_array = block->coordinates.id;
  }
  m_reader->ReadPiece(ordinal - firstOf(*block), std::span<double>(point, 3));
  return true;
}
