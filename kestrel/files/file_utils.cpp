#include <kestrel/files/file_utils.h>

#include <cctype>
#include <cstring>
#include <limits>
#include <vector>

#include <kestrel/frame/Units.h>
#include <kestrel/frame/host/AnsiStrings.h>
#include <kestrel/frame/host/FindFile.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/host/TFileStream.h>
#include <kestrel/frame/myKpSmall.h>
#include <kestrel/frame/platform/FileSystem.h>
#include <kestrel/frame/platform/Platform.h>
#include <kestrel/frame/platform/Volumes.h>

namespace kestrel {

namespace {

constexpr uint32_t kLabelBuffer = 261;

std::string RootOf(char letter) {
  return std::string(1, letter) + DriveDelim + PathDelim;
}

// A label or remote name in the case of the letter it was asked by.
std::string CasedLike(char letter, const std::string &text) {
  return static_cast<unsigned char>(letter) < 'a' ? AnsiUpperCaseFileName(text)
                                                  : AnsiLowerCaseFileName(text);
}

// Restores the error mode when it goes, whatever happened.
class QuietErrors {
public:
  QuietErrors() : old_(SetErrorMode(SEM_FAILCRITICALERRORS)) {}
  ~QuietErrors() { SetErrorMode(old_); }

private:
  uint32_t old_;
};

bool Refused(char c) {
  return static_cast<unsigned char>(c) < 0x20 || std::strchr("\\/:|<>^+=?[]\"*", c) != nullptr;
}

// Collects the files below a folder (ending in a delimiter), depth first.
void CollectFiles(const std::string &folder, std::vector<std::string> &files) {
  TSearchRec rec;
  for (int32_t r = FindFirst(folder + "*.*", faAnyFile, rec); r == 0; r = FindNext(rec)) {
    if (rec.Name.empty() || rec.Name[0] == '.' || (rec.Attr & faVolumeID)) continue;
    std::string full = folder + rec.Name;
    if (rec.Attr & faDirectory) {
      // A link may lead off the drive: it is neither entered nor deleted.
      if (!(GetFileAttributesA(full.c_str()) & FILE_ATTRIBUTE_REPARSE_POINT))
        CollectFiles(full + PathDelim, files);
      continue;
    }
    if (rec.Attr & (faHidden | faSysFile)) continue;
    MyYieldProcess();
    files.push_back(full);
  }
  FindClose(rec);
}

// Whether a folder still holds an entry that is neither a folder nor a
// volume label, hidden and system files counting.
bool HoldsFiles(const std::string &folder) {
  TSearchRec rec;
  for (int32_t r = FindFirst(folder + "*.*", faAnyFile, rec); r == 0; r = FindNext(rec))
    if (!(rec.Attr & (faDirectory | faVolumeID))) return true;
  return false;
}

} // namespace

std::string RemoveDotsFromFilename(const std::string &Name) {
  std::string out;
  for (char c : Name)
    if (c != '.') out += c;
  return out;
}

std::string CleanedUpFilename(const std::string &Name) {
  size_t from = ExcludeTrailingPathDelimiter(ExtractFilePath(Name)).size();
  std::string out;
  for (size_t i = from; i < Name.size(); ++i)
    if (!Refused(Name[i])) out += Name[i];
  return out;
}

bool CopyDateOfFile(const std::string &Source, const std::string &Target) {
  if (!FileExists(Source) || !FileExists(Target)) return false;
  return FileSetDate(Target, FileAge(Source)) == 0;
}

bool CopyFileRetainingDate(const std::string &Source, const std::string &Target) {
  if (!FileExists(Source)) return false;
  int32_t stamp = FileAge(Source);
  bool copied = CopyFileA(Source.c_str(), Target.c_str(), false);
  FileSetDate(Target, stamp);
  return copied;
}

bool OKToDelete(const std::string &Name) {
  if (!FileExists(Name)) return true;
  if (MyPMsgDlg("Delete " + Name + "?", "Confirmation", MB_OKCANCEL | MB_ICONQUESTION) != IDOK)
    return false;
  DeleteFile(Name);
  return true;
}

int32_t FileSize(const std::string &Name) {
  if (!FileExists(Name)) return -1;
  // The search's mask ignores case; a name may differ from another only so.
  std::string bare = ExtractFileName(Name);
  TSearchRec rec;
  int64_t size = -1;
  for (int32_t r = FindFirst(Name, faAnyFile, rec); r == 0; r = FindNext(rec))
    if (size < 0 || rec.Name == bare) size = rec.Size;
  FindClose(rec);
  return static_cast<int32_t>(std::min<int64_t>(size, std::numeric_limits<int32_t>::max()));
}

std::string DriveWithMostFreeSpace() {
  uint32_t drives = GetLogicalDrives();
  int64_t best = 0;
  std::string result;
  for (char letter = 'c'; letter <= 'z'; ++letter) {
    int n = letter - 'a';
    if (!(drives & (1u << n)) || GetDriveTypeA(RootOf(letter).c_str()) != DRIVE_FIXED) continue;
    int64_t free = DiskFree(static_cast<uint8_t>(n + 1));
    if (free > best) {
      best = free;
      result = RootOf(letter);
    }
  }
  return result;
}

bool MySetFileDate(const std::string &Name, int32_t DateStamp) {
  THandle h = FileOpen(Name, fmOpenWrite | fmShareDenyWrite);
  if (h < 0) return false;
  bool set = FileSetDate(h, DateStamp) == 0;
  FileClose(h);
  return set;
}

std::string VolumeID(char DriveLetter) {
  QuietErrors quiet;
  char label[kLabelBuffer] = {};
  if (!GetVolumeInformationA(RootOf(DriveLetter).c_str(), label, kLabelBuffer, nullptr, nullptr,
                             nullptr, nullptr, 0))
    label[0] = '\0';
  return "[" + CasedLike(DriveLetter, label) + "]";
}

std::string NetworkVolume(char DriveLetter) {
  char local[3] = {static_cast<char>(std::toupper(static_cast<unsigned char>(DriveLetter))),
                   DriveDelim, '\0'};
  char remote[kLabelBuffer] = {};
  uint32_t length = kLabelBuffer;
  if (WNetGetConnectionA(local, remote, &length) == NO_ERROR) return CasedLike(DriveLetter, remote);
  return VolumeID(DriveLetter);
}

void DeleteAllFilesOn(const std::string &Path) {
  std::string root = RootOf(Path.empty() ? '?' : Path[0]);
  if (GetDriveTypeA(root.c_str()) != DRIVE_REMOVABLE) {
    MyPMsgDlg("Won't delete all files on " + root, "No room", MB_OK);
    return;
  }
  std::vector<std::string> files;
  CollectFiles(Path, files);
  for (const std::string &file : files) {
    DeleteFile(file);
    std::string folder = ExtractFilePath(file);
    // The drive's own folder is where the drive is mapped: it stays.
    if (folder.size() > root.size() && !HoldsFiles(folder)) RemoveDir(folder);
  }
}

} // namespace kestrel

KESTREL_DEFINE_UNIT(file_utils, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
