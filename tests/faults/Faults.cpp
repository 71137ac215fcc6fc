#include "tests/faults/Faults.h"
#include "database/engine/eds_FileLayer.h"

#include <array>
#include <atomic>
#include <cstdlib>
#include <new>

// ---- the plan

namespace {

std::array<std::atomic<int64_t>, static_cast<size_t>(Fault::Count)> g_calls;
std::atomic<Fault> g_fault{Fault::Count};
std::atomic<int64_t> g_call{0};
std::atomic<bool> g_andLater{false};
std::atomic<int64_t> g_raised{0};

} // namespace

bool fails(Fault fault) {
  const bool isMemory = fault >= Fault::EngineMemory && fault <= Fault::Buffer;
  if (isMemory && g_fault == Fault::AnyMemory) fault = Fault::AnyMemory;
  const int64_t call = ++g_calls[static_cast<size_t>(fault)];
  if (fault != g_fault) return false;
  const bool hit = g_andLater ? call >= g_call : call == g_call;
  if (hit) ++g_raised;
  return hit;
}

void faultAt(Fault fault, int64_t call, bool andLater) {
  noFault();
  g_call = call;
  g_andLater = andLater;
  g_fault = fault;
}

void noFault() {
  g_fault = Fault::Count;
  g_raised = 0;
  for (std::atomic<int64_t>& calls : g_calls) calls = 0;
}

int64_t faultCalls(Fault fault) {
  if (fault == Fault::AnyMemory)
    return faultCalls(Fault::EngineMemory) + faultCalls(Fault::Memory) + faultCalls(Fault::Buffer);
  return g_calls[static_cast<size_t>(fault)];
}

int64_t faultsRaised() {
  return g_raised;
}

// ---- files of the engine: the system's own, but for the calls that fail

namespace {

sqlite3_vfs* g_system = nullptr;
sqlite3_vfs g_faulty;

int readFile(sqlite3_file* file, void* data, int size, sqlite3_int64 at) {
  if (fails(Fault::Read)) return SQLITE_IOERR_READ;
  return eds_realFile(file)->pMethods->xRead(eds_realFile(file), data, size, at);
}

// A full disk takes the first half; a broken one takes nothing.
int writeFile(sqlite3_file* file, const void* data, int size, sqlite3_int64 at) {
  sqlite3_file* real = eds_realFile(file);
  if (!fails(Fault::Write)) return real->pMethods->xWrite(real, data, size, at);
  if (g_call % 2 == 0) return SQLITE_IOERR_WRITE;
  real->pMethods->xWrite(real, data, size / 2, at);
  return SQLITE_FULL;
}

int truncateFile(sqlite3_file* file, sqlite3_int64 size) {
  if (fails(Fault::Truncate)) return SQLITE_IOERR_TRUNCATE;
  return eds_realFile(file)->pMethods->xTruncate(eds_realFile(file), size);
}

int syncFile(sqlite3_file* file, int flags) {
  if (fails(Fault::Sync)) return SQLITE_IOERR_FSYNC;
  return eds_realFile(file)->pMethods->xSync(eds_realFile(file), flags);
}

sqlite3_io_methods methodsOfFiles() {
  sqlite3_io_methods methods = eds_forwardingMethods();
  methods.xRead = readFile;
  methods.xWrite = writeFile;
  methods.xTruncate = truncateFile;
  methods.xSync = syncFile;
  return methods;
}

int openFile(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* flagsOut) {
  static const sqlite3_io_methods methods = methodsOfFiles();
  file->pMethods = nullptr; // nothing to close when opening fails
  if (fails(Fault::Open)) return SQLITE_CANTOPEN;
  return eds_openReal(*g_system, name, file, sizeof(eds_LayeredFile), flags, flagsOut, methods);
}

int deleteFile(sqlite3_vfs*, const char* name, int syncFolder) {
  if (fails(Fault::Delete)) return SQLITE_IOERR_DELETE;
  return g_system->xDelete(g_system, name, syncFolder);
}

// ---- memory of the engine

sqlite3_mem_methods g_memory;

void* allocate(int size) {
  return fails(Fault::EngineMemory) ? nullptr : g_memory.xMalloc(size);
}
void* reallocate(void* memory, int size) {
  return fails(Fault::EngineMemory) ? nullptr : g_memory.xRealloc(memory, size);
}

} // namespace

void installFaultyEngine() {
  sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
  sqlite3_config(SQLITE_CONFIG_GETMALLOC, &g_memory);
  sqlite3_mem_methods memory = g_memory;
  memory.xMalloc = allocate;
  memory.xRealloc = reallocate;
  sqlite3_config(SQLITE_CONFIG_MALLOC, &memory);
  g_system = sqlite3_vfs_find(nullptr);
  g_faulty = eds_layerOver(*g_system, "faulty", sizeof(eds_LayeredFile), openFile);
  g_faulty.xDelete = deleteFile;
  sqlite3_vfs_register(&g_faulty, 1);
}

// ---- memory of everything else

void* operator new(size_t size) {
  void* memory = fails(Fault::Memory) ? nullptr : std::malloc(size > 0 ? size : 1);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return fails(Fault::Memory) ? nullptr : std::malloc(size > 0 ? size : 1);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, size_t) noexcept {
  std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
  std::free(memory);
}
