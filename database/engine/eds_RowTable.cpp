#include "database/engine/eds_RowTable.h"
#include "base/utl_Assert.h"
#include "base/utl_File.h"
#include "database/eds_Exception.h"
#include "database/engine/eds_Format.h"
#include <algorithm>
#include <bit>
#include <cmath>

eds_RowTable::eds_RowTable(const eds_RecordInfo& info, eds_Engine& engine,
                           std::vector<Dirty>& dirty)
    : m_info(info), m_engine(engine), m_dirty(dirty), m_stride(info.fields.size() + 1) {
  utl_ASSERT(info.fields.size() < 64); // the present bits are one word
}

// ---- rows

size_t eds_RowTable::AppendRow() {
  m_words.resize((m_flags.size() + 1) * m_stride);
  m_flags.push_back(0);
  return m_flags.size();
}

int64_t eds_RowTable::Create() {
  const auto id = static_cast<int64_t>(AppendRow());
  m_flags[Row(id)] = unwritten;
  MarkDirty(id);
  return id;
}

void eds_RowTable::Remove(int64_t id) {
  utl_ASSERT(Has(id));
  MarkDirty(id);
  m_flags[Row(id)] |= removed;
  ++m_removedCount;
}

void eds_RowTable::MarkDirty(int64_t id) {
  uint8_t& flags = m_flags[Row(id)];
  if ((flags & dirty) != 0) return;
  if (Row(id) < m_settled.rows) KeepBefore(id);
  m_dirty.push_back({this, id});
  flags |= dirty;
}

// ---- what is committed

template <class Use> void eds_RowTable::ForEachText(int64_t id, Use use) {
  for (size_t field = 0; field < m_info.fields.size(); ++field) {
    const eds_FieldType type = m_info.fields[field].type;
    if (type != eds_FieldType::Text && type != eds_FieldType::Bytes) continue;
    if (!IsNull(id, static_cast<int>(field))) use(m_texts[Words(id)[field + 1]]);
  }
}

void eds_RowTable::KeepBefore(int64_t id) {
  Before before{id, m_flags[Row(id)], {Words(id), Words(id) + m_stride}, {}};
  ForEachText(id, [&](const std::string& text) { before.texts.push_back(text); });
  m_before.push_back(std::move(before));
}

void eds_RowTable::Undo() {
  for (Before& before : m_before) {
    std::ranges::copy(before.words, m_words.data() + Row(before.id) * m_stride);
    m_flags[Row(before.id)] = before.flags;
    auto text = before.texts.begin();
    ForEachText(before.id, [&](std::string& place) { place = std::move(*text++); });
  }
  m_before.clear();
  m_flags.resize(m_settled.rows);
  m_words.resize(m_settled.rows * m_stride);
  m_texts.resize(m_settled.texts);
  m_removedCount = m_settled.removed;
}

void eds_RowTable::SettleAll() {
  m_settled = {m_flags.size(), m_texts.size(), m_removedCount};
  m_before.clear();
}

void eds_RowTable::Settle(int64_t id) {
  m_flags[Row(id)] &= static_cast<uint8_t>(~(dirty | unwritten));
  SettleAll();
}

// ---- fields

const eds_FieldInfo& eds_RowTable::Field(int field) const {
  utl_ASSERT(field >= 0 && field < static_cast<int>(m_info.fields.size()));
  return m_info.fields[static_cast<size_t>(field)];
}

uint64_t& eds_RowTable::Word(int64_t id, int field) {
  utl_ASSERT(Has(id));
  MarkDirty(id);
  uint64_t* words = m_words.data() + Row(id) * m_stride;
  words[0] |= uint64_t{1} << field;
  return words[field + 1];
}

int64_t eds_RowTable::Int(int64_t id, int field) const {
  const eds_FieldInfo& info = Field(field);
  utl_ASSERT(info.type == eds_FieldType::Int || info.type == eds_FieldType::Bool ||
             info.type == eds_FieldType::Symbol);
  utl_ASSERT(Has(id));
  return IsNull(id, field) ? info.intDefault : static_cast<int64_t>(Words(id)[field + 1]);
}

double eds_RowTable::Real(int64_t id, int field) const {
  utl_ASSERT(Field(field).type == eds_FieldType::Real);
  utl_ASSERT(Has(id));
  return IsNull(id, field) ? Field(field).realDefault : std::bit_cast<double>(Words(id)[field + 1]);
}

