#include "database/engine/eds_StoredSchema.h"
#include "base/utl_File.h"
#include "database/eds_Exception.h"
#include "database/engine/eds_Format.h"
#include <algorithm>

namespace {

struct Column {
  cow_String name;
  std::string_view type;
};

bool isPlain(std::string_view name) {
  return !name.empty() && std::ranges::all_of(name, [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
  });
}

// Walks a statement that lays down a table, as createTable writes it and as the engine adds columns
// to it: nothing else may stand in it, no comment either.
class TableStatement {
public:
  explicit TableStatement(std::string_view text) : m_text(text) {}

  bool Read(std::string_view table, std::vector<Column>& columns) {
    if (!Take("CREATE TABLE") || Name() != table || !Take("(")) return false;
    if (!Take("id INTEGER PRIMARY KEY")) return false;
    columns.push_back({"id", "INTEGER"});
    while (Take(",")) {
      const std::string_view name = Name();
      const std::string_view type = Type();
      if (name.empty() || type.empty()) return false;
      columns.push_back({cow_String(name), type});
    }
    if (!Take(")") || !Take("STRICT")) return false;
    SkipBlanks();
    return m_text.empty();
  }

private:
  void SkipBlanks() {
    m_text.remove_prefix(std::min(m_text.find_first_not_of(" \n"), m_text.size()));
  }
  bool Take(std::string_view word) {
    SkipBlanks();
    if (!m_text.starts_with(word)) return false;
    m_text.remove_prefix(word.size());
    return true;
  }
  // Between double quotes; empty when there is none.
  std::string_view Name() {
    if (!Take("\"")) return {};
    const std::size_t end = m_text.find('"');
    if (end == m_text.npos) return {};
    const std::string_view name = m_text.substr(0, end);
    m_text.remove_prefix(end + 1);
    return isPlain(name) ? name : std::string_view();
  }
  std::string_view Type() {
    for (const std::string_view type : {"INTEGER", "REAL", "TEXT", "BLOB"})
      if (Take(type)) return type;
    return {};
  }

  std::string_view m_text;
};

// The columns that a field of ours has, with their types.
bool fitsField(const std::vector<Column>& columns, const eds_FieldInfo& field) {
  const auto fits = [&](const cow_String& name, std::string_view type) {
    const auto found = std::ranges::find(columns, name, &Column::name);
    return found == columns.end() || found->type == type; // an older file lacks it
  };
  return fits(cow_String(field.column), eds_columnType(field.type)) &&
         (field.type != eds_FieldType::AnyRef ||
          fits(cow_String(field.column) + "_kind", eds_columnType(eds_FieldType::Int)));
}

bool fitsRecord(const std::vector<Column>& columns, std::string_view table) {
  const eds_RecordInfo* const record = eds_schemaRecord(table);
  return record == nullptr || // of a newer version
         std::ranges::all_of(record->fields,
                             [&](const eds_FieldInfo& field) { return fitsField(columns, field); });
}

bool isView(std::string_view name, std::string_view sql) {
  constexpr std::string_view begin = "CREATE VIEW ";
  return name.starts_with("v_") && sql.starts_with(begin) &&
         sql.substr(begin.size()).starts_with(name);
}

} // namespace

void eds_StoredSchema::Refuse(const cow_String& why) const {
  throw eds_NotOurFileException('"' + utl_pathText(m_file) + "\" is not a model database: " + why);
}

void eds_StoredSchema::Read(eds_Engine& engine) {
  m_file = engine.File();
  try {
    ReadTables(engine);
  } catch (...) {
    m_tables.clear();
    throw;
  }
}

void eds_StoredSchema::ReadTables(eds_Engine& engine) {
  m_tables.clear();
  eds_Statement rows(engine, "SELECT type, name, sql FROM sqlite_schema");
  while (rows.Step()) {
    const std::string_view type = rows.Text(0);
    const std::string_view name = rows.Text(1);
    const std::string_view sql = rows.Text(2);
    // What the engine makes of a row is in its statement, not in its type.
    if (type == "view" && isView(name, sql)) continue;
    const cow_String shown(isPlain(name) ? ' ' + cow_String(name) : cow_String());
    if (type != "table") {
      const bool isKnown = type == "index" || type == "trigger" || type == "view";
      Refuse("its schema holds " + (isKnown ? "the " + cow_String(type) + shown : "something") +
             ", which no model has");
    }
    std::vector<Column> columns;
    std::vector<cow_String>& names = m_tables[cow_String(name)];
    if (eds_isFixedTable(name, sql)) continue;
    if (!TableStatement(sql).Read(name, columns) || !fitsRecord(columns, name))
      Refuse("its table" + shown + " is not as models have it");
    for (Column& column : columns) names.push_back(std::move(column.name));
  }
  Require(eds_requiredTables);
}

void eds_StoredSchema::Require(std::span<const std::string_view> tables) const {
  for (const std::string_view table : tables)
    if (Columns(table) == nullptr)
      Refuse("it bears the mark of one, but has no table " + cow_String(table));
}

std::vector<eds_RecordKind> eds_StoredSchema::Kinds() const {
  std::vector<eds_RecordKind> kinds;
  for (const auto& [table, columns] : m_tables)
    if (const eds_RecordInfo* const record = eds_schemaRecord(table)) kinds.push_back(record->kind);
  return kinds;
}

const std::vector<cow_String>* eds_StoredSchema::Columns(std::string_view table) const {
  const auto found = m_tables.find(cow_String(table));
  return found != m_tables.end() ? &found->second : nullptr;
}
