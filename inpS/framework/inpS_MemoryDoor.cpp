#include "inpS/framework/inpS_MemoryDoor.h"
#include "database/eds_Exception.h"
#include "inpS/messages/inpS_Exception.h"
#include <new>

namespace {

const inpS_MemoryException g_memoryGone; // made while there is memory; its copies share the text

} // namespace

void inpS_passOn() {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    throw inpS_MemoryException(g_memoryGone);
  } catch (const eds_MemoryException&) {
    throw inpS_MemoryException(g_memoryGone);
  }
}
