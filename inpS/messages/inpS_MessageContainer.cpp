#include "inpS/messages/inpS_MessageContainer.h"
#include <memory>

namespace {

// The thread's own storage stands for a registry of singletons: it ends when the thread does.
thread_local std::unique_ptr<inpS_MessageContainer> t_container;

} // namespace

inpS_MessageContainer& inpS_MessageContainer::Instance() {
  if (!t_container) t_container.reset(new inpS_MessageContainer);
  return *t_container;
}

bool inpS_MessageContainer::Exists() {
  return t_container != nullptr;
}

void inpS_MessageContainer::Finalize() {
  const std::unique_ptr<inpS_MessageContainer> container = std::move(t_container);
  if (container) container->Release();
}
