// File operations under the Windows names, where the host's file functions
// do not reach.
#pragma once

#include <cstdint>

namespace kestrel {

inline constexpr uint32_t FILE_ATTRIBUTE_READONLY = 0x0001;
inline constexpr uint32_t FILE_ATTRIBUTE_HIDDEN = 0x0002;
inline constexpr uint32_t FILE_ATTRIBUTE_SYSTEM = 0x0004;
inline constexpr uint32_t FILE_ATTRIBUTE_DIRECTORY = 0x0010;
inline constexpr uint32_t FILE_ATTRIBUTE_ARCHIVE = 0x0020;
inline constexpr uint32_t FILE_ATTRIBUTE_REPARSE_POINT = 0x0400;
inline constexpr uint32_t INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;

// The attributes of the entry itself, a link not followed: a symbolic link
// has FILE_ATTRIBUTE_REPARSE_POINT, with FILE_ATTRIBUTE_DIRECTORY when it
// leads to a folder. The other bits are as the host's search gives them (a
// name beginning with "." is hidden, an owner who may not write makes it
// read-only, a device, pipe or socket is a system file).
// INVALID_FILE_ATTRIBUTES when there is no such entry.
uint32_t GetFileAttributesA(const char *fileName);

// Copies a file with its modification date and permissions, replacing the
// target unless failIfExists. The copy is written beside the target and
// renamed over it, so a failure (a full disk, a vanished source) leaves the
// target as it was and nothing else behind. As Windows refuses to replace a
// read-only file, a target its owner may not write is refused (EACCES). True
// on success; otherwise the reason is in the last error (errno).
bool CopyFileA(const char *existingFileName, const char *newFileName, bool failIfExists);

// Renames a file or folder; fails (EEXIST) when the new name is taken, as on
// Windows.
bool MoveFileA(const char *existingFileName, const char *newFileName);

} // namespace kestrel
