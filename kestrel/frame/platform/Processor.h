// What the processor runs, for code that picks a vector way while the library
// loads (the CPU model may not have been read yet, so it is read here).
#pragma once

namespace kestrel {

// AVX2 with the BMI1 and POPCNT instructions that go with it on every such
// processor; false off x86.
inline bool ProcessorRunsAvx2() {
#if defined(__x86_64__) || defined(__i386__)
  __builtin_cpu_init();
  return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
         __builtin_cpu_supports("popcnt");
#else
  return false;
#endif
}

} // namespace kestrel
