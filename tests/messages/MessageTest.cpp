#include "base/utl_Assert.h"
#include "inpS/messages/inpS_Exception.h"
#include "inpS/messages/inpS_I18MessageDictionary.h"
#include "inpS/messages/inpS_MessageContainer.h"
#include "inpS/messages/inpS_MessageReporter.h"
#include "parser/inp_Parser.h"
#include "parser/inp_Visitor.h"
#include "tests/messages/RecordingReporter.h"
#include <gtest/gtest.h>
#include <iostream>
#include <sstream>
#include <thread>

namespace {

inp_Keyword keywordOf(const cow_String& deck) {
  return inp_Parser(deck, "", {}, "job.inp", true, true, false).Parse(false).at(0);
}

inpS_Message atNode(int line, int offset, const cow_String& file) {
  inpS_Message message("text");
  message.SetKeywordId(inp_KwNode);
  message.SetFileName(file);
  message.SetLine(line);
  message.SetLineOffset(offset);
  return message;
}

} // namespace

TEST(MessageDictionary, KnowsItsTexts) {
  struct Case {
    cow_String (*dictionary)(int);
    int id;
    const char* text;
  };
  const Case cases[] = {
      {i18n_inpS_appMessages, -1, ""},
      {i18n_inpS_appMessages, 0, "Parameter \"%1$s\" is a required parameter."},
      {i18n_inpS_appMessages, 6, "Part \"%1$s\" cannot be created."},
      {i18n_inpS_appMessages, 7, ""},
      {i18n_inpS_modelMessages, 14,
       "Tabular data for at least one option or suboption\nhas either blank or zero valued "
       "row(s)."},
      {i18n_inpS_modelMessages, 21,
       "Only one analytical rigid surface can be defined per part. Part \"%1$s\" already has "
       "analytic rigid surface \"%2$s\""},
      {i18n_inpS_modelMessages, 22, ""},
      {i18n_inpS_meshMessages, 0,
       "Element number is not defined or is zero for element of type %s."},
      {i18n_inpS_meshMessages, 4,
       "Node number is not a positive integer or is larger 999999999: %1$"},
      {i18n_inpS_meshMessages, 10,
       "The radii for LINE=C are not equal. The end points must be moved by more than 5 percent to "
       "lie on a circle."},
      {i18n_inpS_meshMessages, 14,
       "The number of intervals must be even when the SINGULAR parameter is specified."},
      {i18n_inpS_meshMessages, 15, ""},
  };
  for (const Case& c : cases) EXPECT_EQ(c.dictionary(c.id), c.text) << c.id;
}

TEST(MessageDictionary, LeavesGivenTextsAlone) {
  inpS_Message message(inpS_Message::Model, inpS_model_PartNameMissing);
  message.SetText("my own");
  inpS_I18MessageDictionary().Convert(message);
  EXPECT_EQ(message.Text(), "my own");
}

TEST(MessageDictionary, UnknownTypeIsOurFault) {
  std::ostringstream printed;
  std::streambuf* const before = std::cerr.rdbuf(printed.rdbuf());
  inpS_Message message(static_cast<inpS_Message::MsgType>(4), 0);
  cow_String condition;
  try {
    inpS_I18MessageDictionary().Convert(message);
  } catch (const utl_Assertion& e) {
    condition = e.what();
  }
  std::cerr.rdbuf(before);
  EXPECT_EQ(condition, "\"Invalid MessageType in the MessageDictionary (inpO).\" == 0");
  EXPECT_EQ(printed.str(), "Unknown inpS_MessageType: 4\n");
}

TEST(MsgArg, MakesItsTextAtOnce) {
  struct Case {
    inpS_MsgArg arg;
    inpS_MsgArg::Kind kind;
    const char* text;
  };
  const char* const none = nullptr;
  const Case cases[] = {
      {inpS_MsgArg(), inpS_MsgArg::None, ""},
      {-7, inpS_MsgArg::Int, "-7"},
      {false, inpS_MsgArg::Bool, "false"},
      {1e-3, inpS_MsgArg::Double, "0.001"},
      {-1.7976931348623157e308, inpS_MsgArg::Double, "-1.7976931348623157e+308"},
      {"fixed", inpS_MsgArg::String, "fixed"}, // no flag
      {cow_String("own"), inpS_MsgArg::String, "own"},
      {none, inpS_MsgArg::String, ""},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c.arg.GetKind(), c.kind) << c.text;
    EXPECT_EQ(c.arg.AsString(), c.text);
  }
}

