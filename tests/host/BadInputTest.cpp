#include "base/utl_File.h"
#include "database/KvoObjDocument.h"
#include "database/KvoSimTransaction.h"
#include "tests/host/ProgramRun.h"
#include <algorithm>
#if defined(__linux__)
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#endif

namespace {

using namespace std::string_literals;
using BadInput = ProgramTest;

TEST_F(BadInput, DecksThatAreNone) {
  struct Case {
    const char* what;
    cow_String deck;
    const char* says;
  };
  const cow_String megabytes(10 << 20, 'A');
  cow_String fields = "1";
  for (int i = 1; i < 100000; ++i) fields += ",1";
  const Case cases[] = {
      {"empty", "", ": error: "},
      {"blank", "\n\n", ": error: "},
      {"no keyword", "1, 2, 3\n", "d.inp:1"},
      {"binary", "*NODE\n1, \0\x01\x02, 3\n"s, "d.inp:2:4: error: "},
      {"long name", "*" + megabytes + "\n1, 0.\n", "d.inp:1:1: error: "},
      {"long value", "*NODE, NSET=" + megabytes + "\n1, 0.\n", "d.inp:1:1: error: "},
      {"100,000 fields", "*ELEMENT, TYPE=C3D8\n" + fields + "\n", "d.inp:2:1: error: "},
      {"number too large", "*NODE\n1, 1e999, 0., 0.\n", "d.inp:2:4: error: "},
      {"label too large", "*NODE\n 1000000000, 1., 0., 0.\n", "d.inp:2:2: error: "},
      {"label far too large", "*NODE\n99999999999999999999, 1.\n", "d.inp:2:1: error: "},
      {"label too small", "*NODE\n1, 0., 0., 0.\n*NSET, NSET=A\n1,-99999999999\n",
       "d.inp:4:3: error: "},
      {"includes itself", "*INCLUDE, INPUT=d.inp\n", "d.inp:1:11: error: "},
      {"missing include", "*NODE\n1, 0.\n*INCLUDE, INPUT=no.inp\n", "d.inp:3:11: error: "},
      {"includes a folder", "*INCLUDE, INPUT=.\n", "d.inp:1:11: error: "},
  };
  for (const Case& c : cases) {
    const ProgramRun run({"check", Deck("d.inp", c.deck)});
    EXPECT_EQ(run.exitCode, 1) << c.what << '\n' << run.err.substr(0, 500);
    EXPECT_TRUE(run.Says(c.says)) << c.what << '\n' << run.err.substr(0, 500);
    EXPECT_LT(run.err.size(), 5000u) << c.what;
  }
}

TEST_F(BadInput, FilesThatCannotBeRead) {
  std::filesystem::create_directory(m_folder / "folder.inp");
  for (const char* command : {"check", "convert"}) {
    const ProgramRun missing({command, File("nowhere.inp")});
    EXPECT_EQ(missing.exitCode, 3);
    EXPECT_TRUE(missing.Says("nowhere.inp\": No such file")) << missing.err;
    const ProgramRun folder({command, File("folder.inp")});
    EXPECT_EQ(folder.exitCode, 3);
    EXPECT_TRUE(folder.Says("folder.inp\": it is a folder")) << folder.err;
  }
}

TEST_F(BadInput, ModelsThatAreNone) {
  const cow_String deck = Deck("d.inp", oneBrick);
  ASSERT_EQ(ProgramRun({"convert", deck, "-o", File("good.sim"), "-q"}).exitCode, 0);
  const cow_String good = readFile(m_folder / "good.sim");
  ASSERT_GT(good.size(), 20000u);
  cow_String newer = good;
  newer[63] = 99; // the last byte of the engine's field for the format version
  cow_String foreign = good;
  foreign[68] = static_cast<char>(foreign[68] ^ 1); // of the field that names the program
  cow_String damaged = good;
  for (std::size_t at = 200; at < damaged.size(); at += 512) damaged[at] = static_cast<char>(0xa5);

  struct Case {
    const char* what;
    cow_String content;
    const char* says;
  };
  const Case cases[] = {
      {"empty", "", "not a model"},
      {"text", "*NODE\n1, 0., 0., 0.\n", "not a model"},
      {"cut in the first page", good.substr(0, 300), "truncated"},
      {"cut in half", good.substr(0, good.size() / 2), "truncated"},
      {"newer", newer, "newer"},
      {"foreign", foreign, "another program"},
      {"damaged", damaged, "damaged"},
  };
  for (const Case& c : cases)
    for (const char* command : {"check", "info", "dump", "write"}) {
      writeFile(m_folder / "bad.sim", c.content);
      const ProgramRun run({command, File("bad.sim")});
      EXPECT_EQ(run.exitCode, 3) << command << ' ' << c.what;
      EXPECT_TRUE(run.Says(c.says)) << command << ' ' << c.what << '\n' << run.err;
      EXPECT_EQ(run.out, "") << command << ' ' << c.what;
    }
}

TEST_F(BadInput, BytesBehindTheLastPage) {
  ASSERT_EQ(ProgramRun({"convert", Deck("d.inp", oneBrick), "-o", File("m.sim"), "-q"}).exitCode,
            0);
  writeFile(m_folder / "m.sim", readFile(m_folder / "m.sim") + cow_String(5000, 'x'));
  const ProgramRun run({"check", File("m.sim")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_TRUE(run.Says("behind the last page stand 5000 bytes")) << run.err;
}

// Wherever a byte of a model turns over: a clear end, with or without a finding, and never a crash.
TEST_F(BadInput, EveryDamageEndsClearly) {
  ASSERT_EQ(ProgramRun({"convert", Deck("d.inp", oneBrick), "-o", File("good.sim"), "-q"}).exitCode,
            0);
  const cow_String good = readFile(m_folder / "good.sim");
  int found = 0;
  for (std::size_t at = 0; at < good.size(); at += 997) {
    cow_String bad = good;
    bad[at] = static_cast<char>(bad[at] ^ 0x55);
    writeFile(m_folder / "bad.sim", bad);
    for (const char* command : {"check", "dump"}) {
      const ProgramRun run({command, File("bad.sim")});
      EXPECT_TRUE(run.exitCode == 0 || run.exitCode == 1 || run.exitCode == 3) << command << at;
      EXPECT_FALSE(run.Says("internal error")) << command << ' ' << at << '\n' << run.err;
      found += run.exitCode != 0;
    }
  }
  EXPECT_GT(found, 0);
}

TEST_F(BadInput, OutputsThatCannotBeWritten) {
  const cow_String deck = Deck("d.inp", oneBrick);
  const cow_String model = File("m.sim");
  ASSERT_EQ(ProgramRun({"convert", deck, "-o", model, "-q"}).exitCode, 0);
  std::filesystem::create_directory(m_folder / "folder.sim");
  const cow_List<cow_List<cow_String>> runs = {
      {"convert", deck, "-o", File("no/such/folder.sim")},
      {"convert", deck, "-o", File("folder.sim"), "--force"},
      {"convert", deck, "-o", model},
      {"convert", deck, "-o", File("out.sim"), "--restart", File("nobase.sim")},
      {"write", model, "-o", File("no/such/folder.inp")},
      {"write", model, "-o", deck},
      {"write", model, "-o", File("folder.sim"), "--force"},
  };
  for (const cow_List<cow_String>& words : runs) {
    const ProgramRun run(words);
    EXPECT_EQ(run.exitCode, 3) << words[0] << ' ' << words[3];
    EXPECT_TRUE(run.Says("inps: cannot ")) << run.err;
  }
  EXPECT_EQ(readFile(deck), oneBrick);
  EXPECT_FALSE(Exists("out.sim"));
}

TEST_F(BadInput, WhatIsReadIsNotReplaced) {
  const cow_String deck = Deck("d.inp", oneBrick);
  ASSERT_EQ(ProgramRun({"convert", deck, "-o", File("m.sim"), "-q"}).exitCode, 0);
  std::filesystem::copy(m_folder / "m.sim", m_folder / "m.vtu");
  const cow_String model = readFile(m_folder / "m.sim");
  for (const char* command : {"write", "plot"}) {
    const ProgramRun run({command, File("m.sim"), "-o", File("m.sim"), "--force"});
    EXPECT_EQ(run.exitCode, 3) << command;
    EXPECT_TRUE(run.Says("it is the file that is read")) << run.err;
  }
  EXPECT_EQ(ProgramRun({"export", File("m.vtu"), File("m.vtu"), "--force"}).exitCode, 3);
  EXPECT_TRUE(readFile(m_folder / "m.sim") == model && readFile(m_folder / "m.vtu") == model);
}

// A deck's includes and data files, the base of a restart; by other spellings, through links; and
// as the journal of what is written or of what is read.
TEST_F(BadInput, NoFileOfADeckIsReplaced) {
  std::filesystem::create_directory(m_folder / "sub");
  const cow_String deck =
      Deck("d.inp", "*HEADING\n*INCLUDE, INPUT=sub/mesh.inp\n*AMPLITUDE, NAME=A, INPUT=a.csv\n");
  Deck("sub/mesh.inp", oneBrick);
  Deck("a.csv", "0., 0., 1., 1.\n");
  Deck("j.sim-journal", oneBrick);
  std::filesystem::create_hard_link(m_folder / "a.csv", m_folder / "a.vtu");
#ifndef _WIN32
  std::filesystem::create_directory_symlink("sub", m_folder / "link");
  std::filesystem::create_symlink("sub/mesh.inp", m_folder / "mesh.vtu");
#else
  std::filesystem::create_directory(m_folder / "link");
  std::filesystem::create_hard_link(m_folder / "sub/mesh.inp", m_folder / "link/mesh.inp");
  std::filesystem::create_hard_link(m_folder / "sub/mesh.inp", m_folder / "mesh.vtu");
#endif
  ASSERT_EQ(ProgramRun({"convert", deck, "-o", File("m.sim"), "-q"}).exitCode, 0);
  const auto content = [&] {
    cow_String all;
    for (const char* name : {"d.inp", "sub/mesh.inp", "a.csv", "j.sim-journal", "m.sim"})
      all += readFile(m_folder / name);
    return all;
  };
  Deck("sub/kept.inp", "*BOUNDARY, INPUT=b.txt\n");
  Deck("sub/b.txt", "1, 1\n");
  Deck("e.txt", "1., 0.3\n");
  Deck("e-wal", "1., 0.3\n");
  Deck("e.vtu", "1.\n");
  const cow_String kept =
      Deck("kept.inp", cow_String(oneBrick) +
                           "*INCLUDE, INPUT=sub/kept.inp\n*MATERIAL, NAME=M\n*ELASTIC, "
                           "INPUT=e.txt\n*DENSITY, INPUT=e-wal\n*EXPANSION, INPUT=e.vtu\n");
  const cow_String before = content();
  const cow_String more = Deck("more.inp", "*AMPLITUDE, NAME=B\n0., 1.\n");
  const cow_List<cow_List<cow_String>> runs = {
      {"convert", deck, "-o", File("sub/mesh.inp")},
      {"convert", deck, "-o", File("sub/../sub/./mesh.inp")},
      {"convert", deck, "-o", File("link/mesh.inp")},
      {"convert", deck, "-o", File("a.csv")},
      {"convert", deck, "-o", File("a.vtu")},
      {"convert", File("j.sim-journal"), "-o", File("j.sim")},
      {"convert", more, "--restart", File("m.sim"), "-o", File("m.sim-journal")},
      {"convert", more, "--restart", File("m.sim"), "-o", File("m.sim-wal")},
      {"convert", more, "--restart", File("m.sim"), "-o", more + "-journal"},
      {"write", File("m.sim"), "-o", File("m.sim-journal")},
      {"plot", File("m.sim"), "-o", File("m.sim-shm")},
      {"export", deck, File("a.vtu")},
      {"export", deck, File("mesh.vtu")},
      // named by keywords that are kept as text
      {"convert", kept, "-o", File("sub/b.txt")},
      {"convert", kept, "-o", File("e.txt")},
      {"convert", kept, "-o", File("e")},
      {"export", kept, File("e.vtu")}};
  for (cow_List<cow_String> words : runs) {
    words.emplace_back("--force");
    const ProgramRun run(words);
    EXPECT_EQ(run.exitCode, 3) << words[0] << ' ' << words[3] << run.err;
    EXPECT_TRUE(run.Says("it is the file that is read") || run.Says(", which is read") ||
                run.Says("the deck names it") || run.Says(", which the deck names"))
        << words[0] << ' ' << run.err;
    EXPECT_TRUE(content() == before) << words[0] << ' ' << words[3];
  }
  // A base may be replaced by who says so.
  EXPECT_EQ(ProgramRun({"convert", more, "--restart", File("m.sim"), "--force"}).exitCode, 0);
}

// By itself, with the line feed that an editor put at its end, and in an include.
TEST_F(BadInput, LinesThatEndByReturnsAreLines) {
  cow_String text = "*HEADING\nLines\n** a comment\n\n" + cow_String(oneBrick);
  for (int n = 100; n < 6000; ++n) text += std::to_string(n) + ", 1, 2, 3, 4, 5, 6, 7, 8\n";
  ASSERT_EQ(ProgramRun({"convert", Deck("feeds.inp", text), "-o", File("a.sim"), "-q"}).exitCode,
            0);
  std::ranges::replace(text, '\n', '\r');
  Deck("returns.inp", text);
  Deck("last.inp", text + "\n");
  Deck("mixed.inp", "*INCLUDE, INPUT=returns.inp\r\n");
  for (const char* name : {"returns.inp", "last.inp", "mixed.inp"}) {
    const ProgramRun run({"diff", File("a.sim"), File(name)});
    EXPECT_EQ(run.exitCode, 0) << name << run.out << run.err;
    EXPECT_EQ(run.err, "") << name;
  }
  // What is told stands in its line.
  const ProgramRun faulty({"check", Deck("f.inp", "*NODE\r1, 0.\r2, zero\r")});
  EXPECT_TRUE(faulty.Says("f.inp:3:4")) << faulty.err;
  // One return in a deck with line feeds is a fault of its line.
  const ProgramRun one({"check", Deck("o.inp", "*NODE\n1, 0.\n*NSET, \rNSET=A\n1\n")});
  EXPECT_TRUE(one.Says("o.inp:3:8")) << one.err;
}

#ifndef _WIN32
// The way through the links grows with each round; the file is the same.
TEST_F(BadInput, AnIncludeCycleThroughFolderLinksIsTold) {
  std::filesystem::create_directory_symlink(m_folder.Path(), m_folder / "loop");
  std::filesystem::create_directory(m_folder / "sub");
  std::filesystem::create_directory_symlink("../sub", m_folder / "sub/again");
  const cow_String deck = Deck("d.inp", "*NODE\n1, 0.\n*INCLUDE, INPUT=loop/d.inp\n");
  const ProgramRun own({"check", deck});
  EXPECT_TRUE(own.Says("d.inp:3:") && own.Says("loop/d.inp\" includes itself")) << own.err;
  Deck("sub/a.inc", "*INCLUDE, INPUT=again/b.inc\n");
  Deck("sub/b.inc", "*INCLUDE, INPUT=again/a.inc\n");
  const ProgramRun two({"check", Deck("e.inp", "*NODE\n1, 0.\n*INCLUDE, INPUT=sub/a.inc\n")});
  EXPECT_TRUE(two.Says("again/b.inc:1:") && two.Says("a.inc\" includes itself")) << two.err;
  for (const ProgramRun& run : {own, two}) {
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.Says("1 error")) << run.err;
  }
}
#endif

// A file of somebody's own that has the name of a journal.
TEST_F(BadInput, WhatIsNoJournalStays) {
  const cow_String deck = Deck("d.inp", oneBrick);
  ASSERT_EQ(ProgramRun({"convert", deck, "-o", File("m.sim"), "-q"}).exitCode, 0);
  writeFile(m_folder / "text.sim", "no model");
  for (const char* name : {"new.sim", "m.sim", "text.sim"}) {
    for (const char* ending : {"-journal", "-wal"}) {
      const cow_String journal = name + cow_String(ending);
      writeFile(m_folder / journal, "my own notes");
      for (const cow_List<cow_String>& words : cow_List<cow_List<cow_String>>{
               {"convert", deck, "-o", File(name), "--force"}, {"info", File(name)}}) {
        if (words[0] == "info" && cow_String(name) != "m.sim") continue;
        const ProgramRun run(words);
        EXPECT_EQ(run.exitCode, 3) << words[0] << ' ' << journal;
        EXPECT_TRUE(run.Says(journal + "\" beside it has the name of its journal and is none"))
            << run.err;
        EXPECT_EQ(readFile(m_folder / journal), "my own notes");
      }
      std::filesystem::remove(m_folder / journal);
    }
  }
  EXPECT_EQ(readFile(m_folder / "text.sim"), "no model");
}

// What a conversion left that was cut off is told as a part, and is no base to go on from.
TEST_F(BadInput, UnfinishedModelsAreTold) {
  {
    KvoObjDocument document = KvoObjDocument::Create(m_folder / "part.sim");
    KvoSimTransaction transaction(document.ContextID());
    document.SetMeta("source_deck", "d.inp");
    transaction.Commit();
  }
  const cow_String part = File("part.sim");
  for (const cow_List<cow_String>& words :
       cow_List<cow_List<cow_String>>{{"write", part},
                                      {"dump", part},
                                      {"diff", part, part},
                                      {"export", part, File("p.vtu")},
                                      {"plot", part, "-o", File("p.html")},
                                      {"check", part},
                                      {"info", part}}) {
    const ProgramRun run(words);
    EXPECT_TRUE(run.Says("did not finish") || run.out.find("not finished") != cow_String::npos)
        << words[0] << ": " << run.err << run.out;
  }
  const cow_String more = Deck("more.inp", "*AMPLITUDE, NAME=A\n0., 1.\n");
  const ProgramRun restart({"convert", more, "--restart", part, "-o", File("next.sim")});
  EXPECT_EQ(restart.exitCode, 3);
  EXPECT_TRUE(restart.Says("is not finished")) << restart.err;
  EXPECT_FALSE(utl_exists(m_folder / "next.sim"));
}

#if defined(__linux__)
TEST_F(BadInput, PipesAndSocketsAreTold) {
  ASSERT_EQ(mkfifo(File("pipe").c_str(), 0600), 0);
  const cow_String deck = Deck("d.inp", oneBrick);
  const cow_List<cow_List<cow_String>> readers = {
      {"info", File("pipe")},
      {"write", File("pipe")},
      {"convert", deck, "-o", File("m.sim"), "--restart", File("pipe")}};
  for (const cow_List<cow_String>& words : readers) {
    const ProgramRun run(words);
    EXPECT_EQ(run.exitCode, 3) << words[0];
    EXPECT_TRUE(run.Says("pipe\": no regular file")) << run.err;
  }
  const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  // By a short name: the system's room for one is narrow, and the folder's may be long.
  const std::filesystem::path here = std::filesystem::current_path();
  std::filesystem::current_path(m_folder.Path());
  const cow_String name = "socket";
  std::copy(name.begin(), name.end(), address.sun_path);
  ASSERT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  for (const char* command : {"convert", "check"}) {
    const ProgramRun run({command, name});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_TRUE(run.Says("socket\": it is a socket")) << run.err;
  }
  std::filesystem::current_path(here);
  close(listener);
}

// The link is a name like another: kept without force, and with it replaced.
TEST_F(BadInput, LinksThatLeadNowhere) {
  const cow_String deck = Deck("d.inp", oneBrick);
  ASSERT_EQ(ProgramRun({"convert", deck, "-o", File("m.sim"), "-q"}).exitCode, 0);
  const cow_String more = Deck("more.inp", "*AMPLITUDE, NAME=A\n0., 1.\n");
  const cow_List<cow_List<cow_String>> writers = {
      {"convert", deck, "-o", File("link.vtu"), "-q"},
      {"convert", more, "-o", File("link.vtu"), "-q", "--restart", File("m.sim")},
      {"write", File("m.sim"), "-o", File("link.vtu")},
      {"export", File("m.sim"), File("link.vtu"), "-q"}};
  for (cow_List<cow_String> words : writers) {
    std::filesystem::remove(m_folder / "link.vtu");
    std::filesystem::create_symlink(File("nowhere"), m_folder / "link.vtu");
    const ProgramRun kept(words);
    EXPECT_EQ(kept.exitCode, 3) << words[0];
    EXPECT_TRUE(kept.Says("link.vtu\": it exists; --force replaces it")) << words[0] << kept.err;
    words.emplace_back("--force");
    const ProgramRun replaced(words);
    EXPECT_EQ(replaced.exitCode, 0) << words[0] << replaced.err;
    EXPECT_TRUE(
        std::filesystem::is_regular_file(std::filesystem::symlink_status(m_folder / "link.vtu")))
        << words[0];
    EXPECT_FALSE(Exists("nowhere"));
  }
}

TEST_F(BadInput, FullDisksAndDevices) {
  const cow_String deck = Deck("d.inp", oneBrick);
  ASSERT_EQ(ProgramRun({"convert", deck, "-o", File("m.sim"), "-q"}).exitCode, 0);
  const ProgramRun full({"write", File("m.sim"), "-o", "/dev/full"});
  EXPECT_EQ(full.exitCode, 3);
  EXPECT_TRUE(full.Says("\"/dev/full\": No space left on device")) << full.err;
  // A link instead of the device itself: whatever happened to it would happen to the link.
  std::filesystem::create_symlink("/dev/null", m_folder / "device.sim");
  const ProgramRun device({"convert", deck, "-o", File("device.sim"), "--force"});
  EXPECT_EQ(device.exitCode, 3);
  EXPECT_TRUE(std::filesystem::is_symlink(m_folder / "device.sim"));
}
#endif

// What cannot be written is said; the exit code does not depend on who is left to read.
TEST_F(BadInput, StandardOutputThatFails) {
  ASSERT_EQ(ProgramRun({"convert", Deck("d.inp", oneBrick), "-o", File("m.sim"), "-q"}).exitCode,
            0);
  for (const char* command : {"dump", "write", "info"}) {
    std::ostringstream out;
    std::ostringstream err;
    out.setstate(std::ios::badbit);
    EXPECT_EQ(inps_main({command, File("m.sim")}, out, err), 3) << command;
    EXPECT_NE(err.str().find("cannot write standard output"), cow_String::npos) << err.str();
  }
}

} // namespace
