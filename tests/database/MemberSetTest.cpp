#include "database/eds_MemberSet.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <set>

namespace {

eds_MemberSet randomSet(std::mt19937& random) {
  auto pick = [&](int most) {
    return static_cast<int32_t>(random() % static_cast<unsigned>(most));
  };
  if (random() % 2 == 0) {
    const int32_t stride = 1 + pick(7);
    const int32_t first = pick(40);
    const int32_t count = pick(12);
    if (random() % 4 != 0 || count == 0) return eds_MemberSet::Strided(first, count, stride);
    return eds_MemberSet::Strided(first + (count - 1) * stride, count, -stride);
  }
  std::vector<int32_t> members(static_cast<size_t>(pick(12)));
  for (int32_t& member : members) member = pick(100);
  return random() % 2 == 0 ? eds_MemberSet::Ascending(members) : eds_MemberSet::Ordered(members);
}

std::set<int32_t> asStdSet(const eds_MemberSet& set) {
  const std::vector<int32_t> members = set.Members();
  return {members.begin(), members.end()};
}

bool isFolded(const eds_MemberSet& set) {
  const std::vector<int32_t> members = set.Members();
  bool constant = members.size() < 2 || members[1] != members[0];
  for (size_t i = 2; i < members.size(); ++i)
    constant = constant && members[i] - members[i - 1] == members[1] - members[0];
  return constant == set.IsStrided();
}

} // namespace

TEST(MemberSet, AlgebraAgreesWithStdSet) {
  std::mt19937 random(7);
  for (int round = 0; round < 20000; ++round) {
    const eds_MemberSet a = randomSet(random);
    const eds_MemberSet b = randomSet(random);
    const std::set<int32_t> setA = asStdSet(a);
    const std::set<int32_t> setB = asStdSet(b);
    std::vector<int32_t> both, common;
    std::set_union(setA.begin(), setA.end(), setB.begin(), setB.end(), std::back_inserter(both));
    std::set_intersection(setA.begin(), setA.end(), setB.begin(), setB.end(),
                          std::back_inserter(common));
    ASSERT_EQ(a.Union(b).Members(), both) << "round " << round;
    ASSERT_EQ(a.Intersection(b).Members(), common) << "round " << round;
    ASSERT_TRUE(isFolded(a.Union(b)) && isFolded(a.Intersection(b))) << "round " << round;
    ASSERT_EQ(a.SameMembers(b), setA == setB && a.Size() == b.Size() ? true : setA == setB);
    ASSERT_EQ(a.SameSet(b), a.Members() == b.Members());
    for (int32_t member = -3; member < 110; member += 7)
      ASSERT_EQ(a.IsMember(member), setA.count(member) == 1);
  }
}

TEST(MemberSet, KeepsOrderAndRepeats) {
  const eds_MemberSet set = eds_MemberSet::Ordered({7, 3, 7, 1});
  EXPECT_EQ(set.Members(), (std::vector<int32_t>{7, 3, 7, 1}));
  EXPECT_FALSE(set.IsAscending());
  EXPECT_EQ(set.AscendingSet().Members(), (std::vector<int32_t>{1, 3, 7}));
  const eds_MemberSet falling = eds_MemberSet::Ordered({10, 7, 4, 1});
  EXPECT_TRUE(falling.IsStrided());
  EXPECT_EQ(falling.Stride(), -3);
  EXPECT_EQ(eds_MemberSet::Ordered({5, 5}).Members(), (std::vector<int32_t>{5, 5}));
}

TEST(MemberSet, WithoutMembersAllAreTheSame) {
  for (const eds_MemberSet& none :
       {eds_MemberSet::Strided(7, 0, 3), eds_MemberSet::Ordered({}),
        eds_MemberSet::Strided(0, 4).Intersection(eds_MemberSet::Strided(9, 4))})
    EXPECT_TRUE(none.SameSet(eds_MemberSet()));
}

TEST(MemberSet, HugeRangesStayRanges) {
  const eds_MemberSet even = eds_MemberSet::Strided(0, 1'000'000'000, 2);
  const eds_MemberSet third = eds_MemberSet::Strided(0, 700'000'000, 3);
  const eds_MemberSet sixth = even.Intersection(third);
  EXPECT_TRUE(sixth.IsStrided());
  EXPECT_EQ(sixth.Stride(), 6);
  EXPECT_EQ(sixth.Size(), 333'333'334); // 0 .. 1999999998
  const eds_MemberSet front = eds_MemberSet::Strided(0, 1'000'000'000);
  EXPECT_EQ(front.Union(eds_MemberSet::Strided(500, 1'000'000'000)).Size(), 1'000'000'500);
}
