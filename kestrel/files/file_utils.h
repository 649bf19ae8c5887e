// Unit file_utils: small file and volume operations. None keeps state; the
// questions to the user go through MyPMsgDlg.
//
// Drive letters are those of the platform's drive table (see
// frame/platform/Volumes.h), and roots are written with "/": "c:/".
#pragma once

#include <cstdint>
#include <string>

namespace kestrel {

// The name without any ".", folder part included.
std::string RemoveDotsFromFilename(const std::string &Name);
// A bare file name made from a full one: the folder goes, and so do control
// characters and \ / : | < > ^ + = ? [ ] " *.
std::string CleanedUpFilename(const std::string &Name);
// Gives the target the source's date stamp; false unless both exist and it
// worked.
bool CopyDateOfFile(const std::string &Source, const std::string &Target);
// Copies the source over the target and gives the target the source's date
// stamp (also when the copy failed). False for a missing source or a failed
// copy.
bool CopyFileRetainingDate(const std::string &Source, const std::string &Target);
// True when the file isn't there; otherwise asks "Delete <name>?" and, on
// OK, deletes it (a failed deletion is not reported) and gives true.
bool OKToDelete(const std::string &Name);
// The size of a file, -1 when there is none (2 GB and more read as
// 0x7FFFFFFF).
int32_t FileSize(const std::string &Name);
// The fixed drive from c to z with the most free space ("d:/"), the first
// on a tie; empty when no fixed drive has any.
std::string DriveWithMostFreeSpace();
// Opens the file for writing and sets its date stamp; true when both worked.
bool MySetFileDate(const std::string &Name, int32_t DateStamp);
// The drive's volume label in brackets, in upper case for an upper-case
// letter and lower case otherwise; "[]" for no label or no volume.
std::string VolumeID(char DriveLetter);
// A network drive's remote name (cased as VolumeID does), else VolumeID.
std::string NetworkVolume(char DriveLetter);
// Deletes every file below a folder of a removable drive ("e:/" or
// "e:/sub/"), but hidden and system files, and then the folders left without
// files. Any other drive gets the message "Won't delete all files on e:/" and
// keeps everything. Links to folders are left alone, and so is the drive's
// own folder.
void DeleteAllFilesOn(const std::string &Path);

} // namespace kestrel
