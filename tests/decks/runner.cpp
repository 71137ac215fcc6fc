// Runs every deck of this tree: tests/decks/<subject>/<case>.inp, and the examples.
//
// What a deck must report stands in comment lines of it, in any order:
//
//   ** expect: error 12: part of the text
//   ** expect: warning included.inc:3:7: part of the text
//   ** expect: error 0: part of the text        (a message without a line)
//   ** expect: note 4: part of the text         (a note of some message; the only ones that may
//                                                be left unexpected)
//
// Every error and warning must be expected and every expectation met; warnings that a keyword is
// kept as text need not be. A deck without expected errors converts without any; then it is
// written, converted again and written again: the models must be the same and both written decks
// the same byte for byte, and in them each sub-option stands under the keyword that it stood under,
// and each step's keywords stand in their order. Beside it, <case>.dump may hold lines that must
// occur in this order in the dump of the model (surrounding blanks do not count; empty lines and
// lines that begin with # are skipped). A deck whose first line is "** options: WORDS" is converted
// with these words.
//
// Every deck runs twice: once as usual, and once with all bulk work cut into blocks of a few bytes,
// rows or elements. Both must give the same model.
//
// Files that decks include have another ending than .inp.

#include "base/utl_BlockSize.h"
#include "tests/decks/DeckOrder.h"
#include "tests/host/ProgramRun.h"
#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

namespace {

using Path = std::filesystem::path;
using nlohmann::json;

struct Expected {
  cow_String severity;
  cow_String file; // empty: the deck itself
  long long line = 0;
  int column = 0; // 0: any
  cow_String text;
  cow_String asWritten;
  bool met = false;
};

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

cow_List<cow_String> linesOf(const cow_String& text) {
  cow_List<cow_String> lines;
  std::istringstream stream(text);
  for (cow_String line; std::getline(stream, line);) lines.emplace_back(trimmed(line));
  return lines;
}

// "error 12: text", "warning file.inc:3:7: text"
Expected readExpected(std::string_view words) {
  Expected expected;
  expected.asWritten = words;
  const std::size_t blank = words.find(' ');
  const std::size_t textAt = words.find(": ");
  if (blank == std::string_view::npos || textAt == std::string_view::npos || textAt < blank) {
    ADD_FAILURE() << "cannot read the expectation: " << words;
    return expected;
  }
  expected.severity = words.substr(0, blank);
  expected.text = trimmed(words.substr(textAt + 2));
  cow_List<cow_String> pieces;
  std::istringstream place{cow_String(words.substr(blank + 1, textAt - blank - 1))};
  for (cow_String piece; std::getline(place, piece, ':');) pieces.push_back(piece);
  if (!pieces.empty() && !std::isdigit(static_cast<unsigned char>(pieces[0][0]))) {
    expected.file = pieces[0];
    pieces.erase(pieces.begin());
  }
  if (!pieces.empty()) expected.line = std::stoll(pieces[0]);
  if (pieces.size() > 1) expected.column = std::stoi(pieces[1]);
  return expected;
}

cow_List<Expected> expectationsOf(const Path& deck) {
  constexpr std::string_view mark = "** expect: ";
  cow_List<Expected> expectations;
  for (const cow_String& line : linesOf(readFile(deck)))
    if (line.starts_with(mark))
      expectations.push_back(readExpected(std::string_view(line).substr(mark.size())));
  return expectations;
}

bool meets(const json& message, const Expected& expected) {
  const cow_String file = message["file"];
  return message["severity"] == expected.severity && message["line"] == expected.line &&
         (expected.column == 0 || message["column"] == expected.column) &&
         (expected.file.empty() || file.ends_with(expected.file)) &&
         message["text"].get<cow_String>().find(expected.text) != cow_String::npos;
}

bool meet(const json& message, cow_List<Expected>& expectations) {
  const auto found = std::ranges::find_if(
      expectations, [&](const Expected& e) { return !e.met && meets(message, e); });
  if (found == expectations.end()) return false;
  found->met = true;
  return true;
}

bool tellsOfKeptText(const json& message) {
  return message["severity"] == "warning" &&
         message["text"].get<cow_String>().find("kept as text") != cow_String::npos;
}

void compareMessages(const json& messages, cow_List<Expected> expectations) {
  for (const json& message : messages) {
    for (json note : message["notes"]) {
      note["severity"] = "note";
      meet(note, expectations);
    }
    if (!meet(message, expectations) && !tellsOfKeptText(message))
      ADD_FAILURE() << "not expected: " << message["severity"].get<cow_String>() << ' '
                    << message["line"] << ':' << message["column"] << ": "
                    << message["text"].get<cow_String>();
  }
  for (const Expected& expected : expectations)
    if (!expected.met) ADD_FAILURE() << "expected and not reported: " << expected.asWritten;
}

bool sameWord(const cow_String& a, const cow_String& b) {
  if (a == b) return true;
  char* endA = nullptr;
  char* endB = nullptr;
  const double x = std::strtod(a.c_str(), &endA);
  const double y = std::strtod(b.c_str(), &endB);
  const bool reals = a.find('.') != cow_String::npos && b.find('.') != cow_String::npos;
  return reals && !*endA && !*endB &&
         std::fabs(x - y) <= 1e-9 * std::max({1., std::fabs(x), std::fabs(y)});
}

bool sameLine(const cow_String& a, const cow_String& b) {
  std::istringstream wordsA(a);
  std::istringstream wordsB(b);
  cow_String wordA;
  cow_String wordB;
  while (wordsA >> wordA)
    if (!(wordsB >> wordB) || !sameWord(wordA, wordB)) return false;
  return !(wordsB >> wordB);
}

void compareDump(const cow_String& dump, const Path& excerpt) {
  const cow_List<cow_String> lines = linesOf(dump);
  auto at = lines.begin();
  for (const cow_String& wanted : linesOf(readFile(excerpt))) {
    if (wanted.empty() || wanted.starts_with('#')) continue;
    const auto found = std::find_if(at, lines.end(),
                                    [&](const cow_String& line) { return sameLine(line, wanted); });
    ASSERT_NE(found, lines.end()) << "not in the dump from line " << at - lines.begin() + 1
                                  << " on: " << wanted << "\n\n"
                                  << dump.substr(0, 20000);
    at = std::next(found);
  }
}

struct Case {
  Path deck;
  std::size_t blockSize = 0; // 0: the usual ones
};

void PrintTo(const Case& one, std::ostream* out) {
  *out << utl_pathText(one.deck.filename()) << ", blocks of " << one.blockSize;
}

class Deck : public testing::TestWithParam<Case> {
protected:
  Deck() { utl_limitBlockSize(GetParam().blockSize); }
  ~Deck() override { utl_limitBlockSize(0); }

