#include <kestrel/frame/platform/SystemInfo.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sched.h>
#include <string>
#include <sys/utsname.h>
#include <unistd.h>

#include <kestrel/frame/platform/Platform.h>

namespace kestrel {

namespace {

// The value of a "name : value" line of /proc/cpuinfo, for the first processor.
std::string CpuInfo(const char *name) {
  std::ifstream in("/proc/cpuinfo");
  std::string line;
  while (std::getline(in, line)) {
    size_t colon = line.find(':');
    if (colon == std::string::npos) continue;
    std::string key = line.substr(0, colon);
    while (!key.empty() && (key.back() == ' ' || key.back() == '\t'))
      key.pop_back();
    if (key == name) return line.substr(colon + 1);
  }
  return {};
}

uint16_t Architecture(const std::string &machine) {
  if (machine == "x86_64") return PROCESSOR_ARCHITECTURE_AMD64;
  if (machine.size() == 4 && machine[0] == 'i' && machine.compare(2, 2, "86") == 0)
    return PROCESSOR_ARCHITECTURE_INTEL;
  if (machine == "aarch64" || machine == "arm64") return PROCESSOR_ARCHITECTURE_ARM64;
  if (machine.compare(0, 3, "arm") == 0) return PROCESSOR_ARCHITECTURE_ARM;
  return PROCESSOR_ARCHITECTURE_UNKNOWN;
}

} // namespace

bool GetVersionExA(OSVERSIONINFOA *info) {
  if (info == nullptr || info->dwOSVersionInfoSize != sizeof(OSVERSIONINFOA)) {
    errno = EINVAL;
    return false;
  }
  struct utsname u;
  if (::uname(&u) != 0) return false;
  unsigned major = 0, minor = 0, build = 0;
  std::sscanf(u.release, "%u.%u.%u", &major, &minor, &build);
  info->dwMajorVersion = major;
  info->dwMinorVersion = minor;
  info->dwBuildNumber = build;
  info->dwPlatformId = static_cast<uint32_t>(VER_PLATFORM_WIN32_NT);
  std::string text = std::string(u.sysname) + " " + u.version;
  text.resize(std::min(text.size(), sizeof info->szCSDVersion - 1));
  std::memcpy(info->szCSDVersion, text.c_str(), text.size() + 1);
  return true;
}

void GetSystemInfo(SYSTEM_INFO *info) {
  if (info == nullptr) return;
  std::memset(info, 0, sizeof *info);
  struct utsname u;
  std::string machine = ::uname(&u) == 0 ? u.machine : "";
  info->wProcessorArchitecture = Architecture(machine);
  long page = ::sysconf(_SC_PAGESIZE);
  info->dwPageSize = page > 0 ? static_cast<uint32_t>(page) : 4096;
  info->dwAllocationGranularity = info->dwPageSize;

  uintptr_t lowest = 0x10000;
  std::ifstream("/proc/sys/vm/mmap_min_addr") >> lowest;
  info->lpMinimumApplicationAddress = reinterpret_cast<void *>(lowest);
  info->lpMaximumApplicationAddress =
      reinterpret_cast<void *>((uintptr_t(1) << 47) - info->dwPageSize - 1);

  cpu_set_t set;
  CPU_ZERO(&set);
  if (::sched_getaffinity(0, sizeof set, &set) == 0)
    for (unsigned cpu = 0; cpu < 64; ++cpu)
      if (CPU_ISSET(cpu, &set)) info->dwActiveProcessorMask |= uintptr_t(1) << cpu;
  long online = ::sysconf(_SC_NPROCESSORS_ONLN);
  info->dwNumberOfProcessors = online > 0 ? static_cast<uint32_t>(online) : 1;

  uint16_t arch = info->wProcessorArchitecture;
  info->dwProcessorType = arch == PROCESSOR_ARCHITECTURE_AMD64   ? PROCESSOR_AMD_X8664
                          : arch == PROCESSOR_ARCHITECTURE_INTEL ? PROCESSOR_INTEL_PENTIUM
                                                                 : 0;
  if (arch == PROCESSOR_ARCHITECTURE_AMD64 || arch == PROCESSOR_ARCHITECTURE_INTEL) {
    unsigned family = 0, model = 0, stepping = 0;
    std::sscanf(CpuInfo("cpu family").c_str(), "%u", &family);
    std::sscanf(CpuInfo("model").c_str(), "%u", &model);
    std::sscanf(CpuInfo("stepping").c_str(), "%u", &stepping);
    info->wProcessorLevel = static_cast<uint16_t>(family);
    info->wProcessorRevision = static_cast<uint16_t>((model & 0xFF) << 8 | (stepping & 0xFF));
  }
}

} // namespace kestrel
