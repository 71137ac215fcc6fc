#include "parser/inp_KeywordReader.h"
#include "base/utl_Controls.h"
#include "parser/inp_DeckParameters.h"
#include "parser/inp_TextLines.h"
#include "parser/inp_Utf8Text.h"
#include "parser/inp_Utils.h"
#include <algorithm>
#include <cstring>
#include <iterator>
#include <span>
#include <utility>

namespace {

// Far beyond any sensible keyword line; what is longer is damage, and must not cost its square.
constexpr std::ptrdiff_t longestLine = 64 * 1024;
constexpr std::size_t mostParameters = 1000;
constexpr std::size_t mostSuggestions = 100; // misspelt keyword names that get a suggestion
constexpr std::size_t shownName = 80;

char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
char upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// As in the keyword line that is kept, which is no comment either.
cow_String withoutControls(std::string_view name) {
  cow_String line = '*' + cow_String(name);
  utl_dropControlsInLines(line);
  return line.substr(1);
}

cow_String foldName(std::string_view name) {
  cow_String out;
  for (const char c : withoutControls(name))
    if (!inp_isBlank(c)) out += lower(c);
  return out;
}

cow_String singleBlanks(std::string_view name) {
  cow_String out;
  for (const char c : withoutControls(name)) {
    if (!inp_isBlank(c))
      out += upper(c);
    else if (!out.ends_with(' '))
      out += ' ';
  }
  return out;
}

cow_String quoted(std::string_view name) {
  return '"' + inp_printable(name, shownName) + '"';
}

} // namespace

inp_KeywordReader::inp_KeywordReader(cow_List<wip_Message>& errors, cow_List<wip_Message>& warnings)
    : m_errors(errors), m_warnings(warnings), m_table(inp_KeywordTable::Instance()) {}

inp_KeywordReader::Result inp_KeywordReader::Read(const inp_DeckTextPtr& text, const char* asterisk,
                                                  long long number) {
  m_result = {std::make_shared<inp_KeywordBody>(), nullptr, 0, 0};
  m_body = m_result.body.get();
  m_body->text = text;
  m_body->begin = asterisk;
  m_body->line = number;
  m_textEnd = text->End();
  m_tooMany = false;

  Line line{asterisk + 1, inp_lineFeed(asterisk, m_textEnd), inp_lineBegin(asterisk, text->Begin()),
            number};
  const char* const firstEnd = line.end;
  Line name = line;
  name.end = std::min(line.end, line.begin + longestLine);
  ReadName(name);
  const bool tooLong = IsTooLong(line);
  line.begin = name.begin;
  if (!tooLong) CheckCharacters(line);
  bool goesOn = !tooLong && line.begin != line.end && ReadParameters(line);
  m_body->end = tooLong ? name.begin : firstEnd; // nobody may work on gigabytes of damage
  m_result.lines = 1;
  m_result.next = firstEnd == m_textEnd ? firstEnd : firstEnd + 1;
  while (goesOn && FindContinuation(line)) {
    goesOn = !IsTooLong(line);
    if (!goesOn) break;
    m_body->end = line.end;
    CheckCharacters(line);
    goesOn = ReadParameters(line);
  }
  m_body = nullptr;
  return std::move(m_result);
}

namespace {

// *ELEMENT, TYPE=Zn, FILE= names the library that holds the substructure, not a file of data lines.
bool isSubstructureLibrary(const inp_KeywordBody& body, const inp_Parameter& parameter) {
  if (body.kind != inp_KwElement || parameter.name != "file") return false;
  return std::any_of(body.parameters.begin(), body.parameters.end(), [](const inp_Parameter& p) {
    return p.name == "type" && !p.value.AsString().empty() && p.value.AsString().front() == 'Z';
  });
}

} // namespace

