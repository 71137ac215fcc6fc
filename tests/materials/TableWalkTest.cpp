// Every row of the material table in both directions: a keyword with a number of its own in every
// place is converted, written and converted again, and each number must lie where it belongs.

#include "database/KvoObjDocument.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSrvFsmFTable.h"
#include "database/eds_ModelReader.h"
#include "parser/inp_KeywordTable.h"
#include "tests/host/KeptParameters.h"
#include "tests/materials/BehaviorDeck.h"
#include <set>

namespace {

KvoSimPosition findProperty(const KvoSimPosition& owner, eds_RecordKind kind) {
  for (const eds_Member member : {eds_Member::Properties, eds_Member::Suboptions}) {
    for (const KvoSimPosition& property : owner.GetVector(member)) {
      if (property.IsA(kind)) return property;
      const KvoSimPosition inner = findProperty(property, kind);
      if (!inner.IsNull()) return inner;
    }
  }
  return {};
}

void checkCase(const KvoSimPosition& model, const BehaviorCase& given) {
  const cow_String all = given.name + ": " + given.keywords.back();
  const eds_Member member = given.gasket ? eds_Member::GasketBehaviors : eds_Member::Materials;
  const KvoSimPosition property =
      findProperty(model.FollowStringKey(member, given.name), given.behavior->kind);
  ASSERT_FALSE(property.IsNull()) << all;
  const KvoSimDataRecord record = property.DataRecord();
  for (const auto& [field, value] : given.reals) EXPECT_EQ(record.GetDouble(field), value) << all;
  for (const auto& [field, value] : given.integers) {
    const bool flag =
        eds_ModelReader::Info(given.behavior->kind)->fields[static_cast<std::size_t>(field)].type ==
        eds_FieldType::Bool;
    EXPECT_EQ(flag ? record.GetBool(field) : record.GetInt(field), value) << all;
  }
  const KvoSrvFsmFTable table = property.GetFTable();
  EXPECT_EQ(table.IsNull(), given.values.empty()) << all;
  if (table.IsNull()) return;
  EXPECT_EQ(table.Values(), given.values) << all;
}

void checkModel(const std::filesystem::path& file, const cow_List<BehaviorCase>& cases) {
  const KvoObjDocument document = KvoObjDocument::Open(file, KvoAccess::ReadOnly);
  const KvoSimPosition model = document.GetModel().Position();
  for (const BehaviorCase& one : cases) checkCase(model, one);
}

} // namespace

using MaterialTable = ProgramTest;

TEST_F(MaterialTable, EveryRowGoesBothWays) {
  cow_List<BehaviorCase> cases;
  int number = 0;
  for (const inpS_Form* behavior : inpS_behaviorForms())
    for (BehaviorCase& one : behaviorCases(*behavior, number)) cases.push_back(std::move(one));
  cow_String deck = "*HEADING\nall behaviours\n";
  for (const BehaviorCase& one : cases) {
    deck += (one.gasket ? "*GASKET BEHAVIOR, NAME=" : "*MATERIAL, NAME=") + one.name + "\n";
    for (const cow_String& keyword : one.keywords) deck += keyword;
  }
  const auto run = [&](const cow_List<cow_String>& words) {
    const ProgramRun program(words);
    EXPECT_EQ(program.exitCode, 0) << program.err << program.out;
  };
  run({"convert", Deck("all.inp", deck), "-o", File("a.sim"), "--strict"});
  checkModel(File("a.sim"), cases);
  run({"write", File("a.sim"), "-o", File("a.inp")});
  run({"convert", File("a.inp"), "-o", File("b.sim"), "--strict"});
  checkModel(File("b.sim"), cases);
  run({"write", File("b.sim"), "-o", File("b.inp")});
  EXPECT_EQ(readFile(File("a.inp")), readFile(File("b.inp")));
  run({"diff", File("a.sim"), File("b.sim")});
}

// Whatever parameter the vocabulary has for the keyword is in the deck that is written, and stays.
TEST_F(MaterialTable, EveryParameterComesBack) {
  int number = 0;
  for (const inpS_Form* behavior : inpS_behaviorForms()) {
    const cow_String least = leastCase(*behavior, number).keywords.back();
    const auto parameters = furtherParameters(behavior->keyword, least.substr(0, least.find('\n')));
    cow_String deck;
    for (const DeckParameter& parameter : parameters) {
      BehaviorCase one = leastCase(*behavior, number);
      cow_String& text = one.keywords.back();
      text.insert(text.find('\n'), parameter.Text());
      deck += (one.gasket ? "*GASKET BEHAVIOR, NAME=" : "*MATERIAL, NAME=") + one.name + "\n";
      for (const cow_String& keyword : one.keywords) deck += keyword;
    }
    expectKept(Deck("a.inp", deck), behavior->keyword, parameters,
               cow_String(eds_ModelReader::Info(behavior->kind)->name));
  }
}

// A keyword without a form would be lost.
TEST_F(MaterialTable, RowsAreWhole) {
  const inp_KeywordTable& keywords = inp_KeywordTable::Instance();
  for (const inp_KeywordEnm outer : {inp_KwMaterial, inp_KwGasketBehavior})
    for (const inp_KeywordEnm child : keywords.Row(outer)->children)
      EXPECT_TRUE(inpS_isBehavior(child) || child == inp_KwNoCompression ||
                  child == inp_KwNoTension)
          << keywords.Row(child)->name;
}
