#include "inpS/properties/inpS_DistributedItem.h"
#include <algorithm>

namespace {

struct Row {
  std::string_view item;
  std::string_view type;
  std::string_view boundAs;
};

constexpr Row kRows[] = {
    {"thickness", "LENGTH", "thickness"},
    {"shell_thickness", "LENGTH", "thickness"},
    {"membrane", "LENGTH", "thickness"},
    {"membrane_thickness", "LENGTH", "thickness"},
    {"angle", "ANGLE", "orientationAngle"},
    {"orientation_angle", "ANGLE", "orientationAngle"},
    {"offset", "RATIO", ""},
    {"density", "DENSITY", ""},
    {"radius", "LENGTH", ""},
    {"d_11", "SHELLSTIFF1", ""},
    {"d_11", "SHELLSTIFF2", ""},
    {"d_11", "SHELLSTIFF3", ""},
};

} // namespace

inpS_DistributedItem inpS_DistributedItem::Of(const eds_FormItem& item) {
  inpS_DistributedItem made;
  for (const eds_FormItem::Alternative& one : item.alternatives)
    if (one.referable && one.referable->word == "distribution") made.field = one.field;
  if (made.field < 0) return made;
  for (const Row& row : kRows) {
    if (row.item != item.name) continue;
    made.types.push_back(row.type);
    made.boundAs = row.boundAs;
  }
  return made;
}

int inpS_DistributedItem::ComponentIn(const inpS_DistributionTable& table) const {
  if (types.empty()) return 0;
  const bool hasAll =
      std::ranges::all_of(types, [&](auto type) { return table.FirstComponentOf(type) >= 0; });
  return hasAll ? table.FirstComponentOf(types.front()) : -1;
}
