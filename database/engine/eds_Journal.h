#pragma once

#include <cstdint>
#include <filesystem>

// The name that the engine gives to a file's rollback journal.
std::filesystem::path eds_journalOf(const std::filesystem::path& file);

// Numbers of the engine's headers.
inline uint32_t eds_bigEndian(const unsigned char* bytes) {
  return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

// Before a file is opened by the engine, which rolls back whatever journal has its name: by a
// stranger's, a sound model would be ruined. Throws eds_FileAccessException when something other
// than a regular file has the name of one of its journals (to open it would wait for ever), and
// when a journal was made by another file.
void eds_requireOwnJournals(const std::filesystem::path& file);
