#include "inpS/history/inpS_ConditionParameters.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/forms/inpS_FormValue.h"
#include "inpS/forms/inpS_LackOfLines.h"
#include "inpS/history/inpS_ExcitationKind.h"
#include "inpS/keywords/inpS_Flag.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

// Of a parameter that the form knows; one that it does not is told by others, and kept.
const inp_Item* given(const inp_Keyword& keyword, const inpS_Form& form,
                      const cow_String& parameter) {
  return form.Binds(parameter) || form.IsChosenBy(parameter) ? keyword.Find(parameter) : nullptr;
}

void tellBelow(const inp_Keyword& keyword, const inpS_Form& form, const char* parameter,
               const char* name, long long least, inp_Visitor& messages) {
  const inp_Item* number = given(keyword, form, parameter);
  if (!number || !number->IsInteger() || number->AsInt() >= least) return;
  messages.AddError(inp_Utils::MessageAtParameter(
      keyword, parameter,
      cow_String(name) + "=" + number->Verbatim() + " is below " + std::to_string(least) +
          ". It is kept as given, and the keyword acts all the same."));
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

void tellWithoutFile(const inp_Keyword& keyword, const inpS_Form& form, inp_Visitor& messages) {
  if (!form.Binds("file") ||
      !(form.Binds("interpolate") || form.kind == eds_FormKind::InitialStress))
    return;
  const auto number = [&](const char* parameter, int absent) {
    const inp_Item* item = given(keyword, form, parameter);
    return item && item->IsInteger() ? item->AsInt() : absent;
  };
  const bool hasFile = given(keyword, form, "file") != nullptr;
  for (const auto& [parameter, name] : ofFiles)
    if (!hasFile && given(keyword, form, parameter))
      messages.AddWarning(inp_Utils::MessageAtParameter(
          keyword, parameter,
          cow_String(name) + " is about a file, and no FILE is given. It is kept as given."));
  const int begin = number("bstep", 1);
  const int end = number("estep", begin);
  const bool isBackwards =
      end == begin && given(keyword, form, "einc") && number("einc", 1) < number("binc", 0);
  if (hasFile && (end < begin || isBackwards))
    messages.AddError(inp_Utils::MessageAtParameter(
        keyword, end < begin && given(keyword, form, "estep") ? "estep" : "einc",
        "The file's values end before they begin. It is kept as given."));
}

// How many field variables a routine gives at once.
void tellNumber(const inp_Keyword& keyword, const inpS_Form& form, inp_Visitor& messages) {
  const inp_Item* number = given(keyword, form, "number");
  if (!number || !number->IsInteger()) return;
  constexpr long long most = inpS_ExcitationKind::kMostVariables;
  if (number->AsInt() < 1 || number->AsInt() > most)
    messages.AddError(inp_Utils::MessageAtParameter(
        keyword, "number",
        "NUMBER=" + number->Verbatim() + " is none of 1 to " + std::to_string(most) +
            ". It is kept as given, and the nearest of them counts."));
  else if (number->AsInt() > 1 && !inpS_saysYes(keyword, "user"))
    messages.AddWarning(inp_Utils::MessageAtParameter(
        keyword, "number",
        "NUMBER is about what a routine gives, and there is no USER. It is kept as given, and the "
        "lines are about one variable."));
}

// Where neither a routine nor a file gives what lines would, and nothing is taken back.
void tellWithoutLines(const inp_Keyword& keyword, const inpS_Form& form, inp_Visitor& messages) {
  const bool isOfLines =
      (form.info->data == eds_FormData::Columns && form.kind != eds_FormKind::WaveUser) ||
      form.info->data == eds_FormData::Records;
  const bool hasFile = given(keyword, form, "file") && form.kind != eds_FormKind::ImperfectionModes;
  const inp_Item* op = given(keyword, form, "op");
  if (!isOfLines || hasFile || inpS_saysYes(keyword, "user") ||
      !inpS_lacksLines(keyword, *form.info) || (op && op->AsString() == "NEW"))
    return;
  messages.AddWarning(inp_Utils::MessageInKeyword(
      keyword, "*" + keyword.Name() + " has no data lines; nothing is prescribed by it."));
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
void inpS_checkConditionParameters(const inp_Keyword& keyword, const inpS_Form& form,
                                   const inpS_FormNames& names, inp_Visitor& messages) {
  tellWithoutLines(keyword, form, messages);
  if (form.Binds("real") && inpS_saysYes(keyword, "real") && inpS_saysYes(keyword, "imaginary"))
    messages.AddWarning(inp_Utils::MessageAtParameter(
        keyword, "real", "REAL and IMAGINARY exclude each other; IMAGINARY holds."));
  tellWithoutFile(keyword, form, messages);
  // Of forces it says yes by being there; the word is kept, whatever it is.
  const inp_Item* follower = given(keyword, form, "follower");
  if (keyword.Kind() == inp_KwCload && follower && !inpS_flagValue(*follower))
    messages.AddWarning(inp_Utils::MessageAtParameter(
        keyword, "follower",
        "FOLLOWER=" + follower->Verbatim() + " is none of YES, NO. It is kept as given."));
  if (keyword.Kind() == inp_KwField) tellNumber(keyword, form, messages);
  if (keyword.Kind() == inp_KwInitialConditions) {
    tellBelow(keyword, form, "step", "STEP", 0, messages);
    tellBelow(keyword, form, "inc", "INC", 0, messages);
  }
  tellBelow(keyword, form, "loadcase", "LOAD CASE", 1, messages);
  tellBelow(keyword, form, "cyclicmode", "CYCLIC MODE", 0, messages);
  const inp_Item* reference = given(keyword, form, "refnode");
  if (!reference) return;
  const cow_String node = reference->Verbatim();
  const eds_Referable& nset = *std::ranges::find(eds_referables(), "nset", &eds_Referable::word);
  if (names.FindLabel(eds_FormType::Node, node).isKnown || !names.Find(nset, node).set.IsNull())
    return;
  messages.AddError(inp_Utils::MessageAtParameter(
      keyword, "refnode", "Reference node " + node + " does not exist. It is kept as it stands."));
}
