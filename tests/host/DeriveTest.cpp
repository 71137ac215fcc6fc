// What is derived anew is what the conversion derived.

#include "database/KvoObjDocument.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimPosition.h"
#include "database/KvoSimTransaction.h"
#include "database/eds_ModelReader.h"
#include "tests/host/ProgramRun.h"
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

class Derive : public ProgramTest {
protected:
  cow_String Model(const cow_String& deck) const {
    ProgramRun({"convert", deck, "-o", File("a.sim"), "--force", "-q"});
    return File("a.sim");
  }
  // a.sim and what is derived of it are the same, and that is sound.
  void ExpectSame(const cow_String& of, const cow_String& like) const {
    EXPECT_EQ(ProgramRun({"derive", of, "-o", File("d.sim"), "--force", "-q"}).exitCode, 0) << of;
    const ProgramRun diff({"diff", like, File("d.sim"), "-q"});
    EXPECT_EQ(diff.out.substr(0, diff.out.find('\n')), "") << of;
    EXPECT_EQ(ProgramRun({"check", File("d.sim"), "-q"}).exitCode, 0) << of;
  }
};

// Sections, orientations, distributions, steps and loads, some with errors.
const cow_List<cow_String>& decks() {
  static const cow_List<cow_String> all = [] {
    cow_List<cow_String> found;
    for (const char* folder : {"/decks/loads", "/decks/carrying", "/decks/steps", "/decks/sections",
                               "/decks/orientations", "/decks/distributions", "/../examples"})
      for (const auto& entry :
           std::filesystem::directory_iterator(cow_String(INPS_TESTS_DIR) + folder))
        if (entry.path().extension() == ".inp") found.push_back(utl_pathText(entry.path()));
    std::ranges::sort(found);
    return found;
  }();
  return all;
}

cow_String loadedDeck() {
  return cow_String(oneBrick) +
         "*NSET, NSET=BASE\n1, 2, 3, 4\n*TRANSFORM, NSET=BASE, TYPE=C\n0., 0., 0., 0., 0., 1.\n"
         "*MATERIAL, NAME=M\n*ELASTIC\n1., 0.3\n*SOLID SECTION, ELSET=SOLID, MATERIAL=M\n"
         "*BOUNDARY\nBASE, PINNED\n*STEP\n*STATIC\n*CLOAD\nALL, 1, 2.\n*END STEP\n"
         "*STEP\n*STATIC\n*CLOAD\n6, 1, -7.\n*END STEP\n";
}

} // namespace

TEST_F(Derive, AFreshModelStaysTheSame) {
  ASSERT_GT(decks().size(), 20u);
  for (const cow_String& deck : decks()) {
    std::filesystem::remove(m_folder / "a.sim");
    const cow_String model = Model(deck);
    if (Exists("a.sim")) ExpectSame(model, model);
  }
}

TEST_F(Derive, WhatWasRemovedComesBackAndWhatIsOthersStays) {
  const cow_String model = Model(Deck("a.inp", loadedDeck()));
  std::filesystem::copy_file(m_folder / "a.sim", m_folder / "less.sim");
  {
    KvoObjDocument less = KvoObjDocument::Open(m_folder / "less.sim", KvoAccess::ReadWrite);
    for (const eds_RecordKind kind :
         {eds_RecordKind::Relay, eds_RecordKind::Excitation, eds_RecordKind::HistoryStep,
          eds_RecordKind::SectionAssignment, eds_RecordKind::ElementRange})
      for (const KvoSimPosition& one : less.Context().GetRecords(kind)) one.Remove();
    less.Finish();
  }
  EXPECT_NE(ProgramRun({"diff", model, File("less.sim"), "-q"}).exitCode, 0);
  ExpectSame(File("less.sim"), model);
  {
    KvoObjDocument more = KvoObjDocument::Open(m_folder / "less.sim", KvoAccess::ReadWrite);
    KvoSimDataRecord own = more.CreateDataRecord(eds_RecordKind::Excitation).DataRecord();
    own.SetString(eds_Excitation_Name, "Excitation_7");
    more.Finish();
  }
  std::error_code noLinks; // on systems without them
  std::filesystem::create_symlink("less.sim", m_folder / "link.sim", noLinks);
  const cow_String less = File(noLinks ? "less.sim" : "link.sim");
  const json told = json::parse(ProgramRun({"derive", less, "--json"}).out); // in its own place
  EXPECT_EQ(told["excitations"], 5); // the turned nodes of a set apart
  const KvoObjDocument derived = KvoObjDocument::Open(m_folder / "less.sim", KvoAccess::ReadOnly);
  const auto all = derived.Context().GetRecords(eds_RecordKind::Excitation);
  ASSERT_EQ(all.size(), 5u);
  EXPECT_EQ(all[0].Name(), "Excitation_7");
  EXPECT_EQ(all[1].Name(), "Excitation_8");
}