TEST(MessageReporter, HeaderPieces) {
  struct Case {
    inpS_Message message;
    const char* header;
  };
  inpS_Message noKeyword = atNode(3, 1, "deck.inp");
  noKeyword.SetKeywordId(0);
  const Case cases[] = {
      {noKeyword, ""},
      {atNode(-1, -1, ""), "in keyword *NODE:\n"},
      {atNode(0, 4, "a.inp"), "in keyword *NODE, file \"a.inp\":\n"},
      {atNode(12, 0, "a.inp"), "in keyword *NODE, file \"a.inp\", line 12:\n"},
      {atNode(12, 1, "a.inp"), "in keyword *NODE, file \"a.inp\", line 12(13):\n"},
      {atNode(2, -1, "C:\\jobs\\deck"), "in keyword *NODE, file \"deck\", line 2:\n"},
      {atNode(2, -1, "jobs/deck"), "in keyword *NODE, file \"jobs/deck\", line 2:\n"},
      {atNode(2147483647, 1, ""), "in keyword *NODE, line 2147483647(2147483648):\n"},
  };
  for (const Case& c : cases) EXPECT_EQ(inpS_MessageReporter::Header(c.message), c.header);
}

TEST(MessageReporter, SeverityDecides) {
  struct Case {
    int severity;
    const char* received;
  };
  const Case cases[] = {
      {0, "W in keyword *NODE:\ntext"},
      {1, "E1 in keyword *NODE:\ntext"},
      {2, "W in keyword *NODE:\ntext"},
      {3, "W text"},
      {7, "W text"},
  };
  for (const Case& c : cases) {
    RecordingReporter host;
    const wip_ReporterScope scope(host);
    inpS_Message message = atNode(-1, -1, "");
    message.SetSeverity(c.severity);
    inpS_MessageReporter().ReportMessage(message);
    ASSERT_EQ(host.lines, cow_List<cow_String>{c.received});
  }
}

TEST(MessageReporter, LooksUpSubstitutesAndWraps) {
  RecordingReporter host;
  const wip_ReporterScope scope(host);
  inpS_Message message(inpS_Message::Application, inpS_app_UnsupportedParameterValues);
  message.AppendArgList({"type", cow_String(80, 'v')});
  inpS_MessageReporter().ReportMessage(message);
  inpS_MessageReporter().ReportMessage({inpS_Message::Mesh, 99}); // no such text
  inpS_MessageReporter().ReportFatalErrorMessage({inpS_Message::Mesh, inpS_mesh_IncompleteData});
  EXPECT_EQ(host.lines,
            (cow_List<cow_String>{"E1 The following parameter \"type\" values are not supported: "
                                  "\n           " +
                                      cow_String(80, 'v'),
                                  "E1 ", "E1 Incomplete Data."}));
}

TEST(MessageContainer, ReportsInOrderWhenFinalized) {
  RecordingReporter host;
  const wip_ReporterScope scope(host);
  const inp_Keyword node = keywordOf("** first\n*Node\n1, 2.\n2, oops\n");
  inpS_MessageContainer& container = inpS_MessageContainer::Instance();
  container.AddMessage(inpS_Message("one"));
  container.AddMessage(inpS_Message("two"), node);
  container.AddMessage(atNode(77, -1, "other.inp"), node); // has its place
  inpS_Message dataLine(node, "four");
  dataLine.SetLineOffset(2);
  container.AddMessage(dataLine);
  EXPECT_TRUE(host.lines.empty());
  EXPECT_EQ(container.ErrorCount(), 4);
  inpS_MessageContainer::Finalize();
  EXPECT_EQ(host.lines,
            (cow_List<cow_String>{"E1 one", "E1 in keyword *NODE, file \"job.inp\", line 2:\ntwo",
                                  "E1 in keyword *NODE, file \"other.inp\", line 77:\ntext",
                                  "E1 in keyword *NODE, file \"job.inp\", line 2(4):\nfour"}));
  EXPECT_EQ(host.places[1].line, 2);
  EXPECT_EQ(host.places[1].sourceLine, "*Node");
  EXPECT_EQ(host.places[3].line, 4);
  inpS_MessageContainer::Finalize(); // nothing left
  EXPECT_EQ(host.lines.size(), 4u);
}

