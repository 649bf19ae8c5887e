// Unit PeruseDir: the folder scanner.
#include <kestrel/files/FolderScanner.h>

#include <memory>
#include <vector>

#include <kestrel/frame/host/Host.h>
#include <kestrel/frame/myKpSmall.h>
#include <kestrel/search/myMasks.h>

namespace kestrel {

namespace {

constexpr int32_t kDirectoryAttr = 0x10;
constexpr int32_t kVolumeAttr = 0x08;
constexpr int32_t kHiddenAttr = 0x02;

bool IsFolderOrVolume(const TSearchRec &rec) {
  return (rec.Attr & (kDirectoryAttr | kVolumeAttr)) != 0;
}

// A FIFO, socket, device or broken link: nothing to read as a text, and a
// FIFO or a device could block a reader or never end.
bool IsSpecial(const TSearchRec &rec) {
  return !IsFolderOrVolume(rec) && rec.Kind != TFileKind::Regular;
}

// Keeps the depth of a walk on every way out.
struct DepthScope {
  int32_t &depth;
  explicit DepthScope(int32_t &d) : depth(d) { ++depth; }
  ~DepthScope() { --depth; }
};

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

void TPeruseDir::Skipped(const std::string &name, TSkipReason why, const std::string &detail) {
  if (OnSkipped) OnSkipped(name, why, detail);
}

// A folder whose search failed for another reason than finding nothing.
void TPeruseDir::NoteUnreadableFolder(const std::string &folder, int32_t code, int32_t error) {
  if (code == 0 || code == ERROR_FILE_NOT_FOUND) return;
  const std::string name = ExcludeTrailingPathDelimiter(folder.empty() ? "." : folder);
  if (FUnreadable.insert(name).second)
    Skipped(name, TSkipReason::UnreadableFolder, SysErrorMessage(error));
}

// One reading of the folder serves the archive pass and every file mask; it
// is kept for a walk that comes to the same folder next (FolderReading).
void TPeruseDir::ScanFolder(const std::string &folder, Sink &sink) {
  const std::string dir = IncludeTrailingPathDelimiter(folder);
  auto entries = std::make_shared<TFolderEntries>();
  const int32_t code = entries->Read(dir);
  if (code != 0) {
    NoteUnreadableFolder(dir, code, errno);
    return;
  }
  FLastReading = entries;
  // Folders take no part here: the listing's kinds pass them by unlooked-at.
  const int32_t attr = fAttributes & ~faDirectory;
  if (fLookInZips) {
    const TFileMask zipMask(ZipSearchPattern());
    for (const TFolderEntries::Entry &e : entries->Entries()) {
      TSearchRec found;
      if (!entries->Find(e, zipMask, attr, found) || IsFolderOrVolume(found)) continue;
      if (IsSpecial(found))
        Skipped(dir + found.Name, TSkipReason::NotAFile, FileKindText(found.Kind));
      else
        AddAZipTo(sink, dir, found.Name);
      MyYieldProcess();
      if (!fCarryOn) break;
    }
  }
  ForEachMaskText(fFileMaskText, [&](const std::string &mask) {
    const TFileMask fileMask(mask);
    for (const TFolderEntries::Entry &e : entries->Entries()) {
      TSearchRec found;
      if (!entries->Find(e, fileMask, attr, found) || IsFolderOrVolume(found)) continue;
      if (!fZipsAsFiles && fIsAZipfile(found.Name)) {
        // an archive: its members were the zip pass's
      } else if (IsSpecial(found)) {
        Skipped(dir + found.Name, TSkipReason::NotAFile, FileKindText(found.Kind));
      } else {
        ListFile(sink, found);
      }
      MyYieldProcess();
      if (!fCarryOn) break;
    }
  });
}

void TPeruseDir::ListFile(Sink &sink, const TSearchRec &found) {
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
  rec.Size = static_cast<int32_t>(found.Size); // the low 32 bits, as stored
  rec.FullSize = found.Size;
  rec.Attr = found.Attr;
  rec.ZipNumber = 0;
  rec.Name = found.Name;
  if (sink.list != nullptr)
    sink.list->AddRec(rec);
  else
    OnListingFile(rec);
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
    int32_t leftOut = 0;
    for (int32_t i = 0; i < count; ++i) {
      MyYieldProcess();
      if (OnZipReading) OnZipReading(i, count);
      const std::string name = zip->GetFilename(i);
      if (name.empty() || fMatchesfZipMask(name) == 0) continue;
      // A member past the numbers a record can hold could not be opened by
      // its number again, so it is left out.
      if (i + 1 > INT16_MAX) {
        ++leftOut;
        continue;
      }
      ++fZipMembersFound;
      TMySearchRec rec;
      rec.Name = folder + zipName + PathDelim + zip->GetPathname(i) + name;
      rec.Date = zip->GetDateTime(i);
      rec.FullSize = zip->GetUnCompressedSize(i);
      rec.Size = static_cast<int32_t>(rec.FullSize);
      rec.Attr = zip->GetExternalFileAttributes(i);
      rec.ZipNumber = static_cast<int16_t>(i + 1);
      if (sink.list != nullptr) sink.list->AddRec(rec);
      if (OnListingZipFile) OnListingZipFile(rec);
    }
    if (leftOut > 0)
      Skipped(folder + zipName, TSkipReason::MembersLeftOut,
              std::to_string(leftOut) + " members past number " + std::to_string(INT16_MAX));
    if (OnZipDoneReading) OnZipDoneReading(fZipsRead);
  } catch (const EZipError &e) {
    // A damaged archive, or an event that failed inside it: skip the archive.
    Skipped(folder + zipName, TSkipReason::UnreadableArchive, e.Reason);
  } catch (const std::exception &e) {
    Skipped(folder + zipName, TSkipReason::UnreadableArchive, e.what());
  } catch (...) {
    Skipped(folder + zipName, TSkipReason::UnreadableArchive, "unknown failure");
  }
}

void TPeruseDir::ProcessAllSubDirectories(const std::string &folder) {
  const std::string dir = IncludeTrailingPathDelimiter(folder);
  for (int32_t n = 1; n <= fDirMaskCount; ++n)
    fCountAnySubDirectories(dir + fDirMask[n - 1]->MaskText, n);
}

// A folder that the walk may enter: no link unless links are followed, and
// none walked before (a loop, or a second way to the same folder).
bool TPeruseDir::MayEnter(const std::string &full, const TSearchRec &found) {
  if ((found.Attr & faSymLink) && !fFollowLinks) {
    Skipped(full, TSkipReason::LinkNotFollowed, "a link to a folder");
    return false;
  }
  if (!FWalked.insert(found.Identity).second) {
    Skipped(full, TSkipReason::FolderWalked, "a folder walked already (a link loop?)");
    return false;
  }
  return true;
}

// The reading of a folder that the walk is about to enter: the one made for
// it while OnFoundDir ran (a caller that lists each folder it is told of), or
// a new one. Either way the folder is read once per step of the walk.
std::shared_ptr<TFolderEntries> TPeruseDir::FolderReading(const std::string &folder,
                                                          int32_t &code) {
  std::shared_ptr<TFolderEntries> entries = std::move(FLastReading);
  FLastReading.reset();
  code = 0;
  if (entries && entries->Folder() == IncludeTrailingPathDelimiter(folder)) return entries;
  entries = std::make_shared<TFolderEntries>();
  code = entries->Read(folder);
  return entries;
}

void TPeruseDir::fCountAnySubDirectories(const std::string &pathWithMask, int32_t maskNumber) {
  if (maskNumber < 1 || maskNumber > fDirMaskCount) return;
  const TMyMask *mask = fDirMask[maskNumber - 1];
  const std::string parent = ExtractFilePath(pathWithMask);
  if (FWalkDepth == 0) { // a new walk: its start is walked, and read afresh
    FWalked.clear();
    FLastReading.reset();
    TFileKind kind;
    TFileIdentity start;
    if (FileKindOf(parent.empty() ? std::string(".") : parent, kind, start)) FWalked.insert(start);
  }
  DepthScope depth(FWalkDepth);
  int32_t code = 0;
  const std::shared_ptr<TFolderEntries> entries = FolderReading(parent, code);
  if (code != 0) {
    NoteUnreadableFolder(parent, code, errno);
    return;
  }
  // Only folders count, none with a leading dot: what the listing already
  // shows to be no folder is passed by without a look. The folders are looked
  // at before the walk goes down, so that it holds no folder open below: a
  // deep tree must not run out of descriptors.
  const TFileMask fileMask(ExtractFileName(pathWithMask));
  std::vector<TSearchRec> candidates;
  for (const TFolderEntries::Entry &e : entries->Entries()) {
    TSearchRec found;
    if (e.Name.empty() || e.Name[0] == '.' || TFolderEntries::SurelyNoFolder(e)) continue;
    if (entries->Find(e, fileMask, kDirectoryAttr, found)) candidates.push_back(std::move(found));
  }
  entries->Close();
  for (const TSearchRec &found : candidates) {
    if (!fCarryOn) break;
    MyYieldProcess();
    // A folder without a dot gets one, so that a mask with a dot can take it.
    const std::string testName =
        found.Name.find('.') == std::string::npos ? found.Name + "." : found.Name;
    const bool counts = (found.Attr & kDirectoryAttr) != 0 &&
                        (found.Attr & (kVolumeAttr | kHiddenAttr)) == 0 && mask->Matches(testName);
    const std::string full = IncludeTrailingPathDelimiter(parent) + found.Name;
    if (counts && MayEnter(full, found)) {
      ++fDirsFound;
      FLastReading.reset(); // what OnFoundDir reads next may serve the step below
      if (OnFoundDir) OnFoundDir(full);
      fCountAnySubDirectories(IncludeTrailingPathDelimiter(full) + mask->MaskText, maskNumber);
    }
  }
}

} // namespace kestrel
