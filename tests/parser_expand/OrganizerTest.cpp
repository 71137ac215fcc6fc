#include "parser/inp_OrganizerVisitor.h"
#include "tests/parser/Parsed.h"
#include <gtest/gtest.h>

namespace {

cow_String organized(const char* deck, bool featureEnhanced) {
  Parsed parsed(deck);
  EXPECT_EQ(shown(parsed.errors), "");
  parsed.keywords.emplace(parsed.keywords.begin() + 1); // a null one
  inp_OrganizerVisitor visitor(featureEnhanced);
  visitor.VisitList(parsed.keywords);
  cow_String list;
  for (const inp_Keyword& keyword : visitor.Keywords()) {
    const inp_KeywordEnm kind = keyword.Kind();
    const bool ofAssembly =
        kind == inp_KwAssemblyNset || kind == inp_KwAssemblyElset || kind == inp_KwAssemblyElement;
    list += (list.empty() ? "" : ", ") + keyword.Name() + (ofAssembly ? " of assembly" : "");
  }
  return list;
}

} // namespace

TEST(Organizer, Cases) {
  const struct {
    const char* deck;
    const char* enhanced;
    const char* flat;
  } cases[] = {
      {"*Heading\nx\n*Node\n*Step\n*Static\n*End Step\n", "HEADING, NODE, STEP, STATIC, END STEP",
       "HEADING, NODE, STEP, STATIC, END STEP"},
      {"*Node\n*Step\n*Static\n*End Step\n*Amplitude, name=a\n*Step\n*Static\n*Boundary\n*End "
       "Step\n"
       "*Material, name=m\n*Elastic\n",
       "NODE, AMPLITUDE, MATERIAL, ELASTIC, STEP, STATIC, END STEP, STEP, STATIC, BOUNDARY, END "
       "STEP",
       "NODE, AMPLITUDE, MATERIAL, ELASTIC, STEP, STATIC, END STEP, STEP, STATIC, BOUNDARY, END "
       "STEP"},
      {"*Part, name=p\n*Nset, nset=a\n*Element, type=MASS\n*End Part\n*Assembly, name=a\n"
       "*Instance, name=i, part=p\n*Elset, elset=e\n*End Instance\n*Nset, nset=b\n*Elset, elset=f\n"
       "*Element, type=MASS\n*Node\n*End Assembly\n*Nset, nset=c\n",
       "PART, NSET, ELEMENT, END PART, ASSEMBLY, INSTANCE, ELSET, END INSTANCE, NSET of assembly, "
       "ELSET of assembly, ELEMENT of assembly, NODE, END ASSEMBLY, NSET",
       "PART, NSET, ELEMENT, END PART, ASSEMBLY, INSTANCE, ELSET, END INSTANCE, NSET, ELSET, "
       "ELEMENT, NODE, END ASSEMBLY, NSET"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(organized(c.deck, true), c.enhanced);
    EXPECT_EQ(organized(c.deck, false), c.flat);
  }
}
