// Memory of bulk arrays: the system's own, but for the calls that fail. This program's operations
// stand in the place of the library's.

#define utl_allocate trueAllocate
#define utl_reallocate trueReallocate
#define utl_deallocate trueDeallocate
#include "base/utl_Memory.cpp"
#undef utl_allocate
#undef utl_reallocate
#undef utl_deallocate

#include "tests/faults/Faults.h"

void* utl_allocate(std::size_t bytes) {
  if (bytes > 0 && fails(Fault::Buffer)) throw std::bad_alloc();
  return trueAllocate(bytes);
}

// One that grows fails as one that is new does; shrinking may fail, too.
void* utl_reallocate(void* block, std::size_t oldBytes, std::size_t newBytes) {
  if (newBytes > 0 && fails(Fault::Buffer)) throw std::bad_alloc();
  return trueReallocate(block, oldBytes, newBytes);
}

void utl_deallocate(void* block, std::size_t bytes) noexcept {
  trueDeallocate(block, bytes);
}
