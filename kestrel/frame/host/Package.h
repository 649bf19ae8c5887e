// The host's module records and package load/unload.
#pragma once

#include <cstdint>

#include <kestrel/frame/host/Types.h>

namespace kestrel {

using TUnitProc = void (*)();

// One row of a start-up table: the unit's start-up, then its finalisation.
struct PackageUnitEntry {
  TUnitProc Init;
  TUnitProc FInit;
};

// The start-up table of a module: a row count and the rows.
struct PackageInfoTable {
  int32_t UnitCount;
  const PackageUnitEntry *UnitInfo;
};
using PackageInfo = const PackageInfoTable *;

// The host's record for a loaded module.
struct TLibModule {
  TLibModule *Next;
  HMODULE Instance;
  HMODULE CodeInstance;
  HMODULE DataInstance;
  HMODULE ResInstance;
  int32_t Reserved;
};

// Adds a module's record at the head of the host's list; takes it out again.
// The record stays the caller's.
void RegisterModule(TLibModule *module);
void UnregisterModule(TLibModule *module);
// The first registered module (the head of the host's list).
TLibModule *LibModuleList();

// Runs the start-ups of the table from first to last. When one raises, the
// finalisations of the rows already started run in reverse and the error
// passes on.
void PackageLoad(PackageInfo info, TLibModule *module);
// Runs the finalisations from last to first.
void PackageUnload(PackageInfo info, TLibModule *module);

// The start-up count that every unit carries. A start-up does its work only
// on the first of paired calls, a finalisation only on the last.
class UnitStartCount {
public:
  bool StartUp() { return FCount-- == 0; }
  bool Finish() { return ++FCount == 0; }
  int32_t Value() const { return FCount; }

private:
  int32_t FCount = 0;
};

} // namespace kestrel
