#include "base/bcu_ResourceMonitor.h"
#include "base/utl_Assert.h"
#include "base/utl_Stream.h"
#include "base/wip_WIPBase.h"
#include "database/KvoObjLabeler.h"
#include "database/KvoObjMesh.h"
#include "database/KvoObjModel.h"
#include "database/KvoObjSurface.h"
#include "database/KvoSimDataRecord.h"
#include "database/eds_Exception.h"
#include "inpS/driver/inpS_Inp2Sim.h"
#include "inpS/driver/inpS_Module.h"
#include "inpS/history/inpS_History.h"
#include "inpS/messages/inpS_Exception.h"
#include "inpS/writer/inpS_Sim2Inp.h"
#include "tests/base/TemporaryFolder.h"
#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace {

class Recorder : public wip_WIPBase, public bcu_ResourceMonitor {
public:
  void Error(const wip_Message& message, int) override { errors.push_back(message.text); }
  void ErrorList(const cow_List<wip_Message>& messages, int level) override {
    for (const wip_Message& message : messages) Error(message, level);
  }
  void Warning(const wip_Message& message) override { warnings.push_back(message.text); }
  void WarningList(const cow_List<wip_Message>& messages) override {
    ++warningLists;
    for (const wip_Message& message : messages) Warning(message);
  }
  void Mark(const cow_String& label) override { marks.push_back(label); }

  cow_List<cow_String> errors, warnings, marks;
  int warningLists = 0;
};

class Driver : public testing::Test {
protected:
  Driver() : m_reporting(m_recorder), m_monitor(bcu_ResourceMonitor::Install(&m_recorder)) {}
  ~Driver() override { bcu_ResourceMonitor::Install(m_monitor); }

  inpS_Inp2Sim& Prepare(const cow_String& deck) {
    const std::filesystem::path path = m_folder.Path() / "deck.inp";
    std::ofstream(path, std::ios::binary) << deck;
    m_driver = std::make_unique<inpS_Inp2Sim>(path.string(), m_folder.Path().string());
    EXPECT_TRUE(m_driver->Parse() && m_driver->CheckUtf8Compliance() && m_driver->Expand() &&
                m_driver->Reorganize() && m_driver->BuildInventory());
    return *m_driver;
  }

  TemporaryFolder m_folder;
  Recorder m_recorder;
  wip_ReporterScope m_reporting;
  bcu_ResourceMonitor* m_monitor;
  std::unique_ptr<inpS_Inp2Sim> m_driver;
};

const char* const kTwoNodes = "*NODE\n1, 0., 0., 0.\n2, 1., 0., 0.\n3, 0., 1., 0.\n";

} // namespace

TEST_F(Driver, RunsItsPhasesInOrderBetweenMarks) {
  Prepare("*HEADING\nx\n").Convert(KvoObjDocument::InMemory());
  cow_String tags;
  const cow_List<cow_String>& marks = m_recorder.marks;
  ASSERT_EQ(marks.size(), 2u * 24);
  EXPECT_EQ(marks.front(), "inp2sim-convert-Start");
  EXPECT_EQ(marks.back(), "inp2sim-convert-End");
  for (std::size_t n = 1; n + 1 < marks.size(); n += 2) {
    const cow_String tag = marks[n].substr(8, marks[n].size() - 8 - 6);
    EXPECT_EQ(marks[n], "inp2sim-" + tag + "-Start");
    EXPECT_EQ(marks[n + 1], "inp2sim-" + tag + "-End");
    tags += tag + " ";
  }
  EXPECT_EQ(tags,
            "initializesim model assembly nodelabeler elemlabeler amplitudes materials conbehav "
            "mesh surfaces rigidbodies distributions orientations sections constraints steps "
            "interactions ics bcs loads output cosim surfnodearea ");
}

