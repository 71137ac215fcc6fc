#include "base/utl_BlockSize.h"
#include <atomic>
#include <limits>

namespace {

constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();
std::atomic<std::size_t> limit{unlimited};

} // namespace

std::size_t utl_mostBlockSize() {
  return limit.load(std::memory_order_relaxed);
}

void utl_limitBlockSize(std::size_t most) {
  limit = most == 0 ? unlimited : most;
}
