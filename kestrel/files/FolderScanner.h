// The folder scanner: walks a text collection, finds the plain files that
// match its file masks and the members of ZIP archives that match its member
// masks, and walks sub-folders by its folder masks.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>

#include <kestrel/files/FolderListings.h>
#include <kestrel/files/PeruseDirRecords.h>
#include <kestrel/frame/host/FindFile.h>
#include <kestrel/frame/host/TObject.h>
#include <kestrel/frame/zip/VCLUnZip.h>

namespace kestrel {

class TMyMask;

// Slots of each mask array.
inline constexpr int32_t kPeruseMaskSlots = 10;

// Walks a folder by its masks and reports plain files, ZIP members and
// sub-folders through its events, or puts them into a list. The events run
// inside the walk on the caller's thread; clearing fCarryOn stops it. Owns
// its masks: release it with Free (or delete).
class TPeruseDir : public TObject {
public:
  // Each mask string holds up to 10 masks separated by ";"; an empty string
  // or a trailing ";" gives an empty mask. A mask that TMask refuses raises.
  TPeruseDir(const std::string &fileMasks, const std::string &dirMasks, const std::string &zipMasks,
             bool lookInZips, bool zipsAsFiles, int32_t attributes);
  ~TPeruseDir() override;
  // Frees the masks, then the object.
  void Free();

  // Reports archive members, then plain files, through the events; false
  // when an event is missing or the scan failed.
  bool HandleAllFilesIn(const std::string &folder);
  // The same two passes into a new list owned by the caller; null on failure.
  TMySearchRecList *ListofAllFilesIn(const std::string &folder);
  // Lists the members of one archive that match the member masks.
  void AddAZip(TMySearchRecList *list, const std::string &folder, const std::string &zipName);
  // Reports the sub-folders that the folder masks take, mask by mask.
  void ProcessAllSubDirectories(const std::string &folder);
  void fCountAnySubDirectories(const std::string &pathWithMask, int32_t maskNumber);
  bool fIsAZipfile(const std::string &name) const;
  // Number (from 1) of the first member mask that takes the bare name; 0 for none.
  int32_t fMatchesfZipMask(const std::string &name) const;

  std::string fFileMaskText;
  std::string fZipExtension;
  // Mask number n sits in slot n - 1.
  TMyMask *fZipMask[kPeruseMaskSlots] = {};
  TMyMask *fDirMask[kPeruseMaskSlots] = {};
  TMyMask *fFileMask[kPeruseMaskSlots] = {};
  int32_t fZipMembersFound = 0;
  int32_t fZipsRead = 0;
  int32_t fDirsFound = 0;
  int32_t fAttributes = 0;
  int32_t fZipMaskCount = 0;
  int32_t fDirMaskCount = 0;
  int32_t fFileMaskCount = 0;
  bool fZipsAsFiles = false;
  bool fCarryOn = true;
  bool fLookInZips = false;
  // The folder walk enters links to folders (false: it notes and passes
  // them). Whether or not, no folder is walked twice by one mask's walk:
  // folders are known by device and inode, so a loop ends where it closes.
  bool fFollowLinks = false;

  TZipStartReadingEvent OnZipStartReading;
  TListingFileEvent OnListingZipFile;
  TListingFileEvent OnListingFile;
  TFoundDirEvent OnFoundDir;
  TZipReadingEvent OnZipReading;
  TZipDoneReadingEvent OnZipDoneReading;
  // Handed to every archive reader the scanner creates (it reports each
  // directory entry read); the scanner itself never calls it.
  TUZEntryReadEvent OnZipComponentEvent;
  // What the scanner passes by (special files, links, loops) or can't read
  // (folders, archives); each folder that fails is reported once.
  TSkippedEvent OnSkipped;

private:
  // Sink of the two passes: the events, or a list.
  struct Sink;
  void ScanFolder(const std::string &folder, Sink &sink);
  void ListFile(Sink &sink, const TSearchRec &found);
  std::shared_ptr<TFolderEntries> FolderReading(const std::string &folder, int32_t &code);
  void AddAZipTo(Sink &sink, const std::string &folder, const std::string &zipName);
  std::string ZipSearchPattern() const;
  void FreeMasks();
  void Skipped(const std::string &name, TSkipReason why, const std::string &detail);
  void NoteUnreadableFolder(const std::string &folder, int32_t code, int32_t error);
  bool MayEnter(const std::string &full, const TSearchRec &found);

  std::set<TFileIdentity> FWalked; // folders of the current walk
  int32_t FWalkDepth = 0;
  std::set<std::string> FUnreadable;            // folders reported so far
  std::shared_ptr<TFolderEntries> FLastReading; // the folder read last, for the walk
};

} // namespace kestrel
