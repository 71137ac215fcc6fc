#include "database/engine/eds_Engine.h"
#include "base/utl_Assert.h"
#include "base/utl_File.h"
#include "base/utl_Interruption.h"
#include "database/eds_Exception.h"
#include "database/engine/eds_EngineMemory.h"
#include "database/engine/eds_PageChecksums.h"
#include <algorithm>
#include <cstring>
#include <sqlite3.h>

namespace {

cow_String systemText(sqlite3* database) {
  int number = eds_takeWriteError();
  if (database != nullptr && sqlite3_system_errno(database) != 0)
    number = sqlite3_system_errno(database);
  return number != 0 ? cow_String(": ") + std::strerror(number) : cow_String();
}

// The engine quotes a damaged file's own text, whatever that holds.
cow_String oneLine(cow_String text) {
  for (char& c : text)
    if (static_cast<unsigned char>(c) < ' ') c = ' ';
  return text;
}

int openFlags(eds_OpenMode mode) {
  const int common = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
  switch (mode) {
  case eds_OpenMode::ReadOnly:
    return common | SQLITE_OPEN_READONLY;
  case eds_OpenMode::Durable:
    return common | SQLITE_OPEN_READWRITE;
  default:
    return common | SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  }
}

// The engine keeps no statistics of its own memory: every allocation would pay for them. Must be
// said before its first use in the process; a host that has used it already keeps its own choice.
void configureOnce() {
  [[maybe_unused]] static const bool once = [] {
    eds_giveEngineMemory();
    return sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0) == SQLITE_OK;
  }();
}

} // namespace

// Long enough to make the physical commit's cost vanish, short enough that nobody misses the last
// keywords of a process that died; the store makes none before many rows are there.
std::chrono::milliseconds eds_Engine::s_gatherTime{5};

eds_Engine::~eds_Engine() {
  Close();
}

