#pragma once

#include "base/aio_ostream.h"
#include "base/wip_WIPBase.h"
#include "inpS/inpS_Export.h"

// The host reporter of a stand-alone host: prints to a stream. Every error ends the current
// operation with a utl_Exception, whatever its level.
class INPS_EXPORT KvoI2sSWipReporter : public wip_WIPBase {
public:
  explicit KvoI2sSWipReporter(aio_ostream& out) : m_out(out) {}

  void Error(const wip_Message& message, int level) override;
  // All errors are printed, then one exception tells the first two. An empty list does nothing.
  void ErrorList(const cow_List<wip_Message>& messages, int level) override;
  void Warning(const wip_Message& message) override;
  void WarningList(const cow_List<wip_Message>& messages) override;

  void Landmark(const cow_String& text) override;
  void Milestone(const cow_String& text) override;
  void Milestone(const cow_String& text, const cow_String& detail, int done, int total) override;
  void Milestone(const cow_String& text, int percent) override;
  void Verbose(const cow_String& text) override;
  void Print(const cow_String& text) override;
  void Display(const cow_String& text) override;
  bool Interrupted() override; // never
  void InterruptedThrow() override;
  void CommandDone() override;

private:
  void PrintError(const wip_Message& message);
  void Unimplemented(const char* operation);

  aio_ostream& m_out;
};
