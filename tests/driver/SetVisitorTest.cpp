#include "inpS/driver/inpS_Inp2Sim.h"
#include "inpS/sets/inpS_SetVisitor.h"
#include "tests/base/TemporaryFolder.h"
#include <fstream>
#include <gtest/gtest.h>

namespace {

// What the lines of *MPC name, seen from where they stand.
class Probe : public inpS_SetVisitor {
public:
  using inpS_SetVisitor::inpS_SetVisitor;
  void VisitMpc(const inp_Keyword& keyword) override {
    Seen seen;
    for (long long row = 0; row < keyword.Data().Rows(); ++row)
      ReadNodeData(keyword, row, 0, seen.ordinals, seen.unknown);
    if (const KvoSimPosition set = GetNodeSet("S"); !set.IsNull()) GetNodeLabels(set, seen.nodes);
    if (const KvoSimPosition set = GetElementSet("E"); !set.IsNull())
      GetElementLabels(set, seen.elements);
    all.push_back(seen);
  }

  struct Seen {
    cow_List<int> ordinals, nodes, elements;
    cow_List<cow_String> unknown;
  };
  cow_List<Seen> all;
};

} // namespace

// Sets come in the order of their labels, unsorted ones as they were read; a part knows nothing of
// its instances, and a number beyond all labels is none of them.
TEST(SetVisitor, ReadsLabelsAndSetsFromWhereItStands) {
  const TemporaryFolder folder;
  const std::filesystem::path path = folder.Path() / "deck.inp";
  std::ofstream(path, std::ios::binary)
      << "*PART, NAME=P\n*NODE, NSET=S\n30, 0., 0., 0.\n10, 1., 0., 0.\n20, 2., 0., 0.\n"
         "*NSET, NSET=U, UNSORTED\n20, 30, 10\n*ELEMENT, TYPE=T3D2, ELSET=E\n7, 10, 20\n5, 20, 30\n"
         "*MPC\nS, U, 20\nI.10, I.S, 4294967306, NOBODY, I.4294967306\n*END PART\n"
         "*ASSEMBLY, NAME=A\n*INSTANCE, NAME=I, PART=P\n*END INSTANCE\n"
         "*INSTANCE, NAME=J, PART=P\n*END INSTANCE\n"
         "*NSET, NSET=S\nJ.S, I.S\n*ELSET, ELSET=E\nJ.E\n"
         "*MPC\nS, J.U, J.10, J.4294967306, 10\n*END ASSEMBLY\n";
  inpS_Inp2Sim driver(path.string(), folder.Path().string());
  ASSERT_TRUE(driver.Parse() && driver.CheckUtf8Compliance() && driver.Expand() &&
              driver.Reorganize() && driver.BuildInventory());
  const KvoObjDocument document = KvoObjDocument::InMemory();
  ASSERT_TRUE(driver.Convert(document));

  KvoObjLabeler nodes(document, 0), elements(document, 1);
  nodes.Read();
  elements.Read();
  Probe probe(nodes, elements, driver.Inventory());
  for (const inp_Keyword& keyword : driver.Keywords())
    if (!keyword.IsInstanceCopy()) probe.Visit(keyword);
  ASSERT_EQ(probe.all.size(), 2u);
  const auto& [ordinals, nodeLabels, elementLabels, unknown] = probe.all[0];
  EXPECT_EQ(ordinals, (cow_List<int>{1, 2, 0, 2, 0, 1, 2}));
  EXPECT_EQ(unknown, (cow_List<cow_String>{"I.10", "I.S", "4294967306", "NOBODY", "I.4294967306"}));
  EXPECT_EQ(nodeLabels, (cow_List<int>{10, 20, 30}));
  EXPECT_EQ(elementLabels, (cow_List<int>{5, 7}));
  // The nodes of I are 0 to 2, those of J 3 to 5.
  const Probe::Seen& assembly = probe.all[1];
  EXPECT_EQ(assembly.ordinals, (cow_List<int>{1, 2, 0, 4, 5, 3, 5, 3, 4, 4}));
  EXPECT_EQ(assembly.unknown, (cow_List<cow_String>{"J.4294967306", "10"}));
  EXPECT_EQ(assembly.nodes, (cow_List<int>{10, 20, 30, 10, 20, 30}));
  EXPECT_EQ(assembly.elements, (cow_List<int>{5, 7}));
}
