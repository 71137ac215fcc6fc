#include "base/utl_Assert.h"

#include <filesystem>
#include <gtest/gtest.h>

TEST(Assert, TellsTheConditionAndWhereItStands) {
  const unsigned lineOfTheAssertion = __LINE__ + 3;
  try {
    const int endPos = 4;
    utl_ASSERT(endPos <= 3);
    FAIL() << "no assertion";
  } catch (const utl_Assertion& assertion) {
    EXPECT_STREQ(assertion.what(), "endPos <= 3");
    EXPECT_EQ(assertion.Where().line(), lineOfTheAssertion);
    EXPECT_EQ(std::filesystem::path(assertion.Where().file_name()).filename(), "AssertTest.cpp");
  }
}
