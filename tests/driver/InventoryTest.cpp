#include "base/utl_Assert.h"
#include "inpS/framework/inpS_Inventory.h"
#include "parser/inp_KeywordExpansionVisitor.h"
#include "tests/parser/Parsed.h"
#include <gtest/gtest.h>

namespace {

inpS_Inventory inventoryOf(const cow_String& deck) {
  inp_KeywordExpansionVisitor expansion;
  expansion.VisitList(Parsed(deck).keywords);
  inpS_Inventory inventory;
  inventory.VisitList(expansion.Keywords());
  return inventory;
}

cow_String nodes(int count, const char* rest) {
  cow_String deck = "*NODE\n";
  for (int n = 1; n <= count; ++n) deck += std::to_string(n) + rest + "\n";
  return deck;
}

} // namespace

TEST(Inventory, RaisesTheModelToThreeDimensions) {
  const struct {
    const char* deck;
    int dimensions;
  } cases[] = {
      {"*NODE\n1, 0., 0., 0.\n", 2},
      {"*NODE\n1, 1., 1.\n2, 5., 6., 0\n", 2},
      {"*NODE\n1, 0., 0., 1e-30\n", 3},
      {"*NODE\n1, 0., 0., -0.0\n** a comment, 1, 2, 3\n", 2},
      {"*NODE\n1, 0., 0.,\n2, 0., 0., top\n", 3},
      {"*ELEMENT, TYPE=C3D8R\n", 3},
      {"*ELEMENT, TYPE=CPS4R\n", 2},
      {"*SYSTEM\n1., 2.\n", 2},
      {"*SYSTEM\n1., 2., 3.\n", 3},
      {"*SYSTEM\n1., 2., 0., 1., 1., 1.\n", 3},
      {"*SYSTEM\n1., 2., 0., 1., 1., 0.\n", 2},
      {"*SYSTEM\n1., 2., 0., 1., 1., 0.\n0., 1., 0.\n", 3},
      {"*SYSTEM\n1., 2., 0., 1., 1., 0.\n\n*NODE\n1, 1., 2.\n", 2}, // a blank line is none
      {"*SURFACE, TYPE=REVOLUTION, NAME=A\n", 3},
      {"*SURFACE, TYPE=SEGMENTS, NAME=A\n", 2},
      {"*STEP\n*STATIC, RIKS\n1.,1.,1e-5,1.,1.,7,3\n*END STEP\n", 3},
      {"*STEP\n*STATIC, RIKS\n1.,1.,1e-5,1.,1.,7,2\n*END STEP\n", 2},
      {"*STEP\n*STATIC\n1.,1.,1e-5,1.,1.,7,3\n*END STEP\n", 2},
      {"*PART, NAME=P\n*NODE\n1, 0., 0., 2.\n*END PART\n*ASSEMBLY, NAME=A\n"
       "*INSTANCE, NAME=I, PART=P\n*END INSTANCE\n*END ASSEMBLY\n",
       3},
      {"*PART, NAME=P\n*NODE\n1, 0., 0.\n*END PART\n*ASSEMBLY, NAME=A\n"
       "*INSTANCE, NAME=I, PART=P\n*END INSTANCE\n*NODE\n9, 0., 0., 5.\n*END ASSEMBLY\n",
       2},
  };
  for (const auto& [deck, dimensions] : cases)
    EXPECT_EQ(inventoryOf(deck).NumberSpatialDimensions(), dimensions) << deck;
}

TEST(Inventory, TellsTheProcedureFamily) {
  const struct {
    const char* deck;
    const char* family; // standard, explicit, flow
  } cases[] = {
      {"*STEP\n*STATIC\n*END STEP\n", "s.."},
      {"*STEP\n*DYNAMIC\n*END STEP\n", "s.."},
      {"*STEP\n*DYNAMIC, EXPLICIT\n*END STEP\n", ".e."},
      {"*STEP\n*ANNEAL\n*END STEP\n", ".e."},
      {"*STEP\n*CFD, INCOMPRESSIBLE NAVIER STOKES\n*END STEP\n", "..c"},
      {"*STEP\n*HEAT TRANSFER\n*END STEP\n", "s.."},
      {"*STEP\n*HEAT TRANSFER, TYPE=THERMAL FLOW\n*END STEP\n", "..c"},
      {"*STEP\n*DYNAMIC, EXPLICIT\n*END STEP\n*STEP\n*STATIC\n*END STEP\n", "se."},
  };
  for (const auto& [deck, family] : cases) {
    const inpS_Inventory inventory = inventoryOf(deck);
    cow_String found = "...";
    if (inventory.IsStandard()) found[0] = 's';
    if (inventory.IsExplicit()) found[1] = 'e';
    if (inventory.IsCFD()) found[2] = 'c';
    EXPECT_EQ(found, family) << deck;
  }
}

