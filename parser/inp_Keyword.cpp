#include "parser/inp_Keyword.h"
#include "base/utl_Assert.h"
#include "base/utl_Controls.h"
#include "parser/inp_Doubts.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_TextLines.h"
#include <algorithm>
#include <ostream>
#include <utility>

namespace {

const inp_KeywordBody& nullBody() {
  static const inp_KeywordBody body;
  return body;
}

const inp_KeywordBody& bodyOf(const inp_Keyword& keyword) {
  return keyword.Body() ? *keyword.Body() : nullBody();
}

const inp_Parameter* findParameter(const inp_KeywordBody& body, std::string_view name) {
  for (const inp_Parameter& parameter : body.parameters)
    if (parameter.name == name) return &parameter;
  return nullptr;
}

// Appends the keyword line's characters without its continuation breaks, comment lines and the
// stretch that is left out.
class LineJoiner {
public:
  LineJoiner(const inp_KeywordBody& body, cow_String& out) : m_body(body), m_out(out) {}

  void Join() {
    const char* p = m_body.begin;
    for (bool first = true; p != m_body.end; first = false) {
      const char* const feed = inp_lineFeed(p, m_body.end);
      const std::string_view line = inp_trim(p, feed);
      // A continued line never begins with an asterisk, so another one that does is a comment.
      if (first || (!line.empty() && line.front() != '*')) Append(line);
      p = feed == m_body.end ? feed : feed + 1;
    }
    if (m_body.data.Rows() > 0) DropLastCommas();
    m_out += '\n';
  }

private:
  // Data lines behind them would be read as a continuation, unless an open quote holds the comma.
  void DropLastCommas() {
    const auto parameters = std::find(m_out.begin(), m_out.end(), ',');
    if (std::count(parameters, m_out.end(), '"') % 2 != 0) return;
    while (m_out.ends_with(',') || inp_isBlank(m_out.back())) m_out.pop_back();
  }

  void Append(std::string_view line) {
    const auto [cut, behind] = CutIn(line);
    cow_String kept(line.substr(0, cut));
    kept += line.substr(behind);
    const std::string_view trimmed = inp_trim(kept.data(), kept.data() + kept.size());
    if (trimmed.empty()) return;
    if (m_out.ends_with(',')) m_out += ' ';
    m_out += trimmed;
  }

  // The data file's parameter and the comma before it on its line; else the one behind it.
  std::pair<std::size_t, std::size_t> CutIn(std::string_view line) const {
    if (m_body.dataFile < 0) return {line.size(), line.size()};
    const auto& cut = m_body.parameters[static_cast<std::size_t>(m_body.dataFile)];
    if (cut.at < line.data() || cut.at >= line.data() + line.size())
      return {line.size(), line.size()};
    const auto at = static_cast<std::size_t>(cut.at - line.data());
    const std::size_t end = at + static_cast<std::size_t>(cut.width);
    const std::size_t comma = at == 0 ? std::string_view::npos : line.rfind(',', at - 1);
    if (comma != std::string_view::npos) return {comma, end};
    const std::size_t next = line.find(',', end);
    return {at, next == std::string_view::npos ? line.size() : next + 1};
  }

  const inp_KeywordBody& m_body;
  cow_String& m_out;
};

void appendGenerated(const inp_KeywordBody& body, cow_String& out) {
  out += '*' + body.name;
  for (const inp_Parameter& parameter : body.parameters) {
    out += ", " + parameter.name;
    if (!parameter.value.IsFlag()) out += '=' + parameter.value.Verbatim();
  }
  out += '\n';
}

} // namespace

inp_Keyword::inp_Keyword(cow_String name) : m_body(std::make_shared<inp_KeywordBody>()) {
  m_body->name = std::move(name);
  m_body->kind = m_kind = inp_KeywordTable::Instance().Find(m_body->name);
}

inp_Keyword::inp_Keyword(std::shared_ptr<inp_KeywordBody> body, inp_ScopePtr scope)
    : m_body(std::move(body)), m_scope(std::move(scope)), m_kind(bodyOf(*this).kind) {}

const cow_String& inp_Keyword::Name() const {
  return bodyOf(*this).name;
}

const inp_Item* inp_Keyword::Find(std::string_view name) const {
  const inp_Parameter* parameter = findParameter(bodyOf(*this), name);
  if (!parameter) return nullptr;
  parameter->referred = true;
  return &parameter->value;
}

