#include "parser/inp_Utils.h"
#include "base/utl_Number.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_TextLines.h"
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <unordered_set>

namespace {

wip_Message located(const inp_Keyword& keyword, cow_String text, wip_Place place) {
  wip_Message message(std::move(text));
  message.keyword = keyword.Name();
  message.place = std::move(place);
  return message;
}

cow_String textOf(const cow_String& item) {
  return item;
}
cow_String textOf(int item) {
  return std::to_string(item);
}

// The list is whole: who shows it on a console may fold it.
template <class T> cow_String withItems(const cow_String& text, const cow_List<T>& items) {
  cow_String out = text;
  if (!items.empty() && !out.empty() && !inp_isBlank(out.back())) out += ' ';
  std::unordered_set<T> told; // a list of faults often names the same one again
  for (const T& item : items) {
    if (!told.insert(item).second) continue;
    if (told.size() > 1) out += ", ";
    out += textOf(item);
  }
  return out;
}

char upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// Behind the quoted piece that begins at a place; 0 when none does. A doubled quote within it is
// one quote of the name; a quote that nothing closes is a plain character.
std::size_t behindQuoted(std::string_view text, std::size_t at) {
  if (text[at] != '"') return 0;
  std::size_t close = text.find('"', at + 1);
  while (close != text.npos && close + 1 < text.size() && text[close + 1] == '"') {
    const std::size_t next = text.find('"', close + 2);
    if (next == text.npos) break;
    close = next;
  }
  return close == text.npos ? 0 : close + 1;
}

// What stands between the outer quotes.
cow_String insideQuotes(std::string_view quoted) {
  cow_String out;
  for (std::size_t i = 1; i + 1 < quoted.size(); ++i) {
    out += quoted[i];
    if (quoted[i] == '"' && quoted[i + 1] == '"' && i + 2 < quoted.size()) ++i;
  }
  return out;
}

bool isInteger(const cow_String& text) {
  return utl_classifyField(text).kind == utl_FieldKind::Integer;
}

bool isScoped(const cow_List<cow_String>& parts) {
  return parts.size() > 1 && std::none_of(parts.begin(), parts.end(),
                                          [](const cow_String& part) { return part.empty(); });
}

} // namespace

wip_Message inp_Utils::MessageInKeyword(const inp_Keyword& keyword, cow_String text) {
  return located(keyword, std::move(text), keyword.Place());
}

wip_Message inp_Utils::MessageInKeyword(const inp_Keyword& keyword, cow_String text,
                                        const cow_List<cow_String>& items) {
  return MessageInKeyword(keyword, MessageWithItems(text, items));
}

wip_Message inp_Utils::MessageInKeyword(const inp_Keyword& keyword, cow_String text,
                                        const cow_List<int>& items) {
  return MessageInKeyword(keyword, MessageWithItems(text, items));
}

wip_Message inp_Utils::MessageAtParameter(const inp_Keyword& keyword, std::string_view parameter,
                                          cow_String text) {
  if (const cow_String doubt = keyword.TakeDoubt(parameter); !doubt.empty())
    text = doubt + (text.empty() ? "" : text.starts_with(' ') ? "." : ". ") + text;
  return located(keyword, std::move(text), keyword.PlaceOfParameter(parameter));
}

wip_Message inp_Utils::MessageAtRow(const inp_Keyword& keyword, long long row, cow_String text) {
  if (row < 0 || row >= keyword.Data().Rows()) return MessageInKeyword(keyword, std::move(text));
  return located(keyword, std::move(text), keyword.Data().PlaceOfRow(row));
}

wip_Message inp_Utils::MessageAtField(const inp_Keyword& keyword, long long row, int col,
                                      cow_String text) {
  const inp_DataArray& data = keyword.Data();
  const bool there = row >= 0 && row < data.Rows() && col >= 0 && col < data.Cols(row);
  if (!there) return MessageAtRow(keyword, row, std::move(text));
  return located(keyword, std::move(text), data.PlaceOf(row, col));
}

cow_String inp_Utils::MessageWithItems(const cow_String& text, const cow_List<cow_String>& items) {
  return withItems(text, items);
}

cow_String inp_Utils::MessageWithItems(const cow_String& text, const cow_List<int>& items) {
  return withItems(text, items);
}

// Dots within quotes belong to the name they stand in; the pieces come without their quotes.
cow_List<cow_String> inp_Utils::SplitScopedSet(const cow_String& name) {
  cow_List<cow_String> parts(1);
  for (std::size_t at = 0; at < name.size();) {
    if (const std::size_t behind = behindQuoted(name, at)) {
      parts.back() += insideQuotes(std::string_view(name).substr(at, behind - at));
      at = behind;
      continue;
    }
    if (name[at] == '.')
      parts.emplace_back();
    else if (name[at] != '"')
      parts.back() += name[at];
    ++at;
  }
  return parts;
}

cow_List<cow_String> inp_Utils::SplitScopedField(std::string_view asWritten) {
  cow_List<cow_String> parts;
  bool quoted = false;
  std::size_t begin = 0;
  for (std::size_t at = 0; at <= asWritten.size(); ++at) {
    const bool ends = at == asWritten.size();
    if (!ends && asWritten[at] == '"') quoted = !quoted;
    if (!ends && (quoted || asWritten[at] != '.')) continue;
    parts.push_back(Fold(asWritten.substr(begin, at - begin)));
    begin = at + 1;
  }
  return parts;
}

bool inp_Utils::IsScopedSetName(const cow_List<cow_String>& parts) {
  return isScoped(parts) && !isInteger(parts.back());
}

bool inp_Utils::IsScopedSetId(const cow_List<cow_String>& parts) {
  return isScoped(parts) && isInteger(parts.back());
}

// An underscore, since a name with a dot would be read as scoped again.
cow_String inp_Utils::CreateFlattenedName(const cow_String& scope, const cow_String& name) {
  return scope.empty() ? name : scope + "_" + name;
}

cow_String inp_Utils::Fold(std::string_view text) {
  cow_String out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    if (const std::size_t behind = behindQuoted(text, i)) {
      out += insideQuotes(text.substr(i, behind - i));
      i = behind;
      continue;
    }
    if (!inp_isBlank(text[i])) out += upper(text[i]);
    ++i;
  }
  return out;
}

cow_String inp_Utils::RemoveQuotes(const cow_String& name) {
  const std::string_view text = inp_trim(name.data(), name.data() + name.size());
  const bool quoted = text.size() > 1 && text.front() == '"' && text.back() == '"';
  return quoted ? insideQuotes(text) : cow_String(text);
}

cow_String inp_Utils::Format(const char* printf, ...) {
  std::va_list arguments;
  va_start(arguments, printf);
  std::va_list again;
  va_copy(again, arguments);
  const int size = std::vsnprintf(nullptr, 0, printf, arguments);
  va_end(arguments);
  cow_String out(static_cast<std::size_t>(std::max(size, 0)), '\0');
  std::vsnprintf(out.data(), out.size() + 1, printf, again);
  va_end(again);
  return out;
}
