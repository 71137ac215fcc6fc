#include "parser/inp_DeckParameters.h"
#include "parser/inp_TextLines.h"
#include "parser/inp_UnreadText.h"
#include "parser/inp_Utf8Text.h"
#include <algorithm>

namespace {

constexpr std::size_t shownName = 80;

cow_String lower(std::string_view name) {
  cow_String out(name);
  for (char& c : out)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return out;
}

wip_Message messageAt(const inp_KeywordLine& line, const cow_String& keyword, std::string_view at,
                      cow_String text) {
  wip_Message message(std::move(text));
  message.keyword = keyword;
  message.place = line.PlaceOf(at);
  return message;
}

// The line up to a '#' that stands in no quotes.
std::string_view withoutComment(std::string_view line) {
  char quote = '\0';
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (quote != '\0') {
      if (c == quote) quote = '\0';
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '#') {
      return line.substr(0, i);
    }
  }
  return line;
}

std::string_view trim(std::string_view text) {
  return inp_trim(text.data(), text.data() + text.size());
}

bool isName(std::string_view text) {
  return !text.empty() && inp_isNameStart(text[0]) &&
         std::all_of(text.begin(), text.end(), inp_isNameChar);
}

inp_LineKind kindOf(std::string_view line) {
  return inp_lineKind(line.data(), line.data() + line.size());
}

// Calls take(<name> as it stands, the name) until it returns false.
template <class Take> void eachReference(std::string_view text, Take&& take) {
  bool quotesPair = true;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '"' && quotesPair) {
      const std::size_t close = text.find('"', i + 1);
      quotesPair = close != std::string_view::npos;
      if (quotesPair) i = close;
      continue;
    }
    if (text[i] != '<') continue;
    std::size_t stop = i + 1; // names are short: an open '<' must not be looked behind far
    while (stop < text.size() && (inp_isNameChar(text[stop]) || inp_isBlank(text[stop]))) ++stop;
    const std::string_view name = trim(text.substr(i + 1, stop - i - 1));
    if (stop == text.size() || text[stop] != '>' || !isName(name)) {
      i = stop - 1;
      continue;
    }
    if (!take(text.substr(i, stop + 1 - i), name)) return;
    i = stop;
  }
}

} // namespace

const inp_DeckParameters::Value* inp_DeckParameters::Find(std::string_view name) const {
  auto found = m_values.find(cow_String(name));
  if (found != m_values.end()) return &found->second;
  const auto spellings = m_spellings.find(lower(name));
  if (spellings == m_spellings.end() || spellings->second.size() != 1) return nullptr;
  return &m_values.at(spellings->second.front());
}

void inp_DeckParameters::Define(const inp_Keyword& keyword, cow_List<wip_Message>& errors,
                                cow_List<wip_Message>& warnings) {
  keyword.ReferAll();
  const inp_DataArray& data = keyword.Data();
  for (const inp_DataSegment& segment : data.Segments())
    inp_eachLine(segment, [&](const inp_KeywordLine& line) {
      DefineLine(line, keyword.Name(), errors, warnings);
    });
}

void inp_DeckParameters::DefineLine(const inp_KeywordLine& line, const cow_String& keyword,
                                    cow_List<wip_Message>& errors,
                                    cow_List<wip_Message>& warnings) {
  const std::string_view text = trim(withoutComment(line.text));
  if (text.empty()) return;
  const std::size_t equal = text.find('=');
  const std::string_view name = trim(text.substr(0, equal));
  if (equal == std::string_view::npos || !isName(name)) {
    errors.push_back(messageAt(line, keyword, text,
                               "\"" + inp_printable(text, shownName) +
                                   "\" is not evaluated; a line must read name = expression"));
    return;
  }
  inp_ExpressionFault fault;
  const auto lookup = [this](std::string_view wanted) -> const inp_ParameterValue* {
    const Value* found = Find(wanted);
    return found ? &found->value : nullptr;
  };
  const auto value = inp_evaluate(text.substr(equal + 1), lookup, fault);
  if (!value) {
    errors.push_back(messageAt(line, keyword, fault.at, fault.text));
    return;
  }
  Value kept{*value, line.PlaceOf(name)};
  const auto [at, isNew] = m_values.try_emplace(cow_String(name), kept);
  if (isNew) {
    m_spellings[lower(name)].push_back(at->first);
    return;
  }
  wip_Message warning = messageAt(line, keyword, name,
                                  "the parameter \"" + cow_String(name) +
                                      "\" is defined again; the new value holds from here on");
  warning.notes.push_back({"first defined here", at->second.place});
  warnings.push_back(std::move(warning));
  at->second = std::move(kept);
}

bool inp_DeckParameters::Substitute(const inp_KeywordLine& line, const cow_String& keyword,
                                    cow_String& out, cow_List<wip_Message>& errors) const {
  const std::string_view text = line.text;
  const char* copied = text.data(); // what stands before it is in `fresh`
  cow_String fresh;
  std::string_view first, last; // that got a value
  const auto isTooLong = [&](std::size_t size) {
    return size > static_cast<std::size_t>(inp_longestDataLine);
  };
  eachReference(text, [&](std::string_view at, std::string_view name) {
    const Value* value = Find(name);
    if (!value) {
      errors.push_back(messageAt(line, keyword, at,
                                 "there is no parameter \"" + inp_printable(name, shownName) +
                                     "\" before this line"));
      return true;
    }
    fresh.append(copied, at.data());
    fresh += value->value.AsDeckText();
    copied = at.data() + at.size();
    if (first.empty()) first = at;
    last = at;
    return !isTooLong(fresh.size());
  });
  if (first.empty()) return false;
  fresh.append(copied, text.data() + text.size());
  if (isTooLong(fresh.size())) {
    errors.push_back(messageAt(line, keyword, last,
                               "with its parameters in place the line has more than " +
                                   std::to_string(inp_longestDataLine) +
                                   " bytes; it stays as it is"));
    return false;
  }
  if (kindOf(text) == inp_LineKind::Data && kindOf(fresh) != inp_LineKind::Data) {
    errors.push_back(messageAt(line, keyword, first,
                               "with its parameters in place the line begins with an asterisk; a "
                               "parameter makes no keyword or comment line, and it is left out"));
    fresh = "**";
  }
  out += fresh;
  return true;
}

std::string_view inp_findReference(std::string_view text) {
  std::string_view found;
  eachReference(text, [&](std::string_view at, std::string_view) {
    found = at;
    return false;
  });
  return found;
}
