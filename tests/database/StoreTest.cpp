#include "base/utl_Assert.h"
#include "database/KvoObjDocument.h"
#include "database/KvoObjModel.h"
#include "database/KvoSrvBulkShellLayers.h"
#include "database/KvoSrvFsmFTable.h"
#include "database/eds_Exception.h"
#include "database/eds_ModelReader.h"
#include "tests/database/TemporaryFolder.h"
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>

namespace {

// Everything of a model as text: equal models give equal texts.
std::string walk(const KvoObjDocument& document) {
  const eds_ModelReader reader(document);
  std::ostringstream text;
  for (const eds_RecordInfo* kind : reader.Kinds()) {
    for (int64_t id : reader.RecordIDs(kind->kind)) {
      text << reader.Describe({kind->kind, id}) << ":";
      for (size_t field = 0; field < kind->fields.size(); ++field) {
        const eds_FieldValue value = reader.Value(kind->kind, id, static_cast<int>(field));
        text << " " << value.index() << "=";
        if (const auto* number = std::get_if<int64_t>(&value)) text << *number;
        if (const auto* real = std::get_if<double>(&value)) text << *real;
        if (const auto* flag = std::get_if<bool>(&value)) text << *flag;
        if (const auto* words = std::get_if<std::string_view>(&value)) text << *words;
        if (const auto* object = std::get_if<eds_ObjectID>(&value))
          text << reader.Describe(*object);
      }
      for (const eds_LinkInfo& link : reader.Links(kind->kind, id))
        text << "\n  " << link.memberName << "[" << link.textKey << link.position << "] "
             << reader.Describe(link.target);
      text << " " << reader.Annotation(kind->kind, id) << "\n";
    }
  }
  return text.str();
}

// A little of everything.
void fill(KvoObjDocument document) {
  KvoSimTransaction transaction(document.ContextID());
  KvoObjModel model = document.GetModel();
  model.Position().SetAnnotation("heading, \xc3\xa4 \xe2\x82\xac");
  KvoObjMesh mesh;
  mesh.Register(document);
  model.SetMesh(mesh);
  KvoSimCollection nodes = document.CreateTypedCollection(eds_CollectionKind::Node).AsCollection();
  mesh.SetNodeCollection(nodes);
  KvoSimCollection elements =
      document.CreateTypedCollection(eds_CollectionKind::Element).AsCollection();
  mesh.SetElementCollection(elements);
  mesh.SetCoordinates(document.CreateTypedDistribution(eds_DataType::Coordinates, {nodes},
                                                       {eds_ValueType::Double, 3}));
  mesh.SetConnectivity(document.CreateTypedDSet(eds_DataType::Connectivity, {elements, nodes}));
  const KvoSimPosition part = document.CreateDataRecord(eds_RecordKind::Part);
  model.AppendPart("P", part);
  KvoMeshNodeBlock pattern;
  pattern.owner = part;
  pattern.count = 4;
  eds_ArrayWriter writer(part, eds_ValueType::Double, 3);
  writer.Append(std::span<const double>(std::vector<double>(12, 1.5)));
  pattern.coordinates = writer.Finish();
  mesh.AddNodes(pattern);
  for (int i = 0; i < 3; ++i) {
    const KvoSimPosition instance = document.CreateDataRecord(eds_RecordKind::Instance);
    model.AppendOccurence("I-" + std::to_string(3 - i), instance);
    KvoMeshNodeBlock block = pattern;
    block.owner = instance;
    block.flatFirst = 4 * i;
    mesh.AddNodes(block);
  }
  KvoMeshElementBlock bricks;
  bricks.owner = part;
  bricks.count = 2;
  bricks.width = 2;
  bricks.flatFirst = 0;
  eds_ArrayWriter connectivity(part, eds_ValueType::Int32, 2);
  connectivity.Append(std::span<const int32_t>(std::vector<int32_t>{0, 1, 2, -1}));
  bricks.connectivity = connectivity.Finish();
  mesh.AddElements(bricks);
  KvoObjNodeSet set(document.Context(), "N");
  set.Bind(part);
  set.SetOrderedMembership(nodes, std::vector<int32_t>{3, 1, 2});
  std::vector<int32_t> many(2000);
  nodes.ExtendSpace(10000);
  for (int32_t i = 0; i < 2000; ++i) many[static_cast<size_t>(i)] = i * i % 10007 % 10000;
  KvoObjNodeSet internal(document.Context(), "N");
  internal.Bind(part, true);
  internal.SetMembership(nodes, many);
  transaction.Commit();
}

} // namespace

