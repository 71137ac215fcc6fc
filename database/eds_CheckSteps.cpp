#include "database/eds_CheckSteps.h"
#include "database/eds_CheckTexts.h"
#include "database/engine/eds_Store.h"
#include <algorithm>
#include <vector>

namespace {

constexpr int stepsBlock = 29; // the last of the blocks in which a deck is written

struct Kept {
  int64_t position;
  int64_t id;
  bool begins;
};

// In the order in which they are written.
std::vector<Kept> stepKeywords(const eds_RowTable& rows) {
  std::vector<Kept> kept;
  for (int64_t id = 1; id <= rows.LastID(); ++id) {
    if (!rows.Has(id) || rows.Int(id, eds_VerbatimKeyword_Block) != stepsBlock) continue;
    const eds_StepRole role = eds_stepRole(rows.Text(id, eds_VerbatimKeyword_Keyword));
    if (role != eds_StepRole::None)
      kept.push_back({rows.Int(id, eds_VerbatimKeyword_Position), id, role == eds_StepRole::Begin});
  }
  std::ranges::stable_sort(kept, {}, &Kept::position);
  return kept;
}

} // namespace

void eds_checkSteps(eds_Store& store, const std::function<void(const cow_String&)>& tell) {
  const auto kinds = store.Kinds();
  if (std::ranges::find(kinds, eds_RecordKind::VerbatimKeyword) == kinds.end()) return;
  const auto fault = [&](const Kept& kept, const char* text) {
    tell("verbatim_keyword " + std::to_string(kept.id) + " " + text);
  };
  const Kept* open = nullptr;
  const std::vector<Kept> all = stepKeywords(store.Rows(eds_RecordKind::VerbatimKeyword));
  for (const Kept& kept : all) {
    if (kept.begins && open) fault(kept, "begins a step within another one");
    if (!kept.begins && !open) fault(kept, "ends a step where none is open");
    open = kept.begins ? &kept : nullptr;
  }
  if (open && store.Meta("finished") == "1") fault(*open, "begins a step that nothing ends");
}
