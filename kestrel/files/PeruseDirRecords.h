// One found file or archive member, its stored head, and the events through
// which the folder scanner reports what it finds.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>

#include <kestrel/frame/host/Types.h>

namespace kestrel {

// A plain file (ZipNumber 0, Name without folder) or an archive member
// (ZipNumber from 1, Name the full name through the archive).
struct TMySearchRec {
  TDateTime Date = 0;
  int32_t Size = 0;
  int32_t Attr = 0;
  int16_t ZipNumber = 0;
  std::string Name;
  // Not stored: the size in full, which the 32 bits of Size (as stored) hold
  // only below 2 GiB. The scanner sets both; a listing read back has Size.
  int64_t FullSize = 0;
};

// The fixed part of a record in a stored listing; the name follows it as a
// short string.
#pragma pack(push, 1)
struct TMySearchRecStoredHead {
  double Date;
  int32_t Size;
  int32_t Attr;
  int16_t ZipNumber;
  uint16_t Reserved; // of no meaning; written as 0
};
#pragma pack(pop)
static_assert(sizeof(TMySearchRecStoredHead) == 20);
static_assert(offsetof(TMySearchRecStoredHead, Size) == 8);
static_assert(offsetof(TMySearchRecStoredHead, Attr) == 12);
static_assert(offsetof(TMySearchRecStoredHead, ZipNumber) == 16);
static_assert(offsetof(TMySearchRecStoredHead, Reserved) == 18);
static_assert(std::endian::native == std::endian::little, "stored listings are little-endian");

// The scanner's events.
using TZipStartReadingEvent = OfObject<void(const std::string &zipfilename)>;
using TListingFileEvent = OfObject<void(TMySearchRec &SR)>;
using TFoundDirEvent = OfObject<void(const std::string &DirName)>;
using TZipReadingEvent = OfObject<void(int32_t num, int32_t out_of)>;
using TZipDoneReadingEvent = OfObject<void(int32_t zips_handled)>;
// What the scanner passed by, and why: notes (a special file, a link to a
// folder not followed, a folder already walked, members past the numbers a
// record holds) and failures (a folder or an archive that can't be read).
enum class TSkipReason : uint8_t {
  NotAFile,
  LinkNotFollowed,
  FolderWalked,
  MembersLeftOut,
  UnreadableFolder,
  UnreadableArchive
};
// name: the full name of what was passed by; detail: the system's reason or
// what the thing is ("a FIFO (named pipe)").
using TSkippedEvent =
    OfObject<void(const std::string &name, TSkipReason why, const std::string &detail)>;
// Declared for the tools; the library calls none of these.
using TFoundFileEvent = OfObject<void(const std::string &FileName, TMySearchRec &SR)>;
using TAllFilesProgressEvent = OfObject<void(int32_t percent)>;
using TMyDirProgressEvent = OfObject<void(int32_t dirnum)>;

} // namespace kestrel