cow_String inp_Keyword::StringOf(std::string_view name, const cow_String& absent) const {
  const inp_Item* item = Find(name);
  return item ? item->AsString() : absent;
}

const cow_List<inp_Parameter>& inp_Keyword::Parameters() const {
  return bodyOf(*this).parameters;
}

bool inp_Keyword::LeaveUnread(std::string_view name) const {
  const inp_Parameter* parameter = findParameter(bodyOf(*this), name);
  if (!parameter) return false;
  parameter->referred = false;
  return !std::exchange(parameter->told, true);
}

bool inp_Keyword::IsDoubted(std::string_view name) const {
  const inp_Parameter* parameter = findParameter(bodyOf(*this), name);
  return parameter && parameter->doubted;
}

cow_String inp_Keyword::TakeDoubt(std::string_view name) const {
  const inp_Parameter* parameter = findParameter(bodyOf(*this), name);
  if (!parameter || !std::exchange(parameter->doubted, false)) return {};
  return inp_doubtOf(bodyOf(*this), *parameter);
}

void inp_Keyword::ReferAll() const {
  for (const inp_Parameter& parameter : Parameters()) parameter.referred = true;
}

const inp_DataArray& inp_Keyword::Data() const {
  return bodyOf(*this).data;
}

const inp_Scope& inp_Keyword::Scope() const {
  static const inp_Scope model;
  return m_scope ? *m_scope : model;
}

inp_Keyword inp_Keyword::CopyInto(inp_ScopePtr instance) const {
  inp_Keyword copy(m_body, std::move(instance));
  copy.m_instanceCopy = true;
  return copy;
}

inp_Keyword inp_Keyword::Become(inp_KeywordEnm kind) const {
  m_body->kind = kind;
  inp_Keyword changed = *this;
  changed.m_kind = kind;
  return changed;
}

void inp_Keyword::MakeNull() {
  m_body.reset();
  m_kind = inp_NullKeyword;
}

bool inp_Keyword::hasSuboption(inp_KeywordEnm kind) const {
  const inp_KeywordList& list = Suboptions();
  return std::any_of(list.begin(), list.end(),
                     [kind](const inp_Keyword& option) { return option.Kind() == kind; });
}

const inp_KeywordList& inp_Keyword::Suboptions() const {
  static const inp_KeywordList none;
  const inp_KeywordBody& body = bodyOf(*this);
  return body.suboptions ? *body.suboptions : none;
}

bool inp_Keyword::IsSuboption() const {
  return ParentKind() != inp_NullKeyword;
}

inp_KeywordEnm inp_Keyword::ParentKind() const {
  return bodyOf(*this).parent;
}

const cow_String& inp_Keyword::FileName() const {
  static const cow_String none;
  const inp_KeywordBody& body = bodyOf(*this);
  return body.text ? body.text->FileName() : none;
}

long long inp_Keyword::Line() const {
  return bodyOf(*this).line;
}

wip_Place inp_Keyword::Place() const {
  const inp_KeywordBody& body = bodyOf(*this);
  if (!body.text) {
    wip_Place place;
    place.line = body.line;
    return place;
  }
  const char* const stop =
      std::find_if(body.begin, body.end, [](char c) { return c == ',' || c == '\n' || c == '\r'; });
  const std::string_view name = inp_trim(body.begin, stop);
  const auto width = static_cast<int>(std::min<std::size_t>(name.size(), 80));
  return body.text->PlaceInLine(inp_lineBegin(body.begin, body.text->Begin()), body.begin, width,
                                body.line);
}

wip_Place inp_Keyword::PlaceOfParameter(std::string_view name) const {
  const inp_KeywordBody& body = bodyOf(*this);
  const inp_Parameter* parameter = findParameter(body, name);
  if (!parameter || !parameter->at || !body.text) return Place();
  const long long line = body.line + std::count(body.begin, parameter->at, '\n');
  return body.text->PlaceInLine(inp_lineBegin(parameter->at, body.text->Begin()), parameter->at,
                                parameter->width, line);
}

cow_String inp_Keyword::Text() const {
  return m_body ? HeadText() + m_body->data.Text() : cow_String();
}

cow_String inp_Keyword::HeadText() const {
  cow_String out;
  if (!m_body) return out;
  if (m_body->text)
    LineJoiner(*m_body, out).Join();
  else
    appendGenerated(*m_body, out);
  utl_dropControlsInLines(out);
  return out;
}

void inp_Keyword::Print(aio_ostream& out) const {
  out << Text();
}
