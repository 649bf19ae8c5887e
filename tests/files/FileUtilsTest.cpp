// The file functions of file_utils and the copy beneath them.
#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include <kestrel/files/file_utils.h>
#include <kestrel/frame/host/DateUtils.h>
#include <kestrel/frame/host/FindFile.h>
#include <kestrel/frame/platform/Errors.h>
#include <kestrel/frame/platform/FileSystem.h>

#include "support/FileSizeLimit.h"
#include "support/TestSupport.h"

using namespace kestrel;
using kestrel::test::ReadFileBytes;
using kestrel::test::ScriptedMessageBoxes;
using kestrel::test::TempDir;
namespace fs = std::filesystem;

namespace {

const int32_t kStamp = DateTimeToFileDate(EncodeDateTime(2001, 2, 3, 4, 5, 6, 0));

TEST(FileUtils, NamesAreTidied) {
  struct Case {
    const char *name, *cleaned, *dotless;
  } cases[] = {
      {"dir/a+b=c?.txt", "abc.txt", "dir/a+b=c?txt"},
      {"name\twith\x01tab.txt", "namewithtab.txt", "name\twith\x01tabtxt"},
      {"dir/sub/", "", "dir/sub/"},
      {"plain name.txt", "plain name.txt", "plain nametxt"},
      {"C:name", "name", "C:name"},
      {"a<b>|^[x]\"*:\\.e", "abx.e", "a<b>|^[x]\"*:\\e"},
      {"/abs.d/x y.z", "x y.z", "/absd/x yz"},
  };
  for (const Case &c : cases) {
    EXPECT_EQ(CleanedUpFilename(c.name), c.cleaned) << c.name;
    EXPECT_EQ(RemoveDotsFromFilename(c.name), c.dotless) << c.name;
  }
}

TEST(FileUtils, CopyKeepsTheSourceDateAndDatesAreSet) {
  TempDir dir;
  dir.WriteFile("src.txt", "contents");
  ASSERT_EQ(FileSetDate(dir / "src.txt", kStamp), 0);
  EXPECT_TRUE(CopyFileRetainingDate(dir / "src.txt", dir / "dst.txt"));
  EXPECT_EQ(ReadFileBytes(dir / "dst.txt"), "contents");
  EXPECT_EQ(FileAge(dir / "dst.txt"), kStamp);

  dir.WriteFile("other.txt", "x");
  EXPECT_TRUE(CopyDateOfFile(dir / "src.txt", dir / "other.txt"));
  EXPECT_EQ(FileAge(dir / "other.txt"), kStamp);
  EXPECT_FALSE(CopyDateOfFile(dir / "gone.txt", dir / "other.txt"));
  EXPECT_FALSE(CopyDateOfFile(dir / "src.txt", dir / "gone.txt"));

  EXPECT_FALSE(CopyFileRetainingDate(dir / "gone.txt", dir / "new.txt"));
  EXPECT_FALSE(fs::exists(dir / "new.txt"));

  EXPECT_TRUE(MySetFileDate(dir / "dst.txt", kStamp + 1));
  EXPECT_EQ(FileAge(dir / "dst.txt"), kStamp + 1);
  EXPECT_FALSE(MySetFileDate(dir / "missing", kStamp));
  EXPECT_FALSE(fs::exists(dir / "missing"));
}

TEST(FileUtils, CopyOverAReadOnlyTargetFailsButStillDates) {
  TempDir dir;
  dir.WriteFile("src.txt", "new");
  dir.WriteFile("dst.txt", "old");
  ASSERT_EQ(FileSetDate(dir / "src.txt", kStamp), 0);
  ::chmod((dir / "dst.txt").c_str(), 0444);
  EXPECT_FALSE(CopyFileRetainingDate(dir / "src.txt", dir / "dst.txt"));
  EXPECT_EQ(ReadFileBytes(dir / "dst.txt"), "old");
  if (::geteuid() == 0) { // only root may set the date of a file it may not write
    EXPECT_EQ(FileAge(dir / "dst.txt"), kStamp);
  }
}

// How the copy replaces a file is the platform layer's test; here, the reasons it leaves.
TEST(FileUtils, CopyFileASetsTheLastError) {
  TempDir dir;
  dir.WriteFile("src.txt", std::string(20000, 's'));
  dir.WriteFile("dst.txt", "old");
  EXPECT_FALSE(CopyFileA((dir / "src.txt").c_str(), (dir / "dst.txt").c_str(), true));
  EXPECT_EQ(GetLastError(), uint32_t(EEXIST));
  EXPECT_FALSE(CopyFileA((dir / "gone.txt").c_str(), (dir / "dst.txt").c_str(), false));
  EXPECT_EQ(GetLastError(), uint32_t(ENOENT));
  {
    test::FileSizeLimit disk(4096); // a disk that fills up half way
    EXPECT_FALSE(CopyFileA((dir / "src.txt").c_str(), (dir / "dst.txt").c_str(), false));
    EXPECT_EQ(GetLastError(), uint32_t(EFBIG));
  }
  EXPECT_EQ(ReadFileBytes(dir / "dst.txt"), "old");
}

TEST(FileUtils, AttributesOfLinks) {
  TempDir dir;
  dir.WriteFile("sub/file", "x");
  fs::create_directory_symlink(dir / "sub", dir / "link");
  EXPECT_EQ(GetFileAttributesA((dir / "link").c_str()),
            FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DIRECTORY);
  EXPECT_EQ(GetFileAttributesA((dir / "sub").c_str()), FILE_ATTRIBUTE_DIRECTORY);
  EXPECT_EQ(GetFileAttributesA((dir / "sub/file").c_str()), FILE_ATTRIBUTE_ARCHIVE);
  EXPECT_EQ(GetFileAttributesA((dir / "none").c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST(FileUtils, OKToDeleteAsksFirst) {
  TempDir dir;
  {
    ScriptedMessageBoxes boxes;
    EXPECT_TRUE(OKToDelete(dir / "missing.txt"));
    EXPECT_TRUE(boxes.Boxes().empty());
  }
  dir.WriteFile("a.txt", "a");
  {
    ScriptedMessageBoxes boxes({IDCANCEL, IDOK});
    EXPECT_FALSE(OKToDelete(dir / "a.txt"));
    EXPECT_TRUE(fs::exists(dir / "a.txt"));
    EXPECT_TRUE(OKToDelete(dir / "a.txt"));
    EXPECT_FALSE(fs::exists(dir / "a.txt"));
    ASSERT_EQ(boxes.Boxes().size(), 2u);
    EXPECT_EQ(boxes.Boxes()[0].text, "Delete " + (dir / "a.txt") + "?");
    EXPECT_EQ(boxes.Boxes()[0].caption, "Confirmation");
    EXPECT_EQ(boxes.Boxes()[0].type, 0x2021u);
  }
}

TEST(FileUtils, FileSizeFromTheFolder) {
  TempDir dir;
  dir.WriteFile("empty", "");
  dir.WriteFile("A.txt", "abc");
  dir.WriteFile("a.txt", "abcde");
  EXPECT_EQ(FileSize(dir / "missing"), -1);
  EXPECT_EQ(FileSize(dir.Path()), -1);
  EXPECT_EQ(FileSize(dir / "empty"), 0);
  EXPECT_EQ(FileSize(dir / "a.txt"), 5); // not its namesake in another case
  EXPECT_EQ(FileSize(dir / "A.txt"), 3);
}

} // namespace
