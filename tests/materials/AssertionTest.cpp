// The conditions that no deck can break: the visitors report what would lead to them. And what one
// deck alone cannot show.

#include "base/utl_Assert.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_PropertyUtils.h"
#include "inpS/history/inpS_AmplitudeVisitor.h"
#include "inpS/materials/inpS_MaterialVisitor.h"
#include "tests/parser/Parsed.h"
#include <gtest/gtest.h>

namespace {

// A deck, the inventory of it and an empty model.
struct Converted {
  explicit Converted(const cow_String& deck)
      : parsed(deck), document(KvoObjDocument::InMemory()),
        owner(document.CreateDataRecord(eds_RecordKind::Material)) {
    inventory.VisitList(parsed.keywords);
    inventory.SetDocument(document);
  }
  Parsed parsed;
  KvoObjDocument document;
  KvoSimPosition owner;
  inpS_Inventory inventory;
};

cow_String failureOf(const std::function<void()>& run) {
  try {
    run();
  } catch (const utl_Assertion& assertion) {
    return assertion.what();
  }
  return "no assertion";
}

} // namespace

TEST(MaterialAssertions, UnknownValues) {
  const struct {
    const char* keyword;
    const char* condition;
  } cases[] = {
      {"*PLASTIC, HARDENING=FOO\n1., 0.\n", "\"Unsupported plastic type\" == 0"},
      {"*CONDUCTIVITY, TYPE=FOO\n1.\n", "\"Unsupported thermal conductivity type\" == 0"},
      {"*ELECTRICAL CONDUCTIVITY, TYPE=FOO\n1.\n",
       "\"Unsupported electrical conductivity type\" == 0"},
      {"*VISCOSITY, DEFINITION=FOO\n1.\n", "\"Unknown viscosity definition\" == 0"},
      {"*VISCOELASTIC\n1., 2., 3.\n",
       "\"frequency or time or nonlinear parameter is required for *VISCOELASTIC\" == 0"},
      {"*DEPVAR\n", "numRows>= 1"},
  };
  for (const auto& [keyword, condition] : cases) {
    const Converted deck("*MATERIAL, NAME=M\n" + cow_String(keyword));
    inpS_Ledger ledger;
    inpS_MaterialVisitor visitor(deck.inventory, ledger);
    const cow_String failure =
        failureOf([&] { visitor.CreateBehavior(deck.parsed.keywords.at(1), deck.owner); });
    EXPECT_NE(failure.find(condition), cow_String::npos) << keyword << failure;
  }
}

TEST(MaterialAssertions, OwnersThatHaveNoSuchBehavior) {
  const struct {
    const char* keyword;
    const char* condition;
  } cases[] = {
      {"*CREEP\n1., 2., 0.\n",
       "\"Creep option must be a suboption for material or gasket behavior\" == 0"},
      {"*EXPANSION\n1.\n",
       "\"expansion option must be a suboption for material or gasket behavior\" == 0"},
      {"*KAPPA\n1.\n", "! parent.IsNull()"},
  };
  for (const auto& [keyword, condition] : cases) {
    const Converted deck("*MATERIAL, NAME=M\n*SOLUBILITY\n1.\n" + cow_String(keyword));
    inpS_Ledger ledger;
    inpS_MaterialVisitor visitor(deck.inventory, ledger);
    const inp_Keyword& last = deck.parsed.keywords.at(2);
    const KvoSimPosition behavior = deck.document.CreateDataRecord(eds_FormKind::Solubility);
    const KvoSimPosition wrong = last.Kind() == inp_KwKappa ? KvoSimPosition() : behavior;
    const cow_String failure = failureOf([&] { visitor.CreateBehavior(last, wrong); });
    EXPECT_NE(failure.find(condition), cow_String::npos) << keyword << failure;
    const KvoSimPosition right = last.Kind() == inp_KwKappa ? behavior : deck.owner;
    EXPECT_FALSE(visitor.CreateBehavior(last, right).IsNull()) << keyword;
  }
}

TEST(MaterialAssertions, ExtraColumnsComeInPairs) {
  const Converted deck("*MATERIAL, NAME=M\n*DENSITY\n1.\n");
  const auto create = [&](const inpS_ExtraColumns& dependent, const inpS_ExtraColumns& other) {
    return failureOf([&] {
      inpS_PropertyUtils::CreateProperty(deck.owner, deck.parsed.keywords.at(1), 1, 1, 1, true,
                                         dependent, other);
    });
  };
  EXPECT_NE(
      create({{0}, {}}, {}).find("posDepExtraColNumbers.size() == posDepExtraColNames.size()"),
      cow_String::npos);
  EXPECT_NE(create({}, {{}, {"A"}})
                .find("posInDepExtraColNumbers.size() == posInDepExtraColNames.size()"),
            cow_String::npos);
}

TEST(Amplitudes, SmoothingLeftOutFollowsTheAnalysis) {
  const struct {
    const char* step;
    double smoothing;
  } cases[] = {{"*STEP\n*STATIC\n1., 1.\n*END STEP\n", 0.25},
               {"*STEP\n*DYNAMIC, EXPLICIT\n, 1.\n*END STEP\n", 0},
               {"*STEP\n*CFD, INCOMPRESSIBLE NAVIER STOKES\n0.1, 1.\n*END STEP\n", 0}};
  for (const auto& [step, smoothing] : cases) {
    const Converted deck("*AMPLITUDE, NAME=A\n0., 0., 1., 1.\n" + cow_String(step));
    inpS_Ledger ledger;
    inpS_AmplitudeVisitor visitor(deck.inventory, ledger);
    visitor.VisitList(deck.parsed.keywords);
    const KvoSimPosition amplitude =
        deck.document.GetModel().Position().FollowStringKey(eds_Member::Amplitudes, "A");
    ASSERT_FALSE(amplitude.IsNull());
    EXPECT_EQ(amplitude.DataRecord().GetDouble(
                  eds_formField(eds_FormKind::AmplitudeTabular, "smoothing")),
              smoothing)
        << step;
  }
}
