#include "database/engine/eds_Store.h"
#include "base/utl_Assert.h"
#include "base/utl_File.h"
#include "base/utl_OutputFile.h"
#include "database/eds_Exception.h"
#include "database/eds_ModelPlace.h"
#include "database/engine/eds_Description.h"
#include "database/engine/eds_Format.h"
#include "database/engine/eds_Journal.h"
#include <algorithm>

namespace {
constexpr const char* finishedKey = "finished";
constexpr const char* version = "1";

// Whoever looks at a model that is being made may come between two of its openings: that must not
// end the making.
constexpr std::chrono::seconds readersPatience{10};
} // namespace

eds_Store::eds_Store() : m_chunks(m_engine) {}

eds_Store::~eds_Store() {
  try {
    Close();
  } catch (const std::exception&) {
    // The last handle is gone: nobody is left to tell. What was physical stays.
    m_engine.Close();
    if (m_temporary.empty()) RecoverIfPossible();
  }
  RemoveTemporary();
}

void eds_Store::Damaged(const cow_String& what) const {
  throw eds_DamagedFileException("\"" + utl_pathText(m_path) + "\" is damaged: " + what);
}

// ---- the file

void eds_Store::StartEmpty() {
  m_startedEmpty = true;
  m_meta = {{"format", std::to_string(eds_formatVersion)},
            {"writer_version", version},
            {finishedKey, "0"}};
  m_metaChanged = true;
}

// The empty model is made under the temporary name, so that a file with the user's name is a whole
// one from its first instant.
void eds_Store::LayDown(const std::filesystem::path& file, eds_ModelSize size) {
  m_temporary = utl_temporaryBeside(file);
  m_temporaryJournal = eds_journalOf(m_temporary);
  m_underWay.emplace(m_temporary);
  m_journalUnderWay.emplace(m_temporaryJournal);
  m_path = file;
  // By ourselves: of a folder that may not be written the engine says that it does not exist. Nor
  // does a file that has this name by now become ours.
  try {
    utl_OutputFile(m_temporary, utl_OutputFile::Mode::CreateNew).Close();
  } catch (const utl_FileException& failure) {
    RemoveTemporary(); // an empty one that could not be closed
    throw eds_FileAccessException("cannot create \"" + utl_pathText(file) +
                                  "\": " + failure.Reason());
  }
  m_engine.SetShownFile(file);
  m_engine.Open(m_temporary, eds_OpenMode::New);
  m_engine.Execute("PRAGMA journal_mode = MEMORY");
  m_engine.Execute("PRAGMA synchronous = OFF");
  eds_prepareFile(m_engine, size);
  StartEmpty();
  m_engine.BeginWrite();
  eds_layDown(m_engine);
  WriteMeta();
  m_engine.CommitPhysical();
}

void eds_Store::HasItsName() {
  m_underWay.reset();
  m_journalUnderWay.reset();
  m_temporary.clear();
}

void eds_Store::Create(const std::filesystem::path& file, eds_ModelSize size) {
  if (utl_exists(file))
    throw eds_FileAccessException("\"" + utl_pathText(file) + "\" exists already");
  const eds_ModelPlace place(file); // no journal of an older model is taken for the new one's
  LayDown(file, size);
  m_engine.Close();
  try {
    utl_renameFile(m_temporary, file, utl_IfExists::Refuse);
  } catch (const utl_FileException& failure) {
    utl_removeFile(m_temporary);
    throw eds_FileAccessException(failure.what());
  }
  HasItsName();
  m_engine.SetPatience(readersPatience);
  m_engine.Open(file, eds_OpenMode::New);
  m_engine.ApplyMode();
  m_engine.Execute("BEGIN EXCLUSIVE"); // kept from now on: nobody else replaces the file
  m_engine.Execute("COMMIT");
  RequireOurs();
  m_freshJournal = eds_journalOf(file);
  m_freshJournalUnderWay.emplace(m_freshJournal);
  m_freshUnderWay.emplace(m_path);
}

