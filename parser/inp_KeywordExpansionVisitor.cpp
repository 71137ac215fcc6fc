#include "parser/inp_KeywordExpansionVisitor.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Utf8Text.h"
#include "parser/inp_Utils.h"
#include <algorithm>
#include <cstring>
#include <iterator>
#include <unordered_map>
#include <utility>

namespace {

constexpr std::ptrdiff_t lookStep = 4 * 1024 * 1024; // pages read are released so often

bool holdsOpening(const char* begin, const char* end) {
  return begin != end && std::memchr(begin, '<', static_cast<std::size_t>(end - begin)) != nullptr;
}

bool holdsOpening(const inp_DataSegment& segment) {
  for (const char* p = segment.begin; p != segment.end;) {
    const char* const next = p + std::min(lookStep, segment.end - p);
    if (holdsOpening(p, next)) return true;
    if (next - p == lookStep) segment.text->Release(p, next);
    p = next;
  }
  return false;
}

bool keepsText(inp_KeywordEnm kind) {
  const inp_KeywordRow* row = inp_KeywordTable::Instance().Row(kind);
  return row && row->data == inp_DataKind::Verbatim;
}

// A deck this far beyond any model is damage, or meant to be.
constexpr std::size_t mostCopies = 100'000'000;

using PartKeywords = std::unordered_map<cow_String, cow_List<std::size_t>>; // places in the list

PartKeywords keywordsOfParts(const inp_KeywordList& keywords) {
  PartKeywords parts;
  cow_List<std::size_t>* part = nullptr;
  const inp_Scope* scope = nullptr;
  for (std::size_t i = 0; i < keywords.size(); ++i) {
    const inp_Scope& in = keywords[i].Scope();
    if (in.kind != inp_Scope::Kind::Part || keywords[i].Kind() == inp_NullKeyword) continue;
    if (&in != scope) part = &parts[in.name];
    scope = &in;
    part->push_back(i);
  }
  return parts;
}

cow_String valueOf(const inp_Keyword& keyword, std::string_view name) {
  for (const inp_Parameter& parameter : keyword.Parameters())
    if (parameter.name == name) return parameter.value.AsString();
  return {};
}

// The scope of the instance that keywords[i] opens: that of what stands in it, if anything does.
inp_ScopePtr scopeOfInstance(const inp_KeywordList& keywords, std::size_t i) {
  if (i + 1 < keywords.size() && keywords[i + 1].Scope().kind == inp_Scope::Kind::Instance)
    return keywords[i + 1].ScopePtr();
  auto scope = std::make_shared<inp_Scope>();
  scope->kind = inp_Scope::Kind::Instance;
  scope->name = valueOf(keywords[i], "name");
  scope->partName = valueOf(keywords[i], "part");
  return scope;
}

} // namespace

void inp_KeywordExpansionVisitor::VisitList(inp_KeywordListRef keywords) {
  m_keywords.clear();
  m_keywords.reserve(keywords.size());
  m_parameters = {};
  m_hasParts = m_scopesRenamed = false;
  inp_Visitor::VisitList(keywords);
  if (m_scopesRenamed) inp_renewScopeNames(m_keywords);
  if (m_hasParts && !m_keepParts) CopyParts();
}

void inp_KeywordExpansionVisitor::Visit(const inp_Keyword& keyword) {
  m_keywords.push_back(keyword);
  switch (keyword.Kind()) {
  case inp_NullKeyword:
    return;
  case inp_KwParameter:
    return DefineParameters(keyword);
  case inp_KwPart:
  case inp_KwInstance:
  case inp_KwAssembly:
    m_hasParts = true;
    break;
  default:
    break;
  }
  Substitute(m_keywords.back());
}

void inp_KeywordExpansionVisitor::DefineParameters(const inp_Keyword& keyword) {
  for (const std::string_view form : {"dependent", "table"})
    if (keyword.HasParameter(form)) {
      AddError(inp_Utils::MessageAtParameter(
          keyword, form,
          "parameters given by a table or as dependent ones are not evaluated; give them as "
          "name = expression"));
      keyword.ReferAll();
      m_keywords.back().MakeNull();
      return;
    }
  cow_List<wip_Message> errors, warnings;
  m_parameters.Define(keyword, errors, warnings);
  for (wip_Message& error : errors) AddError(std::move(error));
  for (wip_Message& warning : warnings) AddWarning(std::move(warning));
  m_keywords.back().MakeNull();
}

void inp_KeywordExpansionVisitor::Substitute(inp_Keyword& keyword) {
  inp_KeywordBody& body = *keyword.Body();
  if (holdsOpening(body.begin, body.end)) {
    if (HasComputedName(keyword)) return keyword.MakeNull();
    if (!HasComputedParameter(keyword)) SubstituteInLine(keyword);
  }
  if (m_parameters.IsEmpty() || keepsText(body.kind)) return;
  cow_List<wip_Message> errors;
  inp_rewriteData(
      body, [](const inp_DataSegment& segment) { return holdsOpening(segment); },
      [&](const inp_KeywordLine& line, cow_String& out) {
        return m_parameters.Substitute(line, body.name, out, errors);
      });
  for (wip_Message& error : errors) AddError(std::move(error));
}