TEST(Inventory, SizesBlocks) {
  EXPECT_EQ(inventoryOf(nodes(100, ", 0.")).NodeChunkSize(), 256);
  EXPECT_EQ(inventoryOf(nodes(100, ", 0.") + "*NCOPY, CHANGE NUMBER=100, OLD SET=A, SHIFT\n1.\n\n")
                .NodeChunkSize(),
            8192);
  // 1 to 160001 by 10: 15999 generated between the two given.
  EXPECT_EQ(inventoryOf("*NODE\n1\n160001\n*NGEN\n1, 160001, 10\n").NodeChunkSize(), 16001 / 16);
  EXPECT_EQ(inventoryOf("*NGEN\n1, 160001, 0\n").NodeChunkSize(), 159999 / 16);
  // The part's 8000 nodes, and once more for each of two instances.
  EXPECT_EQ(inventoryOf("*PART, NAME=P\n" + nodes(8000, ", 0.") +
                        "*END PART\n*ASSEMBLY\n*INSTANCE, NAME=A, PART=P\n*END INSTANCE\n"
                        "*INSTANCE, NAME=B, PART=P\n*END INSTANCE\n*END ASSEMBLY\n")
                .NodeChunkSize(),
            24000 / 16);
  cow_String elements = "*ELEMENT, TYPE=T2D2\n";
  for (int n = 1; n <= 100000; ++n) elements += std::to_string(n) + ", 1, 2\n";
  EXPECT_EQ(inventoryOf(elements).ElementChunkSize(), 6250);
  EXPECT_EQ(inventoryOf("*ELEMENT, TYPE=T2D2\n1, 1, 2\n").ElementChunkSize(), 128);
  EXPECT_EQ(inventoryOf("*ELEMENT, TYPE=T2D2\n1, 1, 2\n*ELCOPY\n").ElementChunkSize(), 1024);
}

TEST(Inventory, RecordsTheRestartRequest) {
  const struct {
    const char* keyword;
    int kind, number, step;
    bool endStep;
  } cases[] = {
      {"*RESTART, READ, INC=5, INTERVAL=2", 1, 5, -1, false},
      {"*RESTART, READ, STEP=3, INTERVAL=2, CYCLE=9", 2, 2, 3, false},
      {"*RESTART, READ, ITERATION=4, CYCLE=9, END STEP", 4, 9, -1, true},
      {"*RESTART, READ, ITERATION=4", 3, 4, -1, false},
      {"*RESTART, READ, INC", 1, -1, -1, false},
      {"*RESTART, WRITE, INC=5", 0, -1, -1, false},
  };
  for (const auto& [keyword, kind, number, step, endStep] : cases) {
    const inpS_Inventory inventory = inventoryOf(cow_String(keyword) + "\n");
    EXPECT_EQ(static_cast<int>(inventory.RestartKind()), kind) << keyword;
    EXPECT_EQ(inventory.RestartNumber(), number) << keyword;
    EXPECT_EQ(inventory.RestartStep(), step) << keyword;
    EXPECT_EQ(inventory.RestartEndStep(), endStep) << keyword;
  }
}

TEST(Inventory, TakesTheHeadingAsItStands) {
  EXPECT_EQ(inventoryOf("*HEADING\nA beam, loaded\n  twice: \"x\", 1, 2,\n*STEP\n").Heading(),
            "A beam, loaded\n  twice: \"x\", 1, 2,\n");
  EXPECT_EQ(inventoryOf("*HEADING\n*STEP\n").Heading(), "");
}
