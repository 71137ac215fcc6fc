#include "tests/faults/Faults.h"
#include "base/utl_Threads.h"
#include "database/KvoObjDocument.h"
#include "database/eds_ModelReader.h"
#include "database/engine/eds_Engine.h"
#include "host/inps_LastResort.h"
#include "host/inps_Timings.h"
#include "tests/host/ProgramRun.h"
#include <array>
#include <cstdlib>
#include <iostream>
#include <map>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

void PrintTo(Fault fault, std::ostream* out) {
  *out << static_cast<int>(fault);
}

// Runs of the program in which one call to the system, or all from one on, fail: each call in turn.
// A run ends with one clear message and leaves whole things only.
// So many calls of each kind are tried, evenly spread; with INPS_EVERY_FAULT=I/N every N-th one
// from the I-th on, of a smaller model: all of them in N processes.

namespace {

constexpr int64_t mostTried = 24;

struct Share {
  Share() {
    const char* text = std::getenv("INPS_EVERY_FAULT");
    if (text != nullptr) every = std::sscanf(text, "%d/%d", &first, &step) == 2 && first > 0;
  }
  bool every = false;
  int first = 1;
  int step = 1;
};

// A stream that needs no memory.
class FixedBuffer : public std::streambuf {
public:
  FixedBuffer() { setp(m_text.data(), m_text.data() + m_text.size()); }
  cow_String Text() const { return {pbase(), pptr()}; }

private:
  std::array<char, 1 << 16> m_text;
};

struct FaultyRun {
  explicit FaultyRun(const cow_List<cow_String>& words) {
    FixedBuffer outBuffer, errBuffer;
    aio_ostream out(&outBuffer), err(&errBuffer);
    exitCode = inps_main(words, out, err);
    raised = faultsRaised();
    noFault();
    said = errBuffer.Text();
  }
  // In a process of its own, which may end for lack of memory with nobody to catch it.
  static FaultyRun InChild(const cow_List<cow_String>& words, const std::filesystem::path& saidTo);
  int Messages() const { // of the program itself, not of the deck
    int count = 0;
    std::istringstream lines(said);
    for (cow_String line; std::getline(lines, line);)
      count += line.starts_with("inps: ") && !line.starts_with("inps: warning: ");
    return count;
  }