bool inp_KeywordReader::NamesDataFile(inp_KeywordEnm kind, std::string_view parameter) {
  const inp_KeywordRow* row = inp_KeywordTable::Instance().Row(kind);
  if (!row || row->data == inp_DataKind::None || row->data == inp_DataKind::Verbatim) return false;
  // Matrices may come in binary form and are no lines of the deck.
  if (kind == inp_KwMatrixInput) return false;
  const bool mesh = row->levels == inp_LevelsMesh && kind != inp_KwUserElement;
  if (parameter == "file") return mesh;
  const auto& names = row->parameters;
  return parameter == "input" &&
         (mesh || std::find(names.begin(), names.end(), parameter) != names.end());
}

int inp_KeywordReader::DataFileOf(const inp_KeywordBody& body) {
  for (std::size_t i = 0; i < body.parameters.size(); ++i) {
    const inp_Parameter& parameter = body.parameters[i];
    if (!parameter.value.IsFlag() && NamesDataFile(body.kind, parameter.name) &&
        !isSubstructureLibrary(body, parameter))
      return static_cast<int>(i);
  }
  return -1;
}

// Values that are file names: on some systems case and blanks matter in them.
bool inp_KeywordReader::NamesFile(std::string_view parameter) {
  static constexpr std::string_view names[] = {"file", "filename", "input", "library",
                                               "outputfile"};
  return std::find(std::begin(names), std::end(names), parameter) != std::end(names);
}

// Takes the name off the front of the line.
void inp_KeywordReader::ReadName(Line& line) {
  const char* const stop = std::find(line.begin, line.end, ',');
  const std::string_view spelt = inp_trim(line.begin, stop);
  line.begin = stop;
  if (spelt.empty()) {
    m_errors.push_back(Message("a keyword line without a keyword", {m_body->begin, 1}, line));
    return;
  }
  m_body->kind = m_table.Find(spelt);
  // As the line is kept, so it is read.
  if (!m_table.Row(m_body->kind)) m_body->kind = m_table.Find(withoutControls(spelt));
  if (const inp_KeywordRow* row = m_table.Row(m_body->kind)) {
    m_body->name = row->name;
    return;
  }
  m_body->kind = inp_UnknownKeyword;
  m_body->name = singleBlanks(spelt);
  if (spelt.find('=') != spelt.npos)
    m_errors.push_back(Message("a comma is missing between the keyword and its first parameter",
                               Spelt(spelt), line));
  else
    WarnUnknownKeyword(line, spelt);
}

// The asterisk and the name behind it.
std::string_view inp_KeywordReader::Spelt(std::string_view name) const {
  return {m_body->begin, static_cast<std::size_t>(name.data() + name.size() - m_body->begin)};
}

// An unknown keyword is kept as it stands and reported once per name. Of names with a <name> in
// them expansion tells, here and with parameters.
void inp_KeywordReader::WarnUnknownKeyword(const Line& line, std::string_view spelt) {
  if (!inp_findReference(spelt).empty()) return;
  if (!m_unknown.insert(m_body->name.substr(0, shownName)).second) return;
  wip_Message message =
      Message("unknown keyword *" + inp_printable(m_body->name, shownName) + "; kept as it is",
              Spelt(spelt), line);
  if (m_unknown.size() <= mostSuggestions && spelt.size() <= shownName) {
    const std::string_view nearest = m_table.NearestKeyword(spelt);
    if (!nearest.empty())
      message.notes.push_back({"did you mean *" + cow_String(nearest) + "?", {}});
  }
  m_warnings.push_back(std::move(message));
}

// Reads ", a, b=c" and tells whether the line ends in a comma.
bool inp_KeywordReader::ReadParameters(const Line& line) {
  const char* p = *line.begin == ',' ? line.begin + 1 : line.begin;
  const char* openQuote = nullptr;
  for (;;) {
    const char* const stop = TokenEnd(line, p, openQuote);
    const std::string_view token = inp_trim(p, stop);
    const bool last = stop == line.end;
    if (!token.empty())
      ReadParameter(token, line);
    else if (!last)
      m_warnings.push_back(Message("an empty parameter", {stop, 1}, line));
    if (openQuote)
      m_errors.push_back(Message("a quote that is not closed on its line", {openQuote, 1}, line));
    if (last) return token.empty();
    p = stop + 1;
  }
}