TEST_F(Driver, GoesOnBehindAFailedPhase) {
  const KvoObjDocument document = KvoObjDocument::InMemory();
  EXPECT_FALSE(
      Prepare(
          "*PART, NAME=P\n*END PART\n*PART, NAME=P\n*END PART\n*ASSEMBLY, NAME=A\n"
          "*INSTANCE, NAME=I, PART=Q\n*END INSTANCE\n*NODE\n7, 1., 2., 3.\n"
          "*END ASSEMBLY\n*MATERIAL, NAME=M\n*STEP\n*STATIC\n*CONTACT PRINT\n*END STEP\n*IMPORT\n")
          .Convert(document));
  EXPECT_EQ(m_recorder.errors,
            (cow_List<cow_String>{"Part with the name \"P\" has already been defined in the model.",
                                  "Part \"Q\" is not defined; the instance is left out."}));
  ASSERT_EQ(document.GetMesh().NodeBlocks().size(), 1u); // the mesh was converted all the same
  EXPECT_EQ(document.GetMesh().NodeBlocks()[0].count, 1);
  EXPECT_EQ(m_driver->NotModelled().size(), 2u); // in the step, and outside
}

TEST_F(Driver, KeepsTypesAndExtraNodesOfAFailedMesh) {
  const KvoObjDocument document = KvoObjDocument::InMemory();
  EXPECT_FALSE(Prepare(cow_String(kTwoNodes) + "*ELEMENT, TYPE=B31\n1, 1, 2, 3\n"
                                               "*ELEMENT, TYPE=T3D2\n2, 1, 99\n")
                   .Convert(document));
  EXPECT_EQ(m_recorder.errors,
            (cow_List<cow_String>{"Elements refer to nodes that do not exist: 99"}));
  const KvoObjMesh mesh = document.GetMesh();
  EXPECT_TRUE(mesh.NodeBlocks().empty());
  EXPECT_TRUE(mesh.ElementBlocks().empty());
  EXPECT_FALSE(mesh.GetBeamOrientationExtraNodes().IsNull());
  EXPECT_EQ(document.Context().GetRecords(eds_RecordKind::ElementSpec).size(), 2u);
}

TEST_F(Driver, ConvertsTwiceFromOneObject) {
  inpS_Inp2Sim& driver = Prepare(kTwoNodes);
  const KvoObjDocument first = KvoObjDocument::InMemory(), second = KvoObjDocument::InMemory();
  EXPECT_TRUE(driver.Convert(first));
  EXPECT_TRUE(driver.Convert(second));
  EXPECT_EQ(second.GetMesh().NodeBlocks().at(0).count, 3);
}

TEST_F(Driver, ARestartAddsToWhatIsThere) {
  const KvoObjDocument document = KvoObjDocument::InMemory();
  EXPECT_TRUE(Prepare(kTwoNodes).Convert(document));
  EXPECT_TRUE(
      Prepare("*NODE\n9, 5., 5., 5.\n*ELEMENT, TYPE=T3D2\n1, 1, 9\n"
              "*NSET, NSET=MIXED\n9, 2\n*STEP\n*STATIC\n*CONTACT PRINT\n*END STEP\n*IMPORT\n")
          .ConvertRestart(document));
  const auto blocks = document.GetMesh().NodeBlocks();
  ASSERT_EQ(blocks.size(), 2u);
  EXPECT_EQ(blocks[1].first, 3);
  EXPECT_EQ(blocks[1].flatFirst, 3);
  EXPECT_EQ(document.GetMesh().ElementBlocks().size(), 1u);
  EXPECT_EQ(m_recorder.marks.back(), "inp2sim-res-saveelems-End");
  EXPECT_EQ(m_driver->NotModelled().size(), 2u); // kept, not lost
}

