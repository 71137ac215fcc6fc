#pragma once

// Which vector instructions the machine has, beyond those every machine of its kind has. Code for
// more than that stands in functions marked UTL_AVX2, called only where utl_instructionSet() says
// so.

#if (defined(__x86_64__) && defined(__GNUC__)) || (defined(_M_X64) && defined(_MSC_VER))
#define UTL_HAS_AVX2_CODE 1 // the compiler can make such functions
#endif

#if defined(UTL_HAS_AVX2_CODE) && defined(__GNUC__)
#define UTL_AVX2 __attribute__((target("avx2,bmi,bmi2,popcnt")))
#else
#define UTL_AVX2
#endif

enum class utl_InstructionSet {
  Portable,
  Avx2 // with BMI1, BMI2 and POPCNT, as all machines with AVX2 have them
};

utl_InstructionSet utl_instructionSet();

// Takes no more than this from now on, nor more than the machine has; for tests and measurements,
// not during work. Returns what holds.
utl_InstructionSet utl_limitInstructionSet(utl_InstructionSet most);
