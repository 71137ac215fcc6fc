#include "database/engine/eds_PageChecksums.h"
#include "database/eds_Exception.h"
#include <cstring>
#include <sqlite3.h>
#define XXH_INLINE_ALL
#include <xxhash.h>

namespace {

// The engine's header, in the first page: how many bytes it leaves free at the end of each.
constexpr int headerSize = 100;
constexpr int reservedAt = 20;
constexpr int smallestPage = 512;

struct File {
  sqlite3_file base;
  sqlite3_file* real; // the system's, behind this one
  bool hasChecksums;
  int64_t mismatchedPage;
};

sqlite3_vfs* g_system = nullptr;
sqlite3_vfs g_checksummed;

sqlite3_file* realOf(sqlite3_file* file) {
  return reinterpret_cast<File*>(file)->real;
}

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
  const int code = file.real->pMethods->xRead(file.real, data, size, at);
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

int writeFile(sqlite3_file* base, const void* data, int size, sqlite3_int64 at) {
  auto& file = *reinterpret_cast<File*>(base);
  noteHeader(file, data, size, at);
  if (file.hasChecksums && isPage(size, at)) {
    // The reserved bytes of the engine's own page are ours to fill; that its journal holds them,
    // too, lets any program take a transaction back.
    auto* page = static_cast<std::byte*>(const_cast<void*>(data));
    eds_stampPage({page, static_cast<std::size_t>(size)}, at);
  }
  return file.real->pMethods->xWrite(file.real, data, size, at);
}

// ---- all else is the system's

int closeFile(sqlite3_file* file) {
  return realOf(file)->pMethods->xClose(realOf(file));
}
int truncateFile(sqlite3_file* file, sqlite3_int64 size) {
  return realOf(file)->pMethods->xTruncate(realOf(file), size);
}
int syncFile(sqlite3_file* file, int flags) {
  return realOf(file)->pMethods->xSync(realOf(file), flags);
}
int sizeOfFile(sqlite3_file* file, sqlite3_int64* size) {
  return realOf(file)->pMethods->xFileSize(realOf(file), size);
}
int lockFile(sqlite3_file* file, int level) {
  return realOf(file)->pMethods->xLock(realOf(file), level);
}
int unlockFile(sqlite3_file* file, int level) {
  return realOf(file)->pMethods->xUnlock(realOf(file), level);
}
int isReserved(sqlite3_file* file, int* out) {
  return realOf(file)->pMethods->xCheckReservedLock(realOf(file), out);
}
int controlFile(sqlite3_file* file, int operation, void* data) {
  return realOf(file)->pMethods->xFileControl(realOf(file), operation, data);
}
int sectorSize(sqlite3_file* file) {
  return realOf(file)->pMethods->xSectorSize(realOf(file));
}
int characteristics(sqlite3_file* file) {
  return realOf(file)->pMethods->xDeviceCharacteristics(realOf(file));
}

// Version 1: files are never mapped into memory, which would pass the reading by.
sqlite3_io_methods makeMethods() {
  sqlite3_io_methods methods{};
  methods.iVersion = 1;
  methods.xClose = closeFile;
  methods.xRead = readFile;
  methods.xWrite = writeFile;
  methods.xTruncate = truncateFile;
  methods.xSync = syncFile;
  methods.xFileSize = sizeOfFile;
  methods.xLock = lockFile;
  methods.xUnlock = unlockFile;
  methods.xCheckReservedLock = isReserved;
  methods.xFileControl = controlFile;
  methods.xSectorSize = sectorSize;
  methods.xDeviceCharacteristics = characteristics;
  return methods;
}

const sqlite3_io_methods g_methods = makeMethods();

int openFile(sqlite3_vfs*, const char* name, sqlite3_file* base, int flags, int* flagsOut) {
  // Journals have checksums of the engine's own.
  if ((flags & SQLITE_OPEN_MAIN_DB) == 0)
    return g_system->xOpen(g_system, name, base, flags, flagsOut);
  auto& file = *reinterpret_cast<File*>(base);
  file = File{};
  file.real = reinterpret_cast<sqlite3_file*>(&file + 1);
  file.real->pMethods = nullptr;
  const int code = g_system->xOpen(g_system, name, file.real, flags, flagsOut);
  if (file.real->pMethods != nullptr) file.base.pMethods = &g_methods; // to be closed
  return code;
}

[[noreturn]] void failForMemory() {
  throw eds_MemoryException("out of memory with the database engine");
}

const char* registerLayer() {
  g_system = sqlite3_vfs_find(nullptr);
  if (g_system == nullptr) failForMemory();
  g_checksummed = *g_system;
  g_checksummed.zName = "inps-checksummed";
  g_checksummed.szOsFile = static_cast<int>(sizeof(File)) + g_system->szOsFile;
  g_checksummed.xOpen = openFile;
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
