#include "base/utl_InstructionSet.h"

#include <algorithm>
#include <atomic>

#if defined(UTL_HAS_AVX2_CODE) && defined(_MSC_VER)
#include <immintrin.h>
#include <intrin.h>
#endif

namespace {

#ifndef UTL_HAS_AVX2_CODE

bool hasAvx2() {
  return false;
}

#elif defined(_MSC_VER)

// The processor must have the instructions, and the system must keep the wide registers.
bool hasAvx2() {
  int leaf[4]; // EAX, EBX, ECX, EDX
  __cpuid(leaf, 0);
  if (leaf[0] < 7) return false;
  __cpuid(leaf, 1);
  constexpr int popcnt = 1 << 23, osxsave = 1 << 27, avx = 1 << 28;
  if ((leaf[2] & (popcnt | osxsave | avx)) != (popcnt | osxsave | avx)) return false;
  constexpr unsigned long long registers = 0x6; // XMM and YMM
  if ((_xgetbv(0) & registers) != registers) return false;
  __cpuidex(leaf, 7, 0);
  constexpr int bmi1 = 1 << 3, avx2 = 1 << 5, bmi2 = 1 << 8;
  return (leaf[1] & (bmi1 | avx2 | bmi2)) == (bmi1 | avx2 | bmi2);
}

#else

bool hasAvx2() {
  return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
         __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("popcnt");
}

#endif

utl_InstructionSet ofMachine() {
  static const auto set = hasAvx2() ? utl_InstructionSet::Avx2 : utl_InstructionSet::Portable;
  return set;
}

std::atomic<utl_InstructionSet>& inUse() {
  static std::atomic<utl_InstructionSet> set{ofMachine()};
  return set;
}

} // namespace

utl_InstructionSet utl_instructionSet() {
  return inUse().load(std::memory_order_relaxed);
}

utl_InstructionSet utl_limitInstructionSet(utl_InstructionSet most) {
  inUse() = std::min(most, ofMachine());
  return utl_instructionSet();
}