  cow_String File(std::string_view name) const { return utl_pathText(m_folder / name); }

  ProgramRun Convert(const cow_String& deck, const cow_String& model) const {
    cow_List<cow_String> words = {"convert", deck, "-o", model, "--json"};
    constexpr std::string_view mark = "** options: ";
    const cow_List<cow_String> lines = linesOf(readFile(GetParam().deck));
    if (!lines.empty() && lines[0].starts_with(mark)) {
      std::istringstream options(lines[0].substr(mark.size()));
      for (cow_String word; options >> word;) words.push_back(word);
    }
    return ProgramRun(words);
  }

  // Of what a message tells (a second potential, a material without a name) less may come back.
  void CompareOrder(const json& messages) const {
    const auto isTold = [&](const cow_String& file, long long line) {
      return std::ranges::any_of(messages, [&](const json& message) {
        return message["line"] == line &&
               message["text"].get<cow_String>().find("is not converted") == cow_String::npos &&
               utl_pathOf(message["file"].get<cow_String>()).filename() ==
                   utl_pathOf(file).filename();
      });
    };
    const DeckOrder before = orderOfDeck(GetParam().deck, isTold);
    const DeckOrder after =
        orderOfDeck(m_folder / "a.inp", [](const cow_String&, long long) { return false; });
    cow_List<cow_String> lost;
    std::ranges::set_difference(before.suboptions, after.suboptions, std::back_inserter(lost));
    EXPECT_EQ(lost, cow_List<cow_String>()) << "no longer stand where they stood";
    EXPECT_EQ(before.steps, after.steps);
    EXPECT_TRUE(after.hasHeading || !before.hasHeading);
  }

  void RoundTrip(const json& messages) const {
    ASSERT_EQ(ProgramRun({"write", File("a.sim"), "-o", File("a.inp")}).exitCode, 0);
    CompareOrder(messages);
    const ProgramRun again = Convert(File("a.inp"), File("b.sim"));
    ASSERT_TRUE(again.exitCode == 0 || again.exitCode == 4) << again.out.substr(0, 5000);
    const ProgramRun diff({"diff", File("a.sim"), File("b.sim")});
    EXPECT_EQ(diff.exitCode, 0) << diff.out.substr(0, 5000);
    ASSERT_EQ(ProgramRun({"write", File("b.sim"), "-o", File("b.inp")}).exitCode, 0);
    EXPECT_EQ(readFile(m_folder / "a.inp"), readFile(m_folder / "b.inp"));
  }

