#pragma once

#include "inpS/messages/inpS_MessageIds.h"
#include "inpS/messages/inpS_MsgArg.h"

// The dictionary text with its arguments put in, for a visitor that places it in a keyword itself.
cow_String inpS_messageText(inpS_AppMessage id, const cow_List<inpS_MsgArg>& args = {});
cow_String inpS_messageText(inpS_ModelMessage id, const cow_List<inpS_MsgArg>& args = {});
cow_String inpS_messageText(inpS_MeshMessage id, const cow_List<inpS_MsgArg>& args = {});
