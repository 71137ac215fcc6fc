#include "tests/decks/DeckOrder.h"
#include "base/utl_File.h"
#include "parser/inp_KeywordExpansionVisitor.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_OrganizerVisitor.h"
#include "parser/inp_Parser.h"
#include <algorithm>

namespace {

// By its name or its set, and without one by its line, which is kept as it stands. A behavior that
// stands apart from its material, which is still open, comes under it.
cow_String identityOf(const inp_Keyword& keyword) {
  const inp_KeywordRow* row = inp_KeywordTable::Instance().Row(keyword.Kind());
  if (row && row->levels == inp_LevelsSub) return keyword.Name();
  const cow_String name = keyword.StringOf("name", "");
  if (!name.empty()) return keyword.Name() + ' ' + name;
  const cow_String elset = keyword.StringOf("elset", "");
  if (!elset.empty()) return keyword.Name() + " of " + elset;
  const cow_String text = keyword.Text();
  return text.substr(0, text.find('\n'));
}

using IsTold = std::function<bool(const cow_String& file, long long line)>;

// Each under the keyword right above it: a behavior may come under its material only now.
void addSuboptions(const inp_Keyword& parent, const cow_String& title, const IsTold& isTold,
                   cow_List<cow_String>& lines) {
  if (isTold(parent.FileName(), parent.Line())) return;
  for (const inp_Keyword& suboption : parent.Suboptions()) {
    if (!isTold(suboption.FileName(), suboption.Line()))
      lines.push_back(title + " / " + suboption.Name());
    addSuboptions(suboption, suboption.Name(), isTold, lines);
  }
}

// They belong to the whole model wherever they stand, and may leave a step.
bool isOfModel(inp_KeywordEnm kind) {
  return kind == inp_KwAmplitude || kind == inp_KwBaselineCorrection || kind == inp_KwNset ||
         kind == inp_KwElset;
}

} // namespace

DeckOrder orderOfDeck(const std::filesystem::path& deck, const IsTold& isTold) {
  inp_Parser parser(utl_pathText(deck), utl_pathText(deck.parent_path()), {}, "", true, true,
                    false);
  const inp_KeywordList parsed = parser.Parse(true);
  inp_KeywordExpansionVisitor expansion;
  expansion.VisitList(parsed);
  inp_OrganizerVisitor organizer(expansion.IsFeatureEnhanced());
  organizer.VisitList(expansion.Keywords());

  DeckOrder order;
  for (const inp_Keyword& keyword : organizer.Keywords()) {
    if (keyword.Kind() == inp_NullKeyword || keyword.IsInstanceCopy()) continue;
    order.hasHeading = order.hasHeading || keyword.Kind() == inp_KwHeading;
    const inp_Scope& scope = keyword.Scope();
    if (scope.kind == inp_Scope::Kind::Step && !isOfModel(keyword.Kind()))
      order.steps.push_back("step " + std::to_string(scope.ordinal) + ": " + keyword.Name());
    if (keyword.ParentKind() == inp_NullKeyword)
      addSuboptions(keyword, identityOf(keyword), isTold, order.suboptions);
  }
  std::ranges::sort(order.suboptions); // the writer has its own order for the model's keywords
  return order;
}
