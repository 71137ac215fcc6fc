#pragma once

#include <filesystem>

// Before a file is opened by the engine, which rolls back whatever journal has its name: by a
// stranger's, a sound model would be ruined. Throws eds_FileAccessException when something other
// than a regular file has the name of one of its journals (to open it would wait for ever), and
// when a journal was made by another file.
void eds_requireOwnJournals(const std::filesystem::path& file);
