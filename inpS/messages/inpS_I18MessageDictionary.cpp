#include "inpS/messages/inpS_I18MessageDictionary.h"
#include "base/utl_Assert.h"
#include "inpS/messages/inpS_Message.h"
#include <iostream>
#include <span>

namespace {

constexpr const char* appTexts[] = {
#define INPS_MESSAGE(name, text) text,
#include "inpS/messages/inpS_appMessages.def"
};

constexpr const char* modelTexts[] = {
#define INPS_MESSAGE(name, text) text,
#include "inpS/messages/inpS_modelMessages.def"
};

constexpr const char* meshTexts[] = {
#define INPS_MESSAGE(name, text) text,
#include "inpS/messages/inpS_meshMessages.def"
};

cow_String textOf(std::span<const char* const> table, int id) {
  if (id < 0 || static_cast<std::size_t>(id) >= table.size()) return {};
  return table[static_cast<std::size_t>(id)];
}

} // namespace

cow_String i18n_inpS_appMessages(int id) {
  return textOf(appTexts, id);
}

cow_String i18n_inpS_modelMessages(int id) {
  return textOf(modelTexts, id);
}

cow_String i18n_inpS_meshMessages(int id) {
  return textOf(meshTexts, id);
}

void inpS_I18MessageDictionary::Convert(inpS_Message& message) const {
  if (!message.Text().empty()) return;
  switch (message.Type()) {
  case inpS_Message::Application:
    return message.SetText(i18n_inpS_appMessages(message.Id()));
  case inpS_Message::Model:
    return message.SetText(i18n_inpS_modelMessages(message.Id()));
  case inpS_Message::Mesh:
    return message.SetText(i18n_inpS_meshMessages(message.Id()));
  case inpS_Message::Unset:
    break;
  }
  // The one place of the libraries that prints: hosts watch for this line.
  std::cerr << "Unknown inpS_MessageType: " << static_cast<int>(message.Type()) << std::endl;
  utl_assertionFailed("\"Invalid MessageType in the MessageDictionary (inpO).\" == 0");
}
