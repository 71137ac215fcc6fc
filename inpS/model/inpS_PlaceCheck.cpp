#include "inpS/model/inpS_PlaceCheck.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_ScopeTracker.h"
#include "parser/inp_Utils.h"

namespace {

struct Level {
  inp_Scope::Kind scope;
  inp_Levels bit;
  const char* inside;
};
constexpr Level kLevels[] = {
    {inp_Scope::Kind::Model, inp_LevelsModel, "at the level of the model"},
    {inp_Scope::Kind::Part, inp_LevelsPart, "in a part"},
    {inp_Scope::Kind::Instance, inp_LevelsInstance, "in an instance"},
    {inp_Scope::Kind::Assembly, inp_LevelsAssembly, "in the assembly"},
    {inp_Scope::Kind::Step, inp_LevelsStep, "in a step"},
};

const Level& levelOf(inp_Scope::Kind scope) {
  for (const Level& level : kLevels)
    if (level.scope == scope) return level;
  return kLevels[0];
}

// The assembly may hold what the model may, for decks in use put such data there; and steps have
// sets of their own.
bool mayStand(inp_KeywordEnm kind, inp_Scope::Kind scope) {
  const inp_KeywordTable& table = inp_KeywordTable::Instance();
  if (table.MayStandAt(kind, levelOf(scope).bit)) return true;
  if (scope == inp_Scope::Kind::Step) return kind == inp_KwNset || kind == inp_KwElset;
  return scope == inp_Scope::Kind::Assembly && table.MayStandAt(kind, inp_LevelsModel);
}

cow_String join(const cow_List<cow_String>& words) {
  cow_String text;
  for (std::size_t n = 0; n < words.size(); ++n)
    text += (n == 0 ? "" : n + 1 == words.size() ? " or " : ", ") + words[n];
  return text;
}

cow_String whereItMay(const inp_KeywordRow& row) {
  cow_List<cow_String> places;
  for (const Level& level : kLevels)
    if (row.levels & level.bit) places.push_back(level.inside);
  if (!places.empty()) return "may stand " + join(places) + " only";
  for (const inp_KeywordEnm parent : row.parents)
    places.push_back("*" + cow_String(inp_KeywordTable::Instance().Row(parent)->name));
  return "belongs under " + join(places);
}

} // namespace

bool inpS_PlaceCheck::Look(const inp_Keyword& keyword, bool isConverted) {
  const inp_KeywordRow* row = inp_KeywordTable::Instance().Row(keyword.Kind());
  if (!row || keyword.IsSuboption() || keyword.IsInstanceCopy()) return false;
  // What opens and closes scopes is judged by the parser, which knows what is open. A load case is
  // none of them.
  const bool opensScope = inp_ScopeTracker::KindOpenedBy(keyword.Kind()) != inp_Scope::Kind::Model;
  if (opensScope || inp_ScopeTracker::IsCloser(keyword.Kind())) return false;
  const inp_Scope::Kind scope = keyword.Scope().kind;
  if (mayStand(keyword.Kind(), scope)) return false;
  // A material stays open behind keywords of other subjects: what was converted had its owner.
  if (row->levels == inp_LevelsSub && isConverted) return false;
  const auto [known, isNew] = m_known.try_emplace({keyword.Kind(), scope}, m_found.size());
  if (isNew) m_found.push_back({keyword, 0, isConverted});
  ++m_found[known->second].count;
  return true;
}

void inpS_PlaceCheck::TellTo(inp_Visitor& messages) const {
  for (const Found& found : m_found) {
    const inp_KeywordRow& row = *inp_KeywordTable::Instance().Row(found.first.Kind());
    cow_String text = "*" + found.first.Name() + ' ' + whereItMay(row) +
                      (row.levels == inp_LevelsSub ? ", and stands under none here"
                                                   : cow_String(", and stands ") +
                                                         levelOf(found.first.Scope().kind).inside);
    if (found.count > 1) text += " " + std::to_string(found.count) + " times";
    // Nobody looks for what is in force among what parts and instances hold.
    const bool isIdle = found.isConverted && found.first.Kind() == inp_KwBoundary;
    text += isIdle
                ? "; it is kept there, and nothing comes of it: it is in force in no step. At the "
                  "level of the model, with the names of instances, it acts."
            : found.isConverted ? "; it is converted all the same."
                                : "; it is kept as text.";
    messages.AddWarning(inp_Utils::MessageInKeyword(found.first, std::move(text)));
  }
}
