#pragma once

#include "database/KvoSimContext.h"
#include "database/KvoSimTransaction.h"
#include <filesystem>
#include <memory>

class KvoObjModel;
class KvoObjMesh;
class KvoSrvFsmFTable;

enum class KvoAccess { ReadOnly, ReadWrite };
// What is expected of a new model. Any model may be made as either: a small one is the smaller file
// for it, a large one the faster.
enum class KvoSize { Small, Large };

// The handle of one open model; copies share it, and the last one gone closes it. Closing without
// Finish leaves what was committed, marked as unfinished.
class KvoObjDocument {
public:
  KvoObjDocument() = default; // none
  // A new file. Written in place: a process that dies leaves a file that opens and holds whole
  // transactions in order. An existing path is refused (eds_FileAccessException).
  static KvoObjDocument Create(const std::filesystem::path& file, KvoSize size = KvoSize::Large);
  // The same under a temporary name beside; Finish renames it over `file`, which stays as it is
  // until then. Closing without Finish removes the temporary file.
  static KvoObjDocument CreateReplacing(const std::filesystem::path& file,
                                        KvoSize size = KvoSize::Large);
  // An existing file. A file that is not ours, newer, truncated or damaged is refused with one of
  // the types of eds_Exception.h. ReadWrite keeps it safe against power loss too.
  static KvoObjDocument Open(const std::filesystem::path& file, KvoAccess access);
  static KvoObjDocument InMemory();

  bool IsNull() const { return m_store == nullptr; }
  bool IsClosed() const;
  bool IsReadOnly() const;
  // Writes out what is pending, sets the finished flag, syncs file and folder. The document stays
  // open for reading; a later change clears the flag again.
  void Finish();
  void Close(); // for all copies
  // The same, but of a file that Create made and that is not finished nothing is left.
  void GiveUp();

  // Facts kept beside the model: "writer", "source_deck", "source_digest", ... Empty when absent.
  void SetMeta(const cow_String& key, const cow_String& value);
  cow_String GetMeta(const cow_String& key) const;
  bool IsFinished() const;
  const std::filesystem::path& Path() const;

  KvoSimContextID ContextID() const { return {m_store.get()}; }
  KvoSimContext Context() const { return KvoSimContext(ContextID()); }
  KvoObjModel GetModel() const;
  KvoObjMesh GetMesh() const;   // the model's, null when it has none
  KvoSimPosition Focus() const; // the model's position
  KvoSimDataRecord GetRecord(eds_TypeID kind, int64_t id) const;
  bool HasRecord(eds_TypeID kind, int64_t id) const;

  KvoSimPosition CreateDataRecord(eds_TypeID kind) const;
  KvoSimPosition CreateTypedCollection(eds_TypeID kind, const cow_String& name = {}) const;
  KvoSimDSet CreateTypedDSet(eds_TypeID type, const KvoSimGrid& grid) const;
  KvoSimDistribution CreateTypedDistribution(eds_TypeID type, const KvoSimGrid& grid,
                                             const KvoSimRangeType& range) const;
  KvoSimDistribution CreateDistribution(const KvoSimGrid& grid, const KvoSimRangeType& range) const;
  // Like CreateDistribution, removed from the model when the document closes.
  KvoSimDistribution CreateTempDistribution(const KvoSimGrid& grid, const KvoSimRangeType& range);
  KvoSrvFsmFTable CreateTable(eds_TypeID kind) const;

  // The standard collections: one of each kind per document, made on first use. A document opened
  // for reading gives a null one where none was made.
  KvoSimCollection GetStandardCollection(eds_CollectionKind kind) const;
  KvoSimCollection GetPointCollection() const;
  KvoSimCollection GetComponentCollection() const;
  KvoSimCollection GetMaterialCollection() const;
  KvoSimCollection GetTermCollection() const;
  KvoSimCollection GetElementSpecCollection() const;
  KvoSimCollection GetFaceCollection() const;
  KvoSimCollection GetEdgeCollection() const;
  KvoSimCollection GetDofTypeCollection() const;
  KvoSimCollection GetQuadratureCollection() const;
  KvoSimCollection GetSectionPointCollection() const;
  KvoSimCollection GetSectionLayerCollection() const;
  KvoSimCollection GetLayerPointCollection() const;
  KvoSimCollection GetTemperaturePointCollection() const;
  KvoSimCollection GetOrientationAxisCollection() const;
  KvoSimCollection GetPropertyTableCollection() const;
  KvoSimCollection GetPropertyTableRowCollection() const;
  KvoSimCollection GetPropertyFieldVariableTypeCollection() const;
  KvoSimCollection GetUserSubroutineCollection() const;
  KvoSimCollection GetConnectionTypeCollection() const;
  KvoSimCollection GetConnectorBehaviorCollection() const;
  KvoSimCollection GetDistributingCouplingMethodCollection() const;
  KvoSimCollection GetDistributingWeightingMethodCollection() const;

  KvoSimPosition GetSymbol(const cow_String& name) const; // null when there is none
  int32_t GetCMemberIndex(const KvoSimCollection& collection, const KvoSimPosition& member) const;
  // The members of a collection of records that have these record numbers; unknown ones are -1.
  std::vector<int32_t> GetCMembersFromDynamicIDs(const KvoSimCollection& collection,
                                                 const std::vector<int64_t>& ids) const;

  friend bool operator==(const KvoObjDocument& a, const KvoObjDocument& b) {
    return a.m_store == b.m_store;
  }

private:
  explicit KvoObjDocument(std::shared_ptr<eds_Store> store) : m_store(std::move(store)) {}
  std::shared_ptr<eds_Store> m_store;
};
