// A model that somebody has damaged: the bytes are edits of one of a few sound models, and every
// command that reads a model must end with an answer or refuse with one of the types of
// eds_Exception.h. Edits go to the values of records and arrays, as a stranger with a database
// program would make them, and to the file's bytes, as a bad disk would.

#include "base/utl_Assert.h"
#include "base/utl_Exception.h"
#include "base/utl_File.h"
#include "base/utl_Threads.h"
#include "database/eds_Exception.h"
#include "database/engine/eds_ChunkStore.h"
#include "database/engine/eds_Format.h"
#include "database/engine/eds_PageChecksums.h"
#include "database/engine/eds_StoredSchema.h"
#include "host/inps_Arguments.h"
#include "host/inps_Session.h"
#include <bit>
#include <cstring>
#include <fstream>
#include <iterator>
#include <ostream>
#include <sstream>

namespace {

namespace fs = std::filesystem;

// ---- the input

// The fuzzer's bytes one after the other; zeros when they have ended.
class Input {
public:
  Input(const std::uint8_t* bytes, std::size_t size) : m_bytes(bytes), m_left(size) {}
  bool IsAtEnd() const { return m_left == 0; }

  template <class Value> Value Take() {
    Value value{};
    const std::size_t size = std::min(sizeof value, m_left);
    std::memcpy(&value, m_bytes, size);
    m_bytes += size;
    m_left -= size;
    return value;
  }

  // One of `count` things.
  std::size_t Choose(std::size_t count) { return Take<std::uint16_t>() % count; }

  // Small, as they stand in most fields, or any, or at the edges.
  int64_t Integer() {
    static constexpr int64_t edges[] = {
        INT64_MAX,        INT64_MIN, INT32_MAX, INT32_MIN, int64_t{INT32_MAX} + 1,
        int64_t{1} << 40, 0xffff};
    switch (Take<std::uint8_t>() % 4) {
    case 0:
      return Take<int64_t>();
    case 1:
      return edges[Choose(std::size(edges))];
    default:
      return Take<std::int8_t>();
    }
  }

  cow_String Text() {
    cow_String text(Take<std::uint8_t>() % 24, ' ');
    for (char& c : text) c = Take<char>();
    return text;
  }

private:
  const std::uint8_t* m_bytes;
  std::size_t m_left;
};

// ---- the sound models

struct Table {
  const eds_RecordInfo* info;
  int64_t rows;
};

struct Model {
  cow_String bytes;
  std::vector<Table> tables;                       // those with records
  std::vector<std::pair<int64_t, int64_t>> chunks; // id, length
};

class Discard : public std::streambuf {
  int overflow(int c) override { return c == EOF ? 0 : c; }
  std::streamsize xsputn(const char*, std::streamsize size) override { return size; }
};

struct Files {
  fs::path folder = fs::temp_directory_path();
  fs::path damaged = utl_temporaryBeside(folder / "inps_damaged.sim");
  fs::path sound = utl_temporaryBeside(folder / "inps_sound.sim");
};

const Files& files() {
  static const Files all;
  return all;
}

cow_String contentOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return cow_String(std::istreambuf_iterator<char>(file), {});
}

void store(const fs::path& path, const cow_String& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  utl_ASSERT(file.good());
}

// Not inps_main: that one turns every failure into words.
void run(const cow_List<cow_String>& words) {
  Discard nowhere;
  std::ostream out(&nowhere);
  inps_Session session{out, out};
  const inps_Command* command = inps_findCommand(words.front());
  inps_Arguments arguments;
  utl_ASSERT(arguments.Read(*command, std::span(words).subspan(1)).empty());
  command->run(session, arguments);
}

Model makeModel(const char* deck) {
  const cow_String path = utl_pathText(files().sound);
  run({"convert", INPS_ROOT_DIR + cow_String("/") + deck, "-o", path, "--force", "--quiet"});
  Model model;
  model.bytes = contentOf(files().sound);
  utl_ASSERT(!model.bytes.empty());
  eds_Engine engine;
  engine.Open(files().sound, eds_OpenMode::ReadOnly);
  eds_StoredSchema stored;
  stored.Read(engine);
  for (const eds_RecordInfo& info : eds_schemaRecords()) {
    if (stored.Columns(info.table) == nullptr) continue;
    const cow_String count = "SELECT count(*) FROM " + eds_sqlName(info.table);
    if (const int64_t rows = engine.QueryInt(count.c_str())) model.tables.push_back({&info, rows});
  }
  eds_Statement chunks(engine, "SELECT id, length(data) FROM chunk ORDER BY id");
  while (chunks.Step())
    if (chunks.Int(1) > 0) model.chunks.emplace_back(chunks.Int(0), chunks.Int(1));
  return model;
}

const std::vector<Model>& models() {
  static const std::vector<Model> all = [] {
    std::vector<Model> made;
    for (const char* deck :
         {"examples/assembly.inp", "examples/materials.inp", "tests/decks/surfaces/combine.inp",
          "tests/decks/materials/viscoelasticity.inp", "tests/decks/amplitudes/kinds.inp"})
      made.push_back(makeModel(deck));
    return made;
  }();
  return all;
}

// ---- the damage

void bindValue(eds_Statement& statement, const eds_FieldInfo& field, Input& input,
               const cow_String& text) {
  if (field.type == eds_FieldType::Text)
    statement.BindText(1, text);
  else if (field.type == eds_FieldType::Bytes)
    statement.BindBytes(1, std::as_bytes(std::span(text)));
  else if (field.type == eds_FieldType::Real)
    statement.Bind(1, std::bit_cast<double>(input.Integer()));
  else
    statement.Bind(1, input.Integer());
}

