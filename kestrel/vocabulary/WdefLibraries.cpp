// Unit Wdef: the loader of outside functions.
#include <kestrel/vocabulary/WdefLibraries.h>

#include <kestrel/frame/platform/Platform.h>
#include <kestrel/vocabulary/WdefUnitInternal.h>

namespace kestrel {

Tlibrary_rec LibraryRecs[kLibraryRecCount];

void ZeroLibraryRecs() {
  for (Tlibrary_rec &rec : LibraryRecs)
    rec = {};
}

Tlibrary_rec FindLibraryFunction(const std::string &library, const std::string &function) {
  Tlibrary_rec rec{};
  rec.handle = LoadLibraryA(library.c_str());
  if (rec.handle) rec.address = GetProcAddress(rec.handle, function.c_str());
  return rec;
}

void CloseLibraryFunction(Tlibrary_rec &rec) {
  FreeLibrary(rec.handle);
  rec = {};
}

} // namespace kestrel
