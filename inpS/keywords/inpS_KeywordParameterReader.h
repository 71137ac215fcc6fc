#pragma once

#include "base/cow_Value.h"

class inp_Keyword;

// What readers ask of one keyword's parameters. Names are canonical (lower case, no blanks), values
// in upper case; every comparison is exact. Faults go to the thread's message container as errors
// at the keyword, and the conversion of the keyword goes on.
class inpS_KeywordParameterReader {
public:
  // Whether the parameter is present; a missing one is reported.
  static bool CheckRequiredKeywordParameter(const inp_Keyword& keyword, const cow_String& name);

  // YES and ON are true, NO and OFF false; absent, without a value or anything else: the default.
  static bool GetParameterBoolValue(const inp_Keyword& keyword, const cow_String& name,
                                    bool defaultValue);

  static const cow_String& KeywordParameterSwitch(const inp_Keyword& keyword,
                                                  const cow_String& name,
                                                  const cow_String& ifPresent,
                                                  const cow_String& ifAbsent);

  // The name of the one parameter that is present; empty when none is and none has to be; otherwise
  // all names joined by commas ("a,b", "a,b,c", and "a,b,cd" for four), which the caller reports.
  static cow_String CheckMutuallyExclusiveParameters(const inp_Keyword& keyword,
                                                     const cow_String& a, const cow_String& b,
                                                     bool required);
  static cow_String CheckMutuallyExclusiveParameters(const inp_Keyword& keyword,
                                                     const cow_String& a, const cow_String& b,
                                                     const cow_String& c, bool required);
  static cow_String CheckMutuallyExclusiveParameters(const inp_Keyword& keyword,
                                                     const cow_String& a, const cow_String& b,
                                                     const cow_String& c, const cow_String& d,
                                                     bool required);
  // Reports what the check found: a conflict, or for required ones a missing choice as well.
  static void ReportMutuallyExclusiveParameters(const inp_Keyword& keyword,
                                                const cow_String& joinedNames, bool required);

  // Reports the listed parameters that the keyword carries, all in one message; true when none.
  static bool CheckUnsupportedParameters(const inp_Keyword& keyword,
                                         const cow_List<cow_String>& names);
  // Reports the parameter's value when it is one of the listed; true when it is not.
  static bool CheckUnsupportedParameterValues(const inp_Keyword& keyword, const cow_String& name,
                                              const cow_List<cow_String>& values);
};
