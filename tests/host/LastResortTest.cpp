#include "host/inps_LastResort.h"
#include "host/inps_Terminal.h"
#include "tests/host/ProgramRun.h"
#include <csignal>
#include <deque>
#include <optional>
#include <stdexcept>
#include <thread>

#if defined(__linux__)
#include <sys/wait.h>
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
    std::deque<std::optional<inps_FileUnderWay>> files;
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

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST_F(LastResort, TooLittleMemoryIsToldAndLeavesNoTemporaryFile) {
  cow_String text = "*NODE\n";
  for (int n = 1; n <= 1500000; ++n)
    text += std::to_string(n) + "," + std::to_string(n * 7) + ".\n";
  text += "*ELEMENT, TYPE=MASS\n";
  for (int n = 1; n <= 1500000; ++n)
    text += std::to_string((n * 7919LL) % 1500007) + "," + std::to_string(n) + "\n";
  const cow_String deck = Deck("d.inp", text);
  const auto work = [&] {
    inps_installLastResort();
    const ProgramRun run({"convert", deck, "-o", File("m.sim"), "-q", "--memory", "33M"});
    std::fputs(run.err.c_str(), stderr);
    return run.exitCode;
  };
  EXPECT_EQ(inChild(m_folder / "said", work), 3);
  const cow_String said = readFile(m_folder / "said");
  EXPECT_NE(said.find("this run may have 33 MB, \"--memory SIZE\""), cow_String::npos) << said;
  for (const auto& entry : std::filesystem::directory_iterator(m_folder.Path())) {
    const cow_String name = utl_pathText(entry.path().filename());
    EXPECT_TRUE(name == "said" || name == "d.inp" || name == "m.sim") << name;
  }
}
#endif

} // namespace
#endif
