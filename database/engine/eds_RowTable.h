#pragma once

#include "database/engine/eds_Engine.h"
#include "database/schema/eds_Schema.h"
#include <deque>
#include <span>
#include <vector>

// The records of one kind in memory: a flat array of words, one row after the other. Row n has id
// n + 1; ids are given in order of creation and never given twice. A word is the value itself;
// texts are words into a pool. Rows changed since the last commit are listed with the store; of
// those that were there before, the table keeps what they were, so that giving a transaction up
// costs what the transaction changed.
class eds_RowTable {
public:
  // Names a row that has to be written; filled by the tables, emptied by the store.
  struct Dirty {
    eds_RowTable* table;
    int64_t id;
  };

  eds_RowTable(const eds_RecordInfo& info, eds_Engine& engine, std::vector<Dirty>& dirty);

  const eds_RecordInfo& Info() const { return m_info; }
  eds_ObjectID Object(int64_t id) const { return {m_info.kind, id}; }

  // ---- rows
  int64_t Create();
  void Remove(int64_t id);
  bool Has(int64_t id) const {
    return id >= 1 && id <= LastID() && (m_flags[Row(id)] & removed) == 0;
  }
  int64_t LastID() const { return static_cast<int64_t>(m_flags.size()); }
  int64_t Count() const { return LastID() - m_removedCount; }

  // ---- fields
  bool IsNull(int64_t id, int field) const { return (Words(id)[0] >> field & 1) == 0; }
  int64_t Int(int64_t id, int field) const; // Int, Bool, Symbol
  double Real(int64_t id, int field) const;
  std::string_view Text(int64_t id, int field) const;  // Text, Bytes
  eds_ObjectID Reference(int64_t id, int field) const; // Ref, AnyRef
  void SetInt(int64_t id, int field, int64_t value);
  void SetReal(int64_t id, int field, double value);
  void SetText(int64_t id, int field, std::string_view value);
  void SetReference(int64_t id, int field, eds_ObjectID target);
  void Unset(int64_t id, int field);
  const eds_FieldInfo& Field(int field) const;

  // ---- the file
  void Load();             // all rows; replaces what is in memory
  void Settle(int64_t id); // one dirty row is committed
  void Wait(int64_t id);   // and will be written
  bool Waits() const { return !m_waiting.empty(); }
  void MakeTable(); // and its columns, before what waits is written
  void Write();     // what waits, as it is now
  void Undo();      // back to what is committed
  bool IsLoaded() const { return m_loaded; }
  void SetEmpty(); // a new file: nothing to load
  void Forget();   // what is in memory; it is loaded again when asked for
  // The columns on disk; none: there is no table yet. An older file may lack some.
  void SetStoredColumns(std::vector<cow_String> columns);

private:
  enum Flag : uint8_t { dirty = 1, unwritten = 2, removed = 4 };

  // A committed row before the open transaction changed it.
  struct Before {
    int64_t id;
    uint8_t flags;
    std::vector<uint64_t> words;
    std::vector<std::string> texts; // of its text fields that are set, in their order
  };
  struct Extent {
    size_t rows = 0;
    size_t texts = 0;
    int64_t removed = 0;
  };

  static size_t Row(int64_t id) { return static_cast<size_t>(id - 1); }
  const uint64_t* Words(int64_t id) const { return m_words.data() + Row(id) * m_stride; }
  uint64_t& Word(int64_t id, int field); // and marks the row as changed
  void MarkDirty(int64_t id);
  void KeepBefore(int64_t id);
  void SettleAll();
  template <class Use> void ForEachText(int64_t id, Use use);
  std::string& PoolText(int64_t id, int field);
  size_t AppendRow();

  cow_String InsertText(int rows) const;
  void Insert(eds_Statement*& statement, std::span<const int64_t> ids);
  void Delete(int64_t id);
  int64_t MostMissing();
  void LoadRows();
  int64_t LoadRow(eds_Statement& row, const std::vector<int>& columnOf);
  void LoadField(eds_Statement& row, int column, int64_t id, int field);
  void BindField(eds_Statement& statement, int& parameter, int64_t id, int field);
  [[noreturn]] void Damaged(const cow_String& what) const;

  const eds_RecordInfo& m_info;
  eds_Engine& m_engine;
  std::vector<Dirty>& m_dirty;
  size_t m_stride; // words per row: the present bits, then one per field
  std::vector<uint64_t> m_words;
  std::vector<uint8_t> m_flags;
  std::deque<std::string> m_texts;
  int64_t m_removedCount = 0;
  bool m_loaded = false;
  std::vector<Before> m_before;
  std::vector<int64_t> m_waiting;
  Extent m_settled;
  std::vector<cow_String> m_stored;
  bool m_hasTable = false; // with all our columns
  eds_Statement* m_insert = nullptr;
  eds_Statement* m_insertMany = nullptr;
  eds_Statement* m_delete = nullptr;
};
