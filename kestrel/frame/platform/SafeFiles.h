// Writing and copying files so that a failure leaves no partial file: the new
// contents go to a temporary file beside the target, which is then renamed
// over it in one step.
#pragma once

#include <string>
#include <string_view>

namespace kestrel {

// Copies a file's bytes, permissions and last-write time to a new name (the
// Windows CopyFileA). With failIfExists an existing target is left alone and
// the call fails; otherwise it is replaced whole. False on any failure, with
// errno telling why; the old target is then as it was.
bool CopyFileA(const char *existingFileName, const char *newFileName, bool failIfExists);

// Puts bytes in a file, replacing it whole, or creating it. An existing
// file keeps its permissions, and a symbolic link keeps pointing at the file,
// which is the one replaced. False on any failure, with errno telling why;
// the old file is then as it was. Drive letters are mapped (NativePath).
bool ReplaceFileWhole(const std::string &fileName, std::string_view bytes);

} // namespace kestrel
