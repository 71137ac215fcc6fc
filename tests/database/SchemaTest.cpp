#include "database/KvoObjDocument.h"
#include "database/KvoSimPosition.h"
#include "database/engine/eds_Engine.h"
#include "database/engine/eds_Format.h"
#include "database/engine/eds_Store.h"
#include "database/schema/eds_Schema.h"
#include "tests/database/TemporaryFolder.h"
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

namespace {

std::vector<std::string> linesOf(const std::string& file) {
  std::ifstream stream(std::string(INPS_TESTS_DIR) + "/" + file);
  EXPECT_TRUE(stream) << file;
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

// What a reference refers to, a symbol is one of; "-" for other fields.
std::string_view targetOf(const eds_FieldInfo& field) {
  if (field.type == eds_FieldType::Ref) return eds_schemaRecord(field.target)->name;
  return field.type == eds_FieldType::Symbol ? eds_vocabularyName(field.vocabulary) : "-";
}

// The schema as this program has it, in the words of the frozen copy and in its order.
std::vector<std::string> currentSchema() {
  const char* types[] = {"Int", "Real", "Bool", "Text", "Bytes", "Symbol", "Ref", "AnyRef"};
  const char* shapes[] = {"One", "Set", "List", "IntMap", "TextMap"};
  std::vector<std::string> rows;
  auto add = [&](auto... words) {
    std::ostringstream row;
    ((row << words << ' '), ...);
    rows.push_back(row.str());
    rows.back().pop_back();
  };
  std::vector<eds_RecordInfo> records(eds_schemaRecords().begin(), eds_schemaRecords().end());
  std::ranges::stable_sort(records, {}, &eds_RecordInfo::kind);
  for (const eds_RecordInfo& record : records) {
    add("record", record.name, static_cast<int>(record.kind), record.table);
    for (size_t i = 0; i < record.fields.size(); ++i)
      add("field", record.name, i, record.fields[i].name, record.fields[i].column,
          types[static_cast<int>(record.fields[i].type)], targetOf(record.fields[i]));
  }
  for (const eds_MemberInfo& member : eds_schemaMembers())
    add("member", member.name, static_cast<int>(member.member),
        shapes[static_cast<int>(member.shape)], member.firstTarget, member.lastTarget,
        member.isAlone ? "Alone" : "Shared");
  for (const eds_CollectionInfo& collection : eds_schemaCollections())
    add("collection", collection.name, static_cast<int>(collection.kind));
  for (const eds_SymbolInfo& symbol : eds_schemaSymbols())
    add("symbol", eds_vocabularyName(symbol.vocabulary), symbol.number, symbol.name);
  return rows;
}

} // namespace

// Files outlive programs: what a number meant once it means for ever. Rows may be added to the
// schema, and with it to this copy; a row of the copy that is no longer there breaks every file
// written before. With INPS_FREEZE in the environment rows are added to the copy, and none is taken
// away.
TEST(Schema, FrozenCopyIsTheSchema) {
  const std::vector<std::string> rows = currentSchema();
  const std::set<std::string> current(rows.begin(), rows.end());
  EXPECT_EQ(current.size(), rows.size()) << "a row stands twice";
  const std::vector<std::string> lines = linesOf("database/frozen_schema.txt");
  const std::set<std::string> frozen(lines.begin(), lines.end());
  if (std::getenv("INPS_FREEZE") && std::ranges::includes(current, frozen)) {
    std::ofstream copy(std::string(INPS_TESTS_DIR) + "/database/frozen_schema.txt");
    for (const std::string& row : rows) copy << row << '\n';
    return;
  }
  EXPECT_EQ(frozen.size(), lines.size()) << "a row stands twice in the frozen copy";
  EXPECT_GT(frozen.size(), 200u);
  for (const std::string& row : frozen) EXPECT_TRUE(current.contains(row)) << "gone: " << row;
  for (const std::string& row : current)
    EXPECT_TRUE(frozen.contains(row)) << "tests/database/frozen_schema.txt lacks: " << row;
}

TEST(Schema, NumbersAndNamesAreUnique) {
  std::set<std::string_view> tables, symbols;
  std::set<int> numbers, members;
  for (const eds_RecordInfo& record : eds_schemaRecords()) {
    EXPECT_TRUE(tables.insert(record.table).second) << record.table;
    EXPECT_TRUE(numbers.insert(static_cast<int>(record.kind)).second)
        << record.name << " has the number of another kind: " << static_cast<int>(record.kind);
    std::set<std::string_view> columns{"id"};
    for (const eds_FieldInfo& field : record.fields)
      EXPECT_TRUE(columns.insert(field.column).second) << record.table << "." << field.column;
  }
  for (const eds_MemberInfo& member : eds_schemaMembers())
    EXPECT_TRUE(members.insert(static_cast<int>(member.member)).second) << member.name;
  int number = 0;
  eds_Vocabulary last{};
  for (const eds_SymbolInfo& symbol : eds_schemaSymbols()) {
    EXPECT_TRUE(symbols.insert(symbol.name).second) << symbol.name;
    number = symbol.vocabulary == last ? number + 1 : 0;
    last = symbol.vocabulary;
    EXPECT_EQ(symbol.number, number) << symbol.name;
  }
}

TEST(Schema, TypeIdentifiersNameWhatExists) {
  struct Case {
    int fragment, index;
    eds_TypeID expected;
  };
  const Case cases[] = {{1, 3, eds_RecordKind::Part},
                        {2, 1, eds_CollectionKind::Node},
                        {3, 2, eds_DataType::Connectivity},
                        {4, 1, eds_Member::Mesh},
                        {5, 1, eds_Vocabulary::DofType},
                        {1, 0, {}},
                        {1, 899, {}},
                        {0, 1, {}},
                        {6, 1, {}},
                        {1, -1, {}},
                        {1, 65536 + 3, {}}};
  for (const Case& each : cases)
    EXPECT_EQ(eds_InputFragmentTypeIndex(each.fragment, each.index), each.expected)
        << each.fragment << ", " << each.index;
}

namespace {

// Whether the documentation has the table, by its name or by the family of its kind:
// "| 110 to 129 | ... |".
class Documentation {
public:
  Documentation() {
    for (const std::string& line : linesOf("../docs/database.md")) {
      m_text += line + "\n";
      int first = 0, last = 0;
      if (std::sscanf(line.c_str(), "| %d to %d |", &first, &last) == 2)
        m_families.emplace_back(first, last);
    }
  }
  bool Names(std::string_view word) const {
    return m_text.find("`" + std::string(word) + "`") != std::string::npos;
  }
  bool Has(const std::string& table) const {
    if (Names(table)) return true;
    for (const eds_RecordInfo& record : eds_schemaRecords())
      if (record.table == table) return !eds_isOwnKind(record.kind) && HasFamilyOf(record.kind);
    return false;
  }

private:
  bool HasFamilyOf(eds_RecordKind kind) const {
    const int number = static_cast<int>(kind);
    for (const auto& [first, last] : m_families)
      if (number >= first && number <= last) return true;
    return false;
  }
  std::string m_text;
  std::vector<std::pair<int, int>> m_families;
};

} // namespace

// What a stranger follows from an owner to its keywords; those by name go without saying.
TEST(Schema, MembersAreDocumented) {
  const Documentation documentation;
  for (const eds_MemberInfo& member : eds_schemaMembers()) {
    const bool isByName = member.shape == eds_MemberShape::TextMap;
    if (member.isAlone && !isByName) {
      EXPECT_TRUE(documentation.Names(member.name))
          << "docs/database.md does not name the member " << member.name;
    }
  }
}

// Every view answers, every table is described in the documentation, and the file explains itself.
TEST(Schema, FileIsReadableForPeople) {
  const TemporaryFolder folder;
  {
    KvoObjDocument document = KvoObjDocument::Create(folder / "m.sim");
    KvoSimTransaction transaction(document.ContextID());
    const KvoSimPosition part = document.CreateDataRecord(eds_RecordKind::Part);
    part.DataRecord().SetString(eds_Part_Name, "Bracket");
    const KvoSimPosition instance = document.CreateDataRecord(eds_RecordKind::Instance);
    instance.DataRecord().SetReference(eds_Instance_Part, part);
    const KvoSimPosition keyword = document.CreateDataRecord(eds_RecordKind::VerbatimKeyword);
    keyword.DataRecord().SetReference(eds_VerbatimKeyword_Owner, part);
    keyword.DataRecord().SetSymb(eds_VerbatimKeyword_Level, "LEVEL_PART");
    for (const eds_RecordInfo& record : eds_schemaRecords())
      document.ContextID().store->Rows(record.kind).Create();
    transaction.Commit();
    document.Finish();
  }
  eds_Engine engine;
  engine.Open(folder / "m.sim", eds_OpenMode::ReadOnly);
  const Documentation documentation;
  eds_Statement tables(engine, "SELECT name, type FROM sqlite_schema WHERE type <> 'index'");
  int views = 0;
  while (tables.Step()) {
    const std::string name(tables.Text(0));
    eds_Statement all(engine, "SELECT * FROM " + eds_sqlName(name));
    while (all.Step()) {
    }
    views += tables.Text(1) == "view";
    const bool told = tables.Text(1) == "view" || documentation.Has(name);
    EXPECT_TRUE(told) << name << " is not documented";
  }
  EXPECT_EQ(views, static_cast<int>(eds_schemaRecords().size()) + 1 + 8); // of names, and joined
  auto one = [&](const char* sql) {
    eds_Statement row(engine, sql);
    return row.Step() ? std::string(row.Text(0)) : std::string();
  };
  EXPECT_EQ(one("SELECT part_name FROM v_instance WHERE id = 1"), "Bracket");
  EXPECT_EQ(one("SELECT owner_name || ' ' || owner_kind || ' ' || level FROM v_verbatim_keyword "
                "WHERE id = 1"),
            "Bracket Part LEVEL_PART");
  EXPECT_EQ(one("SELECT column_name FROM schema_field WHERE record = 4 AND number = 14"),
            "rotation_angle");
  EXPECT_EQ(engine.QueryInt("PRAGMA application_id"), eds_applicationID);
}
