#include <kestrel/frame/host/Package.h>

namespace kestrel {

namespace {
TLibModule *gModules = nullptr;
}

void RegisterModule(TLibModule *module) {
  module->Next = gModules;
  gModules = module;
}

void UnregisterModule(TLibModule *module) {
  for (TLibModule **p = &gModules; *p; p = &(*p)->Next)
    if (*p == module) {
      *p = module->Next;
      module->Next = nullptr;
      return;
    }
}

TLibModule *LibModuleList() { return gModules; }

void PackageLoad(PackageInfo info, TLibModule *) {
  int32_t started = 0;
  try {
    for (; started < info->UnitCount; ++started)
      if (info->UnitInfo[started].Init)
        info->UnitInfo[started].Init();
  } catch (...) {
    for (int32_t i = started - 1; i >= 0; --i)
      if (info->UnitInfo[i].FInit)
        info->UnitInfo[i].FInit();
    throw;
  }
}

void PackageUnload(PackageInfo info, TLibModule *) {
  for (int32_t i = info->UnitCount - 1; i >= 0; --i)
    if (info->UnitInfo[i].FInit)
      info->UnitInfo[i].FInit();
}

} // namespace kestrel
