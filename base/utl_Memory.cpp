#include "base/utl_Memory.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace {

void* orBadAlloc(void* block) {
  if (!block) throw std::bad_alloc();
  return block;
}

#ifdef __linux__

// A block of this size or more is a mapping of its own, begins at a multiple of the huge page and
// has a capacity of whole huge pages; pages never touched cost nothing.
constexpr std::size_t hugePage = std::size_t{2} << 20;
constexpr std::size_t mappedFrom = 2 * hugePage;

bool isMapped(std::size_t bytes) {
  return bytes >= mappedFrom;
}

std::size_t mappedSize(std::size_t bytes) {
  if (bytes > SIZE_MAX - 2 * hugePage) throw std::bad_alloc();
  return (bytes + hugePage - 1) / hugePage * hugePage;
}

// Maps one huge page more than wanted and gives back what lies outside the aligned part.
char* mapAligned(std::size_t size, int protection) {
  const std::size_t whole = size + hugePage;
  void* mapping = mmap(nullptr, whole, protection, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapping == MAP_FAILED) throw std::bad_alloc();
  char* const first = static_cast<char*>(mapping);
  const std::size_t before = (0 - reinterpret_cast<std::uintptr_t>(first)) % hugePage;
  if (before > 0) munmap(first, before);
  char* const aligned = first + before;
  const std::size_t after = whole - before - size;
  if (after > 0) munmap(aligned + size, after);
  return aligned;
}

char* mapHuge(std::size_t size) {
  char* const block = mapAligned(size, PROT_READ | PROT_WRITE);
  madvise(block, size, MADV_HUGEPAGE); // a wish: without it the block works all the same
  return block;
}

// In place when the addresses behind are free; else the pages move to an aligned place, so that
// huge pages stay whole.
void* remap(void* block, std::size_t oldSize, std::size_t newSize) {
  if (oldSize == newSize) return block;
  if (mremap(block, oldSize, newSize, 0) != MAP_FAILED) return block;
  char* const target = mapAligned(newSize, PROT_NONE);
  void* moved = mremap(block, oldSize, newSize, MREMAP_MAYMOVE | MREMAP_FIXED, target);
  // The target may be unmapped already and in another's hands: better to lose its addresses.
  if (moved == MAP_FAILED) throw std::bad_alloc();
  return moved;
}

#else

bool isMapped(std::size_t) {
  return false;
}
std::size_t mappedSize(std::size_t bytes) {
  return bytes;
}
char* mapHuge(std::size_t) {
  return nullptr;
}
void* remap(void* block, std::size_t, std::size_t) {
  return block;
}
void munmap(void*, std::size_t) {}

#endif

} // namespace

void* utl_allocate(std::size_t bytes) {
  if (bytes == 0) return nullptr;
  return isMapped(bytes) ? mapHuge(mappedSize(bytes)) : orBadAlloc(std::malloc(bytes));
}

void utl_deallocate(void* block, std::size_t bytes) noexcept {
  if (isMapped(bytes))
    munmap(block, mappedSize(bytes));
  else
    std::free(block);
}

void* utl_reallocate(void* block, std::size_t oldBytes, std::size_t newBytes) {
  if (!block) return utl_allocate(newBytes);
  if (newBytes == 0) {
    utl_deallocate(block, oldBytes);
    return nullptr;
  }
  if (isMapped(oldBytes) && isMapped(newBytes))
    return remap(block, mappedSize(oldBytes), mappedSize(newBytes));
  if (!isMapped(oldBytes) && !isMapped(newBytes)) return orBadAlloc(std::realloc(block, newBytes));
  void* moved = utl_allocate(newBytes);
  std::memcpy(moved, block, std::min(oldBytes, newBytes));
  utl_deallocate(block, oldBytes);
  return moved;
}
