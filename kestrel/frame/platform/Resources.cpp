// Resources of the library's own module: blobs registered by name and type.
#include <kestrel/frame/platform/Resources.h>

#include <cctype>
#include <map>
#include <mutex>

#include <kestrel/frame/platform/Platform.h>

namespace kestrel {

namespace {
std::string Key(const std::string &name, const std::string &type) {
  std::string k = type + "/" + name;
  for (char &c : k)
    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return k;
}
std::mutex &ResourceMutex() {
  static std::mutex m;
  return m;
}
std::map<std::string, ResourceBlob> &Resources() {
  static std::map<std::string, ResourceBlob> r;
  return r;
}
} // namespace

ResourceRegistration::ResourceRegistration(const char *name, const char *type,
                                           const unsigned char *data, size_t size) {
  std::lock_guard<std::mutex> lock(ResourceMutex());
  Resources()[Key(name, type)] = ResourceBlob{data, size};
}

const ResourceBlob *FindResourceBlob(HMODULE module, const std::string &name,
                                     const std::string &type) {
  if (module != KestrelModuleHandle()) return nullptr;
  std::lock_guard<std::mutex> lock(ResourceMutex());
  auto it = Resources().find(Key(name, type));
  return it == Resources().end() || !it->second.data ? nullptr : &it->second;
}

ResourceBlob ReplaceResourceBlob(const std::string &name, const std::string &type,
                                 ResourceBlob blob) {
  std::lock_guard<std::mutex> lock(ResourceMutex());
  ResourceBlob &slot = Resources()[Key(name, type)];
  ResourceBlob old = slot;
  slot = blob;
  return old;
}

} // namespace kestrel