TEST_F(Driver, ARestartAddsSurfacesOnce) {
  const KvoObjDocument document = KvoObjDocument::InMemory();
  EXPECT_TRUE(Prepare(cow_String(kTwoNodes) + "*ELEMENT, TYPE=T3D2, ELSET=E\n1, 1, 2\n"
                                              "*SURFACE, NAME=OLD\nE, END1\n")
                  .Convert(document));
  EXPECT_TRUE(Prepare("*ELEMENT, TYPE=T3D2\n2, 2, 1\n*SURFACE, NAME=MORE\n2, END2\n"
                      "*SURFACE, NAME=BOTH, COMBINE=UNION\nOLD, MORE\n")
                  .ConvertRestart(document));
  EXPECT_TRUE(m_recorder.errors.empty());
  const auto surfaces = KvoObjSurface::OfOwner(document.GetModel().Position());
  ASSERT_EQ(surfaces.size(), 3u);
  const auto faces = KvoObjSurface(surfaces[2]).Faces();
  ASSERT_EQ(faces.size(), 2u);
  EXPECT_EQ(faces[0].face, eds_SurfaceFace::End1);
  EXPECT_EQ(faces[0].elements.Members(), (std::vector<int>{0}));
  EXPECT_EQ(faces[1].face, eds_SurfaceFace::End2);
  EXPECT_EQ(faces[1].elements.Members(), (std::vector<int>{1}));
  EXPECT_FALSE(Prepare("*SURFACE, NAME=OLD\nE, END2\n").ConvertRestart(document));
  EXPECT_EQ(m_recorder.errors,
            (cow_List<cow_String>{"Surface \"OLD\" is defined already; this second one is left "
                                  "out."}));
}

TEST_F(Driver, SurfacesOfAFailedMeshAreLeftOut) {
  const KvoObjDocument document = KvoObjDocument::InMemory();
  EXPECT_FALSE(Prepare(cow_String(kTwoNodes) + "*ELEMENT, TYPE=T3D2, ELSET=E\n1, 1, 99\n"
                                               "*SURFACE, NAME=S\n1, END1\n"
                                               "*SURFACE, NAME=G, TYPE=SEGMENTS\nSTART, 0., 0.\n"
                                               "LINE, 1., 0.\n")
                   .Convert(document));
  EXPECT_EQ(m_recorder.errors.size(), 1u); // the mesh's own
  EXPECT_EQ(m_recorder.warningLists, 1);
  const auto surfaces = KvoObjSurface::OfOwner(document.GetModel().Position());
  ASSERT_EQ(surfaces.size(), 1u);
  EXPECT_TRUE(KvoObjSurface(surfaces[0]).IsAnalytical());
}

TEST_F(Driver, AFailedRestartLeavesNoLabelsBehind) {
  const KvoObjDocument document = KvoObjDocument::InMemory();
  EXPECT_TRUE(Prepare(kTwoNodes).Convert(document));
  EXPECT_FALSE(Prepare("*NODE\n77, 1., 1., 1.\n2, 5., 5., 5.\n").ConvertRestart(document));
  KvoObjLabeler labeler(document, 0);
  labeler.Read();
  EXPECT_EQ(labeler.Size(0), 3);
  EXPECT_TRUE(Prepare("*NODE\n77, 1., 1., 1.\n").ConvertRestart(document));
}

TEST_F(Driver, ConvertsTwiceIntoDocumentsOfTheirOwn) {
  // A keyword that a phase leaves to be kept as text with a record of the first document.
  inpS_Inp2Sim& driver =
      Prepare(cow_String(kTwoNodes) + "*MATERIAL, NAME=M\n*ELASTIC\n1., 0.3\n*UNHEARD OF\n1\n");
  KvoObjDocument first = KvoObjDocument::InMemory();
  EXPECT_TRUE(driver.Convert(first));
  const auto leftOut = driver.NotModelled().size();
  first.Close();
  const KvoObjDocument second = KvoObjDocument::InMemory();
  EXPECT_TRUE(driver.Convert(second));
  EXPECT_EQ(driver.NotModelled().size(), leftOut);
  EXPECT_EQ(second.GetMesh().NodeBlocks().size(), 1u);
  const auto kept = second.Context().GetRecords(eds_RecordKind::VerbatimKeyword);
  ASSERT_EQ(kept.size(), 1u);
  EXPECT_EQ(kept[0].DataRecord().GetReference(eds_VerbatimKeyword_Owner).Object(),
            second.GetModel().Position().FollowStringKey(eds_Member::Materials, "M").Object());

  EXPECT_TRUE(m_recorder.errors.empty());
  EXPECT_FALSE(driver.Convert(second));
  ASSERT_EQ(m_recorder.errors.size(), 1u);
  EXPECT_NE(m_recorder.errors[0].find("holds a model already"), cow_String::npos);
  EXPECT_EQ(second.GetMesh().NodeBlocks().size(), 1u);
  EXPECT_EQ(second.Context().GetRecords(eds_RecordKind::VerbatimKeyword).size(), 1u);
}

