// WinGenOk: files, folders and new names for output files.
#include <kestrel/files/WinGenOk.h>

#include <cctype>
#include <cstring>
#include <memory>

#include <kestrel/frame/host/AnsiStrings.h>
#include <kestrel/frame/host/DateUtils.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/FindFile.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/host/TStringList.h>
#include <kestrel/frame/myKpSmall.h>
#include <kestrel/frame/platform/FileSystem.h>
#include <kestrel/frame/platform/Platform.h>
#include <kestrel/frame/platform/Volumes.h>

namespace kestrel {

uint32_t DriveBits = 0;

namespace {

// The batch number shared by the two new-name functions; it only counts up.
int32_t gBatchNumber = 0;

int32_t NextBatchNumber() {
  gBatchNumber = static_cast<int32_t>(static_cast<uint32_t>(gBatchNumber) + 1);
  return gBatchNumber;
}

void AddSubFolders(const std::string &folder, TStringList &list) {
  TSearchRec rec;
  for (int32_t r = FindFirst(folder + PathDelim + "*.*", faAnyFile, rec); r == 0;
       r = FindNext(rec)) {
    bool counts = !rec.Name.empty() && rec.Name[0] != '.' &&
                  !(rec.Attr & (faVolumeID | faHidden)) && (rec.Attr & faDirectory);
    if (counts) {
      std::string sub = folder + PathDelim + rec.Name;
      MyYieldProcess();
      list.Add(sub);
      // A link may lead back up the tree: listed, not entered.
      if (!(GetFileAttributesA(sub.c_str()) & FILE_ATTRIBUTE_REPARSE_POINT))
        AddSubFolders(sub, list);
    }
    MyYieldProcess();
  }
}

} // namespace

std::string NormalisedPath(const std::string &Path) {
  if (Path.size() <= 3) return Path;
  return ExcludeTrailingPathDelimiter(ExpandFileName(Path));
}

bool FileNameHasWildCards(const std::string &Name) {
  return Name.find_first_of("*?") != std::string::npos;
}

bool ValidDrive(char Letter) {
  DriveBits = GetLogicalDrives();
  int c = std::toupper(static_cast<unsigned char>(Letter));
  return c >= 'A' && c <= 'Z' && (DriveBits >> (c - 'A') & 1u);
}

bool sIsADirectory(const std::string &Path) {
  int32_t attr = FileGetAttr(Path);
  return attr != -1 && (attr & faDirectory);
}

bool StrFileExists(const char *Name) {
  return Name != nullptr && FileExists(Name);
}

bool Fixed_Drive(const std::string &Root) {
  return GetDriveTypeA(Root.c_str()) == DRIVE_FIXED;
}

TStringList *ListOfSubFolders(const std::string &Folder, bool Recursive) {
  auto list = std::make_unique<TStringList>();
  list->Add(Folder);
  if (Recursive) AddSubFolders(Folder, *list);
  return list.release();
}

void CreateFileList(const std::string &Pattern, TStringList *&List) {
  if (List != nullptr) FreeAndNil(List);
  List = new TStringList;
  std::string folder = ExtractFilePath(Pattern);
  TSearchRec rec;
  for (int32_t r = FindFirst(Pattern, faAnyFile, rec); r == 0; r = FindNext(rec))
    if (!rec.Name.empty() && rec.Name[0] != '.') List->Add(folder + rec.Name);
}

bool ForcedToBeNewFile(std::string &Name) {
  if (Name.find('.') == std::string::npos) Name += '.';
  std::string ext = ExtractFileExt(Name);
  while (FileExists(Name)) {
    std::string cut = Name.substr(0, Name.find('.'));
    Name = cut + Format("%03d", NextBatchNumber()) + ext;
  }
  return true;
}

bool StrForcedToBeNewFile(char *Name, size_t Capacity) {
  std::string name = Name;
  // Only the file name is lower-cased and looked at for its dot: folders on
  // Linux differ by case, and a dot in a folder is no extension.
  size_t start = name.rfind(PathDelim);
  start = start == std::string::npos ? 0 : start + 1;
  std::string folder = name.substr(0, start);
  std::string file = AnsiLowerCase(name.substr(start));
  if (file.find('.') == std::string::npos) file += '.';
  size_t dot = file.rfind('.');
  std::string stem = file.substr(0, dot), ext = file.substr(dot);
  stem.resize(8, '0');
  std::string candidate;
  do {
    std::string number = std::to_string(NextBatchNumber());
    std::string numbered = stem;
    if (number.size() >= numbered.size())
      numbered = number;
    else
      numbered.replace(numbered.size() - number.size(), number.size(), number);
    candidate = folder + numbered + ext;
  } while (FileExists(candidate));
  if (candidate.size() + 1 > Capacity)
    throw EInvalidOperation("The new name \"" + candidate + "\" does not fit its buffer");
  std::memcpy(Name, candidate.c_str(), candidate.size() + 1);
  return true;
}

void SetBatchFileStartNumberTo(int32_t Number) {
  gBatchNumber = Number < 0 ? 0 : Number;
}

int32_t GetBatchFileStartNumber() {
  return gBatchNumber;
}

std::string Compilation_Date() {
  int32_t stamp = FileAge(ParamStr0());
  TDateTime date;
  try {
    date = FileDateToDateTime(stamp);
  } catch (const EConvertError &) {
    return {};
  }
  return DateToStr(date);
}

bool QueryIfNotDiskSpace(const std::string &Path, int64_t BytesNeeded) {
  if (Path.empty()) return false;
  char letter = static_cast<char>(std::toupper(static_cast<unsigned char>(Path[0])));
  bool drive = letter >= 'A' && letter <= 'Z';
  int64_t free = drive ? DiskFree(static_cast<uint8_t>(letter - 'A' + 1)) : 0x7FFFFFFF;
  if (free >= BytesNeeded) return true;
  int64_t kilobytes = std::min<int64_t>(free / 1024, INT32_MAX);
  std::string text = "Only " + IntToDecStr(static_cast<int32_t>(kilobytes)) + "K space on " +
                     letter + DriveDelim + "\nProceed?";
  return MyPMsgDlg(text, "Confirmation", MB_OKCANCEL | MB_ICONQUESTION) == IDOK;
}

bool OKToOverwrite(const std::string &Name) {
  if (!FileExists(Name)) return true;
  if (MyPMsgDlg("Overwrite " + Name + "?", "Confirmation", MB_OKCANCEL | MB_ICONQUESTION) != IDOK)
    return false;
  std::string backup = ChangeFileExt(Name, ".bak");
  DeleteFile(backup);
  MoveFileA(Name.c_str(), backup.c_str());
  return true;
}

} // namespace kestrel
