#include <kestrel/frame/platform/Volumes.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <sstream>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>
#include <vector>

#include <kestrel/frame/platform/Platform.h>

namespace kestrel {

namespace {

namespace fs = std::filesystem;

struct Sources {
  std::string mountInfo = "/proc/self/mountinfo";
  std::string diskFolder = "/dev/disk";
  std::string blockFolder = "/sys/dev/block";
};

std::mutex gVolumeMutex;
Sources gSources;
std::map<char, uint32_t> gTypeOverrides;
std::atomic<uint32_t> gErrorMode{0};

Sources CurrentSources() {
  std::lock_guard<std::mutex> lock(gVolumeMutex);
  return gSources;
}

// One line of the mount table.
struct Mount {
  unsigned major = 0, minor = 0;
  std::string mountPoint, fsType, source;
};

// Undoes the mount table's octal escapes ("\040" for a blank).
std::string Unescape(const std::string &s) {
  std::string out;
  for (size_t i = 0; i < s.size(); ++i) {
    if (s[i] == '\\' && i + 3 < s.size() && std::isdigit(static_cast<unsigned char>(s[i + 1])) &&
        std::isdigit(static_cast<unsigned char>(s[i + 2])) &&
        std::isdigit(static_cast<unsigned char>(s[i + 3]))) {
      out += static_cast<char>((s[i + 1] - '0') * 64 + (s[i + 2] - '0') * 8 + (s[i + 3] - '0'));
      i += 3;
    } else {
      out += s[i];
    }
  }
  return out;
}

// Fields: id, parent, major:minor, root, mount point, options, optional
// fields up to "-", then type, source and super options.
bool ParseMount(const std::string &line, Mount &m) {
  std::istringstream in(line);
  std::string id, parent, dev, root, options, field;
  if (!(in >> id >> parent >> dev >> root >> m.mountPoint >> options)) return false;
  while (in >> field && field != "-") {
  }
  if (field != "-" || !(in >> m.fsType >> m.source)) return false;
  if (std::sscanf(dev.c_str(), "%u:%u", &m.major, &m.minor) != 2) return false;
  m.mountPoint = Unescape(m.mountPoint);
  m.source = Unescape(m.source);
  return true;
}

bool IsUnder(const std::string &path, const std::string &mountPoint) {
  if (mountPoint == "/") return true;
  return path.compare(0, mountPoint.size(), mountPoint) == 0 &&
         (path.size() == mountPoint.size() || path[mountPoint.size()] == '/');
}

// The mount that holds a folder: of the entries of its device whose mount
// point lies above it, the deepest.
bool MountOf(const std::string &folder, const Sources &src, Mount &found) {
  struct stat st;
  std::error_code ec;
  std::string real = fs::canonical(folder, ec).string();
  if (ec || ::stat(real.c_str(), &st) != 0) return false;
  std::ifstream in(src.mountInfo);
  std::string line;
  bool any = false;
  while (std::getline(in, line)) {
    Mount m;
    if (!ParseMount(line, m) || m.major != ::major(st.st_dev) || m.minor != ::minor(st.st_dev) ||
        !IsUnder(real, m.mountPoint))
      continue;
    if (!any || m.mountPoint.size() >= found.mountPoint.size()) {
      found = m;
      any = true;
    }
  }
  return any;
}

bool OneOf(const std::string &s, std::initializer_list<const char *> list) {
  return std::any_of(list.begin(), list.end(), [&](const char *e) { return s == e; });
}

bool ReadsOne(const std::string &path) {
  std::ifstream in(path);
  std::string v;
  return in >> v && v == "1";
}

uint32_t TypeOfMount(const Mount &m, const Sources &src) {
  if (OneOf(m.fsType,
            {"nfs",         "nfs4",      "cifs",         "smb3",           "smbfs",
             "ncpfs",       "afs",       "ceph",         "glusterfs",      "9p",
             "lustre",      "gpfs",      "beegfs",       "davfs",          "fuse.sshfs",
             "fuse.rclone", "fuse.s3fs", "fuse.gcsfuse", "fuse.glusterfs", "fuse.davfs2"}))
    return DRIVE_REMOTE;
  if (OneOf(m.fsType, {"iso9660", "udf"})) return DRIVE_CDROM;
  if (OneOf(m.fsType, {"tmpfs", "ramfs"})) return DRIVE_RAMDISK;
  if (OneOf(m.fsType, {"proc", "sysfs", "devtmpfs", "devpts", "cgroup", "cgroup2", "securityfs",
                       "debugfs", "tracefs", "pstore", "bpf", "mqueue", "hugetlbfs", "configfs",
                       "fusectl", "autofs", "binfmt_misc", "efivarfs", "nsfs"}))
    return DRIVE_UNKNOWN;
  // A partition says nothing itself; its whole disk, one folder up, does.
  std::string dev = src.blockFolder + "/" + std::to_string(m.major) + ":" + std::to_string(m.minor);
  if (ReadsOne(dev + "/removable") || ReadsOne(dev + "/../removable")) return DRIVE_REMOVABLE;
  return DRIVE_FIXED;
}

// The folder a root names: a mapped drive's folder, or a native folder.
// Sets letter to the drive's (upper case), or 0.
std::string FolderOfRoot(const char *root, char &letter) {
  letter = 0;
  if (root == nullptr) return ".";
  std::string r = root;
  if (r.size() >= 2 && r[1] == ':' && std::isalpha(static_cast<unsigned char>(r[0]))) {
    letter = static_cast<char>(std::toupper(static_cast<unsigned char>(r[0])));
    return DriveRoot(letter);
  }
  return r;
}

uint32_t OverrideOf(char letter) {
  std::lock_guard<std::mutex> lock(gVolumeMutex);
  auto it = gTypeOverrides.find(letter);
  return it == gTypeOverrides.end() ? 0 : it->second;
}

// Undoes udev's escapes in a by-label name ("\x20" for a blank).
std::string UnescapeUdev(const std::string &s) {
  std::string out;
  for (size_t i = 0; i < s.size(); ++i) {
    unsigned v;
    if (s[i] == '\\' && i + 3 < s.size() && s[i + 1] == 'x' &&
        std::sscanf(s.substr(i + 2, 2).c_str(), "%2x", &v) == 1) {
      out += static_cast<char>(v);
      i += 3;
    } else {
      out += s[i];
    }
  }
  return out;
}

// The name of the entry in a by-label or by-uuid folder that leads to the
// mount's device, or empty: the link's target is the source, or a block
// device of the mount's number.
std::string NameLeadingTo(const std::string &folder, const Mount &m) {
  std::error_code ec;
  std::string source = m.source.empty() || m.source[0] != '/'
                           ? std::string()
                           : fs::weakly_canonical(m.source, ec).string();
  for (const auto &entry : fs::directory_iterator(folder, ec)) {
    std::error_code ec2;
    fs::path target = fs::canonical(entry.path(), ec2);
    if (ec2) continue;
    if (!source.empty() && target.string() == source) return entry.path().filename().string();
    struct stat st;
    if (::stat(target.c_str(), &st) == 0 && S_ISBLK(st.st_mode) && ::major(st.st_rdev) == m.major &&
        ::minor(st.st_rdev) == m.minor)
      return entry.path().filename().string();
  }
  return {};
}

uint32_t SerialFromUuid(const std::string &uuid) {
  std::string hex;
  for (char c : uuid)
    if (std::isxdigit(static_cast<unsigned char>(c))) hex += c;
  if (hex.size() > 8) hex = hex.substr(hex.size() - 8);
  return static_cast<uint32_t>(std::strtoul(hex.c_str(), nullptr, 16));
}

bool CopyOut(const std::string &text, char *buffer, uint32_t size) {
  if (buffer == nullptr) return true;
  if (text.size() + 1 > size) {
    errno = ERANGE;
    return false;
  }
  std::memcpy(buffer, text.c_str(), text.size() + 1);
  return true;
}

} // namespace

uint32_t GetLogicalDrives() {
  uint32_t bits = 0;
  for (char d = 'A'; d <= 'Z'; ++d)
    if (!DriveRoot(d).empty()) bits |= 1u << (d - 'A');
  return bits;
}

uint32_t GetDriveTypeA(const char *rootPathName) {
  char letter;
  std::string folder = FolderOfRoot(rootPathName, letter);
  if (folder.empty()) return DRIVE_NO_ROOT_DIR;
  if (uint32_t type = letter ? OverrideOf(letter) : 0) return type;
  Mount m;
  if (!MountOf(folder, CurrentSources(), m))
    return fs::is_directory(folder) ? DRIVE_UNKNOWN : DRIVE_NO_ROOT_DIR;
  return TypeOfMount(m, CurrentSources());
}

bool GetVolumeInformationA(const char *rootPathName, char *volumeNameBuffer,
                           uint32_t volumeNameSize, uint32_t *volumeSerialNumber,
                           uint32_t *maximumComponentLength, uint32_t *fileSystemFlags,
                           char *fileSystemNameBuffer, uint32_t fileSystemNameSize) {
  char letter;
  std::string folder = FolderOfRoot(rootPathName, letter);
  struct statvfs vfs;
  if (folder.empty() || ::statvfs(folder.c_str(), &vfs) != 0) {
    errno = folder.empty() ? ENOENT : errno;
    return false;
  }
  Sources src = CurrentSources();
  Mount m;
  bool mounted = MountOf(folder, src, m);
  std::string label, uuid;
  if (mounted) {
    label = UnescapeUdev(NameLeadingTo(src.diskFolder + "/by-label", m));
    uuid = NameLeadingTo(src.diskFolder + "/by-uuid", m);
  }
  if (volumeSerialNumber) {
    uint64_t id = static_cast<uint64_t>(vfs.f_fsid);
    *volumeSerialNumber =
        uuid.empty() ? static_cast<uint32_t>(id ^ (id >> 32)) : SerialFromUuid(uuid);
  }
  if (maximumComponentLength) *maximumComponentLength = static_cast<uint32_t>(vfs.f_namemax);
  if (fileSystemFlags) {
    bool foldsCase = OneOf(m.fsType, {"vfat", "msdos", "exfat", "ntfs", "ntfs3"});
    *fileSystemFlags = (foldsCase ? 0 : FILE_CASE_SENSITIVE_SEARCH) | FILE_CASE_PRESERVED_NAMES |
                       FILE_UNICODE_ON_DISK | (vfs.f_flag & ST_RDONLY ? FILE_READ_ONLY_VOLUME : 0);
  }
  return CopyOut(label, volumeNameBuffer, volumeNameSize) &&
         CopyOut(m.fsType, fileSystemNameBuffer, fileSystemNameSize);
}

uint32_t WNetGetConnectionA(const char *localName, char *remoteName, uint32_t *length) {
  char letter;
  if (localName == nullptr || length == nullptr) return ERROR_BAD_DEVICE;
  std::string folder = FolderOfRoot(localName, letter);
  if (letter == 0 || folder.empty()) return ERROR_BAD_DEVICE;
  Sources src = CurrentSources();
  Mount m;
  if (!MountOf(folder, src, m)) return ERROR_NOT_CONNECTED;
  uint32_t type = OverrideOf(letter);
  if ((type ? type : TypeOfMount(m, src)) != DRIVE_REMOTE) return ERROR_NOT_CONNECTED;
  if (remoteName == nullptr || m.source.size() + 1 > *length) {
    *length = static_cast<uint32_t>(m.source.size() + 1);
    return ERROR_MORE_DATA;
  }
  std::memcpy(remoteName, m.source.c_str(), m.source.size() + 1);
  return NO_ERROR;
}

uint32_t SetErrorMode(uint32_t mode) {
  return gErrorMode.exchange(mode);
}

void SetDriveType(char drive, uint32_t type) {
  char d = static_cast<char>(std::toupper(static_cast<unsigned char>(drive)));
  std::lock_guard<std::mutex> lock(gVolumeMutex);
  if (type == 0)
    gTypeOverrides.erase(d);
  else
    gTypeOverrides[d] = type;
}

void SetVolumeSources(const std::string &mountInfo, const std::string &diskFolder,
                      const std::string &blockFolder) {
  Sources defaults;
  std::lock_guard<std::mutex> lock(gVolumeMutex);
  gSources.mountInfo = mountInfo.empty() ? defaults.mountInfo : mountInfo;
  gSources.diskFolder = diskFolder.empty() ? defaults.diskFolder : diskFolder;
  gSources.blockFolder = blockFolder.empty() ? defaults.blockFolder : blockFolder;
}

} // namespace kestrel