  // What is left of a faulty deck, once written, loses nothing more.
  void ComesBack() const {
    ASSERT_EQ(ProgramRun({"write", File("a.sim"), "-o", File("a.inp")}).exitCode, 0);
    Convert(File("a.inp"), File("b.sim"));
    ASSERT_EQ(ProgramRun({"write", File("b.sim"), "-o", File("b.inp")}).exitCode, 0);
    EXPECT_EQ(readFile(m_folder / "a.inp"), readFile(m_folder / "b.inp"));
  }

  // What comes of a deck does not depend on the blocks it goes by. (The chunks of a stored array
  // are blocks, too: each file is read with the sizes it was written with.)
  void CompareWithUsualBlocks() const {
    const cow_String small = ProgramRun({"dump", File("a.sim")}).out;
    utl_limitBlockSize(0);
    Convert(utl_pathText(GetParam().deck), File("usual.sim"));
    const bool same = small == ProgramRun({"dump", File("usual.sim")}).out;
    utl_limitBlockSize(GetParam().blockSize);
    EXPECT_TRUE(same) << "the model is another than with the usual blocks";
  }

  TemporaryFolder m_folder;
};

TEST_P(Deck, SaysAndGivesWhatIsExpected) {
  const Path& deck = GetParam().deck;
  const cow_List<Expected> expectations = expectationsOf(deck);
  const bool faulty = std::ranges::any_of(
      expectations, [](const Expected& expected) { return expected.severity == "error"; });

  const ProgramRun run = Convert(utl_pathText(deck), File("a.sim"));
  const json object = json::parse(run.out, nullptr, false);
  ASSERT_TRUE(object.is_object() && object.contains("messages")) << run.err << run.out;
  EXPECT_EQ(run.exitCode == 1, faulty);
  EXPECT_NE(run.exitCode, 3) << run.err;
  compareMessages(object["messages"], expectations);
  if (!utl_exists(m_folder / "a.sim")) return;

  EXPECT_EQ(ProgramRun({"check", File("a.sim")}).exitCode, 0);
  const Path excerpt = Path(deck).replace_extension(".dump");
  if (utl_exists(excerpt)) compareDump(ProgramRun({"dump", File("a.sim")}).out, excerpt);
  if (!faulty)
    RoundTrip(object["messages"]);
  else
    ComesBack();
  if (GetParam().blockSize != 0) CompareWithUsualBlocks();
}

Path treeOfDecks() {
  return Path(INPS_TESTS_DIR) / "decks";
}
Path examples() {
  return Path(INPS_TESTS_DIR).parent_path() / "examples";
}

// Once as usual, and once with blocks of a few bytes, rows or elements each.
constexpr std::size_t fewPerBlock = 3;

cow_List<Case> allDecks(std::size_t blockSize) {
  cow_List<Path> decks;
  const auto isDeck = [](const Path& path) { return path.extension() == ".inp"; };
  for (const auto& entry : std::filesystem::recursive_directory_iterator(treeOfDecks()))
    if (isDeck(entry.path())) decks.push_back(entry.path());
  // The deeper ones are included by these.
  for (auto at = std::filesystem::recursive_directory_iterator(examples());
       at != std::filesystem::recursive_directory_iterator(); ++at)
    if (at.depth() < 2 && isDeck(at->path())) decks.push_back(at->path());
  std::ranges::sort(decks);
  cow_List<Case> cases;
  for (const Path& deck : decks) cases.push_back({deck, blockSize});
  return cases;
}

cow_String nameOf(const testing::TestParamInfo<Case>& info) {
  const Path& deck = info.param.deck;
  const Path root =
      deck.native().starts_with(treeOfDecks().native()) ? treeOfDecks() : examples().parent_path();
  cow_String name = utl_pathText(deck.lexically_relative(root).replace_extension());
  std::ranges::replace_if(
      name, [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(All, Deck, testing::ValuesIn(allDecks(0)), nameOf);
INSTANTIATE_TEST_SUITE_P(SmallBlocks, Deck, testing::ValuesIn(allDecks(fewPerBlock)), nameOf);

} // namespace
