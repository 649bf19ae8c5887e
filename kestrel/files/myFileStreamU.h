// Unit myFileStreamU: the forms of variable-length fields on streams, the
// file stream of the stored lists, and the routine that brings one ZIP member
// out to a temporary file.
//
// Forms (little-endian counts, no terminator, no padding):
//   long byte string, C string    count n (4 bytes), n bytes
//   short string                  count n (1 byte), n bytes
//   wide string, wide C string    count n in UTF-16 units (4 bytes), 2n bytes
//
// Readers never trust a count beyond the stream: a negative count reads as 0,
// and a count larger than what is left yields only the bytes that are there
// (a whole number of units for wide text), so nothing is allocated that the
// stream can't fill. A count cut short by the end of the stream reads as 0.
#pragma once

#include <cstdint>
#include <string>

#include <kestrel/frame/host/TFileStream.h>
#include <kestrel/frame/host/TStream.h>
#include <kestrel/frame/zip/VCLUnZip.h>

namespace kestrel {

// A new terminated string (StrAlloc, or StrAllocW when wide), or null for a
// count of 0 or less. The caller frees it with StrDispose / StrDisposeW.
void *ReadUnknownLengthPointer(TStream *Stream, bool wide);
// Writes the string up to its terminator; a null P writes a count of 0 and
// gives false.
bool WriteUnknownLengthPointer(TStream *Stream, const void *P, bool wide);
std::string ReadUnknownLengthString(TStream *Stream);
bool WriteUnknownLengthString(TStream *Stream, const std::string &S);
std::string ReadShortString(TStream *Stream);
// Writes the low 8 bits of the length as the count, then that many bytes.
bool WriteShortString(TStream *Stream, const std::string &S);
std::u16string ReadWideString(TStream *Stream);
bool WriteWideString(TStream *Stream, const std::u16string &W);

// The file stream of the stored lists: a TFileStream (same opening modes and
// errors) that also writes short strings.
class TMyFileStream : public TFileStream {
public:
  using TFileStream::TFileStream;
  bool WriteAShortString(const std::string &S) { return WriteShortString(this, S); }
};

// The reader that OpenedAZipFileToTempDir uses: it keeps the temporary folder
// and asks before a file there is overwritten.
class TDummy : public TVCLUnZip {
public:
  TDummy() : TVCLUnZip(nullptr) {}
  // Asks "File Exists" with OK and Cancel through the component's own box;
  // OK overwrites.
  void OverwriteHandler(TObject *Sender, bool &OverwriteIt, const std::string &FileName);
  char TempFolder[262] = {};
};

// Unpacks member number MemberNumber (from 1) of the archive that Name names,
// either the archive itself or a member name below it as the folder scanner
// writes them ("corpus/b.zip/sub/c.txt"), into the temporary folder, without
// its stored folder. The result is the unpacked file's full name, or empty on
// any failure; it never raises. The file belongs to the caller.
//
// The archive's name is Name up to and including its first ".zip", lower-cased
// as the host system would find it whatever its case; where the file system
// tells case apart and no file has the lower-cased name, the name in its own
// capitals is used.
std::string OpenedAZipFileToTempDir(const std::string &Name, int32_t MemberNumber);

} // namespace kestrel