// Between two openings of a model that is being made, another process may put its own there.
void eds_Store::RequireOurs() {
  const bool finished =
      m_engine.QueryInt("SELECT count(*) FROM meta WHERE key = 'finished' AND value = '1'") != 0;
  if (finished || m_engine.HasMoved())
    throw eds_InUseException("\"" + utl_pathText(m_path) +
                             "\" was replaced by another process meanwhile");
}

void eds_Store::CreateReplacing(const std::filesystem::path& file, eds_ModelSize size) {
  if (utl_isDirectory(file))
    throw eds_FileAccessException("cannot write \"" + utl_pathText(file) + "\": a folder");
  m_place = std::make_unique<eds_ModelPlace>(file); // ours already: nobody works for nothing
  LayDown(file, size);
  m_engine.ApplyMode();
}

void eds_Store::CreateInMemory() {
  m_engine.Open({}, eds_OpenMode::Memory);
  eds_prepareFile(m_engine, eds_ModelSize::Large);
  m_engine.ApplyMode();
  m_engine.BeginWrite();
  eds_layDownChunks(m_engine);
  m_engine.CommitPhysical();
  StartEmpty();
}

// A file whose writer died is put back to its last whole transaction before anybody reads it.
void eds_Store::Recover(const std::filesystem::path& file) {
  eds_requireOwnJournals(file);
  if (!utl_exists(eds_journalOf(file))) return;
  eds_Engine engine;
  try {
    engine.OpenRecovered(file);
  } catch (const eds_FileAccessException&) {
    // Not permitted to write: the journal may be an idle one, and the file readable as it is.
  }
}

// After a failure, so that no journal lies beside the file; who opens it next does it otherwise.
void eds_Store::RecoverIfPossible() {
  try {
    Recover(m_path);
  } catch (const std::exception&) {
  }
}

void eds_Store::Open(const std::filesystem::path& file, bool readOnly) {
  eds_checkHeader(file);
  m_path = file;
  Recover(file);
  m_engine.Open(file, readOnly ? eds_OpenMode::ReadOnly : eds_OpenMode::Durable);
  eds_checkLength(m_engine);
  m_engine.ApplyMode();
  m_schema.Read(m_engine); // before anything else of it is read
  LoadMeta();
  if (Meta(finishedKey) == "1") m_schema.Require(eds_schemaTables);
}

void eds_Store::DropJournal() {
  if (m_engine.Mode() == eds_OpenMode::New) m_engine.Execute("PRAGMA journal_mode = DELETE");
}

void eds_Store::Finish() {
  utl_ASSERT(!IsClosed() && !IsReadOnly() && m_depth == 0);
  try {
    WriteOut();
  } catch (const utl_FileException& failure) {
    throw eds_DiskException(failure.what());
  }
}

void eds_Store::WriteOut() {
  RemoveTempDistributions();
  Flush();
  if (IsInMemory()) return SetMeta(finishedKey, "1");
  m_engine.BeginWrite();
  eds_describe(m_engine);
  // First all there is reaches the disk, then the flag that says so, then the name.
  const std::filesystem::path file = m_engine.File();
  m_engine.CommitPhysical();
  const bool inPlace = m_temporary.empty() && Meta(finishedKey) == "0";
  if (inPlace) RequireOurs();
  SyncClosed(file);
  m_engine.BeginWrite();
  if (inPlace) RequireOurs();
  m_meta[finishedKey] = "1";
  WriteMeta();
  m_engine.CommitPhysical();
  SyncClosed(file);
  IsFreshNoMore();
  if (!m_temporary.empty()) {
    m_engine.Close();
    utl_removeFile(m_temporaryJournal); // all is committed: it can only be one that would not go
    m_place->GiveTo(m_temporary, utl_IfExists::Replace);
    m_place.reset();
    HasItsName();
    Reopen(m_path);
  }
  utl_syncFolderOf(m_path);
}

// The file is closed meanwhile: a second handle on an open one would take the engine's locks away.
void eds_Store::SyncClosed(const std::filesystem::path& file) {
  DropJournal();
  m_engine.Close();
  utl_syncFile(file);
  Reopen(file);
}

