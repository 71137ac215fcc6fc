#pragma once

#include "parser/inp_Visitor.h"

#include "parser/inp_Keyword.h"

// Brings the keywords into the form and order that conversions want:
// - null keywords are dropped;
// - in a deck of parts and instances, *NSET, *ELSET and *ELEMENT that stand in the assembly and
//   outside of its instances become the assembly's own kinds, so that visitors tell by the
//   operation they are called with whether labels are an instance's or the assembly's;
// - parts written behind the assembly move in front of it: its instances are made of them;
// - model data written between or behind the steps moves in front of the first *STEP: it holds for
//   the whole analysis wherever it stands.
// Nothing else moves. Within model data and within history the deck's order is kept, because it
// means something: a label or an option given again replaces the first one, sub-options follow
// their parent, and steps build on those before them.
class inp_OrganizerVisitor : public inp_Visitor {
public:
  explicit inp_OrganizerVisitor(bool featureEnhanced) : m_featureEnhanced(featureEnhanced) {}

  void VisitList(inp_KeywordListRef keywords) override;
  void Visit(const inp_Keyword& keyword) override;

  const inp_KeywordList& Keywords() const { return m_keywords; }

private:
  bool m_featureEnhanced;
  inp_KeywordList m_keywords; // model data
  inp_KeywordList m_history;  // behind it once all is seen
  bool m_hasAssembly = false;
  std::size_t m_assemblyAt = 0; // place of the assembly in m_keywords
  inp_KeywordList m_lateParts;  // parts behind it
};
