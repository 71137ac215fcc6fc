#include "base/utl_Interruption.h"
#include "database/KvoObjDocument.h"
#include "database/KvoObjModel.h"
#include "database/eds_Array.h"
#include "database/eds_CheckRecords.h"
#include "database/eds_Exception.h"
#include "database/eds_ModelReader.h"
#include "database/engine/eds_Engine.h"
#include "database/engine/eds_Format.h"
#include "database/engine/eds_PageChecksums.h"
#include "tests/database/TemporaryFolder.h"
#include <cstring>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <sqlite3.h>
#if defined(__unix__)
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

namespace fs = std::filesystem;

void writeText(const fs::path& file, const std::string& text) {
  std::ofstream(file, std::ios::binary) << text;
}

void addRecord(const KvoObjDocument& document, int number) {
  KvoSimTransaction transaction(document.ContextID());
  const KvoSimPosition record = document.CreateDataRecord(eds_RecordKind::VerbatimKeyword);
  record.DataRecord().SetInt(eds_VerbatimKeyword_Position, number);
  record.DataRecord().SetString(eds_VerbatimKeyword_Keyword, "KEPT");
  record.DataRecord().SetString(eds_VerbatimKeyword_Text, "*KEPT\n");
  document.Focus().AssociateStringKey(eds_Member::Parts, std::to_string(number),
                                      document.CreateDataRecord(eds_RecordKind::Part));
  transaction.Commit();
}

void addArray(const KvoObjDocument& document, size_t values) {
  KvoSimTransaction transaction(document.ContextID());
  eds_ArrayWriter writer(document.Focus(), eds_ValueType::Double, 1);
  writer.Append(std::span<const double>(std::vector<double>(values, 3.5)));
  writer.Finish();
  transaction.Commit();
}

void makeModel(const fs::path& file, KvoSize size = KvoSize::Large) {
  KvoObjDocument document = KvoObjDocument::Create(file, size);
  for (int i = 0; i < 10; ++i) addRecord(document, i);
  addArray(document, 400000);
  document.Finish();
}

void patch(const fs::path& file, std::streamoff at, const std::string& bytes) {
  std::fstream stream(file, std::ios::binary | std::ios::in | std::ios::out);
  stream.seekp(at);
  stream << bytes;
}

std::string contentOf(const fs::path& file) {
  std::string content(fs::file_size(file), '\0');
  std::ifstream(file, std::ios::binary)
      .read(content.data(), static_cast<std::streamsize>(content.size()));
  return content;
}

size_t pageSizeOf(const std::string& bytes) {
  return static_cast<size_t>(static_cast<unsigned char>(bytes[16]) << 8 |
                             static_cast<unsigned char>(bytes[17]));
}

// What a stranger does who knows our checksums.
void stampPages(const fs::path& file) {
  std::string bytes = contentOf(file);
  size_t pageSize = pageSizeOf(bytes);
  if (pageSize != 4096) pageSize = 16384; // it may be damaged
  for (size_t at = 0; at + pageSize <= bytes.size(); at += pageSize) {
    auto* page = reinterpret_cast<std::byte*>(bytes.data() + at);
    eds_stampPage({page, pageSize}, static_cast<int64_t>(at));
  }
  writeText(file, bytes);
}

// A place of the file where this stands.
std::streamoff placeOf(const fs::path& file, std::string_view text) {
  const size_t at = contentOf(file).find(text);
  EXPECT_NE(at, std::string::npos);
  return static_cast<std::streamoff>(at);
}

void runSql(const fs::path& file, const char* sql) {
  eds_Engine engine;
  engine.Open(file, eds_OpenMode::Durable);
  engine.Execute(sql);
}

struct Refusal {
  const char* name;
  std::function<void(const fs::path&)> prepare; // a model stands there already
  const char* text;
  std::function<bool(const std::exception&)> isRightType;
};

template <class T> bool isA(const std::exception& e) {
  return dynamic_cast<const T*>(&e) != nullptr;
}

