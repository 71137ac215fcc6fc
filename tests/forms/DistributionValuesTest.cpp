// What distributions give to elements and nodes, read in bulk: of tests/decks/distributions.

#include "database/KvoObjDocument.h"
#include "database/KvoObjModel.h"
#include "inpS/properties/inpS_DistributionData.h"
#include "inpS/properties/inpS_DistributionValues.h"
#include "tests/host/ProgramRun.h"
#include <cmath>

namespace {

class DistributionValues : public ProgramTest {
protected:
  DistributionValues() {
    const auto deck = std::filesystem::path(INPS_TESTS_DIR) / "decks/distributions/values.inp";
    ProgramRun({"convert", utl_pathText(deck), "-o", File("m.sim"), "--force"});
    m_document = KvoObjDocument::Open(File("m.sim"), KvoAccess::ReadOnly);
  }
  KvoSimPosition Named(const char* name) const {
    return m_document.GetModel().Position().FollowStringKey(eds_Member::NamedDistributions, name);
  }
  KvoObjDocument m_document;
};

} // namespace

TEST_F(DistributionValues, RowsThenTheDefaultLine) {
  struct Case {
    const char* name;
    long long first;
    cow_List<double> values;
    long long lacking;
  };
  const double none = -1; // stands for NaN
  const Case cases[] = {
      {"PLAIN", 0, {71, 0.26, 70, 0.25, 72, 0.27, 70, 0.25, 73, 0.28}, 0},
      {"PLAIN", 3, {70, 0.25, 73, 0.28, 70, 0.25}, 0}, // beyond the mesh, too
      {"MIXED", 1, {4, 0.4, 2, 0.2, 1, 0.1, 5, 0.5}, 0},
      {"SHUFFLED", 0, {0.1, 0.9, 0.3, 0.9, 0.5}, 0},
      {"SHUFFLED", 2, {0.3, 0.9}, 0},
      {"DEFAULT-ALONE", 0, {4.5, 4.5}, 0},
      {"EVEN", 1, {2.5, none, none}, 2},
      {"NODES", 2, {2.5, 1.5, none, none}, 2},
  };
  for (const Case& c : cases) {
    inpS_DistributionValues source(Named(c.name));
    cow_List<double> read(c.values.size());
    EXPECT_EQ(source.Read(c.first, read), c.lacking) << c.name;
    for (double& value : read)
      if (std::isnan(value)) value = none;
    EXPECT_EQ(read, c.values) << c.name << " from " << c.first;
  }
}

TEST_F(DistributionValues, ColumnsOfSomeMembers) {
  const auto axes = inpS_DistributionData::Of(Named("AXES"), eds_MemberSet::Ordered({2, 0, 1}));
  ASSERT_EQ(axes.Count(), 3);
  cow_List<double> second(9);
  axes.Values(1, second.data(), second.size()); // of the two points
  EXPECT_EQ(second, (cow_List<double>{0, 1, 0, -1, 0, 0, 0, 1, 0}));
  auto even = inpS_DistributionData::Of(Named("EVEN"), eds_MemberSet::Strided(0, 3));
  even.SetDefaults({7});
  cow_List<double> lengths(3);
  even.Values(0, lengths.data(), lengths.size());
  EXPECT_EQ(lengths, (cow_List<double>{2.5, 2.5, 7}));
}