void editValue(eds_Engine& engine, const Model& model, Input& input) {
  const Table& table = model.tables[input.Choose(model.tables.size())];
  if (table.info->fields.empty()) return;
  const eds_FieldInfo& field = table.info->fields[input.Choose(table.info->fields.size())];
  const std::size_t row = 1 + input.Choose(static_cast<std::size_t>(table.rows));
  cow_String column(field.column);
  const std::uint8_t way = input.Take<std::uint8_t>();
  if (field.type == eds_FieldType::AnyRef && way % 2 != 0) column += "_kind";
  const cow_String update = "UPDATE " + eds_sqlName(table.info->table) + " SET " +
                            eds_sqlName(column) + " = ? WHERE id = " + std::to_string(row);
  const bool isText = field.type == eds_FieldType::Text || field.type == eds_FieldType::Bytes;
  const cow_String text = isText ? input.Text() : cow_String(); // bound without a copy
  eds_Statement statement(engine, update);
  if (way % 16 == 0)
    statement.BindNull(1);
  else
    bindValue(statement, field, input, text);
  statement.Run();
}

void removeRow(eds_Engine& engine, const Model& model, Input& input) {
  const Table& table = model.tables[input.Choose(model.tables.size())];
  const std::size_t row = 1 + input.Choose(static_cast<std::size_t>(table.rows));
  engine.Execute(
      ("DELETE FROM " + eds_sqlName(table.info->table) + " WHERE id = " + std::to_string(row))
          .c_str());
}

// With the checksum that fits: what is in an array is not to be trusted either.
void editChunk(eds_Engine& engine, const Model& model, Input& input) {
  if (model.chunks.empty()) return;
  const auto [id, length] = model.chunks[input.Choose(model.chunks.size())];
  eds_Statement select(engine, "SELECT data FROM chunk WHERE id = " + std::to_string(id));
  if (!select.Step()) return;
  const std::span<const std::byte> data = select.Bytes(0);
  std::vector<std::byte> bytes(data.begin(), data.end());
  select.Reset();
  const bool wide = input.Take<std::uint8_t>() % 2 != 0 && bytes.size() >= 8;
  const std::size_t size = std::min<std::size_t>(wide ? 8 : 4, bytes.size());
  const std::size_t at = input.Choose(bytes.size() / size) * size;
  const int64_t value = input.Integer();
  std::memcpy(bytes.data() + at, &value, size);
  eds_ChunkStore(engine).Write(id / eds_mostChunks, id % eds_mostChunks, bytes);
}

void patch(cow_String& bytes, Input& input) {
  const std::size_t at = input.Take<std::uint32_t>() % bytes.size();
  const std::size_t size = 1 + input.Take<std::uint8_t>() % 8;
  for (std::size_t i = 0; i < size && at + i < bytes.size(); ++i)
    bytes[at + i] = input.Take<char>();
}

void stampPages(cow_String& bytes) {
  constexpr std::size_t small = eds_pageSizeOf(eds_ModelSize::Small);
  constexpr std::size_t large = eds_pageSizeOf(eds_ModelSize::Large);
  const std::size_t pageSize = bytes[16] == small >> 8 ? small : large;
  for (std::size_t at = 0; at + pageSize <= bytes.size(); at += pageSize) {
    auto* page = reinterpret_cast<std::byte*>(bytes.data() + at);
    eds_stampPage({page, pageSize}, static_cast<int64_t>(at));
  }
}

void damage(const Model& model, Input& input) {
  store(files().damaged, model.bytes);
  Input patches(nullptr, 0);
  {
    eds_Engine engine;
    engine.Open(files().damaged, eds_OpenMode::Durable);
    engine.Execute("PRAGMA journal_mode = OFF");
    engine.Execute("PRAGMA synchronous = OFF");
    engine.BeginWrite();
    while (!input.IsAtEnd()) {
      const std::uint8_t what = input.Take<std::uint8_t>() % 8;
      if (what == 7) { // the rest is for the file
        std::swap(patches, input);
        break;
      }
      if (what == 0) removeRow(engine, model, input);
      if (what == 1 || what == 2) editChunk(engine, model, input);
      if (what > 2) editValue(engine, model, input);
    }
    engine.CommitPhysical();
  }
  if (patches.IsAtEnd()) return;
  cow_String bytes = contentOf(files().damaged);
  const bool knowsChecksums = patches.Take<std::uint8_t>() % 4 != 0;
  while (!patches.IsAtEnd()) patch(bytes, patches);
  if (knowsChecksums) stampPages(bytes);
  store(files().damaged, bytes);
}

void readByAll() {
  const cow_String damaged = utl_pathText(files().damaged);
  const cow_String sound = utl_pathText(files().sound);
  for (const cow_List<cow_String>& words : {cow_List<cow_String>{"check", damaged},
                                            {"info", damaged},
                                            {"dump", damaged},
                                            {"write", damaged},
                                            {"diff", sound, damaged}}) {
    try {
      run(words);
    } catch (const eds_Exception&) { // a clear refusal; anything else is a finding
    }
  }
}

} // namespace

// On one thread the same seed tries much the same inputs, and no time goes into waking others.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  utl_setThreadCount(1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  Input input(bytes, size);
  const Model& model = models()[input.Choose(models().size())];
  try {
    damage(model, input);
  } catch (const eds_Exception&) { // the engine does not take the edit
    return 0;
  }
  store(files().sound, model.bytes);
  readByAll();
  fs::path journal = files().damaged;
  journal += "-journal";
  utl_removeFile(journal);
  return 0;
}
