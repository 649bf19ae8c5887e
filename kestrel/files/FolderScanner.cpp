// Unit PeruseDir: the folder scanner.
#include <kestrel/files/FolderScanner.h>

#include <memory>

#include <kestrel/frame/host/Host.h>
#include <kestrel/frame/myKpSmall.h>
#include <kestrel/search/myMasks.h>

namespace kestrel {

namespace {

constexpr int32_t kDirectoryAttr = 0x10;
constexpr int32_t kVolumeAttr = 0x08;
constexpr int32_t kHiddenAttr = 0x02;

// Closes a directory search on every way out.
class SearchScope {
public:
  SearchScope(const std::string &path, int32_t attr) { FFound = FindFirst(path, attr, FRec) == 0; }
  ~SearchScope() { FindClose(FRec); }
  SearchScope(const SearchScope &) = delete;
  SearchScope &operator=(const SearchScope &) = delete;
  bool Found() const { return FFound; }
  void Next() { FFound = FindNext(FRec) == 0; }
  const TSearchRec &Rec() const { return FRec; }

private:
  TSearchRec FRec{};
  bool FFound = false;
};

bool IsFolderOrVolume(const TSearchRec &rec) {
  return (rec.Attr & (kDirectoryAttr | kVolumeAttr)) != 0;
}

// Splits a mask string at ";": every item, and what is left after the last
// ";" even when that is empty.
template <typename Fn> void ForEachMaskText(const std::string &masks, Fn &&fn) {
  size_t start = 0;
  for (;;) {
    const size_t semi = masks.find(';', start);
    if (semi == std::string::npos) {
      fn(masks.substr(start));
      return;
    }
    fn(masks.substr(start, semi - start));
    start = semi + 1;
  }
}

int32_t CompileMasks(const std::string &masks, TMyMask *(&slots)[kPeruseMaskSlots]) {
  int32_t count = 0;
  ForEachMaskText(masks, [&](const std::string &text) {
    if (count == kPeruseMaskSlots)
      throw EMaskException(Format("At most %d masks in \"%s\"", kPeruseMaskSlots, masks.c_str()));
    slots[count++] = new TMyMask(text);
  });
  return count;
}

} // namespace

// Where the two passes put what they find.
struct TPeruseDir::Sink {
  TMySearchRecList *list = nullptr; // null: report through the events
  bool guardDates = false;
};

TPeruseDir::TPeruseDir(const std::string &fileMasks, const std::string &dirMasks,
                       const std::string &zipMasks, bool lookInZips, bool zipsAsFiles,
                       int32_t attributes)
    : fFileMaskText(fileMasks), fAttributes(attributes), fCarryOn(true) {
  try {
    fFileMaskCount = CompileMasks(fileMasks, fFileMask);
    fDirMaskCount = CompileMasks(dirMasks, fDirMask);
    fZipMaskCount = CompileMasks(zipMasks, fZipMask);
  } catch (...) {
    FreeMasks();
    throw;
  }
  fZipExtension = ".zip";
  fZipsAsFiles = zipsAsFiles;
  fLookInZips = lookInZips;
}

TPeruseDir::~TPeruseDir() {
  FreeMasks();
}

void TPeruseDir::Free() {
  delete this;
}

void TPeruseDir::FreeMasks() {
  for (auto *slots : {fZipMask, fDirMask, fFileMask})
    for (int32_t i = 0; i < kPeruseMaskSlots; ++i) {
      delete slots[i];
      slots[i] = nullptr;
    }
  fZipMaskCount = fDirMaskCount = fFileMaskCount = 0;
}

bool TPeruseDir::fIsAZipfile(const std::string &name) const {
  return name.size() > 4 && AnsiLowerCase(name.substr(name.size() - 4)) == fZipExtension;
}

int32_t TPeruseDir::fMatchesfZipMask(const std::string &name) const {
  const std::string bare = ExtractFileName(name);
  for (int32_t i = 0; i < fZipMaskCount; ++i)
    if (fZipMask[i]->Matches(bare)) return i + 1;
  return 0;
}

// The stem before the first "." of the file masks, or "*", with ".zip".
std::string TPeruseDir::ZipSearchPattern() const {
  const size_t dot = fFileMaskText.find('.');
  return (dot == std::string::npos ? std::string("*") : fFileMaskText.substr(0, dot)) +
         fZipExtension;
}

void TPeruseDir::ScanFolder(const std::string &folder, Sink &sink) {
  const std::string dir = IncludeTrailingPathDelimiter(folder);
  if (fLookInZips) {
    SearchScope zips(dir + ZipSearchPattern(), fAttributes);
    while (zips.Found()) {
      if (!IsFolderOrVolume(zips.Rec())) {
        AddAZipTo(sink, dir, zips.Rec().Name);
        MyYieldProcess();
      }
      zips.Next();
      if (!fCarryOn) break;
    }
  }
  ForEachMaskText(fFileMaskText, [&](const std::string &mask) {
    SearchScope files(dir + mask, fAttributes);
    while (files.Found()) {
      const TSearchRec &found = files.Rec();
      if (!IsFolderOrVolume(found)) {
        if (fZipsAsFiles || !fIsAZipfile(found.Name)) {
          TMySearchRec rec;
          if (sink.guardDates) {
            // A missing or bad stamp lists as 1 January 1970.
            rec.Date = EncodeDateDay(1970, 1);
            if (found.Time != 0) try {
                rec.Date = FileDateToDateTime(found.Time);
              } catch (const Exception &) {
              }
          } else {
            rec.Date = FileDateToDateTime(found.Time);
          }
          rec.Size = static_cast<int32_t>(found.Size);
          rec.Attr = found.Attr;
          rec.ZipNumber = 0;
          rec.Name = found.Name;
          if (sink.list != nullptr)
            sink.list->AddRec(rec);
          else
            OnListingFile(rec);
        }
        MyYieldProcess();
      }
      files.Next();
      if (!fCarryOn) break;
    }
  });
}

bool TPeruseDir::HandleAllFilesIn(const std::string &folder) {
  if (!OnListingZipFile || !OnListingFile || !OnZipDoneReading) return false;
  Sink sink;
  try {
    ScanFolder(folder, sink);
  } catch (...) {
    return false;
  }
  return true;
}

TMySearchRecList *TPeruseDir::ListofAllFilesIn(const std::string &folder) {
  auto list = std::make_unique<TMySearchRecList>();
  Sink sink{list.get(), true};
  try {
    ScanFolder(folder, sink);
  } catch (...) {
    return nullptr;
  }
  return list.release();
}

void TPeruseDir::AddAZip(TMySearchRecList *list, const std::string &folder,
                         const std::string &zipName) {
  Sink sink{list, false};
  AddAZipTo(sink, folder, zipName);
}

void TPeruseDir::AddAZipTo(Sink &sink, const std::string &folder, const std::string &zipName) {
  auto zip = std::make_unique<TVCLUnZip>(nullptr);
  zip->OnEntryRead = OnZipComponentEvent;
  zip->SetZipName(folder + zipName);
  // Listing unpacks nothing; should a reader be used to unpack, it keeps
  // existing files.
  zip->OverwriteMode = TUZOverwriteMode::Never;
  if (OnZipStartReading) OnZipStartReading(zip->GetZipName());
  try {
    zip->ReadZip();
    ++fZipsRead;
    const int32_t count = zip->GetCount();
    for (int32_t i = 0; i < count; ++i) {
      MyYieldProcess();
      if (OnZipReading) OnZipReading(i, count);
      const std::string name = zip->GetFilename(i);
      if (name.empty() || fMatchesfZipMask(name) == 0) continue;
      // A member past the numbers a record can hold could not be opened by
      // its number again, so it is left out.
      if (i + 1 > INT16_MAX) continue;
      ++fZipMembersFound;
      TMySearchRec rec;
      rec.Name = folder + zipName + PathDelim + zip->GetPathname(i) + name;
      rec.Date = zip->GetDateTime(i);
      rec.Size = static_cast<int32_t>(zip->GetUnCompressedSize(i));
      rec.Attr = zip->GetExternalFileAttributes(i);
      rec.ZipNumber = static_cast<int16_t>(i + 1);
      if (sink.list != nullptr) sink.list->AddRec(rec);
      if (OnListingZipFile) OnListingZipFile(rec);
    }
    if (OnZipDoneReading) OnZipDoneReading(fZipsRead);
  } catch (...) {
    // A damaged archive, or an event that failed inside it: skip the archive.
  }
}

void TPeruseDir::ProcessAllSubDirectories(const std::string &folder) {
  const std::string dir = IncludeTrailingPathDelimiter(folder);
  for (int32_t n = 1; n <= fDirMaskCount; ++n)
    fCountAnySubDirectories(dir + fDirMask[n - 1]->MaskText, n);
}

void TPeruseDir::fCountAnySubDirectories(const std::string &pathWithMask, int32_t maskNumber) {
  if (maskNumber < 1 || maskNumber > fDirMaskCount) return;
  const TMyMask *mask = fDirMask[maskNumber - 1];
  const std::string parent = ExtractFilePath(pathWithMask);
  SearchScope search(pathWithMask, kDirectoryAttr);
  while (search.Found() && fCarryOn) {
    MyYieldProcess();
    const TSearchRec &found = search.Rec();
    // A folder without a dot gets one, so that a mask with a dot can take it.
    const std::string testName =
        found.Name.find('.') == std::string::npos ? found.Name + "." : found.Name;
    const bool counts = (found.Attr & kDirectoryAttr) != 0 && !found.Name.empty() &&
                        found.Name[0] != '.' && (found.Attr & (kVolumeAttr | kHiddenAttr)) == 0 &&
                        mask->Matches(testName);
    if (counts) {
      ++fDirsFound;
      const std::string full = IncludeTrailingPathDelimiter(parent) + found.Name;
      if (OnFoundDir) OnFoundDir(full);
      fCountAnySubDirectories(IncludeTrailingPathDelimiter(full) + mask->MaskText, maskNumber);
    }
    search.Next();
  }
}

} // namespace kestrel