void inp_KeywordExpansionVisitor::SubstituteInLine(const inp_Keyword& keyword) {
  inp_KeywordBody& body = *keyword.Body();
  const cow_List<inp_Parameter> old = body.parameters;
  cow_List<wip_Message> errors, warnings;
  const auto rewrite = [&](const inp_KeywordLine& line, cow_String& out) {
    return m_parameters.Substitute(line, body.name, out, errors);
  };
  if (inp_rewriteKeywordLine(body, rewrite, errors, warnings)) {
    m_scopesRenamed = true;
    if (errors.empty()) CheckParameters(keyword, old);
  }
  for (wip_Message& error : errors) AddError(std::move(error));
  for (wip_Message& warning : warnings) AddWarning(std::move(warning));
}

// The parser has gone by the names: they say what a keyword opens, belongs to and where its data
// lines are.
bool inp_KeywordExpansionVisitor::HasComputedName(const inp_Keyword& keyword) {
  const inp_KeywordBody& body = *keyword.Body();
  const char* const stop =
      std::find_if(body.begin, body.end, [](char c) { return c == ',' || c == '=' || c == '\n'; });
  const std::string_view name(body.begin, static_cast<std::size_t>(stop - body.begin));
  if (inp_findReference(name).empty()) return false;
  AddError(inp_Utils::MessageInKeyword(
      keyword, "the name of a keyword cannot come from a parameter; the keyword and its data lines "
               "are left out"));
  return true;
}

bool inp_KeywordExpansionVisitor::HasComputedParameter(const inp_Keyword& keyword) {
  bool has = false;
  for (const inp_Parameter& parameter : keyword.Parameters()) {
    if (inp_findReference(parameter.name).empty()) continue;
    AddError(inp_Utils::MessageAtParameter(
        keyword, parameter.name,
        "the name of a keyword's parameter cannot come from a deck parameter, only its value can; "
        "the keyword line stays as it is"));
    has = true;
  }
  return has;
}

// A value with a comma in it would be more than a value, and one that holds a <name> would be
// taken for another deck parameter when the line is written and read again.
void inp_KeywordExpansionVisitor::CheckParameters(const inp_Keyword& keyword,
                                                  const cow_List<inp_Parameter>& old) {
  const cow_List<inp_Parameter>& now = keyword.Parameters();
  const auto [other, oldOther] = std::mismatch(
      now.begin(), now.end(), old.begin(), old.end(),
      [](const inp_Parameter& a, const inp_Parameter& b) { return a.name == b.name; });
  if (other != now.end() || oldOther != old.end())
    AddError(inp_Utils::MessageAtParameter(
        keyword, oldOther == old.begin() ? "" : std::prev(oldOther)->name,
        "with its deck parameters in place the keyword has other parameters; a deck parameter can "
        "only be the value of one, and a text with a comma in it needs quotes"));
  for (const inp_Parameter& parameter : now) {
    const std::string_view left = inp_findReference(parameter.value.Verbatim());
    if (!left.empty())
      AddError(inp_Utils::MessageAtParameter(
          keyword, parameter.name,
          inp_printable(left, 80) + " comes from a deck parameter; values are put in only once"));
  }
}

// Parts that an instance names and the deck does not have are for those who convert the instance.
void inp_KeywordExpansionVisitor::CopyParts() {
  const PartKeywords parts = keywordsOfParts(m_keywords);
  const auto partOf = [&](const inp_Keyword& keyword) -> const cow_List<std::size_t>* {
    if (keyword.Kind() != inp_KwInstance) return nullptr;
    const auto found = parts.find(valueOf(keyword, "part"));
    return found == parts.end() ? nullptr : &found->second;
  };
  std::size_t copies = 0;
  for (const inp_Keyword& keyword : m_keywords) {
    const auto* const part = partOf(keyword);
    copies += part ? part->size() : 0;
    if (copies <= mostCopies) continue;
    return AddError(inp_Utils::MessageInKeyword(
        keyword, "the instances up to here hold more than 100000000 keywords of their parts; they "
                 "are not expanded"));
  }
  if (copies == 0) return;

  inp_KeywordList expanded;
  expanded.reserve(m_keywords.size() + copies);
  for (std::size_t i = 0; i < m_keywords.size(); ++i) {
    expanded.push_back(m_keywords[i]);
    const auto* const part = partOf(m_keywords[i]);
    if (!part) continue;
    const inp_ScopePtr scope = scopeOfInstance(m_keywords, i);
    for (const std::size_t k : *part) expanded.push_back(m_keywords[k].CopyInto(scope));
  }
  m_keywords = std::move(expanded);
}
