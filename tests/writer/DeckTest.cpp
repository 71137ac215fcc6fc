#include "base/bcu_ResourceMonitor.h"
#include "base/utl_Stream.h"
#include "database/KvoObjDocument.h"
#include "database/KvoObjElementSet.h"
#include "database/KvoObjModel.h"
#include "database/KvoObjNodeSet.h"
#include "inpS/writer/inpS_SetNames.h"
#include "inpS/writer/inpS_Sim2Inp.h"
#include <gtest/gtest.h>
#include <sstream>

// A process that dies at its start leaves a model without a mesh.
TEST(Writer, WritesAnEmptyModel) {
  cow_String deck;
  std::ostringstream diagnostics;
  utl_Stream out(&deck);
  inpS_Sim2Inp(KvoObjDocument::InMemory(), 0, true, "", nullptr, diagnostics).Print(out);
  out.Flush();
  EXPECT_EQ(deck, "*HEADING\n"); // what is written can be read
  EXPECT_EQ(diagnostics.str().rfind("inpS_Sim2Inp::Print\ninpS_Sim2Inp::PrintHeading\n", 0), 0u);
}

// Another program may have made sets without names; what takes the place of these is nobody's.
TEST(Writer, NamesSetsThatHaveNoName) {
  const KvoObjDocument document = KvoObjDocument::InMemory();
  const KvoSimPosition owner = document.GetModel().Position();
  const auto add = [&](auto set, bool internal) {
    set.Bind(owner, internal);
    return set.Position();
  };
  const KvoSimPosition nameless = add(KvoObjNodeSet(document.Context(), ""), false);
  const cow_String usual = "NSET-" + std::to_string(nameless.ID());
  EXPECT_EQ(SetName(nameless), usual);
  EXPECT_EQ(SetName(add(KvoObjNodeSet(document.Context(), usual), true)), usual);
  EXPECT_EQ(SetName(nameless), usual + "-1");
  const KvoSimPosition elements = add(KvoObjElementSet(document.Context(), ""), true);
  EXPECT_EQ(SetName(elements), "ELSET-" + std::to_string(elements.ID()));
}

// Whoever measures a host's memory or time by the marks relies on their names and their order.
TEST(Writer, MarksItsBlocksInOrder) {
  struct Recorder : bcu_ResourceMonitor {
    void Mark(const cow_String& label) override { marks.push_back(label); }
    cow_List<cow_String> marks;
  } recorder;
  const char* const names[] = {
      "LoadElemSpec", "LoadNodesMap", "LoadElemsMap", "CycSym",  "Nodes",    "Nsets",   "Elems",
      "Elsets",       "Distribs",     "Orients",      "Xforms",  "Surfs",    "Constrs", "RigBods",
      "Amps",         "PhyConsts",    "ContactInit",  "Mats",    "GaskBeh",  "ConnBeh", "Sects",
      "Preten",       "NonStrMass",   "Filts",        "TimePts", "IntProps", "Inters",  "FluidCav",
      "ICs",          "IntOutSecs",   "Steps"};
  cow_List<cow_String> expected = {"Sim2Inp-Print-Start"};
  for (const char* const name : names)
    for (const char* const end : {"-Start", "-End"})
      expected.push_back(cow_String("Sim2Inp-") + name + end);
  expected.push_back("Sim2Inp-Print-End");

  bcu_ResourceMonitor* const before = bcu_ResourceMonitor::Install(&recorder);
  std::ostringstream deck, diagnostics;
  {
    utl_Stream out(deck);
    inpS_Sim2Inp(KvoObjDocument::InMemory(), 0, false, "", nullptr, diagnostics).Print(out);
  }
  bcu_ResourceMonitor::Install(before);
  EXPECT_EQ(recorder.marks, expected);
}
