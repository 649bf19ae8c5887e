// ZIP archives: any file reads as an archive or is refused with EZipError;
// every member of one that reads is listed, read into memory or refused with
// its reason, and unpacked (folders and all) without anything landing
// outside the destination folder.
#include "FuzzSupport.h"

#include <dirent.h>
#include <filesystem>
#include <set>

using namespace kestrel;
using namespace kestrel::fuzz;

namespace {

// Larger members are not read, nor more than this unpacked: time, not safety.
constexpr int64_t kMemberLimit = 1 << 20;
constexpr int64_t kUnpackLimit = 1 << 16;

std::set<std::string> Entries(const std::string &folder) {
  std::set<std::string> names;
  if (DIR *d = ::opendir(folder.c_str())) {
    while (dirent *e = ::readdir(d))
      names.insert(e->d_name);
    ::closedir(d);
  }
  return names;
}

void ReadEveryMember(TVCLUnZip &zip) {
  for (int32_t i = 0; i < zip.GetCount(); ++i) {
    zip.GetFilename(i);
    zip.GetPathname(i);
    zip.GetDateTime(i);
    zip.GetExternalFileAttributes(i);
    if (zip.GetUnCompressedSize(i) > kMemberLimit || zip.GetFilename(i).empty()) continue;
    TMemoryStream out;
    try {
      if (zip.UnZipToStream(&out, i) != out.GetSize()) Finding("a member of another size");
    } catch (const EZipError &) {
    }
  }
}

void UnpackAll(TVCLUnZip &zip, const std::string &dest, bool recreateDirs) {
  zip.ClearSelected();
  int64_t total = 0;
  for (int32_t i = 0; i < zip.GetCount(); ++i) {
    total += zip.GetUnCompressedSize(i);
    if (total <= kUnpackLimit) zip.SetSelected(i, true);
  }
  zip.RecreateDirs = recreateDirs;
  zip.OverwriteMode = TUZOverwriteMode::Always;
  zip.SetDestDir(dest);
  try {
    zip.UnZipSelected();
  } catch (const EZipError &) {
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  Input in(data, size);
  const bool recreateDirs = in.Byte() & 1;
  // The archive and the destination sit two levels down in the run's own
  // folder: a member that climbs out would show in one of the three.
  const std::string top = PrivateFolder(), middle = top + "/m", sandbox = middle + "/s";
  std::filesystem::create_directories(sandbox);
  const std::string archive = sandbox + "/a.zip", dest = sandbox + "/dest";
  WriteFile(archive, in.Rest());
  {
    TVCLUnZip zip(nullptr);
    zip.SetZipName(archive);
    try {
      zip.ReadZip();
    } catch (const EZipError &) {
      return 0;
    }
    zip.GetZipComment();
    ReadEveryMember(zip);
    UnpackAll(zip, dest, recreateDirs);
  }
  using Names = std::set<std::string>;
  if (Entries(top) != Names{".", "..", "m"} || Entries(middle) != Names{".", "..", "s"})
    Finding("something landed outside the destination folder");
  Names here = Entries(sandbox);
  here.erase("dest");
  if (here != Names{".", "..", "a.zip"}) Finding("something landed beside the destination folder");
  std::error_code ec;
  std::filesystem::remove_all(dest, ec);
  return 0;
}