TEST_F(Driver, WhatARestartLearnsOfItsBaseStaysThere) {
  const KvoObjDocument base = KvoObjDocument::InMemory(), fresh = KvoObjDocument::InMemory();
  ASSERT_TRUE(Prepare("*PART, NAME=P\n*NODE\n1, 0., 0., 0.\n*END PART\n*ASSEMBLY, NAME=A\n"
                      "*INSTANCE, NAME=I, PART=P\n*END INSTANCE\n*END ASSEMBLY\n")
                  .Convert(base));
  base.GetModel().DataRecord().SetString(eds_Model_ModelString, "of the base");
  inpS_Inp2Sim& driver = Prepare("*AMPLITUDE, NAME=A\n0., 0., 1., 1.\n");
  EXPECT_TRUE(driver.ConvertRestart(base));
  EXPECT_TRUE(driver.Inventory().IsFeatureEnhanced());
  EXPECT_TRUE(driver.Convert(fresh));
  EXPECT_FALSE(driver.Inventory().IsFeatureEnhanced());
  const KvoSimDataRecord record = fresh.GetModel().DataRecord();
  EXPECT_TRUE(record.IsMemberNull(eds_Model_ModelString));
  EXPECT_FALSE(record.GetBool(eds_Model_FeatureEnhanced));
}

TEST_F(Driver, ErrorsOfKeptTextsCount) {
  const KvoObjDocument document = KvoObjDocument::InMemory();
  ASSERT_TRUE(Prepare(kTwoNodes).Convert(document));
  EXPECT_FALSE(Prepare("*PART, NAME=NEW\n*END PART\n").ConvertRestart(document));
  EXPECT_EQ(m_recorder.errors.size(), 1u);
}

// The second look at orientations that vary is of their phase.
TEST_F(Driver, OrientationsThatGetNoAxesFail) {
  const KvoObjDocument document = KvoObjDocument::InMemory();
  EXPECT_FALSE(Prepare(cow_String(kTwoNodes) +
                       "*ELEMENT, TYPE=S3, ELSET=E\n1, 1, 2, 3\n*MATERIAL, NAME=M\n"
                       "*DISTRIBUTION TABLE, NAME=T\nANGLE\n"
                       "*DISTRIBUTION, NAME=D, LOCATION=ELEMENT, TABLE=T\n1, 5.\n"
                       "*ORIENTATION, NAME=O\nD\n"
                       "*SHELL SECTION, ELSET=E, MATERIAL=M, ORIENTATION=O\n1.\n")
                   .Convert(document));
  EXPECT_EQ(m_recorder.errors.size(), 1u);
}

// Memory that runs out anywhere beneath comes through the module's door with its own text.
TEST_F(Driver, MemoryThatRunsOutComesThroughTheDoorWithItsText) {
  struct Failing : bcu_ResourceMonitor {
    void Mark(const cow_String& label) override {
      if (label == "inp2sim-mesh-Start") throw std::bad_alloc();
      if (label == "Sim2Inp-Nodes-Start") throw eds_MemoryException("the engine's");
    }
  } failing;
  const KvoObjDocument document = KvoObjDocument::InMemory();
  ASSERT_TRUE(Prepare(kTwoNodes).Convert(document));
  bcu_ResourceMonitor::Install(&failing);
  const auto textOf = [](auto&& work) {
    try {
      work();
    } catch (const inpS_MemoryException& failure) {
      return failure.Text();
    }
    return cow_String();
  };
  const char* const text = "Memory allocation error. Insufficient physical memory or swap space.";
  EXPECT_EQ(textOf([&] { Prepare(kTwoNodes).Convert(KvoObjDocument::InMemory()); }), text);
  std::ostringstream deck, diagnostics;
  utl_Stream out(deck);
  EXPECT_EQ(textOf([&] { inpS_Sim2Inp(document, 1, false, "", nullptr, diagnostics).Print(out); }),
            text);
}

