#include "database/engine/eds_PageChecksums.h"
#include "base/utl_Interruption.h"
#include "database/eds_Exception.h"
#include "database/engine/eds_FileLayer.h"
#include <cerrno>
#include <cstring>
#include <utility>
#define XXH_INLINE_ALL
#include <xxhash.h>

namespace {

// The engine's header, in the first page: how many bytes it leaves free at the end of each.
constexpr int headerSize = 100;
constexpr int reservedAt = 20;
constexpr int smallestPage = 512;

struct File {
  eds_LayeredFile layered;
  bool hasChecksums;
  bool readOnly;
  int64_t mismatchedPage;
};

sqlite3_vfs* g_system = nullptr;
sqlite3_vfs g_checksummed;

void noteHeader(File& file, const void* data, int size, int64_t at) {
  if (at != 0 || size < headerSize) return;
  file.hasChecksums = static_cast<const unsigned char*>(data)[reservedAt] == eds_pageChecksumBytes;
}

// The engine reads and writes a model by pages, but for its look at the header.
bool isPage(int size, int64_t at) {
  return size >= smallestPage && (size & (size - 1)) == 0 && at % size == 0;
}

// Seeded with the place, so that a page that has strayed is seen too.
XXH64_hash_t checksumOf(std::span<const std::byte> page, int64_t at) {
  return XXH3_64bits_withSeed(page.data(), page.size() - eds_pageChecksumBytes,
                              static_cast<XXH64_hash_t>(at));
}

int readFile(sqlite3_file* base, void* data, int size, sqlite3_int64 at) {
  auto& file = *reinterpret_cast<File*>(base);
  // The engine looks at all pages of a file in one step. Whoever only reads has nothing to put
  // back.
  if (file.readOnly && utl_isAskedToStop()) return SQLITE_INTERRUPT;
  const int code = eds_realFile(base)->pMethods->xRead(eds_realFile(base), data, size, at);
  if (code != SQLITE_OK) return code;
  noteHeader(file, data, size, at);
  if (!file.hasChecksums || !isPage(size, at)) return code;
  const std::span page(static_cast<const std::byte*>(data), static_cast<std::size_t>(size));
  XXH64_hash_t stored = 0;
  std::memcpy(&stored, page.last(eds_pageChecksumBytes).data(), eds_pageChecksumBytes);
  if (stored == checksumOf(page, at)) return code;
  file.mismatchedPage = at / size + 1;
  return SQLITE_IOERR_DATA;
}

thread_local int t_writeError = 0; // of the system

int writeFile(sqlite3_file* base, const void* data, int size, sqlite3_int64 at) {
  auto& file = *reinterpret_cast<File*>(base);
  noteHeader(file, data, size, at);
  if (file.hasChecksums && isPage(size, at)) {
    // The reserved bytes of the engine's own page are ours to fill; that its journal holds them,
    // too, lets any program take a transaction back.
    auto* page = static_cast<std::byte*>(const_cast<void*>(data));
    eds_stampPage({page, static_cast<std::size_t>(size)}, at);
  }
  const int code = eds_realFile(base)->pMethods->xWrite(eds_realFile(base), data, size, at);
  if (code != SQLITE_OK) t_writeError = errno;
  return code;
}

sqlite3_io_methods makeMethods() {
  sqlite3_io_methods methods = eds_forwardingMethods();
  methods.xRead = readFile;
  methods.xWrite = writeFile;
  return methods;
}

const sqlite3_io_methods g_methods = makeMethods();

int openFile(sqlite3_vfs*, const char* name, sqlite3_file* base, int flags, int* flagsOut) {
  // Journals have checksums of the engine's own.
  if ((flags & SQLITE_OPEN_MAIN_DB) == 0)
    return g_system->xOpen(g_system, name, base, flags, flagsOut);
  *reinterpret_cast<File*>(base) = {};
  reinterpret_cast<File*>(base)->readOnly = (flags & SQLITE_OPEN_READONLY) != 0;
  return eds_openReal(*g_system, name, base, sizeof(File), flags, flagsOut, g_methods);
}

[[noreturn]] void failForMemory() {
  throw eds_MemoryException("out of memory with the database engine");
}

const char* registerLayer() {
  g_system = sqlite3_vfs_find(nullptr);
  if (g_system == nullptr) failForMemory();
  g_checksummed = eds_layerOver(*g_system, "inps-checksummed", sizeof(File), openFile);
  if (sqlite3_vfs_register(&g_checksummed, 0) != SQLITE_OK) failForMemory();
  return g_checksummed.zName;
}

sqlite3_file* mainFile(sqlite3* database) {
  sqlite3_file* file = nullptr;
  sqlite3_file_control(database, "main", SQLITE_FCNTL_FILE_POINTER, &file);
  return file;
}

} // namespace

void eds_stampPage(std::span<std::byte> page, int64_t at) {
  const XXH64_hash_t checksum = checksumOf(page, at);
  std::memcpy(page.last(eds_pageChecksumBytes).data(), &checksum, eds_pageChecksumBytes);
}

const char* eds_checksummedFiles() {
  static const char* const name = registerLayer();
  return name;
}

int eds_reservePageChecksums(sqlite3* database) {
  int bytes = eds_pageChecksumBytes;
  return sqlite3_file_control(database, "main", SQLITE_FCNTL_RESERVE_BYTES, &bytes);
}

int64_t eds_mismatchedPage(sqlite3* database) {
  sqlite3_file* file = mainFile(database);
  const bool isOurs = file != nullptr && file->pMethods == &g_methods;
  return isOurs ? reinterpret_cast<File*>(file)->mismatchedPage : 0;
}

int eds_takeWriteError() {
  return std::exchange(t_writeError, 0);
}
