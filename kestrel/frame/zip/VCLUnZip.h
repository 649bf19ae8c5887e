// TVCLUnZip: reads the directory of a ZIP archive and unpacks selected
// members into a folder. It never writes an archive.
//
// Use: set ZipName, call ReadZip (it raises EZipError when the file can't be
// read as an archive: missing, empty, foreign or damaged), then read the
// members by index, 0 to GetCount() - 1. To unpack: ClearSelected,
// SetSelected, SetDestDir, UnZipSelected.
//
// Member names are split at the last "/" (a "\" in a stored name counts as
// one too): GetPathname is the stored folder with its trailing delimiter, so
// that GetPathname + GetFilename is the stored name; GetFilename is empty for
// a folder entry. Names flagged as UTF-8 come as they are, others are taken as
// UTF-8 when they are valid UTF-8 and as code page 437 otherwise.
//
// Unpacking never writes outside the destination folder: the stored folder's
// empty, ".", ".." and drive parts are dropped, folders on the way are entered
// without following links, and a member lands through a temporary file that
// is renamed over the target, so that a damaged member leaves no partial file.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/TComponent.h>
#include <kestrel/frame/host/TStream.h>
#include <kestrel/frame/host/Types.h>

struct zip;

namespace kestrel {

// Message: what failed, with the archive's or member's name; Reason: the
// cause alone ("Not a zip archive", "CRC error").
class EZipError : public Exception {
public:
  explicit EZipError(std::string message, std::string reason = {})
      : Exception(std::move(message)), Reason(reason.empty() ? FMessage : std::move(reason)) {}
  std::string Reason;
};

// What UnZipSelected does with a target file that exists already.
enum class TUZOverwriteMode : uint8_t {
  Prompt, // ask OnPromptForOverwrite; without a handler, keep the file
  Always,
  Never
};

// Asked when a target exists: fileName is the target below the destination
// folder; set overwriteIt to true to replace the file (it starts false).
using TUZOverwriteEvent =
    OfObject<void(TObject *sender, bool &overwriteIt, const std::string &fileName)>;
// Called by ReadZip once per directory entry read, with the entry's index and
// the number of entries.
using TUZEntryReadEvent = OfObject<void(TObject *sender, int32_t index, int32_t count)>;

// Reads the directory of a ZIP archive and unpacks selected members.
class TVCLUnZip : public TComponent {
public:
  explicit TVCLUnZip(TComponent *owner);
  ~TVCLUnZip() override;

  // Naming another archive forgets the directory read so far.
  virtual void SetZipName(const std::string &name);
  std::string GetZipName() const { return FZipName; }

  // Reads the directory of the named archive; raises EZipError when the file
  // is missing, empty or not an archive it can read. Only the central
  // directory is read: the first member read checks every member's local
  // header against it (once per archive), and a member of an archive that
  // fails the check is refused with libzip's reason.
  void ReadZip();
  int32_t GetCount() const { return static_cast<int32_t>(FMembers.size()); }
  // The archive comment as stored, byte for byte.
  std::string GetZipComment() const { return FComment; }

  // Member access; an index outside 0 to GetCount() - 1 raises EListError.
  std::string GetFilename(int32_t index) const;
  std::string GetPathname(int32_t index) const;
  TDateTime GetDateTime(int32_t index) const; // local date and time of the member
  int64_t GetUnCompressedSize(int32_t index) const;
  int64_t GetCompressedSize(int32_t index) const;
  int32_t GetExternalFileAttributes(int32_t index) const;
  bool GetIsEncrypted(int32_t index) const;

  void ClearSelected();
  void SetSelected(int32_t index, bool selected);
  bool GetSelected(int32_t index) const;
  int32_t NumSelected() const;

  void SetDestDir(const std::string &dir) { FDestDir = dir; }
  std::string GetDestDir() const { return FDestDir; }

  // Unpacks the selected members into DestDir, which is created when missing.
  // The result is the number of files written (and, with RecreateDirs, of
  // folder entries made); members kept by the overwrite rule don't count.
  // Raises EZipError when no archive has been read, DestDir is empty, or a
  // member can't be unpacked (damaged, encrypted, a target that is a folder).
  int32_t UnZipSelected();
  // Writes member index's data to the stream and gives its size; nothing
  // goes to disk. Reads no more than the member's directory entry states
  // (GetUnCompressedSize, for the caller to check against its limit). Raises
  // EZipError, with the member's name and the reason, when the data is
  // damaged, encrypted or not of its stated size, or the stream fails.
  int64_t UnZipToStream(TStream *stream, int32_t index);

  // Options. RecreateDirs: members land in their stored folders below
  // DestDir; when false, directly in DestDir.
  bool RecreateDirs = true;
  TUZOverwriteMode OverwriteMode = TUZOverwriteMode::Prompt;

  TUZOverwriteEvent OnPromptForOverwrite;
  TUZEntryReadEvent OnEntryRead;

private:
  bool CheckConsistency();
  struct Member {
    std::string pathname, filename;
    TDateTime dateTime = 0;
    int64_t mtime = 0;
    int64_t size = 0, compressedSize = 0;
    int32_t attributes = 0;
    bool encrypted = false;
    bool selected = false;
  };
  const Member &At(int32_t index) const;
  void CloseArchive();
  bool UnZipOne(int dirfd, int32_t index);
  void Extract(int dirfd, const std::string &name, int32_t index);
  std::string ReadMember(int32_t index, const std::function<bool(const char *, size_t)> &write);
  // The member as the folder scanner names it: archive, delimiter, stored name.
  std::string MemberName(int32_t index) const;

  std::string FZipName, FDestDir, FComment;
  std::vector<Member> FMembers;
  zip *FArchive = nullptr;
  bool FConsistencyChecked = false;
  std::string FInconsistency; // why the archive failed the check; empty when it passed
};

namespace Kpsmall {
// The component's own message box, for the handlers of its events: the text,
// the caption and the type flags go to the box as they are (1: OK and
// Cancel); the answer is the button's number, 1 for OK.
int32_t PMsgDlg(const std::string &Text, const std::string &Caption, uint32_t Flags);
} // namespace Kpsmall

} // namespace kestrel
