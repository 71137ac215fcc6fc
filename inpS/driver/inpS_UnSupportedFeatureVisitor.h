#pragma once

#include "database/KvoObjDocument.h"
#include "inpS/framework/inpS_Visitor.h"
#include "inpS/mesh/inpS_BasicElemTypeData.h"

// Reports every keyword, or variant of one, that the simulation database cannot hold. Writes
// nothing.
class inpS_UnSupportedFeatureVisitor : public inpS_Visitor {
public:
  explicit inpS_UnSupportedFeatureVisitor(const KvoObjDocument& document) : m_document(document) {}

  // A converter that skips what it cannot convert sets it: the words of a refusal change, and what
  // can be skipped becomes a warning.
  void SetErrorsAsWarnings(bool on) { m_errorsAsWarnings = on; }

  // A keyword of a part is told there, once for all instances.
  void Visit(const inp_Keyword& keyword) override {
    if (!keyword.IsInstanceCopy()) inpS_Visitor::Visit(keyword);
  }
  void VisitDirectCyclic(const inp_Keyword& keyword) override;
  void VisitRebar(const inp_Keyword& keyword) override;
  void VisitSurface(const inp_Keyword& keyword) override;
  void VisitNmap(const inp_Keyword& keyword) override;
  void VisitEnrichment(const inp_Keyword& keyword) override;
  void VisitModelChange(const inp_Keyword& keyword) override;
  void VisitElement(const inp_Keyword& keyword) override;
  void VisitAssemblyElement(const inp_Keyword& keyword) override { VisitElement(keyword); }

private:
  void reportError(const inp_Keyword& keyword, const cow_List<cow_String>& items);
  void reportErrorOrWarning(const inp_Keyword& keyword, const cow_List<cow_String>& items);
  void RefuseTypes(const inp_Keyword& keyword, std::initializer_list<const char*> types);

  KvoObjDocument m_document;
  inpS_BasicElemTypeData m_types;
  bool m_errorsAsWarnings = false;
};
