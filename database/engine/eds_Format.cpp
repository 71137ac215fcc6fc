#include "database/engine/eds_Format.h"
#include "base/utl_File.h"
#include "database/eds_Exception.h"
#include "database/engine/eds_Journal.h"
#include "database/engine/eds_PageChecksums.h"
#include "database/engine/eds_StoredSchema.h"
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

cow_String createTable(const eds_RecordInfo& record) {
  cow_String sql =
      "CREATE TABLE IF NOT EXISTS " + eds_sqlName(record.table) + " (\n  id INTEGER PRIMARY KEY";
  for (const eds_FieldInfo& field : record.fields) sql += fieldColumns(field, ",\n  ");
  return sql + "\n) STRICT";
}

bool hasName(const eds_RecordInfo& record) {
  for (const eds_FieldInfo& field : record.fields)
    if (field.column == "name" && field.type == eds_FieldType::Text) return true;
  return false;
}

cow_String nameOf(const eds_RecordInfo& record, const cow_String& id) {
  return "(SELECT name FROM " + eds_sqlName(record.table) + " t WHERE t.id = " + id + ")";
}

cow_String nameOfAny(const cow_String& kind, const cow_String& id) {
  cow_String sql = "CASE " + kind;
  for (const eds_RecordInfo& record : eds_schemaRecords()) {
    if (!hasName(record) || eds_isLateKind(record.kind)) continue; // that table may not be there
    sql += "\n    WHEN " + std::to_string(static_cast<int>(record.kind)) + " THEN " +
           nameOf(record, id);
  }
  return sql + " END";
}

// What people want to read instead of a number; empty when the column says it all.
cow_String readable(const eds_FieldInfo& field) {
  const cow_String column = "r." + eds_sqlName(field.column);
  const cow_String kind = "r." + eds_sqlName(cow_String(field.column) + "_kind");
  switch (field.type) {
  case eds_FieldType::Symbol:
    return "(SELECT name FROM schema_symbol s WHERE s.vocabulary = '" +
           cow_String(eds_vocabularyName(field.vocabulary)) + "' AND s.number = " + column + ")";
  case eds_FieldType::Ref: {
    const eds_RecordInfo* target = eds_schemaRecord(field.target);
    return target != nullptr && hasName(*target) ? nameOf(*target, column) : cow_String();
  }
  case eds_FieldType::AnyRef:
    return nameOfAny(kind, column);
  default:
    return {};
  }
}

cow_String createView(const eds_RecordInfo& record) {
  cow_String sql = "CREATE VIEW IF NOT EXISTS v_" + cow_String(record.table) + " AS SELECT\n  r.id";
  for (const eds_FieldInfo& field : record.fields) {
    const cow_String column = "r." + eds_sqlName(field.column);
    const cow_String text = readable(field);
    if (field.type == eds_FieldType::AnyRef) {
      sql += ",\n  (SELECT name FROM schema_record s WHERE s.number = r." +
             eds_sqlName(cow_String(field.column) + "_kind") + ") AS " +
             eds_sqlName(cow_String(field.column) + "_kind");
    }
    if (field.type != eds_FieldType::Symbol)
      sql += ",\n  " + (field.type == eds_FieldType::Bytes
                            ? "length(" + column + ") AS " + eds_sqlName(field.column)
                            : column);
    if (field.type == eds_FieldType::Symbol)
      sql += ",\n  " + text + " AS " + eds_sqlName(field.column);
    if (!text.empty() && field.type != eds_FieldType::Symbol)
      sql += ",\n  " + text + " AS " + eds_sqlName(cow_String(field.column) + "_name");
  }
  if (record.kind == eds_RecordKind::Link)
    sql += ",\n  (SELECT name FROM schema_member m WHERE m.number = r.member) AS member_name";
  return sql + "\nFROM " + eds_sqlName(record.table) + " r";
}

constexpr const char* fixedTables[] = {
    "CREATE TABLE meta (key TEXT PRIMARY KEY, value TEXT) STRICT, WITHOUT ROWID",
    // id = array * 2^24 + number, so that the chunks of an array lie together.
    "CREATE TABLE chunk (id INTEGER PRIMARY KEY, array INTEGER, number INTEGER, checksum INTEGER, "
    "data BLOB) STRICT",
};

constexpr const char* schemaTables[] = {
    "CREATE TABLE schema_record (number INTEGER PRIMARY KEY, name TEXT, table_name TEXT) STRICT",
    "CREATE TABLE schema_field (record INTEGER, number INTEGER, name TEXT, column_name TEXT, type "
    "TEXT, target TEXT, PRIMARY KEY (record, number)) STRICT, WITHOUT ROWID",
    "CREATE TABLE schema_member (number INTEGER PRIMARY KEY, name TEXT, shape TEXT) STRICT",
    "CREATE TABLE schema_collection (number INTEGER PRIMARY KEY, name TEXT) STRICT",
    "CREATE TABLE schema_symbol (vocabulary TEXT, number INTEGER, name TEXT, PRIMARY KEY "
    "(vocabulary, number)) STRICT, WITHOUT ROWID",
};

cow_String fieldTarget(const eds_FieldInfo& field) {
  if (field.type == eds_FieldType::Symbol) return cow_String(eds_vocabularyName(field.vocabulary));
  const eds_RecordInfo* target = eds_schemaRecord(field.target);
  return target != nullptr ? cow_String(target->name) : cow_String();
}