  int exitCode = -1;
  int64_t raised = 0;
  cow_String said;

private:
  FaultyRun() = default;
};

FaultyRun FaultyRun::InChild(const cow_List<cow_String>& words,
                             const std::filesystem::path& saidTo) {
  const pid_t child = fork();
  if (child == 0) {
    inps_installLastResort();
    if (std::freopen(saidTo.c_str(), "w", stderr) == nullptr) _exit(99);
    std::setvbuf(stderr, nullptr, _IONBF, 0);
    const FaultyRun run(words);
    std::fputs(run.said.c_str(), stderr);
    _exit(run.raised > 0 ? run.exitCode : 98);
  }
  noFault();
  FaultyRun run;
  int status = -1;
  if (waitpid(child, &status, 0) == child && WIFEXITED(status)) run.exitCode = WEXITSTATUS(status);
  run.raised = 1; // or else the code is another
  run.said = readFile(saidTo);
  std::filesystem::remove(saidTo);
  return run;
}

// The keywords of a written deck with their data lines, in order.
cow_List<cow_String> blocksOf(const cow_String& deck) {
  cow_List<cow_String> blocks;
  std::istringstream lines(deck);
  for (cow_String line; std::getline(lines, line);) {
    if (line.starts_with("**")) continue;
    // An empty model has a heading and a dimension, too.
    if (line == "*SYSTEM") {
      std::getline(lines, line);
      std::getline(lines, line);
      continue;
    }
    if (line == "*HEADING" && (lines.peek() == '*' || lines.eof())) continue;
    if (line.starts_with("*") || blocks.empty())
      blocks.push_back(line);
    else
      blocks.back() += '\n' + line;
  }
  return blocks;
}

cow_String keywordOf(const cow_String& block) {
  return block.substr(0, block.find_first_of(",\n"));
}

enum class Job {
  Convert,
  ConvertAtOnce, // one commit for all
  ConvertMany,
  Json,
  Replace,
  Restart,
  RestartJson,
  Derive,
  Write,
  Export,
  ExportBlocks,
  Plot,
  Info,
  InfoJson,
  Diff
};

struct Case {
  Job job;
  const char* name;
  bool reads; // an existing model, and writes none
};
// In the names of the tests: bytes would hold addresses.
void PrintTo(const Case& job, std::ostream* out) {
  *out << job.name;
}
constexpr Case cases[] = {
    {Job::Convert, "Convert", false},  {Job::ConvertMany, "ConvertMany", false},
    {Job::Json, "ConvertJson", false}, {Job::RestartJson, "RestartJson", false},
    {Job::InfoJson, "InfoJson", true}, {Job::Replace, "Replace", false},
    {Job::Restart, "Restart", false},  {Job::Write, "Write", true},
    {Job::Export, "Export", true},     {Job::ExportBlocks, "ExportBlocks", true},
    {Job::Plot, "Plot", true},         {Job::ConvertAtOnce, "ConvertAtOnce", false},
    {Job::Info, "Info", true},         {Job::Diff, "Diff", true},
    {Job::Derive, "Derive", false},
};
constexpr const char* faultNames[] = {"Read",         "Write",    "Sync",       "Open",
                                      "Truncate",     "Delete",   "FileOpen",   "FileCreate",
                                      "FileWrite",    "FileSync", "FileRename", "FileRemove",
                                      "EngineMemory", "Memory",   "Buffer",     "AnyMemory"};

// Whether a job, when all goes well, comes to calls for our own files of this kind.
bool usesFiles(Job job, Fault fault) {
  const bool restarts = job == Job::Restart || job == Job::RestartJson || job == Job::Derive;
  const bool converts = restarts || job == Job::Convert || job == Job::ConvertAtOnce ||
                        job == Job::Json || job == Job::Replace;
  const bool prints =
      job == Job::Write || job == Job::Export || job == Job::ExportBlocks || job == Job::Plot;
  switch (fault) {
  case Fault::FileOpen:
    return converts || job == Job::Diff;
  case Fault::FileWrite:
    return restarts || prints;
  case Fault::FileSync:
    return converts;
  case Fault::FileRemove:
    return restarts || job == Job::Replace || job == Job::ExportBlocks;
  default:
    return converts || prints;
  }
}
bool isOfFiles(Fault fault) {
  return fault >= Fault::FileOpen && fault <= Fault::FileRemove;
}

class FaultsTest : public testing::TestWithParam<std::tuple<Case, Fault, bool>> {
protected:
  void SetUp() override {
    noFault();
    utl_setThreadCount(1); // the same calls in the same order each time
    eds_Engine::SetGatherTime(m_case.job == Job::ConvertAtOnce ? std::chrono::hours(1)
                                                               : std::chrono::hours(0));
    Must({"convert", Deck(), "-o", File("base.sim"), "-q"});
    Must({"write", File("base.sim"), "-o", File("base.inp")});
    m_base = readFile(m_folder / "base.sim");
    if (IsRestart()) {
      Must({"convert", Data("more.inp"), "--restart", File("base.sim"), "-o", File("model.sim")});
    } else if (m_case.job == Job::Replace) {
      writeFile(m_folder / "old.inp", oneBrick);
      Must({"convert", File("old.inp"), "-o", File("old.sim"), "-q"});
      m_old = readFile(m_folder / "old.sim");
    }
    m_whole = Written(IsRestart() ? "model.sim" : "base.sim");
    ASSERT_FALSE(m_whole.empty());
    Clean();
  }

