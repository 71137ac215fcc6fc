#include "inpS/messages/inpS_MessageReporter.h"
#include "base/wip_WIPBase.h"
#include "inpS/messages/inpS_I18MessageDictionary.h"
#include "inpS/messages/inpS_MessageContainer.h"
#include "inpS/messages/inpS_MessageText.h"
#include <exception>

namespace {

constexpr int errorLevel = 1;

cow_String fileNameWithoutFolder(const cow_String& name) {
  const std::size_t backslash = name.rfind('\\'); // a name without one shows whole
  return backslash == cow_String::npos ? name : name.substr(backslash + 1);
}

void send(const inpS_Message& message, const cow_String& text) {
  wip_Message out(inpS_toUtf8(text));
  out.place = message.Place(); // the keyword's name stands in the header already
  out.count = message.Count();
  if (message.GetSeverity() == inpS_Message::Error)
    wip_WIPBase::Instance().Error(out, errorLevel);
  else
    wip_WIPBase::Instance().Warning(out);
}

} // namespace

void inpS_MessageReporter::Report() const {
  if (inpS_MessageContainer::Exists()) Report(inpS_MessageContainer::Instance().Messages());
}

void inpS_MessageReporter::Report(const cow_List<inpS_Message>& messages) const {
  std::exception_ptr first;
  for (const inpS_Message& message : messages) {
    try {
      message.IsFatal() ? ReportFatalErrorMessage(message) : ReportMessage(message);
    } catch (...) {
      if (!first) first = std::current_exception();
    }
  }
  if (first) std::rethrow_exception(first);
}

void inpS_MessageReporter::ReportMessage(inpS_Message message) const {
  inpS_I18MessageDictionary().Convert(message);
  message.SubstituteArgs();
  const cow_String header =
      message.GetSeverity() >= inpS_Message::Note ? cow_String() : Header(message);
  send(message, header + inpS_wrapText(message.Text(), inpS_messageWidth, inpS_messageIndentation));
}

void inpS_MessageReporter::ReportFatalErrorMessage(inpS_Message message) const {
  message.SetSeverity(inpS_Message::Error);
  ReportMessage(std::move(message));
}

cow_String inpS_MessageReporter::Header(const inpS_Message& message) {
  if (message.KeywordId() == 0) return {};
  cow_String header = "in keyword *" + message.KeywordName();
  if (!message.FileName().empty())
    header += ", file \"" + fileNameWithoutFolder(message.FileName()) + "\"";
  if (message.Line() > 0) header += ", line " + std::to_string(message.Line());
  if (message.Line() > 0 && message.LineOffset() >= 1)
    header +=
        "(" + std::to_string(static_cast<long long>(message.Line()) + message.LineOffset()) + ")";
  return header + ":\n";
}