TEST_F(Driver, RecoveryAlwaysSucceeds) {
  EXPECT_TRUE(Prepare("*ELEMENT, TYPE=NONE\n1, 2\n")
                  .ConvertSubstructureRecovery(KvoObjDocument::InMemory(), "x"));
}

namespace {

// "1 Step-1", "2 A-Old"
cow_List<cow_String> historyOf(const KvoObjDocument& document) {
  cow_List<cow_String> steps;
  for (const KvoSimPosition& step : document.Context().GetRecords(eds_RecordKind::HistoryStep)) {
    const KvoSimDataRecord record = step.DataRecord();
    steps.push_back(std::to_string(record.GetInt64(eds_HistoryStep_Number)) + " " +
                    record.ReturnString(eds_HistoryStep_Name));
  }
  return steps;
}

} // namespace

// Those of a restart, and of a recovery, come behind the model's own, and the history is of all.
TEST_F(Driver, StepsThatAreAddedGoOnWithTheHistory) {
  const KvoObjDocument document = KvoObjDocument::InMemory();
  ASSERT_TRUE(Prepare(cow_String(kTwoNodes) + "*STEP\n*STATIC\n*END STEP\n"
                                              "*STEP, NAME=A\n*STATIC\n*END STEP\n")
                  .Convert(document));
  EXPECT_EQ(historyOf(document), (cow_List<cow_String>{"1 Step-1", "2 A"}));
  ASSERT_TRUE(Prepare("*STEP, NAME=A\n*VISCO\n0.5, 2.\n*END STEP\n").ConvertRestart(document));
  EXPECT_EQ(historyOf(document), (cow_List<cow_String>{"1 Step-1", "2 A-Old", "3 A"}));
  ASSERT_TRUE(Prepare("*STEP, PERTURBATION\n*FREQUENCY\n4\n*NODE OUTPUT\nU\n*END STEP\n")
                  .ConvertSubstructureRecovery(document, "x"));
  const cow_List<cow_String> all = {"1 Step-1", "2 A-Old", "3 A", "4 Step-4"};
  EXPECT_EQ(historyOf(document), all);
  inpS_deriveHistory(document); // and finds the same
  EXPECT_EQ(historyOf(document), all);
  cow_String deck;
  utl_Stream out(&deck);
  std::ostringstream diagnostics;
  inpS_Sim2Inp(document, 1, false, "", nullptr, diagnostics).Print(out);
  out.Flush();
  EXPECT_NE(
      deck.find("*STEP, NAME=A\n*STATIC\n*END STEP\n*STEP, NAME=A\n*VISCO\n0.5, 2.\n*END STEP\n"
                "*STEP, PERTURBATION\n*FREQUENCY\n4\n*NODE OUTPUT\nU\n*END STEP\n"),
      cow_String::npos)
      << deck;
}

TEST_F(Driver, HandsParseWarningsOverOnce) {
  Prepare("*NODDE\n1, 2\n");
  EXPECT_EQ(m_recorder.warningLists, 1);
}

