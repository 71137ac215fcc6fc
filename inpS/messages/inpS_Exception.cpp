#include "inpS/messages/inpS_Exception.h"
#include "inpS/messages/inpS_I18MessageDictionary.h"

namespace {

cow_String finishedText(inpS_Message message) {
  inpS_I18MessageDictionary().Convert(message);
  message.SubstituteArgs();
  return message.Text();
}

inpS_Message asFatal(inpS_Message message) {
  message.SetFatal();
  return message;
}

} // namespace

std::unique_ptr<inpS_Exception> inpS_Exception::Copy() const {
  return std::make_unique<inpS_Exception>(*this);
}

void inpS_Exception::Propagate() const {
  throw *this;
}

inpS_MessageException::inpS_MessageException(inpS_Message message)
    : inpS_Exception(finishedText(message)), m_message(std::move(message)) {}

std::unique_ptr<inpS_Exception> inpS_MessageException::Copy() const {
  return std::make_unique<inpS_MessageException>(*this);
}

void inpS_MessageException::Propagate() const {
  throw *this;
}

inpS_FatalMessageException::inpS_FatalMessageException(inpS_Message message)
    : inpS_MessageException(asFatal(std::move(message))) {}

std::unique_ptr<inpS_Exception> inpS_FatalMessageException::Copy() const {
  return std::make_unique<inpS_FatalMessageException>(*this);
}

void inpS_FatalMessageException::Propagate() const {
  throw *this;
}

std::unique_ptr<inpS_Exception> inpS_FatalException::Copy() const {
  return std::make_unique<inpS_FatalException>(*this);
}

void inpS_FatalException::Propagate() const {
  throw *this;
}

inpS_MemoryException::inpS_MemoryException()
    : inpS_FatalException("Memory allocation error. Insufficient physical memory or swap space.") {}

std::unique_ptr<inpS_Exception> inpS_MemoryException::Copy() const {
  return std::make_unique<inpS_MemoryException>(*this);
}

void inpS_MemoryException::Propagate() const {
  throw *this;
}
