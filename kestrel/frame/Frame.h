// The module frame: the load entry, Initialize and Finalize, the start-up table.
#pragma once

#include <cstdint>

#include <kestrel/frame/host/Package.h>

namespace kestrel {

inline constexpr int32_t kStartupRows = 88;
inline constexpr uint32_t DLL_PROCESS_DETACH = 0;
inline constexpr uint32_t DLL_PROCESS_ATTACH = 1;
inline constexpr uint32_t DLL_THREAD_ATTACH = 2;
inline constexpr uint32_t DLL_THREAD_DETACH = 3;

// Runs the start-ups of all rows, first to last. A second call only moves the counts.
void Initialize();
// Runs the finalisations in reverse; the one that pairs the first Initialize does the work.
void Finalize();
PackageInfo GetPackageInfoTable();

// The load entry; the shared library calls it with reason 1 when it is loaded
// and with reason 0 when it is unloaded. Always returns true (all bits set).
int32_t LibraryEntry(HMODULE module, uint32_t reason, void *reserved);

// The library's module record.
TLibModule &KestrelLibModule();

// The unit name of a row of the start-up table (diagnostics and tests).
const char *StartupRowName(int32_t row);
// The start-up count of a row that only counts (a host or support unit).
int32_t HostRowCount(int32_t row);

namespace Kestrelcore {
// The module's entries under the names the host calls them by.
inline int32_t initialization(HMODULE m, uint32_t r, void *x) { return LibraryEntry(m, r, x); }
inline void PackageLoad() { Initialize(); }
inline void PackageUnload() { Finalize(); }
inline PackageInfo GetPackageInfoTable() { return kestrel::GetPackageInfoTable(); }
} // namespace Kestrelcore

} // namespace kestrel
