#pragma once

#include "base/cow_Value.h"

// The host's process-wide resource monitor: a mark at the start and the end of every conversion
// phase and writer block.
class bcu_ResourceMonitor {
public:
  virtual ~bcu_ResourceMonitor() = default;

  static bcu_ResourceMonitor& Instance();
  static bcu_ResourceMonitor* Install(bcu_ResourceMonitor* monitor); // returns the previous one

  virtual void Mark(const cow_String& label) = 0;
};

// Marks "<prefix><tag>-Start" when made and "<prefix><tag>-End" when it goes.
class bcu_MarkScope {
public:
  bcu_MarkScope(const char* prefix, const char* tag);
  ~bcu_MarkScope();
  bcu_MarkScope(const bcu_MarkScope&) = delete;
  bcu_MarkScope& operator=(const bcu_MarkScope&) = delete;

private:
  cow_String m_label;
};
