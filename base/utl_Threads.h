#pragma once

// Bulk work over the cores. Results never depend on the number of threads: work is told apart by
// its index only, and of several exceptions the one of the lowest index reaches the caller.
//
// Work runs on threads that have no reporter of their own: hand messages back as data. A call from
// inside such work, or while another thread has the cores busy, runs on the calling thread alone.

#include <cstddef>
#include <functional>

int utl_threadCount();              // threads a call may use, the calling one included
void utl_setThreadCount(int count); // 0 or less: as many as the machine has; not during work
void utl_releaseThreads();          // ends the idle threads; the next call makes new ones

// Calls work(i) for every i in [0, n), in no particular order.
void utl_parallelFor(std::size_t n, const std::function<void(std::size_t i)>& work);

// Calls work(i, slot) for the blocks i in [0, n) on all threads, and publish(i, slot) one after the
// other in the order of i, each after its work. A slot is the place for one block's result: its
// number is below utl_slotCount(), and nobody else uses it between work(i) and the end of
// publish(i), so buffers kept by slot are reused without locks. publish runs on any of the threads.
// After an exception in block e the blocks before e are published and none after.
using utl_BlockCall = std::function<void(std::size_t i, std::size_t slot)>;
void utl_orderedBlocks(std::size_t n, const utl_BlockCall& work, const utl_BlockCall& publish);
std::size_t utl_slotCount();
