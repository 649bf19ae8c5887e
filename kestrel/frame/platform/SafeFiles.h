// Writing files so that a failure leaves no partial file: the new
// contents go to a temporary file beside the target, which is then renamed
// over it in one step.
#pragma once

#include <string>
#include <string_view>

#include <kestrel/frame/platform/FileSystem.h> // CopyFileA, the copying counterpart

namespace kestrel {

// Puts bytes in a file, replacing it whole, or creating it. An existing
// file keeps its permissions, and a symbolic link keeps pointing at the file,
// which is the one replaced. False on any failure, with errno telling why;
// the old file is then as it was. Drive letters are mapped (NativePath).
bool ReplaceFileWhole(const std::string &fileName, std::string_view bytes);

} // namespace kestrel