  cow_String Deck() const {
    if (m_case.job == Job::ConvertMany) return Data("many.inp");
    return Data(m_share.every ? "small.inp" : "model.inp");
  }
  bool IsFresh() const {
    return m_case.job == Job::Convert || m_case.job == Job::ConvertAtOnce ||
           m_case.job == Job::ConvertMany || m_case.job == Job::Json;
  }
  bool IsRestart() const { return m_case.job == Job::Restart || m_case.job == Job::RestartJson; }
  static cow_String Data(const char* name) { return cow_String(INPS_TESTS_DIR "/faults/") + name; }
  cow_String File(std::string_view name) const { return utl_pathText(m_folder / name); }
  bool Exists(std::string_view name) const { return utl_exists(m_folder / name); }
  void Must(const cow_List<cow_String>& words) const {
    const FaultyRun run(words);
    ASSERT_EQ(run.exitCode, 0) << run.said;
  }
  cow_String Written(std::string_view model) const {
    std::filesystem::remove(m_folder / "written.inp");
    const FaultyRun run({"write", File(model), "-o", File("written.inp")});
    EXPECT_EQ(run.exitCode, 0) << run.said;
    return run.exitCode == 0 ? readFile(m_folder / "written.inp") : cow_String();
  }
  // An export of blocks with all its files; empty when one that others name is missing.
  cow_String Exported() const {
    if (!Exists("out.vtu") || !Exists("out.vtm") || !Exists("out")) return {};
    std::map<cow_String, cow_String> files;
    for (const auto& entry : std::filesystem::directory_iterator(m_folder / "out"))
      files[utl_pathText(entry.path().filename())] = readFile(entry.path());
    cow_String all = readFile(m_folder / "out.vtu") + readFile(m_folder / "out.vtm");
    for (const auto& [name, text] : files) all += name + text;
    return all;
  }
  // All but what the runs begin with goes.
  void Clean() const {
    std::set<cow_String> kept = {"base.sim", "base.inp", "old.inp", "old.sim"};
    if (m_case.job == Job::ExportBlocks) kept.insert({"out.vtu", "out.vtm", "out"});
    for (const auto& entry : std::filesystem::directory_iterator(m_folder.Path()))
      if (!kept.contains(utl_pathText(entry.path().filename())))
        std::filesystem::remove_all(entry.path());
    if (m_case.job == Job::Replace) writeFile(m_folder / "model.sim", m_old);
  }

  cow_List<cow_String> Words() const {
    switch (m_case.job) {
    case Job::Convert:
    case Job::ConvertAtOnce:
    case Job::ConvertMany:
      return {"convert", Deck(), "-o", File("model.sim"), "-q"};
    case Job::Json:
      return {"convert", Deck(), "-o", File("model.sim"), "--json"};
    case Job::RestartJson:
      return {"convert", Data("more.inp"),  "--restart", File("base.sim"),
              "-o",      File("model.sim"), "--json"};
    case Job::InfoJson:
      return {"info", File("base.sim"), "--json"};
    case Job::Replace:
      return {"convert", Deck(), "-o", File("model.sim"), "-q", "--force"};
    case Job::Restart:
      return {"convert", Data("more.inp"),  "--restart", File("base.sim"),
              "-o",      File("model.sim"), "-q"};
    case Job::Derive:
      return {"derive", File("base.sim"), "-o", File("model.sim"), "-q"};
    case Job::Write:
      return {"write", File("base.sim"), "-o", File("out")};
    case Job::Export:
      return {"export", File("base.sim"), File("out.vtu"), "-q"};
    case Job::ExportBlocks: // over an older one of the same model
      return {"export", File("base.sim"), File("out.vtu"), "--sets", "--surfaces", "--force", "-q"};
    case Job::Plot:
      return {"plot", File("base.sim"), "-o", File("out.html")};
    case Job::Info:
      return {"info", File("base.sim")};
    case Job::Diff:
      return {"diff", File("base.sim"), File("base.inp")};
    }
    return {};
  }

  // The library needs memory even to give its own back, or to look into a folder.
  bool EndsByLibrary() const {
    return m_case.job == Job::Plot || m_case.job == Job::ExportBlocks || m_case.job == Job::Json ||
           m_case.job == Job::RestartJson || m_case.job == Job::InfoJson;
  }

  // Number of calls of the fault in a run without one.
  int64_t CallsOf(Fault fault, const cow_List<cow_String>& words) {
    Must(words); // what is made once in a process is there from now on
    for (const char* name : {"out", "out.vtu", "out.html"})
      if (Exists(name) && !utl_isDirectory(m_folder / name)) m_output = readFile(m_folder / name);
    if (m_case.job == Job::ExportBlocks) m_output = Exported();
    Clean();
    FixedBuffer outBuffer, errBuffer;
    aio_ostream out(&outBuffer), err(&errBuffer);
    noFault();
    EXPECT_EQ(inps_main(words, out, err), 0) << errBuffer.Text();
    return faultCalls(fault);
  }

