#pragma once

#include "base/wip_Message.h"

// The host's reporter: where every message of the module ends. One per thread; a host installs its
// own for the thread that converts, and until it does messages go to a reporter that drops them.
class wip_WIPBase {
public:
  virtual ~wip_WIPBase() = default;

  static wip_WIPBase& Instance();                     // of the calling thread
  static wip_WIPBase* Install(wip_WIPBase* reporter); // returns the previous one; null restores

  virtual void Error(const wip_Message& message, int level) = 0;
  virtual void ErrorList(const cow_List<wip_Message>& messages, int level) = 0;
  virtual void Warning(const wip_Message& message) = 0;
  virtual void WarningList(const cow_List<wip_Message>& messages) = 0;

  // What of the input is not in what comes of it, for a summary: "set entry" and how many.
  virtual void LeftOut(const cow_String&, long long) {}
  virtual void Landmark(const cow_String&) {}
  virtual void Milestone(const cow_String&) {}
  virtual void Milestone(const cow_String&, const cow_String&, int, int) {}
  virtual void Milestone(const cow_String&, int) {}
  virtual void Verbose(const cow_String&) {}
  virtual void Print(const cow_String&) {}
  virtual void Display(const cow_String&) {}
  virtual bool Interrupted() { return false; }
  virtual void InterruptedThrow() {}
  virtual void CommandDone() {}
};

// Installs a reporter for the life of a scope on this thread.
class wip_ReporterScope {
public:
  explicit wip_ReporterScope(wip_WIPBase& reporter) : m_previous(wip_WIPBase::Install(&reporter)) {}
  ~wip_ReporterScope() { wip_WIPBase::Install(m_previous); }
  wip_ReporterScope(const wip_ReporterScope&) = delete;
  wip_ReporterScope& operator=(const wip_ReporterScope&) = delete;

private:
  wip_WIPBase* m_previous;
};
