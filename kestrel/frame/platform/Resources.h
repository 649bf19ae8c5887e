// Resources of the library's own module: blobs linked into the binary that
// register themselves by name and type at load.
#pragma once

#include <cstddef>
#include <string>

#include <kestrel/frame/host/Types.h>

namespace kestrel {

// A resource's bytes; they belong to the module and live as long as it.
struct ResourceBlob {
  const unsigned char *data;
  size_t size;
};

// Finds a resource of the module by name and type (both case-insensitive).
// Null when there is none. Only the library's own module holds resources.
const ResourceBlob *FindResourceBlob(HMODULE module, const std::string &name,
                                     const std::string &type);

// Puts a blob in place of a resource (or adds one) and gives back what stood
// there before (data null when nothing did). Tests use it to feed altered tables.
ResourceBlob ReplaceResourceBlob(const std::string &name, const std::string &type,
                                 ResourceBlob blob);

// A static instance registers one embedded blob at load.
struct ResourceRegistration {
  ResourceRegistration(const char *name, const char *type, const unsigned char *data, size_t size);
};

} // namespace kestrel