TEST(Store, ReopenedModelIsEqual) {
  const TemporaryFolder folder;
  KvoObjDocument document = KvoObjDocument::Create(folder / "a.sim");
  fill(document);
  const std::string before = walk(document);
  document.Finish();
  EXPECT_EQ(walk(document), before);
  document.Close();
  EXPECT_TRUE(document.IsClosed());
  const KvoObjDocument again = KvoObjDocument::Open(folder / "a.sim", KvoAccess::ReadOnly);
  EXPECT_TRUE(again.IsFinished());
  EXPECT_EQ(walk(again), before);
  EXPECT_EQ(eds_checkModel(again), eds_Faults());
  KvoObjDocument other = KvoObjDocument::InMemory();
  fill(other);
  EXPECT_EQ(walk(other), before);

  KvoObjMesh mesh = again.GetMesh();
  EXPECT_EQ(mesh.NodeBlocks().size(), 4u);
  const KvoObjModel model = again.GetModel();
  const KvoSimPosition second = model.Occurences()[1];
  EXPECT_EQ(second.Name(), "I-2");
  EXPECT_EQ(model.RetrieveOccurences().begin()->first, "I-1");
  ASSERT_EQ(mesh.NodeBlocks(second).size(), 1u);
  EXPECT_EQ(mesh.NodeBlocks(second)[0].flatFirst, 4);
  EXPECT_EQ(mesh.NodeBlocks(second)[0].coordinates,
            mesh.NodeBlocks(model.GetPart("P"))[0].coordinates);
  EXPECT_EQ(mesh.GetConnectivity().Representation()[0].RangeType().NumValues(), 2);
  const KvoObjNodeSet ordered(mesh.NodeSets(model.GetPart("P"))[0]);
  EXPECT_EQ(ordered.Membership().OrderedMembers(), (std::vector<int32_t>{3, 1, 2}));
  EXPECT_EQ(ordered.Membership().Members(), (std::vector<int32_t>{1, 2, 3}));
  EXPECT_EQ(model.Position().GetAnnotation(), "heading, \xc3\xa4 \xe2\x82\xac");
}

TEST(Store, ChangesOfAnExistingFileAreKept) {
  const TemporaryFolder folder;
  {
    KvoObjDocument document = KvoObjDocument::Create(folder / "a.sim");
    fill(document);
    document.Finish();
  }
  {
    KvoObjDocument document = KvoObjDocument::Open(folder / "a.sim", KvoAccess::ReadWrite);
    KvoSimTransaction transaction(document.ContextID());
    document.GetModel().GetPart("P").DataRecord().SetString(eds_Part_Name, "renamed");
    document.GetModel().GetOccurence("I-2").Remove();
    const KvoMeshNodeBlock block = document.GetMesh().NodeBlocks()[0];
    const std::vector<double> moved{7, 8, 9};
    eds_updateArray(block.coordinates, 1, std::as_bytes(std::span(moved)));
    transaction.Commit();
    EXPECT_FALSE(document.IsFinished());
  }
  const KvoObjDocument document = KvoObjDocument::Open(folder / "a.sim", KvoAccess::ReadOnly);
  EXPECT_FALSE(document.IsFinished());
  EXPECT_EQ(document.GetModel().GetPart("P").DataRecord().GetString(eds_Part_Name), "renamed");
  EXPECT_EQ(document.GetModel().Occurences().size(), 2u);
  EXPECT_EQ(document.Context().GetRecords(eds_RecordKind::Instance).size(), 2u);
  std::vector<double> read(3);
  eds_ArrayReader(document.GetMesh().NodeBlocks()[0].coordinates).ReadPiece(1, std::span(read));
  EXPECT_EQ(read, (std::vector<double>{7, 8, 9}));
}

// An exception passes through a transaction: all of it is taken back, nothing else.
class StoreAbandon : public testing::TestWithParam<std::tuple<bool, bool>> {};

