#include "base/bcu_ResourceMonitor.h"
#include <atomic>
#include <exception>

namespace {

class NoMonitor final : public bcu_ResourceMonitor {
  void Mark(const cow_String&) override {}
};

std::atomic<bcu_ResourceMonitor*> g_monitor{nullptr};

} // namespace

bcu_ResourceMonitor& bcu_ResourceMonitor::Instance() {
  static NoMonitor none;
  bcu_ResourceMonitor* monitor = g_monitor.load();
  return monitor ? *monitor : none;
}

bcu_ResourceMonitor* bcu_ResourceMonitor::Install(bcu_ResourceMonitor* monitor) {
  return g_monitor.exchange(monitor);
}

bcu_MarkScope::bcu_MarkScope(const char* prefix, const char* tag)
    : m_label(cow_String(prefix) + tag) {
  bcu_ResourceMonitor::Instance().Mark(m_label + "-Start");
}

bcu_MarkScope::~bcu_MarkScope() {
  try {
    bcu_ResourceMonitor::Instance().Mark(m_label + "-End");
  } catch (const std::exception&) {
    // A mark is not worth the failure that may be on its way already.
  }
}
