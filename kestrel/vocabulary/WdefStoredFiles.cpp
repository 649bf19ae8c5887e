// Unit Wdef: stored-file heads and the names of archive members.
#include <kestrel/vocabulary/WdefStoredFiles.h>

#include <kestrel/frame/host/SysUtils.h>

namespace kestrel {

namespace {

// The last kind whose signature the head can name by the table.
constexpr size_t kLastSignatureRow = static_cast<size_t>(list_type::spare9);
// The one signature outside the table: a database head of the older number.
constexpr std::string_view kOldDatabase32 = "Salients Database (v. 2)32";

// The name delimiter after an archive's extension.
const std::string kZipInName = std::string(".zip") + PathDelim;

} // namespace

list_type DiskFileType(const TCheckSignature &header) {
  const std::string_view sig = header.signature.view();
  for (size_t i = 0; i <= kLastSignatureRow; ++i)
    if (sig == list_signature32.rows[i]) return static_cast<list_type>(i);
  return sig == kOldDatabase32 ? list_type::spare10 : list_type::none_in_use;
}

// Byte strings are in the system's code page; lower-casing by it and by ASCII
// rules give the same answer to whether ".zip" is there, since no other
// character lower-cases to those four.
bool IsAZipFile(std::string_view name) {
  return LowerCase(ExtractFileExt(name)) == ".zip";
}

bool IsWithinAZipFile(std::string_view name) {
  return !FileExists(name) && LowerCase(name).find(kZipInName) != std::string::npos;
}

std::string ZipFileFullFileName(std::string_view name) {
  const size_t at = LowerCase(name).find(kZipInName);
  return at == std::string::npos ? std::string() : std::string(name.substr(0, at + 4));
}

std::string ZipFileWantedFileNameWithin(std::string_view name) {
  const size_t at = LowerCase(name).find(kZipInName);
  return at == std::string::npos ? std::string() : std::string(name.substr(at + kZipInName.size()));
}

} // namespace kestrel
