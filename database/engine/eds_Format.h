#pragma once

#include "database/engine/eds_Engine.h"
#include "database/schema/eds_Schema.h"

// The file's outer form: what marks it as ours, its tables, and what it must look like to be
// opened. docs/database.md describes it.

constexpr int32_t eds_applicationID = 0x496e7053; // "InpS"
// The only one that is read: the ones before were in no user's hands.
constexpr int32_t eds_formatVersion = 3;

// A small model has a page for nearly every table, so that small pages make a small file; large
// arrays go faster through large ones.
enum class eds_ModelSize { Small, Large };
constexpr int eds_pageSizeOf(eds_ModelSize size) {
  return size == eds_ModelSize::Small ? 4096 : 16384;
}

// Readies the engine for an empty file, before its first transaction.
void eds_prepareFile(eds_Engine& engine, eds_ModelSize size);
// The marks, and the tables that every model has. All others come with their first record.
void eds_layDown(eds_Engine& engine);
void eds_layDownChunks(eds_Engine& engine); // all that a model without a file needs
void eds_createTable(eds_Engine& engine, const eds_RecordInfo& record);
// The columns that its table lacks in a file of before they came.
void eds_addColumns(eds_Engine& engine, const eds_RecordInfo& record);

// The engine's type of a field's column.
std::string_view eds_columnType(eds_FieldType type);
// A table that is no record kind's, by the statement that lays it down.
bool eds_isFixedTable(std::string_view table, std::string_view sql);
// A file without these is none of ours, whatever its marks say.
constexpr std::string_view eds_requiredTables[] = {"meta", "chunk", "model"};
// Those in which a finished file tells what its tables mean (eds_Description).
constexpr std::string_view eds_schemaTables[] = {"schema_record", "schema_field", "schema_member",
                                                 "schema_collection", "schema_symbol"};
constexpr const char* eds_schemaTableStatements[] = {
    "CREATE TABLE schema_record (number INTEGER PRIMARY KEY, name TEXT, table_name TEXT) STRICT",
    "CREATE TABLE schema_field (record INTEGER, number INTEGER, name TEXT, column_name TEXT, type "
    "TEXT, target TEXT, PRIMARY KEY (record, number)) STRICT, WITHOUT ROWID",
    "CREATE TABLE schema_member (number INTEGER PRIMARY KEY, name TEXT, shape TEXT) STRICT",
    "CREATE TABLE schema_collection (number INTEGER PRIMARY KEY, name TEXT) STRICT",
    "CREATE TABLE schema_symbol (vocabulary TEXT, number INTEGER, name TEXT, PRIMARY KEY "
    "(vocabulary, number)) STRICT, WITHOUT ROWID",
};

// Looks at the first bytes of a file before the engine does: is it one of ours, in the format we
// know? Throws eds_FileAccessException, eds_NotOurFileException, eds_OtherFormatException,
// eds_DamagedFileException.
void eds_checkHeader(const std::filesystem::path& file);
// After recovery: does the file have all the pages its header tells of?
void eds_checkLength(eds_Engine& engine);
// What stands in a file behind the last of its pages, which no checksum covers.
int64_t eds_bytesBehindPages(const eds_Engine& engine);
