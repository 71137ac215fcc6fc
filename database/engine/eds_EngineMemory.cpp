#include "database/engine/eds_EngineMemory.h"
#include "base/utl_Memory.h"
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <sqlite3.h>
#include <utility>

namespace {

struct Region;

// In front of each block that the engine has.
struct alignas(std::max_align_t) Header {
  std::size_t bytes;
  Region* region; // null: of its own
};
static_assert(sizeof(Header) == 16);

// The engine asks for its largest pages with some hundred bytes of its own behind them.
constexpr std::size_t kLeastPage = 64 << 10;
constexpr std::size_t kMostPage = kLeastPage + 1024 - sizeof(Header);
constexpr std::size_t kStride = sizeof(Header) + kMostPage;
constexpr std::size_t kRegionBytes = 4 << 20;
constexpr std::size_t kPages = kRegionBytes / kStride;

// Pages beside one another; those never taken are never touched.
struct Region {
  Region() : memory(static_cast<std::byte*>(utl_allocate(kRegionBytes))) {}
  ~Region() { utl_deallocate(memory, kRegionBytes); }
  Region(const Region&) = delete;
  Region& operator=(const Region&) = delete;

  bool HasRoom() const { return free != nullptr || taken < kPages; }

  std::byte* memory;
  std::size_t taken = 0; // so many pages were in use at once
  std::size_t used = 0;
  Header* free = nullptr;   // its first bytes behind the header: the next one
  Region* before = nullptr; // among those that have room
  Region* behind = nullptr;
};

Header*& nextOf(Header* page) {
  return *reinterpret_cast<Header**>(page + 1);
}

class Pages {
public:
  Header* Take() {
    const std::lock_guard lock(m_guard);
    if (m_open == nullptr) Open(*new Region);
    Region& region = *m_open;
    Header* page = region.free;
    if (page != nullptr) {
      region.free = nextOf(page);
    } else {
      page = new (region.memory + region.taken++ * kStride) Header;
      page->region = &region;
    }
    ++region.used;
    if (&region == m_spare) m_spare = nullptr;
    if (!region.HasRoom()) Close(region);
    return page;
  }

  void Give(Header* page) {
    const std::lock_guard lock(m_guard);
    Region& region = *page->region;
    if (!region.HasRoom()) Open(region);
    nextOf(page) = region.free;
    region.free = page;
    if (--region.used > 0) return;
    Region* const empty = std::exchange(m_spare, &region);
    if (empty == nullptr) return;
    Close(*empty);
    delete empty;
  }

private:
  void Open(Region& region) {
    region.before = nullptr;
    region.behind = m_open;
    if (m_open != nullptr) m_open->before = &region;
    m_open = &region;
  }
  void Close(Region& region) {
    (region.before != nullptr ? region.before->behind : m_open) = region.behind;
    if (region.behind != nullptr) region.behind->before = region.before;
  }

  std::mutex m_guard;
  Region* m_open = nullptr;  // the first that has room
  Region* m_spare = nullptr; // one that is empty is kept
};

// The last few long blocks that were given back.
class LongBlocks {
public:
  static bool IsOne(std::size_t bytes) { return bytes >= kLeast && bytes <= kMost; }

  Header* Take(std::size_t bytes) {
    const std::lock_guard lock(m_guard);
    for (Header*& kept : m_kept)
      if (kept != nullptr && kept->bytes >= bytes) return std::exchange(kept, nullptr);
    return nullptr;
  }
  bool Keep(Header* block) {
    const std::lock_guard lock(m_guard);
    for (Header*& kept : m_kept)
      if (kept == nullptr) {
        kept = block;
        return true;
      }
    return false;
  }

private:
  static constexpr std::size_t kLeast = 512 << 10;
  static constexpr std::size_t kMost = 2 << 20;
  std::mutex m_guard;
  std::array<Header*, 3> m_kept{};
};

// Never destroyed: the engine may outlive what is.
Pages& pages() {
  static Pages& all = *new Pages;
  return all;
}
LongBlocks& longBlocks() {
  static LongBlocks& all = *new LongBlocks;
  return all;
}

Header* headerOf(void* block) {
  return static_cast<Header*>(block) - 1;
}

Header* take(std::size_t bytes) {
  if (bytes >= kLeastPage && bytes <= kMostPage) {
    Header* const page = pages().Take();
    page->bytes = bytes;
    return page;
  }
  if (LongBlocks::IsOne(bytes))
    if (Header* const kept = longBlocks().Take(bytes)) return kept;
  auto* const block = static_cast<Header*>(std::malloc(sizeof(Header) + bytes));
  if (block != nullptr) *block = {bytes, nullptr};
  return block;
}

// ---- as the engine calls them

void* allocate(int bytes) noexcept {
  try {
    Header* const block = take(static_cast<std::size_t>(bytes));
    return block == nullptr ? nullptr : block + 1;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void release(void* block) noexcept {
  if (block == nullptr) return;
  Header* const header = headerOf(block);
  if (header->region != nullptr) return pages().Give(header);
  if (!LongBlocks::IsOne(header->bytes) || !longBlocks().Keep(header)) std::free(header);
}

void* reallocate(void* block, int bytes) noexcept {
  Header* const header = headerOf(block);
  const auto wanted = static_cast<std::size_t>(bytes);
  if (header->region == nullptr && !LongBlocks::IsOne(header->bytes)) {
    auto* const moved = static_cast<Header*>(std::realloc(header, sizeof(Header) + wanted));
    if (moved == nullptr) return nullptr;
    moved->bytes = wanted;
    return moved + 1;
  }
  void* const moved = allocate(bytes);
  if (moved == nullptr) return nullptr;
  std::memcpy(moved, block, std::min(header->bytes, wanted));
  release(block);
  return moved;
}

int sizeOf(void* block) noexcept {
  return static_cast<int>(headerOf(block)->bytes);
}
int roundUp(int bytes) noexcept {
  return (bytes + 7) & ~7;
}
int begin(void*) noexcept {
  return SQLITE_OK;
}
void end(void*) noexcept {}

} // namespace

void eds_giveEngineMemory() {
  const sqlite3_mem_methods methods{allocate, release, reallocate, sizeOf,
                                    roundUp,  begin,   end,        nullptr};
  sqlite3_config(SQLITE_CONFIG_MALLOC, &methods);
}
