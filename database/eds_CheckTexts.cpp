#include "database/eds_CheckTexts.h"
#include "base/utl_Controls.h"
#include <algorithm>

namespace {

enum class Form { Name, Lines, Keyword };

Form formOf(eds_RecordKind kind, const eds_FieldInfo& field) {
  if (kind == eds_RecordKind::VerbatimKeyword && field.column == "text") return Form::Keyword;
  if (kind == eds_RecordKind::Annotation) return Form::Lines;
  return field.column == "lines" || field.column == "dof_lines" ? Form::Lines : Form::Name;
}

// What a reader of decks passes over before the first character of a line.
std::string_view withoutBlanks(std::string_view line) {
  line.remove_prefix(std::min(line.find_first_not_of(" \t\r\v\f"), line.size()));
  return line;
}

// Not a comment line, which begins with two asterisks.
bool isKeywordLine(std::string_view line) {
  line = withoutBlanks(line);
  return line.starts_with('*') && !line.starts_with("**");
}

std::string_view takeLine(std::string_view& text) {
  const std::size_t end = std::min(text.find('\n'), text.size());
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return line;
}

// Texts may be long: a line is looked at only where an asterisk stands.
bool hasKeywordLine(std::string_view text) {
  for (std::size_t star = text.find('*'); star != text.npos; star = text.find('*', star + 1)) {
    const std::size_t feed = star == 0 ? text.npos : text.rfind('\n', star - 1);
    const std::size_t begin = feed == text.npos ? 0 : feed + 1;
    const std::size_t end = std::min(text.find('\n', star), text.size());
    if (isKeywordLine(text.substr(begin, end - begin))) return true;
    if (end == text.size()) return false;
    star = end; // to the next line
  }
  return false;
}

// A carriage return that ends no line: where it is taken for a line end, what follows is a line.
bool hasReturnWithin(std::string_view text) {
  for (std::size_t at = text.find('\r'); at != text.npos; at = text.find('\r', at + 1))
    if (at + 1 == text.size() || text[at + 1] != '\n') return true;
  return false;
}

// As names of keywords are told apart, whatever blanks and case a deck has them in.
cow_String folded(std::string_view name) {
  cow_String letters;
  for (const char c : utl_withoutControls(name))
    if (c != ' ') letters += static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
  return letters;
}

bool isSameName(cow_String one, cow_String other) {
  for (cow_String* name : {&one, &other})
    std::erase_if(*name, [](char c) { return c == '_' || c == '-'; });
  return one == other;
}

// What a converter never keeps as text: it has become what the model holds. Written back these
// would open files, reckon, or end what stands around them.
bool isNeverKept(std::string_view name) {
  constexpr std::string_view names[] = {"INCLUDE",  "PARAMETER",   "PART",     "ENDPART",
                                        "INSTANCE", "ENDINSTANCE", "ASSEMBLY", "ENDASSEMBLY"};
  return std::ranges::find(names, name) != std::end(names);
}

cow_String keywordFault(std::string_view text, const eds_KeptPlace& place) {
  if (!text.ends_with('\n')) return "lacks the end of its last line";
  const std::string_view first = takeLine(text);
  if (!isKeywordLine(first)) return "does not begin with a keyword line";
  if (hasKeywordLine(text)) return "holds another keyword line than its own";
  std::string_view spelt = withoutBlanks(first).substr(1);
  spelt = spelt.substr(0, spelt.find(','));
  const cow_String name = folded(spelt);
  if (!isSameName(name, folded(place.keyword))) return "is another keyword than it is said to be";
  if (isNeverKept(name)) return "is a keyword that is never kept as text";
  return eds_stepRole(name) != eds_StepRole::None && !place.isAmongSteps
             ? "begins or ends a step where the model has none"
             : "";
}

} // namespace

cow_String eds_textFault(eds_RecordKind kind, const eds_FieldInfo& field, std::string_view text,
                         const eds_KeptPlace& place) {
  const Form form = formOf(kind, field);
  if (form != Form::Name && hasReturnWithin(text)) return "holds a carriage return within a line";
  switch (form) {
  case Form::Name:
    return utl_findControl(text) != text.npos ? "holds a control character" : "";
  case Form::Lines:
    return hasKeywordLine(text) ? "holds a keyword line" : "";
  case Form::Keyword:
    return keywordFault(text, place);
  }
  return {};
}

eds_StepRole eds_stepRole(std::string_view keyword) {
  const cow_String name = folded(keyword);
  return name == "STEP"      ? eds_StepRole::Begin
         : name == "ENDSTEP" ? eds_StepRole::End
                             : eds_StepRole::None;
}
