#include "base/utl_Stream.h"
#include "database/KvoObjDocument.h"
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