std::string_view eds_RowTable::Text(int64_t id, int field) const {
  const eds_FieldInfo& info = Field(field);
  utl_ASSERT(info.type == eds_FieldType::Text || info.type == eds_FieldType::Bytes);
  utl_ASSERT(Has(id));
  if (IsNull(id, field)) return info.textDefault;
  return m_texts[static_cast<size_t>(Words(id)[field + 1])];
}

eds_ObjectID eds_RowTable::Reference(int64_t id, int field) const {
  const eds_FieldInfo& info = Field(field);
  utl_ASSERT(info.type == eds_FieldType::Ref || info.type == eds_FieldType::AnyRef);
  utl_ASSERT(Has(id));
  return IsNull(id, field) ? eds_ObjectID() : eds_ObjectID::Unpacked(Words(id)[field + 1]);
}

void eds_RowTable::SetInt(int64_t id, int field, int64_t value) {
  [[maybe_unused]] const eds_FieldInfo& info = Field(field);
  utl_ASSERT(info.type == eds_FieldType::Int || info.type == eds_FieldType::Bool ||
             info.type == eds_FieldType::Symbol);
  Word(id, field) = static_cast<uint64_t>(value);
}

void eds_RowTable::SetReal(int64_t id, int field, double value) {
  utl_ASSERT(Field(field).type == eds_FieldType::Real);
  // The file has no such number either: whoever reads finds the same before and after it.
  if (std::isnan(value)) return Unset(id, field);
  Word(id, field) = std::bit_cast<uint64_t>(value);
}

std::string& eds_RowTable::PoolText(int64_t id, int field) {
  utl_ASSERT(Has(id));
  if (IsNull(id, field)) {
    m_texts.emplace_back();
    Word(id, field) = m_texts.size() - 1;
  }
  return m_texts[static_cast<size_t>(Word(id, field))];
}

void eds_RowTable::SetText(int64_t id, int field, std::string_view value) {
  [[maybe_unused]] const eds_FieldInfo& info = Field(field);
  utl_ASSERT(info.type == eds_FieldType::Text || info.type == eds_FieldType::Bytes);
  PoolText(id, field).assign(value);
}

void eds_RowTable::SetReference(int64_t id, int field, eds_ObjectID target) {
  const eds_FieldInfo& info = Field(field);
  utl_ASSERT(info.type == eds_FieldType::Ref || info.type == eds_FieldType::AnyRef);
  if (target.IsNull()) return Unset(id, field);
  utl_ASSERT(info.type == eds_FieldType::AnyRef || info.target == target.RecordKind());
  Word(id, field) = target.Packed();
}

void eds_RowTable::Unset(int64_t id, int field) {
  Field(field);
  utl_ASSERT(Has(id));
  if (IsNull(id, field)) return;
  Word(id, field) = 0; // a text's place in the pool stays unused
  m_words[Row(id) * m_stride] &= ~(uint64_t{1} << field);
}

// ---- the file

void eds_RowTable::SetEmpty() {
  Forget();
  m_loaded = true;
}

void eds_RowTable::Forget() {
  m_words = {};
  m_flags = {};
  m_texts = {};
  m_waiting = {};
  m_removedCount = 0;
  m_loaded = false;
  SettleAll();
}

void eds_RowTable::SetStoredColumns(std::vector<cow_String> columns) {
  m_stored = std::move(columns);
  m_hasTable = false;
}

void eds_RowTable::Damaged(const cow_String& what) const {
  throw eds_DamagedFileException("\"" + utl_pathText(m_engine.File()) + "\" is damaged: table " +
                                 cow_String(m_info.table) + ": " + what);
}

namespace {

bool isStored(const std::vector<cow_String>& stored, std::string_view column) {
  return std::find(stored.begin(), stored.end(), column) != stored.end();
}

} // namespace

namespace {
constexpr int64_t fewMissing = 100'000;
} // namespace

void eds_RowTable::Load() {
  Forget();
  if (!m_stored.empty()) LoadRows(); // else a kind of which the file never had a record
  m_loaded = true;
  SettleAll();
}

