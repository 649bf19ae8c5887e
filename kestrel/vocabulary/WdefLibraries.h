// Functions of outside libraries, loaded by name.
#pragma once

#include <cstddef>
#include <string>

#include <kestrel/frame/host/Types.h>

namespace kestrel {

// A function's address and the handle of its library.
struct Tlibrary_rec {
  void *address;
  HMODULE handle;
};

// Records for the tools' use, zeroed at the unit's start-up.
inline constexpr size_t kLibraryRecCount = 18;
extern Tlibrary_rec LibraryRecs[kLibraryRecCount];

// Loads library (LoadLibraryA) and looks function up in it. A library that
// does not load gives a zero record; a function it lacks gives the handle
// and a null address, and the record must still be closed.
Tlibrary_rec FindLibraryFunction(const std::string &library, const std::string &function);
// Frees the library (FreeLibrary) and zeroes the record.
void CloseLibraryFunction(Tlibrary_rec &rec);

} // namespace kestrel
