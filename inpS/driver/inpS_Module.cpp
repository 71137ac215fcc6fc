#include "inpS/driver/inpS_Module.h"
#include "inpS/messages/inpS_MessageContainer.h"
#include <atomic>

namespace {

std::atomic<int> g_uses{0};

} // namespace

void KvoI2sInpS_initialize(int& users) {
  if (g_uses.fetch_add(1) == 0) ++users;
}

void KvoI2sInpS_finalize(int& users) {
  if (g_uses.fetch_sub(1) != 1) return;
  --users;
  inpS_MessageContainer::Finalize();
}
