#include "inpS/messages/KvoI2sSWipReporter.h"
#include "base/utl_Exception.h"
#include "inpS/messages/inpS_MessageText.h"
#include <ostream>

namespace {

cow_String wrapped(const cow_String& text) {
  return inpS_wrapText(inpS_toUtf8(text), inpS_messageWidth, inpS_messageIndentation);
}

// The exception's lines stand under its "Error: ".
constexpr int exceptionWidth = 50;
constexpr std::string_view exceptionIndentation = "       "; // 7 blanks
constexpr std::size_t messagesInException = 2;

cow_String wrappedForException(const wip_Message& message) {
  return inpS_wrapText(inpS_toUtf8(message.AsText()), exceptionWidth, exceptionIndentation);
}

} // namespace

void KvoI2sSWipReporter::PrintError(const wip_Message& message) {
  m_out << "***Error: " << wrapped(message.AsText()) << "\n\n" << std::flush;
}

void KvoI2sSWipReporter::Error(const wip_Message& message, int) {
  PrintError(message);
  throw utl_Exception("Error: " + wrappedForException(message));
}

void KvoI2sSWipReporter::ErrorList(const cow_List<wip_Message>& messages, int) {
  if (messages.empty()) return;
  for (const wip_Message& message : messages) PrintError(message);
  const cow_String newLine = "\n" + cow_String(exceptionIndentation);
  cow_String text = "Error: " + wrappedForException(messages.front());
  for (std::size_t i = 1; i < messages.size() && i < messagesInException; ++i)
    text += newLine + wrappedForException(messages[i]);
  if (messages.size() > messagesInException) text += newLine + "and more ...";
  throw utl_Exception(text);
}

void KvoI2sSWipReporter::Warning(const wip_Message& message) {
  m_out << "***Warning: " << wrapped(message.AsText()) << std::endl;
}

void KvoI2sSWipReporter::WarningList(const cow_List<wip_Message>& messages) {
  for (const wip_Message& message : messages) Warning(message);
}

void KvoI2sSWipReporter::Landmark(const cow_String& text) {
  m_out << "***Landmark: " << wrapped(text) << std::endl;
}

void KvoI2sSWipReporter::Milestone(const cow_String& text) {
  m_out << inpS_messageIndentation << wrapped(text) << std::endl;
}

void KvoI2sSWipReporter::Unimplemented(const char* operation) {
  m_out << operation << " is unimplemented" << std::endl;
}

void KvoI2sSWipReporter::Milestone(const cow_String&, const cow_String&, int, int) {
  Unimplemented("Milestone str,str,int,int");
}

void KvoI2sSWipReporter::Milestone(const cow_String&, int) {
  Unimplemented("Milestone str,int");
}

void KvoI2sSWipReporter::Verbose(const cow_String&) {
  Unimplemented("Verbose");
}

void KvoI2sSWipReporter::Print(const cow_String&) {
  Unimplemented("Print");
}

void KvoI2sSWipReporter::Display(const cow_String&) {
  Unimplemented("Display");
}

bool KvoI2sSWipReporter::Interrupted() {
  Unimplemented("Interrupted");
  return false;
}

void KvoI2sSWipReporter::InterruptedThrow() {
  Unimplemented("InterruptedThrow");
}

void KvoI2sSWipReporter::CommandDone() {
  Unimplemented("CommandDone");
}
