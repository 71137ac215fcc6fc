#pragma once

#include "base/cow_Value.h"
#include "inpS/inpS_Export.h"

class inpS_Message;

// The dictionaries as hosts reach them: the text of an identifier, empty when there is none.
INPS_EXPORT cow_String i18n_inpS_appMessages(int id);
INPS_EXPORT cow_String i18n_inpS_modelMessages(int id);
INPS_EXPORT cow_String i18n_inpS_meshMessages(int id);

// Finds the texts of messages. Stateless.
class inpS_I18MessageDictionary {
public:
  // Fills the text of a message that has none. A message of no dictionary is a programming error:
  // it is named on the standard error stream and ends in an assertion.
  void Convert(inpS_Message& message) const;
};
