// Drives and volumes of file_utils over the drive table, from mount tables the tests write.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <kestrel/files/file_utils.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/myKpSmall.h>
#include <kestrel/frame/platform/Platform.h>
#include <kestrel/frame/platform/Volumes.h>

#include "support/TestSupport.h"

using namespace kestrel;
using kestrel::test::ScriptedMessageBoxes;
using kestrel::test::TempDir;
namespace fs = std::filesystem;

namespace {

// A machine of its own: folders mounted by a mount table, with labels, UUIDs, a removable flag.
class Volumes : public ::testing::Test {
protected:
  void SetUp() override {
    struct stat st;
    ::stat(dir.Path().c_str(), &st);
    std::string dev = std::to_string(major(st.st_dev)) + ":" + std::to_string(minor(st.st_dev));
    dir.WriteFile("dev/usb-device", "");
    dir.WriteFile("dev/disk-device", "");
    const std::string mounts[][2] = {{"usb", "rw - vfat " + dir / "dev/usb-device"},
                                     {"net", "rw shared:1 - nfs4 server:/export"},
                                     {"cd", "ro - iso9660 /dev/sr0"},
                                     {"ram", "rw - tmpfs tmpfs"},
                                     {"proc", "rw - proc proc"},
                                     {"with blank", "rw - ext4 " + dir / "dev/disk-device"}};
    std::ofstream table(dir / "mountinfo"); // drives U N D M P F
    for (size_t i = 0; i < std::size(mounts); ++i) {
      const std::string &folder = mounts[i][0];
      fs::create_directories(dir / folder);
      Map("UNDMPF"[i], folder);
      const std::string point = folder == "with blank" ? "with\\040blank" : folder;
      table << 30 + i << " 1 " << dev << " / " << dir / point << " " << mounts[i][1] << " rw\n";
    }
    table.close();
    fs::create_directories(dir / "disk/by-label");
    fs::create_directories(dir / "disk/by-uuid");
    fs::create_symlink(dir / "dev/usb-device", dir / "disk/by-label/Usb\\x20Stick");
    fs::create_symlink(dir / "dev/usb-device", dir / "disk/by-uuid/ABCD-1234");
    fs::create_symlink(dir / "dev/disk-device",
                       dir / "disk/by-uuid/1b4e28ba-2fa1-11d2-883f-0016d3cca427");
    // As in sysfs: a partition's number leads below its disk, which holds the removable flag.
    fs::create_directories(dir / "block/devices/sdb/sdb1");
    fs::create_symlink(dir / "block/devices/sdb/sdb1", dir / ("block/" + dev));
    SetRemovable(true);
    SetVolumeSources(dir / "mountinfo", dir / "disk", dir / "block");
  }
  void TearDown() override {
    for (char d : mapped)
      SetDriveRoot(d, "");
    SetDriveType('U', 0);
    SetVolumeSources("", "", "");
  }
  void Map(char drive, const std::string &folder) {
    SetDriveRoot(drive, dir / folder);
    mapped.push_back(drive);
  }
  void SetRemovable(bool removable) {
    std::ofstream(dir / "block/devices/sdb/removable") << (removable ? "1\n" : "0\n");
  }