TEST(MessageContainer, EachThreadHasItsOwn) {
  RecordingReporter here, there;
  const wip_ReporterScope scope(here);
  inpS_MessageContainer::Instance().AddMessage(inpS_Message("here"));
  std::thread([&] {
    wip_WIPBase::Install(&there);
    inpS_MessageContainer::Instance().AddMessage(inpS_Message("there"));
  }).join(); // reported when its thread ends
  EXPECT_EQ(there.lines, cow_List<cow_String>{"E1 there"});
  EXPECT_TRUE(here.lines.empty());
  inpS_MessageContainer::Finalize();
  EXPECT_EQ(here.lines, cow_List<cow_String>{"E1 here"});
}

TEST(MessageContainer, HostThatThrowsStillGetsAll) {
  RecordingReporter host;
  host.throws = true;
  const wip_ReporterScope scope(host);
  inpS_MessageContainer::Instance().AddMessage(inpS_Message("one"));
  inpS_MessageContainer::Instance().AddMessage(inpS_Message("two"));
  try {
    inpS_MessageContainer::Finalize();
    ADD_FAILURE() << "nothing thrown";
  } catch (const utl_Exception& e) {
    EXPECT_EQ(e.Text(), "one");
  }
  EXPECT_EQ(host.lines, (cow_List<cow_String>{"E1 one", "E1 two"}));
  EXPECT_FALSE(inpS_MessageContainer::Exists());
}

namespace {

template <class Exception> void expectCarried(const Exception& original, const cow_String& text) {
  const std::unique_ptr<inpS_Exception> copy = static_cast<const inpS_Exception&>(original).Copy();
  EXPECT_EQ(typeid(*copy), typeid(Exception));
  try {
    copy->Propagate();
  } catch (const inpS_Exception& e) {
    EXPECT_EQ(typeid(e), typeid(Exception));
    EXPECT_EQ(e.Text(), text);
  }
}

} // namespace

TEST(Exceptions, CopyAndPropagateKeepTheType) {
  inpS_Message message(inpS_Message::Mesh, inpS_mesh_NodeSetUnknown);
  message.AppendArg("TOP");
  expectCarried(inpS_Exception("a"), "a");
  expectCarried(inpS_MessageException(message), "Node set \"TOP\" does not exist.");
  expectCarried(inpS_FatalMessageException(message), "Node set \"TOP\" does not exist.");
  expectCarried(inpS_FatalException("b"), "b");
  expectCarried(inpS_MemoryException(),
                "Memory allocation error. Insufficient physical memory or swap space.");
  EXPECT_FALSE(inpS_MessageException(message).Message().IsFatal());
  EXPECT_TRUE(inpS_FatalMessageException(message).Message().IsFatal());
}

TEST(MessageContainer, CountsWhatNobodyReads) {
  RecordingReporter host;
  const wip_ReporterScope scope(host);
  inpS_MessageContainer& container = inpS_MessageContainer::Instance();
  for (int i = 0; i < 100'007; ++i) container.AddMessage(inpS_Message("odd"));
  inpS_MessageContainer::Finalize();
  ASSERT_EQ(host.lines.size(), 100'001u);
  EXPECT_EQ(host.lines.back(), "E1 and 7 more like these, which are only counted");

  host.lines.clear();
  struct : inp_Visitor {
  } visitor;
  for (int i = 0; i < 100'002; ++i) visitor.AddError("bad");
  visitor.Report();
  visitor.AddError("bad");
  visitor.Report();
  ASSERT_EQ(host.lines.size(), 100'002u);
  EXPECT_EQ(host.lines[100'000], "E1 and 2 more like these, which are only counted");
  EXPECT_EQ(host.lines[100'001], "E1 and 1 more like these, which are only counted");
}
