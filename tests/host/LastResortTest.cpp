#include "base/utl_FileUnderWay.h"
#include "base/utl_Threads.h"
#include "host/inps_LastResort.h"
#include "host/inps_Terminal.h"
#include "tests/host/ProgramRun.h"
#include <csignal>
#include <deque>
#include <fstream>
#include <optional>
#include <set>
#include <stdexcept>
#include <thread>

#if defined(__linux__)
#include <cerrno>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace {

using LastResort = ProgramTest;

// The exit code of work in a process of its own; -1 when it did not end by itself.
template <class Work> int inChild(const std::filesystem::path& saidTo, Work work) {
  const pid_t child = fork();
  if (child == 0) {
    if (!std::freopen(saidTo.c_str(), "w", stderr)) _exit(99);
    std::setvbuf(stderr, nullptr, _IONBF, 0);
    _exit(work());
  }
  int status = -1;
  const bool ended = waitpid(child, &status, 0) == child && WIFEXITED(status);
  return ended ? WEXITSTATUS(status) : -1;
}

// Several threads fail at once: the first clears up, and nobody ends the process before.
TEST_F(LastResort, FilesGoWhoeverFailsMeanwhile) {
  const auto work = [&] {
    inps_installLastResort();
    std::deque<std::filesystem::path> names;
    std::deque<std::optional<utl_FileUnderWay>> files;
    for (int n = 0; n < 2000; ++n) {
      names.push_back(m_folder / ("f" + std::to_string(n)));
      writeFile(names.back(), "x");
      files.emplace_back().emplace(names.back());
    }
    const auto fails = [] { throw std::runtime_error("nobody catches this"); };
    std::thread others[] = {std::thread(fails), std::thread(fails), std::thread(fails)};
    for (std::thread& other : others) other.join();
    return 98;
  };
  EXPECT_EQ(inChild(m_folder / "said", work), 3);
  const cow_String said = readFile(m_folder / "said");
  EXPECT_NE(said.find("internal error"), cow_String::npos);
  EXPECT_EQ(said.find("internal error"), said.rfind("internal error"));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_folder.Path()), {}), 1);
}

// The first request is heeded where the work is; the second ends the process at once.
TEST_F(LastResort, WhoAsksTwiceDoesNotWait) {
  for (const int request : {SIGINT, SIGTERM, SIGHUP}) {
    const auto asked = [&](int times) {
      return [=] {
        std::signal(request, SIG_DFL);
        inps_stopWhenAsked();
        for (int n = 0; n < times; ++n) std::raise(request);
        return 42;
      };
    };
    EXPECT_EQ(inChild(m_folder / "said", asked(1)), 42) << request;
    EXPECT_EQ(inChild(m_folder / "said", asked(2)), -1) << request;
  }
}

// Cuts a deck short as soon as the program tells a fault of it.
class CuttingBuffer : public std::stringbuf {
public:
  explicit CuttingBuffer(std::filesystem::path deck, std::size_t size = 10)
      : m_deck(std::move(deck)), m_size(size) {}

protected:
  std::streamsize xsputn(const char* text, std::streamsize size) override {
    if (!m_deck.empty()) std::filesystem::resize_file(std::exchange(m_deck, {}), m_size);
    return std::stringbuf::xsputn(text, size);
  }

private:
  std::filesystem::path m_deck;
  std::size_t m_size;
};

// The deck itself, an include and a data file, read on one thread and on many; a fresh model, also
// for standard output, one in the place of another, and an export that has begun.
TEST_F(LastResort, AFileThatIsCutShortIsToldAndLeavesNothing) {
  cow_String lines;
  for (int n = 1; n <= 300000; ++n)
    lines += std::to_string(n) + ", " + std::to_string(n) + "., 1.\n";
  const cow_String told = "*NO SUCH KEYWORD\n";
  Deck("nodes.csv", lines);
  Deck("mesh.inp", "*NODE\n" + lines);
  const cow_String whole = Deck("whole.inp", told + "*NODE\n" + lines);
  const cow_String includes = Deck("includes.inp", told + "*INCLUDE, INPUT=mesh.inp\n");
  const cow_String names = Deck("names.inp", told + "*NODE, INPUT=nodes.csv\n");
  struct Case {
    cow_List<cow_String> words;
    const char* cut;
  };
  const Case cases[] = {
      {{"convert", whole, "-o", File("new.sim")}, "whole.inp"},
      {{"convert", includes, "-o", File("old.sim"), "--force"}, "mesh.inp"},
      {{"convert", whole, "-o", File("next.sim"), "--restart", File("old.sim")}, "whole.inp"},
      {{"convert", names, "-o", File("new.sim")}, "nodes.csv"},
      {{"convert", whole, "-o", "-"}, "whole.inp"},
      {{"export", whole, File("m.vtu"), "--sets"}, "whole.inp"},
      {{"check", names}, "nodes.csv"},
  };
  ASSERT_EQ(ProgramRun({"convert", Deck("o.inp", oneBrick), "-o", File("old.sim")}).exitCode, 0);
  const cow_String old = readFile(m_folder / "old.sim");
  const std::set<cow_String> known = {"nodes.csv", "mesh.inp", "whole.inp", "includes.inp",
                                      "names.inp", "old.sim",  "o.inp"};
  for (const Case& cut : cases) {
    for (const int threads : {1, 4}) {
      const cow_String content = readFile(m_folder / cut.cut);
      const auto work = [&] {
        inps_installLastResort();
        utl_setThreadCount(threads);
        setenv("TMPDIR", m_folder.Path().c_str(), 1);
        CuttingBuffer buffer(m_folder / cut.cut);
        std::ostringstream out;
        aio_ostream err(&buffer);
        inps_Session session{out, err};
        return inps_main(cut.words, session);
      };
      EXPECT_EQ(inChild(m_folder / "said", work), 3) << cut.words[0] << ' ' << cut.cut;
      EXPECT_EQ(readFile(m_folder / "said"), "inps: cannot read \"" + File(cut.cut) +
                                                 "\": it was cut short while it was read\n");
      std::filesystem::remove(m_folder / "said");
      writeFile(m_folder / cut.cut, content);
      for (const auto& entry : std::filesystem::directory_iterator(m_folder.Path()))
        EXPECT_TRUE(known.contains(utl_pathText(entry.path().filename()))) << entry.path();
      EXPECT_TRUE(readFile(m_folder / "old.sim") == old);
    }
  }
}

