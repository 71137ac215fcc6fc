#include "database/engine/eds_FileLayer.h"

namespace {

int closeFile(sqlite3_file* file) {
  sqlite3_file* real = eds_realFile(file);
  return real->pMethods != nullptr ? real->pMethods->xClose(real) : SQLITE_OK;
}
int readFile(sqlite3_file* file, void* data, int size, sqlite3_int64 at) {
  return eds_realFile(file)->pMethods->xRead(eds_realFile(file), data, size, at);
}
int writeFile(sqlite3_file* file, const void* data, int size, sqlite3_int64 at) {
  return eds_realFile(file)->pMethods->xWrite(eds_realFile(file), data, size, at);
}
int truncateFile(sqlite3_file* file, sqlite3_int64 size) {
  return eds_realFile(file)->pMethods->xTruncate(eds_realFile(file), size);
}
int syncFile(sqlite3_file* file, int flags) {
  return eds_realFile(file)->pMethods->xSync(eds_realFile(file), flags);
}
int sizeOfFile(sqlite3_file* file, sqlite3_int64* size) {
  return eds_realFile(file)->pMethods->xFileSize(eds_realFile(file), size);
}
int lockFile(sqlite3_file* file, int level) {
  return eds_realFile(file)->pMethods->xLock(eds_realFile(file), level);
}
int unlockFile(sqlite3_file* file, int level) {
  return eds_realFile(file)->pMethods->xUnlock(eds_realFile(file), level);
}
int isReserved(sqlite3_file* file, int* out) {
  return eds_realFile(file)->pMethods->xCheckReservedLock(eds_realFile(file), out);
}
int controlFile(sqlite3_file* file, int operation, void* data) {
  return eds_realFile(file)->pMethods->xFileControl(eds_realFile(file), operation, data);
}
int sectorSize(sqlite3_file* file) {
  return eds_realFile(file)->pMethods->xSectorSize(eds_realFile(file));
}
int characteristics(sqlite3_file* file) {
  return eds_realFile(file)->pMethods->xDeviceCharacteristics(eds_realFile(file));
}

} // namespace

sqlite3_io_methods eds_forwardingMethods() {
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

int eds_openReal(sqlite3_vfs& system, const char* name, sqlite3_file* file, int bytes, int flags,
                 int* flagsOut, const sqlite3_io_methods& methods) {
  auto& layered = *reinterpret_cast<eds_LayeredFile*>(file);
  layered.real = reinterpret_cast<sqlite3_file*>(reinterpret_cast<char*>(file) + bytes);
  layered.real->pMethods = nullptr;
  const int code = system.xOpen(&system, name, layered.real, flags, flagsOut);
  layered.base.pMethods = layered.real->pMethods != nullptr ? &methods : nullptr;
  return code;
}

sqlite3_vfs eds_layerOver(const sqlite3_vfs& system, const char* name, int bytes,
                          decltype(sqlite3_vfs::xOpen) open) {
  sqlite3_vfs layer = system;
  layer.zName = name;
  layer.szOsFile = bytes + system.szOsFile;
  layer.xOpen = open;
  return layer;
}
