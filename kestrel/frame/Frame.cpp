#include <kestrel/frame/Frame.h>

#include <array>
#include <string>
#include <utility>

#include <kestrel/frame/Units.h>
#include <kestrel/frame/platform/Platform.h>

namespace kestrel {

namespace {

// Rows that belong to the host framework, the ZIP component and support
// units: here they only count.
std::array<UnitStartCount, kStartupRows> gHostCounts;

template <int Row> void HostStart() {
  gHostCounts[Row].StartUp();
}
template <int Row> void HostStop() {
  gHostCounts[Row].Finish();
}

struct OwnUnit {
  int32_t row;
  const char *name;
  TUnitProc init, finit;
};

#define KESTREL_OWN(row, Unit) {row, #Unit, &Unit::initialization, &Unit::Finalization},
constexpr OwnUnit kOwnUnits[] = {KESTREL_UNIT_ROWS(KESTREL_OWN)};
#undef KESTREL_OWN

template <size_t... Rows>
constexpr std::array<PackageUnitEntry, kStartupRows> BuildTable(std::index_sequence<Rows...>) {
  std::array<PackageUnitEntry, kStartupRows> rows{
      PackageUnitEntry{&HostStart<Rows>, &HostStop<Rows>}...};
  for (const OwnUnit &u : kOwnUnits)
    rows[static_cast<size_t>(u.row)] = PackageUnitEntry{u.init, u.finit};
  return rows;
}

constexpr std::array<PackageUnitEntry, kStartupRows> kRows =
    BuildTable(std::make_index_sequence<kStartupRows>());
constexpr PackageInfoTable kTable{kStartupRows, kRows.data()};

TLibModule gLibModule{};

} // namespace

PackageInfo GetPackageInfoTable() {
  return &kTable;
}
TLibModule &KestrelLibModule() {
  return gLibModule;
}

void Initialize() {
  PackageLoad(&kTable, &gLibModule);
}
void Finalize() {
  PackageUnload(&kTable, &gLibModule);
}

int32_t LibraryEntry(HMODULE module, uint32_t reason, void *) {
  if (reason == DLL_PROCESS_ATTACH) {
    gLibModule.Instance = module;
    gLibModule.CodeInstance = nullptr;
    gLibModule.DataInstance = nullptr;
    RegisterModule(&gLibModule);
  } else if (reason == DLL_PROCESS_DETACH) {
    UnregisterModule(&gLibModule);
    if (gLibModule.ResInstance && gLibModule.ResInstance != gLibModule.Instance)
      FreeLibrary(gLibModule.ResInstance);
  }
  return -1;
}

const char *StartupRowName(int32_t row) {
  for (const OwnUnit &u : kOwnUnits)
    if (u.row == row) return u.name;
  switch (row) {
  case 0:
    return "SysInit";
  case 1:
    return "System";
  case 12:
    return "Classes";
  case 13:
    return "Strutils";
  case 15:
    return "Consts";
  case 16:
    return "Syncobjs";
  case 71:
    return "Vclunzip";
  case 74:
    return "Dateutils";
  case 75:
    return "Masks";
  default:
    return row >= 0 && row < kStartupRows ? "host unit" : "";
  }
}

int32_t HostRowCount(int32_t row) {
  return row >= 0 && row < kStartupRows ? gHostCounts[static_cast<size_t>(row)].Value() : 0;
}

namespace {
// The shared library's load and unload stand for process attach and detach.
__attribute__((constructor)) void OnLibraryLoad() {
  LibraryEntry(KestrelModuleHandle(), DLL_PROCESS_ATTACH, nullptr);
}
__attribute__((destructor)) void OnLibraryUnload() {
  LibraryEntry(KestrelModuleHandle(), DLL_PROCESS_DETACH, nullptr);
}
} // namespace

} // namespace kestrel