const Refusal refusals[] = {
    {"missing", [](const fs::path& f) { fs::remove(f); }, "no such file",
     isA<eds_FileAccessException>},
    {"folder",
     [](const fs::path& f) {
       fs::remove(f);
       fs::create_directory(f);
     },
     "a folder", isA<eds_FileAccessException>},
    {"empty", [](const fs::path& f) { writeText(f, ""); }, "not a model database: empty",
     isA<eds_NotOurFileException>},
    {"text", [](const fs::path& f) { writeText(f, "*HEADING\nA deck, not a model\n"); },
     "not a model database", isA<eds_NotOurFileException>},
    {"foreign", [](const fs::path& f) { patch(f, 68, std::string(4, '\1')); },
     "database of another program", isA<eds_NotOurFileException>},
    {"newer", [](const fs::path& f) { patch(f, 60, std::string("\0\0\0\x63", 4)); },
     "has format 99, written by a newer version", isA<eds_OtherFormatException>},
    {"older", [](const fs::path& f) { patch(f, 60, std::string("\0\0\0\2", 4)); },
     "has format 2, written by an older version", isA<eds_OtherFormatException>},
    {"half header", [](const fs::path& f) { fs::resize_file(f, 50); }, "truncated",
     isA<eds_DamagedFileException>},
    {"truncated", [](const fs::path& f) { fs::resize_file(f, fs::file_size(f) / 2); },
     "is truncated: ", isA<eds_DamagedFileException>},
    {"value of a record", [](const fs::path& f) { patch(f, placeOf(f, "*KEPT"), "*LOST"); },
     "does not match its checksum", isA<eds_DamagedFileException>},
    {"strayed page",
     [](const fs::path& f) {
       const std::string bytes = contentOf(f);
       const size_t page = pageSizeOf(bytes);
       patch(f, static_cast<std::streamoff>(2 * page), bytes.substr(page, bytes.size() - 2 * page));
     },
     "does not match its checksum", isA<eds_DamagedFileException>},
    {"pages of another size", [](const fs::path& f) { patch(f, 16, std::string("\x20\0", 2)); },
     "its pages are not what they should be", isA<eds_DamagedFileException>},
    {"no checksums", [](const fs::path& f) { patch(f, 20, std::string(1, '\0')); },
     "its pages are not what they should be", isA<eds_DamagedFileException>},
    {"journal of another form", [](const fs::path& f) { patch(f, 18, "\2\2"); },
     "was changed by another program", isA<eds_DamagedFileException>},
    {"view for table",
     [](const fs::path& f) {
       runSql(f, "DROP TABLE part; CREATE VIEW part AS SELECT 1 AS id, 'x' AS name");
     },
     "its schema holds the view part, which no model has", isA<eds_NotOurFileException>},
    {"finished without its schema", [](const fs::path& f) { runSql(f, "DROP TABLE schema_field"); },
     "it bears the mark of one, but has no table schema_field", isA<eds_NotOurFileException>},
    {"without a model's table", [](const fs::path& f) { runSql(f, "DROP TABLE chunk"); },
     "it bears the mark of one, but has no table chunk", isA<eds_NotOurFileException>},
    {"absurd number",
     [](const fs::path& f) { runSql(f, "INSERT INTO part (id, name) VALUES (1 << 40, 'x')"); },
     "table part: record number", isA<eds_DamagedFileException>},
};

} // namespace

TEST(File, RefusesWhatItCannotRead) {
  for (size_t n = 0; n < 2 * std::size(refusals); ++n) {
    const Refusal& refusal = refusals[n / 2];
    const TemporaryFolder folder;
    const fs::path file = folder / "m.sim";
    makeModel(file, n % 2 == 0 ? KvoSize::Small : KvoSize::Large);
    refusal.prepare(file);
    try {
      const KvoObjDocument document = KvoObjDocument::Open(file, KvoAccess::ReadOnly);
      eds_ModelReader(document).Kinds();
      eds_checkRecords(document);
      ADD_FAILURE() << refusal.name << ": opened";
    } catch (const eds_Exception& fault) {
      const std::string text = fault.what();
      EXPECT_NE(text.find(refusal.text), std::string::npos) << refusal.name << ": " << text;
      EXPECT_NE(text.find("m.sim"), std::string::npos) << text;
      EXPECT_EQ(text.find('\n'), std::string::npos) << text;
      EXPECT_TRUE(refusal.isRightType(fault)) << refusal.name;
    }
  }
}

