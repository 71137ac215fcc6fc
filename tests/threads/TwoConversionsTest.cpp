// Two conversions on two threads: each has its own messages and its own model. One model printed on
// two threads.
// Meant for the thread sanitizer as well (cmake --preset tsan).

#include "base/utl_BlockSize.h"
#include "base/utl_Stream.h"
#include "base/utl_Threads.h"
#include "base/wip_WIPBase.h"
#include "database/KvoObjDocument.h"
#include "database/KvoObjMesh.h"
#include "database/KvoObjModel.h"
#include "inpS/driver/inpS_Inp2Sim.h"
#include "inpS/writer/inpS_Sim2Inp.h"
#include "parser/inp_DataPieces.h"
#include "tests/base/TemporaryFolder.h"
#include <barrier>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <thread>

namespace {

class Recorder : public wip_WIPBase {
public:
  void Error(const wip_Message& message, int) override { texts.push_back(message.text); }
  void ErrorList(const cow_List<wip_Message>& messages, int level) override {
    for (const wip_Message& message : messages) Error(message, level);
  }
  void Warning(const wip_Message& message) override { texts.push_back(message.text); }
  void WarningList(const cow_List<wip_Message>& messages) override {
    for (const wip_Message& message : messages) Warning(message);
  }

  cow_List<cow_String> texts;
};

struct Outcome {
  cow_List<cow_String> said;
  long long nodes = 0;
};

constexpr std::size_t setCount = 20;

// Nodes, and sets that name one which is not there.
cow_String plate(int nodes, const cow_String& name) {
  cow_String deck = "*NODE, NSET=" + name + "\n";
  for (int n = 1; n <= nodes; ++n)
    deck += std::to_string(n) + ", " + std::to_string(n) + ".5, 0.25\n";
  for (std::size_t n = 0; n < setCount; ++n)
    deck += "*NSET, NSET=" + name + std::to_string(n) + "\n1, 999999\n";
  return deck;
}

// A null document when the deck has structural faults.
KvoObjDocument modelOf(const std::filesystem::path& deck) {
  inpS_Inp2Sim driver(deck.string(), deck.parent_path().string());
  if (!driver.Parse() || !driver.CheckUtf8Compliance() || !driver.Expand() ||
      !driver.Reorganize() || !driver.BuildInventory())
    return {};
  std::filesystem::path model = deck;
  std::filesystem::remove(model.replace_extension("sim"));
  KvoObjDocument document = KvoObjDocument::Create(model);
  driver.Convert(document);
  return document;
}

Outcome converted(const std::filesystem::path& deck) {
  Recorder recorder;
  const wip_ReporterScope reporting(recorder);
  Outcome outcome;
  const KvoObjDocument document = modelOf(deck);
  if (document.IsNull()) return outcome;
  const KvoObjMesh mesh = document.GetMesh();
  for (const KvoMeshNodeBlock& block : mesh.NodeBlocks(document.GetModel().Position()))
    outcome.nodes += block.count;
  outcome.said = recorder.texts;
  return outcome;
}

} // namespace

TEST(TwoConversions, ReportSeparately) {
  const TemporaryFolder folder;
  constexpr int sizes[] = {3000, 2000};
  const cow_String names[] = {"LEFT", "RIGHT"};
  std::filesystem::path decks[2];
  for (int i = 0; i < 2; ++i) {
    decks[i] = folder / (names[i] + ".inp");
    std::ofstream(decks[i]) << plate(sizes[i], names[i]);
  }
  utl_setThreadCount(2);
  utl_limitBlockSize(4000); // so that each of them has work for several threads

  for (int round = 0; round < 5; ++round) {
    Outcome outcomes[2];
    std::barrier together(2);
    const auto work = [&](int i) {
      together.arrive_and_wait();
      outcomes[i] = converted(decks[i]);
    };
    std::thread other(work, 1);
    work(0);
    other.join();
    for (int i = 0; i < 2; ++i) {
      EXPECT_EQ(outcomes[i].nodes, sizes[i]);
      EXPECT_EQ(outcomes[i].said.size(), setCount);
      for (const cow_String& text : outcomes[i].said) {
        EXPECT_NE(text.find("Set \"" + names[i]), cow_String::npos) << text;
        EXPECT_EQ(text.find(names[1 - i]), cow_String::npos) << text;
      }
    }
  }
  utl_limitBlockSize(0);
  utl_setThreadCount(0);
}

// Elements of the assembly that join nodes of instances: each thread looks up whose they are.
TEST(OneModel, IsPrintedOnManyThreads) {
  constexpr int count = 40'000;
  const TemporaryFolder folder;
  std::ofstream(folder / "joined.inp")
      << "*PART, NAME=P\n*NODE\n1, 0., 0., 0.\n2, 1., 0., 0.\n*END PART\n*ASSEMBLY, NAME=A\n"
         "*INSTANCE, NAME=LEFT, PART=P\n*END INSTANCE\n"
         "*INSTANCE, NAME=RIGHT, PART=P\n5., 0., 0.\n*END INSTANCE\n*ELEMENT, TYPE=T3D2\n"
      <<
      [] {
        cow_String lines;
        for (int n = 1; n <= count; ++n)
          lines += std::to_string(n) + (n % 2 ? ", LEFT.1, RIGHT.2\n" : ", RIGHT.1, LEFT.2\n");
        return lines;
      }()
      << "*END ASSEMBLY\n";
  Recorder recorder;
  const wip_ReporterScope reporting(recorder);
  ASSERT_FALSE(modelOf(folder / "joined.inp").IsNull());
  cow_String decks[2];
  for (const int threads : {2, 1}) {
    utl_setThreadCount(threads);
    cow_String& text = decks[threads - 1];
    const KvoObjDocument document =
        KvoObjDocument::Open(folder / "joined.sim", KvoAccess::ReadOnly);
    inpS_Sim2Inp writer(document, threads, false, "", nullptr, std::cerr);
    utl_Stream deck(&text);
    writer.Print(deck);
    deck.Close();
  }
  utl_setThreadCount(0);
  EXPECT_EQ(recorder.texts, cow_List<cow_String>());
  EXPECT_GT(decks[0].size(), std::size_t{20} * count);
  EXPECT_TRUE(decks[0] == decks[1]);
}
