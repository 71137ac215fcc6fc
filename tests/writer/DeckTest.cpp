#include "base/bcu_ResourceMonitor.h"
#include "base/utl_Stream.h"
#include "database/KvoObjDocument.h"
#include "database/KvoObjElementSet.h"
#include "database/KvoObjModel.h"
#include "database/KvoObjNodeSet.h"
#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_Form.h"
#include "database/schema/eds_FormKind.h"
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

// Lines that are columns by now were texts once; files that have them are written all the same.
TEST(Writer, PrintsWhatEarlierVersionsHaveMade) {
  const KvoObjDocument document = KvoObjDocument::InMemory();
  const KvoSimPosition model = document.GetModel().Position();
  const auto add = [&](eds_RecordKind kind, const cow_String& lines) {
    const KvoSimPosition record = model.CreateDataRecord(kind);
    model.Associate(eds_Member::InitialConditions, record);
    record.DataRecord().SetString(eds_formField(kind, "lines"), lines);
    return record.DataRecord();
  };
  add(eds_FormKind::InitialOther, "1, 1, CRACK, 0.5\n").SetString(0, "ENRICHMENT");
  add(eds_FormKind::InitialSolution, "1, BARS, 0.5\n").SetBool(0, true);
  add(eds_FormKind::InitialBackStresses, "1, 0.5\n").SetInt(0, 1);
  cow_String deck;
  std::ostringstream diagnostics;
  utl_Stream out(&deck);
  inpS_Sim2Inp(document, 0, true, "", nullptr, diagnostics).Print(out);
  out.Flush();
  EXPECT_EQ(deck, "*INITIAL CONDITIONS, TYPE=ENRICHMENT\n1, 1, CRACK, 0.5\n"
                  "*INITIAL CONDITIONS, REBAR, TYPE=SOLUTION\n1, BARS, 0.5\n"
                  "*INITIAL CONDITIONS, NUMBER BACKSTRESSES=1, TYPE=HARDENING\n1, 0.5\n");
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
