#include "inpS/history/inpS_ConditionParameters.h"
#include "inpS/forms/inpS_FormValue.h"
#include "inpS/keywords/inpS_Flag.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

void tellBelow(const inp_Keyword& keyword, const char* parameter, const char* name, long long least,
               inp_Visitor& messages) {
  const inp_Item* number = keyword.Find(parameter);
  if (!number || !number->IsInteger() || number->AsInt() >= least) return;
  messages.AddError(inp_Utils::MessageAtParameter(keyword, parameter,
                                                  cow_String(name) + "=" + number->Verbatim() +
                                                      " is below " + std::to_string(least) +
                                                      ". It is kept as given."));
}

// Of what values of a file are said: which of them, and how they come to this mesh.
constexpr std::pair<const char*, const char*> ofFiles[] = {{"bstep", "B STEP"},
                                                           {"binc", "B INC"},
                                                           {"estep", "E STEP"},
                                                           {"einc", "E INC"},
                                                           {"step", "STEP"},
                                                           {"inc", "INC"},
                                                           {"midside", "MIDSIDE"},
                                                           {"interpolate", "INTERPOLATE"},
                                                           {"drivingelsets", "DRIVING ELSETS"}};

void tellWithoutFile(const inp_Keyword& keyword, inp_Visitor& messages) {
  const inp_KeywordEnm kind = keyword.Kind();
  if (kind != inp_KwTemperature && kind != inp_KwField && kind != inp_KwPressureStress &&
      kind != inp_KwInitialConditions)
    return;
  const auto number = [&](const char* parameter, int absent) {
    const inp_Item* item = keyword.Find(parameter);
    return item && item->IsInteger() ? item->AsInt() : absent;
  };
  const bool hasFile = keyword.HasParameter("file");
  for (const auto& [parameter, name] : ofFiles)
    if (!hasFile && keyword.HasParameter(parameter))
      messages.AddWarning(inp_Utils::MessageAtParameter(
          keyword, parameter,
          cow_String(name) + " is about a file, and no FILE is given. It is kept as given."));
  const int begin = number("bstep", 1);
  const int end = number("estep", begin);
  if (hasFile && (end < begin || (end == begin && number("einc", 1) < number("binc", 0) &&
                                  keyword.HasParameter("einc"))))
    messages.AddError(inp_Utils::MessageAtParameter(
        keyword, keyword.HasParameter("estep") && end < begin ? "estep" : "einc",
        "The file's values end before they begin. It is kept as given."));
}

} // namespace

bool inpS_hasVariable(const inp_Keyword& keyword, inp_Visitor& messages) {
  const inp_Item* variable = keyword.Find("variable");
  if (!variable || (variable->IsInteger() && variable->AsInt() > 0)) return true;
  messages.AddError(inp_Utils::MessageAtParameter(
      keyword, "variable",
      "VARIABLE=" + variable->Verbatim() +
          ": field variables are numbered from 1 on. The keyword is kept as text."));
  return false;
}

// Decided here: who gives both means the part that has to be named.
void inpS_checkConditionParameters(const inp_Keyword& keyword, const inpS_FormNames& names,
                                   inp_Visitor& messages) {
  if (inpS_saysYes(keyword, "real") && inpS_saysYes(keyword, "imaginary"))
    messages.AddWarning(inp_Utils::MessageAtParameter(
        keyword, "real", "REAL and IMAGINARY exclude each other; IMAGINARY holds."));
  tellWithoutFile(keyword, messages);
  tellBelow(keyword, "loadcase", "LOAD CASE", 1, messages);
  tellBelow(keyword, "cyclicmode", "CYCLIC MODE", 0, messages);
  if (!keyword.HasParameter("refnode")) return;
  const cow_String node = keyword.Find("refnode")->Verbatim();
  const eds_Referable& nset = *std::ranges::find(eds_referables(), "nset", &eds_Referable::word);
  if (names.FindLabel(eds_FormType::Node, node).isKnown || !names.Find(nset, node).set.IsNull())
    return;
  messages.AddError(inp_Utils::MessageAtParameter(
      keyword, "refnode", "Reference node " + node + " does not exist. It is kept as it stands."));
}
