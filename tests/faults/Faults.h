#pragma once

#include <cstdint>

// Places where the system may let the program down: calls of the engine for its files, our own for
// ours, memory. Buffer: the memory of bulk arrays; AnyMemory:
// of whatever asks.
enum class Fault {
  Read,
  Write,
  Sync,
  Open,
  Truncate,
  Delete,
  FileOpen,
  FileCreate,
  FileWrite,
  FileSync,
  FileRename,
  FileRemove,
  EngineMemory,
  Memory,
  Buffer,
  AnyMemory,
  Count
};

// Makes the n-th call of one kind fail (from 1), or that one and all behind it. Calls are counted
// on all threads.
void faultAt(Fault fault, int64_t call, bool andLater);
void noFault();
int64_t faultCalls(Fault fault); // since the last faultAt or noFault
int64_t faultsRaised();
bool fails(Fault fault); // counts the call that asks

// Before the engine's first use in the process.
void installFaultyEngine();
