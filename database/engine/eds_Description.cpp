#include "database/engine/eds_Description.h"
#include "database/engine/eds_Format.h"
#include "database/engine/eds_ReaderViews.h"
#include "database/schema/eds_Schema.h"
#include <algorithm>
#include <map>

namespace {

// Those that the file has tables of, by number.
using Kinds = std::vector<const eds_RecordInfo*>;

Kinds kindsIn(eds_Engine& engine) {
  Kinds kinds;
  eds_Statement tables(engine, "SELECT name FROM sqlite_schema WHERE type = 'table'");
  while (tables.Step())
    if (const eds_RecordInfo* record = eds_schemaRecord(tables.Text(0))) kinds.push_back(record);
  std::ranges::sort(kinds, {}, &eds_RecordInfo::kind);
  return kinds;
}

// ---- the views

bool hasName(const eds_RecordInfo& record) {
  return std::ranges::any_of(record.fields, [](const eds_FieldInfo& field) {
    return field.column == "name" && field.type == eds_FieldType::Text;
  });
}

constexpr std::string_view nameView = "v_name";

// The names of all objects, by kind and id: what a view shows of a reference to any kind.
cow_String selectNames(const Kinds& kinds) {
  cow_String sql;
  for (const eds_RecordInfo* kind : kinds) {
    if (!hasName(*kind)) continue;
    sql += (sql.empty() ? "\n" : "\nUNION ALL\n") + cow_String("SELECT ") +
           std::to_string(static_cast<int>(kind->kind)) + " AS kind, id, name FROM " +
           eds_sqlName(kind->table);
  }
  return sql.empty() ? "\nSELECT 0 AS kind, 0 AS id, '' AS name WHERE 0" : sql;
}

// What people want to read instead of a number; empty when the column says it all.
cow_String readable(const eds_FieldInfo& field, const Kinds& kinds) {
  const cow_String column = "r." + eds_sqlName(field.column);
  const cow_String kind = "r." + eds_sqlName(cow_String(field.column) + "_kind");
  switch (field.type) {
  case eds_FieldType::Symbol:
    return "(SELECT name FROM schema_symbol s WHERE s.vocabulary = '" +
           cow_String(eds_vocabularyName(field.vocabulary)) + "' AND s.number = " + column + ")";
  case eds_FieldType::Ref: {
    const eds_RecordInfo* target = eds_schemaRecord(field.target);
    if (target == nullptr || !hasName(*target)) return {};
    if (std::ranges::find(kinds, target->kind, &eds_RecordInfo::kind) == kinds.end())
      return "NULL"; // no record of that kind, no table
    return "(SELECT name FROM " + eds_sqlName(target->table) + " t WHERE t.id = " + column + ")";
  }
  case eds_FieldType::AnyRef:
    return "(SELECT name FROM " + cow_String(nameView) + " n WHERE n.kind = " + kind +
           " AND n.id = " + column + ")";
  default:
    return {};
  }
}

cow_String selectRecords(const eds_RecordInfo& record, const Kinds& kinds) {
  cow_String sql = " SELECT\n  r.id";
  for (const eds_FieldInfo& field : record.fields) {
    const cow_String column = "r." + eds_sqlName(field.column);
    const cow_String text = readable(field, kinds);
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

// A view that is there may be of before a kind or a column came.
void writeViews(eds_Engine& engine, const Kinds& kinds) {
  std::map<cow_String, cow_String> there;
  {
    eds_Statement views(engine, "SELECT name, sql FROM sqlite_schema WHERE type = 'view'");
    while (views.Step()) there.emplace(views.Text(0), views.Text(1));
  }
  const auto write = [&](const cow_String& name, const cow_String& select) {
    const cow_String sql = "CREATE VIEW " + name + " AS" + select;
    const auto old = there.find(name);
    if (old != there.end() && old->second == sql) return;
    if (old != there.end()) engine.Execute(("DROP VIEW " + name).c_str());
    engine.Execute(sql.c_str());
  };
  write(cow_String(nameView), selectNames(kinds));
  for (const eds_RecordInfo* kind : kinds)
    write("v_" + cow_String(kind->table), selectRecords(*kind, kinds));
  for (const eds_ReaderView& view : eds_readerViews(kinds)) write(view.name, view.select);
}

// ---- the stored schema

cow_String fieldTarget(const eds_FieldInfo& field) {
  if (field.type == eds_FieldType::Symbol) return cow_String(eds_vocabularyName(field.vocabulary));
  const eds_RecordInfo* target = eds_schemaRecord(field.target);
  return target != nullptr ? cow_String(target->name) : cow_String();
}

void writeRecords(eds_Engine& engine, const Kinds& kinds) {
  constexpr std::string_view types[] = {"Int",   "Real",   "Bool", "Text",
                                        "Bytes", "Symbol", "Ref",  "AnyRef"};
  eds_Statement insert(engine, "INSERT OR REPLACE INTO schema_record VALUES (?, ?, ?)");
  eds_Statement insertField(engine,
                            "INSERT OR REPLACE INTO schema_field VALUES (?, ?, ?, ?, ?, ?)");
  for (const eds_RecordInfo* kind : kinds) {
    const eds_RecordInfo& record = *kind;
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

} // namespace

void eds_describe(eds_Engine& engine) {
  for (const char* sql : eds_schemaTableStatements) {
    const cow_String create = "CREATE TABLE IF NOT EXISTS" + cow_String(sql).substr(12);
    engine.Execute(create.c_str());
  }
  const Kinds kinds = kindsIn(engine);
  for (const eds_RecordInfo* kind : kinds) eds_addColumns(engine, *kind);
  writeRecords(engine, kinds);
  writeNames(engine);
  writeViews(engine, kinds);
}