void eds_Store::Reopen(const std::filesystem::path& file) {
  m_engine.SetPatience(readersPatience);
  m_engine.Open(file, eds_OpenMode::Durable);
  m_engine.ApplyMode();
}

void eds_Store::IsFreshNoMore() {
  m_freshJournalUnderWay.reset();
  m_freshUnderWay.reset();
}

// The names go while the file is held, for afterwards another process may give them to its own.
void eds_Store::GiveUp() {
  if (IsClosed() || !m_freshUnderWay || m_engine.HasMoved()) return Close();
  const bool gone = utl_removeFile(m_path) && utl_removeFile(m_freshJournal);
  m_depth = 0;
  m_engine.Close();
  ForgetAll();
  if (!gone) { // some systems keep the name of an open file
    utl_removeFile(m_path);
    utl_removeFile(m_freshJournal);
  }
  IsFreshNoMore();
}

void eds_Store::Close() {
  IsFreshNoMore();
  if (IsClosed()) return;
  const bool isOpen = m_depth > 0;
  if (isOpen) Abandon();
  if (!IsReadOnly() && !m_engine.HasFailed() && m_temporary.empty()) {
    if (!isOpen) RemoveTempDistributions();
    Flush(); // what was committed before
    m_engine.CommitPhysical();
    DropJournal();
  }
  const bool failed = m_engine.HasFailed();
  m_engine.Close();
  ForgetAll();
  if (m_temporary.empty()) {
    if (failed) RecoverIfPossible();
    return;
  }
  RemoveTemporary();
}

// Needs no memory: there may be none left.
void eds_Store::RemoveTemporary() noexcept {
  if (m_temporary.empty()) return;
  utl_removeFile(m_temporaryJournal);
  utl_removeFile(m_temporary);
}

void eds_Store::LoadMeta() {
  m_meta.clear();
  eds_Statement rows(m_engine, "SELECT key, value FROM meta");
  while (rows.Step()) m_meta.emplace(rows.Text(0), rows.Text(1));
  m_metaChanged = false;
}

void eds_Store::SetMeta(const cow_String& key, const cow_String& value) {
  if (m_depth > 0 && !m_metaBefore) {
    m_metaBefore = m_meta;
    m_metaWasChanged = m_metaChanged;
  }
  m_meta[key] = value;
  m_metaChanged = true;
}

cow_String eds_Store::Meta(const cow_String& key) const {
  auto found = m_meta.find(key);
  return found != m_meta.end() ? found->second : cow_String();
}

void eds_Store::WriteMeta() {
  eds_Statement insert(m_engine, "INSERT OR REPLACE INTO meta VALUES (?, ?)");
  for (const auto& [key, value] : m_meta) {
    insert.BindText(1, key);
    insert.BindText(2, value);
    insert.Run();
  }
  m_metaChanged = false;
}

// ---- transactions

// What a transaction changed is committed; its rows are written later, with those of others.
void eds_Store::Settle() {
  if (m_dirty.empty() && !m_metaChanged && !m_wroteChunks) return;
  std::string& finished = m_meta[finishedKey];
  if (finished == "1") {
    finished = "0";
    m_metaChanged = true;
  }
  if (IsInMemory()) {
    m_engine.RequireWorking();
  } else {
    m_engine.BeginWrite();
    for (const eds_RowTable::Dirty& row : m_dirty) row.table->Wait(row.id);
    m_waiting += m_dirty.size();
  }
  for (const eds_RowTable::Dirty& row : m_dirty) row.table->Settle(row.id);
  m_dirty.clear();
  m_metaBefore.reset();
  m_wroteChunks = false;
}

// Table by table, so that what a file looks like depends on its content alone.
void eds_Store::WriteWaiting() {
  if (IsInMemory() || (m_waiting == 0 && !m_metaChanged)) return;
  m_engine.BeginWrite();
  // Tables before rows: each new one has the engine prepare its statements again.
  for (eds_RowTable& table : m_tables)
    if (table.Waits()) table.MakeTable();
  for (eds_RowTable& table : m_tables)
    if (table.Waits()) table.Write();
  m_waiting = 0;
  if (m_metaChanged) WriteMeta();
}

