// The last error of a system operation and its text, under the Windows names.
//
// Error numbers are the system's own (errno values): the platform operations
// leave their reason there, and FormatMessageA gives the system's text for it
// (strerror), without the line break Windows puts behind its texts.
#pragma once

#include <cstdint>

namespace kestrel {

inline constexpr uint32_t FORMAT_MESSAGE_IGNORE_INSERTS = 0x0200;
inline constexpr uint32_t FORMAT_MESSAGE_FROM_SYSTEM = 0x1000;

// The calling thread's last error.
uint32_t GetLastError();
void SetLastError(uint32_t error);

// With FORMAT_MESSAGE_FROM_SYSTEM: the system's text for messageId, cut to
// size - 1 characters and terminated; the result is its length. 0 (and
// nothing written) for other flags, a null buffer or a size of 0.
uint32_t FormatMessageA(uint32_t flags, const void *source, uint32_t messageId, uint32_t languageId,
                        char *buffer, uint32_t size, void *arguments);

} // namespace kestrel