  void Try(Fault fault, int64_t call, bool andLater, const cow_List<cow_String>& words) {
    SCOPED_TRACE(cow_String(faultNames[static_cast<size_t>(fault)]) + " " + std::to_string(call) +
                 (andLater ? " and later" : ""));
    Clean();
    const bool alone = (fault == Fault::Memory || fault == Fault::AnyMemory) && EndsByLibrary();
    const std::filesystem::path saidTo = m_folder / "said";
    faultAt(fault, call, andLater); // from here on nothing of ours may ask for anything
    const FaultyRun run = alone ? FaultyRun::InChild(words, saidTo) : FaultyRun(words);
    ++m_tried;
    ASSERT_GE(run.raised, 1);
    ++m_exits[run.exitCode];
    if (run.exitCode == 0) {
      EXPECT_EQ(run.Messages(), 0) << run.said;
    } else {
      // A file that a deck names and that cannot be opened is a fault of the deck.
      EXPECT_TRUE(run.exitCode == 3 || (run.exitCode == 1 && fault == Fault::FileOpen)) << run.said;
      EXPECT_TRUE(run.Messages() == 1 || run.exitCode == 1) << run.said;
    }
    LookAtWhatIsLeft(run);
    EXPECT_TRUE(readFile(m_folder / "base.sim") == m_base) << run.said;
    if (m_case.job == Job::ExportBlocks && !Exists("out")) Must(words); // for the next call
  }

  void LookAtWhatIsLeft(const FaultyRun& run) {
    if (!m_case.reads) {
      LookAtModel(run);
    } else if (m_case.job == Job::ExportBlocks) {
      // Where nothing can be renamed any more, it is told under what name the old blocks lie.
      const bool isAside = run.said.find("what was there is now") != cow_String::npos;
      const size_t at = run.said.find(File("out."), run.said.find("what was there is now"));
      const cow_String aside = isAside ? run.said.substr(at, run.said.find('"', at) - at) : "";
      EXPECT_TRUE(isAside ? utl_isDirectory(utl_pathOf(aside)) : Exported() == m_output)
          << run.said;
    } else if (run.exitCode != 0) {
      // The last words may fail when all is done: what has its name then is whole.
      for (const char* name : {"out", "out.vtu", "out.html"})
        EXPECT_TRUE(!Exists(name) || readFile(m_folder / name) == m_output) << run.said;
    }
    if (Exists("written.inp")) std::filesystem::remove(m_folder / "written.inp");
    for (const auto& entry : std::filesystem::directory_iterator(m_folder.Path())) {
      const cow_String name = utl_pathText(entry.path().filename());
      static const std::set<cow_String> known = {"base.sim", "base.inp",  "old.inp",
                                                 "old.sim",  "model.sim", "out",
                                                 "out.vtu",  "out.html",  "out.vtm"};
      const bool isTold = run.said.find(name) != cow_String::npos;
      EXPECT_TRUE(known.contains(name) || isTold) << name << " is left; " << run.said;
    }
  }

  void LookAtModel(const FaultyRun& run) {
    if (!Exists("model.sim")) {
      EXPECT_TRUE(run.exitCode != 0 && m_case.job != Job::Replace) << run.said;
      return;
    }
    if (run.exitCode != 0 && m_case.job == Job::Replace &&
        readFile(m_folder / "model.sim") == m_old)
      return;
    // Who opens the model puts it back by its journal; the same files need be opened once only.
    cow_String bytes = readFile(m_folder / "model.sim");
    if (Exists("model.sim-journal")) bytes += readFile(m_folder / "model.sim-journal");
    const size_t key = std::hash<cow_String>()(bytes);
    auto looked = m_isWhole.find(key);
    if (looked == m_isWhole.end())
      looked = m_isWhole.emplace(key, LookInside()).first;
    else
      std::filesystem::remove(m_folder / "model.sim-journal");
    if (looked->second) return;
    EXPECT_EQ(run.exitCode, 3) << "done, and yet not whole";
    EXPECT_TRUE(IsFresh()) << "a part in place of the whole; " << run.said;
    ++m_partial;
  }

  // Whether all of the model is there; else a part of it, sound.
  bool LookInside() const {
    {
      const KvoObjDocument document =
          KvoObjDocument::Open(m_folder / "model.sim", KvoAccess::ReadOnly);
      for (const cow_String& fault : eds_checkModel(document)) ADD_FAILURE() << fault;
    }
    const cow_String text = Written("model.sim");
    if (text == m_whole) return true;
    RequireFirstOnes(blocksOf(text));
    return false;
  }

  // Of each keyword the first ones, in order, and each one whole.
  void RequireFirstOnes(const cow_List<cow_String>& blocks) const {
    std::map<cow_String, cow_List<cow_String>> wanted;
    for (const cow_String& block : blocksOf(m_whole)) wanted[keywordOf(block)].push_back(block);
    std::map<cow_String, size_t> seen;
    for (const cow_String& block : blocks) {
      const cow_List<cow_String>& list = wanted[keywordOf(block)];
      const size_t number = seen[keywordOf(block)]++;
      ASSERT_LT(number, list.size()) << block;
      EXPECT_EQ(block, list[number]);
    }
  }

