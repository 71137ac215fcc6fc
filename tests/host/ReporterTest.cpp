#include "host/inps_Matching.h"
#include "host/inps_Reporter.h"
#include "host/inps_Session.h"
#include "host/inps_Timings.h"
#include <gtest/gtest.h>
#include <sstream>

namespace {

struct Told {
  std::ostringstream out;
  std::ostringstream err;
  inps_Session session{out, err};
  std::size_t Count(std::string_view text) const {
    const cow_String all = err.str();
    std::size_t count = 0;
    for (std::size_t at = all.find(text); at != cow_String::npos; at = all.find(text, at + 1))
      ++count;
    return count;
  }
};

wip_Message messageAt(long long line, const char* text, const char* keyword = "NODE") {
  wip_Message message(text);
  message.keyword = keyword;
  message.place.file = "deck.inp";
  message.place.line = line;
  return message;
}

TEST(Reporter, EqualMessagesFoldAndAreCounted) {
  Told told;
  inps_Reporter reporter(told.session, inps_Reporter::Mode::Show);
  for (int line = 1; line <= 1000; ++line) {
    reporter.Error(messageAt(line, "zero label"), 1);
    if (line <= 6) reporter.Warning(messageAt(line, "zero label"));
    if (line <= 5) reporter.Error(messageAt(line, "zero label", "ELEMENT"), 1);
  }
  EXPECT_EQ(told.Count("error: zero label [*NODE]"), 5u);
  EXPECT_EQ(told.Count("warning: zero label"), 5u);
  EXPECT_EQ(told.Count("[*ELEMENT]"), 5u);
  reporter.ShowFolded();
  EXPECT_EQ(told.Count("… and 995 more like this"), 1u);
  EXPECT_EQ(told.Count("… and 1 more like this"), 1u);
  EXPECT_EQ(told.Count("more like this"), 2u);
  EXPECT_EQ(reporter.CountsText(), "1005 errors, 6 warnings");
}

TEST(Reporter, QuietShowsErrorsOnlyAndKeepingShowsNothing) {
  Told quiet;
  inps_Reporter errorsOnly(quiet.session, inps_Reporter::Mode::ErrorsOnly);
  errorsOnly.WarningList({messageAt(1, "odd"), messageAt(2, "odd")});
  errorsOnly.ErrorList({messageAt(3, "bad")}, 1);
  EXPECT_EQ(quiet.err.str(), "deck.inp:3: error: bad [*NODE]\n");
  EXPECT_EQ(errorsOnly.Warnings(), 2);

  Told kept;
  inps_Reporter keeping(kept.session, inps_Reporter::Mode::Keep);
  for (int line = 1; line <= 7; ++line) keeping.Error(messageAt(line, "bad"), 1);
  EXPECT_EQ(kept.err.str(), "");
  ASSERT_EQ(keeping.Messages().size(), 7u);
  EXPECT_EQ(keeping.Messages()[6].message.place.line, 7);
}

TEST(Timings, SpansNestAndUnknownEndsAreIgnored) {
  inps_Timings timings;
  bcu_ResourceMonitor::Instance().Mark("a-Start");
  bcu_ResourceMonitor::Instance().Mark("b-Start");
  bcu_ResourceMonitor::Instance().Mark("x-End");
  bcu_ResourceMonitor::Instance().Mark("b-End");
  bcu_ResourceMonitor::Instance().Mark("a-End");
  bcu_ResourceMonitor::Instance().Mark("c-Start");
  const auto spans = timings.Spans();
  ASSERT_EQ(spans.size(), 3u);
  EXPECT_EQ(spans[1].label, "b");
  EXPECT_EQ(spans[1].depth, 1);
  EXPECT_FALSE(spans[0].open);
  EXPECT_GE(spans[0].seconds, spans[1].seconds);
  EXPECT_EQ(spans[2].depth, 0);
  EXPECT_TRUE(spans[2].open);
}

TEST(Matching, EqualKeysFindEachOtherInOrder) {
  const cow_List<cow_String> a = {"p", "q", "p", "gone", "r"};
  const cow_List<cow_String> b = {"q", "p", "new", "r", "p", "p"};
  const inps_Matching matching(a, b);
  const cow_List<std::pair<std::size_t, std::size_t>> both = {{0, 1}, {1, 0}, {2, 4}, {4, 3}};
  EXPECT_EQ(matching.both, both);
  EXPECT_EQ(matching.onlyA, cow_List<std::size_t>{3});
  EXPECT_EQ(matching.onlyB, (cow_List<std::size_t>{2, 5}));
}

} // namespace
