#include "base/utl_Exception.h"
#include "inpS/messages/KvoI2sSWipReporter.h"
#include <functional>
#include <gtest/gtest.h>
#include <sstream>

namespace {

struct Outcome {
  cow_String printed;
  cow_String thrown;
};

Outcome outcomeOf(const std::function<void(KvoI2sSWipReporter&)>& call) {
  std::ostringstream out;
  KvoI2sSWipReporter reporter(out);
  Outcome outcome;
  try {
    call(reporter);
  } catch (const utl_Exception& e) {
    outcome.thrown = e.Text();
  }
  outcome.printed = out.str();
  return outcome;
}

const cow_String a40(40, 'a');
const cow_String b45(45, 'b');

struct Case {
  const char* what;
  std::function<void(KvoI2sSWipReporter&)> call;
  cow_String printed;
  cow_String thrown;
};

} // namespace

TEST(SWipReporter, SaysExactly) {
  const Case cases[] = {
      {"error", [](auto& r) { r.Error("bad", 5); }, "***Error: bad\n\n", "Error: bad"},
      {"wrapped twice over", [](auto& r) { r.Error(a40 + " " + b45, 0); },
       "***Error: " + a40 + " \n           " + b45 + "\n\n", "Error: " + a40 + " \n       " + b45},
      {"errors",
       [](auto& r) {
         r.ErrorList({"1", "2", "3", "4", "5"}, 1);
       },
       "***Error: 1\n\n***Error: 2\n\n***Error: 3\n\n***Error: 4\n\n***Error: 5\n\n",
       "Error: 1\n       2\n       and more ..."},
      {"two errors",
       [](auto& r) {
         r.ErrorList({"1", "2"}, 1);
       },
       "***Error: 1\n\n***Error: 2\n\n", "Error: 1\n       2"},
      {"one error", [](auto& r) { r.ErrorList({"1"}, 1); }, "***Error: 1\n\n", "Error: 1"},
      {"no error", [](auto& r) { r.ErrorList({}, 1); }, "", ""},
      {"warning", [](auto& r) { r.Warning("Tr\xE4ger"); }, "***Warning: Tr\\xe4ger\n", ""},
      {"warnings",
       [](auto& r) {
         r.WarningList({"1", "2"});
       },
       "***Warning: 1\n***Warning: 2\n", ""},
      {"landmark", [](auto& r) { r.Landmark("here\nthere"); },
       "***Landmark: here\n           there\n", ""},
      {"milestone", [](auto& r) { r.Milestone("one\ntwo"); }, "           one\n           two\n",
       ""},
      {"milestone of four", [](auto& r) { r.Milestone("s", "t", 1, 2); },
       "Milestone str,str,int,int is unimplemented\n", ""},
      {"milestone of two", [](auto& r) { r.Milestone("s", 1); },
       "Milestone str,int is unimplemented\n", ""},
      {"verbose", [](auto& r) { r.Verbose("s"); }, "Verbose is unimplemented\n", ""},
      {"print", [](auto& r) { r.Print("s"); }, "Print is unimplemented\n", ""},
      {"display", [](auto& r) { r.Display("s"); }, "Display is unimplemented\n", ""},
      {"interrupted", [](auto& r) { EXPECT_FALSE(r.Interrupted()); },
       "Interrupted is unimplemented\n", ""},
      {"command done", [](auto& r) { r.CommandDone(); }, "CommandDone is unimplemented\n", ""},
      {"interrupted throw", [](auto& r) { r.InterruptedThrow(); },
       "InterruptedThrow is unimplemented\n", ""},
  };
  for (const Case& c : cases) {
    const Outcome outcome = outcomeOf(c.call);
    EXPECT_EQ(outcome.printed, c.printed) << c.what;
    EXPECT_EQ(outcome.thrown, c.thrown) << c.what;
  }
}

TEST(SWipReporter, LocatedMessagesShowTheirPlace) {
  wip_Message message("bad label");
  message.keyword = "NODE";
  message.place.file = "a.inp";
  message.place.line = 3;
  EXPECT_EQ(outcomeOf([&](auto& r) { r.Warning(message); }).printed,
            "***Warning: in keyword *NODE, file \"a.inp\", line 3: bad label\n");
}