TEST_P(StoreAbandon, LeavesNothing) {
  const TemporaryFolder folder;
  const auto [inFile, saved] = GetParam();
  KvoObjDocument document =
      inFile ? KvoObjDocument::Create(folder / "a.sim") : KvoObjDocument::InMemory();
  fill(document);
  document.SetMeta("source_deck", "first");
  if (saved) document.Context().Save(); // else its commit still waits for company
  const std::string before = walk(document);
  struct Stop {};
  try {
    KvoSimTransaction outer(document.ContextID());
    {
      KvoSimTransaction inner(document.ContextID());
      eds_ArrayWriter writer(document.Focus(), eds_ValueType::Double, 1);
      writer.Append(std::span<const double>(std::vector<double>(300000, 2.0)));
      writer.Finish();
      inner.Commit();
    }
    document.SetMeta("source_deck", "lost");
    document.GetModel().GetPart("P").DataRecord().SetString(eds_Part_Name, "lost");
    document.GetModel().Occurences()[0].DataRecord().UnsetMember(eds_Instance_Name);
    document.GetModel().GetOccurence("I-2").Remove();
    document.GetModel().AppendPart("Q", document.CreateDataRecord(eds_RecordKind::Part));
    const std::vector<double> moved{7, 8, 9};
    eds_updateArray(document.GetMesh().NodeBlocks()[0].coordinates, 1,
                    std::as_bytes(std::span(moved)));
    throw Stop();
  } catch (const Stop&) {
  }
  EXPECT_EQ(walk(document), before);
  EXPECT_EQ(document.GetMeta("source_deck"), "first");
  EXPECT_EQ(eds_checkModel(document), eds_Faults());
  std::vector<double> read(3);
  eds_ArrayReader(document.GetMesh().NodeBlocks()[0].coordinates).ReadPiece(1, std::span(read));
  EXPECT_EQ(read, std::vector<double>(3, 1.5));
  // What comes next has the numbers of what was taken back, and reaches the file.
  {
    KvoSimTransaction transaction(document.ContextID());
    document.GetModel().AppendPart("R", document.CreateDataRecord(eds_RecordKind::Part));
    transaction.Commit();
  }
  const std::string after = walk(document);
  EXPECT_NE(after, before);
  if (!inFile) return;
  document.Close();
  EXPECT_EQ(walk(KvoObjDocument::Open(folder / "a.sim", KvoAccess::ReadOnly)), after);
}

INSTANTIATE_TEST_SUITE_P(InFileAndPhysicalOrGathered, StoreAbandon,
                         testing::Combine(testing::Bool(), testing::Bool()));

TEST(Store, LinksOfEveryShape) {
  const KvoObjDocument document = KvoObjDocument::InMemory();
  KvoSimTransaction transaction(document.ContextID());
  const KvoSimPosition owner = document.Focus();
  std::vector<KvoSimPosition> parts;
  for (int i = 0; i < 40; ++i) { // beyond the length from which keys are hashed
    parts.push_back(document.CreateDataRecord(eds_RecordKind::Part));
    owner.AssociateStringKey(eds_Member::Parts, "p" + std::to_string(i), parts.back());
    owner.Associate(eds_Member::Fields, parts.back());
    owner.Associate(eds_Member::Properties, parts[static_cast<size_t>(i / 2)]);
  }
  EXPECT_EQ(owner.MemberCount(eds_Member::Parts), 40);
  EXPECT_EQ(owner.MemberCount(eds_Member::Properties), 20); // a set holds each once
  EXPECT_EQ(owner.FollowStringKey(eds_Member::Parts, "p33"), parts[33]);
  EXPECT_TRUE(owner.FollowStringKey(eds_Member::Parts, "p40").IsNull());
  owner.AssociateStringKey(eds_Member::Parts, "p33", parts[0]); // replaced in its place
  EXPECT_EQ(owner.FollowMap(eds_Member::Parts)[33], parts[0]);
  EXPECT_EQ(owner.GetStringKeys(eds_Member::Parts)[33], "p33");
  EXPECT_EQ(owner.FollowList(eds_Member::Fields, 39), parts[39]);
  EXPECT_TRUE(owner.FollowList(eds_Member::Fields, 40).IsNull());
  parts[5].Remove();
  EXPECT_TRUE(owner.FollowStringKey(eds_Member::Parts, "p5").IsNull());
  EXPECT_EQ(owner.FollowList(eds_Member::Fields, 5), parts[6]);
  EXPECT_FALSE(document.HasRecord(eds_RecordKind::Part, parts[5].ID()));
  EXPECT_EQ(parts[0].Parent(), owner);
  EXPECT_THROW(owner.SetPosition(eds_Member::Parts, parts[1]), utl_Assertion);
  transaction.Commit();
}

