#pragma once

#include <sqlite3.h>

// A layer between the engine and the system's files: its files begin with an eds_LayeredFile and
// hand on what the layer does not do itself.
struct eds_LayeredFile {
  sqlite3_file base;
  sqlite3_file* real; // the system's; lies behind the whole of the layer's file
};

inline sqlite3_file* eds_realFile(sqlite3_file* file) {
  return reinterpret_cast<eds_LayeredFile*>(file)->real;
}

// Operations that hand everything on, for a layer to replace some of. They are of version 1: files
// are never mapped into memory, which would pass the layer by.
sqlite3_io_methods eds_forwardingMethods();

// Opens the real file in the memory behind the layer's, which takes so many bytes, and gives it
// the layer's operations if there is something to close.
int eds_openReal(sqlite3_vfs& system, const char* name, sqlite3_file* file, int bytes, int flags,
                 int* flagsOut, const sqlite3_io_methods& methods);

// The system's entry with another name and another way to open files.
sqlite3_vfs eds_layerOver(const sqlite3_vfs& system, const char* name, int bytes,
                          decltype(sqlite3_vfs::xOpen) open);
