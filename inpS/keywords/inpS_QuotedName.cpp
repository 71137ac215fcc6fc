#include "inpS/keywords/inpS_QuotedName.h"
#include "base/utl_Controls.h"
#include "base/utl_Number.h"
#include <algorithm>
#include <string_view>

namespace {

// What a bare value cannot hold, for it would end there or be read as something else, and what the
// language wants in quotes all the same.
bool needsQuotes(char c) {
  constexpr std::string_view special = "_ .,=\"'<>*";
  const auto byte = static_cast<unsigned char>(c);
  return special.find(c) != special.npos || (c >= 'a' && c <= 'z') || (byte < 32 && c != '\0') ||
         byte == 127;
}

// A quote of the name's own is doubled.
cow_String inQuotes(const cow_String& name) {
  cow_String out(1, '"');
  for (const char c : name) out.append(c == '"' ? 2 : 1, c);
  return out + '"';
}

} // namespace

cow_String& QuotedName(cow_String& name) {
  // A deck cannot hold one, and a model that does is refused: only a host's own can come here.
  if (utl_findControl(name) != cow_String::npos) name = utl_withoutControls(name);
  if (std::any_of(name.begin(), name.end(), needsQuotes)) name = inQuotes(name);
  return name;
}

// 2.1 would be a number and no node of the instance 2.
cow_String inpS_quoted(cow_String name) {
  if (utl_classifyField(name).IsNumber()) return '"' + name + '"';
  return QuotedName(name);
}