// What stands in the tables is not to be trusted either.
TEST(File, CheckFindsWhatDoesNotFit) {
  struct Case {
    const char* sql;
    const char* text;
  };
  const Case cases[] = {
      {"UPDATE array SET count = count + 1", "its chunks do not make up its length"},
      {"UPDATE array SET count = 1 << 60", "not as it should be described"},
      {"UPDATE chunk SET checksum = 1 WHERE number = 2", "chunk 2 does not match its checksum"},
      {"DELETE FROM chunk WHERE number = 1", "its chunks do not make up its length"},
      {"DELETE FROM array", "chunks belong to no array"},
      {"UPDATE link SET target = 77 WHERE id = 3", "link 3, target: part 77 (missing)"},
      {"UPDATE link SET member = 4000 WHERE id = 2", "link 2: unknown member 4000"},
      {"UPDATE link SET text_key = '4' WHERE id = 1", "a second one to '4'"},
      {"UPDATE verbatim_keyword SET level = 50 WHERE id = 1", "level: no symbol 50"},
  };
  for (const Case& each : cases) {
    const TemporaryFolder folder;
    makeModel(folder / "m.sim");
    runSql(folder / "m.sim", each.sql);
    const KvoObjDocument document = KvoObjDocument::Open(folder / "m.sim", KvoAccess::ReadOnly);
    std::string faults;
    for (const cow_String& fault : eds_checkModel(document)) faults += fault + "\n";
    EXPECT_NE(faults.find(each.text), std::string::npos) << each.sql << "\n" << faults;
  }
}

// What follows the records of a file may trust them once this has looked at them.
TEST(File, RecordsThatDoNotHoldTogetherAreRefused) {
  const std::pair<const char*, const char*> cases[] = {
      {"UPDATE link SET target = 77 WHERE id = 3", "link 3, target: part 77 (missing)"},
      {"UPDATE link SET member = 4000 WHERE id = 2", "link 2: unknown member 4000"},
      {"UPDATE verbatim_keyword SET level = 50 WHERE id = 1", "level: no symbol 50"},
      {"UPDATE meta SET value = 'other' WHERE key = 'source_deck'", nullptr},
  };
  for (const auto& [sql, text] : cases) {
    const TemporaryFolder folder;
    makeModel(folder / "m.sim");
    runSql(folder / "m.sim", sql);
    cow_String refusal;
    try {
      eds_checkRecords(KvoObjDocument::Open(folder / "m.sim", KvoAccess::ReadOnly));
    } catch (const eds_DamagedFileException& fault) {
      refusal = fault.what();
    }
    EXPECT_EQ(refusal.empty(), text == nullptr) << sql << "\n" << refusal;
    EXPECT_NE(refusal.find(text ? text : ""), std::string::npos) << sql << "\n" << refusal;
  }
}

// Whatever keeps the engine busy, a limit ends it, and the user sooner.
TEST(File, NoStatementRunsForEver) {
  const TemporaryFolder folder;
  KvoObjDocument::Create(folder / "m.sim").Finish();
  eds_Engine engine;
  engine.Open(folder / "m.sim", eds_OpenMode::ReadOnly);
  constexpr const char* endless = "WITH RECURSIVE r(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM r) "
                                  "SELECT count(*) FROM r";
  for (int round = 0; round < 2; ++round) // each has the whole allowance
    EXPECT_THROW(engine.QueryInt(endless), eds_DamagedFileException);
  EXPECT_GT(engine.QueryInt("SELECT count(*) FROM schema_symbol"), 50);
  utl_askToStop();
  EXPECT_THROW(engine.QueryInt(endless), utl_Interruption);
  const KvoObjDocument document = KvoObjDocument::Open(folder / "m.sim", KvoAccess::ReadOnly);
  utl_askToStop();
  EXPECT_THROW(eds_checkModel(document), utl_Interruption);
  EXPECT_EQ(eds_checkModel(document), eds_Faults()); // one asking, one end
}