// Long lists beside plain ones, while links come, go and come again.
TEST(Store, LongListsLoseWhatIsRemoved) {
  const KvoObjDocument document = KvoObjDocument::InMemory();
  KvoSimTransaction transaction(document.ContextID());
  const KvoSimPosition owner = document.Focus();
  std::vector<std::pair<std::string, KvoSimPosition>> plain; // in order of entering
  unsigned random = 7;
  int names = 0;
  for (int round = 0; round < 2000; ++round) {
    random = random * 1664525 + 1013904223;
    const bool grows = (round / 200) % 2 == 0; // beyond the length of hashed keys, and back to none
    if (plain.empty() || random >> 30 != 0 ? grows : !grows) {
      // Now and then under a name that was removed before.
      const std::string name = "p" + std::to_string(random >> 28 != 0 ? names++ : names / 2);
      if (!owner.FollowStringKey(eds_Member::Parts, name).IsNull()) continue;
      plain.emplace_back(name, document.CreateDataRecord(eds_RecordKind::Part));
      owner.AssociateStringKey(eds_Member::Parts, name, plain.back().second);
      owner.Associate(eds_Member::Fields, plain.back().second);
      owner.Associate(eds_Member::Properties, plain.back().second);
    } else if (!plain.empty()) {
      const auto at = plain.begin() + (random >> 8) % plain.size();
      const auto [name, part] = *at;
      plain.erase(at);
      part.Remove();
      ASSERT_TRUE(owner.FollowStringKey(eds_Member::Parts, name).IsNull()) << round;
    }
    for (const auto& [name, part] : plain)
      ASSERT_EQ(owner.FollowStringKey(eds_Member::Parts, name), part) << round;
    if (round % 3 != 0) continue; // removals may gather
    ASSERT_EQ(owner.MemberCount(eds_Member::Properties), static_cast<int64_t>(plain.size()));
    for (size_t i = 0; i < plain.size(); ++i) {
      ASSERT_EQ(owner.GetStringKeys(eds_Member::Parts)[i], plain[i].first);
      ASSERT_EQ(owner.FollowList(eds_Member::Fields, static_cast<int64_t>(i)), plain[i].second);
      ASSERT_EQ(plain[i].second.Parent(), owner);
    }
  }
  EXPECT_GT(names, 100);
  transaction.Commit();
}

TEST(Store, FieldsKeepTypeAndDefault) {
  const KvoObjDocument document = KvoObjDocument::InMemory();
  KvoSimTransaction transaction(document.ContextID());
  KvoSimDataRecord record = document.CreateDataRecord(eds_RecordKind::Instance).DataRecord();
  EXPECT_TRUE(record.IsMemberNull(eds_Instance_Dependent));
  EXPECT_TRUE(record.GetBool(eds_Instance_Dependent));
  EXPECT_EQ(record.GetDouble(eds_Instance_QuaternionW), 1.0);
  EXPECT_EQ(record.GetInt(eds_Instance_FirstNode), -1);
  record.SetBool(eds_Instance_Dependent, false);
  EXPECT_FALSE(record.GetBool(eds_Instance_Dependent));
  record.UnsetMember(eds_Instance_Dependent);
  EXPECT_TRUE(record.GetBool(eds_Instance_Dependent));
  record.SetDouble(eds_Instance_QuaternionW, std::numeric_limits<double>::quiet_NaN());
  EXPECT_TRUE(record.IsMemberNull(eds_Instance_QuaternionW)); // as it is when read from a file
  record.SetInt(eds_Instance_NodeCount, int64_t{1} << 40);
  EXPECT_EQ(record.GetInt64(eds_Instance_NodeCount), int64_t{1} << 40);
  EXPECT_THROW(record.GetInt(eds_Instance_NodeCount), eds_DamagedFileException);
  EXPECT_THROW(record.SetDouble(eds_Instance_Name, 1), utl_Assertion);
  EXPECT_THROW(record.SetInt(99, 1), utl_Assertion);
  EXPECT_THROW(record.SetReference(eds_Instance_Part, record.Pos()), utl_Assertion);
  transaction.Commit();
}

