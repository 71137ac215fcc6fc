#include "database/engine/eds_Format.h"
#include "base/utl_File.h"
#include "database/eds_Exception.h"
#include "database/engine/eds_Journal.h"
#include "database/engine/eds_PageChecksums.h"
#include "database/schema/eds_Schema.h"
#include <algorithm>
#include <cstring>
#include <fstream>

namespace {

// The columns of one field, each behind `before`.
cow_String fieldColumns(const eds_FieldInfo& field, std::string_view before) {
  cow_String columns;
  if (field.type == eds_FieldType::AnyRef)
    columns += cow_String(before) + eds_sqlName(cow_String(field.column) + "_kind") + " INTEGER";
  return columns + cow_String(before) + eds_sqlName(field.column) + " " +
         cow_String(eds_columnType(field.type));
}

// id = array * 2^24 + number, so that the chunks of an array lie together.
constexpr const char* chunkTable =
    "CREATE TABLE chunk (id INTEGER PRIMARY KEY, array INTEGER, number INTEGER, checksum INTEGER, "
    "data BLOB) STRICT";
constexpr const char* fixedTables[] = {
    "CREATE TABLE meta (key TEXT PRIMARY KEY, value TEXT) STRICT, WITHOUT ROWID", chunkTable};

// The marks of the engine's header that say how pages are read: with these changed, no page would
// be held against its checksum.
void checkPages(const cow_String& name, const unsigned char* header) {
  const int pageSize = header[16] << 8 | header[17];
  const bool isOurs = pageSize == eds_pageSizeOf(eds_ModelSize::Small) ||
                      pageSize == eds_pageSizeOf(eds_ModelSize::Large);
  if (!isOurs || header[20] != eds_pageChecksumBytes)
    throw eds_DamagedFileException(name + " is damaged: its pages are not what they should be");
  if (header[18] != 1 || header[19] != 1)
    throw eds_DamagedFileException(name +
                                   " was changed by another program: it has its journal in a "
                                   "form that models do not have");
}

// The engine's header; what is not there reads as zeros.
struct Head {
  unsigned char header[100] = {};
  std::streamsize read = 0;
  int64_t fileBytes = 0;
};

Head headOf(const std::filesystem::path& file) {
  const auto failure = [&](const char* what, const char* why) {
    return eds_FileAccessException(cow_String(what) + " \"" + utl_pathText(file) + '"' + why);
  };
  Head head;
  std::ifstream stream(file, std::ios::binary | std::ios::ate);
  if (!stream) throw failure("cannot open", ": not permitted");
  head.fileBytes = static_cast<int64_t>(stream.tellg());
  stream.seekg(0);
  if (stream) stream.read(reinterpret_cast<char*>(head.header), sizeof head.header);
  head.read = stream.gcount();
  // An end within the header is no failure of reading, but the reader's to judge.
  if (head.fileBytes < 0 || (!stream && !stream.eof())) throw failure("cannot read", "");
  return head;
}

struct Length {
  int64_t bytes;
  int64_t expected; // by the engine's header
};

Length lengthOf(const std::filesystem::path& file) {
  const Head head = headOf(file);
  int64_t pageSize = head.header[16] << 8 | head.header[17];
  if (pageSize == 1) pageSize = 65536;
  return {head.fileBytes, pageSize * eds_bigEndian(head.header + 28)};
}

} // namespace

void eds_prepareFile(eds_Engine& engine, eds_ModelSize size) {
  engine.ReserveChecksums();
  engine.Execute(("PRAGMA page_size = " + std::to_string(eds_pageSizeOf(size))).c_str());
  engine.Execute("PRAGMA encoding = 'UTF-8'");
}

void eds_layDown(eds_Engine& engine) {
  engine.Execute(("PRAGMA application_id = " + std::to_string(eds_applicationID)).c_str());
  engine.Execute(("PRAGMA user_version = " + std::to_string(eds_formatVersion)).c_str());
  for (const char* sql : fixedTables) engine.Execute(sql);
  eds_createTable(engine, *eds_schemaRecord(eds_RecordKind::Model));
}

void eds_layDownChunks(eds_Engine& engine) {
  engine.Execute(chunkTable);
}