TEST_F(Driver, ScreensWhatTheDatabaseCannotHold) {
  const char* const refused = "Feature not supported with SIM results (SIMFEATURENOTSUPPORTED)";
  const char* const skipped = "Feature not supported in inp2sim";
  const char* const ignored = "Keyword not supported, will be ignored";
  const struct {
    const char* deck;
    const char* strict;   // error, or "" for none
    const char* tolerant; // error; with a leading '?': warning
  } cases[] = {
      {"*REBAR\n", refused, skipped},
      {"*SURFACE, NAME=A, TYPE=ELEMENT\n", "", ""},
      {"*SURFACE, NAME=A, TYPE=XFEM\n", refused, skipped},
      {"*NMAP, NSET=A, TYPE=BLENDED\n", refused, skipped},
      {"*NMAP, NSET=A, TYPE=SCALE\n", "", ""},
      {"*ENRICHMENT\n", refused, "?"},
      {"*STEP\n*MODEL CHANGE, REMOVE\n*END STEP\n", refused, "?"},
      {"*STEP\n*MODEL CHANGE, ACTIVATE\n*END STEP\n", "", ""},
      {"*STEP\n*DIRECT CYCLIC\n*END STEP\n", "", ""},
      {"*STEP\n*DIRECT CYCLIC, FATIGUE\n*END STEP\n", refused, refused},
      {"*ELEMENT, TYPE=C9D9\n", refused, skipped},
      {"*PART, NAME=P\n*ELEMENT, TYPE=C9D9\n*END PART\n*ASSEMBLY, NAME=A\n*INSTANCE, NAME=I, "
       "PART=P\n*END INSTANCE\n*INSTANCE, NAME=J, PART=P\n*END INSTANCE\n*END ASSEMBLY\n",
       refused, skipped},
      {"*ELEMENT, TYPE=u17\n*ELEMENT, TYPE=Z3\n*ELEMENT, TYPE=conn3d2\n", "", ""},
  };
  for (const auto& [deck, strict, tolerant] : cases) {
    for (const bool asWarnings : {false, true}) {
      inpS_Inp2Sim& driver = Prepare(deck);
      m_recorder.errors.clear();
      m_recorder.warnings.clear();
      driver.SetUnsupportedFeaturesAsWarnings(asWarnings);
      const bool good = driver.ReportUnsupportedFeatures(KvoObjDocument::InMemory());
      const cow_String expected = asWarnings ? tolerant : strict;
      const bool isWarning = expected == "?";
      EXPECT_EQ(good, expected.empty() || isWarning) << deck;
      const cow_List<cow_String>& told = isWarning ? m_recorder.warnings : m_recorder.errors;
      ASSERT_EQ(told.size(), expected.empty() ? 0u : 1u) << deck;
      if (!expected.empty()) {
        EXPECT_EQ(told[0].rfind(isWarning ? ignored : expected, 0), 0u) << told[0];
      }
    }
  }
}

TEST(Module, CountsItsUses) {
  int users = 0;
  KvoI2sInpS_initialize(users);
  KvoI2sInpS_initialize(users);
  EXPECT_EQ(users, 1);
  KvoI2sInpS_finalize(users);
  EXPECT_EQ(users, 1);
  KvoI2sInpS_finalize(users);
  EXPECT_EQ(users, 0);
}

TEST_F(Driver, GeneratorsLookAtNodesFromBeforeTheRestart) {
  const KvoObjDocument document = KvoObjDocument::InMemory();
  ASSERT_TRUE(
      Prepare("*NODE\n1, 0., 0., 0., 1., 0., 0.\n9, 4., 0., 0., 0., 1., 0.\n").Convert(document));
  ASSERT_TRUE(Prepare("*NGEN\n1, 9, 4\n").ConvertRestart(document));
  const auto blocks = document.GetMesh().NodeBlocks();
  ASSERT_EQ(blocks.size(), 2u);
  double values[6];
  eds_ArrayReader(blocks[1].coordinates).ReadPiece(0, std::span<double>(values, 3));
  eds_ArrayReader(blocks[1].normals).ReadPiece(0, std::span<double>(values + 3, 3));
  for (const int i : {0, 3, 4}) EXPECT_DOUBLE_EQ(values[i], i == 0 ? 2.0 : std::sqrt(0.5));
}

TEST_F(Driver, GeneratorsTellWhatTheyDoNotKnow) {
  const struct {
    const char* keyword;
    const char* message;
  } cases[] = {
      {"*NFILL\n1", "Line ignored."},
      {"*NCOPY, OLD SET=N, CHANGE NUMBER=1", "needs one of SHIFT, POLE and REFLECT"},
      {"*NMAP, NSET=N, TYPE=BLENDED", "TYPE=BLENDED is not provided"},
      {"*NMAP, NSET=N, TYPE=SCALE\n0., 0., 0.", "A scale takes a line with its point"},
  };
  for (const auto& [keyword, message] : cases) {
    const cow_String deck = cow_String(kTwoNodes) + "*NSET, NSET=N\n1\n" + keyword + "\n";
    EXPECT_FALSE(Prepare(deck).Convert(KvoObjDocument::InMemory())) << keyword;
    ASSERT_FALSE(m_recorder.errors.empty()) << keyword;
    EXPECT_NE(m_recorder.errors.back().find(message), cow_String::npos) << m_recorder.errors.back();
  }
}
