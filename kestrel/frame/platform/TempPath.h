// The folder for temporary files.
#pragma once

#include <cstdint>
#include <string>

namespace kestrel {

// Writes the temporary folder, with a trailing delimiter and a terminating 0,
// into buffer. The result is its length without the 0; when bufferLength is
// too small, nothing is written and the result is the length needed with the
// 0.
//
// The folder is the one set with SetTempPath, else $TMPDIR when that names a
// folder, else /tmp.
uint32_t GetTempPathA(uint32_t bufferLength, char *buffer);

// Chooses the temporary folder for this process (tests use their own); an
// empty folder goes back to the system's.
void SetTempPath(const std::string &folder);

} // namespace kestrel
