#include "base/wip_WIPBase.h"

namespace {

class Silent final : public wip_WIPBase {
  void Error(const wip_Message&, int) override {}
  void ErrorList(const cow_List<wip_Message>&, int) override {}
  void Warning(const wip_Message&) override {}
  void WarningList(const cow_List<wip_Message>&) override {}
};

thread_local wip_WIPBase* t_reporter = nullptr;

} // namespace

wip_WIPBase& wip_WIPBase::Instance() {
  static Silent silent;
  return t_reporter ? *t_reporter : silent;
}

wip_WIPBase* wip_WIPBase::Install(wip_WIPBase* reporter) {
  wip_WIPBase* previous = t_reporter;
  t_reporter = reporter;
  return previous;
}
