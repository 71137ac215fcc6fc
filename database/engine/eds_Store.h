#pragma once

#include "base/utl_FileUnderWay.h"
#include "database/eds_Array.h"
#include "database/eds_MemberSet.h"
#include "database/engine/eds_ChunkStore.h"
#include "database/engine/eds_Format.h"
#include "database/engine/eds_LinkIndex.h"
#include "database/engine/eds_RowTable.h"
#include "database/engine/eds_StoredSchema.h"
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <unordered_map>

// One open model: its records in memory, what of them has changed, and the file beneath. Everything
// the Kvo handles do is done here. The records of a model without a file are nowhere else: the
// engine has its chunks alone.
class eds_ModelPlace;

class eds_Store {
public:
  eds_Store();
  ~eds_Store();
  eds_Store(const eds_Store&) = delete;
  eds_Store& operator=(const eds_Store&) = delete;

  // ---- the file
  void Create(const std::filesystem::path& file, eds_ModelSize size);
  void CreateReplacing(const std::filesystem::path& file, eds_ModelSize size);
  void CreateInMemory();
  void Open(const std::filesystem::path& file, bool readOnly);
  void Finish();
  void Close();
  void GiveUp(); // Close, and nothing is left of a file that Create made and Finish did not end
  bool IsClosed() const { return !m_engine.IsOpen(); }
  bool IsReadOnly() const { return m_engine.Mode() == eds_OpenMode::ReadOnly; }
  const std::filesystem::path& Path() const { return m_path; }
  eds_Engine& Engine() { return m_engine; }
  eds_ChunkStore& Chunks() { return m_chunks; }

  void SetMeta(const cow_String& key, const cow_String& value);
  cow_String Meta(const cow_String& key) const;
  const std::map<cow_String, cow_String>& AllMeta() const { return m_meta; }

  // ---- transactions
  void Begin() { ++m_depth; }
  void Commit();
  void Abandon();
  bool InTransaction() const { return m_depth > 0; }
  void Save(); // what is committed becomes physical

  // ---- objects
  eds_RowTable& Rows(eds_RecordKind kind) {
    const auto number = static_cast<size_t>(kind);
    if (number < m_byKind.size()) [[likely]] {
      eds_RowTable* const table = m_byKind[number];
      if (table != nullptr && table->IsLoaded()) return *table;
    }
    return Load(kind);
  }
  // Those of which the model has, or had, a record, and maybe more; by number.
  std::vector<eds_RecordKind> Kinds();
  // The table of an object; asserts that the object exists.
  eds_RowTable& RowsOf(eds_ObjectID object);
  static bool IsKind(uint16_t kind) {
    return eds_schemaRecord(static_cast<eds_RecordKind>(kind)) != nullptr;
  }
  bool Exists(eds_ObjectID object);
  eds_LinkIndex& Links();
  void RemoveObject(eds_ObjectID object);

  // ---- collections and component sets
  int64_t Collection(eds_CollectionKind kind, bool make); // the standard one, 0 when none
  int64_t Space(int64_t collection);
  int64_t StoreCSet(int64_t collection, const eds_MemberSet& members);
  int64_t StoreWholeCSet(int64_t collection);
  int64_t KeepTempCSet(int64_t collection, std::shared_ptr<const eds_MemberSet> members);
  std::shared_ptr<const eds_MemberSet> CSet(int64_t number);
  int64_t CSetCollection(int64_t number);
  int64_t CSetSize(int64_t number); // of a stored one, as its record says

  // ---- arrays
  // To be called before a chunk is written or removed.
  void BeforeChunk();
  void KeepTempDistribution(int64_t id) { m_tempDistributions.push_back(id); }

private:
  struct TempCSet {
    int64_t collection;
    std::shared_ptr<const eds_MemberSet> members;
  };

  eds_RowTable& Load(eds_RecordKind kind);
  const eds_StoredSchema& Schema();
  void ForgetAll();
  void UndoAll();
  void StartEmpty();
  void LoadMeta();
  void Settle();
  void WriteWaiting();
  void Flush();
  void WriteMeta();
  bool IsInMemory() const { return m_engine.Mode() == eds_OpenMode::Memory; }
  void LayDown(const std::filesystem::path& file, eds_ModelSize size);
  void HasItsName(); // its final one
  void IsFreshNoMore();
  void Recover(const std::filesystem::path& file);
  void RecoverIfPossible();
  void RequireOurs();
  void RemoveTemporary() noexcept;
  void RemoveTempDistributions();
  void RemoveTempDistributionRecords();
  void DropJournal();
  void WriteOut();
  void SyncClosed(const std::filesystem::path& file);
  void Reopen(const std::filesystem::path& file);
  std::shared_ptr<const eds_MemberSet> DecodeCSet(int64_t number);
  [[noreturn]] void Damaged(const cow_String& what) const;

  eds_Engine m_engine;
  eds_ChunkStore m_chunks;
  std::vector<eds_RowTable::Dirty> m_dirty; // of the open transaction
  size_t m_waiting = 0;                     // rows that are committed and not written yet
  std::deque<eds_RowTable> m_tables;
  std::vector<eds_RowTable*> m_byKind;
  eds_LinkIndex m_links;
  std::unordered_map<int64_t, std::weak_ptr<const eds_MemberSet>> m_csets;
  std::vector<TempCSet> m_tempCSets;
  std::vector<int64_t> m_tempDistributions;
  size_t m_lastingTempDistributions = 0; // those of what was committed
  eds_StoredSchema m_schema;
  bool m_startedEmpty = false; // what is not in memory is nowhere
  std::map<cow_String, cow_String> m_meta;
  std::optional<std::map<cow_String, cow_String>> m_metaBefore; // the open transaction
  bool m_metaChanged = false;
  bool m_metaWasChanged = false; // before the open transaction

  std::filesystem::path m_path;      // the name the user knows
  std::filesystem::path m_temporary; // while the file has another one
  std::filesystem::path m_temporaryJournal;
  std::optional<utl_FileUnderWay> m_underWay;
  std::optional<utl_FileUnderWay> m_journalUnderWay;
  // Of a file that has its final name from the begin, until it is finished.
  std::filesystem::path m_freshJournal;
  std::optional<utl_FileUnderWay> m_freshJournalUnderWay;
  std::optional<utl_FileUnderWay> m_freshUnderWay; // goes first: without its journal it is damaged
  std::unique_ptr<eds_ModelPlace> m_place;         // that the temporary file will take
  int m_depth = 0;
  bool m_wroteChunks = false; // in the open transaction
};