TEST(Store, CollectionsAndSymbols) {
  const KvoObjDocument document = KvoObjDocument::InMemory();
  const KvoSimCollection dofs = document.GetDofTypeCollection();
  EXPECT_EQ(document.GetCMemberIndex(dofs, document.GetSymbol("ROTATION_ANGLE_2")), 4);
  EXPECT_EQ(document.GetCMemberIndex(dofs, document.GetSymbol("C_1")), -1);
  EXPECT_TRUE(document.GetSymbol("NO_SUCH").IsNull());
  const KvoSimCollection components = document.GetComponentCollection();
  EXPECT_EQ(document.GetSymbol("C_QUAT4").GetSymbolName(), "C_QUAT4");
  EXPECT_EQ(document.GetCMemberIndex(components, document.GetSymbol("C_QUAT1")), 9);
  EXPECT_EQ(document.GetDofTypeCollection(), dofs);
  KvoSimTransaction transaction(document.ContextID());
  KvoSimCollection points = document.GetPointCollection();
  EXPECT_EQ(points.ExtendSpace(5), 0);
  KvoSimCSetID all = points.BiggestCSetID();
  EXPECT_EQ(points.ExtendSpace(3), 5);
  EXPECT_EQ(KvoSimCSet(all).Size(), 8);
  EXPECT_THROW(points.CreateCSet(std::vector<int32_t>{8}), utl_Assertion);
  // Few members lie in the set's own record, more in an array: readers of the file know both.
  points.ExtendSpace(4000);
  std::vector<int32_t> members(1024);
  for (int32_t i = 0; i < 1024; ++i) members[static_cast<std::size_t>(i)] = 2 * i + i % 3 / 2;
  points.CreateCSet(members);
  EXPECT_FALSE(document.HasRecord(eds_RecordKind::Array, 1));
  members.push_back(3000);
  const KvoSimCSet many = points.CreateCSet(members);
  EXPECT_TRUE(document.HasRecord(eds_RecordKind::Array, 1));
  EXPECT_EQ(many.Size(), 1025);
  // Sets are the same within one collection only.
  const KvoSimCSet first = points.CreateTempCSetStrided(0, 3);
  EXPECT_TRUE(first.SameSet(points.CreateTempCSetStrided(0, 3)));
  EXPECT_FALSE(first.SameSet(points.CreateTempCSetStrided(0, 2)));
  KvoSimCollection others = document.GetComponentCollection();
  EXPECT_FALSE(first.SameSet(others.CreateTempCSetStrided(0, 3)));
  EXPECT_LT(points.CreateTempCSetStrided(0, 3).ID().Number(), 0);
  EXPECT_EQ(document.GetCMembersFromDynamicIDs(document.GetMaterialCollection(), {1, 7}),
            (std::vector<int32_t>{-1, -1}));
  transaction.Commit();
}

// What is given up takes nothing along: neither what was committed before it, nor the mark of a
// model that is finished.
TEST(Store, ClosingGivesUpTheOpenTransactionAlone) {
  const TemporaryFolder folder;
  KvoObjDocument document = KvoObjDocument::Create(folder / "m.sim", KvoSize::Small);
  const auto make = [&](bool commits) {
    KvoSimTransaction transaction(document.ContextID());
    document.CreateDataRecord(eds_RecordKind::VerbatimKeyword);
    document.SetMeta("source_deck", commits ? "a.inp" : "b.inp");
    if (commits) return transaction.Commit();
    document.Close();
  };
  make(true);
  make(false);
  document = KvoObjDocument::Open(folder / "m.sim", KvoAccess::ReadWrite);
  EXPECT_EQ(document.Context().GetRecords(eds_RecordKind::VerbatimKeyword).size(), 1u);
  EXPECT_EQ(document.GetMeta("source_deck"), "a.inp");
  document.Finish();
  document.Close();
  document = KvoObjDocument::Open(folder / "m.sim", KvoAccess::ReadWrite);
  make(false);
  EXPECT_TRUE(KvoObjDocument::Open(folder / "m.sim", KvoAccess::ReadOnly).IsFinished());
}

