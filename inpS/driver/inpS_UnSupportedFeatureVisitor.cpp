#include "inpS/driver/inpS_UnSupportedFeatureVisitor.h"
#include "inpS/mesh/inpS_ElementParameters.h"
#include "parser/inp_Utils.h"

namespace {

constexpr const char* kNotInResults =
    "Feature not supported with SIM results (SIMFEATURENOTSUPPORTED)";
constexpr const char* kNotInConverter = "Feature not supported in inp2sim";
constexpr const char* kIgnored = "Keyword not supported, will be ignored";

} // namespace

void inpS_UnSupportedFeatureVisitor::reportError(const inp_Keyword& keyword,
                                                 const cow_List<cow_String>& items) {
  AddError(inp_Utils::MessageInKeyword(
      keyword, m_errorsAsWarnings ? kNotInConverter : kNotInResults, items));
}

void inpS_UnSupportedFeatureVisitor::reportErrorOrWarning(const inp_Keyword& keyword,
                                                          const cow_List<cow_String>& items) {
  if (m_errorsAsWarnings)
    AddWarning(inp_Utils::MessageInKeyword(keyword, kIgnored, items));
  else
    AddError(inp_Utils::MessageInKeyword(keyword, kNotInResults, items));
}

void inpS_UnSupportedFeatureVisitor::RefuseTypes(const inp_Keyword& keyword,
                                                 std::initializer_list<const char*> types) {
  const inp_Item* type = keyword.Find("type");
  if (!type) return;
  for (const char* refused : types)
    if (type->AsString() == refused) reportError(keyword, {"when TYPE=" + type->AsString()});
}

void inpS_UnSupportedFeatureVisitor::VisitDirectCyclic(const inp_Keyword& keyword) {
  if (keyword.HasParameter("fatigue"))
    AddError(inp_Utils::MessageInKeyword(keyword, kNotInResults,
                                         cow_List<cow_String>{"with FATIGUE parameter"}));
}

void inpS_UnSupportedFeatureVisitor::VisitRebar(const inp_Keyword& keyword) {
  reportError(keyword, {});
}

void inpS_UnSupportedFeatureVisitor::VisitSurface(const inp_Keyword& keyword) {
  RefuseTypes(keyword, {"EULERIANMATERIAL", "BSPLINE", "XFEM", "BEZIER", "USER"});
}

void inpS_UnSupportedFeatureVisitor::VisitNmap(const inp_Keyword& keyword) {
  RefuseTypes(keyword, {"BLENDED", "TOROIDAL"});
}

void inpS_UnSupportedFeatureVisitor::VisitEnrichment(const inp_Keyword& keyword) {
  reportErrorOrWarning(keyword, {});
}

void inpS_UnSupportedFeatureVisitor::VisitModelChange(const inp_Keyword& keyword) {
  if (!keyword.HasParameter("activate")) reportErrorOrWarning(keyword, {});
}

void inpS_UnSupportedFeatureVisitor::VisitElement(const inp_Keyword& keyword) {
  const inp_Item* type = keyword.Find("type");
  if (!type || m_types.IsSupported(type->AsString())) return;
  const inpS_ElementParameters parameters(m_types, type->AsString());
  if (parameters.IsSubstructure() || parameters.IsVariableNodeElement() ||
      parameters.IsConnectorElement() || parameters.IsUserElement())
    return;
  reportError(keyword, {"when TYPE=" + type->AsString()});
}