// Any byte may be wrong: reading ends in our exceptions or in a fault found, never in a crash.
TEST(File, SurvivesDamagedBytes) {
  const TemporaryFolder folder;
  const fs::path good[] = {folder / "small.sim", folder / "large.sim"};
  makeModel(good[0], KvoSize::Small);
  makeModel(good[1], KvoSize::Large);
  std::mt19937 random(3);
  int noticed = 0;
  for (int round = 0; round < 150; ++round) {
    const fs::path file = folder / "bad.sim";
    fs::copy_file(good[round / 2 % 2], file, fs::copy_options::overwrite_existing);
    const auto size = fs::file_size(file);
    for (int i = 0; i < 20; ++i) {
      const auto at = static_cast<std::streamoff>(
          random() % (i % 2 == 0 ? std::min<uintmax_t>(size, 1 << 19) : size));
      patch(file, at, std::string(1 + random() % 8, static_cast<char>(random())));
    }
    if (round % 2 == 0) stampPages(file);
    try {
      noticed += !eds_checkModel(KvoObjDocument::Open(file, KvoAccess::ReadOnly)).empty();
    } catch (const eds_Exception&) {
      ++noticed;
    }
  }
  EXPECT_GT(noticed, 140);
}

TEST(File, NobodyChangesWhatIsBeingRead) {
  const TemporaryFolder folder;
  makeModel(folder / "m.sim");
  const KvoObjDocument reader = KvoObjDocument::Open(folder / "m.sim", KvoAccess::ReadOnly);
  EXPECT_THROW(runSql(folder / "m.sim", "DELETE FROM link"), eds_FileAccessException);
  EXPECT_EQ(reader.Focus().MemberCount(eds_Member::Parts), 10);
}

// A file of before a table and a column came.
TEST(File, OlderFilesReadAsUnsetAndGrowWhenChanged) {
  const TemporaryFolder folder;
  const fs::path file = folder / "m.sim";
  makeModel(file);
  runSql(file, "DROP VIEW v_part; DROP VIEW v_name; DROP VIEW v_link; DROP VIEW v_verbatim_keyword;"
               "ALTER TABLE part DROP COLUMN name;"
               "DELETE FROM schema_field WHERE column_name = 'name'");
  {
    const KvoObjDocument document = KvoObjDocument::Open(file, KvoAccess::ReadOnly);
    EXPECT_TRUE(document.GetRecord(eds_RecordKind::Part, 1).IsMemberNull(eds_Part_Name));
    EXPECT_TRUE(document.Context().GetRecords(eds_RecordKind::Instance).empty());
    EXPECT_EQ(eds_checkModel(document), eds_Faults());
  }
  for (const char* name : {"first", "second"}) { // the columns come once
    KvoObjDocument document = KvoObjDocument::Open(file, KvoAccess::ReadWrite);
    KvoSimTransaction transaction(document.ContextID());
    document.GetRecord(eds_RecordKind::Part, 1).SetString(eds_Part_Name, name);
    const KvoSimPosition instance = document.CreateDataRecord(eds_RecordKind::Instance);
    instance.DataRecord().SetReference(eds_Instance_Part,
                                       document.GetRecord(eds_RecordKind::Part, 1).Pos());
    transaction.Commit();
    document.Finish();
  }
  eds_Engine engine;
  engine.Open(file, eds_OpenMode::ReadOnly);
  EXPECT_EQ(engine.QueryInt("SELECT count(*) FROM v_instance WHERE part_name = 'second'"), 2);
}

