// Facts about the running system under the Windows names, read from the
// kernel (uname, sysconf, /proc). Where Linux has no such fact, the value is
// the one written here.
#pragma once

#include <cstdint>

namespace kestrel {

struct OSVERSIONINFOA {
  uint32_t dwOSVersionInfoSize; // the caller sets it to 148
  uint32_t dwMajorVersion;      // the kernel's release: 6.1.90 gives 6, 1 and 90
  uint32_t dwMinorVersion;
  uint32_t dwBuildNumber;
  uint32_t dwPlatformId;  // VER_PLATFORM_WIN32_NT (2), as Win32Platform says
  char szCSDVersion[128]; // the system's name and version text ("Linux #1 SMP ...")
};
static_assert(sizeof(OSVERSIONINFOA) == 148);

// Fills the record; false (EINVAL) unless its size field says 148.
bool GetVersionExA(OSVERSIONINFOA *info);

inline constexpr uint16_t PROCESSOR_ARCHITECTURE_INTEL = 0;
inline constexpr uint16_t PROCESSOR_ARCHITECTURE_ARM = 5;
inline constexpr uint16_t PROCESSOR_ARCHITECTURE_AMD64 = 9;
inline constexpr uint16_t PROCESSOR_ARCHITECTURE_ARM64 = 12;
inline constexpr uint16_t PROCESSOR_ARCHITECTURE_UNKNOWN = 0xFFFF;
inline constexpr uint32_t PROCESSOR_INTEL_PENTIUM = 586;
inline constexpr uint32_t PROCESSOR_AMD_X8664 = 8664;

// The layout of the 64-bit platform, pointers and masks 8 bytes wide.
struct SYSTEM_INFO {
  uint16_t wProcessorArchitecture; // from the machine name of uname
  uint16_t wReserved;
  uint32_t dwPageSize;               // sysconf
  void *lpMinimumApplicationAddress; // /proc/sys/vm/mmap_min_addr, else 0x10000
  void *lpMaximumApplicationAddress; // the last byte below the top page of a 47-bit user space
  uintptr_t dwActiveProcessorMask;   // the processors the process may run on (the first 64)
  uint32_t dwNumberOfProcessors;     // online processors
  uint32_t dwProcessorType;          // 8664 on x86-64, 586 on 32-bit x86, else 0
  uint32_t dwAllocationGranularity;  // the page size: Linux maps at any page
  uint16_t wProcessorLevel;          // x86: the family of /proc/cpuinfo; else 0
  uint16_t wProcessorRevision;       // x86: model * 256 + stepping; else 0
};
static_assert(sizeof(SYSTEM_INFO) == 48);

void GetSystemInfo(SYSTEM_INFO *info);

} // namespace kestrel