// The comma that ends the token at p; commas within quotes do not.
const char* inp_KeywordReader::TokenEnd(const Line& line, const char* p,
                                        const char*& openQuote) const {
  for (; p != line.end && *p != ','; ++p) {
    if (*p != '"') continue;
    const char* const close = std::find(p + 1, line.end, '"');
    if (close == line.end) {
      openQuote = p;
      return line.end;
    }
    p = close;
  }
  return p;
}

// No name may hold a control character: it could be written into no deck. A tab is a blank.
void inp_KeywordReader::CheckCharacters(const Line& line) {
  const std::string_view text = inp_trim(line.lineBegin, line.end);
  std::size_t at = text.find('\r');
  if (at != text.npos) {
    m_errors.push_back(
        Message("a carriage return within a keyword line: does the file end its lines "
                "by carriage returns alone? They must end by line feeds",
                text.substr(at, 1), line));
  }
  at = utl_findControl(text);
  while (at != text.npos && inp_isBlank(text[at])) at = utl_findControl(text, at + 1);
  if (at != text.npos)
    m_warnings.push_back(Message("a control character within a keyword line; such are left out",
                                 text.substr(at, 1), line));
}

void inp_KeywordReader::ReadParameter(std::string_view token, const Line& line) {
  if (m_tooMany) return;
  if (m_body->parameters.size() == mostParameters) {
    m_errors.push_back(Message("more than 1000 parameters; the rest is not read", token, line));
    m_tooMany = true;
    return;
  }

  const std::size_t equal = token.find('=');
  const char* const tokenEnd = token.data() + token.size();
  const std::string_view spelt =
      inp_trim(token.data(), equal == token.npos ? tokenEnd : token.data() + equal);
  if (spelt.empty()) {
    m_errors.push_back(Message("a value without the name of its parameter", token, line));
    return;
  }
  inp_Parameter parameter;
  parameter.name = CanonicalName(spelt, line, parameter.told);
  parameter.at = token.data();
  parameter.width = static_cast<int>(token.size());
  if (equal == token.npos) {
    parameter.value = inp_Item(true);
  } else {
    const cow_String value =
        utl_withoutControls(inp_trim(token.data() + equal + 1, tokenEnd)); // told already
    if (value.empty()) {
      const auto words = m_table.WordsOf(m_body->kind, parameter.name);
      parameter.told = parameter.told || !words.empty(); // as a word that is none of them
      parameter.doubted = true;
    }
    parameter.value = NamesFile(parameter.name)
                          ? inp_Item::FromText(inp_Utils::RemoveQuotes(value), value)
                          : inp_Item::FromText(inp_Utils::Fold(value), value);
    if (!value.empty()) CompleteValue(parameter);
  }
  Add(std::move(parameter), spelt, line);
}

// The first value of a parameter counts; another one that says something else is told and left out.
// Of files, whose lines would be missing, that is an error.
void inp_KeywordReader::Add(inp_Parameter parameter, std::string_view spelt, const Line& line) {
  for (const inp_Parameter& other : m_body->parameters) {
    if (other.name != parameter.name) continue;
    const bool same = other.value.AsString() == parameter.value.AsString();
    const bool namesFile = NamesFile(parameter.name);
    if (same && !namesFile) return;
    const std::string_view token(parameter.at, static_cast<std::size_t>(parameter.width));
    // A file is read once: when the keyword is written with its lines, the other would come again.
    (namesFile ? m_errors : m_warnings)
        .push_back(Message("parameter " + quoted(spelt) + " is given twice" +
                               (same        ? "; its file is read once"
                                : namesFile ? " with different values"
                                            : " with different values; the first one holds"),
                           token, line));
    return;
  }
  m_body->parameters.push_back(std::move(parameter));
}

