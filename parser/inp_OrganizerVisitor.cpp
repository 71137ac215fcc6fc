#include "parser/inp_OrganizerVisitor.h"
#include <iterator>
#include <utility>

namespace {

inp_KeywordEnm assemblyKind(inp_KeywordEnm kind) {
  switch (kind) {
  case inp_KwNset:
    return inp_KwAssemblyNset;
  case inp_KwElset:
    return inp_KwAssemblyElset;
  case inp_KwElement:
    return inp_KwAssemblyElement;
  default:
    return kind;
  }
}

bool isOfPart(const inp_Keyword& keyword) {
  return keyword.Kind() == inp_KwPart || keyword.Kind() == inp_KwEndPart ||
         keyword.Scope().kind == inp_Scope::Kind::Part;
}

bool isHistory(const inp_Keyword& keyword) {
  return keyword.Kind() == inp_KwStep || keyword.Kind() == inp_KwEndStep ||
         keyword.Scope().kind == inp_Scope::Kind::Step;
}

} // namespace

void inp_OrganizerVisitor::VisitList(inp_KeywordListRef keywords) {
  m_keywords.clear();
  m_keywords.reserve(keywords.size());
  m_history.clear();
  m_assemblyAt = 0;
  m_hasAssembly = false;
  m_lateParts.clear();
  inp_Visitor::VisitList(keywords);
  m_keywords.insert(m_keywords.begin() + static_cast<std::ptrdiff_t>(m_assemblyAt),
                    std::make_move_iterator(m_lateParts.begin()),
                    std::make_move_iterator(m_lateParts.end()));
  m_lateParts.clear();
  m_keywords.insert(m_keywords.end(), std::make_move_iterator(m_history.begin()),
                    std::make_move_iterator(m_history.end()));
  m_history.clear();
}

void inp_OrganizerVisitor::Visit(const inp_Keyword& keyword) {
  if (keyword.Kind() == inp_NullKeyword) return;
  if (keyword.Kind() == inp_KwAssembly && !m_hasAssembly) {
    m_hasAssembly = true;
    m_assemblyAt = m_keywords.size();
  }
  inp_KeywordList& to = m_hasAssembly && isOfPart(keyword) ? m_lateParts
                        : isHistory(keyword)               ? m_history
                                                           : m_keywords;
  // No part or instance shares what stands in the assembly: the body may change for all.
  const bool isOfAssembly = m_featureEnhanced && keyword.Scope().kind == inp_Scope::Kind::Assembly;
  to.push_back(isOfAssembly ? keyword.Become(assemblyKind(keyword.Kind())) : keyword);
}