  const Case m_case = std::get<0>(GetParam());
  const Share m_share;
  std::map<size_t, bool> m_isWhole; // of the files looked into, by their bytes
  TemporaryFolder m_folder;
  cow_String m_base, m_old, m_whole, m_output;
  std::map<int, int64_t> m_exits;
  int64_t m_tried = 0, m_partial = 0;
};

TEST_P(FaultsTest, EndsWithOneMessageAndLeavesWholeThings) {
  const auto [job, fault, andLater] = GetParam();
  const cow_List<cow_String> words = Words();
  const int64_t calls = CallsOf(fault, words);
  // Nothing truncates, and small models need no large buffers.
  EXPECT_TRUE(calls > 0 || fault == Fault::Truncate || fault == Fault::Buffer);
  // The engine gives up at the first memory it does not get, and what a model in the place of
  // another does until it has its name is what a fresh one does: an eighth of these calls is
  // enough.
  const bool alike = fault == Fault::AnyMemory ||
                     (fault == Fault::EngineMemory && (andLater || job.job == Job::Replace));
  const int64_t step =
      m_share.every ? m_share.step * (alike ? 8 : 1) : (calls + mostTried - 1) / mostTried;
  for (int64_t call = m_share.first; call <= calls && !HasFailure(); call += step)
    Try(fault, call, andLater, words);
  std::cout << calls << " calls, " << m_tried << " tried: " << m_exits[3]
            << " ended with a message, " << m_exits[0] << " were done all the same, " << m_partial
            << " left a part\n";
}

cow_String nameOf(const testing::TestParamInfo<FaultsTest::ParamType>& info) {
  const auto& [job, fault, andLater] = info.param;
  return cow_String(job.name) + faultNames[static_cast<size_t>(fault)] +
         (andLater ? "FromThenOn" : "Once");
}

// A run that only reads asks for no more than these.
std::vector<FaultsTest::ParamType> allCases() {
  std::vector<FaultsTest::ParamType> all;
  for (const Case& job : cases) {
    for (int fault = 0; fault < static_cast<int>(Fault::Count); ++fault) {
      if (job.job == Job::ConvertMany && fault != static_cast<int>(Fault::Buffer)) continue;
      if (isOfFiles(static_cast<Fault>(fault)) && !usesFiles(job.job, static_cast<Fault>(fault)))
        continue;
      const bool changes = fault != static_cast<int>(Fault::Read) &&
                           fault < static_cast<int>(Fault::FileOpen) &&
                           fault != static_cast<int>(Fault::Open);
      if (job.reads && changes) continue;
      const bool json =
          job.job == Job::Json || job.job == Job::RestartJson || job.job == Job::InfoJson;
      const bool anyMemory = fault == static_cast<int>(Fault::AnyMemory);
      if (json && fault != static_cast<int>(Fault::Memory) && !anyMemory) continue;
      for (bool andLater : {false, true})
        if (andLater || !anyMemory) all.emplace_back(job, static_cast<Fault>(fault), andLater);
    }
  }
  return all;
}

// A span that cannot begin takes nothing of those around it along.
TEST(TimingsWithoutMemory, LeavesTheOpenSpansWhole) {
  const cow_String longLabel(64, 'x');
  for (int64_t call = 1, raised = 1; raised > 0; ++call) {
    inps_Timings timings;
    size_t begun = 0;
    faultAt(Fault::Memory, call, false);
    try {
      for (int depth = 0; depth < 5; ++depth, ++begun) timings.Mark(longLabel + "-Start");
    } catch (const std::bad_alloc&) {
    }
    raised = faultsRaised();
    noFault();
    for (size_t i = 0; i < begun; ++i) timings.Mark(longLabel + "-End");
    const auto spans = timings.Spans();
    ASSERT_EQ(spans.size(), begun) << "call " << call;
    for (const inps_Timings::Span& span : spans) EXPECT_FALSE(span.open) << "call " << call;
  }
}

INSTANTIATE_TEST_SUITE_P(All, FaultsTest, testing::ValuesIn(allCases()), nameOf);

} // namespace

int main(int count, char** words) {
  installFaultyEngine();
  testing::InitGoogleTest(&count, words);
  return RUN_ALL_TESTS();
}
