#pragma once

#include <cstdint>
#include <filesystem>

// The name that the engine gives to a file's rollback journal.
std::filesystem::path eds_journalOf(const std::filesystem::path& file);

// Numbers of the engine's headers.
inline uint32_t eds_bigEndian(const unsigned char* bytes) {
  return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

// Removes what lies beside a file's name as its journal, which the engine would take for that of
// the next file there. Throws eds_FileAccessException when it will not go; somebody's own file of
// that name is for eds_requireOwnJournals.
void eds_removeJournal(const std::filesystem::path& file);

// Before a file is opened by the engine, which rolls back whatever journal has its name: by a
// stranger's, a sound model would be ruined, and what is no journal at all it would remove. Throws
// eds_FileAccessException when something other than a regular file has the name of one of its
// journals (to open it would wait for ever), when a file of such a name is no journal, and when a
// journal was made by another file.
void eds_requireOwnJournals(const std::filesystem::path& file);
