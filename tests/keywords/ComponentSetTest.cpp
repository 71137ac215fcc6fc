#include "base/utl_Assert.h"
#include "database/KvoObjDocument.h"
#include "inpS/keywords/inpS_ArrayInt.h"
#include "inpS/keywords/inpS_CSet.h"
#include "inpS/keywords/inpS_Collection.h"
#include "inpS/keywords/inpS_componentUtilities.h"
#include <gtest/gtest.h>
#include <sstream>

using Ints = cow_List<int>;

namespace {

class ComponentSets : public ::testing::Test {
protected:
  KvoObjDocument m_document = KvoObjDocument::InMemory();

  cow_List<cow_String> ComponentNames(const KvoSimCSetID& id) {
    cow_List<cow_String> names;
    const char* const all[] = {"C_1",     "C_2",     "C_3",     "C_QUAT1",
                               "C_QUAT2", "C_QUAT3", "C_QUAT4", "C_11"};
    const KvoSimCollection components = m_document.GetComponentCollection();
    for (const int32_t member : KvoSimCSet(id).OrderedMembers())
      for (const char* name : all)
        if (m_document.GetCMemberIndex(components, m_document.GetSymbol(name)) == member)
          names.push_back(name);
    return names;
  }

  Ints ThereAndBack(const Ints& components, bool stored = true) {
    const KvoSimCSetID id = inpS_getComponentsAsCSet(m_document, components, stored);
    return stored ? inpS_getComponentsAsListInt(KvoSimCSet(id).Position())
                  : inpS_getComponentsAsListInt(id);
  }

  template <class Call> cow_String AssertionOf(Call call) {
    try {
      call();
    } catch (const utl_Assertion& e) {
      return e.what();
    }
    return "none";
  }
};

} // namespace

TEST_F(ComponentSets, NumbersStandForTypes) {
  const char* const names[] = {"DISPLACEMENT_1",   "DISPLACEMENT_2",   "DISPLACEMENT_3",
                               "ROTATION_ANGLE_1", "ROTATION_ANGLE_2", "ROTATION_ANGLE_3"};
  for (int number = 1; number <= 6; ++number) {
    const KvoSimPosition type = inpS_getComponentAsDofType(m_document, number);
    EXPECT_EQ(type.GetSymbolName(), names[number - 1]);
    EXPECT_EQ(inpS_getComponentAsDofType(m_document, names[number - 1]), type);
    EXPECT_EQ(inpS_getComponentAsInt(type), number);
  }
  const cow_String invalid =
      "\"invalid component type specified for connector behavior option\" == 0";
  for (const int number : {7, 0, -1})
    EXPECT_EQ(AssertionOf([&] { inpS_getComponentAsDofType(m_document, number); }), invalid);
  EXPECT_EQ(AssertionOf([&] { inpS_getComponentAsDofType(m_document, ""); }),
            "symbolName.Length() > 0");
  EXPECT_EQ(AssertionOf([&] { inpS_getComponentAsInt(m_document.GetSymbol("PORE_PRESSURE")); }),
            "\"unknown dof symbol position\" == 0");
}

TEST_F(ComponentSets, KeepTheirOrder) {
  for (const Ints& components : {Ints{1, 2, 3}, Ints{3, 1, 2}, Ints{6}, Ints{6, 5, 4, 3, 2, 1}}) {
    EXPECT_EQ(ThereAndBack(components), components);
    EXPECT_EQ(ThereAndBack(components, false), components);
  }
  EXPECT_EQ(AssertionOf([&] { ThereAndBack({1, 2, 3, 4, 5, 6, 1}); }), "numComps < 7");
  EXPECT_EQ(AssertionOf([&] { ThereAndBack({1, 2, 1}); }), "ld == numComps");
}

TEST_F(ComponentSets, VectorsAndQuaternions) {
  using Names = cow_List<cow_String>;
  EXPECT_EQ(ComponentNames(inpS_get2DVectorComponentCSet(m_document)), (Names{"C_1", "C_2"}));
  EXPECT_EQ(ComponentNames(inpS_get3DVectorComponentCSet(m_document)),
            (Names{"C_1", "C_2", "C_3"}));
  EXPECT_EQ(ComponentNames(inpS_getQuaternionComponentCSet(m_document)),
            (Names{"C_QUAT1", "C_QUAT2", "C_QUAT3", "C_QUAT4"}));
  EXPECT_EQ(ComponentNames(inpS_Collection::VectorComponentsCSet(m_document, 1)), Names{"C_1"});
  EXPECT_EQ(AssertionOf([&] { inpS_Collection::VectorComponentsCSet(m_document, 4); }),
            "numDim < 4");
}

TEST_F(ComponentSets, SetsOfACollection) {
  inpS_Collection points(m_document.GetPointCollection());
  EXPECT_EQ(points.ExtendSpace(10), 0);
  EXPECT_EQ(points.ExtendSpace(2), 10);
  EXPECT_EQ(points.Space(), 12);
  EXPECT_EQ(inpS_CSet(points.BiggestCSetID()).Size(), 12);

  const inpS_CSet given = points.CreateCSet(Ints{7, 3, 5});
  const inpS_CSet strided = points.CreateCSetStrided(1, 3, 4); // 1, 5, 9
  const inpS_CSet range(points, 4, 2);
  const inpS_CSet copy(points, given);
  EXPECT_FALSE(copy.ID() == given.ID());
  Ints members;
  inpS_CSet(given.ID()).GetMembers(members);
  EXPECT_EQ(members, (Ints{7, 3, 5}));
  copy.GetMembers(members);
  EXPECT_EQ(members, (Ints{7, 3, 5}));
  given.Union(strided).GetMembers(members);
  EXPECT_EQ(members, (Ints{1, 3, 5, 7, 9}));
  given.Intersection(range).GetMembers(members);
  EXPECT_EQ(members, (Ints{5}));
  EXPECT_EQ(Ints(strided.GetMembersPtr(), strided.GetMembersPtr() + 3), (Ints{1, 5, 9}));
  EXPECT_EQ(inpS_ArrayInt(given.Set(), 2).AsList(), (Ints{7, 3}));
  EXPECT_TRUE(given.GetExtensionSetID(points.CreateCSet(inpS_ArrayInt(1, 3))) == given.ID());
  EXPECT_EQ(inpS_CSet(given.GetExtensionSetID(range)).Size(), 4); // 3, 4, 5, 7
  std::ostringstream out;
  given.Print(out, "points");
  EXPECT_EQ(out.str(), "points (3 members): 7 3 5\n");
}
