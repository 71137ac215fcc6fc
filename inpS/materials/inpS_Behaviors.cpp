#include "inpS/materials/inpS_Behaviors.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>

namespace {

struct Assertion {
  inp_KeywordEnm keyword;
  std::string_view text;
};

#define INPS_UNKNOWN_VALUE(Keyword, Text) {inp_Kw##Keyword, Text},
constexpr Assertion valueAssertions[] = {
#include "inpS/materials/inpS_materialAssertions.def"
};

#define INPS_UNKNOWN_SUBOPTION(Keyword, Text) {inp_Kw##Keyword, Text},
constexpr Assertion suboptionAssertions[] = {
#include "inpS/materials/inpS_materialAssertions.def"
};

#define INPS_WRONG_OWNER(Keyword, Text) {inp_Kw##Keyword, Text},
constexpr Assertion ownerAssertions[] = {
#include "inpS/materials/inpS_materialAssertions.def"
};

std::string_view textOf(std::span<const Assertion> assertions, inp_KeywordEnm keyword) {
  const auto found = std::ranges::find(assertions, keyword, &Assertion::keyword);
  return found == assertions.end() ? std::string_view() : found->text;
}

// By keyword. As often over the table as behaviours stand below one another.
cow_List<bool> findBehaviors() {
  cow_List<bool> found;
  const auto isFound = [&](inp_KeywordEnm keyword) {
    const auto index = static_cast<std::size_t>(keyword);
    return keyword == inp_KwMaterial || keyword == inp_KwGasketBehavior ||
           (index < found.size() && found[index]);
  };
  for (bool isMore = true; isMore;) {
    isMore = false;
    for (const inp_KeywordEnm keyword : inpS_FormTable::Instance().Keywords()) {
      const auto parents = inp_KeywordTable::Instance().Row(keyword)->parents;
      if (isFound(keyword) || std::ranges::none_of(parents, isFound)) continue;
      const auto index = static_cast<std::size_t>(keyword);
      if (index >= found.size()) found.resize(index + 1);
      found[index] = isMore = true;
    }
  }
  return found;
}

} // namespace

const cow_List<inp_KeywordEnm>& inpS_behaviorKeywords() {
  static const auto keywords = [] {
    cow_List<inp_KeywordEnm> all;
    std::ranges::copy_if(inpS_FormTable::Instance().Keywords(), std::back_inserter(all),
                         inpS_isBehavior);
    return all;
  }();
  return keywords;
}

const cow_List<const inpS_Form*>& inpS_behaviorForms() {
  static const auto forms = [] {
    cow_List<const inpS_Form*> all;
    for (const inp_KeywordEnm keyword : inpS_behaviorKeywords())
      for (const eds_RecordKind kind : inpS_FormTable::Instance().KindsOf(keyword))
        all.push_back(inpS_FormTable::Instance().Find(kind));
    return all;
  }();
  return forms;
}

bool inpS_isBehavior(inp_KeywordEnm keyword) {
  static const cow_List<bool> behaviors = findBehaviors();
  const auto index = static_cast<std::size_t>(keyword);
  return index < behaviors.size() && behaviors[index];
}

std::string_view inpS_valueAssertion(inp_KeywordEnm keyword) {
  return textOf(valueAssertions, keyword);
}

std::string_view inpS_suboptionAssertion(inp_KeywordEnm keyword) {
  return textOf(suboptionAssertions, keyword);
}

std::string_view inpS_ownerAssertion(inp_KeywordEnm keyword) {
  return textOf(ownerAssertions, keyword);
}