void eds_Store::Flush() {
  Settle();
  WriteWaiting();
}

void eds_Store::Commit() {
  constexpr size_t manyRows = 2048;
  utl_ASSERT(m_depth > 0);
  if (--m_depth > 0) return;
  try {
    Settle();
    // Without a file, what the engine has and what is in memory stay together.
    if (IsInMemory()) {
      m_engine.CommitPhysical();
    } else {
      const bool isTime = m_engine.GatherCommit();
      // By their number and not by the clock: a deck gives the same file again.
      if (m_waiting >= manyRows || !m_engine.Gathers()) WriteWaiting();
      if (isTime && m_waiting == 0) m_engine.CommitPhysical();
    }
    m_lastingTempDistributions = m_tempDistributions.size();
  } catch (...) {
    m_engine.MarkFailed();
    Abandon();
    throw;
  }
}

void eds_Store::Abandon() {
  m_depth = 0;
  // Their numbers are given again.
  m_tempDistributions.resize(std::min(m_tempDistributions.size(), m_lastingTempDistributions));
  // Records are written at the commit, so only chunks can have gone ahead.
  const bool failed = m_engine.HasFailed();
  const bool wroteChunks = m_wroteChunks;
  m_wroteChunks = false;
  if (failed)
    m_engine.RollbackPhysical();
  else if (wroteChunks)
    m_engine.BackToMark();
  // Of a file, the engine has taken back more than one transaction then.
  if (!failed || IsInMemory()) return UndoAll();
  ForgetAll();
  m_metaBefore.reset();
  if (m_engine.IsOpen()) LoadMeta();
}

void eds_Store::UndoAll() {
  m_dirty.clear();
  for (eds_RowTable& table : m_tables)
    if (table.IsLoaded()) table.Undo();
  m_links.Forget();
  m_csets.clear();
  if (m_metaBefore) {
    m_meta = std::move(*m_metaBefore);
    m_metaChanged = m_metaWasChanged;
  }
  m_metaBefore.reset();
}

void eds_Store::ForgetAll() {
  m_dirty.clear();
  m_waiting = 0;
  for (eds_RowTable& table : m_tables) table.Forget();
  m_links.Forget();
  m_csets.clear();
  m_schema.Forget();
  m_startedEmpty = false;
}

void eds_Store::Save() {
  utl_ASSERT(m_depth == 0);
  if (IsReadOnly()) return;
  Flush();
  m_engine.CommitPhysical();
}

void eds_Store::BeforeChunk() {
  utl_ASSERT(m_depth > 0);
  if (m_wroteChunks) return;
  m_engine.SetMark();
  m_wroteChunks = true;
}

// ---- objects

eds_RowTable& eds_Store::Load(eds_RecordKind kind) {
  utl_ASSERT(!IsClosed());
  const auto number = static_cast<size_t>(kind);
  const bool isNew = m_byKind.size() <= number || m_byKind[number] == nullptr;
  const eds_RecordInfo* const info = isNew ? eds_schemaRecord(kind) : nullptr;
  utl_ASSERT(!isNew || info != nullptr);
  if (m_byKind.size() <= number) m_byKind.resize(number + 1);
  eds_RowTable*& table = m_byKind[number];
  if (isNew) {
    table = &m_tables.emplace_back(*info, m_engine, m_dirty);
  }
  if (m_startedEmpty) {
    table->SetEmpty();
    return *table;
  }
  const std::vector<cow_String>* const columns = Schema().Columns(table->Info().table);
  table->SetStoredColumns(columns != nullptr ? *columns : std::vector<cow_String>());
  table->Load();
  return *table;
}

const eds_StoredSchema& eds_Store::Schema() {
  if (!m_schema.IsRead()) m_schema.Read(m_engine);
  return m_schema;
}

