#include <kestrel/frame/platform/UserInfo.h>

#include <cerrno>
#include <cstring>
#include <pwd.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace kestrel {

namespace {

// The name of the effective user from the user database; false when it has
// no entry for that user or cannot be read.
bool EffectiveUserName(std::string &name) {
  long hint = ::sysconf(_SC_GETPW_R_SIZE_MAX);
  std::vector<char> scratch(hint > 0 ? static_cast<size_t>(hint) : 1024);
  for (;;) {
    struct passwd entry;
    struct passwd *found = nullptr;
    int rc = ::getpwuid_r(::geteuid(), &entry, scratch.data(), scratch.size(), &found);
    if (rc == ERANGE && scratch.size() < (1u << 20)) {
      scratch.resize(scratch.size() * 2);
      continue;
    }
    if (rc != 0 || !found || !found->pw_name) return false;
    name = found->pw_name;
    return true;
  }
}

} // namespace

bool GetUserNameA(char *buffer, uint32_t *size) {
  if (!size) return false;
  std::string name;
  if (!EffectiveUserName(name)) {
    *size = 0;
    return false;
  }
  const uint32_t needed = static_cast<uint32_t>(name.size() + 1);
  if (!buffer || *size < needed) {
    *size = needed;
    return false;
  }
  std::memcpy(buffer, name.c_str(), needed);
  *size = needed;
  return true;
}

} // namespace kestrel