cow_String inp_KeywordReader::CanonicalName(std::string_view spelt, const Line& line, bool& told) {
  cow_String name = foldName(spelt);
  const inp_KeywordRow* row = m_table.Row(m_body->kind);
  if (!row) return name;
  const inp_ParameterMatch match = m_table.ResolveParameter(m_body->kind, name);
  using Kind = inp_ParameterMatch::Kind;
  if (match.kind == Kind::Exact || match.kind == Kind::Abbreviated) return cow_String(match.name);
  if (row->openParameters || NamesDataFile(m_body->kind, name)) return name;
  if (!inp_findReference(spelt).empty()) return name;

  wip_Message message =
      Message((match.kind == Kind::Ambiguous ? "ambiguous parameter " : "unknown parameter ") +
                  quoted(spelt) + " of *" + m_body->name,
              spelt, line);
  if (match.kind == Kind::Ambiguous) {
    const cow_List<cow_String> names(match.candidates.begin(), match.candidates.end());
    message.notes.push_back({inp_Utils::MessageWithItems("it may stand for", names), {}});
  } else if (spelt.size() <= shownName) {
    const std::string_view nearest = m_table.NearestParameter(m_body->kind, name);
    if (!nearest.empty()) message.notes.push_back({"did you mean " + quoted(nearest) + "?", {}});
  }
  told = true;
  m_warnings.push_back(std::move(message));
  return name;
}

// A value may be shortened as names may, where the language has words for it. What is none of them
// stays as it is: whoever reads the keyword says so, and what becomes of it.
void inp_KeywordReader::CompleteValue(inp_Parameter& parameter) {
  using Kind = inp_WordMatch::Kind;
  const inp_WordMatch match =
      m_table.ResolveWord(m_body->kind, parameter.name, parameter.value.AsString());
  if (match.kind == Kind::Any || match.word == parameter.value.AsString()) return;
  const cow_String verbatim = parameter.value.Verbatim();
  if (!inp_findReference(verbatim).empty()) return;
  if (match.kind == Kind::Known) {
    parameter.value = inp_Item::FromText(inp_KeywordTable::BareWord(match.word), verbatim);
    return;
  }
  parameter.told = parameter.doubted = true;
}

// A keyword line that ends in a comma goes on with the next line that is no comment; where a
// keyword, a blank line or the end of the file follows, the comma was one too many and does no
// harm.
bool inp_KeywordReader::FindContinuation(Line& line) {
  long long lines = 0, comments = 0;
  for (const char* p = m_result.next; p != m_textEnd;) {
    const char* const feed = inp_lineFeed(p, m_textEnd);
    const inp_LineKind kind = inp_lineKind(p, feed);
    const char* const next = feed == m_textEnd ? feed : feed + 1;
    ++lines;
    if (kind == inp_LineKind::Comment) {
      ++comments;
      p = next;
      continue;
    }
    if (kind == inp_LineKind::Keyword || inp_skipBlanks(p, feed) == feed) return false;
    line = {inp_skipBlanks(p, feed), feed, p, line.number + lines};
    m_result.lines += lines;
    m_result.comments += comments;
    m_result.next = next;
    return true;
  }
  return false;
}

// Reports a line that is beyond all measure; no more of it is read, nor of its continuation lines.
bool inp_KeywordReader::IsTooLong(const Line& line) {
  const std::ptrdiff_t bytes = line.end - m_body->begin;
  if (bytes <= longestLine) return false;
  const Line first{m_body->begin, line.end, inp_lineBegin(m_body->begin, m_body->text->Begin()),
                   m_body->line};
  m_errors.push_back(Message("a keyword line of " + std::to_string(bytes) +
                                 " bytes; a keyword line may have " + std::to_string(longestLine),
                             {m_body->begin, 1}, first));
  return true;
}

wip_Message inp_KeywordReader::Message(cow_String text, std::string_view at,
                                       const Line& line) const {
  wip_Message message(std::move(text));
  message.keyword = inp_printable(m_body->name, shownName);
  const auto width = static_cast<int>(std::min<std::size_t>(at.size(), shownName));
  message.place = m_body->text->PlaceInLine(line.lineBegin, at.data(), width, line.number);
  return message;
}
