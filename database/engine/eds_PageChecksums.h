#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

struct sqlite3;

// A checksum at the end of every page of a model file, so that no byte that changed on the disk is
// taken for what was written: not in a bulk array, nor in the value of a record, nor in the
// engine's own trees. It stands in bytes that the engine leaves free at the end of each page; any
// program that knows the engine's format still reads the file, but one that changes it makes the
// pages it touches unreadable here.

constexpr int eds_pageChecksumBytes = 8;

// Puts the checksum at the end of a page that begins at this byte of the file.
void eds_stampPage(std::span<std::byte> page, int64_t at);

// The name of the engine's file layer that writes and verifies them, made at the first call. It
// leaves files alone whose header reserves no such bytes. Throws eds_MemoryException.
const char* eds_checksummedFiles();

// Has the pages of a file that is still empty end with a checksum. An error code of the engine.
int eds_reservePageChecksums(sqlite3* database);

// The page, from 1, that did not match its checksum when it was read last; 0: none.
int64_t eds_mismatchedPage(sqlite3* database);

// Why the system refused to write last on this thread, and forgets it; 0: it did not. The engine
// does not keep it for what fails at a commit.
int eds_takeWriteError();
