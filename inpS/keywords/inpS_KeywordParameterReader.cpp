#include "inpS/keywords/inpS_KeywordParameterReader.h"
#include "inpS/keywords/inpS_Flag.h"
#include "inpS/messages/inpS_MessageContainer.h"
#include "parser/inp_Keyword.h"
#include <algorithm>

namespace {

void report(const inp_Keyword& keyword, inpS_AppMessage id, const cow_List<inpS_MsgArg>& args) {
  inpS_Message message(keyword, inpS_Message::Application, id);
  message.AppendArgList(args);
  inpS_MessageContainer::Instance().AddMessage(std::move(message));
}

cow_String onlyPresent(const inp_Keyword& keyword, const cow_List<cow_String>& names,
                       const cow_String& joined, bool required) {
  const cow_String* present = nullptr;
  int count = 0;
  for (const cow_String& name : names) {
    if (!keyword.HasParameter(name)) continue;
    present = &name;
    ++count;
  }
  if (count == 1) return *present;
  return count == 0 && !required ? cow_String() : joined;
}

} // namespace

bool inpS_KeywordParameterReader::CheckRequiredKeywordParameter(const inp_Keyword& keyword,
                                                                const cow_String& name) {
  if (keyword.HasParameter(name)) return true;
  report(keyword, inpS_app_RequiredParameter, {name});
  return false;
}

bool inpS_KeywordParameterReader::GetParameterBoolValue(const inp_Keyword& keyword,
                                                        const cow_String& name, bool defaultValue) {
  const inp_Item* item = keyword.Find(name);
  if (!item || !item->IsString()) return defaultValue;
  return inpS_yesOrNo(item->AsString()).value_or(defaultValue);
}

const cow_String& inpS_KeywordParameterReader::KeywordParameterSwitch(const inp_Keyword& keyword,
                                                                      const cow_String& name,
                                                                      const cow_String& ifPresent,
                                                                      const cow_String& ifAbsent) {
  return keyword.HasParameter(name) ? ifPresent : ifAbsent;
}

cow_String inpS_KeywordParameterReader::CheckMutuallyExclusiveParameters(const inp_Keyword& keyword,
                                                                         const cow_String& a,
                                                                         const cow_String& b,
                                                                         bool required) {
  return onlyPresent(keyword, {a, b}, a + "," + b, required);
}

cow_String inpS_KeywordParameterReader::CheckMutuallyExclusiveParameters(const inp_Keyword& keyword,
                                                                         const cow_String& a,
                                                                         const cow_String& b,
                                                                         const cow_String& c,
                                                                         bool required) {
  return onlyPresent(keyword, {a, b, c}, a + "," + b + "," + c, required);
}

cow_String inpS_KeywordParameterReader::CheckMutuallyExclusiveParameters(
    const inp_Keyword& keyword, const cow_String& a, const cow_String& b, const cow_String& c,
    const cow_String& d, bool required) {
  // No comma before the fourth: hosts know this text.
  return onlyPresent(keyword, {a, b, c, d}, a + "," + b + "," + c + d, required);
}

void inpS_KeywordParameterReader::ReportMutuallyExclusiveParameters(const inp_Keyword& keyword,
                                                                    const cow_String& joinedNames,
                                                                    bool required) {
  report(keyword, required ? inpS_app_RequiredExclusiveParameters : inpS_app_ExclusiveParameters,
         {joinedNames});
}

bool inpS_KeywordParameterReader::CheckUnsupportedParameters(const inp_Keyword& keyword,
                                                             const cow_List<cow_String>& names) {
  cow_String found;
  for (const cow_String& name : names)
    if (keyword.HasParameter(name)) found += (found.empty() ? "" : ", ") + name;
  if (found.empty()) return true;
  report(keyword, inpS_app_UnsupportedParameters, {found});
  return false;
}

bool inpS_KeywordParameterReader::CheckUnsupportedParameterValues(
    const inp_Keyword& keyword, const cow_String& name, const cow_List<cow_String>& values) {
  const inp_Item* item = keyword.Find(name);
  if (!item || item->IsFlag()) return true;
  if (std::find(values.begin(), values.end(), item->AsString()) == values.end()) return true;
  report(keyword, inpS_app_UnsupportedParameterValues, {name, item->AsString()});
  return false;
}
