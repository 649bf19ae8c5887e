#include <kestrel/frame/platform/Errors.h>

#include <cerrno>
#include <cstring>

namespace kestrel {

uint32_t GetLastError() {
  return static_cast<uint32_t>(errno);
}

void SetLastError(uint32_t error) {
  errno = static_cast<int>(error);
}

uint32_t FormatMessageA(uint32_t flags, const void *, uint32_t messageId, uint32_t, char *buffer,
                        uint32_t size, void *) {
  if (!(flags & FORMAT_MESSAGE_FROM_SYSTEM) || buffer == nullptr || size == 0) {
    errno = EINVAL;
    return 0;
  }
  char text[256];
  const char *message = ::strerror_r(static_cast<int>(messageId), text, sizeof text);
  size_t n = std::strlen(message);
  if (n > size - 1) n = size - 1;
  std::memcpy(buffer, message, n);
  buffer[n] = '\0';
  return static_cast<uint32_t>(n);
}

} // namespace kestrel
