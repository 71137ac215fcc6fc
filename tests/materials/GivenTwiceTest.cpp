// Which keywords one material may have several times: one table for each rate, direction, criterion
// or experiment. Of all others the first one holds, and the second is told.

#include "database/eds_ModelReader.h"
#include "tests/host/ProgramRun.h"
#include "tests/materials/BehaviorDeck.h"
#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

namespace {

using MaterialTable = ProgramTest;

const std::set<std::string_view> severalByName = {
    "CLAY HARDENING",
    "CONCENTRATION TENSOR",
    "CONSTITUENT",
    "DAMAGE EVOLUTION",
    "DAMAGE INITIATION",
    "DETONATION POINT",
    "DRUCKER PRAGER HARDENING",
    "LOADING DATA",
    "NONLINEAR BH",
    "POTENTIAL",
    "UNIAXIAL",
    "UNLOADING DATA",
};
// Of these the other variants stand once: hardening that is tabulated by rate or not at all, each
// joint of a rock, each network of a rubber, experiments at several temperatures.
const std::set<std::string_view> severalByVariant = {
    "PlasticIsotropic",
    "CyclicHardening",
    "JointedMaterialJoint",
    "ViscoelasticNonlinearPowerLaw",
    "ViscoelasticNonlinearBergstromBoyce",
    "ViscoelasticNonlinearHyperbolicSine",
    "ViscoelasticNonlinearUser",
    "ViscoelasticNonlinearStrain",
    "UniaxialTestData",
    "UniaxialTestDataLateral",
    "UniaxialTestDataLowDensityFoam",
    "UniaxialTestDataMullins",
    "BiaxialTestData",
    "PlanarTestData",
    "VolumetricTestData",
};

long long lineCount(std::string_view text) {
  return std::count(text.begin(), text.end(), '\n');
}

TEST_F(MaterialTable, WhatMayBeGivenTwice) {
  struct Second {
    long long line;
    cow_String keyword;
    bool mayBe;
  };
  cow_List<Second> seconds;
  cow_String deck;
  int number = 0;
  for (const inpS_Form* behavior : inpS_behaviorForms()) {
    const BehaviorCase one = behaviorCases(*behavior, number).front();
    deck += (one.gasket ? "*GASKET BEHAVIOR, NAME=" : "*MATERIAL, NAME=") + one.name + "\n";
    for (const cow_String& keyword : one.keywords) deck += keyword;
    const cow_String& last = one.keywords.back();
    const cow_String name = last.substr(1, last.find_first_of(",\n") - 1);
    seconds.push_back({lineCount(deck) + 1, last,
                       severalByName.contains(name) ||
                           severalByVariant.contains(eds_ModelReader::Info(behavior->kind)->name)});
    deck += last;
  }
  const ProgramRun run({"check", Deck("twice.inp", deck), "--json"});
  std::set<long long> told;
  const nlohmann::json said = nlohmann::json::parse(run.out, nullptr, false);
  for (const nlohmann::json& message : said.at("messages"))
    if (message["text"].get<cow_String>().find("is given a second time for") != cow_String::npos)
      told.insert(message["line"].get<long long>());
  for (const Second& second : seconds)
    EXPECT_NE(told.contains(second.line), second.mayBe) << second.keyword;
}

} // namespace
