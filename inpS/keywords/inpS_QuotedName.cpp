#include "inpS/keywords/inpS_QuotedName.h"
#include "base/utl_Controls.h"
#include "base/utl_Number.h"
#include "parser/inp_Utils.h"
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

// Names with a dot between them, each within quotes that are closed or without any.
bool keepsQuotes(std::string_view text) {
  if (!text.starts_with('"') && text.find(".\"") == text.npos) return false;
  bool isInside = false;
  for (std::size_t n = 0; n < text.size(); ++n) {
    const char c = text[n];
    const bool isDoubled = isInside && c == '"' && n + 1 < text.size() && text[n + 1] == '"';
    if (isDoubled) {
      ++n;
    } else if (c == '"') {
      const bool mayOpen = n == 0 || text[n - 1] == '.';
      const bool mayClose = n + 1 == text.size() || text[n + 1] == '.';
      if (!(isInside ? mayClose : mayOpen)) return false;
      isInside = !isInside;
    } else if (!isInside && c != '_' && c != '.' && needsQuotes(c)) {
      return false;
    }
  }
  return !isInside && utl_findControl(text) == text.npos;
}

// Its blanks and lower case letters are those within quotes.
cow_String foldedAroundQuotes(std::string_view asWritten) {
  cow_String out;
  bool isInside = false;
  for (const char c : asWritten) {
    isInside = isInside != (c == '"');
    if (isInside || c == '"')
      out += c;
    else
      out += inp_Utils::Fold(std::string_view(&c, 1));
  }
  return out;
}

bool saysTheSame(std::string_view a, std::string_view b) {
  const auto isLabel = [](std::string_view text, const cow_List<cow_String>& parts) {
    return !text.ends_with('"') && utl_classifyField(parts.back()).IsNumber();
  };
  const cow_List<cow_String> parts = inp_Utils::SplitScopedField(a);
  const cow_List<cow_String> others = inp_Utils::SplitScopedField(b);
  const auto isNumber = [](std::string_view text) { return utl_classifyField(text).IsNumber(); };
  return parts == others && isLabel(a, parts) == isLabel(b, others) && isNumber(a) == isNumber(b);
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

cow_String inpS_textOf(std::string_view asWritten) {
  cow_String folded = inp_Utils::Fold(asWritten);
  if (asWritten.find('"') == asWritten.npos) return folded;
  if (!keepsQuotes(folded) && saysTheSame(inpS_textInDeck(folded), asWritten)) return folded;
  cow_String kept = foldedAroundQuotes(asWritten);
  if (keepsQuotes(kept) && inp_Utils::Fold(kept) == folded) return kept;
  return keepsQuotes(folded) ? inQuotes(folded) : folded; // quotes of the name's own
}

cow_String inpS_textInDeck(const cow_String& text) {
  if (keepsQuotes(text)) return text;
  const bool isBare =
      std::ranges::none_of(text, [](char c) { return c != '.' && c != '_' && needsQuotes(c); });
  if (isBare && utl_classifyField(text).IsNumber()) return text;
  cow_String name = text;
  if (!isBare) return QuotedName(name);
  cow_String out;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find('.', begin), text.size());
    name = text.substr(begin, end - begin);
    out += (begin == 0 ? "" : ".") + QuotedName(name);
    begin = end + 1;
  }
  return out;
}
