// Drives and volumes under the Windows names, over the drive table (letters
// mapped to folders with SetDriveRoot, C: is "/" at start) and the system's
// mount table.
//
// - A drive exists when its letter is mapped. Its type is that of the mount
//   that holds its folder (/proc/self/mountinfo, matched by device): network
//   file systems (nfs, cifs, sshfs ...) are remote, iso9660 and udf CD-ROMs,
//   tmpfs and ramfs RAM disks, kernel file systems (proc, sysfs ...) unknown;
//   a disk is removable when the kernel says so (/sys/dev/block/M:m/removable,
//   or its whole disk's), else fixed. SetDriveType overrides this per letter.
// - A volume's label is the name under /dev/disk/by-label that leads to its
//   device, empty when there is none. Its serial number is the last 8 hex
//   digits of the file-system UUID under /dev/disk/by-uuid (for FAT and NTFS
//   the number Windows shows); without a UUID it is the file-system id of
//   statvfs folded to 32 bits (high half XOR low half), stable while the file
//   system stays mounted.
// - A network drive's remote name is its mount's source ("server:/export",
//   "//server/share").
// - Error numbers are errno values (see Errors.h).
#pragma once

#include <cerrno>
#include <cstdint>
#include <string>

namespace kestrel {

inline constexpr uint32_t DRIVE_UNKNOWN = 0;
inline constexpr uint32_t DRIVE_NO_ROOT_DIR = 1;
inline constexpr uint32_t DRIVE_REMOVABLE = 2;
inline constexpr uint32_t DRIVE_FIXED = 3;
inline constexpr uint32_t DRIVE_REMOTE = 4;
inline constexpr uint32_t DRIVE_CDROM = 5;
inline constexpr uint32_t DRIVE_RAMDISK = 6;

inline constexpr uint32_t SEM_FAILCRITICALERRORS = 0x0001;

inline constexpr uint32_t FILE_CASE_SENSITIVE_SEARCH = 0x00000001;
inline constexpr uint32_t FILE_CASE_PRESERVED_NAMES = 0x00000002;
inline constexpr uint32_t FILE_UNICODE_ON_DISK = 0x00000004;
inline constexpr uint32_t FILE_READ_ONLY_VOLUME = 0x00080000;

// Results of WNetGetConnectionA.
inline constexpr uint32_t NO_ERROR = 0;
inline constexpr uint32_t ERROR_NOT_CONNECTED = ENOTCONN; // a local drive
inline constexpr uint32_t ERROR_BAD_DEVICE = ENODEV;      // no such drive
inline constexpr uint32_t ERROR_MORE_DATA = EOVERFLOW;    // the buffer is too small

// Bit n set for each mapped letter, bit 0 for A.
uint32_t GetLogicalDrives();

// The type of a root: a letter and a colon, with or without a delimiter
// ("C:", "C:/", "C:\"), or a native folder. DRIVE_NO_ROOT_DIR for an
// unmapped letter or a folder that isn't there.
uint32_t GetDriveTypeA(const char *rootPathName);

// The label, serial number, longest name, flags and file-system type ("ext4",
// "vfat" ...) of the volume that holds a root; any output may be null. False
// when the root isn't there or a buffer is too small for its text.
bool GetVolumeInformationA(const char *rootPathName, char *volumeNameBuffer,
                           uint32_t volumeNameSize, uint32_t *volumeSerialNumber,
                           uint32_t *maximumComponentLength, uint32_t *fileSystemFlags,
                           char *fileSystemNameBuffer, uint32_t fileSystemNameSize);

// The remote name of a network drive given as "X:": NO_ERROR with the name
// in the buffer; ERROR_MORE_DATA with *length set to what it needs;
// ERROR_NOT_CONNECTED for a local drive, ERROR_BAD_DEVICE for no drive.
uint32_t WNetGetConnectionA(const char *localName, char *remoteName, uint32_t *length);

// The process's error mode, returning the old one. Linux shows no dialog for
// an empty drive, so the mode is only kept.
uint32_t SetErrorMode(uint32_t mode);

// Makes a letter report this type whatever its mount is (a tool that knows a
// folder to be removable media; tests); 0 lets the system decide again.
void SetDriveType(char drive, uint32_t type);

// Where the volume functions read the system's tables: the mount table, the
// folder holding by-label and by-uuid, and the folder of block devices by
// number. An empty argument restores /proc/self/mountinfo, /dev/disk and
// /sys/dev/block. For tests and systems that keep them elsewhere.
void SetVolumeSources(const std::string &mountInfo, const std::string &diskFolder,
                      const std::string &blockFolder);

} // namespace kestrel
