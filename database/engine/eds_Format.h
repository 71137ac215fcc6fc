#pragma once

#include "database/engine/eds_Engine.h"
#include "database/schema/eds_Schema.h"

// The file's outer form: what marks it as ours, its tables and views, and what it must look like to
// be opened. docs/database.md describes it.

constexpr int32_t eds_applicationID = 0x496e7053; // "InpS"
// 1: without checksums of pages; still read.
constexpr int32_t eds_formatVersion = 2;
constexpr int eds_pageSize = 16384;

// Lays down the tables, the views and the stored schema in an empty file.
void eds_createTables(eds_Engine& engine);

// The table and the view of one record kind.
void eds_createTable(eds_Engine& engine, const eds_RecordInfo& record);

// Adds the tables and columns that an older file lacks.
void eds_upgradeTables(eds_Engine& engine);

// The columns of one table on disk; empty when there is no such table. Refuses what is not a plain
// table.
std::vector<cow_String> eds_storedColumns(eds_Engine& engine, std::string_view table);

// Looks at the first bytes of a file before the engine does: is it one of ours, in a format we
// know? Throws eds_FileAccessException, eds_NotOurFileException, eds_NewerFormatException.
void eds_checkHeader(const std::filesystem::path& file);
// After recovery: does the file have all the pages its header tells of?
void eds_checkLength(eds_Engine& engine);
// What stands in a file behind the last of its pages, which no checksum covers.
int64_t eds_bytesBehindPages(const eds_Engine& engine);
