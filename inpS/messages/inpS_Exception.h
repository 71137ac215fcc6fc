#pragma once

#include "base/utl_Exception.h"
#include "inpS/inpS_Export.h"
#include "inpS/messages/inpS_Message.h"
#include <memory>

// What deep code throws when an operation cannot go on. Copy and Propagate carry an exception
// across a boundary: a clone on the heap, and the clone thrown again as its own most-derived type.
class INPS_EXPORT inpS_Exception : public utl_Exception {
public:
  explicit inpS_Exception(const cow_String& text) : utl_Exception(text) {}
  virtual std::unique_ptr<inpS_Exception> Copy() const;
  [[noreturn]] virtual void Propagate() const;
};

// Its text is the message's, looked up and with its arguments.
class INPS_EXPORT inpS_MessageException : public inpS_Exception {
public:
  explicit inpS_MessageException(inpS_Message message);
  const inpS_Message& Message() const { return m_message; }
  std::unique_ptr<inpS_Exception> Copy() const override;
  [[noreturn]] void Propagate() const override;

private:
  inpS_Message m_message;
};

// Marks its message as fatal.
class INPS_EXPORT inpS_FatalMessageException : public inpS_MessageException {
public:
  explicit inpS_FatalMessageException(inpS_Message message);
  std::unique_ptr<inpS_Exception> Copy() const override;
  [[noreturn]] void Propagate() const override;
};

class INPS_EXPORT inpS_FatalException : public inpS_Exception {
public:
  explicit inpS_FatalException(const cow_String& text) : inpS_Exception(text) {}
  std::unique_ptr<inpS_Exception> Copy() const override;
  [[noreturn]] void Propagate() const override;
};

// Memory is exhausted.
class INPS_EXPORT inpS_MemoryException : public inpS_FatalException {
public:
  inpS_MemoryException();
  std::unique_ptr<inpS_Exception> Copy() const override;
  [[noreturn]] void Propagate() const override;
};