// What is left of a page reads as zeros, and what is added is never seen: told at the end.
TEST_F(LastResort, AFileWhoseSizeChangesIsTold) {
  const cow_String text = "*NO SUCH KEYWORD\n" + cow_String(oneBrick);
  for (const bool isFresh : {false, true})
    for (const std::size_t size : {text.size() - 20, text.size() + 20}) {
      const cow_String deck = Deck("d.inp", text);
      std::filesystem::remove(m_folder / "m.sim");
      if (!isFresh) writeFile(m_folder / "m.sim", "old");
      std::ostringstream out;
      CuttingBuffer buffer(m_folder / "d.inp", size);
      aio_ostream err(&buffer);
      inps_Session session{out, err};
      EXPECT_EQ(inps_main({"convert", deck, "-o", File("m.sim"), "--force"}, session), 3);
      EXPECT_NE(buffer.view().find("d.inp\": its size changed while it was read"), cow_String::npos)
          << buffer.view();
      if (!isFresh) {
        EXPECT_EQ(readFile(m_folder / "m.sim"), "old");
      }
      EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_folder.Path()), {}),
                isFresh ? 1 : 2);
    }
}

// Folders where nobody may make a file, not even who may do anything: the system's own reason is
// told, whatever is to be made there.
TEST_F(LastResort, AnUnwritableFolderIsToldInTheSystemsWords) {
  const cow_String deck = Deck("d.inp", oneBrick);
  const cow_String model = File("m.sim");
  ASSERT_EQ(ProgramRun({"convert", deck, "-o", model, "-q"}).exitCode, 0);
  for (const cow_String& folder : {cow_String("/sys"), cow_String("/proc/self"), deck}) {
    const cow_String name = folder + "/inps-test.vtu";
    const int handle = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
    ASSERT_EQ(handle, -1) << name;
    const cow_String reason = std::generic_category().message(errno);
    for (const cow_List<cow_String>& words :
         {cow_List<cow_String>{"convert", deck, "-o", name},
          {"convert", Deck("more.inp", "*HEADING\nMore\n"), "--restart", model, "-o", name},
          {"write", model, "-o", name},
          {"plot", model, "-o", name},
          {"export", model, name}}) {
      const ProgramRun run(words);
      EXPECT_EQ(run.exitCode, 3) << words[0] << run.err;
      EXPECT_TRUE(run.Says(name + "\": " + reason)) << words[0] << run.err;
    }
  }
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
std::size_t addressesInUse() {
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

TEST_F(LastResort, TooLittleMemoryIsToldAndLeavesNoTemporaryFile) {
  cow_String text = "*NODE\n";
  for (int n = 1; n <= 1500000; ++n)
    text += std::to_string(n) + "," + std::to_string(n * 7) + ".\n";
  text += "*ELEMENT, TYPE=MASS\n";
  for (int n = 1; n <= 1500000; ++n)
    text += std::to_string((n * 7919LL) % 1500007) + "," + std::to_string(n) + "\n";
  const cow_String deck = Deck("d.inp", text);
  const auto saidUnder = [&](bool byUlimit) {
    const auto work = [&] {
      inps_installLastResort();
      cow_List<cow_String> words = {"convert", deck, "-o", File("m.sim"), "-q", "--force"};
      if (byUlimit) {
        rlimit limit{};
        getrlimit(RLIMIT_AS, &limit);
        limit.rlim_cur = addressesInUse() + (std::size_t{50} << 20); // the deck has 20 MB and more
        setrlimit(RLIMIT_AS, &limit);
      } else {
        words.insert(words.end(), {"--memory", "33M"});
      }
      utl_setThreadCount(1); // each takes addresses for its stack
      const ProgramRun run(words);
      std::fputs(run.err.c_str(), stderr);
      return run.exitCode;
    };
    EXPECT_EQ(inChild(m_folder / "said", work), 3);
    return readFile(m_folder / "said");
  };
  const cow_String limited = saidUnder(true);
  EXPECT_NE(limited.find("\"ulimit -v\""), cow_String::npos) << limited;
  const cow_String said = saidUnder(false);
  EXPECT_NE(said.find("this run may have 33 MB, \"--memory SIZE\""), cow_String::npos) << said;
  for (const auto& entry : std::filesystem::directory_iterator(m_folder.Path())) {
    const cow_String name = utl_pathText(entry.path().filename());
    EXPECT_TRUE(name == "said" || name == "d.inp" || name == "m.sim") << name;
  }
}
#endif

} // namespace
#endif
