#include "inpS/writer/inpS_ExcitationDegrees.h"
#include "database/schema/eds_FormKind.h"
#include "database/schema/eds_Schema.h"
#include <algorithm>
#include <charconv>
#include <sstream>
#include <utility>

namespace {

constexpr int kFirstRotation = 4;
constexpr int kFirstTemperature = 11;

int numberBehind(const cow_String& text, std::size_t at) {
  int number = -1;
  std::from_chars(text.data() + std::min(at, text.size()), text.data() + text.size(), number);
  return number;
}

bool isVector(const cow_String& field) {
  return field.ends_with("_D") || field.ends_with("_R");
}

// Of fields of one number, and of keywords whose degree nothing else tells.
int onlyDegree(const inpS_ExcitationKind& kind, const cow_String& field) {
  static constexpr std::pair<std::string_view, int> fields[] = {
      {"W", 7}, {"HP", 8}, {"EPOT", 9}, {"DOF_10", 10}};
  for (const auto& [name, degree] : fields)
    if (field == name) return degree;
  if (kind.form == eds_FormKind::ConcentratedFlow) return 8;
  const bool isElectric = kind.form == eds_FormKind::ConcentratedCharge ||
                          kind.form == eds_FormKind::ConcentratedCurrent;
  return isElectric ? 9 : kFirstTemperature;
}

} // namespace

uint64_t inpS_degreesOf(const inpS_ExcitationKind& kind, const cow_String& field,
                        const cow_String& components) {
  constexpr std::string_view turning = "C_ROT";
  if (kind.first < 0 && kind.degree < 0) return 0;
  const int first = field.ends_with("_R") ? kFirstRotation : 1;
  uint64_t degrees = 0;
  std::istringstream words(components);
  for (cow_String word; words >> word;) {
    const bool isTurning = word.starts_with(turning);
    const bool isOfVector = word.starts_with("C_");
    const int number = numberBehind(word, isTurning ? turning.size() : isOfVector ? 2 : 0);
    if (number < (isOfVector ? 1 : 0)) continue; // no component
    const int degree = isTurning    ? kFirstRotation - 1 + number
                       : isOfVector ? first - 1 + number
                                    : kFirstTemperature + number;
    degrees |= inpS_Degrees::Of(degree, degree);
  }
  if (degrees != 0) return degrees;
  if (isVector(field)) return inpS_Degrees::Of(first, first + 2);
  return inpS_Degrees::Bit(onlyDegree(kind, field));
}

cow_String inpS_restraintName(int restraint) {
  for (const eds_SymbolInfo& symbol : eds_schemaSymbols(eds_Vocabulary::RestraintType))
    if (symbol.number == restraint) return cow_String(symbol.name);
  return {};
}