std::vector<eds_RecordKind> eds_Store::Kinds() {
  std::vector<eds_RecordKind> kinds;
  if (!m_startedEmpty) kinds = Schema().Kinds();
  for (const eds_RowTable& table : m_tables) kinds.push_back(table.Info().kind);
  std::ranges::sort(kinds);
  kinds.erase(std::unique(kinds.begin(), kinds.end()), kinds.end());
  return kinds;
}

eds_RowTable& eds_Store::RowsOf(eds_ObjectID object) {
  return Rows(object.RecordKind()); // which asserts that there is such a kind
}

bool eds_Store::Exists(eds_ObjectID object) {
  if (object.kind == eds_ObjectID::SymbolKind) {
    const auto vocabulary = static_cast<eds_Vocabulary>(object.id >> 16);
    const size_t count = eds_schemaSymbols(vocabulary).size();
    return object.id > 0 && static_cast<size_t>(object.id & 0xffff) < count;
  }
  return IsKind(object.kind) && Rows(object.RecordKind()).Has(object.id);
}

eds_LinkIndex& eds_Store::Links() {
  eds_RowTable& rows = Rows(eds_RecordKind::Link);
  if (!m_links.IsBuilt()) m_links.Build(rows);
  return m_links;
}

void eds_Store::RemoveObject(eds_ObjectID object) {
  eds_LinkIndex& links = Links();
  for (int64_t link : links.LinksFrom(object)) links.Remove(link);
  for (int64_t link : links.LinksTo(object)) links.Remove(link);
  if (object.RecordKind() == eds_RecordKind::Array) {
    BeforeChunk();
    m_chunks.Remove(object.id);
  }
  RowsOf(object).Remove(object.id);
}

void eds_Store::RemoveTempDistributions() {
  if (m_tempDistributions.empty()) return;
  Begin();
  try {
    RemoveTempDistributionRecords();
  } catch (...) {
    Abandon();
    throw;
  }
  m_tempDistributions.clear();
  Commit();
}

void eds_Store::RemoveTempDistributionRecords() {
  eds_RowTable& drawers = Rows(eds_RecordKind::Drawer);
  for (int64_t distribution : m_tempDistributions) {
    const eds_ObjectID object(eds_RecordKind::Distribution, distribution);
    if (!Exists(object)) continue;
    for (int64_t drawer = 1; drawer <= drawers.LastID(); ++drawer) {
      if (!drawers.Has(drawer) ||
          drawers.Reference(drawer, eds_Drawer_Distribution).id != distribution)
        continue;
      const eds_ObjectID array = drawers.Reference(drawer, eds_Drawer_Array);
      if (Exists(array)) RemoveObject(array);
      drawers.Remove(drawer);
    }
    RemoveObject(object);
  }
}

// ---- collections and component sets

int64_t eds_Store::Collection(eds_CollectionKind kind, bool make) {
  eds_RowTable& rows = Rows(eds_RecordKind::Collection);
  for (int64_t id = 1; id <= rows.LastID(); ++id) {
    if (rows.Has(id) && rows.Int(id, eds_Collection_Type) == static_cast<int64_t>(kind)) return id;
  }
  if (!make || IsReadOnly()) return 0;
  const int64_t id = rows.Create();
  rows.SetInt(id, eds_Collection_Type, static_cast<int64_t>(kind));
  return id;
}

int64_t eds_Store::Space(int64_t collection) {
  eds_RowTable& rows = Rows(eds_RecordKind::Collection);
  const auto kind = static_cast<eds_CollectionKind>(rows.Int(collection, eds_Collection_Type));
  const eds_CollectionInfo* info = eds_schemaCollection(kind);
  if (info == nullptr) Damaged("unknown collection type");
  if (info->source.fragment == eds_Fragment::Symbol) {
    const auto vocabulary = static_cast<eds_Vocabulary>(info->source.index);
    return static_cast<int64_t>(eds_schemaSymbols(vocabulary).size());
  }
  if (info->source.fragment == eds_Fragment::Record)
    return Rows(static_cast<eds_RecordKind>(info->source.index)).LastID();
  return rows.Int(collection, eds_Collection_Space);
}