void eds_createTable(eds_Engine& engine, const eds_RecordInfo& record) {
  cow_String sql =
      "CREATE TABLE IF NOT EXISTS " + eds_sqlName(record.table) + " (\n  id INTEGER PRIMARY KEY";
  for (const eds_FieldInfo& field : record.fields) sql += fieldColumns(field, ",\n  ");
  engine.Execute((sql + "\n) STRICT").c_str());
}

void eds_addColumns(eds_Engine& engine, const eds_RecordInfo& record) {
  std::vector<cow_String> columns;
  {
    eds_Statement rows(engine, "PRAGMA table_info(" + eds_sqlName(record.table) + ")");
    while (rows.Step()) columns.emplace_back(rows.Text(1));
  }
  for (const eds_FieldInfo& field : record.fields) {
    if (std::ranges::find(columns, field.column) != columns.end()) continue;
    const cow_String alter = "ALTER TABLE " + eds_sqlName(record.table) + " ADD COLUMN ";
    const cow_String both = fieldColumns(field, ";" + alter);
    engine.Execute(both.c_str() + 1);
  }
}

std::string_view eds_columnType(eds_FieldType type) {
  switch (type) {
  case eds_FieldType::Real:
    return "REAL";
  case eds_FieldType::Text:
    return "TEXT";
  case eds_FieldType::Bytes:
    return "BLOB";
  default:
    return "INTEGER";
  }
}

bool eds_isFixedTable(std::string_view table, std::string_view sql) {
  const auto isIt = [&](std::string_view statement) {
    constexpr std::string_view begin = "CREATE TABLE ";
    return sql == statement && statement.substr(begin.size()).starts_with(table) &&
           statement[begin.size() + table.size()] == ' ';
  };
  return std::ranges::any_of(fixedTables, isIt) ||
         std::ranges::any_of(eds_schemaTableStatements, isIt);
}

void eds_checkHeader(const std::filesystem::path& file) {
  const cow_String name = "\"" + utl_pathText(file) + "\"";
  std::error_code failure;
  if (!std::filesystem::exists(std::filesystem::status(file, failure)))
    throw eds_FileAccessException("cannot open " + name + ": " +
                                  (failure && failure != std::errc::no_such_file_or_directory
                                       ? failure.message()
                                       : "no such file"));
  if (utl_isDirectory(file)) throw eds_FileAccessException("cannot open " + name + ": a folder");
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(file, ignored)) // opening a pipe would wait for its writer
    throw eds_FileAccessException("cannot open " + name + ": no regular file");
  const Head head = headOf(file);
  const unsigned char* header = head.header;
  if (head.read == 0) throw eds_NotOurFileException(name + " is not a model database: empty");
  if (std::memcmp(header, "SQLite format 3", 16) != 0)
    throw eds_NotOurFileException(name + " is not a model database");
  if (head.read < std::streamsize{sizeof head.header})
    throw eds_DamagedFileException(name + " is truncated");
  if (eds_bigEndian(header + 68) != static_cast<uint32_t>(eds_applicationID))
    throw eds_NotOurFileException(name + " is a database of another program");
  const uint32_t version = eds_bigEndian(header + 60);
  const auto refuse = [&](const char* why) {
    throw eds_OtherFormatException(name + " has format " + std::to_string(version) + why +
                                   std::to_string(eds_formatVersion));
  };
  if (version > static_cast<uint32_t>(eds_formatVersion))
    refuse(", written by a newer version; this one reads format ");
  if (version < static_cast<uint32_t>(eds_formatVersion))
    refuse(", written by an older version; convert its deck again: this one reads format ");
  checkPages(name, header);
}

void eds_checkLength(eds_Engine& engine) {
  const Length length = lengthOf(engine.File());
  if (length.bytes < length.expected) {
    throw eds_DamagedFileException("\"" + utl_pathText(engine.File()) +
                                   "\" is truncated: " + std::to_string(length.bytes) + " of " +
                                   std::to_string(length.expected) + " bytes");
  }
}

int64_t eds_bytesBehindPages(const eds_Engine& engine) {
  if (engine.File().empty()) return 0; // in memory
  const Length length = lengthOf(engine.File());
  return std::max<int64_t>(length.bytes - length.expected, 0);
}