  TempDir dir;
  std::vector<char> mapped;
};

TEST_F(Volumes, DriveTypesFromTheMountTable) {
  struct Case {
    const char *root;
    uint32_t type;
  } cases[] = {{"U:/", DRIVE_REMOVABLE}, {"u:\\", DRIVE_REMOVABLE}, {"N:", DRIVE_REMOTE},
               {"D:/", DRIVE_CDROM},     {"M:/", DRIVE_RAMDISK},    {"P:/", DRIVE_UNKNOWN},
               {"F:/", DRIVE_REMOVABLE}, {"Q:/", DRIVE_NO_ROOT_DIR}};
  for (const Case &c : cases)
    EXPECT_EQ(GetDriveTypeA(c.root), c.type) << c.root;
  EXPECT_EQ(GetDriveTypeA((dir / "usb").c_str()), DRIVE_REMOVABLE); // a native folder
  SetRemovable(false);
  EXPECT_EQ(GetDriveTypeA("U:/"), DRIVE_FIXED);
  EXPECT_EQ(GetDriveTypeA("F:/"), DRIVE_FIXED);
  SetDriveType('u', DRIVE_CDROM);
  EXPECT_EQ(GetDriveTypeA("U:/"), DRIVE_CDROM);
  Map('G', "gone");
  EXPECT_EQ(GetDriveTypeA("G:/"), DRIVE_NO_ROOT_DIR);

  uint32_t drives = GetLogicalDrives();
  for (char d : {'C', 'U', 'N', 'D', 'M', 'P', 'F', 'G'})
    EXPECT_TRUE(drives & (1u << (d - 'A'))) << d;
  EXPECT_FALSE(drives & (1u << ('Q' - 'A')));
}

TEST_F(Volumes, LabelsSerialsAndNetworkNames) {
  EXPECT_EQ(VolumeID('u'), "[usb stick]");
  EXPECT_EQ(VolumeID('U'), "[USB STICK]");
  EXPECT_EQ(VolumeID('M'), "[]");
  EXPECT_EQ(VolumeID('Q'), "[]"); // no drive: no dialog, no label

  uint32_t serial = 0, longest = 0, flags = 0;
  char label[64], type[16];
  ASSERT_TRUE(GetVolumeInformationA("U:/", label, sizeof label, &serial, &longest, &flags, type,
                                    sizeof type));
  EXPECT_STREQ(label, "Usb Stick");
  EXPECT_EQ(serial, 0xABCD1234u);
  EXPECT_STREQ(type, "vfat");
  EXPECT_EQ(flags & FILE_CASE_SENSITIVE_SEARCH, 0u);
  EXPECT_GT(longest, 0u);
  ASSERT_TRUE(GetVolumeInformationA("F:/", nullptr, 0, &serial, nullptr, &flags, nullptr, 0));
  EXPECT_EQ(serial, 0xd3cca427u); // the UUID's last 8 hex digits
  EXPECT_NE(flags & FILE_CASE_SENSITIVE_SEARCH, 0u);
  EXPECT_FALSE(GetVolumeInformationA("U:/", label, 5, nullptr, nullptr, nullptr, nullptr, 0));

  // Without a UUID the serial comes from the file-system id, the same each time.
  uint32_t first = 0, second = 1;
  ASSERT_TRUE(GetVolumeInformationA("M:/", nullptr, 0, &first, nullptr, nullptr, nullptr, 0));
  ASSERT_TRUE(GetVolumeInformationA("M:/", nullptr, 0, &second, nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(first, second);

  EXPECT_EQ(NetworkVolume('N'), "SERVER:/EXPORT");
  EXPECT_EQ(NetworkVolume('n'), "server:/export");
  EXPECT_EQ(NetworkVolume('u'), "[usb stick]");

  char small[4];
  uint32_t length = sizeof small;
  EXPECT_EQ(WNetGetConnectionA("N:", small, &length), ERROR_MORE_DATA);
  EXPECT_EQ(length, 15u);
  char exact[15];
  EXPECT_EQ(WNetGetConnectionA("N:", exact, &length), NO_ERROR);
  EXPECT_STREQ(exact, "server:/export");
  EXPECT_EQ(WNetGetConnectionA("U:", small, &length), ERROR_NOT_CONNECTED);
  EXPECT_EQ(WNetGetConnectionA("Q:", small, &length), ERROR_BAD_DEVICE);
}

TEST_F(Volumes, FreeSpace) {
  EXPECT_EQ(DriveWithMostFreeSpace(), ""); // C: is no mount of this table, the rest not fixed
  // One fixed drive among c to z (two would race other writers); a and b never count.
  SetRemovable(false);
  SetDriveType('U', DRIVE_REMOVABLE);
  Map('A', "with blank");
  Map('B', "with blank");
  EXPECT_EQ(DriveWithMostFreeSpace(), "f:/");
  EXPECT_GT(DiskFree(static_cast<uint8_t>('U' - 'A' + 1)), 0);
  EXPECT_EQ(DiskFree(static_cast<uint8_t>('Q' - 'A' + 1)), -1);
  EXPECT_EQ(DiskFree(27), -1);
  EXPECT_GT(DiskFree(0), 0);
}

TEST_F(Volumes, DeleteAllFilesOnRefusesAllButRemovableDrives) {
  SetRemovable(false);
  dir.WriteFile("with blank/keep.txt", "k");
  for (const char *path : {"F:/", "N:/", "D:/", "M:/", "P:/", "Q:/", "c:/", "", "/tmp/"}) {
    ScriptedMessageBoxes boxes;
    DeleteAllFilesOn(path);
    ASSERT_EQ(boxes.Boxes().size(), 1u) << path;
    std::string root = std::string(1, *path ? path[0] : '?') + ":/";
    EXPECT_EQ(boxes.Boxes()[0].text, "Won't delete all files on " + root);
    EXPECT_EQ(boxes.Boxes()[0].caption, "No room");
    EXPECT_EQ(boxes.Boxes()[0].type, 0x2000u);
  }
  EXPECT_TRUE(fs::exists(dir / "with blank/keep.txt"));
}

TEST(DeleteAllFilesOn, ClearsAFolderMappedAsARemovableDrive) {
  TempDir drive, outside;
  for (const char *file : {"a.txt", ".hidden", "sub/b.txt", "sub/deeper/c.txt", "keep/.dot",
                           "keep/d.txt", "empty/sub/e.txt"})
    drive.WriteFile(file, "x");
  outside.WriteFile("precious.txt", "x");
  fs::create_directory_symlink(outside.Path(), drive / "link");
  SetDriveRoot('R', drive.Path());
  SetDriveType('R', DRIVE_REMOVABLE);
  int yields = 0;
  auto count = [&yields] { ++yields; };
  AYieldProcessProc = TYieldProcessProc::Of(&count);
  {
    ScriptedMessageBoxes boxes;
    DeleteAllFilesOn("R:/");
    EXPECT_TRUE(boxes.Boxes().empty());
  }
  AYieldProcessProc = nullptr;
  SetDriveType('R', 0);
  SetDriveRoot('R', "");

  EXPECT_EQ(yields, 5); // one per file collected
  std::vector<std::string> left;
  for (auto it = fs::recursive_directory_iterator(drive.Path()); it != fs::end(it); ++it)
    left.push_back(it->path().lexically_relative(drive.Path()).string());
  std::sort(left.begin(), left.end());
  // Each file's folder goes when it holds no more files and can go: "sub" was
  // tried while "sub/deeper" was still there, and "empty" never held a file.
  EXPECT_EQ(left,
            (std::vector<std::string>{".hidden", "empty", "keep", "keep/.dot", "link", "sub"}));
  EXPECT_TRUE(fs::exists(outside / "precious.txt"));
}

} // namespace
