#include "inpS/messages/inpS_LocatedText.h"
#include "inpS/messages/inpS_I18MessageDictionary.h"
#include "inpS/messages/inpS_MessageText.h"

cow_String inpS_messageText(inpS_AppMessage id, const cow_List<inpS_MsgArg>& args) {
  return inpS_substitutePlaceholders(i18n_inpS_appMessages(id), args);
}

cow_String inpS_messageText(inpS_ModelMessage id, const cow_List<inpS_MsgArg>& args) {
  return inpS_substitutePlaceholders(i18n_inpS_modelMessages(id), args);
}

cow_String inpS_messageText(inpS_MeshMessage id, const cow_List<inpS_MsgArg>& args) {
  return inpS_substitutePlaceholders(i18n_inpS_meshMessages(id), args);
}