// Committed rows wait and are written by the table, many at a time: what a later transaction
// changes, removes or gives up of those that wait, and fields that only some rows have.
TEST(Store, RowsThatWaitAreWrittenAsTheyAre) {
  constexpr int rows = 5003;
  const TemporaryFolder folder;
  KvoObjDocument document = KvoObjDocument::Create(folder / "m.sim", KvoSize::Small);
  std::vector<KvoSimPosition> made;
  const auto change = [&](int n, const std::function<void(KvoSimPosition)>& how, bool commits) {
    KvoSimTransaction transaction(document.ContextID());
    how(made[static_cast<size_t>(n)]);
    if (commits) transaction.Commit();
  };
  for (int n = 0; n < rows; ++n) {
    KvoSimTransaction transaction(document.ContextID());
    KvoSimPosition record = document.CreateDataRecord(eds_RecordKind::VerbatimKeyword);
    if (n % 3 != 0) record.DataRecord().SetString(eds_VerbatimKeyword_Text, std::to_string(n));
    if (n % 5 != 0) record.DataRecord().SetInt(eds_VerbatimKeyword_Position, n);
    transaction.Commit();
    made.push_back(record);
    const auto setBlock = [&](KvoSimPosition at) {
      at.DataRecord().SetInt(eds_VerbatimKeyword_Block, n);
    };
    if (n % 7 == 6) change(n - 5, setBlock, true);
    if (n % 11 == 10) change(n - 3, setBlock, false);
    if (n % 13 == 12)
      change(
          n - 12, [](KvoSimPosition at) { at.Remove(); }, true);
  }
  for (const bool isMade : {true, false}) { // a table of nothing but what went while it waited
    KvoSimTransaction transaction(document.ContextID());
    if (isMade)
      made.push_back(document.CreateDataRecord(eds_RecordKind::KeptPart));
    else
      made.back().Remove();
    transaction.Commit();
  }
  const std::string before = walk(document);
  document.Close();
  EXPECT_EQ(walk(KvoObjDocument::Open(folder / "m.sim", KvoAccess::ReadOnly)), before);
}

TEST(Store, ServicesGiveBackWhatTheyWereGiven) {
  const KvoObjDocument document = KvoObjDocument::InMemory();
  const KvoSimPosition material = document.CreateDataRecord(eds_RecordKind::Material);
  const std::vector<double> values{200e3, 0, 20, 250e3, 0.1, 40};
  KvoSrvFsmFTable::CreateTable(material, 7, 2, 0, {"YieldStress"}, {"PlasticStrain"}, 8, values, 3,
                               true, {"YieldStress", "PlasticStrain"});
  KvoSrvFsmFTable table = material.GetFTable();
  EXPECT_EQ(table.Values(), values);
  EXPECT_EQ(table.DependentColumns(), std::vector<cow_String>{"YieldStress"});
  EXPECT_EQ(table.IndependentColumns(), std::vector<cow_String>{"PlasticStrain"});
  EXPECT_TRUE(table.IsTemperatureDependent());
  using Names = std::vector<cow_String>;
  EXPECT_EQ(table.ColumnNames(), (Names{"YieldStress", "PlasticStrain", "Temperature"}));
  EXPECT_EQ(table.GetColumnData("PlasticStrain"), (std::vector<double>{0, 0.1}));
  EXPECT_EQ(table.GetColumnData("Temperature"), (std::vector<double>{20, 40}));
  EXPECT_FALSE(table.HasColumn("Field1"));
  std::vector<double> filled(6);
  table.FillPointer(filled.data());
  EXPECT_EQ(filled, values);
  table.SetValues(1, std::vector<double>{200e3, 0}, 2, false);
  EXPECT_FALSE(table.HasColumn("Temperature"));
  EXPECT_EQ(table.ColumnNames(), (Names{"YieldStress", "PlasticStrain"}));
  KvoSrvShellSection section = KvoSrvShellSection::Create(document.Context(), "S", true);
  section.AddPly({"top", 0.5, 3, material, {}, 45});
  section.AddPly({"core", 2.5, 5, {}, {}, -45});
  for (const auto& plies :
       {section.Plies(), KvoSrvBulkShellLayers::Create(section, section.Plies()).Plies()}) {
    ASSERT_EQ(plies.size(), 2u);
    EXPECT_EQ(plies[0].material, material);
    EXPECT_TRUE(plies[1].material.IsNull());
    EXPECT_EQ(plies[1].integrationPoints, 5);
    EXPECT_EQ(plies[1].angle, -45);
  }
}