// A file grows by what it holds: tables with their first record, what explains them at the end.
TEST(File, TablesComeWithTheirRecordsAndViewsAtTheEnd) {
  const TemporaryFolder folder;
  const fs::path file = folder / "m.sim";
  const auto objects = [&] {
    eds_Engine engine;
    engine.Open(file, eds_OpenMode::ReadOnly);
    eds_Statement rows(engine, "SELECT name FROM sqlite_schema ORDER BY name");
    std::string names;
    while (rows.Step()) names += std::string(rows.Text(0)) + ' ';
    return names;
  };
  KvoObjDocument document = KvoObjDocument::Create(file, KvoSize::Small);
  document.Close();
  EXPECT_EQ(objects(), "chunk meta model ");
  fs::remove(file);
  document = KvoObjDocument::Create(file, KvoSize::Small);
  addRecord(document, 1);
  document.Close(); // as far as a process comes that dies
  EXPECT_EQ(objects(), "chunk link meta model part verbatim_keyword ");
  EXPECT_EQ(eds_checkModel(KvoObjDocument::Open(file, KvoAccess::ReadOnly)), eds_Faults());
  document = KvoObjDocument::Open(file, KvoAccess::ReadWrite);
  document.Finish();
  document.Close();
  EXPECT_EQ(objects(),
            "chunk link meta model part schema_collection schema_field schema_member "
            "schema_record schema_symbol v_flat_elements v_flat_nodes v_in_force v_incrementation "
            "v_labels v_link v_material_tables v_model v_name v_part v_sets v_task "
            "v_verbatim_keyword verbatim_keyword ");
  EXPECT_LE(fs::file_size(file), 100'000u);
}

TEST(File, ExistingOutputIsReplacedOnlyByAFinishedOne) {
  const TemporaryFolder folder;
  const fs::path file = folder / "m.sim";
  makeModel(file);
  EXPECT_THROW(KvoObjDocument::Create(file), eds_FileAccessException);
  {
    const KvoObjDocument document = KvoObjDocument::CreateReplacing(file);
    addRecord(document, 1);
  }
  EXPECT_EQ(KvoObjDocument::Open(file, KvoAccess::ReadOnly).GetModel().Parts().size(), 10u);
  {
    KvoObjDocument document = KvoObjDocument::CreateReplacing(file);
    addRecord(document, 1);
    document.SetMeta("source_deck", "a.inp");
    document.Finish();
    EXPECT_EQ(document.GetModel().Parts().size(), 1u);
  }
  const KvoObjDocument document = KvoObjDocument::Open(file, KvoAccess::ReadOnly);
  EXPECT_EQ(document.GetModel().Parts().size(), 1u);
  EXPECT_EQ(document.GetMeta("source_deck"), "a.inp");
  EXPECT_TRUE(document.IsFinished());
  const auto entries = std::distance(fs::directory_iterator(folder.Path()), {});
  EXPECT_EQ(entries, 1); // no journal, no temporary file
}

#if defined(__unix__)

namespace {

// Runs in a child process; its exit code, or 256 + the signal that ended it.
int inChild(const std::function<int()>& body, useconds_t killAfter = 0,
            const fs::path& waitFor = {}) {
  const pid_t child = fork();
  if (child == 0) _exit(body());
  if (killAfter > 0) {
    for (int i = 0; i < 10000 && !waitFor.empty() && !fs::exists(waitFor); ++i) usleep(1000);
    usleep(killAfter);
    kill(child, SIGKILL);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 256 + WTERMSIG(status);
}

// With `told`, each transaction is physical at once, and a byte in that file says so.
int writeForEver(const fs::path& file, const fs::path& told = {}) {
  const KvoObjDocument document = KvoObjDocument::Create(file);
  if (!told.empty()) eds_Engine::SetGatherTime(std::chrono::milliseconds(0));
  const int progress = told.empty() ? -1 : creat(told.c_str(), 0600);
  for (int i = 0;; ++i) {
    addRecord(document, i);
    if (progress >= 0 && write(progress, "x", 1) != 1) return 1;
    if (i % 500 == 0) addArray(document, 300000);
  }
}

} // namespace

TEST(File, KilledWriterLeavesWholeTransactionsInOrder) {
  std::mt19937 random(5);
  int64_t most = 0;
  // Every fourth child is killed at any moment of its life, the others once the file is there; a
  // busy machine gets more rounds.
  for (int round = 0; round < 40 || (most <= 100 && round < 400); ++round) {
    const TemporaryFolder folder;
    const fs::path file = folder / "m.sim";
    const auto after = static_cast<useconds_t>(500 + random() % 60000);
    const fs::path told = round % 2 == 0 ? folder / "told" : fs::path();
    inChild([&] { return writeForEver(file, told); }, after, round % 4 == 0 ? fs::path() : file);
    if (!fs::exists(file)) continue;
    const KvoObjDocument document = KvoObjDocument::Open(file, KvoAccess::ReadOnly);
    EXPECT_FALSE(document.IsFinished());
    ASSERT_EQ(eds_checkModel(document), eds_Faults()) << "round " << round;
    const auto records = document.Context().GetRecords(eds_RecordKind::VerbatimKeyword);
    const auto count = static_cast<int64_t>(records.size());
    ASSERT_EQ(document.Focus().MemberCount(eds_Member::Parts), count);
    const bool hasTold = !told.empty() && fs::exists(told);
    ASSERT_GE(count, hasTold ? static_cast<int64_t>(fs::file_size(told)) : 0);
    for (int64_t i = 0; i < count; ++i) {
      const KvoSimDataRecord record = records[static_cast<size_t>(i)].DataRecord();
      ASSERT_EQ(record.GetInt64(eds_VerbatimKeyword_Position), i);
    }
    const auto arrays =
        static_cast<int64_t>(eds_ModelReader(document).RecordIDs(eds_RecordKind::Array).size());
    ASSERT_TRUE(arrays == (count + 499) / 500 || arrays == (count - 1 + 499) / 500);
    most = std::max(most, count);
  }
  EXPECT_GT(most, 100); // the rounds did get somewhere
}

// What a killed writer leaves beside the name must not be taken for the journal of the next model.
TEST(File, JournalOfAKilledWriterDoesNotTouchTheNextModel) {
  const auto isHot = [](const fs::path& journal) {
    return std::ifstream(journal, std::ios::binary).get() == 0xd9;
  };
  int hot = 0;
  for (int round = 0; round < 400 && hot < 12; ++round) {
    const TemporaryFolder folder;
    const fs::path file = folder / "m.sim";
    inChild([&] { return writeForEver(file); }, static_cast<useconds_t>(2000 + 331 * round), file);
    if (!isHot(folder / "m.sim-journal")) continue;
    const bool replace = ++hot % 2 == 0;
    if (!replace) fs::remove(file);
    {
      KvoObjDocument next =
          replace ? KvoObjDocument::CreateReplacing(file) : KvoObjDocument::Create(file);
      for (int i = 0; i < 700; ++i) addRecord(next, i);
      addArray(next, 100000);
      next.Finish();
    }
    EXPECT_FALSE(fs::exists(folder / "m.sim-journal"));
    const KvoObjDocument document = KvoObjDocument::Open(file, KvoAccess::ReadOnly);
    EXPECT_TRUE(document.IsFinished());
    EXPECT_EQ(eds_checkModel(document), eds_Faults());
    EXPECT_EQ(document.Focus().MemberCount(eds_Member::Parts), 700);
  }
  EXPECT_GT(hot, 3);
}

// Who makes a model has its name to himself until it is done.
TEST(File, NobodyElseTakesTheNameOfAModelUnderWay) {
  const TemporaryFolder folder;
  for (const bool replace : {false, true}) {
    const fs::path file = folder / (replace ? "old.sim" : "new.sim");
    if (replace) {
      KvoObjDocument old = KvoObjDocument::Create(file);
      old.Finish();
    }
    KvoObjDocument document =
        replace ? KvoObjDocument::CreateReplacing(file) : KvoObjDocument::Create(file);
    addRecord(document, 0);
    EXPECT_EQ(inChild([&] {
                try {
                  KvoObjDocument::CreateReplacing(file);
                } catch (const eds_InUseException& failure) {
                  return cow_String(failure.what()).find("in use") != cow_String::npos ? 3 : 4;
                }
                return 0;
              }),
              3);
    addRecord(document, 1);
    document.Finish();
    document.Close();
    EXPECT_EQ(KvoObjDocument::Open(file, KvoAccess::ReadOnly).GetModel().Parts().size(), 2u);
  }
}

// A sound model put where another's writer was killed is not rolled back by that one's journal.
TEST(File, JournalOfAnotherModelIsTold) {
  int tried = 0;
  for (int round = 0; round < 400 && tried < 4; ++round) {
    const TemporaryFolder folder;
    const fs::path file = folder / "m.sim";
    inChild([&] { return writeForEver(file); }, static_cast<useconds_t>(20000 + 331 * round), file);
    if (std::ifstream(folder / "m.sim-journal", std::ios::binary).get() != 0xd9) continue;
    {
      KvoObjDocument other = KvoObjDocument::Create(folder / "other.sim");
      for (int i = 0; i < 200; ++i) addRecord(other, i);
      other.Finish();
    }
    fs::rename(folder / "other.sim", file);
    const uintmax_t size = fs::file_size(file);
    ++tried;
    EXPECT_THROW(KvoObjDocument::Open(file, KvoAccess::ReadOnly), eds_FileAccessException);
    EXPECT_THROW(KvoObjDocument::CreateReplacing(file), eds_FileAccessException);
    EXPECT_EQ(fs::file_size(file), size);
    fs::remove(folder / "m.sim-journal");
    EXPECT_EQ(eds_checkModel(KvoObjDocument::Open(file, KvoAccess::ReadOnly)), eds_Faults());
  }
  EXPECT_EQ(tried, 4);
}

TEST(File, JournalThatIsNoFileIsTold) {
  const TemporaryFolder folder;
  const fs::path file = folder / "m.sim";
  KvoObjDocument::Create(file).Finish();
  ASSERT_EQ(mkfifo((folder / "m.sim-journal").c_str(), 0600), 0);
  EXPECT_THROW(KvoObjDocument::Open(file, KvoAccess::ReadOnly), eds_FileAccessException);
  EXPECT_THROW(KvoObjDocument::CreateReplacing(file), eds_FileAccessException);
}

TEST(File, FullDiskIsToldAndLeavesAWholeFile) {
  const TemporaryFolder folder;
  const fs::path file = folder / "m.sim";
  const int result = inChild([&] {
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{8 << 20, 8 << 20};
    setrlimit(RLIMIT_FSIZE, &limit);
    const KvoObjDocument document = KvoObjDocument::Create(file);
    try {
      for (int i = 0;; ++i) {
        addRecord(document, i);
        addArray(document, 200000);
        document.Context().Save();
        if (i > 100) return 1;
      }
    } catch (const eds_DiskException& fault) {
      if (std::strstr(fault.what(), "m.sim") == nullptr) return 2;
    } catch (const std::exception&) {
      return 3;
    }
    try {
      addRecord(document, 1);
    } catch (const eds_EngineException&) {
      return 0; // nothing more is written after a failure
    }
    return 4;
  });
  EXPECT_EQ(result, 0);
  const KvoObjDocument document = KvoObjDocument::Open(file, KvoAccess::ReadOnly);
  EXPECT_EQ(eds_checkModel(document), eds_Faults());
  const int64_t parts = document.Focus().MemberCount(eds_Member::Parts);
  EXPECT_GE(parts, 2);
  EXPECT_LE(parts, 6);
}

TEST(File, AWriterInAnotherProcessIsTold) {
  const TemporaryFolder folder;
  const fs::path file = folder / "m.sim";
  const KvoObjDocument document = KvoObjDocument::Create(file);
  addRecord(document, 0);
  document.Context().Save();
  EXPECT_EQ(inChild([&] {
              try {
                eds_ModelReader(KvoObjDocument::Open(file, KvoAccess::ReadOnly)).Kinds();
              } catch (const eds_FileAccessException& fault) {
                return std::strstr(fault.what(), "in use by another process") ? 0 : 1;
              }
              return 2;
            }),
            0);
}

#endif
