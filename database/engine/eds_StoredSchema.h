#pragma once

#include "database/eds_Type.h"
#include "database/engine/eds_Engine.h"
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

// The tables of a file and their columns, from one look at the statements that the file keeps of
// its schema.
//
// The engine runs what a schema says when a table is read, checked or written: expressions of
// indexes, of generated columns and of defaults, checks, triggers. A model has none of these, and a
// stranger's may hold them to keep us busy for hours. So each statement must have the form that our
// own have: a table of columns with a type and nothing else. A file with any other is refused
// before anything of it is read. What a newer version adds (tables and columns of that form) is let
// be, and so are views: nothing here reads them.
class eds_StoredSchema {
public:
  // Throws eds_NotOurFileException for what is no schema of a model.
  void Read(eds_Engine& engine);
  bool IsRead() const { return !m_tables.empty(); }
  void Forget() { m_tables.clear(); }
  // Throws eds_NotOurFileException when one of the tables is not there.
  void Require(std::span<const std::string_view> tables) const;
  std::vector<eds_RecordKind> Kinds() const; // those of ours that have a table
  // Of one table, in their order; null: there is no such table.
  const std::vector<cow_String>* Columns(std::string_view table) const;

private:
  [[noreturn]] void Refuse(const cow_String& why) const;
  void ReadTables(eds_Engine& engine);

  std::filesystem::path m_file; // that was read
  std::unordered_map<cow_String, std::vector<cow_String>> m_tables;
};
