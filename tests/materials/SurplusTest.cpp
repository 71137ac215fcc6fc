// Nothing of a material keyword vanishes without a word: for every row of the table a deck with one
// value too many on a line, one line too many and a parameter that nobody knows.

#include "tests/host/ProgramRun.h"
#include "tests/materials/BehaviorDeck.h"
#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>
#include <set>

namespace {

using nlohmann::json;

struct Surplus {
  const BehaviorCase* given;
  long long first; // the lines of its keyword
  long long last;
};

// A keyword's text with something in it that does not belong there; empty: there is no room for it.
using Spoil = std::function<cow_String(const BehaviorCase&, cow_String keyword)>;

class MaterialSurplus : public ProgramTest {
protected:
  // Every row whose spoilt keyword no message stands in.
  void ExpectTold(const char* what, const Spoil& spoil) const {
    cow_List<BehaviorCase> cases;
    int number = 0;
    for (const inpS_Form* behavior : inpS_behaviorForms())
      cases.push_back(behaviorCases(*behavior, number).front());
    cow_String deck = "*HEADING\nsurplus\n";
    cow_List<Surplus> surplus;
    for (const BehaviorCase& one : cases) {
      const cow_String spoilt = spoil(one, one.keywords.back());
      if (spoilt.empty()) continue;
      deck += (one.gasket ? "*GASKET BEHAVIOR, NAME=" : "*MATERIAL, NAME=") + one.name + "\n";
      for (std::size_t n = 0; n + 1 < one.keywords.size(); ++n) deck += one.keywords[n];
      const long long first = LinesOf(deck) + 1;
      deck += spoilt;
      surplus.push_back({&one, first, LinesOf(deck)});
    }
    EXPECT_GT(surplus.size(), 150u);
    const ProgramRun run({"convert", Deck("all.inp", deck), "-o", File("a.sim"), "--json"});
    std::set<long long> told;
    const json messages = json::parse(run.out)["messages"];
    for (const json& message : messages) told.insert(message["line"].get<long long>());
    for (const Surplus& one : surplus) {
      const auto at = told.lower_bound(one.first);
      EXPECT_TRUE(at != told.end() && *at <= one.last)
          << what << spoil(*one.given, one.given->keywords.back());
    }
  }

  static long long LinesOf(const cow_String& text) { return std::ranges::count(text, '\n'); }
};

// What is kept as lines keeps all of them.
bool holdsLines(const BehaviorCase& one) {
  return one.behavior->info->textField >= 0;
}

cow_String withParameter(const cow_String& keyword, const cow_String& parameter) {
  const std::size_t end = keyword.find('\n');
  return keyword.substr(0, end) + parameter + keyword.substr(end);
}

} // namespace

TEST_F(MaterialSurplus, ParametersThatNobodyKnows) {
  ExpectTold("parameter: ", [](const BehaviorCase& one, cow_String keyword) {
    if (one.behavior->info->othersField >= 0) return cow_String(); // it keeps them all
    return withParameter(keyword, ", NOBODY KNOWS=3");
  });
}

TEST_F(MaterialSurplus, ParametersThatOthersHave) {
  ExpectTold("dependencies: ", [](const BehaviorCase& one, cow_String keyword) {
    return holdsLines(one) ? cow_String() : withParameter(keyword, ", DEPENDENCIES=2000");
  });
}

TEST_F(MaterialSurplus, ValuesBeyondARow) {
  ExpectTold("value: ", [](const BehaviorCase& one, cow_String keyword) {
    if (holdsLines(one)) return cow_String();
    keyword.pop_back();
    if (!one.behavior->HasTable()) return keyword + "\n7.5\n";
    const auto last = keyword.rfind('\n');
    const auto given =
        std::count(keyword.begin() + static_cast<std::ptrdiff_t>(last), keyword.end(), ',') + 1;
    keyword += ", 400."; // the temperature, where there is one
    for (auto n = given; n < 9; ++n) keyword += ", 7.5";
    return keyword + '\n';
  });
}

TEST_F(MaterialSurplus, WordsInPlaceOfNumbers) {
  ExpectTold("word: ", [](const BehaviorCase& one, cow_String keyword) {
    if (!one.behavior->HasTable()) return cow_String();
    keyword.pop_back();
    return keyword.substr(0, keyword.find_last_of(" \n") + 1) + "1.5abc\n";
  });
}

// A second row for one state, where the rows of the table are told apart by nothing else.
TEST_F(MaterialSurplus, RowsOfTheSameState) {
  ExpectTold("row: ", [](const BehaviorCase& one, cow_String keyword) {
    if (!one.behavior->HasTemperature()) return cow_String();
    const bool any = std::ranges::any_of(
        one.behavior->columns.Expand([](const auto&, long long) { return 1; }),
        [](const auto& column) { return column.order == inpS_TableColumns::Column::Order::Any; });
    if (any) return cow_String();
    return keyword + keyword.substr(keyword.find('\n') + 1);
  });
}
