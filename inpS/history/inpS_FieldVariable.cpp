#include "inpS/history/inpS_FieldVariable.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"

bool inpS_hasVariable(const inp_Keyword& keyword, inp_Visitor& messages) {
  const inp_Item* variable = keyword.Find("variable");
  if (!variable || (variable->IsInteger() && variable->AsInt() > 0)) return true;
  messages.AddError(inp_Utils::MessageAtParameter(
      keyword, "variable",
      "VARIABLE=" + variable->Verbatim() +
          ": field variables are numbered from 1 on. The keyword is kept as text."));
  return false;
}