void writeRecords(eds_Engine& engine) {
  constexpr std::string_view types[] = {"Int",   "Real",   "Bool", "Text",
                                        "Bytes", "Symbol", "Ref",  "AnyRef"};
  eds_Statement insert(engine, "INSERT OR REPLACE INTO schema_record VALUES (?, ?, ?)");
  eds_Statement insertField(engine,
                            "INSERT OR REPLACE INTO schema_field VALUES (?, ?, ?, ?, ?, ?)");
  for (const eds_RecordInfo& record : eds_schemaRecords()) {
    insert.Bind(1, static_cast<int64_t>(record.kind));
    insert.BindText(2, record.name);
    insert.BindText(3, record.table);
    insert.Run();
    for (size_t i = 0; i < record.fields.size(); ++i) {
      const eds_FieldInfo& field = record.fields[i];
      const cow_String target = fieldTarget(field);
      insertField.Bind(1, static_cast<int64_t>(record.kind));
      insertField.Bind(2, static_cast<int64_t>(i));
      insertField.BindText(3, field.name);
      insertField.BindText(4, field.column);
      insertField.BindText(5, types[static_cast<size_t>(field.type)]);
      insertField.BindText(6, target);
      insertField.Run();
    }
  }
}

void writeNames(eds_Engine& engine) {
  constexpr std::string_view shapes[] = {"One", "Set", "List", "IntMap", "TextMap"};
  eds_Statement member(engine, "INSERT OR REPLACE INTO schema_member VALUES (?, ?, ?)");
  for (const eds_MemberInfo& info : eds_schemaMembers()) {
    member.Bind(1, static_cast<int64_t>(info.member));
    member.BindText(2, info.name);
    member.BindText(3, shapes[static_cast<size_t>(info.shape)]);
    member.Run();
  }
  eds_Statement collection(engine, "INSERT OR REPLACE INTO schema_collection VALUES (?, ?)");
  for (const eds_CollectionInfo& info : eds_schemaCollections()) {
    collection.Bind(1, static_cast<int64_t>(info.kind));
    collection.BindText(2, info.name);
    collection.Run();
  }
  eds_Statement symbol(engine, "INSERT OR REPLACE INTO schema_symbol VALUES (?, ?, ?)");
  for (const eds_SymbolInfo& info : eds_schemaSymbols()) {
    symbol.BindText(1, eds_vocabularyName(info.vocabulary));
    symbol.Bind(2, int64_t{info.number});
    symbol.BindText(3, info.name);
    symbol.Run();
  }
}

// The marks of the engine's header that say how pages are read: with these changed, no page would
// be held against its checksum.
void checkPages(const cow_String& name, const unsigned char* header) {
  if ((header[16] << 8 | header[17]) != eds_pageSize || header[20] != eds_pageChecksumBytes)
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

void eds_createTables(eds_Engine& engine) {
  engine.ReserveChecksums();
  engine.Execute(("PRAGMA page_size = " + std::to_string(eds_pageSize)).c_str());
  engine.Execute("PRAGMA encoding = 'UTF-8'");
  engine.Execute("BEGIN");
  engine.Execute(("PRAGMA application_id = " + std::to_string(eds_applicationID)).c_str());
  engine.Execute(("PRAGMA user_version = " + std::to_string(eds_formatVersion)).c_str());
  for (const char* sql : fixedTables) engine.Execute(sql);
  for (const char* sql : schemaTables) engine.Execute(sql);
  for (const eds_RecordInfo& record : eds_schemaRecords())
    if (!eds_isLateKind(record.kind)) eds_createTable(engine, record);
  writeRecords(engine);
  writeNames(engine);
  engine.Execute("COMMIT");
}

void eds_createTable(eds_Engine& engine, const eds_RecordInfo& record) {
  engine.Execute(createTable(record).c_str());
  engine.Execute(createView(record).c_str());
}

void eds_upgradeTables(eds_Engine& engine, const eds_StoredSchema& stored) {
  engine.Execute("BEGIN IMMEDIATE");
  for (const eds_RecordInfo& record : eds_schemaRecords()) {
    const std::vector<cow_String>* const known = stored.Columns(record.table);
    if (known == nullptr) {
      if (!eds_isLateKind(record.kind)) eds_createTable(engine, record);
      continue;
    }
    const std::vector<cow_String>& columns = *known;
    bool grown = false;
    for (const eds_FieldInfo& field : record.fields) {
      if (std::find(columns.begin(), columns.end(), field.column) != columns.end()) continue;
      grown = true;
      const cow_String alter = "ALTER TABLE " + eds_sqlName(record.table) + " ADD COLUMN ";
      cow_String both = fieldColumns(field, ";" + alter);
      engine.Execute(both.c_str() + 1);
    }
    if (!grown) continue;
    engine.Execute(("DROP VIEW IF EXISTS v_" + cow_String(record.table)).c_str());
    engine.Execute(createView(record).c_str());
  }
  writeRecords(engine);
  writeNames(engine);
  engine.Execute("COMMIT");
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
  return std::ranges::any_of(fixedTables, isIt) || std::ranges::any_of(schemaTables, isIt);
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
  if (version > static_cast<uint32_t>(eds_formatVersion)) {
    throw eds_NewerFormatException(name + " has format " + std::to_string(version) +
                                   ", written by a newer version; this one reads formats up to " +
                                   std::to_string(eds_formatVersion));
  }
  if (version >= 2) checkPages(name, header);
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
