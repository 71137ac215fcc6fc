#include "host/inps_VisibleBuffer.h"
#include "parser/inp_Utf8Text.h"
#include "tests/host/ProgramRun.h"
#include <nlohmann/json.hpp>

// Nothing of a deck, a model or a command line reaches a terminal that it would obey.

namespace {

cow_String shown(const cow_List<cow_String>& pieces) {
  std::ostringstream whole;
  {
    inps_VisibleBuffer door(whole);
    aio_ostream out(&door);
    for (const cow_String& piece : pieces) out << piece;
  }
  return whole.str();
}

TEST(VisibleBuffer, WritesOutWhatATerminalWouldObey) {
  struct Case {
    cow_String bytes;
    const char* text;
  };
  const Case cases[] = {
      {"a\tb\nc~ ", "a\tb\nc~ "},
      {"\x1b[2J\r\b\x7f", "\\x1b[2J\\x0d\\x08\\x7f"},
      {cow_String("\0x", 2), "\\x00x"},
      {"\x9b"
       "31m",
       "\\x9b31m"}, // one byte that some terminals take for ESC [
      {"\xc2\x9b"
       "31m",
       "\\u009b31m"},                           // the same as UTF-8
      {"\xc2\xa0\xc3\xa4", "\xc2\xa0\xc3\xa4"}, // the first that is no control, and a letter
      {"\xe2\x80\xae"
       "live",
       "\\u202elive"}, // from right to left
      {"\xe2\x81\xa6\xd8\x9c", "\\u2066\\u061c"},
      {"\xe2\x82\xac\xf0\x9f\x98\x80", "\xe2\x82\xac\xf0\x9f\x98\x80"},
      {"\xc0\x80\xed\xa0\x80", "\\xc0\\x80\\xed\\xa0\\x80"}, // overlong, a surrogate
      {"\xe2\x82", "\\xe2\\x82"},                            // cut off by the end
      {"\xe2\x82\x1b", "\\xe2\\x82\\x1b"},
      {"\xff\xc3\xa4", "\\xff\xc3\xa4"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(shown({c.bytes}), c.text);
    EXPECT_EQ(shown({"12345678" + c.bytes + "12345678"}),
              "12345678" + cow_String(c.text) + "12345678");
    cow_List<cow_String> bytes; // wherever the pieces end
    for (const char byte : c.bytes) bytes.emplace_back(1, byte);
    EXPECT_EQ(shown(bytes), c.text);
  }
}

using Visible = ProgramTest;

// The first byte that is neither text nor one of ours; npos when there is none.
std::size_t firstObeyed(const cow_String& text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    const bool plain = byte >= 0x20 || byte == '\n' || byte == '\t';
    if (!plain || byte == 0x7f ||
        (byte == 0xc2 && static_cast<unsigned char>(text[at + 1]) < 0xa0) ||
        text.compare(at, 3, "\xe2\x80\xae") == 0)
      return at;
  }
  return cow_String::npos;
}

TEST_F(Visible, NoCommandSendsWhatADeckOrANameHolds) {
  const cow_String evil = "\x1b]0;x\x07\x1b[2J\x7f\xc2\x9b"
                          "1m\xe2\x80\xae";
  const cow_String deck =
      Deck("evil" + evil + ".inp",
           "*HEADING\ntitle " + evil + "\n" + oneBrick + "*NSET, NSET=\"set" + evil +
               "\"\n1, 2, nothing" + evil + "\n" + "*MATERIAL, NAME=\"steel" + evil +
               "\"\n*ELASTIC\n1., 0.3\n" + "*AMPLITUDE, NAME=\"amp" + evil +
               "\"\n0., 1., 1., 2.\n" + "*NOSUCH" + evil + ", P" + evil + "=" + evil + "\ndata " +
               evil + "\n" + "*SOLID SECTION, ELSET=\"" + evil + "\", MATERIAL=M" + evil + "\n" +
               "*NODE, FOO" + evil + "=1\n");
  const cow_String line = evil + "\ninps: forged"; // looks like a message of ours
  const cow_String odd = Deck("odd" + line + ".inp", oneBrick);
  const cow_String model = File("m" + line + ".sim");
  const cow_String good = File("good" + line + ".sim");
  const cow_List<cow_List<cow_String>> runs = {
      {"convert", odd, "-o", good},
      {"convert", deck, "-o", model},
      {"convert", deck, "-o", model, "--force", "--json"},
      {"convert", deck, "-o", model, "--force", "--timings", "--strict"},
      {"convert", deck, "-o", model},
      {"convert", model},
      {"convert", line},
      {"check", deck},
      {"check", odd, "--strict"},
      {"check", deck, odd, evil, "--strict"},
      {"check", deck, odd, evil, "--json"},
      {"check", model},
      {"info", model},
      {"info", model, "--json"},
      {"info", model, "--materials"},
      {"info", model, "--materials", evil},
      {"info", model, "--materials", "--json"},
      {"info", deck},
      {"dump", model},
      {"dump", deck},
      {"diff", deck, odd},
      {"diff", model, good, "--json"},
      {"diff", model, evil, "--tolerance", evil},
      {"plot", model, "-o", File("p" + line + ".html")},
      {"plot", model, evil},
      {"export", model, File("p" + line + ".vtu"), "--sets"},
      {"export", model, evil},
      {"write", good, "-o", File("w" + evil + ".inp")},
      {"write", deck},
      {"info", model, "--memory", evil},
      {"info", model, "--color", evil},
      {"info", model, "--" + evil},
      {"help", evil},
      {line},
  };
  for (const cow_List<cow_String>& words : runs) {
    const ProgramRun run(words);
    EXPECT_EQ(firstObeyed(run.out), cow_String::npos)
        << words[0] << ": " << run.out.substr(0, 2000);
    EXPECT_EQ(firstObeyed(run.err), cow_String::npos) << words[0] << ": " << run.err;
    EXPECT_EQ(('\n' + run.out + run.err).find("\ninps: forged"), cow_String::npos)
        << words[0] << ": " << run.out.substr(0, 2000) << run.err;
  }
  // JSON and written decks hold the very bytes.
  const cow_String odder = "\xe2\x80\xae\xc3\xa4";
  const cow_String plain = Deck("plain.inp", "*HEADING\n" + odder + "\n" + oneBrick);
  ASSERT_EQ(ProgramRun({"convert", plain, "-o", File("plain.sim"), "-q"}).exitCode, 0);
  const auto info = nlohmann::json::parse(ProgramRun({"info", File("plain.sim"), "--json"}).out);
  EXPECT_EQ(info["summary"]["heading"], odder);
  EXPECT_NE(ProgramRun({"write", File("plain.sim")}).out.find(odder + "\n"), cow_String::npos);
}

TEST_F(Visible, ColoursAreAskedForOrNot) {
  const cow_String deck = Deck("d.inp", "*NODE\n1, x\n");
  EXPECT_TRUE(ProgramRun({"check", deck, "--color=always"}).Says("\x1b[1;31merror: \x1b[0m"));
  EXPECT_FALSE(ProgramRun({"check", deck, "--color=auto"}).Says("\x1b"));
  const ProgramRun wrong({"check", deck, "--color=maybe"});
  EXPECT_EQ(wrong.exitCode, 2);
  EXPECT_TRUE(wrong.Says("takes auto, always or never, not \"maybe\"")) << wrong.err;
  std::ostringstream out;
  std::ostringstream err;
  inps_Session terminal{out, err};
  terminal.colour = true;
  EXPECT_EQ(inps_main({"check", deck, "--color", "never"}, terminal), 1);
  EXPECT_EQ(err.str().find('\x1b'), cow_String::npos);
}

// Whatever else is printed, the line is gone at the end; a quick run has none.
TEST_F(Visible, ProgressGivesWayAndGoes) {
  cow_String text = "*NODE\n";
  for (int n = 1; n <= 200000; ++n) text += std::to_string(n) + ", " + std::to_string(n) + "., x\n";
  const cow_String deck = Deck("d.inp", text);
  for (const int patience : {0, 100000}) {
    std::ostringstream out;
    std::ostringstream err;
    inps_Session terminal{out, err};
    terminal.progress = true;
    terminal.isOutTerminal = true;
    terminal.patience = std::chrono::milliseconds(patience);
    EXPECT_EQ(inps_main({"check", deck}, terminal), 1);
    const cow_String said = err.str();
    const std::size_t erased = said.rfind("\r\x1b[K");
    EXPECT_EQ(erased == cow_String::npos, patience > 0) << said.substr(0, 300);
    if (patience > 0) continue;
    EXPECT_NE(said.find(", 0 s\r\x1b[K"), cow_String::npos) << said.substr(0, 300);
    EXPECT_EQ(said.find(", 0 s", erased), cow_String::npos) << said.substr(erased);
  }
}

} // namespace
