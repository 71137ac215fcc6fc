#pragma once

// Memory for bulk arrays: not zeroed by us, big blocks on huge pages where the system has them.

#include <cstddef>

void* utl_allocate(std::size_t bytes); // throws std::bad_alloc; null for 0 bytes

// Gives the block another size, moving it if need be and keeping the bytes both sizes have. Huge
// blocks are moved by their page tables, not copied. Throws std::bad_alloc and leaves the block.
void* utl_reallocate(void* block, std::size_t oldBytes, std::size_t newBytes);
void utl_deallocate(void* block, std::size_t bytes) noexcept;
