#include "bench/limit_program.h"

#define XXH_INLINE_ALL
#include <sqlite3.h>
#include <string>
#include <xxhash.h>

namespace {

// The settings of a new model file, as the store has them.
constexpr const char* createSettings = "PRAGMA page_size=16384;"
                                       "PRAGMA locking_mode=EXCLUSIVE;"
                                       "PRAGMA synchronous=OFF;"
                                       "PRAGMA journal_mode=PERSIST;";

constexpr const char* schema =
    "CREATE TABLE counts (nodes INTEGER NOT NULL, elements INTEGER NOT NULL) STRICT;"
    "CREATE TABLE chunk (id INTEGER PRIMARY KEY, array INTEGER, number INTEGER, checksum INTEGER,"
    " data BLOB) STRICT;"
    "BEGIN;";

void check(sqlite3* database, int code) {
  if (code != SQLITE_OK && code != SQLITE_DONE && code != SQLITE_ROW)
    throw std::runtime_error(std::string("SQLite: ") + sqlite3_errmsg(database));
}

void execute(sqlite3* database, const char* sql) {
  check(database, sqlite3_exec(database, sql, nullptr, nullptr, nullptr));
}

sqlite3_stmt* prepare(sqlite3* database, const char* sql) {
  sqlite3_stmt* statement = nullptr;
  check(database, sqlite3_prepare_v2(database, sql, -1, &statement, nullptr));
  return statement;
}

std::int64_t checksum(std::span<const std::byte> bytes) {
  return static_cast<std::int64_t>(XXH3_64bits(bytes.data(), bytes.size()));
}

} // namespace

LimitStore::LimitStore(const std::filesystem::path& path, Mode mode) {
  const bool create = mode == Mode::Create;
  const int flags = create ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE : SQLITE_OPEN_READONLY;
  check(m_database,
        sqlite3_open_v2(path.string().c_str(), &m_database, flags | SQLITE_OPEN_NOMUTEX, nullptr));
  if (create) {
    execute(m_database, createSettings);
    execute(m_database, schema);
    m_chunk = prepare(m_database, "INSERT INTO chunk VALUES (?1 * 16777216 + ?2, ?1, ?2, ?3, ?4)");
  } else {
    m_chunk = prepare(m_database, "SELECT checksum, data FROM chunk WHERE id = ?1 * 16777216 + ?2");
  }
}

LimitStore::~LimitStore() {
  sqlite3_finalize(m_chunk);
  sqlite3_close(m_database);
}

void LimitStore::WriteChunk(LimitArray array, std::size_t position,
                            std::span<const std::byte> bytes) {
  sqlite3_bind_int(m_chunk, 1, static_cast<int>(array));
  sqlite3_bind_int64(m_chunk, 2, static_cast<std::int64_t>(position));
  sqlite3_bind_int64(m_chunk, 3, checksum(bytes));
  sqlite3_bind_blob64(m_chunk, 4, bytes.data(), bytes.size(), SQLITE_STATIC);
  check(m_database, sqlite3_step(m_chunk));
  check(m_database, sqlite3_reset(m_chunk));
}

void LimitStore::WriteCounts(const LimitCounts& counts) {
  const std::string sql = "INSERT INTO counts VALUES (" + std::to_string(counts.nodes) + ", " +
                          std::to_string(counts.elements) + ")";
  execute(m_database, sql.c_str());
}

void LimitStore::Finish() {
  execute(m_database, "COMMIT");
}

LimitCounts LimitStore::ReadCounts() {
  sqlite3_stmt* statement = prepare(m_database, "SELECT nodes, elements FROM counts");
  LimitCounts counts;
  if (sqlite3_step(statement) == SQLITE_ROW)
    counts = {sqlite3_column_int64(statement, 0), sqlite3_column_int64(statement, 1)};
  sqlite3_finalize(statement);
  return counts;
}

std::span<const std::byte> LimitStore::ReadChunk(LimitArray array, std::size_t position) {
  check(m_database, sqlite3_reset(m_chunk));
  sqlite3_bind_int(m_chunk, 1, static_cast<int>(array));
  sqlite3_bind_int64(m_chunk, 2, static_cast<std::int64_t>(position));
  const int code = sqlite3_step(m_chunk);
  check(m_database, code);
  if (code != SQLITE_ROW) return {};
  const std::span<const std::byte> bytes(
      static_cast<const std::byte*>(sqlite3_column_blob(m_chunk, 1)),
      static_cast<std::size_t>(sqlite3_column_bytes(m_chunk, 1)));
  if (sqlite3_column_int64(m_chunk, 0) != checksum(bytes))
    throw std::runtime_error("a chunk does not match its checksum");
  return bytes;
}