void eds_Engine::Open(const std::filesystem::path& file, eds_OpenMode mode) {
  utl_ASSERT(m_database == nullptr);
  configureOnce();
  m_file = file;
  if (m_shown.empty()) m_shown = file;
  m_mode = mode;
  m_failed = false;
  const cow_String name = mode == eds_OpenMode::Memory ? ":memory:" : utl_pathText(file);
  const int code =
      sqlite3_open_v2(name.c_str(), &m_database, openFlags(mode), eds_checksummedFiles());
  if (code != SQLITE_OK) Fail(code);
  if (m_patience.count() > 0)
    sqlite3_busy_timeout(m_database, static_cast<int>(m_patience.count()));
  sqlite3_db_config(m_database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(m_database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(m_database, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  sqlite3_db_config(m_database, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
  sqlite3_db_config(m_database, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
  LimitWork();
  Execute("PRAGMA cell_size_check = ON");
  Execute("PRAGMA temp_store = MEMORY");
}

// A stranger's file may be built to keep the engine busy: a tree of pages that come again and again
// holds more rows than anybody can count. Our statements take a few steps for each byte that they
// read, so one that takes many more ends.
constexpr int stepsPerLook = 50'000; // some milliseconds at most
constexpr int64_t stepsPerByte = 20;
constexpr int64_t leastLooks = 200;
constexpr int longestStatement =
    4'000'000; // of the schema; a table of ours has some thousand bytes
constexpr int deepestExpression = 100;

void eds_Engine::LimitWork() {
  sqlite3_limit(m_database, SQLITE_LIMIT_SQL_LENGTH, longestStatement);
  sqlite3_limit(m_database, SQLITE_LIMIT_EXPR_DEPTH, deepestExpression);
  m_work = m_mostWork = 0;
  const bool isMade = m_mode == eds_OpenMode::New || m_mode == eds_OpenMode::Memory;
  if (isMade) return;
  std::error_code ignored;
  const auto bytes = static_cast<int64_t>(std::filesystem::file_size(m_file, ignored));
  m_mostWork = leastLooks + std::max<int64_t>(bytes, 0) * stepsPerByte / stepsPerLook;
  sqlite3_progress_handler(m_database, stepsPerLook, &eds_Engine::Watch, this);
}

// A write is not broken off: it is short, and what gives it up asks by itself.
int eds_Engine::Watch(void* engine) noexcept {
  auto& self = *static_cast<eds_Engine*>(engine);
  if (self.m_inPhysical) return 0;
  return utl_isAskedToStop() || ++self.m_work > self.m_mostWork ? 1 : 0;
}

void eds_Engine::OpenRecovered(const std::filesystem::path& file) {
  Open(file, eds_OpenMode::Durable);
  QueryInt("SELECT count(*) FROM sqlite_schema");
  // A journal that is idle is deleted on the way from mode to mode.
  Execute("PRAGMA journal_mode = PERSIST");
  Execute("PRAGMA journal_mode = DELETE");
}

void eds_Engine::ReserveChecksums() {
  if (m_mode == eds_OpenMode::Memory) return;
  const int code = eds_reservePageChecksums(m_database);
  if (code != SQLITE_OK) Fail(code);
}

void eds_Engine::ApplyMode() {
  switch (m_mode) {
  case eds_OpenMode::New:
    // Safe against a dying process, not against a power cut: what is left on disk then is a file
    // without the finished flag.
    Execute("PRAGMA locking_mode = EXCLUSIVE");
    Execute("PRAGMA synchronous = OFF");
    Execute("PRAGMA journal_mode = PERSIST");
    break;
  case eds_OpenMode::Durable:
    Execute("PRAGMA locking_mode = EXCLUSIVE");
    Execute("PRAGMA synchronous = EXTRA");
    Execute("PRAGMA journal_mode = DELETE");
    break;
  case eds_OpenMode::Memory:
    Execute("PRAGMA journal_mode = MEMORY");
    break;
  case eds_OpenMode::ReadOnly:
    Execute("PRAGMA query_only = ON");
    // All that is read belongs together: nobody changes the file in between.
    Execute("BEGIN");
    break;
  }
}

void eds_Engine::Close() {
  for (eds_Statement& statement : m_statements) statement.Finalize();
  if (m_database == nullptr) return;
  if (m_inPhysical) sqlite3_exec(m_database, "ROLLBACK", nullptr, nullptr, nullptr);
  m_inPhysical = m_holdsCommits = m_hasMark = false;
  sqlite3_close(m_database);
  m_database = nullptr;
}

void eds_Engine::Execute(const char* sql) {
  m_work = 0;
  const int code = sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) Fail(code);
}

// Where the system cannot tell, an open file keeps its name.
bool eds_Engine::HasMoved() const {
  int moved = 0;
  const int code = sqlite3_file_control(m_database, "main", SQLITE_FCNTL_HAS_MOVED, &moved);
  return code == SQLITE_OK && moved != 0;
}

int64_t eds_Engine::QueryInt(const char* sql) {
  eds_Statement statement(*this, sql);
  return statement.Step() ? statement.Int(0) : 0;
}

eds_Statement& eds_Engine::Prepare(cow_String sql) {
  return m_statements.emplace_back(*this, std::move(sql));
}

void eds_Engine::RequireWorking() const {
  if (m_failed) {
    throw eds_EngineException("nothing more is written to \"" + utl_pathText(m_shown) +
                              "\" after the first failure");
  }
}

void eds_Engine::BeginWrite() {
  if (m_inPhysical) return;
  RequireWorking();
  utl_ASSERT(m_mode != eds_OpenMode::ReadOnly);
  Execute("BEGIN IMMEDIATE");
  m_inPhysical = true;
  m_physicalSince = Clock::now();
}

void eds_Engine::SetMark() {
  BeginWrite();
  if (m_hasMark || !m_holdsCommits) return; // with nothing before it, the whole is taken back
  if (m_mark == nullptr) m_mark = &Prepare("SAVEPOINT logical");
  m_mark->Run();
  m_hasMark = true;
}

void eds_Engine::BackToMark() {
  if (!m_inPhysical) return;
  if (!m_hasMark) {
    if (!m_holdsCommits) RollbackPhysical();
    return;
  }
  Execute("ROLLBACK TO logical");
  Execute("RELEASE logical");
  m_hasMark = false;
}

bool eds_Engine::GatherCommit() {
  if (!m_inPhysical) return false;
  if (m_hasMark) {
    if (m_release == nullptr) m_release = &Prepare("RELEASE logical");
    m_release->Run();
    m_hasMark = false;
  }
  m_holdsCommits = true;
  return Clock::now() - m_physicalSince >= s_gatherTime;
}

void eds_Engine::CommitPhysical() {
  if (!m_inPhysical) return;
  Execute("COMMIT");
  m_inPhysical = m_holdsCommits = m_hasMark = false;
}

void eds_Engine::RollbackPhysical() {
  if (!m_inPhysical) return;
  m_inPhysical = m_holdsCommits = m_hasMark = false;
  // The engine has rolled back by itself when a write failed.
  if (sqlite3_get_autocommit(m_database) == 0) Execute("ROLLBACK");
}

void eds_Engine::Fail(int code) {
  // What the engine has kept of the transaction is not told; none of it is. The marks come first
  // and the rollback last: the texts between may fail for want of memory, and the rollback would
  // change what the engine says.
  struct RollBack {
    ~RollBack() {
      if (database != nullptr && sqlite3_get_autocommit(database) == 0)
        sqlite3_exec(database, "ROLLBACK", nullptr, nullptr, nullptr);
    }
    sqlite3* database;
  } const rollBack{m_inPhysical ? m_database : nullptr};
  m_failed = m_failed || m_inPhysical;
  m_inPhysical = m_holdsCommits = m_hasMark = false;
  const cow_String file = m_mode == eds_OpenMode::Memory ? cow_String("the model in memory")
                                                         : "\"" + utl_pathText(m_shown) + "\"";
  const cow_String text =
      oneLine(m_database != nullptr ? sqlite3_errmsg(m_database) : sqlite3_errstr(code));
  const cow_String system = systemText(m_database);
  switch (code) {
  case SQLITE_IOERR_NOMEM:
    throw eds_MemoryException("out of memory with " + file);
  case SQLITE_IOERR_DATA:
    throw eds_DamagedFileException(file + " is damaged: page " +
                                   std::to_string(eds_mismatchedPage(m_database)) +
                                   " does not match its checksum");
  case SQLITE_IOERR_SHORT_READ:
    throw eds_DamagedFileException(file + " is truncated");
  default:
    break;
  }
  switch (code & 0xff) {
  case SQLITE_INTERRUPT:
    utl_stopIfAsked();
    throw eds_DamagedFileException(file + " is damaged: it takes more work to read than a model of "
                                          "its size can");
  case SQLITE_FULL:
    throw eds_DiskException("cannot write " + file + ": no space left");
  case SQLITE_IOERR:
    throw eds_DiskException("cannot read or write " + file + system);
  case SQLITE_NOMEM:
    throw eds_MemoryException("out of memory with " + file);
  case SQLITE_CORRUPT:
    throw eds_DamagedFileException(file + " is damaged: " + text);
  case SQLITE_NOTADB:
    throw eds_NotOurFileException(file + " is not a model database");
  case SQLITE_BUSY:
  case SQLITE_LOCKED:
    throw eds_InUseException(file + " is in use by another process");
  case SQLITE_CANTOPEN:
    throw eds_FileAccessException("cannot open " + file + system);
  case SQLITE_PERM:
  case SQLITE_READONLY:
    throw eds_FileAccessException("cannot write " + file + ": not permitted");
  default:
    throw eds_EngineException("the database engine failed on " + file + ": " + text);
  }
}

// ---- statements

void eds_Statement::Check(int code) const {
  if (code != SQLITE_OK) m_engine->Fail(code);
}

void eds_Statement::Prepare() {
  utl_ASSERT(m_engine->m_database != nullptr);
  Check(sqlite3_prepare_v3(m_engine->m_database, m_sql.c_str(), static_cast<int>(m_sql.size()) + 1,
                           SQLITE_PREPARE_PERSISTENT, &m_statement, nullptr));
  m_isNull.assign(static_cast<size_t>(sqlite3_bind_parameter_count(m_statement)) + 1, true);
}

void eds_Statement::SetNull(int parameter, bool isNull) {
  const auto place = static_cast<size_t>(parameter);
  if (place < m_isNull.size()) m_isNull[place] = isNull;
}

void eds_Statement::Bind(int parameter, int64_t value) {
  if (m_statement == nullptr) Prepare();
  SetNull(parameter, false);
  Check(sqlite3_bind_int64(m_statement, parameter, value));
}

void eds_Statement::Bind(int parameter, double value) {
  if (m_statement == nullptr) Prepare();
  SetNull(parameter, false);
  Check(sqlite3_bind_double(m_statement, parameter, value));
}

void eds_Statement::BindText(int parameter, std::string_view value) {
  if (m_statement == nullptr) Prepare();
  SetNull(parameter, false);
  const char* text = value.empty() ? "" : value.data();
  Check(
      sqlite3_bind_text64(m_statement, parameter, text, value.size(), SQLITE_STATIC, SQLITE_UTF8));
}

void eds_Statement::BindBytes(int parameter, std::span<const std::byte> value) {
  if (m_statement == nullptr) Prepare();
  SetNull(parameter, false);
  if (value.empty()) return Check(sqlite3_bind_zeroblob(m_statement, parameter, 0));
  Check(sqlite3_bind_blob64(m_statement, parameter, value.data(), value.size(), SQLITE_STATIC));
}

void eds_Statement::BindNull(int parameter) {
  if (m_statement == nullptr) Prepare();
  const auto place = static_cast<size_t>(parameter);
  if (place < m_isNull.size() && m_isNull[place]) return;
  SetNull(parameter, true);
  Check(sqlite3_bind_null(m_statement, parameter));
}

void eds_Statement::Begin() {
  if (m_statement == nullptr) Prepare();
  m_engine->m_work = 0;
  m_runs = true;
}

bool eds_Statement::Step() {
  if (!m_runs) Begin();
  const int code = sqlite3_step(m_statement);
  if (code == SQLITE_ROW) return true;
  m_runs = false;
  if (code == SQLITE_DONE) return false;
  sqlite3_reset(m_statement);
  m_engine->Fail(code);
}

void eds_Statement::Run() {
  while (Step()) {
  }
  Reset();
}

void eds_Statement::Reset() {
  m_runs = false;
  if (m_statement != nullptr) sqlite3_reset(m_statement);
}

void eds_Statement::Finalize() {
  sqlite3_finalize(m_statement);
  m_statement = nullptr;
  m_runs = false;
}

eds_Statement::Type eds_Statement::ColumnType(int column) const {
  switch (sqlite3_column_type(m_statement, column)) {
  case SQLITE_INTEGER:
    return Type::Int;
  case SQLITE_FLOAT:
    return Type::Real;
  case SQLITE_TEXT:
    return Type::Text;
  case SQLITE_BLOB:
    return Type::Bytes;
  default:
    return Type::Null;
  }
}

int64_t eds_Statement::Int(int column) const {
  return sqlite3_column_int64(m_statement, column);
}
double eds_Statement::Real(int column) const {
  return sqlite3_column_double(m_statement, column);
}

std::string_view eds_Statement::Text(int column) const {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
  if (text == nullptr) return {};
  return {text, static_cast<size_t>(sqlite3_column_bytes(m_statement, column))};
}

std::span<const std::byte> eds_Statement::Bytes(int column) const {
  const auto* data = static_cast<const std::byte*>(sqlite3_column_blob(m_statement, column));
  return {data, static_cast<size_t>(sqlite3_column_bytes(m_statement, column))};
}
