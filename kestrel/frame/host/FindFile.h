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
// (device, pipe, socket). Links are followed; a broken link is not listed.
// As on the host, a search returns plain files, read-only and archive ones
// included, and those hidden, system and folder entries whose bits are in the
// attribute argument.
//
// Matches come in the order of their names' bytes, so every run gives the same
// order. The folder is read once, at FindFirst.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <kestrel/frame/host/Types.h>

namespace kestrel {

inline constexpr int32_t faReadOnly = 0x01;
inline constexpr int32_t faHidden = 0x02;
inline constexpr int32_t faSysFile = 0x04;
inline constexpr int32_t faVolumeID = 0x08;
inline constexpr int32_t faDirectory = 0x10;
inline constexpr int32_t faArchive = 0x20;
inline constexpr int32_t faAnyFile = 0x3F;

// Result codes of the search.
inline constexpr int32_t ERROR_FILE_NOT_FOUND = 2;
inline constexpr int32_t ERROR_PATH_NOT_FOUND = 3;
inline constexpr int32_t ERROR_NO_MORE_FILES = 18;

struct TSearchState; // the folder's matching entries, read at FindFirst

// One match of a folder search, filled by FindFirst and FindNext.
struct TSearchRec {
  int32_t Time = 0; // date stamp, see DateUtils.h
  int64_t Size = 0;
  int32_t Attr = 0;
  std::string Name; // no folder
  int32_t ExcludeAttr = 0;
  std::shared_ptr<TSearchState> FindHandle; // released by FindClose or with the record
};

// 0 and the first match in F, or an error code (no folder: 3; no match: 2).
int32_t FindFirst(const std::string &path, int32_t attr, TSearchRec &F);
// 0 and the next match in F, or ERROR_NO_MORE_FILES.
int32_t FindNext(TSearchRec &F);
void FindClose(TSearchRec &F);

// The file-name rule of the search, for one name and one mask.
bool MatchesFileMask(std::string_view name, std::string_view mask);

// The attribute bits of a file or folder, -1 when it isn't there.
int32_t FileGetAttr(const std::string &fileName);
// The file's date stamp, -1 when there is no such file.
int32_t FileAge(const std::string &fileName);
// Sets a file's date stamp; 0 on success, else an error number.
int32_t FileSetDate(const std::string &fileName, int32_t age);

// The full form of a file name: relative names are taken from the current
// folder, "." and ".." parts are resolved; a trailing delimiter stays.
std::string ExpandFileName(const std::string &fileName);

} // namespace kestrel
