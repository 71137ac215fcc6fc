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

// The table and the view of one record kind, when they are not there.
void eds_createTable(eds_Engine& engine, const eds_RecordInfo& record);

// Adds the tables and columns that an older file lacks.
class eds_StoredSchema;
void eds_upgradeTables(eds_Engine& engine, const eds_StoredSchema& stored);

// The engine's type of a field's column.
std::string_view eds_columnType(eds_FieldType type);
// A table that is no record kind's, by the statement that lays it down.
bool eds_isFixedTable(std::string_view table, std::string_view sql);
// A file without these is none of ours, whatever its marks say: every version lays them down first.
constexpr std::string_view eds_requiredTables[] = {"meta",
                                                   "chunk",
                                                   "model",
                                                   "schema_record",
                                                   "schema_field",
                                                   "schema_member",
                                                   "schema_collection",
                                                   "schema_symbol"};

// Looks at the first bytes of a file before the engine does: is it one of ours, in a format we
// know? Throws eds_FileAccessException, eds_NotOurFileException, eds_NewerFormatException.
void eds_checkHeader(const std::filesystem::path& file);
// After recovery: does the file have all the pages its header tells of?
void eds_checkLength(eds_Engine& engine);
// What stands in a file behind the last of its pages, which no checksum covers.
int64_t eds_bytesBehindPages(const eds_Engine& engine);