void eds_RowTable::LoadRows() {
  cow_String sql = "SELECT id";
  std::vector<int> columnOf(m_info.fields.size(), -1);
  int columns = 1;
  for (size_t field = 0; field < m_info.fields.size(); ++field) {
    const eds_FieldInfo& info = m_info.fields[field];
    if (!isStored(m_stored, info.column)) continue;
    columnOf[field] = columns++;
    if (info.type == eds_FieldType::AnyRef) {
      sql += ", " + eds_sqlName(cow_String(info.column) + "_kind");
      ++columns;
    }
    sql += ", " + eds_sqlName(info.column);
  }
  eds_Statement rows(m_engine, sql + " FROM " + eds_sqlName(m_info.table) + " ORDER BY id");
  int64_t count = 0;
  int64_t mostMissing = fewMissing;
  while (rows.Step()) {
    const int64_t id = rows.Int(0);
    const int64_t missing = id - ++count;
    if (missing > mostMissing && mostMissing == fewMissing) mostMissing = MostMissing();
    if (rows.ColumnType(0) != eds_Statement::Type::Int || id <= LastID() || missing > mostMissing)
      Damaged("record number " + std::to_string(id));
    LoadRow(rows, columnOf);
  }
}

// Numbers are missing only where records were removed, and those that came instead are there; a
// file that skips far would have us reserve memory for nothing.
int64_t eds_RowTable::MostMissing() {
  const cow_String sql = "SELECT count(*) FROM " + eds_sqlName(m_info.table);
  return fewMissing + 100 * m_engine.QueryInt(sql.c_str());
}

int64_t eds_RowTable::LoadRow(eds_Statement& row, const std::vector<int>& columnOf) {
  const int64_t id = row.Int(0);
  while (LastID() < id) {
    AppendRow();
    if (LastID() == id) break;
    m_flags.back() = removed;
    ++m_removedCount;
  }
  for (size_t field = 0; field < columnOf.size(); ++field) {
    if (columnOf[field] >= 0) LoadField(row, columnOf[field], id, static_cast<int>(field));
  }
  return id;
}