// Deriving again and again leaves nothing behind.
TEST_F(Derive, LeavesNothingBehind) {
  const cow_String model = Model(Deck("a.inp", loadedDeck()));
  const auto count = [&] {
    const KvoObjDocument document = KvoObjDocument::Open(m_folder / "a.sim", KvoAccess::ReadOnly);
    const eds_ModelReader reader(document);
    long long records = 0;
    for (const eds_RecordInfo* kind : reader.Kinds()) records += reader.RecordCount(kind->kind);
    return records;
  };
  ProgramRun({"derive", model, "-q"});
  const long long once = count();
  ProgramRun({"derive", model, "-q"});
  EXPECT_EQ(count(), once);
}

TEST_F(Derive, RefusalsLeaveEverythingAsItIs) {
  const cow_String model = Model(Deck("a.inp", loadedDeck()));
  const cow_String bytes = readFile(m_folder / "a.sim");
  writeFile(m_folder / "cut.sim", bytes.substr(0, bytes.size() / 2));
  writeFile(m_folder / "other.sim", "SQLite format 3 it is not");
  std::filesystem::copy_file(m_folder / "a.sim", m_folder / "open.sim");
  { // changed, and not finished
    KvoObjDocument open = KvoObjDocument::Open(m_folder / "open.sim", KvoAccess::ReadWrite);
    KvoSimTransaction transaction(open.ContextID());
    open.CreateDataRecord(eds_RecordKind::Excitation);
    transaction.Commit();
    open.Close();
  }
  std::filesystem::create_directory(m_folder / "folder.sim");
  const struct {
    cow_List<cow_String> words;
    int exitCode;
    const char* says;
  } cases[] = {
      {{"derive"}, 2, "derive"},
      {{"derive", "-"}, 2, "no name for its model"},
      {{"derive", model, "-o", "-", "--json"}, 2, "cannot both go"},
      {{"derive", File("none.sim")}, 3, "none.sim"},
      {{"derive", File("a.inp")}, 3, "it is a deck and not a model"},
      {{"derive", File("cut.sim")}, 3, "cut.sim"},
      {{"derive", File("other.sim")}, 3, "other.sim"},
      {{"derive", File("open.sim")}, 3, "is not finished"},
      {{"derive", model, "-o", File("open.sim")}, 3, "--force replaces it"},
      {{"derive", model, "-o", File("folder.sim"), "--force"}, 3, "it is a folder"},
      {{"derive", model, "-o", File("no/such/b.sim")}, 3, "b.sim"},
  };
  for (const auto& one : cases) {
    const ProgramRun run(one.words);
    EXPECT_EQ(run.exitCode, one.exitCode) << one.says << run.err;
    EXPECT_TRUE(run.Says(one.says)) << one.says << " in " << run.err;
  }
  EXPECT_TRUE(readFile(m_folder / "a.sim") == bytes);
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(m_folder / "."))
    files += entry.path().filename().string().find("sim") != cow_String::npos;
  EXPECT_EQ(files, 5u); // nothing half made beside them
}
