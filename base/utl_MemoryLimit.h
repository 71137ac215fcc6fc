#pragma once

#include <cstdint>

// A bound on the private memory of this process, so that one that asks for too much is refused
// (std::bad_alloc) instead of having the machine swap or the system end it, or somebody else.
// Mapped files do not count; what is allocated and not yet touched does. Sizes are bytes.

// The memory of the machine, or of the container this process runs in when that has less; 0 when
// the system does not tell.
std::uint64_t utl_machineMemory();

// Lets this process have so much, or as much as whoever started it allows when that is less.
// Children inherit it. Does nothing where the system has no such bound, nor under a sanitizer,
// which takes addresses for all of the memory there might be.
void utl_limitMemory(std::uint64_t bytes);

// What holds; 0: no bound.
std::uint64_t utl_memoryLimit();
// Another bound that whoever started this process may have set (ulimit -v): of all addresses, those
// of mapped files and of the program itself too. 0: none.
std::uint64_t utl_addressLimit();