void eds_RowTable::LoadField(eds_Statement& row, int column, int64_t id, int field) {
  using Type = eds_Statement::Type;
  const eds_FieldInfo& info = Field(field);
  const Type type = row.ColumnType(column);
  if (type == Type::Null) return;
  auto expect = [&](Type expected) {
    if (type != expected) Damaged("column " + cow_String(info.column));
  };
  uint64_t word = 0;
  switch (info.type) {
  case eds_FieldType::Int:
    expect(Type::Int);
    word = static_cast<uint64_t>(row.Int(column));
    break;
  case eds_FieldType::Bool:
  case eds_FieldType::Symbol: {
    expect(Type::Int);
    const int64_t value = row.Int(column);
    const int64_t most = info.type == eds_FieldType::Bool ? 1 : 0xffff;
    if (value < 0 || value > most) Damaged("column " + cow_String(info.column));
    word = static_cast<uint64_t>(value);
    break;
  }
  case eds_FieldType::Real:
    expect(Type::Real);
    word = std::bit_cast<uint64_t>(row.Real(column));
    break;
  case eds_FieldType::Text:
  case eds_FieldType::Bytes:
    expect(info.type == eds_FieldType::Text ? Type::Text : Type::Bytes);
    word = m_texts.size();
    if (info.type == eds_FieldType::Text) {
      m_texts.emplace_back(row.Text(column));
    } else {
      const std::span<const std::byte> bytes = row.Bytes(column);
      m_texts.emplace_back(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    }
    break;
  case eds_FieldType::Ref:
  case eds_FieldType::AnyRef: {
    eds_ObjectID target(info.target, 0);
    if (info.type == eds_FieldType::AnyRef) {
      const int64_t kind = row.Int(column);
      if (row.ColumnType(column) != Type::Int || kind < 1 || kind > 0xffff)
        Damaged("column " + cow_String(info.column));
      target.kind = static_cast<uint16_t>(kind);
      ++column;
    }
    target.id = row.Int(column);
    if (row.ColumnType(column) != Type::Int || target.id < 1 || target.id > 0xffffffffffffLL)
      Damaged("column " + cow_String(info.column));
    word = target.Packed();
    break;
  }
  }
  uint64_t* words = m_words.data() + Row(id) * m_stride;
  words[0] |= uint64_t{1} << field;
  words[field + 1] = word;
}

cow_String eds_RowTable::InsertText(int rows) const {
  cow_String columns = "id";
  cow_String values = "(?";
  for (const eds_FieldInfo& field : m_info.fields) {
    if (field.type == eds_FieldType::AnyRef) {
      columns += ", " + eds_sqlName(cow_String(field.column) + "_kind");
      values += ", ?";
    }
    columns += ", " + eds_sqlName(field.column);
    values += ", ?";
  }
  values += ")";
  cow_String text =
      "INSERT OR REPLACE INTO " + eds_sqlName(m_info.table) + " (" + columns + ") VALUES " + values;
  for (int row = 1; row < rows; ++row) text += ", " + values;
  return text;
}

void eds_RowTable::BindField(eds_Statement& statement, int& parameter, int64_t id, int field) {
  const eds_FieldInfo& info = m_info.fields[static_cast<size_t>(field)];
  if (IsNull(id, field)) {
    if (info.type == eds_FieldType::AnyRef) statement.BindNull(parameter++);
    return statement.BindNull(parameter++);
  }
  const uint64_t word = Words(id)[field + 1];
  switch (info.type) {
  case eds_FieldType::Int:
  case eds_FieldType::Bool:
  case eds_FieldType::Symbol:
    statement.Bind(parameter++, static_cast<int64_t>(word));
    break;
  case eds_FieldType::Real:
    statement.Bind(parameter++, std::bit_cast<double>(word));
    break;
  case eds_FieldType::Text:
    statement.BindText(parameter++, m_texts[word]);
    break;
  case eds_FieldType::Bytes:
    statement.BindBytes(parameter++, std::as_bytes(std::span(m_texts[word])));
    break;
  case eds_FieldType::AnyRef:
    statement.Bind(parameter++, int64_t{eds_ObjectID::Unpacked(word).kind});
    [[fallthrough]];
  case eds_FieldType::Ref:
    statement.Bind(parameter++, eds_ObjectID::Unpacked(word).id);
    break;
  }
}

void eds_RowTable::Wait(int64_t id) {
  m_waiting.push_back(id);
}

void eds_RowTable::MakeTable() {
  const auto isThere = [this](int64_t id) { return Has(id); };
  if (m_hasTable || std::ranges::none_of(m_waiting, isThere)) return;
  if (m_stored.empty()) {
    eds_createTable(m_engine, m_info);
  } else {
    eds_addColumns(m_engine, m_info);
  }
  m_hasTable = true;
}

// A statement costs the engine more than a row does.
void eds_RowTable::Write() {
  constexpr size_t many = 16;
  if (!m_hasTable && m_stored.empty())
    return m_waiting.clear(); // made and gone before it was there
  if (!std::is_sorted(m_waiting.begin(), m_waiting.end()))
    std::sort(m_waiting.begin(), m_waiting.end());
  m_waiting.erase(std::unique(m_waiting.begin(), m_waiting.end()), m_waiting.end());
  const auto gone = std::stable_partition(m_waiting.begin(), m_waiting.end(),
                                          [this](int64_t id) { return Has(id); });
  std::for_each(gone, m_waiting.end(), [this](int64_t id) { Delete(id); });
  m_waiting.erase(gone, m_waiting.end());
  std::span<const int64_t> left(m_waiting);
  for (; left.size() >= many; left = left.subspan(many)) Insert(m_insertMany, left.first(many));
  for (; !left.empty(); left = left.subspan(1)) Insert(m_insert, left.first(1));
  m_waiting.clear();
}

void eds_RowTable::Insert(eds_Statement*& statement, std::span<const int64_t> ids) {
  if (statement == nullptr) statement = &m_engine.Prepare(InsertText(static_cast<int>(ids.size())));
  const int fields = static_cast<int>(m_info.fields.size());
  int parameter = 1;
  for (const int64_t id : ids) {
    statement->Bind(parameter++, id);
    for (int field = 0; field < fields; ++field) BindField(*statement, parameter, id, field);
  }
  statement->Run();
}

void eds_RowTable::Delete(int64_t id) {
  if (m_delete == nullptr)
    m_delete = &m_engine.Prepare("DELETE FROM " + eds_sqlName(m_info.table) + " WHERE id = ?");
  m_delete->Bind(1, id);
  m_delete->Run();
}
