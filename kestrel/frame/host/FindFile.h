// The host's folder search (FindFirst, FindNext, FindClose), file attributes
// and the file functions that go with them.
//
// A search path is a folder part and a file mask: "corpus/*.txt". The mask
// follows the host system's file-name rules:
//   *      any run of characters, dots included; "*" and "*.*" match every name
//   ?      exactly one character
//   .*     at the end also matches a name without a dot ("a*.*" finds "abc")
//   .      at the end matches a name without a dot ("*." finds "README")
//   other  the character itself ("[" too); letters compare without case
// An empty mask matches nothing.
//
// Attributes come from the file: faDirectory for a folder, faHidden for a
// name that begins with "." (but "." and ".."), faReadOnly when the owner may
// not write, faArchive for a plain file and faSysFile for any other kind
// (device, pipe, socket). A symbolic link has the attributes of what it leads
// to and faSymLink besides, as a link on the host system carries its reparse
// bit: a walk that must not loop looks for that bit before it enters a folder.
// A broken link is a system file (Kind BrokenLink). As on the host, a search
// returns plain files, read-only and archive ones included, and those hidden,
// system and folder entries whose bits are in the attribute argument.
//
// Matches come in the order of their names' bytes, so every run gives the same
// order. The folder is read once, at FindFirst, and an entry is looked at
// (stat) only when the search may return it: the kind the folder listing
// gives leaves folders and special files out without one. When FindFirst
// fails, the system's reason stays in GetLastOSError (ENOENT when nothing
// matched).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <kestrel/frame/host/Types.h>

namespace kestrel {

inline constexpr int32_t faReadOnly = 0x01;
inline constexpr int32_t faHidden = 0x02;
inline constexpr int32_t faSysFile = 0x04;
inline constexpr int32_t faVolumeID = 0x08;
inline constexpr int32_t faDirectory = 0x10;
inline constexpr int32_t faArchive = 0x20;
inline constexpr int32_t faAnyFile = 0x3F;
// Reported, never searched for: the entry is a symbolic link.
inline constexpr int32_t faSymLink = 0x400;

// Result codes of the search.
inline constexpr int32_t ERROR_FILE_NOT_FOUND = 2;
inline constexpr int32_t ERROR_PATH_NOT_FOUND = 3;
inline constexpr int32_t ERROR_ACCESS_DENIED = 5;
inline constexpr int32_t ERROR_FILENAME_EXCED_RANGE = 206;
inline constexpr int32_t ERROR_NO_MORE_FILES = 18;

struct TSearchState; // the folder's matching entries, read at FindFirst

// What a name stands for, links followed.
enum class TFileKind : uint8_t {
  Regular,
  Folder,
  Fifo,
  Socket,
  CharDevice,
  BlockDevice,
  BrokenLink,
  Other
};
// "a FIFO (named pipe)", "a socket", "a device", "a broken link"...
const char *FileKindText(TFileKind kind);

// Device and inode: one file or folder however it is reached.
struct TFileIdentity {
  uint64_t Device = 0, Inode = 0;
  auto operator<=>(const TFileIdentity &) const = default;
};

// One match of a folder search, filled by FindFirst and FindNext.
struct TSearchRec {
  int32_t Time = 0; // date stamp, see DateUtils.h
  int64_t Size = 0;
  int32_t Attr = 0;
  std::string Name; // no folder
  int32_t ExcludeAttr = 0;
  std::shared_ptr<TSearchState> FindHandle; // released by FindClose or with the record
  TFileKind Kind = TFileKind::Regular;      // of the link's target for a link
  TFileIdentity Identity;                   // likewise
};

// 0 and the first match in F, or an error code (no folder: 3; no match: 2;
// a folder that may not be read: 5; a name too long: 206).
int32_t FindFirst(const std::string &path, int32_t attr, TSearchRec &F);
// 0 and the next match in F, or ERROR_NO_MORE_FILES.
int32_t FindNext(TSearchRec &F);
void FindClose(TSearchRec &F);

// The file-name rule of the search, for one name and one mask.
bool MatchesFileMask(std::string_view name, std::string_view mask);

// A file mask prepared once for many names, with the rule of MatchesFileMask.
class TFileMask {
public:
  explicit TFileMask(std::string_view mask);
  ~TFileMask();
  TFileMask(TFileMask &&) noexcept;
  TFileMask &operator=(TFileMask &&) noexcept;
  bool Matches(std::string_view name) const;

private:
  struct Compiled;
  std::unique_ptr<Compiled> FCompiled; // null: every name, or none
  bool FAll = false;
};

// One reading of a folder, for a walk that looks at the same folder more than
// once: its entries in name order, each with its kind when the listing gives
// it, so that entries a search leaves out by kind cost no further system
// call. FindFirst reads its folder this way.
class TFolderEntries {
public:
  struct Entry {
    std::string Name;
    uint8_t Type; // the listing's d_type; DT_UNKNOWN when it says nothing
  };

  TFolderEntries() = default;
  ~TFolderEntries();
  TFolderEntries(const TFolderEntries &) = delete;
  TFolderEntries &operator=(const TFolderEntries &) = delete;

  // Reads the folder ("" is the current one): 0, or FindFirst's code for a
  // folder that can't be read (3, 5, 206) with the reason in errno.
  int32_t Read(const std::string &folder);
  const std::string &Folder() const { return FFolderName; }
  // Lets the folder go (its descriptor too); the entries stay, Find finds no more.
  void Close();
  const std::vector<Entry> &Entries() const { return FEntries; }

  // The record FindFirst(folder + mask, attr) gives for the entry, looked at
  // only when the mask takes it and its kind and name don't already leave it
  // out; false when it is left out or has gone meanwhile.
  bool Find(const Entry &entry, const TFileMask &mask, int32_t attr, TSearchRec &r) const;
  // The listing shows the entry to be something else than a folder or a link.
  static bool SurelyNoFolder(const Entry &entry);

private:
  std::string FFolderName;
  std::vector<Entry> FEntries;
  void *FFolder = nullptr; // the open listing (DIR), whose descriptor looks at entries
};

// The attribute bits of a file or folder, -1 when it isn't there.
int32_t FileGetAttr(const std::string &fileName);
// The file's date stamp, -1 when there is no such file.
int32_t FileAge(const std::string &fileName);
// The kind and identity of what a name stands for, links followed; false
// (with the reason in GetLastOSError) when it can't be looked at.
bool FileKindOf(const std::string &fileName, TFileKind &kind, TFileIdentity &identity);
// Sets a file's date stamp; 0 on success, else an error number.
int32_t FileSetDate(const std::string &fileName, int32_t age);

// The full form of a file name: relative names are taken from the current
// folder, "." and ".." parts are resolved; a trailing delimiter stays.
std::string ExpandFileName(const std::string &fileName);

} // namespace kestrel
