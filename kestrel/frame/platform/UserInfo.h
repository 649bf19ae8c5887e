// The user the process runs as.
#pragma once

#include <cstdint>

namespace kestrel {

// Writes the name of the user the process runs as (its effective user id,
// looked up in the system's user database, never taken from the environment)
// with a terminating 0 into buffer. *size gives the buffer's capacity and
// comes back as the characters written with the 0. The result is false when
// the buffer is too small, with *size then the size needed, and false with
// *size 0 when the user database has no entry for the process's user.
bool GetUserNameA(char *buffer, uint32_t *size);

} // namespace kestrel
